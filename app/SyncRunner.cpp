#include "app/SyncRunner.h"

#include "platform/Log.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace mirodate {

namespace {
// A configuration larger than this is no configuration of ours.
constexpr std::uintmax_t kMaxConfigBytes = 1024 * 1024;
// vdirsyncer's answer when a pair's collections were never discovered.
constexpr const char* kDiscoverHint = "vdirsyncer discover";

std::string Env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string Trim(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string::npos)
        return "";
    return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

// ~ and a trailing slash do not make a different folder.
std::filesystem::path Normal(std::string path) {
    if (path.rfind("~/", 0) == 0 || path == "~")
        path = Env("HOME") + path.substr(1);
    std::error_code error;
    std::filesystem::path normal = std::filesystem::weakly_canonical(path, error);
    if (error)
        normal = std::filesystem::path(path).lexically_normal();
    std::string text = normal.string();
    while (text.size() > 1 && text.back() == '/')
        text.pop_back();
    return text;
}

// The values of `path = "..."` lines of the configuration.
std::vector<std::string> StoragePaths(const std::string& configPath) {
    std::vector<std::string> paths;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(configPath, error);
    if (error || size > kMaxConfigBytes)
        return paths;
    std::ifstream file(configPath);
    std::string line;
    while (std::getline(file, line)) {
        line = Trim(line);
        if (line.rfind("path", 0) != 0)
            continue;
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos || Trim(line.substr(4, equals - 4)) != "")
            continue;
        std::string value = Trim(line.substr(equals + 1));
        if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
            value = value.substr(1, value.size() - 2);
        if (!value.empty())
            paths.push_back(value);
    }
    return paths;
}
} // namespace

SyncRunner::SyncRunner() = default;

SyncRunner::~SyncRunner() {
    child_.Kill();
    if (!outputPath_.empty())
        unlink(outputPath_.c_str());
}

std::string SyncRunner::FindConfig(const std::string& storeRoot) {
    std::string config = Env("VDIRSYNCER_CONFIG");
    if (config.empty()) {
        const std::string home = Env("HOME");
        const std::string legacy = home + "/.vdirsyncer/config";
        std::string xdg = Env("XDG_CONFIG_HOME");
        if (xdg.empty())
            xdg = home + "/.config";
        config = !home.empty() && std::filesystem::exists(legacy) ? legacy : xdg + "/vdirsyncer/config";
    }
    if (!std::filesystem::is_regular_file(config))
        return "";
    const std::filesystem::path root = Normal(storeRoot);
    for (const std::string& path : StoragePaths(config)) {
        const std::filesystem::path storage = Normal(path);
        if (storage == root || storage.parent_path() == root)
            return config;
    }
    return "";
}

bool SyncRunner::IsAvailable(const std::string& storeRoot) {
    return ChildProcess::IsOnPath(kProgram) && !FindConfig(storeRoot).empty();
}

bool SyncRunner::StartStep(const char* command) {
    if (!child_.Start({kProgram, command}, outputPath_)) {
        Log::Error("sync: cannot start %s %s", kProgram, command);
        return false;
    }
    return true;
}

bool SyncRunner::Start(std::uint32_t now) {
    if (state_ == State::Running)
        return false;
    if (outputPath_.empty()) {
        std::string dir = Env("XDG_RUNTIME_DIR");
        if (dir.empty() || access(dir.c_str(), W_OK) != 0)
            dir = "/tmp";
        std::string pattern = dir + "/mirodate-sync-XXXXXX";
        const int fd = mkstemp(pattern.data());
        if (fd < 0) {
            state_ = State::NotStarted;
            return false;
        }
        close(fd);
        outputPath_ = pattern;
    } else {
        std::ofstream(outputPath_, std::ios::trunc);
    }
    discovering_ = false;
    discovered_ = false;
    startTick_ = now;
    if (!StartStep("sync")) {
        state_ = State::NotStarted;
        return false;
    }
    state_ = State::Running;
    return true;
}

SyncRunner::State SyncRunner::Poll(std::uint32_t now) {
    if (state_ != State::Running)
        return state_;
    if (!child_.Poll()) {
        if (now - startTick_ >= timeLimitMs_) {
            child_.Kill();
            Log::Warning("sync: %s ended after %u ms", kProgram, timeLimitMs_);
            state_ = State::TimedOut;
        }
        return state_;
    }
    const int status = child_.ExitStatus();
    if (discovering_) {
        // Discovery done (or failed): the sync it was needed for, once.
        discovering_ = false;
        if (status == 0 && StartStep("sync"))
            return state_;
        state_ = State::Failed;
        return state_;
    }
    if (status != 0 && !discovered_ && ReadOutput().find(kDiscoverHint) != std::string::npos) {
        discovered_ = discovering_ = true;
        if (StartStep("discover"))
            return state_;
        state_ = State::Failed;
        return state_;
    }
    state_ = status == 0 ? State::Succeeded : State::Failed;
    if (state_ == State::Failed)
        Log::Warning("sync: %s exited with %d", kProgram, status);
    return state_;
}

std::string SyncRunner::ReadOutput() const {
    std::ifstream file(outputPath_, std::ios::binary);
    if (!file)
        return "";
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    const std::streamoff start = size > kMaxOutputRead ? size - kMaxOutputRead : 0;
    file.seekg(start);
    std::string text(static_cast<std::size_t>(size - start), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

std::vector<std::string> SyncRunner::LastLines(int count) const {
    const std::string output = ReadOutput();
    std::vector<std::string> lines;
    std::size_t end = output.size();
    while (end > 0 && static_cast<int>(lines.size()) < count) {
        const std::size_t newline = output.rfind('\n', end - 1);
        const std::size_t begin = newline == std::string::npos ? 0 : newline + 1;
        const std::string line = Trim(output.substr(begin, end - begin));
        if (!line.empty())
            lines.insert(lines.begin(), line);
        if (newline == std::string::npos)
            break;
        end = newline;
    }
    return lines;
}

} // namespace mirodate
