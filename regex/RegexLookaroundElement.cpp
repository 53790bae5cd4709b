#include "regex/RegexLookaroundElement.h"

#include <algorithm>

namespace mirodate {

RegexLookaroundElement::RegexLookaroundElement(RegexElement* inner, bool behind, bool positive)
    : inner_(inner), behind_(behind), positive_(positive) {}

RegexLookaroundElement::~RegexLookaroundElement() = default;

// Whether the contents match here (ahead) or end here (behind). On success
// the contents' frames are still on the stack; the caller cuts them.
bool RegexLookaroundElement::Found(RegexMatchContext& ctx) const {
    int target = ctx.pos;
    if (!behind_)
        return inner_->Match(ctx);
    int maxWidth = inner_->MaxWidth();
    int nearest = target - inner_->MinWidth();
    int farthest = maxWidth == kUnbounded ? 0 : std::max(0, target - maxWidth);
    for (int start = nearest; start >= farthest && !ctx.aborted; --start) {
        ctx.pos = start;
        if (!inner_->Match(ctx))
            continue;
        do {
            if (ctx.pos == target)
                return true;
        } while (inner_->MatchNext(ctx));
    }
    ctx.pos = target;
    return false;
}

bool RegexLookaroundElement::Test(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int start = ctx.pos;
    std::size_t mark = ctx.stack.size();
    std::size_t trailMark = ctx.trail.size();
    bool found = Found(ctx);
    ctx.Cut(mark);
    ctx.pos = start;
    if (ctx.aborted)
        return false;
    if (!found || !positive_)
        ctx.Unwind(trailMark);
    return found == positive_;
}

bool RegexLookaroundElement::Match(RegexMatchContext& ctx) const {
    int trailMark = static_cast<int>(ctx.trail.size());
    if (!Test(ctx))
        return false;
    ctx.Push(trailMark);
    return true;
}

bool RegexLookaroundElement::MatchNext(RegexMatchContext& ctx) const {
    ctx.Unwind(ctx.Pop());
    return false;
}

} // namespace mirodate
