#pragma once
// A capture group: records where its contents started and ended.
#include "regex/RegexElement.h"

namespace mirodate {

class RegexGroupElement : public RegexElement {
public:
    RegexGroupElement(int group, RegexElement* inner);

    bool Match(RegexMatchContext& ctx) const override;
    bool MatchNext(RegexMatchContext& ctx) const override;
    ~RegexGroupElement() override;

    int MinWidth() const override { return inner_->MinWidth(); }
    int MaxWidth() const override { return inner_->MaxWidth(); }
    void AddFirstChars(RegexCharSet& set) const override { inner_->AddFirstChars(set); }
    void Optimize(const RegexCharSet* follow) override { inner_->Optimize(follow); }
    bool IsAnchoredAtStart() const override { return inner_->IsAnchoredAtStart(); }
    int TreeDepth() const override { return inner_->TreeDepth() + 1; }
    const RegexElement* Inner() const { return inner_; }

private:
    void Record(RegexMatchContext& ctx, int start) const;

    int group_;
    RegexElement* inner_;
};

} // namespace mirodate
