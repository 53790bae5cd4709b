#include "platform/SpawnedPlatformServices.h"

#include "platform/Log.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>

extern char** environ;

namespace mirodate {

namespace {
// posix_spawn attributes, freed however the call ends.
class SpawnAttributes {
public:
    SpawnAttributes() { ok_ = posix_spawnattr_init(&attr_) == 0; }
    ~SpawnAttributes() {
        if (ok_)
            posix_spawnattr_destroy(&attr_);
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    bool Ok() const { return ok_; }
    posix_spawnattr_t* Get() { return &attr_; }

private:
    posix_spawnattr_t attr_{};
    bool ok_ = false;
};
} // namespace

namespace {
// Starts `argv` in a session of its own; the child's id, or 0.
pid_t Spawn(const std::vector<std::string>& argv) {
    if (argv.empty() || argv[0].empty())
        return 0;
    std::vector<char*> args;
    args.reserve(argv.size() + 1);
    for (const std::string& arg : argv)
        args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);

    SpawnAttributes attributes;
    if (!attributes.Ok())
        return 0;
    // The child starts with no signals blocked and default handlers, whatever
    // our threads have set up.
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(attributes.Get(), &none);
    posix_spawnattr_setsigdefault(attributes.Get(), &all);
    posix_spawnattr_setflags(attributes.Get(),
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    pid_t pid = 0;
    const int error = posix_spawnp(&pid, args[0], nullptr, attributes.Get(), args.data(), environ);
    if (error != 0) {
        Log::Warning("cannot start %s: %s", argv[0].c_str(), std::strerror(error));
        return 0;
    }
    return pid;
}

int WaitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
} // namespace

bool SpawnedPlatformServices::RunProgram(const std::vector<std::string>& argv) {
    const pid_t pid = Spawn(argv);
    if (pid == 0)
        return false;
    std::thread([pid] {
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
    }).detach();
    return true;
}

int SpawnedPlatformServices::RunProgramAndWait(const std::vector<std::string>& argv) {
    const pid_t pid = Spawn(argv);
    return pid == 0 ? -1 : WaitFor(pid);
}

} // namespace mirodate
