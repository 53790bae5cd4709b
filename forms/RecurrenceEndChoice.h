#pragma once
// The end-of-recurrence entries the editors offer beside the pattern
// editor ("SetOccurrences", "SetPatternEndDate", "SetNoEndDate"): asks for
// the count or the date the entry needs.
#include "data/RecurrencePattern.h"
#include "ui/WinTypes.h"

#include <optional>
#include <string_view>

namespace mirodate {

class RecurrenceEndChoice {
public:
    // Counts a recurrence can be ended after.
    static constexpr int kMaxOccurrences = 999;

    struct End {
        int count = 0;     // after this many times; 0: not by a count
        double date = 0.0; // on this day (DATE); 0.0: no end date
    };
    // What the entry `key` sets, or nothing when the user cancelled or gave
    // a count or date that is refused (with a message). `seriesStart` is the
    // day the date picker offers when the pattern has no end date yet.
    static std::optional<End> Ask(HWND owner, std::string_view key, const RecurrencePattern& pattern,
                                  double seriesStart);
};

} // namespace mirodate
