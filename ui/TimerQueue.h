#pragma once
// The window system's timers: each due time, period and order of setting.
// A due timer is handed out as a WM_TIMER message and rescheduled one period
// after the moment it was taken; among timers due together the earliest due,
// then the earliest set, goes first. Times are the clock's tick counts.
#include "ui/WinTypes.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace mirodate {

class TimerQueue {
public:
    // Sets or resets the timer (window, id); returns what SetTimer returns: 1
    // for a window's timer, the new id of a timer without a window.
    UINT_PTR Set(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC proc, std::uint32_t now);
    bool Kill(HWND window, UINT_PTR id);
    void KillAllOf(HWND window);
    std::optional<std::uint32_t> TimeUntilNext(std::uint32_t now) const;
    // Fills `msg` with the WM_TIMER of the first due timer and reschedules it.
    bool TakeDue(MSG& msg, std::uint32_t now);

private:
    struct Timer {
        HWND window;
        UINT_PTR id;
        UINT interval;
        std::uint32_t due;
        std::uint64_t sequence;
        TIMERPROC proc;
    };
    std::vector<Timer> timers_;
    std::uint64_t sequence_ = 0;
};

} // namespace mirodate
