#include "regex/RegexCharRepeatElement.h"

#include <algorithm>

namespace mirodate {

RegexCharRepeatElement::RegexCharRepeatElement(const RegexCharSet& set, int min, int max,
                                               RegexRepeatKind kind)
    : set_(set), min_(min), max_(max),
      kind_(kind == RegexRepeatKind::kFixed ? RegexRepeatKind::kGreedy : kind) {}

RegexCharRepeatElement::~RegexCharRepeatElement() = default;

int RegexCharRepeatElement::RunLength(const RegexMatchContext& ctx, int start, int limit) const {
    const char16_t* text = ctx.text + start;
    int available = std::min(limit, ctx.length - start);
    int count = 0;
    while (count < available && set_.Contains(text[count]))
        ++count;
    return count;
}

bool RegexCharRepeatElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int start = ctx.pos;
    int count = RunLength(ctx, start, kind_ == RegexRepeatKind::kLazy ? min_ : max_);
    ctx.Charge(count);
    if (count < min_)
        return false;
    ctx.pos = start + count;
    ctx.Push(start);
    if (kind_ != RegexRepeatKind::kPossessive)
        ctx.Push(count);
    return true;
}

bool RegexCharRepeatElement::MatchNext(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    if (kind_ == RegexRepeatKind::kPossessive) {
        ctx.pos = ctx.Pop();
        return false;
    }
    int count = ctx.Pop();
    int start = ctx.Pop();
    if (kind_ == RegexRepeatKind::kLazy) {
        int end = start + count;
        if (count < max_ && end < ctx.length && set_.Contains(ctx.text[end])) {
            ctx.pos = end + 1;
            ctx.Push(start);
            ctx.Push(count + 1);
            return true;
        }
    } else if (count > min_) {
        --count;
        ctx.pos = start + count;
        ctx.Push(start);
        ctx.Push(count);
        return true;
    }
    ctx.pos = start;
    return false;
}

void RegexCharRepeatElement::AddFirstChars(RegexCharSet& set) const {
    if (max_ > 0)
        set.AddSet(set_);
}

void RegexCharRepeatElement::Optimize(const RegexCharSet* follow) {
    if (kind_ == RegexRepeatKind::kGreedy && min_ != max_ && follow != nullptr && !follow->Intersects(set_))
        kind_ = RegexRepeatKind::kPossessive;
}

} // namespace mirodate
