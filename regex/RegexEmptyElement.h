#pragma once
// Matches the empty string. Stands in for a counted repetition with a maximum
// of 0 ("a{0}"), whose atom is dropped, and for empty branches.
#include "regex/RegexElement.h"

namespace mirodate {

class RegexEmptyElement : public RegexElement {
public:
    bool Match(RegexMatchContext& ctx) const override { return ctx.Step(); }
    bool MatchNext(RegexMatchContext&) const override { return false; }
    ~RegexEmptyElement() override;

    int MinWidth() const override { return 0; }
    int MaxWidth() const override { return 0; }
    void AddFirstChars(RegexCharSet&) const override {}
};

} // namespace mirodate
