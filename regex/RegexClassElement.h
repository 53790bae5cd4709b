#pragma once
// One code unit out of a set: bracketed classes, "\d" and friends, "."
// and case-insensitive literals.
#include "regex/RegexElement.h"

namespace mirodate {

class RegexClassElement : public RegexElement {
public:
    explicit RegexClassElement(RegexCharSet set);

    bool Match(RegexMatchContext& ctx) const override {
        if (!ctx.Step() || ctx.pos >= ctx.length || !set_.Contains(ctx.text[ctx.pos]))
            return false;
        ++ctx.pos;
        return true;
    }
    bool MatchNext(RegexMatchContext& ctx) const override {
        --ctx.pos;
        return false;
    }
    ~RegexClassElement() override;

    int MinWidth() const override { return 1; }
    int MaxWidth() const override { return 1; }
    void AddFirstChars(RegexCharSet& set) const override { set.AddSet(set_); }
    const RegexCharSet* SingleCharSet() const override { return &set_; }

private:
    RegexCharSet set_;
};

} // namespace mirodate
