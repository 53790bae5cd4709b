#include "data/TextMatcher.h"

#include "platform/TextUtil.h"

namespace mirodate {

TextMatcher::TextMatcher(std::u16string_view text) : needle_(FoldCase(text)) {
    for (char16_t unit : needle_)
        if (unit >= 0x80)
            needleAscii_ = false;
}

bool TextMatcher::Contains(std::u16string_view haystack) {
    // Folding makes a text at most three times longer.
    if (needle_.empty() || haystack.size() * 3 < needle_.size())
        return false;
    // ASCII folds to ASCII by lower-casing; a text with anything else goes
    // through ICU. A non-ASCII search text cannot be in folded ASCII.
    folded_.resize(haystack.size());
    size_t i = 0;
    for (; i < haystack.size(); ++i) {
        const char16_t unit = haystack[i];
        if (unit >= 0x80)
            break;
        folded_[i] = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
    }
    if (i == haystack.size())
        return needleAscii_ && folded_.find(needle_) != std::u16string::npos;
    FoldCaseInto(haystack, folded_);
    return folded_.find(needle_) != std::u16string::npos;
}

bool TextMatcher::Matches(const PimRecord& record) {
    return Contains(record.subject) || Contains(record.location) || Contains(record.body) ||
           Contains(record.categories);
}

} // namespace mirodate
