#include "regex/RegexSequenceElement.h"

#include <algorithm>
#include <optional>

namespace mirodate {

RegexSequenceElement::RegexSequenceElement(std::vector<RegexElement*> children)
    : children_(std::move(children)) {}

RegexSequenceElement::~RegexSequenceElement() = default;

bool RegexSequenceElement::Run(RegexMatchContext& ctx, int index, bool forward) const {
    const int count = static_cast<int>(children_.size());
    while (index >= 0 && index < count) {
        bool ok = forward ? children_[index]->Match(ctx) : children_[index]->MatchNext(ctx);
        if (ok) {
            ++index;
            forward = true;
        } else {
            --index;
            forward = false;
        }
    }
    return index == count;
}

int RegexSequenceElement::MinWidth() const {
    long long sum = 0;
    for (const RegexElement* child : children_)
        sum += child->MinWidth();
    return static_cast<int>(std::min<long long>(sum, kUnbounded));
}

int RegexSequenceElement::MaxWidth() const {
    long long sum = 0;
    for (const RegexElement* child : children_) {
        int width = child->MaxWidth();
        if (width == kUnbounded)
            return kUnbounded;
        sum += width;
    }
    return static_cast<int>(std::min<long long>(sum, kUnbounded));
}

void RegexSequenceElement::AddFirstChars(RegexCharSet& set) const {
    for (const RegexElement* child : children_) {
        child->AddFirstChars(set);
        if (child->MinWidth() > 0)
            return;
    }
}

void RegexSequenceElement::Optimize(const RegexCharSet* follow) {
    // Walk backwards, keeping the set of what can come after each child.
    std::optional<RegexCharSet> after;
    bool known = follow != nullptr;
    if (known)
        after = *follow;
    for (int i = static_cast<int>(children_.size()) - 1; i >= 0; --i) {
        children_[i]->Optimize(known ? &*after : nullptr);
        RegexCharSet first;
        children_[i]->AddFirstChars(first);
        if (children_[i]->MinWidth() > 0) {
            after = std::move(first);
            known = true;
        } else if (known) {
            after->AddSet(first);
        }
    }
}

bool RegexSequenceElement::IsAnchoredAtStart() const {
    for (const RegexElement* child : children_) {
        if (child->IsAnchoredAtStart())
            return true;
        // Only zero-width elements may stand before the anchor.
        if (child->MaxWidth() != 0)
            return false;
    }
    return false;
}

int RegexSequenceElement::TreeDepth() const {
    int depth = 0;
    for (const RegexElement* child : children_)
        depth = std::max(depth, child->TreeDepth());
    return depth + 1;
}

} // namespace mirodate
