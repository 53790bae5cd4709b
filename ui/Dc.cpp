#include "ui/Dc.h"

#include "platform/TextUtil.h"
#include "ui/Bitmap.h"
#include "ui/Font.h"
#include "ui/TextLayout.h"

#include <algorithm>
#include <cairo.h>
#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <pango/pangocairo.h>
#include <utility>

namespace mirodate {

namespace {
// The font of a context that has none selected, as the system's was.
constexpr int kFallbackFontHeight = -12;

void SetColor(cairo_t* cr, COLORREF color) {
    cairo_set_source_rgb(cr, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0);
}

// One text context for the UI thread: layouts made from it share the font map
// and its caches, which a context per call would rebuild each time.
PangoContext* TextContext() {
    static PangoContext* context = [] {
        PangoFontMap* map = pango_cairo_font_map_get_default();
        PangoContext* created = pango_font_map_create_context(map);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
        pango_cairo_context_set_font_options(created, options);
        cairo_font_options_destroy(options);
        return created;
    }();
    return context;
}

const Font& FallbackFont() {
    static const Font font([] {
        LOGFONT lf;
        lf.lfHeight = kFallbackFontHeight;
        return lf;
    }());
    return font;
}

// Removes the '&' mnemonic marks ("&&" stands for one '&').
std::u16string StripPrefixes(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'&') {
            if (i + 1 < text.size() && text[i + 1] == u'&') {
                out.push_back(u'&');
                ++i;
            }
            continue;
        }
        out.push_back(text[i]);
    }
    return out;
}

struct LayoutDeleter {
    void operator()(PangoLayout* layout) const { g_object_unref(layout); }
};
using LayoutPtr = std::unique_ptr<PangoLayout, LayoutDeleter>;

LayoutPtr MakeLayout(const Font& font, const std::string& utf8) {
    LayoutPtr layout(pango_layout_new(TextContext()));
    pango_layout_set_font_description(layout.get(), font.Description());
    pango_layout_set_text(layout.get(), utf8.data(), static_cast<int>(utf8.size()));
    const LOGFONT& lf = font.GetLogFont();
    if (lf.lfUnderline || lf.lfStrikeOut) {
        PangoAttrList* attrs = pango_attr_list_new();
        if (lf.lfUnderline)
            pango_attr_list_insert(attrs, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
        if (lf.lfStrikeOut)
            pango_attr_list_insert(attrs, pango_attr_strikethrough_new(TRUE));
        pango_layout_set_attributes(layout.get(), attrs);
        pango_attr_list_unref(attrs);
    }
    return layout;
}
} // namespace

Dc::Dc(Bitmap& target) : target_(&target) {
    // A null bitmap gets a context on a tiny scratch surface, so that calls
    // on it are harmless.
    cairo_surface_t* surface =
        target.Surface() ? target.Surface() : cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    cr_ = cairo_create(surface);
    if (!target.Surface())
        cairo_surface_destroy(surface);
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_NONE);
}

Dc::~Dc() {
    cairo_destroy(cr_);
    if (target_->Surface())
        cairo_surface_flush(target_->Surface());
}

int Dc::Width() const {
    return target_->Width();
}
int Dc::Height() const {
    return target_->Height();
}

void Dc::IntersectClip(const RECT& rect) {
    cairo_rectangle(cr_, rect.left, rect.top, std::max(0, rect.Width()), std::max(0, rect.Height()));
    cairo_clip(cr_);
}

void Dc::ResetClip() {
    cairo_reset_clip(cr_);
}

COLORREF Dc::SetTextColor(COLORREF color) {
    return std::exchange(textColor_, color);
}
int Dc::SetBkMode(int mode) {
    return std::exchange(bkMode_, mode);
}
COLORREF Dc::SetBkColor(COLORREF color) {
    return std::exchange(bkColor_, color);
}
const Font* Dc::SelectFont(const Font* font) {
    return std::exchange(font_, font);
}

void Dc::FillRect(const RECT& rect, COLORREF color) {
    if (rect.IsEmpty())
        return;
    SetColor(cr_, color);
    cairo_rectangle(cr_, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_fill(cr_);
}

void Dc::FillSolidRect(int x, int y, int width, int height, COLORREF color) {
    FillRect(RECT{x, y, x + width, y + height}, color);
}

void Dc::FrameRect(const RECT& rect, COLORREF color, int penWidth) {
    if (rect.IsEmpty() || penWidth <= 0)
        return;
    SetColor(cr_, color);
    cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_rectangle(cr_, rect.left, rect.top, rect.Width(), rect.Height());
    const int inner = 2 * penWidth;
    if (rect.Width() > inner && rect.Height() > inner)
        cairo_rectangle(cr_, rect.left + penWidth, rect.top + penWidth, rect.Width() - inner,
                        rect.Height() - inner);
    cairo_fill(cr_);
    cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
}

namespace {
void RoundedPath(cairo_t* cr, double x, double y, double w, double h, double rx, double ry) {
    rx = std::min(rx, w / 2);
    ry = std::min(ry, h / 2);
    if (rx <= 0 || ry <= 0) {
        cairo_rectangle(cr, x, y, w, h);
        return;
    }
    cairo_new_sub_path(cr);
    const double corners[4][3] = {{x + w - rx, y + ry, -M_PI / 2},
                                  {x + w - rx, y + h - ry, 0},
                                  {x + rx, y + h - ry, M_PI / 2},
                                  {x + rx, y + ry, M_PI}};
    for (const auto& c : corners) {
        cairo_save(cr);
        cairo_translate(cr, c[0], c[1]);
        cairo_scale(cr, rx, ry);
        cairo_arc(cr, 0, 0, 1, c[2], c[2] + M_PI / 2);
        cairo_restore(cr);
    }
    cairo_close_path(cr);
}

void FillAndStroke(cairo_t* cr, std::optional<COLORREF> fill, std::optional<COLORREF> pen, int penWidth) {
    if (fill) {
        SetColor(cr, *fill);
        if (pen)
            cairo_fill_preserve(cr);
        else
            cairo_fill(cr);
    }
    if (pen) {
        SetColor(cr, *pen);
        cairo_set_line_width(cr, std::max(1, penWidth));
        cairo_stroke(cr);
    }
    cairo_new_path(cr);
}
} // namespace

void Dc::RoundRect(const RECT& rect, int ellipseWidth, int ellipseHeight, std::optional<COLORREF> fill,
                   std::optional<COLORREF> pen, int penWidth) {
    if (rect.IsEmpty())
        return;
    cairo_save(cr_);
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_DEFAULT);
    // The outline runs inside the rectangle, along the pixel centres.
    const double inset = pen ? std::max(1, penWidth) / 2.0 : 0.0;
    RoundedPath(cr_, rect.left + inset, rect.top + inset, rect.Width() - 2 * inset, rect.Height() - 2 * inset,
                ellipseWidth / 2.0, ellipseHeight / 2.0);
    FillAndStroke(cr_, fill, pen, penWidth);
    cairo_restore(cr_);
}

void Dc::Ellipse(const RECT& rect, std::optional<COLORREF> fill, std::optional<COLORREF> pen, int penWidth) {
    RoundRect(rect, rect.Width(), rect.Height(), fill, pen, penWidth);
}

void Dc::Polygon(const std::vector<POINT>& points, std::optional<COLORREF> fill, std::optional<COLORREF> pen,
                 int penWidth) {
    if (points.size() < 2)
        return;
    cairo_save(cr_);
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_DEFAULT);
    cairo_move_to(cr_, points[0].x + 0.5, points[0].y + 0.5);
    for (size_t i = 1; i < points.size(); ++i)
        cairo_line_to(cr_, points[i].x + 0.5, points[i].y + 0.5);
    cairo_close_path(cr_);
    FillAndStroke(cr_, fill, pen, penWidth);
    cairo_restore(cr_);
}

void Dc::Line(int x1, int y1, int x2, int y2, COLORREF color, int penWidth) {
    penWidth = std::max(1, penWidth);
    // Straight lines are filled as rectangles, exact to the pixel.
    if (y1 == y2) {
        const int from = x2 > x1 ? x1 : x2 + 1, to = x2 > x1 ? x2 : x1 + 1;
        const int top = y1 - (penWidth - 1) / 2;
        FillRect(RECT{from, top, to, top + penWidth}, color);
        return;
    }
    if (x1 == x2) {
        FillRect(RECT{x1 - (penWidth - 1) / 2, y2 > y1 ? y1 : y2 + 1, x1 - (penWidth - 1) / 2 + penWidth,
                      y2 > y1 ? y2 : y1 + 1},
                 color);
        return;
    }
    cairo_save(cr_);
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_DEFAULT);
    SetColor(cr_, color);
    cairo_set_line_width(cr_, penWidth);
    cairo_move_to(cr_, x1 + 0.5, y1 + 0.5);
    cairo_line_to(cr_, x2 + 0.5, y2 + 0.5);
    cairo_stroke(cr_);
    cairo_restore(cr_);
}

void Dc::GradientFillVertical(const RECT& rect, COLORREF top, COLORREF bottom) {
    if (rect.IsEmpty())
        return;
    // Pixel centres: the first row is exactly `top`, as the gradient fill of
    // the platform drew it, and each row below moves 1/height towards `bottom`.
    cairo_pattern_t* pattern = cairo_pattern_create_linear(0, rect.top + 0.5, 0, rect.bottom + 0.5);
    cairo_pattern_add_color_stop_rgb(pattern, 0, GetRValue(top) / 255.0, GetGValue(top) / 255.0,
                                     GetBValue(top) / 255.0);
    cairo_pattern_add_color_stop_rgb(pattern, 1, GetRValue(bottom) / 255.0, GetGValue(bottom) / 255.0,
                                     GetBValue(bottom) / 255.0);
    cairo_set_source(cr_, pattern);
    cairo_rectangle(cr_, rect.left, rect.top, rect.Width(), rect.Height());
    cairo_fill(cr_);
    cairo_pattern_destroy(pattern);
}

void Dc::BitBlt(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY) {
    if (!source.Surface() || width <= 0 || height <= 0)
        return;
    cairo_save(cr_);
    cairo_rectangle(cr_, x, y, width, height);
    cairo_clip(cr_);
    cairo_set_operator(cr_, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cr_, source.Surface(), x - sourceX, y - sourceY);
    cairo_pattern_set_filter(cairo_get_source(cr_), CAIRO_FILTER_NEAREST);
    cairo_paint(cr_);
    cairo_restore(cr_);
}

void Dc::BitBlt(int x, int y, int width, int height, const Dc& source, int sourceX, int sourceY) {
    cairo_surface_flush(source.Target().Surface());
    BitBlt(x, y, width, height, source.Target(), sourceX, sourceY);
}

namespace {
// Paints `surface` (a part of it) stretched over the destination rectangle.
void PaintStretched(cairo_t* cr, cairo_surface_t* surface, int x, int y, int width, int height, int sourceX,
                    int sourceY, int sourceWidth, int sourceHeight, cairo_filter_t filter, double alpha) {
    if (width <= 0 || height <= 0 || sourceWidth <= 0 || sourceHeight <= 0)
        return;
    cairo_save(cr);
    cairo_rectangle(cr, x, y, width, height);
    cairo_clip(cr);
    cairo_translate(cr, x, y);
    cairo_scale(cr, static_cast<double>(width) / sourceWidth, static_cast<double>(height) / sourceHeight);
    cairo_set_source_surface(cr, surface, -sourceX, -sourceY);
    cairo_pattern_set_filter(cairo_get_source(cr), filter);
    cairo_pattern_set_extend(cairo_get_source(cr), CAIRO_EXTEND_PAD);
    if (alpha >= 1.0)
        cairo_paint(cr);
    else
        cairo_paint_with_alpha(cr, alpha);
    cairo_restore(cr);
}
} // namespace

void Dc::StretchBlt(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight) {
    if (!source.Surface())
        return;
    const bool same = width == sourceWidth && height == sourceHeight;
    PaintStretched(cr_, source.Surface(), x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight,
                   same ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR, 1.0);
}

void Dc::TransparentImage(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY,
                          int sourceWidth, int sourceHeight, COLORREF keyColor) {
    if (!source.Surface() || sourceWidth <= 0 || sourceHeight <= 0)
        return;
    // The part of the source as a picture with alpha: key pixels become holes.
    Bitmap masked(sourceWidth, sourceHeight, Bitmap::Format::Argb);
    if (!masked.Surface())
        return;
    cairo_surface_flush(source.Surface());
    cairo_surface_flush(masked.Surface());
    unsigned char* out = cairo_image_surface_get_data(masked.Surface());
    const int outStride = cairo_image_surface_get_stride(masked.Surface());
    const unsigned char* in = cairo_image_surface_get_data(source.Surface());
    const int inStride = cairo_image_surface_get_stride(source.Surface());
    const bool wide = source.GetFormat() != Bitmap::Format::Rgb565;
    const std::uint32_t key = (static_cast<std::uint32_t>(GetRValue(keyColor)) << 16) |
                              (static_cast<std::uint32_t>(GetGValue(keyColor)) << 8) | GetBValue(keyColor);
    for (int row = 0; row < sourceHeight; ++row) {
        auto* dst = reinterpret_cast<std::uint32_t*>(out + static_cast<std::ptrdiff_t>(row) * outStride);
        const int sy = sourceY + row;
        for (int col = 0; col < sourceWidth; ++col) {
            const int sx = sourceX + col;
            dst[col] = 0;
            if (sx < 0 || sy < 0 || sx >= source.Width() || sy >= source.Height())
                continue;
            if (wide) {
                const std::uint32_t v = reinterpret_cast<const std::uint32_t*>(
                    in + static_cast<std::ptrdiff_t>(sy) * inStride)[sx];
                if (source.HasAlpha()) {
                    // Keyed pictures are opaque; a transparent pixel stays a hole.
                    if ((v >> 24) == 0)
                        continue;
                    if ((v >> 24) != 0xFF) {
                        dst[col] = v;
                        continue;
                    }
                }
                if ((v & 0xFFFFFF) != key)
                    dst[col] = 0xFF000000u | v;
            } else {
                const COLORREF c = source.GetPixel(sx, sy);
                if (c != keyColor)
                    dst[col] = 0xFF000000u | (static_cast<std::uint32_t>(GetRValue(c)) << 16) |
                               (static_cast<std::uint32_t>(GetGValue(c)) << 8) | GetBValue(c);
            }
        }
    }
    cairo_surface_mark_dirty(masked.Surface());
    // Nearest-pixel stretching, so that no key colour bleeds into the edges.
    PaintStretched(cr_, masked.Surface(), x, y, width, height, 0, 0, sourceWidth, sourceHeight,
                   CAIRO_FILTER_NEAREST, 1.0);
}

void Dc::AlphaBlend(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight, int alpha) {
    if (!source.Surface())
        return;
    alpha = std::clamp(alpha, 0, 255);
    const bool same = width == sourceWidth && height == sourceHeight;
    PaintStretched(cr_, source.Surface(), x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight,
                   same ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR, alpha / 255.0);
}

void Dc::DrawIcon(int x, int y, const Bitmap& icon) {
    if (!icon.Surface())
        return;
    cairo_save(cr_);
    cairo_set_source_surface(cr_, icon.Surface(), x, y);
    cairo_rectangle(cr_, x, y, icon.Width(), icon.Height());
    cairo_fill(cr_);
    cairo_restore(cr_);
}

int Dc::DrawText(const std::u16string& text, RECT& rect, UINT format) {
    const Font& font = font_ ? *font_ : FallbackFont();
    const std::u16string_view shown =
        TextLayout::Shown(text, (format & DT_WORDBREAK) && !(format & DT_SINGLELINE));
    const std::string utf8 = (format & DT_NOPREFIX) ? Utf16ToUtf8(shown) : Utf16ToUtf8(StripPrefixes(shown));
    LayoutPtr layout = MakeLayout(font, utf8);
    PangoLayout* pl = layout.get();
    const int boxWidth = std::max(0, rect.Width());
    const bool single = (format & DT_SINGLELINE) != 0;
    if (single)
        pango_layout_set_single_paragraph_mode(pl, TRUE);
    if ((format & DT_WORDBREAK) && !single) {
        pango_layout_set_width(pl, boxWidth * PANGO_SCALE);
        pango_layout_set_wrap(pl, PANGO_WRAP_WORD_CHAR);
        const UINT align = format & (DT_CENTER | DT_RIGHT);
        pango_layout_set_alignment(pl, align == DT_CENTER  ? PANGO_ALIGN_CENTER
                                       : align == DT_RIGHT ? PANGO_ALIGN_RIGHT
                                                           : PANGO_ALIGN_LEFT);
    } else if ((format & DT_END_ELLIPSIS) && !(format & DT_CALCRECT)) {
        pango_layout_set_width(pl, boxWidth * PANGO_SCALE);
        pango_layout_set_ellipsize(pl, PANGO_ELLIPSIZE_END);
    }
    PangoRectangle logical;
    pango_layout_get_pixel_extents(pl, nullptr, &logical);
    const int textWidth = logical.width;
    const int textHeight = logical.height;

    if (format & DT_CALCRECT) {
        if (!(format & DT_WORDBREAK) || single)
            rect.right = rect.left + textWidth;
        rect.bottom = rect.top + textHeight;
        return textHeight;
    }

    int x = rect.left;
    if (!(format & DT_WORDBREAK) || single) {
        const int shown = std::min(textWidth, (format & DT_END_ELLIPSIS) ? boxWidth : textWidth);
        if (format & DT_CENTER)
            x = rect.left + (boxWidth - shown) / 2;
        else if (format & DT_RIGHT)
            x = rect.right - shown;
    }
    int y = rect.top;
    if (single && (format & DT_VCENTER))
        y = rect.top + (rect.Height() - textHeight) / 2;
    else if (single && (format & DT_BOTTOM))
        y = rect.bottom - textHeight;

    cairo_save(cr_);
    if (!(format & DT_NOCLIP)) {
        cairo_rectangle(cr_, rect.left, rect.top, std::max(0, rect.Width()), std::max(0, rect.Height()));
        cairo_clip(cr_);
    }
    if (bkMode_ == OPAQUE) {
        SetColor(cr_, bkColor_);
        cairo_rectangle(cr_, x, y, textWidth, textHeight);
        cairo_fill(cr_);
    }
    SetColor(cr_, textColor_);
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_DEFAULT);
    cairo_move_to(cr_, x - logical.x, y);
    pango_cairo_show_layout(cr_, pl);
    cairo_restore(cr_);
    return textHeight;
}

SIZE Dc::GetTextExtent(const std::u16string& text) {
    const Font& font = font_ ? *font_ : FallbackFont();
    LayoutPtr layout = MakeLayout(font, Utf16ToUtf8(text));
    PangoRectangle logical;
    pango_layout_get_pixel_extents(layout.get(), nullptr, &logical);
    return SIZE{logical.width, logical.height};
}

COLORREF Dc::GetPixel(int x, int y) const {
    if (target_->Surface())
        cairo_surface_flush(target_->Surface());
    return target_->GetPixel(x, y);
}

void Dc::SetPixel(int x, int y, COLORREF color) {
    if (target_->Surface())
        cairo_surface_flush(target_->Surface());
    target_->SetPixel(x, y, color);
}

} // namespace mirodate
