#include "platform/Paths.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#ifndef MIRODATE_INSTALL_DATADIR
#define MIRODATE_INSTALL_DATADIR "/usr/local/share/mirodate"
#endif

namespace mirodate {

namespace {
std::string Home() {
    const char* home = std::getenv("HOME");
    return home && *home ? home : "/tmp";
}

std::string XdgDir(const char* variable, const char* fallbackUnderHome) {
    const char* value = std::getenv(variable);
    // The XDG rules ignore relative paths.
    std::string base = value && value[0] == '/' ? value : Home() + "/" + fallbackUnderHome;
    return base + "/mirodate";
}
} // namespace

std::string Paths::ConfigDir() {
    return XdgDir("XDG_CONFIG_HOME", ".config");
}
std::string Paths::DataDir() {
    return XdgDir("XDG_DATA_HOME", ".local/share");
}
std::string Paths::CacheDir() {
    return XdgDir("XDG_CACHE_HOME", ".cache");
}

std::string Paths::RuntimeDir() {
    const char* value = std::getenv("XDG_RUNTIME_DIR");
    if (value && value[0] == '/') {
        struct stat st {};
        if (stat(value, &st) == 0 && S_ISDIR(st.st_mode))
            return value;
    }
    std::string dir = "/tmp/mirodate-" + std::to_string(getuid());
    mkdir(dir.c_str(), 0700);
    return dir;
}

std::string Paths::ProgramDir() {
    std::vector<char> buffer(4096);
    ssize_t n = readlink("/proc/self/exe", buffer.data(), buffer.size() - 1);
    if (n <= 0)
        return ".";
    std::string path(buffer.data(), static_cast<size_t>(n));
    auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
}

std::string Paths::FindResourceDir(const std::string& fileName) {
    std::string programDir = ProgramDir();
    if (FileExists(programDir + "/" + fileName))
        return programDir;
    // Installed under a prefix: <prefix>/bin/mirodate finds <prefix>/share/mirodate,
    // wherever the prefix was moved to.
    const size_t slash = programDir.rfind('/');
    if (slash != std::string::npos) {
        const std::string shared = programDir.substr(0, slash) + "/share/mirodate";
        if (FileExists(shared + "/" + fileName))
            return shared;
    }
    std::string installed = MIRODATE_INSTALL_DATADIR;
    if (FileExists(installed + "/" + fileName))
        return installed;
    return programDir;
}

bool Paths::MakeDirs(const std::string& path, unsigned mode) {
    if (path.empty())
        return false;
    for (size_t pos = 1; pos <= path.size(); ++pos) {
        if (pos == path.size() || path[pos] == '/') {
            std::string part = path.substr(0, pos);
            if (mkdir(part.c_str(), mode) != 0 && errno != EEXIST)
                return false;
        }
    }
    struct stat st {};
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool Paths::FileExists(const std::string& path) {
    struct stat st {};
    return stat(path.c_str(), &st) == 0;
}

} // namespace mirodate
