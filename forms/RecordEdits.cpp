#include "forms/RecordEdits.h"

#include "data/RecurrenceDescriber.h"
#include "lang/LanguageTable.h"

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

bool RecordEdits::RuleNotEditable(const PimRecord& record) {
    return record.isRecurring && (record.recurrence.RecurrenceType == RecurrencePattern::kNotRecurring ||
                                  record.recurrence.RuleFit != RecurrencePattern::kExact);
}

std::u16string RecordEdits::RecurrenceText(const PimRecord& record) {
    if (record.isRecurring && record.recurrence.RecurrenceType == RecurrencePattern::kNotRecurring)
        return Lang("editor.RuleKept");
    std::u16string text = RecurrenceDescriber::Describe(record.recurrence);
    if (RuleNotEditable(record))
        text += u" (" + Lang("editor.RuleKept") + u")";
    return text;
}

} // namespace mirodate
