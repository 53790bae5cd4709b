#pragma once
// A compiled regular expression over UTF-16 text, and its search.
//
//   RegexPattern pattern;
//   if (pattern.Compile(u"(\\d+)-(\\d+)")) {
//       RegexMatch match = pattern.Search(text);      // from the start
//       ... pattern.Search(text, match.GroupEnd(0))    // the next one
//   }
//
// The engine backtracks, and the texts it sees are typed by users, so every
// search runs on a step budget: StepBudget() steps (one step is one element
// entered or backtracked into, or one character scanned by a run). A search
// that spends it ends with "no match"; the result says so and the pattern
// counts it. The budget grows with the text so that ordinary linear-time
// scans of long texts are never cut, while the super-linear blow-up of
// catastrophic backtracking is stopped within milliseconds on a note.
#include "regex/RegexCharSet.h"
#include "regex/RegexFlags.h"
#include "regex/RegexMatch.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace mirodate {

class RegexElement;

class RegexPattern {
public:
    static constexpr int kSingleLine = kRegexSingleLine;
    static constexpr int kMultiLine = kRegexMultiLine;
    static constexpr int kGlobal = kRegexGlobal;
    static constexpr int kIgnoreCase = kRegexIgnoreCase;
    static constexpr int kRightToLeft = kRegexRightToLeft;

    // Every search may spend kBaseStepBudget steps plus kStepsPerCodeUnit for
    // each code unit from its start to the end of the text.
    static constexpr std::int64_t kBaseStepBudget = 100000;
    static constexpr std::int64_t kStepsPerCodeUnit = 64;
    // Frames of C++ call depth that matching may use; recursion "(?R)" gets
    // kMaxCallDepth / (height of the element tree) levels.
    static constexpr int kMaxCallDepth = 2000;

    RegexPattern();
    ~RegexPattern();
    RegexPattern(const RegexPattern&) = delete;
    RegexPattern& operator=(const RegexPattern&) = delete;

    // Compiles `pattern`; on a syntax error returns false, Error() says why and
    // every search finds nothing. Right-to-left matching is refused.
    bool Compile(std::u16string_view pattern, int flags = 0);
    bool IsValid() const { return root_ != nullptr; }
    const std::string& Error() const { return error_; }
    int Flags() const { return flags_; }

    // Leftmost match at or after `start` (-1: the start of the text).
    RegexMatch Search(std::u16string_view text, int start = -1) const;

    int GroupCount() const { return groupCount_; }
    // The number of a named group, or -1.
    int GroupNumber(std::u16string_view name) const;

    static std::int64_t StepBudget(int codeUnits);
    // How many searches of this pattern were cut off by the step budget.
    std::int64_t BudgetExceededCount() const { return budgetExceeded_.load(); }

private:
    void Clear();
    void PrepareSearch();
    void FindLeadingRun();
    int NextCandidate(std::u16string_view text, int from) const;

    RegexElement* root_ = nullptr;
    std::vector<std::unique_ptr<RegexElement>> elements_;
    int groupCount_ = 0;
    std::map<std::u16string, int> groupNames_;
    int flags_ = 0;
    std::string error_;

    // Start-position filters worked out at compile time.
    bool anchored_ = false;      // can only match at the start of the text
    int minWidth_ = 0;           // no match is shorter
    std::u16string prefix_;      // every match begins with this
    bool useFirstChars_ = false; // every match begins with a member of firstChars_
    RegexCharSet firstChars_;
    // Every match starts with an unbounded greedy run of this set; after a
    // failed attempt, the later starts inside the same run fail too.
    bool skipLeadingRun_ = false;
    RegexCharSet leadingRun_;
    int recursionLimit_ = 1;

    mutable std::atomic<std::int64_t> budgetExceeded_{0};
};

} // namespace mirodate
