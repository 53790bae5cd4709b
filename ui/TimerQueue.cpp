#include "ui/TimerQueue.h"

#include "ui/Messages.h"

#include <algorithm>
#include <climits>

namespace mirodate {

namespace {
// The shortest timer period; shorter requests would spin the loop.
constexpr UINT kMinimumTimerPeriod = 10;
// Timers without a window get ids from here up, clear of the ids pages use.
constexpr UINT_PTR kFirstWindowlessTimerId = 0x7F00;
} // namespace

UINT_PTR TimerQueue::Set(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC proc, std::uint32_t now) {
    if (!window) {
        // A timer without a window gets an id of its own.
        static UINT_PTR nextId = kFirstWindowlessTimerId;
        id = ++nextId;
    }
    const UINT interval = std::max(milliseconds, kMinimumTimerPeriod);
    const std::uint32_t due = now + interval;
    for (Timer& timer : timers_) {
        if (timer.window == window && timer.id == id) {
            timer.interval = interval;
            timer.due = due;
            timer.proc = proc;
            timer.sequence = ++sequence_;
            return window ? 1 : id;
        }
    }
    timers_.push_back(Timer{window, id, interval, due, ++sequence_, proc});
    return window ? 1 : id;
}

bool TimerQueue::Kill(HWND window, UINT_PTR id) {
    auto it = std::find_if(timers_.begin(), timers_.end(),
                           [&](const Timer& t) { return t.window == window && t.id == id; });
    if (it == timers_.end())
        return false;
    timers_.erase(it);
    return true;
}

void TimerQueue::KillAllOf(HWND window) {
    std::erase_if(timers_, [&](const Timer& t) { return t.window == window; });
}

std::optional<std::uint32_t> TimerQueue::TimeUntilNext(std::uint32_t now) const {
    if (timers_.empty())
        return std::nullopt;
    std::int32_t best = INT32_MAX;
    for (const Timer& timer : timers_)
        best = std::min(best, static_cast<std::int32_t>(timer.due - now));
    return static_cast<std::uint32_t>(std::max(0, best));
}

bool TimerQueue::TakeDue(MSG& msg, std::uint32_t now) {
    Timer* chosen = nullptr;
    for (Timer& timer : timers_) {
        if (static_cast<std::int32_t>(now - timer.due) < 0)
            continue;
        if (!chosen || static_cast<std::int32_t>(timer.due - chosen->due) < 0 ||
            (timer.due == chosen->due && timer.sequence < chosen->sequence))
            chosen = &timer;
    }
    if (!chosen)
        return false;
    msg = MSG();
    msg.hwnd = chosen->window;
    msg.message = WM_TIMER;
    msg.wParam = chosen->id;
    msg.lParam = reinterpret_cast<LPARAM>(chosen->proc);
    msg.time = now;
    chosen->due = now + chosen->interval;
    return true;
}

} // namespace mirodate
