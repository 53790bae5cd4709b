#pragma once
// Plays a parsed script into a headless display: whenever the window system
// is idle it takes the next action, so input arrives only after the previous
// input has been handled and painted. Waits advance a virtual clock from timer
// to timer, or pass in real time on the real clock.
#include "platform/HeadlessDisplay.h"
#include "ui/HeadlessScript.h"
#include "ui/WindowManager.h"

#include <optional>
#include <vector>

namespace mirodate {

class ScriptPlayer {
public:
    ScriptPlayer(WindowManager& windows, HeadlessDisplay& display, std::vector<ScriptAction> actions);
    // Installs itself as the window system's idle hook.
    void Attach();
    // The run's exit status: 0, or 1 when a screenshot could not be written.
    int ExitStatus() const { return status_; }
    bool Finished() const { return finished_; }

private:
    void OnIdle(std::optional<std::uint32_t> msUntilNextTimer);

    WindowManager& windows_;
    HeadlessDisplay& display_;
    std::vector<ScriptAction> actions_;
    size_t next_ = 0;
    bool waiting_ = false;
    std::uint32_t waitUntil_ = 0;
    bool finished_ = false;
    int status_ = 0;
};

} // namespace mirodate
