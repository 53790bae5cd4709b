#include "regex/RegexCharSet.h"

#include "regex/RegexCaseFold.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr char16_t kLastCodeUnit = 0xFFFF;
}

RegexCharSet RegexCharSet::Full() {
    RegexCharSet set;
    set.AddRange(0, kLastCodeUnit);
    return set;
}

RegexCharSet RegexCharSet::Digits() {
    RegexCharSet set;
    set.AddRange(u'0', u'9');
    return set;
}

RegexCharSet RegexCharSet::WordChars() {
    RegexCharSet set;
    set.AddRange(u'0', u'9');
    set.AddRange(u'A', u'Z');
    set.AddRange(u'a', u'z');
    set.Add(u'_');
    return set;
}

RegexCharSet RegexCharSet::Spaces() {
    RegexCharSet set;
    set.AddRange(u'\t', u'\r'); // tab, line feed, vertical tab, form feed, carriage return
    set.Add(u' ');
    set.Add(0x00A0);              // no-break space
    set.AddRange(0x2000, 0x200A); // typographic spaces
    set.AddRange(0x2028, 0x2029); // line and paragraph separators
    set.Add(0x202F);
    set.Add(0x3000);
    return set;
}

void RegexCharSet::AddRange(char16_t low, char16_t high) {
    if (low > high)
        std::swap(low, high);
    ranges_.emplace_back(low, high);
    Normalize();
}

void RegexCharSet::AddSet(const RegexCharSet& other) {
    ranges_.insert(ranges_.end(), other.ranges_.begin(), other.ranges_.end());
    Normalize();
}

void RegexCharSet::Negate() {
    std::vector<std::pair<char16_t, char16_t>> inverse;
    std::uint32_t next = 0;
    for (const auto& [low, high] : ranges_) {
        if (low > next)
            inverse.emplace_back(static_cast<char16_t>(next), static_cast<char16_t>(low - 1));
        next = static_cast<std::uint32_t>(high) + 1;
    }
    if (next <= kLastCodeUnit)
        inverse.emplace_back(static_cast<char16_t>(next), kLastCodeUnit);
    ranges_ = std::move(inverse);
    Normalize();
}

void RegexCharSet::AddCaseVariants() {
    // Only these blocks have case pairs under the simple mapping.
    static constexpr std::pair<char16_t, char16_t> kCasedBlocks[] = {
        {0x41, 0x7A}, {0xC0, 0xFE}, {0x100, 0x17F}, {0x391, 0x3C9}, {0x400, 0x45F}};
    std::vector<char16_t> extra;
    for (const auto& [low, high] : ranges_) {
        for (const auto& [blockLow, blockHigh] : kCasedBlocks) {
            char16_t from = std::max(low, blockLow);
            char16_t to = std::min(high, blockHigh);
            for (std::uint32_t c = from; c <= to; ++c) {
                char16_t lower = RegexToLower(static_cast<char16_t>(c));
                char16_t upper = RegexToUpper(static_cast<char16_t>(c));
                if (lower != c)
                    extra.push_back(lower);
                if (upper != c)
                    extra.push_back(upper);
            }
        }
    }
    for (char16_t c : extra)
        ranges_.emplace_back(c, c);
    Normalize();
}

bool RegexCharSet::Intersects(const RegexCharSet& other) const {
    size_t i = 0;
    size_t j = 0;
    while (i < ranges_.size() && j < other.ranges_.size()) {
        const auto& a = ranges_[i];
        const auto& b = other.ranges_[j];
        if (a.second < b.first)
            ++i;
        else if (b.second < a.first)
            ++j;
        else
            return true;
    }
    return false;
}

bool RegexCharSet::IsFull() const {
    return ranges_.size() == 1 && ranges_[0].first == 0 && ranges_[0].second == kLastCodeUnit;
}

int RegexCharSet::SingleChar() const {
    if (ranges_.size() == 1 && ranges_[0].first == ranges_[0].second)
        return ranges_[0].first;
    return -1;
}

bool RegexCharSet::ContainsHigh(char16_t c) const {
    auto it = std::upper_bound(ranges_.begin(), ranges_.end(), c,
                               [](char16_t value, const auto& range) { return value < range.first; });
    if (it == ranges_.begin())
        return false;
    --it;
    return c <= it->second;
}

void RegexCharSet::Normalize() {
    std::sort(ranges_.begin(), ranges_.end());
    std::vector<std::pair<char16_t, char16_t>> merged;
    for (const auto& range : ranges_) {
        if (!merged.empty() && static_cast<std::uint32_t>(merged.back().second) + 1 >= range.first)
            merged.back().second = std::max(merged.back().second, range.second);
        else
            merged.push_back(range);
    }
    ranges_ = std::move(merged);
    std::fill(std::begin(low_), std::end(low_), 0);
    for (const auto& [low, high] : ranges_) {
        for (std::uint32_t c = low; c <= high && c < 256; ++c)
            low_[c >> 6] |= std::uint64_t{1} << (c & 63);
    }
}

} // namespace mirodate
