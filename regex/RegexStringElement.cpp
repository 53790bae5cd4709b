#include "regex/RegexStringElement.h"

namespace mirodate {

RegexStringElement::RegexStringElement(std::u16string text) : text_(std::move(text)) {}

RegexStringElement::~RegexStringElement() = default;

bool RegexStringElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int size = static_cast<int>(text_.size());
    if (ctx.length - ctx.pos < size)
        return false;
    const char16_t* at = ctx.text + ctx.pos;
    for (int i = 0; i < size; ++i) {
        if (at[i] != text_[i])
            return false;
    }
    ctx.pos += size;
    return true;
}

} // namespace mirodate
