#include "ui/RichTextLayout.h"

#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/LinkTarget.h"
#include "ui/MarkupParser.h"

#include <algorithm>
#include <cairo.h>
#include <climits>
#include <pango/pangocairo.h>

namespace mirodate {

namespace {
// Superscript and subscript: smaller, raised by a third or lowered by a
// fifth of the font size.
constexpr double kScriptScale = 0.7;
constexpr int kSuperscriptRiseDivisor = 3;
constexpr int kSubscriptDropDivisor = 5;
// The blank line between paragraphs is half a line high.
constexpr double kParagraphGapScale = 0.5;

// One context for all rich layouts (and so one set of font caches), with
// the font options of the rest of the toolkit's text.
PangoContext* RichContext() {
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

void Add(PangoAttrList* list, PangoAttribute* attribute, std::size_t begin, std::size_t end) {
    attribute->start_index = static_cast<guint>(begin);
    attribute->end_index = static_cast<guint>(end);
    pango_attr_list_insert(list, attribute);
}

PangoAttribute* Foreground(COLORREF color) {
    // pango colours are 16 bits per channel.
    return pango_attr_foreground_new(static_cast<guint16>(GetRValue(color) * 257),
                                     static_cast<guint16>(GetGValue(color) * 257),
                                     static_cast<guint16>(GetBValue(color) * 257));
}

// The drawn size of a picture from its own size and the sizes the mark-up
// asks for (-1: not given), kept within the layout's width.
SIZE PictureSize(const Bitmap& bitmap, const MarkupImage& image, int maxWidth) {
    int w = image.width, h = image.height;
    const int naturalW = bitmap.IsNull() ? 0 : bitmap.Width(), naturalH = bitmap.IsNull() ? 0 : bitmap.Height();
    if (w < 0 && h < 0) {
        w = naturalW;
        h = naturalH;
    } else if (w < 0) {
        w = naturalH > 0 ? static_cast<int>(static_cast<long long>(naturalW) * h / naturalH) : h;
    } else if (h < 0) {
        h = naturalW > 0 ? static_cast<int>(static_cast<long long>(naturalH) * w / naturalW) : w;
    }
    maxWidth = std::max(1, maxWidth);
    if (w > maxWidth) {
        h = static_cast<int>(static_cast<long long>(h) * maxWidth / w);
        w = maxWidth;
    }
    return SIZE{std::clamp(w, 0, MarkupParser::kMaxImageSide), std::clamp(h, 0, MarkupParser::kMaxImageSide)};
}
} // namespace

RichTextLayout::~RichTextLayout() { Clear(); }

void RichTextLayout::Clear() {
    if (layout_) g_object_unref(layout_);
    layout_ = nullptr;
    lines_.clear();
    linkBoxes_.clear();
    pictures_.clear();
    bitmaps_.clear();
    height_ = width_ = 0;
}

void RichTextLayout::Build(const MarkupDocument& document, const Font& font, int width, COLORREF linkColor,
                           const PictureSource& pictures) {
    Clear();
    width_ = std::max(1, width);
    layout_ = pango_layout_new(RichContext());
    pango_layout_set_font_description(layout_, font.Description());
    pango_layout_set_width(layout_, width_ * PANGO_SCALE);
    pango_layout_set_wrap(layout_, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout_, document.text.data(), static_cast<int>(document.text.size()));

    // Which links wear the link look: all but the owner's own actions.
    std::vector<bool> decorated(document.links.size());
    for (std::size_t i = 0; i < document.links.size(); ++i)
        decorated[i] = LinkTarget::Classify(document.links[i].target).kind != LinkKind::Action;

    PangoAttrList* attributes = pango_attr_list_new();
    const int fontPixels = std::max(1, font.PixelSize());
    for (const MarkupRun& run : document.runs) {
        const MarkupStyle& s = run.style;
        const bool linkLook = s.link >= 0 && decorated[static_cast<std::size_t>(s.link)];
        if (s.Has(MarkupStyle::kBold)) Add(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD), run.begin, run.end);
        if (s.Has(MarkupStyle::kItalic))
            Add(attributes, pango_attr_style_new(PANGO_STYLE_ITALIC), run.begin, run.end);
        if (s.Has(MarkupStyle::kUnderline) || linkLook)
            Add(attributes, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE), run.begin, run.end);
        if (s.Has(MarkupStyle::kStrike)) Add(attributes, pango_attr_strikethrough_new(TRUE), run.begin, run.end);
        if (s.Has(MarkupStyle::kSuperscript) || s.Has(MarkupStyle::kSubscript)) {
            const int rise = s.Has(MarkupStyle::kSuperscript) ? fontPixels / kSuperscriptRiseDivisor
                                                              : -fontPixels / kSubscriptDropDivisor;
            Add(attributes, pango_attr_rise_new(rise * PANGO_SCALE), run.begin, run.end);
            Add(attributes, pango_attr_scale_new(kScriptScale), run.begin, run.end);
        }
        if (s.Has(MarkupStyle::kParagraphGap))
            Add(attributes, pango_attr_scale_new(kParagraphGapScale), run.begin, run.end);
        if (linkLook && !(s.hasColor && s.colorInsideLink))
            Add(attributes, Foreground(linkColor), run.begin, run.end);
        else if (s.hasColor)
            Add(attributes, Foreground(s.color), run.begin, run.end);
    }

    // Pictures take the place of their placeholder character.
    std::vector<SIZE> sizes(document.images.size());
    for (std::size_t i = 0; i < document.images.size(); ++i) {
        const MarkupImage& image = document.images[i];
        auto found = bitmaps_.find(image.id);
        if (found == bitmaps_.end())
            found = bitmaps_.emplace(image.id, pictures ? pictures(image.id) : Bitmap()).first;
        const int hspace = std::min(image.hspace, width_ / 4);
        const int vspace = std::min(image.vspace, MarkupParser::kMaxImageSide);
        sizes[i] = PictureSize(found->second, image, width_ - 2 * hspace);
        PangoRectangle box{0, -(sizes[i].cy + 2 * vspace) * PANGO_SCALE, (sizes[i].cx + 2 * hspace) * PANGO_SCALE,
                           (sizes[i].cy + 2 * vspace) * PANGO_SCALE};
        Add(attributes, pango_attr_shape_new(&box, &box), image.offset, image.offset + 3);
    }
    pango_layout_set_attributes(layout_, attributes);
    pango_attr_list_unref(attributes);

    PangoRectangle logical;
    pango_layout_get_pixel_extents(layout_, nullptr, &logical);
    height_ = logical.y + logical.height;

    PangoLayoutIter* iter = pango_layout_get_iter(layout_);
    do {
        PangoRectangle extents;
        pango_layout_iter_get_line_extents(iter, nullptr, &extents);
        Line line;
        line.line = pango_layout_iter_get_line_readonly(iter);
        line.start = line.line->start_index;
        line.top = PANGO_PIXELS_FLOOR(extents.y);
        line.bottom = PANGO_PIXELS_CEIL(extents.y + extents.height);
        line.baseline = PANGO_PIXELS(pango_layout_iter_get_baseline(iter));
        line.x = PANGO_PIXELS(extents.x);
        lines_.push_back(line);
    } while (pango_layout_iter_next_line(iter));
    pango_layout_iter_free(iter);

    for (std::size_t i = 0; i < document.images.size(); ++i) {
        const MarkupImage& image = document.images[i];
        if (sizes[i].cx <= 0 || sizes[i].cy <= 0) continue;
        PangoRectangle place;
        pango_layout_index_to_pos(layout_, static_cast<int>(image.offset), &place);
        const int lineIndex = LineOfIndex(image.offset);
        if (lineIndex < 0) continue;
        const int hspace = std::min(image.hspace, width_ / 4);
        const int vspace = std::min(image.vspace, MarkupParser::kMaxImageSide);
        const Bitmap& bitmap = bitmaps_.at(image.id);
        Picture picture;
        picture.bitmap = bitmap.IsNull() ? nullptr : &bitmap;
        const int left = PANGO_PIXELS(place.x) + hspace;
        const int top = lines_[static_cast<std::size_t>(lineIndex)].baseline - sizes[i].cy - vspace;
        picture.rect = RECT{left, top, left + sizes[i].cx, top + sizes[i].cy};
        pictures_.push_back(picture);
        if (image.link >= 0) linkBoxes_.push_back(LinkBox{image.link, picture.rect});
    }
    PlaceLinks(document);
}

int RichTextLayout::LineOfIndex(std::size_t index) const {
    if (lines_.empty()) return -1;
    auto it = std::upper_bound(lines_.begin(), lines_.end(), index,
                               [](std::size_t i, const Line& line) { return i < static_cast<std::size_t>(line.start); });
    return std::max(0, static_cast<int>(it - lines_.begin()) - 1);
}

void RichTextLayout::PlaceLinks(const MarkupDocument& document) {
    for (std::size_t i = 0; i < document.links.size(); ++i) {
        const MarkupLink& link = document.links[i];
        const int first = LineOfIndex(link.begin);
        if (first < 0) continue;
        for (std::size_t l = static_cast<std::size_t>(first); l < lines_.size(); ++l) {
            const Line& line = lines_[l];
            if (static_cast<std::size_t>(line.start) >= link.end) break;
            const int lineEnd = line.start + line.line->length;
            const int begin = std::max(line.start, static_cast<int>(link.begin));
            const int end = std::min(lineEnd, static_cast<int>(link.end));
            if (begin >= end) continue;
            int* ranges = nullptr;
            int count = 0;
            pango_layout_line_get_x_ranges(line.line, begin, end, &ranges, &count);
            for (int r = 0; r < count; ++r) {
                const int left = PANGO_PIXELS_FLOOR(ranges[2 * r]);
                const int right = PANGO_PIXELS_CEIL(ranges[2 * r + 1]);
                if (right > left)
                    linkBoxes_.push_back(LinkBox{static_cast<int>(i), RECT{left, line.top, right, line.bottom}});
            }
            g_free(ranges);
        }
    }
}

void RichTextLayout::Draw(Dc& dc, int x, int y, int top, int bottom, COLORREF textColor) const {
    if (!layout_) return;
    cairo_t* cr = dc.Cairo();
    cairo_save(cr);
    cairo_set_source_rgb(cr, GetRValue(textColor) / 255.0, GetGValue(textColor) / 255.0,
                         GetBValue(textColor) / 255.0);
    cairo_set_antialias(cr, CAIRO_ANTIALIAS_DEFAULT);
    // Lines are in order: start at the first one that reaches below `top`.
    auto first = std::lower_bound(lines_.begin(), lines_.end(), top,
                                  [](const Line& line, int row) { return line.bottom <= row; });
    for (auto it = first; it != lines_.end() && it->top < bottom; ++it) {
        cairo_move_to(cr, x + it->x, y + it->baseline);
        pango_cairo_show_layout_line(cr, it->line);
    }
    cairo_restore(cr);
    for (const Picture& picture : pictures_) {
        if (!picture.bitmap || picture.rect.bottom <= top || picture.rect.top >= bottom) continue;
        dc.AlphaBlend(x + picture.rect.left, y + picture.rect.top, picture.rect.Width(), picture.rect.Height(),
                      *picture.bitmap, 0, 0, picture.bitmap->Width(), picture.bitmap->Height(), 255);
    }
}

int RichTextLayout::LinkAt(int x, int y, int slop) const {
    int best = -1;
    long long bestDistance = static_cast<long long>(slop) * slop;
    for (const LinkBox& box : linkBoxes_) {
        const long long dx = std::max({box.rect.left - x, 0, x - box.rect.right + 1});
        const long long dy = std::max({box.rect.top - y, 0, y - box.rect.bottom + 1});
        const long long distance = dx * dx + dy * dy;
        if (distance == 0) return box.link;
        if (distance <= bestDistance) {
            bestDistance = distance;
            best = box.link;
        }
    }
    return best;
}

} // namespace mirodate
