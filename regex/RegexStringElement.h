#pragma once
// A run of literal code units, merged by the compiler from adjacent literal
// characters so that it is compared in one go.
#include "regex/RegexElement.h"

#include <string>

namespace mirodate {

class RegexStringElement : public RegexElement {
public:
    explicit RegexStringElement(std::u16string text);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override {
        ctx.pos -= static_cast<int>(text_.size());
        return false;
    }
    ~RegexStringElement() override;

    int MinWidth() const override { return static_cast<int>(text_.size()); }
    int MaxWidth() const override { return static_cast<int>(text_.size()); }
    void AddFirstChars(RegexCharSet& set) const override { set.Add(text_[0]); }
    const std::u16string& Text() const { return text_; }

private:
    std::u16string text_;
};

} // namespace mirodate
