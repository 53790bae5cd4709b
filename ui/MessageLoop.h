#pragma once
// The message loop and its modal forms: which message comes next (posted
// messages and tasks, then input, then paints, then due timers, composing the
// frame once nothing but timers is left), what happens when nothing is ready
// (the idle hook, a jump of the virtual clock, or a wait on the display), and
// the loops built on that: GetMessage, the loop of a modal dialog, Run,
// RunUntilIdle and RunFor.
#include "platform/Display.h"
#include "ui/WinTypes.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace mirodate {

class Compositor;
class InputRouter;
class MessageQueue;
class TimerQueue;
class WindowManager;

class MessageLoop {
public:
    using IdleHook = std::function<void(std::optional<std::uint32_t> msUntilNextTimer)>;

    MessageLoop(WindowManager& manager, MessageQueue& queue, InputRouter& input, Compositor& compositor,
                TimerQueue& timers, Display& display);

    bool GetMessage(MSG& msg);
    bool PeekMessage(MSG& msg, bool remove) { return NextMessage(msg, remove); }
    // Pumps messages until `ended` gives the dialog's result or the dialog is
    // gone (IDCANCEL). A quit ends the loop and stays pending for the outer loop.
    INT_PTR RunModal(HWND dialog, const std::function<std::optional<INT_PTR>()>& ended);
    int Run();
    bool RunUntilIdle();
    bool RunFor(std::uint32_t milliseconds);

    void SetIdleHook(IdleHook hook) { idleHook_ = std::move(hook); }
    void SetStopCheck(std::function<bool()> check) { stopCheck_ = std::move(check); }
    void WaitOnDisplay(int timeoutMs);

private:
    bool NextMessage(MSG& msg, bool remove);
    void WaitForWork();

    WindowManager& manager_;
    MessageQueue& queue_;
    InputRouter& input_;
    Compositor& compositor_;
    TimerQueue& timers_;
    Display& display_;
    IdleHook idleHook_;
    std::function<bool()> stopCheck_;
    bool stopped_ = false;
};

} // namespace mirodate
