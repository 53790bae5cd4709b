#include "ui/Font.h"

#include "platform/TextUtil.h"

#include <algorithm>
#include <cstdlib>
#include <pango/pango.h>

namespace mirodate {

namespace {
// A positive (cell) height includes the internal leading; the character
// height is about this share of it.
constexpr double kCellToCharHeight = 0.8;
// Height when the description gives none.
constexpr int kDefaultPixelSize = 12;
// Larger text would not fit any screen; pango is not asked to lay it out.
constexpr int kMaxPixelSize = 1024;
} // namespace

Font::Font(const LOGFONT& logFont) : logFont_(logFont) {
    const long long height = logFont.lfHeight; // wide enough to negate any int
    if (height < 0)
        pixelSize_ = static_cast<int>(std::min<long long>(-height, kMaxPixelSize));
    else if (height > 0)
        pixelSize_ = static_cast<int>(std::min(height * kCellToCharHeight + 0.5, double{kMaxPixelSize}));
    if (pixelSize_ <= 0)
        pixelSize_ = kDefaultPixelSize;
    description_ = pango_font_description_new();
    const std::string face = logFont.lfFaceName.empty() ? "Sans" : Utf16ToUtf8(logFont.lfFaceName);
    pango_font_description_set_family(description_, face.c_str());
    pango_font_description_set_absolute_size(description_, pixelSize_ * PANGO_SCALE);
    pango_font_description_set_weight(
        description_, static_cast<PangoWeight>(logFont.lfWeight > 0 ? logFont.lfWeight : FW_NORMAL));
    pango_font_description_set_style(description_,
                                     logFont.lfItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
}

Font::~Font() {
    pango_font_description_free(description_);
}

} // namespace mirodate
