#include "platform/ChildProcess.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace mirodate {

namespace {
// How long a child gets to end after SIGTERM before it is killed outright.
constexpr auto kTermGrace = std::chrono::milliseconds(500);
constexpr auto kTermPoll = std::chrono::milliseconds(10);

int StatusOf(int raw) {
    if (WIFEXITED(raw))
        return WEXITSTATUS(raw);
    if (WIFSIGNALED(raw))
        return 128 + WTERMSIG(raw);
    return -1;
}
} // namespace

ChildProcess::~ChildProcess() {
    if (pid_ > 0)
        Kill();
}

bool ChildProcess::Start(const std::vector<std::string>& argv, const std::string& outputPath) {
    if (pid_ > 0 || argv.empty() || argv[0].empty())
        return false;
    const int out = open(outputPath.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (out < 0)
        return false;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    // A group of its own, so that Kill() reaches the helpers it starts too.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
    posix_spawnattr_setpgroup(&attributes, 0);
    std::vector<char*> args;
    for (const std::string& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    pid_t pid = -1;
    const int error = posix_spawnp(&pid, args[0], &actions, &attributes, args.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    close(out);
    if (error != 0)
        return false;
    pid_ = pid;
    status_ = -1;
    return true;
}

bool ChildProcess::Poll() {
    if (pid_ <= 0)
        return true;
    int raw = 0;
    const pid_t done = waitpid(pid_, &raw, WNOHANG);
    if (done == 0)
        return false;
    status_ = done == pid_ ? StatusOf(raw) : -1;
    pid_ = -1;
    return true;
}

void ChildProcess::Kill() {
    if (pid_ <= 0)
        return;
    kill(-pid_, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + kTermGrace;
    while (!Poll()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            kill(-pid_, SIGKILL);
            int raw = 0;
            if (waitpid(pid_, &raw, 0) == pid_)
                status_ = StatusOf(raw);
            pid_ = -1;
            return;
        }
        std::this_thread::sleep_for(kTermPoll);
    }
}

bool ChildProcess::IsOnPath(const std::string& program) {
    if (program.empty())
        return false;
    if (program.find('/') != std::string::npos)
        return access(program.c_str(), X_OK) == 0;
    const char* path = std::getenv("PATH");
    const std::string folders = path ? path : "/usr/local/bin:/usr/bin:/bin";
    std::size_t begin = 0;
    while (begin <= folders.size()) {
        std::size_t end = folders.find(':', begin);
        if (end == std::string::npos)
            end = folders.size();
        const std::string folder = end > begin ? folders.substr(begin, end - begin) : ".";
        const std::string candidate = folder + "/" + program;
        struct stat st {};
        if (stat(candidate.c_str(), &st) == 0 && S_ISREG(st.st_mode) && access(candidate.c_str(), X_OK) == 0)
            return true;
        begin = end + 1;
    }
    return false;
}

} // namespace mirodate
