#include "regex/RegexGroupElement.h"

namespace mirodate {

RegexGroupElement::RegexGroupElement(int group, RegexElement* inner) : group_(group), inner_(inner) {}

RegexGroupElement::~RegexGroupElement() = default;

void RegexGroupElement::Record(RegexMatchContext& ctx, int start) const {
    int trailMark = static_cast<int>(ctx.trail.size());
    ctx.SetCapture(2 * group_, start);
    ctx.SetCapture(2 * group_ + 1, ctx.pos);
    ctx.Push(start);
    ctx.Push(trailMark);
}

bool RegexGroupElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int start = ctx.pos;
    if (!inner_->Match(ctx))
        return false;
    Record(ctx, start);
    return true;
}

bool RegexGroupElement::MatchNext(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int trailMark = ctx.Pop();
    int start = ctx.Pop();
    ctx.Unwind(trailMark);
    if (!inner_->MatchNext(ctx))
        return false;
    Record(ctx, start);
    return true;
}

} // namespace mirodate
