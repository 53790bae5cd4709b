#pragma once
// "(?(condition)yes|no)": the condition is either a group number (has the
// group captured?) or a look-around assertion.
#include "regex/RegexElement.h"

namespace mirodate {

class RegexLookaroundElement;

class RegexConditionalElement : public RegexElement {
public:
    // Exactly one of `group` (>= 0) and `assertion` (non-null) is given.
    RegexConditionalElement(int group, const RegexLookaroundElement* assertion, RegexElement* yes,
                            RegexElement* no);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexConditionalElement() override;

    int MinWidth() const override;
    int MaxWidth() const override;
    void AddFirstChars(RegexCharSet& set) const override { set.AddSet(RegexCharSet::Full()); }
    void Optimize(const RegexCharSet* follow) override;
    int TreeDepth() const override;
    // Named conditions are resolved after the whole pattern was read.
    void SetGroup(int group) { group_ = group; }

private:
    const RegexElement* Branch(bool condition) const { return condition ? yes_ : no_; }

    int group_;
    const RegexLookaroundElement* assertion_;
    RegexElement* yes_;
    RegexElement* no_;
};

} // namespace mirodate
