#pragma once
// Whether texts contain a search text, ignoring case the Unicode way: both
// sides are case folded, so "STRASSE", "straße" and "Straße" find each
// other. The search text is taken literally (no pattern characters). One
// matcher is made per search and asked about many texts; it folds each into
// storage it keeps, and texts of plain ASCII take a shortcut without ICU.
#include "data/PimRecord.h"

#include <string>
#include <string_view>

namespace mirodate {

class TextMatcher {
public:
    explicit TextMatcher(std::u16string_view text);

    // An empty search text matches nothing.
    bool IsEmpty() const { return needle_.empty(); }
    bool Contains(std::u16string_view haystack);
    // The subject, location, notes or categories contain the text.
    bool Matches(const PimRecord& record);

private:
    std::u16string needle_; // folded
    bool needleAscii_ = true;
    std::u16string folded_; // the last haystack, folded
};

} // namespace mirodate
