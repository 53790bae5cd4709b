#include "store/SyncState.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace mirodate {

namespace {

constexpr const char* kSynchronizer = "vdirsyncer";

std::string BaseName(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace

bool SyncState::IsSynchronizerRunning() {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
        const std::string pid = entry.path().filename().string();
        if (pid.empty() || !std::isdigit(static_cast<unsigned char>(pid[0])))
            continue;
        std::ifstream file(entry.path() / "cmdline", std::ios::binary);
        const std::string cmdline((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        // The program itself, or the script an interpreter runs.
        std::size_t begin = 0;
        for (int argument = 0; argument < 2 && begin < cmdline.size(); ++argument) {
            std::size_t end = cmdline.find('\0', begin);
            if (end == std::string::npos)
                end = cmdline.size();
            if (BaseName(cmdline.substr(begin, end - begin)) == kSynchronizer)
                return true;
            begin = end + 1;
        }
    }
    return false;
}

} // namespace mirodate
