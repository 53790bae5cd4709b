#pragma once
// The result of one search: a growable array of integers.
//   entry 0      matched flag (greater than 0 when matched)
//   entry 1      highest group number
//   entry 2+2g   start of group g, entry 3+2g its end (group 0 is the whole match)
// Positions are indices into the text in UTF-16 code units. An entry that was
// never written reads as -1.
#include <cstdint>
#include <vector>

namespace mirodate {

class RegexMatch {
public:
    int Get(int index) const;
    void Set(int index, int value);
    int Size() const { return static_cast<int>(values_.size()); }

    bool IsMatched() const { return Get(0) > 0; }
    int MaxGroup() const { return Get(1); }
    int GroupStart(int group) const { return group < 0 ? -1 : Get(2 + 2 * group); }
    int GroupEnd(int group) const { return group < 0 ? -1 : Get(3 + 2 * group); }

    // Work spent by the search that made this result, in matcher steps, and
    // whether it was cut off by the step budget (it then reads as no match).
    std::int64_t Steps() const { return steps_; }
    bool BudgetExceeded() const { return budgetExceeded_; }
    void SetWork(std::int64_t steps, bool budgetExceeded);

private:
    std::vector<int> values_;
    std::int64_t steps_ = 0;
    bool budgetExceeded_ = false;
};

} // namespace mirodate
