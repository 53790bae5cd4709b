#pragma once
// A program run in the background whose end the caller looks for: started
// with posix_spawnp in a process group of its own, its standard output and
// error going to one file (so a chatty child never blocks on a full pipe),
// its standard input from /dev/null. Poll() reaps it without waiting;
// Kill() ends the whole group. The destructor kills a child still running.
#include <string>
#include <sys/types.h>
#include <vector>

namespace mirodate {

class ChildProcess {
public:
    ChildProcess() = default;
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Starts argv[0] (looked up in PATH) with its output appended to
    // `outputPath`. False (and nothing runs) when it cannot be started.
    bool Start(const std::vector<std::string>& argv, const std::string& outputPath);
    // True once the child has ended (then ExitStatus() holds its status).
    bool Poll();
    bool IsRunning() const { return pid_ > 0; }
    // The exit status; 128 + the signal for a killed child; -1 before the end.
    int ExitStatus() const { return status_; }
    // SIGTERM to the group, then SIGKILL when it has not ended shortly after;
    // reaps it.
    void Kill();

    // Whether `program` is an executable file in one of PATH's folders.
    static bool IsOnPath(const std::string& program);

private:
    pid_t pid_ = -1;
    int status_ = -1;
};

} // namespace mirodate
