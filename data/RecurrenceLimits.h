#pragma once
// Keeps recurrence records sane before they are shown or written: fields in
// range for the type, the ones a type leaves open taken from the series'
// start, and the record a type change starts from.
#include "data/DateTime.h"
#include "data/RecurrencePattern.h"

namespace mirodate {

class RecurrenceLimits {
public:
    // Beyond these no calendar means what it says (every 100,000 days).
    static constexpr int kMaxInterval = 999;
    static constexpr int kMaxOccurrences = 999;
    static constexpr int kLastInstance = 5;
    static constexpr int kAllDays = 0x7F;

    // The record with every field its type uses in range: the interval and
    // count clamped, an empty day mask, a day of the month, month or
    // instance out of range replaced by the start's, and an end date before
    // the start moved to the start's day. Not recurring stays as it is.
    static RecurrencePattern Normalise(const RecurrencePattern& pattern, const DateTime& start);
    // True when the record ends on a day before the start's.
    static bool EndsBeforeStart(const RecurrencePattern& pattern, const DateTime& start);
    // The record of `type` that the user starts from when choosing it: the
    // interval and end of `current` kept, the days taken from the start.
    static RecurrencePattern ForType(int type, const RecurrencePattern& current, const DateTime& start);
    // The instance (1..4, or 5 for the last) of the start's weekday in its month.
    static int InstanceOf(const DateTime& day);
};

} // namespace mirodate
