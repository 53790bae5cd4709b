#pragma once
// One .ics file read with libical: the event or task it holds (the first
// VEVENT or VTODO and the overrides with its UID), as a record for its first
// occurrence, and the occurrences of a series within a window.
#include "data/PimRecord.h"
#include "store/IcalHandle.h"
#include "store/IcsExpansion.h"
#include "store/ZoneCache.h"

#include <ctime>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mirodate {

class IcsItem {
public:
    enum class Kind { None, Event, Task };

    // Bounds on the work one expansion may do (see IcsExpansion).
    static constexpr int kMaxIterations = IcsExpansion::kMaxIterations;
    static constexpr int kMaxOccurrences = IcsExpansion::kMaxOccurrences;

    // False (with the reason) when the text holds no usable event or task.
    bool Parse(std::string_view text, std::string& problem);

    Kind GetKind() const { return kind_; }
    const std::string& GetUid() const { return uid_; }
    // The item itself: a series as its first occurrence with its pattern.
    const PimRecord& GetRecord() const { return record_; }
    bool IsSeries() const { return series_; }
    // Components with another UID were left out.
    bool HasUnrelatedComponents() const { return unrelated_; }
    // Last moment any occurrence can end (kNoDate when the series is open).
    double GetSeriesEnd() const { return seriesEnd_; }
    // Longest occurrence, in days.
    double GetLongestDuration() const { return longest_; }

    // Occurrences whose start lies in [from, before) (local DATEs), sorted by
    // start, moved and cancelled occurrences applied. A plain item gives
    // itself when it starts in the window. `complete`, when given, tells
    // whether the expansion stayed within its bounds on work (false: the
    // rest of a rule with too many occurrences was left out).
    void Expand(double from, double before, std::vector<PimRecord>& occurrences,
                bool* complete = nullptr) const;
    // The occurrences that carry texts of their own (moved or retitled), as
    // written, so that a text search can pass over a series none of whose
    // texts match without expanding it.
    std::vector<PimRecord> GetOverrideRecords() const;

private:
    bool ReadComponent(icalcomponent* component, PimRecord& record, std::string& problem) const;
    // Reads the overrides and hands the series to the expansion, once, at parse time.
    void PrepareSeries();

    IcalComponentPtr calendar_;
    // After calendar_: released before the tree is freed.
    ZoneCache::Aliases zones_;
    icalcomponent* master_ = nullptr;
    std::vector<icalcomponent*> overrides_;
    Kind kind_ = Kind::None;
    std::string uid_;
    PimRecord record_;
    bool series_ = false;
    bool wholeDays_ = false; // Outlook's midnight-to-midnight all-day event
    bool ruleUsable_ = true; // false: the RRULE is too costly to expand
    bool unrelated_ = false;
    double seriesEnd_ = kNoDate;
    double longest_ = 0.0;
    IcsExpansion expansion_; // the series' occurrences, read at parse time
};

} // namespace mirodate
