#pragma once
// Branches tried left to right; backtracking moves to the next branch.
#include "regex/RegexElement.h"

#include <vector>

namespace mirodate {

class RegexAlternationElement : public RegexElement {
public:
    explicit RegexAlternationElement(std::vector<RegexElement*> branches);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexAlternationElement() override;

    int MinWidth() const override;
    int MaxWidth() const override;
    void AddFirstChars(RegexCharSet& set) const override;
    void Optimize(const RegexCharSet* follow) override;
    bool IsAnchoredAtStart() const override;
    int TreeDepth() const override;

private:
    bool TryFrom(RegexMatchContext& ctx, int branch) const;

    std::vector<RegexElement*> branches_;
    // Per branch, the code units a match of it can start with; a branch that
    // cannot match empty is skipped when the next code unit is not among them.
    std::vector<RegexCharSet> firstChars_;
    std::vector<bool> needsFirstChar_;
};

} // namespace mirodate
