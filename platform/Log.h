#pragma once
// The program's one logger: diagnostics to stderr, quiet by default
// (warnings and errors only), everything with --verbose.
#include <cstdarg>

namespace mirodate {

class Log {
public:
    enum class Level { Debug = 0, Info = 1, Warning = 2, Error = 3 };

    static void SetVerbose(bool verbose);
    static bool IsVerbose();
    static void Debug(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void Info(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void Warning(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void Error(const char* format, ...) __attribute__((format(printf, 1, 2)));

private:
    static void Write(Level level, const char* format, va_list args);
};

} // namespace mirodate
