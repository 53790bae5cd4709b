#pragma once
// Category names and their colours. The list of categories is the sorted
// union of the names the store's items use and the names that have a stored
// colour ("CatColor[<name>]" in the settings); colours are kept in a
// process-wide map rebuilt by LoadCategoryColors.
#include "platform/Types.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mirodate {

class Categories {
public:
    static constexpr COLORREF kDefaultBirthdayColor = RGB(204, 204, 0);
    static constexpr COLORREF kDefaultAnniversaryColor = RGB(0, 204, 204);

    // Where the names used by the store's items come from (set by PimStore).
    using NameProvider = std::function<std::vector<std::u16string>()>;
    static void SetNameProvider(NameProvider provider);

    // Trimmed, non-empty, sorted, each name once.
    static void LoadCategories(std::vector<std::u16string>& list);
    static void LoadCategoryColors();
    // "rrggbb" or one leading character and "rrggbb" (7 in all); anything
    // else is black.
    static COLORREF ParseColor(std::u16string_view text);
    // The colours of the names in a category text, in its order; names
    // without a colour add nothing.
    static void GetItemColors(std::u16string_view categories, std::vector<COLORREF>& colors);
    static bool GetCategoryColor(const std::u16string& name, COLORREF& color);
    static COLORREF GetBirthdayColor();
    static COLORREF GetAnniversaryColor();
    // Forgets every colour and restores the birthday and anniversary defaults.
    static void Reset();

    // Splits a comma-separated category text into trimmed, non-empty names.
    static std::vector<std::u16string> Split(std::u16string_view categories);
};

} // namespace mirodate
