#pragma once
// The changes the appointment and the task draft make to their record in
// the same way: the recurrence pattern, its end, and the reminder lead time.
#include "data/PimRecord.h"

#include <cstdint>

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
};

} // namespace mirodate
