#pragma once
// Repetition of an element that always matches exactly one code unit (a
// literal, a class, "."). The iterations need no frames of their own: a
// frame is just where the run started and how long it is, which keeps long
// runs such as ".+" over a whole note cheap in time and memory.
//
// A greedy run whose following characters can never be taken by its own set
// (for instance "[a-z]+@") is made possessive by the compiler: giving
// characters back could not help the rest of the pattern to match.
#include "regex/RegexElement.h"
#include "regex/RegexRepeatKind.h"

namespace mirodate {

class RegexCharRepeatElement : public RegexElement {
public:
    RegexCharRepeatElement(const RegexCharSet& set, int min, int max, RegexRepeatKind kind);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexCharRepeatElement() override;

    int MinWidth() const override { return min_; }
    int MaxWidth() const override { return max_; }
    void AddFirstChars(RegexCharSet& set) const override;
    void Optimize(const RegexCharSet* follow) override;
    RegexRepeatKind Kind() const { return kind_; }
    const RegexCharSet& Set() const { return set_; }

private:
    // Length of the run of members from `start`, at most `limit`.
    int RunLength(const RegexMatchContext& ctx, int start, int limit) const;

    RegexCharSet set_;
    int min_;
    int max_;
    RegexRepeatKind kind_;
};

} // namespace mirodate
