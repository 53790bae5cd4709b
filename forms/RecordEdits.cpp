#include "forms/RecordEdits.h"

#include <algorithm>
#include <limits>

namespace mirodate {

void RecordEdits::SetRecurrence(PimRecord& record, const RecurrencePattern& pattern) {
    record.recurrence = pattern;
    record.isRecurring = pattern.RecurrenceType != RecurrencePattern::kNotRecurring;
}

void RecordEdits::SetRecurrenceEnd(PimRecord& record, int count, double date) {
    RecurrencePattern& p = record.recurrence;
    p.Occurrences = std::max(0, count);
    p.PatternEndDate = count > 0 ? 0.0 : date;
    p.NoEndDate = count <= 0 && date == 0.0;
}

void RecordEdits::SetReminder(PimRecord& record, bool set, std::int64_t leadMinutes) {
    record.reminderSet = set;
    record.reminderMinutes =
        set ? static_cast<int>(std::clamp<std::int64_t>(leadMinutes, 0, std::numeric_limits<int>::max())) : 0;
}

} // namespace mirodate
