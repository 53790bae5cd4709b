#pragma once
// Repetition of any element. Each iteration keeps its own frames on the
// explicit stack, topped by the position it started at; the count of
// iterations sits on top when the repetition succeeds.
//
// An iteration beyond the minimum that matches the empty string is not taken
// (its other alternatives are tried instead), so "(a*)*" cannot loop forever.
#include "regex/RegexElement.h"
#include "regex/RegexRepeatKind.h"

namespace mirodate {

class RegexRepeatElement : public RegexElement {
public:
    RegexRepeatElement(RegexElement* inner, int min, int max, RegexRepeatKind kind);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexRepeatElement() override;

    int MinWidth() const override;
    int MaxWidth() const override;
    void AddFirstChars(RegexCharSet& set) const override;
    void Optimize(const RegexCharSet* follow) override;
    bool IsAnchoredAtStart() const override { return min_ > 0 && inner_->IsAnchoredAtStart(); }
    int TreeDepth() const override { return inner_->TreeDepth() + 1; }

private:
    bool RunGreedy(RegexMatchContext& ctx, int count, bool forward) const;
    bool RunLazy(RegexMatchContext& ctx, int count, bool resume) const;
    bool TryIteration(RegexMatchContext& ctx, int count) const;
    bool RetryIteration(RegexMatchContext& ctx, int count) const;

    RegexElement* inner_;
    int min_;
    int max_;
    RegexRepeatKind kind_;
};

} // namespace mirodate
