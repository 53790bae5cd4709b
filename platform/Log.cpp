#include "platform/Log.h"

#include <atomic>
#include <cstdio>
#include <mutex>

namespace mirodate {

namespace {
std::atomic<bool> g_verbose{false};
std::mutex g_writeMutex;
} // namespace

void Log::SetVerbose(bool verbose) {
    g_verbose = verbose;
}
bool Log::IsVerbose() {
    return g_verbose;
}

void Log::Write(Level level, const char* format, va_list args) {
    if (level < Level::Warning && !g_verbose)
        return;
    static const char* const kNames[] = {"debug", "info", "warning", "error"};
    char buffer[2048];
    vsnprintf(buffer, sizeof buffer, format, args);
    std::lock_guard lock(g_writeMutex);
    std::fprintf(stderr, "mirodate: %s: %s\n", kNames[static_cast<int>(level)], buffer);
}

#define MIRODATE_LOG_FN(name, level)                                                                         \
    void Log::name(const char* format, ...) {                                                                \
        va_list args;                                                                                        \
        va_start(args, format);                                                                              \
        Write(level, format, args);                                                                          \
        va_end(args);                                                                                        \
    }
MIRODATE_LOG_FN(Debug, Level::Debug)
MIRODATE_LOG_FN(Info, Level::Info)
MIRODATE_LOG_FN(Warning, Level::Warning)
MIRODATE_LOG_FN(Error, Level::Error)
#undef MIRODATE_LOG_FN

} // namespace mirodate
