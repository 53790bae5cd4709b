#pragma once
// A piece of text laid out once in a font and a width, then drawn as often as
// needed without measuring or shaping again: what list rows keep so that a
// scroll only paints. Single lines end with an ellipsis when too long; with
// `wrap` the text breaks into lines at word boundaries.
#include "platform/Types.h"

#include <string>
#include <string_view>

typedef struct _PangoLayout PangoLayout;

namespace mirodate {

class Dc;
class Font;

class TextLayout {
public:
    TextLayout() = default;
    TextLayout(const std::u16string& text, const Font& font, int width, bool wrap);
    ~TextLayout();
    TextLayout(TextLayout&& other) noexcept;
    TextLayout& operator=(TextLayout&& other) noexcept;
    TextLayout(const TextLayout&) = delete;
    TextLayout& operator=(const TextLayout&) = delete;

    // No screen shows more of a text than this, one line (ended with an
    // ellipsis) or wrapped in a box; the rest is cut before layout, so that a
    // subject of megabytes from a damaged file costs what a long real one does.
    static constexpr size_t kMaxLineChars = 2048;
    static constexpr size_t kMaxWrappedChars = 32768;
    // The part of `text` worth laying out (never half a surrogate pair).
    static std::u16string_view Shown(std::u16string_view text, bool wrap);

    bool IsEmpty() const { return layout_ == nullptr; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    // Draws with the top-left corner at (x, y).
    void Draw(Dc& dc, int x, int y, COLORREF color) const;

private:
    PangoLayout* layout_ = nullptr;
    int width_ = 0;
    int height_ = 0;
    int offsetX_ = 0;
};

} // namespace mirodate
