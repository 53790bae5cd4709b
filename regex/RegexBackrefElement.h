#pragma once
// Matches the text a capture group took, again. A group that has not
// captured anything makes the reference fail.
#include "regex/RegexElement.h"

namespace mirodate {

class RegexBackrefElement : public RegexElement {
public:
    RegexBackrefElement(int group, bool ignoreCase);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexBackrefElement() override;

    int MinWidth() const override { return 0; }
    int MaxWidth() const override { return kUnbounded; }
    void AddFirstChars(RegexCharSet& set) const override { set.AddSet(RegexCharSet::Full()); }
    // Named references are resolved after the whole pattern was read.
    void SetGroup(int group) { group_ = group; }

private:
    int group_;
    bool ignoreCase_;
};

} // namespace mirodate
