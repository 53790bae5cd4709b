#pragma once
// What the appointment and the task draft do with their record in the same
// way: change the recurrence pattern, its end and the reminder lead time,
// and tell how the recurrence row reads.
#include "data/PimRecord.h"

#include <cstdint>
#include <string>

namespace mirodate {

class RecordEdits {
public:
    // Takes `pattern`; the record repeats unless the pattern says it does not.
    static void SetRecurrence(PimRecord& record, const RecurrencePattern& pattern);
    // Ends the recurrence after `count` times (count > 0), on `date` (a
    // DATE; count 0), or never (both 0).
    static void SetRecurrenceEnd(PimRecord& record, int count, double date);
    // Sets or clears the reminder; the lead time is kept within 0..INT_MAX minutes.
    static void SetReminder(PimRecord& record, bool set, std::int64_t leadMinutes);
    // A rule the pattern cannot say (or says only roughly) is kept as it is.
    static bool RuleNotEditable(const PimRecord& record);
    // The recurrence row's value: the pattern in words, or that the rule is kept.
    static std::u16string RecurrenceText(const PimRecord& record);
};

} // namespace mirodate
