#include "data/FilterList.h"

#include "data/Categories.h"

namespace mirodate {

FilterList::FilterList(std::u16string_view text) : entries_(Categories::Split(text)) {}

bool MatchesFilterList(std::u16string_view categories, const FilterList& list) {
    for (const auto& entry : list.Entries())
        if (categories.find(entry) != std::u16string_view::npos)
            return true;
    return false;
}

} // namespace mirodate
