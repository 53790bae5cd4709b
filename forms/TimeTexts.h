#pragma once
// How the time pickers write hours and minutes: two digits on a 24-hour
// clock, or the locale's own hour ("1 PM") where it writes times on a
// 12-hour clock.
#include <string>

namespace mirodate {

class TimeTexts {
public:
    // True when the locale's short time of 13:00 shows no "13".
    static bool Uses12HourClock();
    static std::u16string HourLabel(int hour);
    static std::u16string MinuteLabel(int minute);
    // The whole time as the locale writes it.
    static std::u16string TimeLabel(int hour, int minute);
};

} // namespace mirodate
