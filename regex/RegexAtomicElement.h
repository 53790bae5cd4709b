#pragma once
// An independent group "(?>...)": its contents match once, as they would on
// their own, and are never backtracked into.
#include "regex/RegexElement.h"

namespace mirodate {

class RegexAtomicElement : public RegexElement {
public:
    explicit RegexAtomicElement(RegexElement* inner);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexAtomicElement() override;

    int MinWidth() const override { return inner_->MinWidth(); }
    int MaxWidth() const override { return inner_->MaxWidth(); }
    void AddFirstChars(RegexCharSet& set) const override { inner_->AddFirstChars(set); }
    void Optimize(const RegexCharSet* follow) override { inner_->Optimize(follow); }
    bool IsAnchoredAtStart() const override { return inner_->IsAnchoredAtStart(); }
    int TreeDepth() const override { return inner_->TreeDepth() + 1; }

private:
    RegexElement* inner_;
};

} // namespace mirodate
