#pragma once
// Turns a recurrence record into one sentence of the user's language, such as
// "Every 2 weeks on Monday, Thursday (repeats 10 times)". All words come from
// the language table; day and month names and the date come from the locale.
#include "data/RecurrencePattern.h"

#include <string>

namespace mirodate {

class RecurrenceDescriber {
public:
    static std::u16string Describe(const RecurrencePattern& pattern);

    // The parts a description is made of.
    static std::u16string DaysText(std::int32_t dayOfWeekMask);
    static std::u16string InstanceText(std::int32_t instance);
    static std::u16string SuffixText(std::int32_t dayNumber);
    static std::u16string MonthName(std::int32_t month);
    static std::u16string EndText(std::int32_t occurrences, double patternEndDate);

private:
    static std::u16string PatternText(const RecurrencePattern& pattern);
    static std::u16string GenericText(const RecurrencePattern& pattern);
};

} // namespace mirodate
