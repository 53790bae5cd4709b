#include "regex/RegexPattern.h"

#include "regex/RegexBackrefElement.h"
#include "regex/RegexCharElement.h"
#include "regex/RegexCharRepeatElement.h"
#include "regex/RegexConditionalElement.h"
#include "regex/RegexElement.h"
#include "regex/RegexGroupElement.h"
#include "regex/RegexMatchContext.h"
#include "regex/RegexParser.h"
#include "regex/RegexRecursionElement.h"
#include "regex/RegexSequenceElement.h"
#include "regex/RegexStringElement.h"

#include <algorithm>

namespace mirodate {

namespace {

// A search reuses its thread's context so that repeated searches do not
// allocate. Contexts that grew large are trimmed afterwards.
constexpr std::size_t kKeptContextEntries = 1 << 16;

RegexMatchContext& ThreadContext() {
    thread_local RegexMatchContext context;
    return context;
}

void Trim(std::vector<int>& entries) {
    if (entries.capacity() > kKeptContextEntries)
        std::vector<int>().swap(entries);
}

} // namespace

RegexPattern::RegexPattern() = default;

RegexPattern::~RegexPattern() = default;

void RegexPattern::Clear() {
    root_ = nullptr;
    elements_.clear();
    groupCount_ = 0;
    groupNames_.clear();
    error_.clear();
    anchored_ = false;
    minWidth_ = 0;
    prefix_.clear();
    useFirstChars_ = false;
    firstChars_ = RegexCharSet();
    skipLeadingRun_ = false;
    leadingRun_ = RegexCharSet();
    recursionLimit_ = 1;
}

bool RegexPattern::Compile(std::u16string_view pattern, int flags) {
    Clear();
    flags_ = flags;
    if (flags & kRightToLeft) {
        error_ = "right-to-left matching is not supported";
        return false;
    }
    RegexParser parser(pattern, flags, elements_);
    RegexElement* root = parser.Parse();
    if (root == nullptr) {
        error_ = parser.Error();
        elements_.clear();
        return false;
    }
    root->Optimize(nullptr);
    root_ = root;
    groupCount_ = parser.GroupCount();
    groupNames_ = parser.GroupNames();
    PrepareSearch();
    return true;
}

void RegexPattern::PrepareSearch() {
    anchored_ = root_->IsAnchoredAtStart();
    minWidth_ = root_->MinWidth();
    recursionLimit_ = std::max(1, kMaxCallDepth / root_->TreeDepth());
    if (minWidth_ > 0) {
        root_->AddFirstChars(firstChars_);
        useFirstChars_ = !firstChars_.IsFull();
    }
    // A literal that every match starts with: follow the first element down
    // through sequences and groups.
    const RegexElement* element = root_;
    for (;;) {
        if (auto* sequence = dynamic_cast<const RegexSequenceElement*>(element)) {
            element = sequence->Children().front();
        } else if (auto* string = dynamic_cast<const RegexStringElement*>(element)) {
            prefix_ = string->Text();
            break;
        } else if (auto* literal = dynamic_cast<const RegexCharElement*>(element)) {
            prefix_ = std::u16string(1, literal->Char());
            break;
        } else {
            // Groups only wrap; look inside them through the first-char set.
            break;
        }
    }
    FindLeadingRun();
    if (prefix_.empty()) {
        // Capture groups hide a leading literal from the walk above; the
        // first-char set still catches a single leading character.
        int single = useFirstChars_ ? firstChars_.SingleChar() : -1;
        if (single >= 0)
            prefix_ = std::u16string(1, static_cast<char16_t>(single));
    }
}

// Whether every match begins with a greedy or possessive run "[set]+" of
// unbounded length. An attempt at p that fails then also fails at every start
// inside the same run: the run there ends at the same place and tries a subset
// of the same ends, with the same rest of the pattern. That holds only while
// the rest cannot see where the match started, so patterns with
// back-references, conditionals or recursion are left out.
void RegexPattern::FindLeadingRun() {
    for (const auto& element : elements_) {
        const RegexElement* raw = element.get();
        if (dynamic_cast<const RegexBackrefElement*>(raw) ||
            dynamic_cast<const RegexConditionalElement*>(raw) ||
            dynamic_cast<const RegexRecursionElement*>(raw))
            return;
    }
    const RegexElement* element = root_;
    for (;;) {
        if (auto* sequence = dynamic_cast<const RegexSequenceElement*>(element)) {
            element = sequence->Children().front();
        } else if (auto* group = dynamic_cast<const RegexGroupElement*>(element)) {
            element = group->Inner();
        } else {
            break;
        }
    }
    auto* run = dynamic_cast<const RegexCharRepeatElement*>(element);
    if (run != nullptr && run->MinWidth() >= 1 && run->MaxWidth() == RegexElement::kUnbounded &&
        run->Kind() != RegexRepeatKind::kLazy) {
        skipLeadingRun_ = true;
        leadingRun_ = run->Set();
    }
}

std::int64_t RegexPattern::StepBudget(int codeUnits) {
    return kBaseStepBudget + kStepsPerCodeUnit * std::max(0, codeUnits);
}

int RegexPattern::GroupNumber(std::u16string_view name) const {
    auto it = groupNames_.find(std::u16string(name));
    return it == groupNames_.end() ? -1 : it->second;
}

// The first position at or after `from` where a match could begin, or -1.
int RegexPattern::NextCandidate(std::u16string_view text, int from) const {
    int length = static_cast<int>(text.size());
    if (!prefix_.empty()) {
        std::size_t found = text.find(prefix_, from);
        return found == std::u16string_view::npos ? -1 : static_cast<int>(found);
    }
    if (useFirstChars_) {
        while (from < length && !firstChars_.Contains(text[from]))
            ++from;
        return from < length ? from : -1;
    }
    return from;
}

RegexMatch RegexPattern::Search(std::u16string_view text, int start) const {
    RegexMatch result;
    result.Set(0, 0);
    int length = static_cast<int>(std::min<std::size_t>(text.size(), 0x7fffffff));
    if (start < 0)
        start = 0;
    if (root_ == nullptr || start > length)
        return result;

    RegexMatchContext& ctx = ThreadContext();
    ctx.Reset(text.data(), length, groupCount_, StepBudget(length - start));
    ctx.root = root_;
    ctx.searchStart = start;
    ctx.recursionLimit = recursionLimit_;

    bool matched = false;
    int matchStart = start;
    for (int at = start; at <= length - minWidth_; ++at) {
        if (anchored_ && at > 0)
            break;
        at = NextCandidate(text, at);
        if (at < 0 || at > length - minWidth_)
            break;
        ctx.pos = at;
        if (!ctx.Step())
            break;
        if (root_->Match(ctx)) {
            matched = !ctx.aborted;
            matchStart = at;
            break;
        }
        if (ctx.aborted)
            break;
        if (skipLeadingRun_) {
            while (at + 1 < length && leadingRun_.Contains(text[at + 1]))
                ++at;
        }
    }

    if (matched) {
        result.Set(0, 1);
        result.Set(1, groupCount_);
        result.Set(2, matchStart);
        result.Set(3, ctx.pos);
        for (int group = 1; group <= groupCount_; ++group) {
            result.Set(2 + 2 * group, ctx.captures[2 * group]);
            result.Set(3 + 2 * group, ctx.captures[2 * group + 1]);
        }
    }
    result.SetWork(ctx.steps, ctx.aborted);
    if (ctx.aborted)
        budgetExceeded_.fetch_add(1);
    Trim(ctx.stack);
    Trim(ctx.trail);
    return result;
}

} // namespace mirodate
