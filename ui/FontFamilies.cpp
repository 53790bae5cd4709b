#include "ui/FontFamilies.h"

#include "platform/TextUtil.h"

#include <algorithm>
#include <glib.h>
#include <pango/pangocairo.h>

namespace mirodate {

std::vector<std::u16string> ListFontFamilies() {
    std::vector<std::u16string> names;
    PangoFontMap* map = pango_cairo_font_map_get_default(); // owned by pango
    PangoFontFamily** families = nullptr;
    int count = 0;
    pango_font_map_list_families(map, &families, &count);
    for (int i = 0; i < count; ++i)
        names.push_back(Utf8ToUtf16(pango_font_family_get_name(families[i])));
    g_free(families);
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

} // namespace mirodate
