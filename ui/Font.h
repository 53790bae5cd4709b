#pragma once
// A font chosen by logical description (height in pixels, weight, style,
// face), as the drawing calls select it.
#include <string>

typedef struct _PangoFontDescription PangoFontDescription;

namespace mirodate {

struct LOGFONT {
    int lfHeight = 0; // negative: character height in pixels; positive: cell height
    int lfWeight = 400;
    bool lfItalic = false;
    bool lfUnderline = false;
    bool lfStrikeOut = false;
    std::u16string lfFaceName;
};

constexpr int FW_NORMAL = 400;
constexpr int FW_BOLD = 700;

class Font {
public:
    explicit Font(const LOGFONT& logFont);
    ~Font();
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    const LOGFONT& GetLogFont() const { return logFont_; }
    PangoFontDescription* Description() const { return description_; }
    // The pixel size pango lays the text out with.
    int PixelSize() const { return pixelSize_; }

private:
    LOGFONT logFont_;
    PangoFontDescription* description_ = nullptr;
    int pixelSize_ = 0;
};

} // namespace mirodate
