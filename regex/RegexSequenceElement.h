#pragma once
// Elements matched one after the other; backtracking goes into the most
// recent element that still has an alternative.
#include "regex/RegexElement.h"

#include <vector>

namespace mirodate {

class RegexSequenceElement : public RegexElement {
public:
    explicit RegexSequenceElement(std::vector<RegexElement*> children);

    bool Match(RegexMatchContext& ctx) const override { return ctx.Step() && Run(ctx, 0, true); }
    bool MatchNext(RegexMatchContext& ctx) const override {
        return ctx.Step() && Run(ctx, static_cast<int>(children_.size()) - 1, false);
    }
    ~RegexSequenceElement() override;

    int MinWidth() const override;
    int MaxWidth() const override;
    void AddFirstChars(RegexCharSet& set) const override;
    void Optimize(const RegexCharSet* follow) override;
    bool IsAnchoredAtStart() const override;
    int TreeDepth() const override;

    // The compiler swaps in an optimised element for a child.
    void ReplaceChild(int index, RegexElement* element) { children_[index] = element; }
    const std::vector<RegexElement*>& Children() const { return children_; }

private:
    bool Run(RegexMatchContext& ctx, int index, bool forward) const;

    std::vector<RegexElement*> children_;
};

} // namespace mirodate
