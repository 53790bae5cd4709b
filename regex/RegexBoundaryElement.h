#pragma once
// Zero-width position tests: text and line starts and ends, word boundaries
// and the position where the search began ("\G").
#include "regex/RegexElement.h"

namespace mirodate {

class RegexBoundaryElement : public RegexElement {
public:
    enum Kind {
        kTextStart = 0,        // "\A", "^" without multi-line
        kTextEnd = 1,          // "\z", "$" without multi-line
        kTextEndOrFinalLf = 2, // "\Z"
        kLineStart = 3,        // "^" with multi-line
        kLineEnd = 4,          // "$" with multi-line
        kSearchStart = 5,      // "\G", only with the global flag
        kWordBoundary = 7,     // "\b" (positive), "\B" (negative)
    };

    RegexBoundaryElement(Kind kind, bool positive);

    bool Match(RegexMatchContext& ctx) const override { return ctx.Step() && IsAt(ctx) == positive_; }
    bool MatchNext(RegexMatchContext&) const override { return false; }
    ~RegexBoundaryElement() override;

    int MinWidth() const override { return 0; }
    int MaxWidth() const override { return 0; }
    void AddFirstChars(RegexCharSet& set) const override { set.AddSet(RegexCharSet::Full()); }
    bool IsAnchoredAtStart() const override { return kind_ == kTextStart && positive_; }

private:
    bool IsAt(const RegexMatchContext& ctx) const;

    Kind kind_;
    bool positive_;
};

} // namespace mirodate
