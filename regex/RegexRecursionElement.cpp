#include "regex/RegexRecursionElement.h"

namespace mirodate {

RegexRecursionElement::~RegexRecursionElement() = default;

namespace {
// Enters one level; false (and the search abandoned) when too deep.
bool Enter(RegexMatchContext& ctx) {
    if (ctx.recursionDepth >= ctx.recursionLimit) {
        ctx.aborted = true;
        return false;
    }
    ++ctx.recursionDepth;
    return true;
}
} // namespace

bool RegexRecursionElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step() || !Enter(ctx))
        return false;
    bool matched = ctx.root->Match(ctx);
    --ctx.recursionDepth;
    return matched;
}

bool RegexRecursionElement::MatchNext(RegexMatchContext& ctx) const {
    if (!ctx.Step() || !Enter(ctx))
        return false;
    bool matched = ctx.root->MatchNext(ctx);
    --ctx.recursionDepth;
    return matched;
}

} // namespace mirodate
