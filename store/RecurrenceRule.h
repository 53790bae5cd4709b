#pragma once
// Between an RRULE and the program's recurrence record. Rules that the record
// cannot say exactly give the nearest record, marked by RuleFit.
#include "data/RecurrencePattern.h"

#include <string>

namespace mirodate {

class RecurrenceRule {
public:
    // `start` is the series' first start (DATE); it supplies the day, weekday
    // and month a rule leaves out. `until` is the rule's UNTIL as a local DATE
    // (0.0 when it has none). False for text that is no rule.
    static bool ToPattern(const std::string& rrule, double start, double until, RecurrencePattern& pattern);
    // The RRULE text of a record; empty for "not recurring". A timed series
    // gets its UNTIL in UTC (the end date's last second), an all-day one a date.
    static std::string FromPattern(const RecurrencePattern& pattern, bool allDay);
};

} // namespace mirodate
