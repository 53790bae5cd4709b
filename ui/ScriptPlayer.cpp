#include "ui/ScriptPlayer.h"

#include "platform/Clock.h"
#include "platform/Log.h"

#include <algorithm>
#include <cstdio>

namespace mirodate {

ScriptPlayer::ScriptPlayer(WindowManager& windows, HeadlessDisplay& display,
                           std::vector<ScriptAction> actions)
    : windows_(windows), display_(display), actions_(std::move(actions)) {}

void ScriptPlayer::Attach() {
    windows_.SetIdleHook([this](std::optional<std::uint32_t> next) { OnIdle(next); });
}

void ScriptPlayer::OnIdle(std::optional<std::uint32_t> msUntilNextTimer) {
    Clock& clock = Clock::Current();
    if (waiting_) {
        const std::int32_t remaining = static_cast<std::int32_t>(waitUntil_ - clock.GetTickCount());
        if (remaining > 0) {
            const std::uint32_t step =
                std::min<std::uint32_t>(msUntilNextTimer.value_or(static_cast<std::uint32_t>(remaining)),
                                        static_cast<std::uint32_t>(remaining));
            if (clock.IsVirtual())
                clock.Advance(std::max<std::uint32_t>(step, 1));
            else
                windows_.WaitOnDisplay(static_cast<int>(step));
            return;
        }
        waiting_ = false;
    }
    while (next_ < actions_.size()) {
        const ScriptAction& action = actions_[next_++];
        switch (action.kind) {
        case ScriptAction::Kind::Input:
            display_.Inject(action.event);
            return;
        case ScriptAction::Kind::Wait:
            waiting_ = true;
            waitUntil_ = clock.GetTickCount() + action.milliseconds;
            return;
        case ScriptAction::Kind::Screenshot:
            if (!windows_.WriteScreenshot(action.path)) {
                std::fprintf(stderr, "mirodate: script line %d: cannot write %s\n", action.line,
                             action.path.c_str());
                status_ = 1;
                finished_ = true;
                windows_.PostQuitMessage(status_);
                return;
            }
            Log::Info("screenshot %s", action.path.c_str());
            break;
        case ScriptAction::Kind::Quit:
            finished_ = true;
            windows_.PostQuitMessage(0);
            return;
        }
    }
    // The end of the script ends the run.
    finished_ = true;
    windows_.PostQuitMessage(status_);
}

} // namespace mirodate
