#pragma once
// One run of the synchroniser (vdirsyncer) over the store, in the
// background: the window polls it on a timer and learns how it ended.
// "vdirsyncer sync" runs first; when vdirsyncer answers that the pair's
// collections were never discovered, "vdirsyncer discover" runs once and
// the sync again. Past the time limit the run is killed. Its output is
// kept in a file so that a failure can be shown with its last lines.
#include "platform/ChildProcess.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

class SyncRunner {
public:
    static constexpr const char* kProgram = "vdirsyncer";
    // Default time limit of a whole run (discovery and sync together).
    static constexpr std::uint32_t kDefaultTimeLimitMs = 120000;
    // Lines of the synchroniser's output a failure shows.
    static constexpr int kShownLines = 6;
    // More than this of its output is never read back.
    static constexpr std::int64_t kMaxOutputRead = 64 * 1024;

    enum class State { Idle, Running, Succeeded, Failed, TimedOut, NotStarted };

    SyncRunner();
    ~SyncRunner();
    SyncRunner(const SyncRunner&) = delete;
    SyncRunner& operator=(const SyncRunner&) = delete;

    // The synchroniser's configuration that names the vdir at `storeRoot`
    // (the root or one of its folders as a storage's path), or "".
    // Looked for in $VDIRSYNCER_CONFIG, ~/.vdirsyncer/config and
    // $XDG_CONFIG_HOME/vdirsyncer/config, in vdirsyncer's own order.
    static std::string FindConfig(const std::string& storeRoot);
    // vdirsyncer on PATH and a configuration for the store.
    static bool IsAvailable(const std::string& storeRoot);

    void SetTimeLimit(std::uint32_t milliseconds) { timeLimitMs_ = milliseconds; }
    // Starts a run at tick `now`; false when one runs or it cannot start.
    bool Start(std::uint32_t now);
    // Looks at the run at tick `now`: starts its next step, kills it past
    // the time limit, and returns the state (Running until it has ended).
    State Poll(std::uint32_t now);
    bool IsRunning() const { return state_ == State::Running; }
    State GetState() const { return state_; }
    // The last `count` non-empty lines of the run's output.
    std::vector<std::string> LastLines(int count = kShownLines) const;
    std::uint32_t TimeLimit() const { return timeLimitMs_; }

private:
    bool StartStep(const char* command);
    std::string ReadOutput() const;

    ChildProcess child_;
    State state_ = State::Idle;
    std::string outputPath_;
    std::uint32_t startTick_ = 0;
    std::uint32_t timeLimitMs_ = kDefaultTimeLimitMs;
    bool discovering_ = false;
    bool discovered_ = false;
};

} // namespace mirodate
