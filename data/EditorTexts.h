#pragma once
// The wording rules the appointment and task editors share: time spans,
// the reminder row, the reminder chosen as a moment, and the labels of the
// busy-status, sensitivity, priority and end-of-recurrence choices.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

class EditorTexts {
public:
    // Unit words in the order minute, minutes, hour, hours, day, days, week, weeks.
    using UnitTexts = std::array<std::u16string, 8>;
    static UnitTexts LanguageUnits();

    // "1 week, 1 day", "1 day, 1 hour", "45 minutes"; empty for 0.
    static std::u16string FormatTimeSpan(std::int64_t minutes, const UnitTexts& units);
    static std::u16string FormatTimeSpan(std::int64_t minutes);

    // "-" without a reminder, "Immediately" for a lead time of 0, else the span and "before".
    static std::u16string ReminderText(bool reminderSet, std::int64_t leadMinutes);

    // The lead time for a reminder at `chosen` (both DATE values): whole
    // minutes before `start`, truncated. False when the moment lies after the
    // start: the caller shows "ReminderInvalid" and keeps the reminder as it was.
    static bool LeadTimeForMoment(double start, double chosen, std::int64_t& leadMinutes);

    // The reminder menu's entries for the current state (keys, in order).
    static std::vector<const char*> ReminderMenuKeys(bool reminderSet);

    // Labels of the choice menus: values 0..3.
    static std::u16string BusyStatusLabel(int busyStatus);
    static std::u16string SensitivityLabel(int sensitivity);
    // A task's priority: importance 0 low, 1 normal, 2 high.
    static std::u16string PriorityLabel(int importance);
    // "SetOccurrences", "SetPatternEndDate", "SetNoEndDate", in this order.
    static std::vector<const char*> RecurrenceEndKeys();
};

} // namespace mirodate
