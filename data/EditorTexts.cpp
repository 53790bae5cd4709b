#include "data/EditorTexts.h"

#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"

#include <cmath>
#include <cstdio>

namespace mirodate {

namespace {
constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kSecondsPerHour = 3600;
// Below this many days a span is told in days, except exactly one week.
constexpr std::int64_t kDaysBeforeWeeks = 8;

std::u16string Part(std::int64_t count, const std::u16string& singular, const std::u16string& plural) {
    return ToU16(static_cast<long>(count)) + u" " + (count == 1 ? singular : plural);
}

std::u16string KeyWithNumber(const char* pattern, int value) {
    char key[64];
    std::snprintf(key, sizeof key, pattern, value);
    return Lang(key);
}
} // namespace

EditorTexts::UnitTexts EditorTexts::LanguageUnits() {
    return {Lang("Minute"), Lang("Minutes"), Lang("Hour"), Lang("Hours"),
            Lang("Day"),    Lang("Days"),    Lang("Week"), Lang("Weeks")};
}

std::u16string EditorTexts::FormatTimeSpan(std::int64_t minutes, const UnitTexts& units) {
    const std::int64_t seconds = minutes * 60;
    std::int64_t days = seconds / kSecondsPerDay;
    const std::int64_t hours = (seconds % kSecondsPerDay) / kSecondsPerHour;
    const std::int64_t mins = (seconds % kSecondsPerDay % kSecondsPerHour) / 60;
    std::int64_t weeks = 0;
    if (days < kDaysBeforeWeeks) {
        if (days == 7) {
            weeks = 1;
            days = 0;
        }
    } else {
        weeks = days / 7;
        days %= 7;
    }
    std::u16string text;
    auto add = [&](std::int64_t count, int unit) {
        if (count == 0)
            return;
        if (!text.empty())
            text += u", ";
        text += Part(count, units[unit], units[unit + 1]);
    };
    add(weeks, 6);
    add(days, 4);
    add(hours, 2);
    add(mins, 0);
    return text;
}

std::u16string EditorTexts::FormatTimeSpan(std::int64_t minutes) {
    return FormatTimeSpan(minutes, LanguageUnits());
}

std::u16string EditorTexts::ReminderText(bool reminderSet, std::int64_t leadMinutes) {
    if (!reminderSet)
        return u"-";
    if (leadMinutes == 0)
        return Lang("Immediately");
    return FormatTimeSpan(leadMinutes) + u" " + Lang("before");
}

bool EditorTexts::LeadTimeForMoment(double start, double chosen, std::int64_t& leadMinutes) {
    // Both moments are whole milliseconds on the platform; compare them so,
    // free of the double's rounding, then truncate to minutes.
    const std::int64_t startMs = std::llround(start * kSecondsPerDay * 1000.0);
    const std::int64_t chosenMs = std::llround(chosen * kSecondsPerDay * 1000.0);
    if (chosenMs > startMs)
        return false;
    leadMinutes = (startMs - chosenMs) / 1000 / 60;
    return true;
}

std::vector<const char*> EditorTexts::ReminderMenuKeys(bool reminderSet) {
    if (reminderSet)
        return {"change_datetime", "change_span", "unset"};
    return {"set_datetime", "set_span"};
}

std::u16string EditorTexts::BusyStatusLabel(int busyStatus) {
    return KeyWithNumber("BusyStatus.%i", busyStatus);
}

std::u16string EditorTexts::SensitivityLabel(int sensitivity) {
    return KeyWithNumber("Sensitivity.%i", sensitivity);
}

std::u16string EditorTexts::PriorityLabel(int importance) {
    return KeyWithNumber("Priority_%i", importance);
}

std::vector<const char*> EditorTexts::RecurrenceEndKeys() {
    return {"SetOccurrences", "SetPatternEndDate", "SetNoEndDate"};
}

} // namespace mirodate
