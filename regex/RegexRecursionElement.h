#pragma once
// "(?R)": the whole pattern again, at this position. Each level of recursion
// costs C++ stack in proportion to the pattern's nesting, so the number of
// levels is capped (RegexMatchContext::recursionLimit, set per pattern so
// that levels times nesting stays within a fixed call depth); going deeper
// ends the search as if the step budget ran out.
#include "regex/RegexElement.h"

namespace mirodate {

class RegexRecursionElement : public RegexElement {
public:
    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexRecursionElement() override;

    int MinWidth() const override { return 0; }
    int MaxWidth() const override { return kUnbounded; }
    void AddFirstChars(RegexCharSet& set) const override { set.AddSet(RegexCharSet::Full()); }
};

} // namespace mirodate
