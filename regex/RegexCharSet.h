#pragma once
// A set of UTF-16 code units, kept as sorted, disjoint ranges plus a bitmap
// of the first 256 code units so that the common test is one lookup.
#include <cstdint>
#include <utility>
#include <vector>

namespace mirodate {

class RegexCharSet {
public:
    static RegexCharSet Full();

    void Add(char16_t c) { AddRange(c, c); }
    void AddRange(char16_t low, char16_t high);
    void AddSet(const RegexCharSet& other);
    void Negate();
    // Adds the other case of every member (simple per-character mapping).
    void AddCaseVariants();

    bool Contains(char16_t c) const {
        if (c < 256)
            return (low_[c >> 6] >> (c & 63)) & 1;
        return ContainsHigh(c);
    }
    bool Intersects(const RegexCharSet& other) const;
    bool IsEmpty() const { return ranges_.empty(); }
    bool IsFull() const;
    // The one member when the set holds exactly one code unit, else -1.
    int SingleChar() const;

    // Named sets shared by the escapes and the POSIX class names.
    static RegexCharSet Digits();
    static RegexCharSet WordChars();
    static RegexCharSet Spaces();

private:
    bool ContainsHigh(char16_t c) const;
    void Normalize();

    std::vector<std::pair<char16_t, char16_t>> ranges_;
    std::uint64_t low_[4] = {0, 0, 0, 0};
};

} // namespace mirodate
