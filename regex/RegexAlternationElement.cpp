#include "regex/RegexAlternationElement.h"

#include <algorithm>

namespace mirodate {

RegexAlternationElement::RegexAlternationElement(std::vector<RegexElement*> branches)
    : branches_(std::move(branches)) {
    for (const RegexElement* branch : branches_) {
        RegexCharSet first;
        branch->AddFirstChars(first);
        needsFirstChar_.push_back(branch->MinWidth() > 0 && !first.IsFull());
        firstChars_.push_back(std::move(first));
    }
}

RegexAlternationElement::~RegexAlternationElement() = default;

bool RegexAlternationElement::TryFrom(RegexMatchContext& ctx, int branch) const {
    const bool atEnd = ctx.pos >= ctx.length;
    for (int i = branch; i < static_cast<int>(branches_.size()); ++i) {
        if (needsFirstChar_[i] && (atEnd || !firstChars_[i].Contains(ctx.text[ctx.pos])))
            continue;
        if (branches_[i]->Match(ctx)) {
            ctx.Push(i);
            return true;
        }
        if (ctx.aborted)
            return false;
    }
    return false;
}

bool RegexAlternationElement::Match(RegexMatchContext& ctx) const {
    return ctx.Step() && TryFrom(ctx, 0);
}

bool RegexAlternationElement::MatchNext(RegexMatchContext& ctx) const {
    if (!ctx.Step())
        return false;
    int branch = ctx.Pop();
    if (branches_[branch]->MatchNext(ctx)) {
        ctx.Push(branch);
        return true;
    }
    return TryFrom(ctx, branch + 1);
}

int RegexAlternationElement::MinWidth() const {
    int width = kUnbounded;
    for (const RegexElement* branch : branches_)
        width = std::min(width, branch->MinWidth());
    return width;
}

int RegexAlternationElement::MaxWidth() const {
    int width = 0;
    for (const RegexElement* branch : branches_)
        width = std::max(width, branch->MaxWidth());
    return width;
}

void RegexAlternationElement::AddFirstChars(RegexCharSet& set) const {
    for (const RegexElement* branch : branches_)
        branch->AddFirstChars(set);
}

void RegexAlternationElement::Optimize(const RegexCharSet* follow) {
    for (RegexElement* branch : branches_)
        branch->Optimize(follow);
}

bool RegexAlternationElement::IsAnchoredAtStart() const {
    return std::all_of(branches_.begin(), branches_.end(),
                       [](const RegexElement* branch) { return branch->IsAnchoredAtStart(); });
}

int RegexAlternationElement::TreeDepth() const {
    int depth = 0;
    for (const RegexElement* branch : branches_)
        depth = std::max(depth, branch->TreeDepth());
    return depth + 1;
}

} // namespace mirodate
