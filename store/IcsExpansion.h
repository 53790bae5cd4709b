#pragma once
// The occurrences of one series within a window: the RRULE walked on the
// wall clock of the series' zone, the RDATEs added, the EXDATEs and the
// originals of overrides taken out and the overrides put in their place.
// What every expansion needs is read once, when the item is parsed.
#include "data/PimRecord.h"

#include <libical/ical.h>

#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace mirodate {

class IcsExpansion {
public:
    // Bounds on the work one expansion may do, so that a rule asking for
    // millions of occurrences costs no more than a long series.
    static constexpr int kMaxIterations = 200000;
    // A series every ten minutes fills a month with 4,464.
    static constexpr int kMaxOccurrences = 5000;

    // Rules that are not expanded: ones that never match and ones finer
    // than hourly with BY parts.
    static bool TooCostlyToExpand(const icalrecurrencetype& rule);

    // Reads the series of `master` (which, with `overrides`, belongs to the
    // caller and outlives this): its exclusions and RDATEs, and takes the
    // overrides read as records (`moved`). `wholeDays`: an Outlook all-day
    // event, whose times count as dates; `ruleUsable` false leaves the RRULE
    // out; `uid` names the series in warnings.
    void Prepare(icalcomponent* master, const std::vector<icalcomponent*>& overrides,
                 std::vector<PimRecord> moved, bool wholeDays, bool ruleUsable, std::string uid);

    // Occurrences of the series whose start lies in [from, before), appended
    // to `occurrences` sorted by start. `series` is the series' record for its
    // first occurrence and `longest` its longest occurrence in days.
    // `complete`, when given, is set false when a bound on work cut it short.
    void Expand(const PimRecord& series, double longest, double from, double before,
                std::vector<PimRecord>& occurrences, bool* complete = nullptr) const;

    // The overrides by start.
    const std::vector<PimRecord>& Moved() const { return moved_; }
    // The RDATEs by local start.
    const std::vector<std::pair<double, icaltimetype>>& ExtraDates() const { return extraDates_; }

private:
    // Occurrences the rule makes that do not happen as made: EXDATEs and the
    // originals of overrides. Sorted, so that a series with a hundred
    // thousand of them costs a search per occurrence, not a walk.
    struct Exclusions {
        std::vector<int> wholeDays;        // DATE exclusions, as yyyymmdd
        std::vector<int> days;             // the day of every exclusion, as yyyymmdd
        std::vector<std::time_t> instants; // DATE-TIME exclusions
        void Add(const icaltimetype& time);
        void Sort();
        bool Contains(const icaltimetype& occurrence) const;
    };

    icalcomponent* master_ = nullptr;
    bool wholeDays_ = false;
    bool ruleUsable_ = true;
    std::string uid_;
    Exclusions excluded_;
    std::vector<std::pair<double, icaltimetype>> extraDates_;
    std::vector<PimRecord> moved_;
};

} // namespace mirodate
