#include "regex/RegexRepeatElement.h"

#include <algorithm>

namespace mirodate {

RegexRepeatElement::RegexRepeatElement(RegexElement* inner, int min, int max, RegexRepeatKind kind)
    : inner_(inner), min_(min), max_(max), kind_(kind) {}

RegexRepeatElement::~RegexRepeatElement() = default;

bool RegexRepeatElement::Match(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    if (kind_ == RegexRepeatKind::kPossessive) {
        std::size_t mark = ctx.stack.size();
        int start = ctx.pos;
        int trailMark = static_cast<int>(ctx.trail.size());
        if (!RunGreedy(ctx, 0, true))
            return false;
        ctx.Cut(mark);
        ctx.Push(start);
        ctx.Push(trailMark);
        return true;
    }
    if (kind_ == RegexRepeatKind::kLazy)
        return RunLazy(ctx, 0, false);
    return RunGreedy(ctx, 0, true);
}

bool RegexRepeatElement::MatchNext(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    if (kind_ == RegexRepeatKind::kPossessive) {
        int trailMark = ctx.Pop();
        ctx.pos = ctx.Pop();
        ctx.Unwind(trailMark);
        return false;
    }
    int count = ctx.Pop();
    if (kind_ == RegexRepeatKind::kLazy)
        return RunLazy(ctx, count, true);
    return RunGreedy(ctx, count, false);
}

// One more iteration on top of `count` finished ones.
bool RegexRepeatElement::TryIteration(RegexMatchContext& ctx, int count) const {
    int start = ctx.pos;
    if (!inner_->Match(ctx))
        return false;
    if (count >= min_) {
        while (ctx.pos == start) {
            if (!inner_->MatchNext(ctx))
                return false;
        }
    }
    ctx.Push(start);
    return true;
}

// The next way of matching iteration number `count`; false once it has none
// (the iteration is then undone).
bool RegexRepeatElement::RetryIteration(RegexMatchContext& ctx, int count) const {
    int start = ctx.Pop();
    do {
        if (!inner_->MatchNext(ctx))
            return false;
    } while (count > min_ && ctx.pos == start);
    ctx.Push(start);
    return true;
}

// Greedy order: at every count, one more iteration is tried before stopping.
bool RegexRepeatElement::RunGreedy(RegexMatchContext& ctx, int count, bool forward) const {
    for (;;) {
        if (forward) {
            if (count < max_ && TryIteration(ctx, count)) {
                ++count;
                continue;
            }
            if (count >= min_ && !ctx.aborted) {
                ctx.Push(count);
                return true;
            }
        }
        if (count == 0 || ctx.aborted)
            return false;
        if (RetryIteration(ctx, count)) {
            forward = true;
            continue;
        }
        --count;
        if (count >= min_ && !ctx.aborted) {
            ctx.Push(count);
            return true;
        }
        forward = false;
    }
}

// Lazy order: at every count, stopping is tried before one more iteration.
// `resume` means the stop at `count` has already been tried.
bool RegexRepeatElement::RunLazy(RegexMatchContext& ctx, int count, bool resume) const {
    bool forward = true;
    if (resume) {
        if (count < max_ && TryIteration(ctx, count)) {
            ctx.Push(count + 1);
            return true;
        }
        forward = false;
    }
    for (;;) {
        if (forward) {
            if (count >= min_) {
                ctx.Push(count);
                return true;
            }
            if (count < max_ && TryIteration(ctx, count)) {
                ++count;
                continue;
            }
        }
        if (count == 0 || ctx.aborted)
            return false;
        if (RetryIteration(ctx, count)) {
            forward = true;
            continue;
        }
        --count;
        forward = false;
    }
}

int RegexRepeatElement::MinWidth() const {
    long long width = static_cast<long long>(inner_->MinWidth()) * min_;
    return static_cast<int>(std::min<long long>(width, kUnbounded));
}

int RegexRepeatElement::MaxWidth() const {
    int inner = inner_->MaxWidth();
    if (inner == 0)
        return 0;
    if (inner == kUnbounded || max_ == kUnbounded)
        return kUnbounded;
    long long width = static_cast<long long>(inner) * max_;
    return static_cast<int>(std::min<long long>(width, kUnbounded));
}

void RegexRepeatElement::AddFirstChars(RegexCharSet& set) const {
    if (max_ > 0)
        inner_->AddFirstChars(set);
}

void RegexRepeatElement::Optimize(const RegexCharSet* follow) {
    // After an iteration comes either another iteration or what follows the repetition.
    if (follow == nullptr || inner_->MinWidth() == 0) {
        inner_->Optimize(nullptr);
        return;
    }
    RegexCharSet after = *follow;
    inner_->AddFirstChars(after);
    inner_->Optimize(&after);
}

} // namespace mirodate
