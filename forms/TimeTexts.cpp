#include "forms/TimeTexts.h"

#include "platform/Locale.h"
#include "platform/Types.h"

namespace mirodate {

namespace {
std::u16string TwoDigits(int value) {
    return std::u16string{static_cast<char16_t>(u'0' + value / 10 % 10),
                          static_cast<char16_t>(u'0' + value % 10)};
}

SYSTEMTIME At(int hour, int minute) {
    SYSTEMTIME time{};
    time.wYear = 2000;
    time.wMonth = 1;
    time.wDay = 1;
    time.wHour = static_cast<std::uint16_t>(hour);
    time.wMinute = static_cast<std::uint16_t>(minute);
    return time;
}
} // namespace

bool TimeTexts::Uses12HourClock() {
    return Locale::FormatShortTime(At(13, 0)).find(u"13") == std::u16string::npos;
}

std::u16string TimeTexts::HourLabel(int hour) {
    if (!Uses12HourClock())
        return TwoDigits(hour);
    // The locale's time of the full hour without its minutes: "1:00 PM" reads "1 PM".
    std::u16string text = Locale::FormatShortTime(At(hour, 0));
    for (const char16_t* minutes : {u":00", u".00"}) {
        const size_t at = text.find(minutes);
        if (at != std::u16string::npos)
            return text.erase(at, 3);
    }
    return text;
}

std::u16string TimeTexts::MinuteLabel(int minute) {
    return TwoDigits(minute);
}

std::u16string TimeTexts::TimeLabel(int hour, int minute) {
    return Locale::FormatShortTime(At(hour, minute));
}

} // namespace mirodate
