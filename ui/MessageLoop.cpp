#include "ui/MessageLoop.h"

#include "platform/Clock.h"
#include "platform/Log.h"
#include "ui/Compositor.h"
#include "ui/InputRouter.h"
#include "ui/MessageQueue.h"
#include "ui/Messages.h"
#include "ui/TimerQueue.h"
#include "ui/WindowManager.h"

#include <algorithm>

namespace mirodate {

namespace {
// With a stop check installed, waits are cut into slices of this length.
constexpr int kStopPollMs = 100;
} // namespace

MessageLoop::MessageLoop(WindowManager& manager, MessageQueue& queue, InputRouter& input,
                         Compositor& compositor, TimerQueue& timers, Display& display)
    : manager_(manager), queue_(queue), input_(input), compositor_(compositor), timers_(timers),
      display_(display) {}

bool MessageLoop::NextMessage(MSG& msg, bool remove) {
    while (true) {
        std::function<void()> task;
        const MessageQueue::Taken taken = queue_.Take(msg, task, remove);
        if (taken == MessageQueue::Taken::Task) {
            task();
            continue;
        }
        if (taken == MessageQueue::Taken::Message) {
            if (msg.message != WM_QUIT)
                msg.time = manager_.GetTickCount();
            return true;
        }
        break;
    }
    if (input_.TakeInput(msg, remove))
        return true;
    if (HWND paint = compositor_.NextWindowToPaint()) {
        msg = MSG();
        msg.hwnd = paint;
        msg.message = WM_PAINT;
        msg.time = manager_.GetTickCount();
        return true;
    }
    compositor_.ComposeIfNeeded();
    return timers_.TakeDue(msg, manager_.GetTickCount());
}

bool MessageLoop::GetMessage(MSG& msg) {
    while (true) {
        if (NextMessage(msg, true))
            return msg.message != WM_QUIT;
        WaitForWork();
    }
}

INT_PTR MessageLoop::RunModal(HWND dialog, const std::function<std::optional<INT_PTR>()>& ended) {
    while (true) {
        if (!manager_.IsWindow(dialog))
            return IDCANCEL;
        if (const std::optional<INT_PTR> result = ended())
            return *result;
        MSG msg;
        if (!GetMessage(msg)) {
            // Leave the quit for the outer loop.
            manager_.PostQuitMessage(static_cast<int>(msg.wParam));
            return IDCANCEL;
        }
        manager_.TranslateMessage(&msg);
        manager_.DispatchMessage(&msg);
    }
}

void MessageLoop::WaitForWork() {
    if (stopCheck_ && !stopped_ && stopCheck_()) {
        stopped_ = true;
        manager_.PostQuitMessage(0);
        return;
    }
    const std::optional<std::uint32_t> next = timers_.TimeUntilNext(manager_.GetTickCount());
    if (idleHook_) {
        idleHook_(next);
        return;
    }
    // Headless on the virtual clock nothing can happen until time moves, so
    // it jumps to the next timer. A real screen waits for its user.
    if (Clock::Current().IsVirtual() && display_.IsHeadless()) {
        if (next) {
            Clock::Current().Advance(*next);
        } else {
            Log::Info("nothing is left to happen on the virtual clock; quitting");
            manager_.PostQuitMessage(0);
        }
        return;
    }
    WaitOnDisplay(next ? static_cast<int>(*next) : -1);
}

void MessageLoop::WaitOnDisplay(int timeoutMs) {
    if (stopCheck_)
        timeoutMs = timeoutMs < 0 ? kStopPollMs : std::min(timeoutMs, kStopPollMs);
    display_.WaitEvent(timeoutMs);
}

int MessageLoop::Run() {
    MSG msg;
    while (GetMessage(msg)) {
        manager_.TranslateMessage(&msg);
        manager_.DispatchMessage(&msg);
    }
    return static_cast<int>(msg.wParam);
}

bool MessageLoop::RunUntilIdle() {
    MSG msg;
    while (NextMessage(msg, true)) {
        if (msg.message == WM_QUIT) {
            manager_.PostQuitMessage(static_cast<int>(msg.wParam));
            return false;
        }
        manager_.TranslateMessage(&msg);
        manager_.DispatchMessage(&msg);
    }
    return true;
}

bool MessageLoop::RunFor(std::uint32_t milliseconds) {
    const std::uint32_t end = manager_.GetTickCount() + milliseconds;
    while (true) {
        if (!RunUntilIdle())
            return false;
        const std::int32_t remaining = static_cast<std::int32_t>(end - manager_.GetTickCount());
        if (remaining <= 0)
            return true;
        const std::optional<std::uint32_t> next = timers_.TimeUntilNext(manager_.GetTickCount());
        const std::uint32_t step = next
                                       ? std::min<std::uint32_t>(*next, static_cast<std::uint32_t>(remaining))
                                       : static_cast<std::uint32_t>(remaining);
        if (Clock::Current().IsVirtual())
            Clock::Current().Advance(step);
        else
            WaitOnDisplay(static_cast<int>(step));
    }
}

} // namespace mirodate
