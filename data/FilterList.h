#pragma once
// A category filter: the entries of a comma-separated filter text. An item
// matches when its category text contains any entry as a substring. The
// test is deliberately loose (case-sensitive, no splitting of the item's
// text, no whole-word test: "Work" also matches "Homework"), as users'
// filters have always behaved.
#include <string>
#include <string_view>
#include <vector>

namespace mirodate {

class FilterList {
public:
    FilterList() = default;
    explicit FilterList(std::u16string_view text);

    bool IsEmpty() const { return entries_.empty(); }
    const std::vector<std::u16string>& Entries() const { return entries_; }

private:
    std::vector<std::u16string> entries_;
};

bool MatchesFilterList(std::u16string_view categories, const FilterList& list);

} // namespace mirodate
