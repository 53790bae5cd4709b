#include "regex/RegexConditionalElement.h"

#include "regex/RegexLookaroundElement.h"

#include <algorithm>

namespace mirodate {

RegexConditionalElement::RegexConditionalElement(int group, const RegexLookaroundElement* assertion,
                                                 RegexElement* yes, RegexElement* no)
    : group_(group), assertion_(assertion), yes_(yes), no_(no) {}

RegexConditionalElement::~RegexConditionalElement() = default;

bool RegexConditionalElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int trailMark = static_cast<int>(ctx.trail.size());
    bool condition;
    if (assertion_ != nullptr) {
        condition = assertion_->Test(ctx);
        if (ctx.aborted)
            return false;
    } else {
        condition = group_ >= 0 && group_ < static_cast<int>(ctx.captures.size() / 2) &&
                    ctx.captures[2 * group_ + 1] >= 0;
    }
    if (!Branch(condition)->Match(ctx)) {
        ctx.Unwind(trailMark);
        return false;
    }
    ctx.Push(condition ? 1 : 0);
    ctx.Push(trailMark);
    return true;
}

bool RegexConditionalElement::MatchNext(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int trailMark = ctx.Pop();
    bool condition = ctx.Pop() != 0;
    if (Branch(condition)->MatchNext(ctx)) {
        ctx.Push(condition ? 1 : 0);
        ctx.Push(trailMark);
        return true;
    }
    ctx.Unwind(trailMark);
    return false;
}

int RegexConditionalElement::MinWidth() const {
    return std::min(yes_->MinWidth(), no_->MinWidth());
}

int RegexConditionalElement::MaxWidth() const {
    return std::max(yes_->MaxWidth(), no_->MaxWidth());
}

void RegexConditionalElement::Optimize(const RegexCharSet* follow) {
    yes_->Optimize(follow);
    no_->Optimize(follow);
}

int RegexConditionalElement::TreeDepth() const {
    int depth = std::max(yes_->TreeDepth(), no_->TreeDepth());
    if (assertion_ != nullptr)
        depth = std::max(depth, assertion_->TreeDepth());
    return depth + 1;
}

} // namespace mirodate
