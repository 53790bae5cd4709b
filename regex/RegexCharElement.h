#pragma once
// One literal code unit (case-sensitive; case-insensitive literals compile
// to a class holding both cases).
#include "regex/RegexElement.h"

namespace mirodate {

class RegexCharElement : public RegexElement {
public:
    explicit RegexCharElement(char16_t c);

    bool Match(RegexMatchContext& ctx) const override {
        if (!ctx.Step() || ctx.pos >= ctx.length || ctx.text[ctx.pos] != char_)
            return false;
        ++ctx.pos;
        return true;
    }
    bool MatchNext(RegexMatchContext& ctx) const override {
        --ctx.pos;
        return false;
    }
    ~RegexCharElement() override;

    int MinWidth() const override { return 1; }
    int MaxWidth() const override { return 1; }
    void AddFirstChars(RegexCharSet& set) const override { set.Add(char_); }
    const RegexCharSet* SingleCharSet() const override { return &set_; }
    char16_t Char() const { return char_; }

private:
    char16_t char_;
    RegexCharSet set_;
};

} // namespace mirodate
