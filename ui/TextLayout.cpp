#include "ui/TextLayout.h"

#include "platform/TextUtil.h"
#include "ui/Dc.h"
#include "ui/Font.h"

#include <cairo.h>
#include <pango/pangocairo.h>
#include <utility>

namespace mirodate {

namespace {
// Layouts share one context (and so the font map's caches), with the same
// font options as the drawing context's own text.
PangoContext* LayoutContext() {
    static PangoContext* context = [] {
        PangoContext* created = pango_font_map_create_context(pango_cairo_font_map_get_default());
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
        pango_cairo_context_set_font_options(created, options);
        cairo_font_options_destroy(options);
        return created;
    }();
    return context;
}
} // namespace

std::u16string_view TextLayout::Shown(std::u16string_view text, bool wrap) {
    const size_t limit = wrap ? kMaxWrappedChars : kMaxLineChars;
    if (text.size() <= limit)
        return text;
    const bool splitsPair = text[limit - 1] >= 0xD800 && text[limit - 1] <= 0xDBFF;
    return text.substr(0, splitsPair ? limit - 1 : limit);
}

TextLayout::TextLayout(const std::u16string& text, const Font& font, int width, bool wrap) {
    const std::string utf8 = Utf16ToUtf8(Shown(text, wrap));
    layout_ = pango_layout_new(LayoutContext());
    pango_layout_set_font_description(layout_, font.Description());
    pango_layout_set_text(layout_, utf8.data(), static_cast<int>(utf8.size()));
    const LOGFONT& logFont = font.GetLogFont();
    if (logFont.lfUnderline || logFont.lfStrikeOut) {
        PangoAttrList* attrs = pango_attr_list_new();
        if (logFont.lfUnderline)
            pango_attr_list_insert(attrs, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        if (logFont.lfStrikeOut)
            pango_attr_list_insert(attrs, pango_attr_strikethrough_new(TRUE));
        pango_layout_set_attributes(layout_, attrs);
        pango_attr_list_unref(attrs);
    }
    if (width > 0) {
        pango_layout_set_width(layout_, width * PANGO_SCALE);
        if (wrap)
            pango_layout_set_wrap(layout_, PANGO_WRAP_WORD_CHAR);
        else
            pango_layout_set_ellipsize(layout_, PANGO_ELLIPSIZE_END);
    }
    if (!wrap)
        pango_layout_set_single_paragraph_mode(layout_, TRUE);
    PangoRectangle logical;
    pango_layout_get_pixel_extents(layout_, nullptr, &logical);
    width_ = logical.width;
    height_ = logical.height;
    offsetX_ = logical.x;
}

TextLayout::~TextLayout() {
    if (layout_)
        g_object_unref(layout_);
}

TextLayout::TextLayout(TextLayout&& other) noexcept
    : layout_(std::exchange(other.layout_, nullptr)), width_(other.width_), height_(other.height_),
      offsetX_(other.offsetX_) {}

TextLayout& TextLayout::operator=(TextLayout&& other) noexcept {
    if (this != &other) {
        if (layout_)
            g_object_unref(layout_);
        layout_ = std::exchange(other.layout_, nullptr);
        width_ = other.width_;
        height_ = other.height_;
        offsetX_ = other.offsetX_;
    }
    return *this;
}

void TextLayout::Draw(Dc& dc, int x, int y, COLORREF color) const {
    if (!layout_)
        return;
    cairo_t* cr = dc.Cairo();
    cairo_save(cr);
    cairo_set_source_rgb(cr, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_DEFAULT);
    cairo_move_to(cr, x - offsetX_, y);
    pango_cairo_show_layout(cr, layout_);
    cairo_restore(cr);
}

} // namespace mirodate
