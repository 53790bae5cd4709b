#pragma once
// Look-ahead and look-behind, positive and negative: zero-width tests of
// what follows or precedes the position. Once decided they are atomic, and
// captures made inside a positive one stay visible.
//
// Look-behind tries the start positions from which its contents can end
// exactly here, nearest first, using the contents' minimum and maximum width
// (unbounded contents try every earlier position; the step budget bounds that).
#include "regex/RegexElement.h"

namespace mirodate {

class RegexLookaroundElement : public RegexElement {
public:
    RegexLookaroundElement(RegexElement* inner, bool behind, bool positive);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexLookaroundElement() override;

    int MinWidth() const override { return 0; }
    int MaxWidth() const override { return 0; }
    void AddFirstChars(RegexCharSet& set) const override { set.AddSet(RegexCharSet::Full()); }
    void Optimize(const RegexCharSet*) override { inner_->Optimize(nullptr); }
    int TreeDepth() const override { return inner_->TreeDepth() + 1; }

    // The test alone: leaves no frame; captures it made stay on the trail.
    bool Test(RegexMatchContext& ctx) const;

private:
    bool Found(RegexMatchContext& ctx) const;

    RegexElement* inner_;
    bool behind_;
    bool positive_;
};

} // namespace mirodate
