#include "ui/TextFieldLayout.h"

#include "platform/TextUtil.h"
#include "ui/Dc.h"
#include "ui/Font.h"

#include <algorithm>
#include <cairo.h>
#include <pango/pangocairo.h>

namespace mirodate {

namespace {
PangoContext* FieldContext() {
    // One context for every field, with the drawing context's font options,
    // so that measured and drawn text agree.
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

guint16 Channel(int value) {
    return static_cast<guint16>(value * 257);
}

int Pixels(int pangoUnits) {
    return PANGO_PIXELS(pangoUnits);
}
} // namespace

TextFieldLayout::TextFieldLayout() : layout_(pango_layout_new(FieldContext())) {}

TextFieldLayout::~TextFieldLayout() {
    g_object_unref(layout_);
}

void TextFieldLayout::SetText(const std::u16string& text, const Font& font, int wrapWidth) {
    const std::string utf8 = Utf16ToUtf8(text);
    // Every code unit's byte offset; the low half of a pair shares the
    // offset after its code point, so that it maps to a whole character.
    byteOf_.resize(text.size() + 1);
    int byte = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        byteOf_[i] = byte;
        const char16_t unit = text[i];
        if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            byte += 4;
            byteOf_[++i] = byte;
        } else {
            byte += unit < 0x80 ? 1 : (unit < 0x800 ? 2 : 3);
        }
    }
    byteOf_[text.size()] = byte;
    length_ = static_cast<int>(text.size());

    pango_layout_set_font_description(layout_, font.Description());
    pango_layout_set_attributes(layout_, nullptr);
    marks_ = Marks{};
    if (wrapWidth > 0) {
        pango_layout_set_width(layout_, wrapWidth * PANGO_SCALE);
        pango_layout_set_wrap(layout_, PANGO_WRAP_WORD_CHAR);
        pango_layout_set_single_paragraph_mode(layout_, FALSE);
    } else {
        pango_layout_set_width(layout_, -1);
        pango_layout_set_single_paragraph_mode(layout_, TRUE);
    }
    pango_layout_set_text(layout_, utf8.data(), static_cast<int>(utf8.size()));
    PangoRectangle logical;
    pango_layout_get_pixel_extents(layout_, nullptr, &logical);
    width_ = logical.width;
    offsetX_ = logical.x;
    PangoRectangle line;
    pango_layout_line_get_pixel_extents(pango_layout_get_line_readonly(layout_, 0), nullptr, &line);
    lineHeight_ = std::max(1, line.height);
    height_ = std::max(lineHeight_, logical.height);
}

int TextFieldLayout::ByteOf(int index) const {
    return byteOf_[static_cast<size_t>(std::clamp(index, 0, length_))];
}

int TextFieldLayout::IndexOfByte(int byte) const {
    // The last position at the byte: the low half of a pair shares the
    // offset of the character after it, and the position after the pair is
    // the one meant. Pango only hands out offsets of character starts.
    auto it = std::upper_bound(byteOf_.begin(), byteOf_.end(), byte);
    if (it != byteOf_.begin())
        --it;
    return static_cast<int>(std::min<std::ptrdiff_t>(it - byteOf_.begin(), length_));
}

RECT TextFieldLayout::CaretRect(int index) const {
    PangoRectangle strong;
    pango_layout_get_cursor_pos(layout_, ByteOf(index), &strong, nullptr);
    const int x = Pixels(strong.x) - offsetX_, y = Pixels(strong.y);
    return RECT{x, y, x + 1, y + std::max(1, Pixels(strong.height))};
}

int TextFieldLayout::HitTest(int x, int y) const {
    int byte = 0, trailing = 0;
    pango_layout_xy_to_index(layout_, (x + offsetX_) * PANGO_SCALE, y * PANGO_SCALE, &byte, &trailing);
    const char* text = pango_layout_get_text(layout_);
    const char* at = text + byte;
    for (int i = 0; i < trailing && *at; ++i)
        at = g_utf8_next_char(at);
    return IndexOfByte(static_cast<int>(at - text));
}

int TextFieldLayout::LineStart(int index) const {
    int line = 0, x = 0;
    pango_layout_index_to_line_x(layout_, ByteOf(index), FALSE, &line, &x);
    PangoLayoutLine* row = pango_layout_get_line_readonly(layout_, line);
    return row ? IndexOfByte(row->start_index) : 0;
}

int TextFieldLayout::LineEnd(int index) const {
    int line = 0, x = 0;
    pango_layout_index_to_line_x(layout_, ByteOf(index), FALSE, &line, &x);
    PangoLayoutLine* row = pango_layout_get_line_readonly(layout_, line);
    if (!row)
        return length_;
    int end = row->start_index + row->length;
    // A wrapped line ends before the blank it broke at; a hard break before the break.
    const char* text = pango_layout_get_text(layout_);
    if (line + 1 < pango_layout_get_line_count(layout_) && end > row->start_index &&
        (text[end - 1] == ' ' || text[end - 1] == '\n'))
        --end;
    return IndexOfByte(end);
}

void TextFieldLayout::SetMarks(int selectionStart, int selectionEnd, COLORREF selectionText,
                               COLORREF selectionBack, int compositionStart, int compositionEnd) {
    Marks marks;
    if (selectionEnd > selectionStart) {
        marks.selectionStart = selectionStart;
        marks.selectionEnd = selectionEnd;
        marks.selectionText = selectionText;
        marks.selectionBack = selectionBack;
    }
    if (compositionEnd > compositionStart) {
        marks.compositionStart = compositionStart;
        marks.compositionEnd = compositionEnd;
    }
    if (marks == marks_)
        return;
    marks_ = marks;
    PangoAttrList* attributes = pango_attr_list_new();
    if (selectionEnd > selectionStart) {
        const guint start = static_cast<guint>(ByteOf(selectionStart)),
                    end = static_cast<guint>(ByteOf(selectionEnd));
        PangoAttribute* back =
            pango_attr_background_new(Channel(GetRValue(selectionBack)), Channel(GetGValue(selectionBack)),
                                      Channel(GetBValue(selectionBack)));
        back->start_index = start;
        back->end_index = end;
        pango_attr_list_insert(attributes, back);
        PangoAttribute* fore =
            pango_attr_foreground_new(Channel(GetRValue(selectionText)), Channel(GetGValue(selectionText)),
                                      Channel(GetBValue(selectionText)));
        fore->start_index = start;
        fore->end_index = end;
        pango_attr_list_insert(attributes, fore);
    }
    if (compositionEnd > compositionStart) {
        PangoAttribute* underline = pango_attr_underline_new(PANGO_UNDERLINE_SINGLE);
        underline->start_index = static_cast<guint>(ByteOf(compositionStart));
        underline->end_index = static_cast<guint>(ByteOf(compositionEnd));
        pango_attr_list_insert(attributes, underline);
    }
    pango_layout_set_attributes(layout_, attributes);
    pango_attr_list_unref(attributes);
}

void TextFieldLayout::Draw(Dc& dc, int x, int y, COLORREF color) const {
    cairo_t* cr = dc.Cairo();
    cairo_save(cr);
    cairo_set_source_rgb(cr, GetRValue(color) / 255.0, GetGValue(color) / 255.0, GetBValue(color) / 255.0);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_DEFAULT);
    // Only the lines inside the clip are drawn: a long note in a small field
    // costs no more to paint than what shows.
    double clipLeft = 0, clipTop = 0, clipRight = 0, clipBottom = 0;
    cairo_clip_extents(cr, &clipLeft, &clipTop, &clipRight, &clipBottom);
    PangoLayoutIter* iter = pango_layout_get_iter(layout_);
    do {
        int top = 0, bottom = 0;
        pango_layout_iter_get_line_yrange(iter, &top, &bottom);
        if (y + Pixels(bottom) < clipTop)
            continue;
        if (y + Pixels(top) > clipBottom)
            break;
        PangoRectangle logical;
        pango_layout_iter_get_line_extents(iter, nullptr, &logical);
        cairo_move_to(cr, x - offsetX_ + Pixels(logical.x), y + Pixels(pango_layout_iter_get_baseline(iter)));
        pango_cairo_show_layout_line(cr, pango_layout_iter_get_line_readonly(iter));
    } while (pango_layout_iter_next_line(iter));
    pango_layout_iter_free(iter);
    cairo_restore(cr);
}

} // namespace mirodate
