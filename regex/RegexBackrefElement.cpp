#include "regex/RegexBackrefElement.h"

#include "regex/RegexCaseFold.h"

namespace mirodate {

RegexBackrefElement::RegexBackrefElement(int group, bool ignoreCase)
    : group_(group), ignoreCase_(ignoreCase) {}

RegexBackrefElement::~RegexBackrefElement() = default;

bool RegexBackrefElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    if (group_ < 0 || group_ >= static_cast<int>(ctx.captures.size() / 2))
        return false; // no such group
    int index = 2 * group_;
    int start = ctx.captures[index];
    int end = ctx.captures[index + 1];
    if (start < 0 || end < start)
        return false;
    int size = end - start;
    if (ctx.length - ctx.pos < size)
        return false;
    ctx.Charge(size);
    const char16_t* a = ctx.text + start;
    const char16_t* b = ctx.text + ctx.pos;
    for (int i = 0; i < size; ++i) {
        if (a[i] != b[i] && (!ignoreCase_ || RegexToLower(a[i]) != RegexToLower(b[i])))
            return false;
    }
    ctx.Push(ctx.pos);
    ctx.pos += size;
    return true;
}

bool RegexBackrefElement::MatchNext(RegexMatchContext& ctx) const {
    ctx.pos = ctx.Pop();
    return false;
}

} // namespace mirodate
