#include "regex/RegexAtomicElement.h"

namespace mirodate {

RegexAtomicElement::RegexAtomicElement(RegexElement* inner) : inner_(inner) {}

RegexAtomicElement::~RegexAtomicElement() = default;

bool RegexAtomicElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    std::size_t mark = ctx.stack.size();
    int start = ctx.pos;
    int trailMark = static_cast<int>(ctx.trail.size());
    if (!inner_->Match(ctx))
        return false;
    ctx.Cut(mark);
    ctx.Push(start);
    ctx.Push(trailMark);
    return true;
}

bool RegexAtomicElement::MatchNext(RegexMatchContext& ctx) const {
    ctx.Unwind(ctx.Pop());
    ctx.pos = ctx.Pop();
    return false;
}

} // namespace mirodate
