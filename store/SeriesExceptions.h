#pragma once
// The occurrences of a series that its file changes (EXDATEs and overrides
// with a RECURRENCE-ID) measured against a recurrence record: which of them
// still fall on the record's days and which a new pattern would leave
// pointing at nothing. The recurrence editor asks before such changes are
// lost; the writer drops exactly those.
#include "data/RecurrencePattern.h"
#include "store/IcalHandle.h"

#include <string>
#include <string_view>
#include <vector>

namespace mirodate {

class SeriesExceptions {
public:
    // Steps of the rule walked to find the days of the exceptions; beyond
    // them an exception is kept.
    static constexpr int kMaxSteps = 200000;

    // The original starts (local DATEs, sorted) of the occurrences the main
    // component excludes or an override replaces.
    static std::vector<double> Read(std::string_view ics);
    // The same from the item's file; empty when it cannot be read.
    static std::vector<double> ReadFile(const std::string& path);

    // Those of `exceptions` whose day is no day of `pattern` for a series
    // first starting at `start` (local DATE); all of them when the pattern
    // does not recur.
    static std::vector<double> Dropped(const RecurrencePattern& pattern, double start,
                                       const std::vector<double>& exceptions);

    // Removes the EXDATEs of `master` and the overrides in `calendar` that
    // Dropped names for the new pattern; the number removed.
    static int Drop(icalcomponent* calendar, icalcomponent* master, const RecurrencePattern& pattern,
                    double start);

    // The main component's RRULE content line as the file has it (unfolded,
    // without its line break); empty when there is none.
    static std::string RawRuleLine(std::string_view ics);
};

} // namespace mirodate
