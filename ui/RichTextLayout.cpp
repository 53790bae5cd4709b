#include "ui/RichTextLayout.h"

#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/LinkTarget.h"
#include "ui/MarkupParser.h"

#include <algorithm>
#include <cairo.h>
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
// Estimates before anything is measured: a line is 1.2 font sizes high and
// an average character half a font size wide.
constexpr double kLineHeightPerPixel = 1.2;
constexpr double kCharWidthPerPixel = 0.5;
// The object replacement character that stands for a picture is three bytes.
constexpr std::size_t kPictureBytes = 3;

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
    const int naturalW = bitmap.IsNull() ? 0 : bitmap.Width(),
              naturalH = bitmap.IsNull() ? 0 : bitmap.Height();
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

RichTextLayout::~RichTextLayout() {
    Clear();
    if (font_)
        pango_font_description_free(font_);
}

void RichTextLayout::Clear() {
    for (Block& block : blocks_)
        if (block.layout)
            g_object_unref(block.layout);
    blocks_.clear();
    measured_ = 0;
    lines_.clear();
    linkBoxes_.clear();
    pictures_.clear();
    bitmaps_.clear();
    pictureSizes_.clear();
    measuredHeight_ = estimatedRest_ = 0;
    rawEstimateMeasured_ = rawEstimateRest_ = 0;
    width_ = 0;
}

void RichTextLayout::SetDocument(MarkupDocument document) {
    Clear();
    document_ = std::move(document);
}

void RichTextLayout::Build(const Font& font, int width, COLORREF linkColor, const PictureSource& pictures,
                           int measureTo) {
    Clear();
    if (font_)
        pango_font_description_free(font_);
    font_ = pango_font_description_copy(font.Description());
    fontPixels_ = std::max(1, font.PixelSize());
    width_ = std::max(1, width);
    linkColor_ = linkColor;

    // Which links wear the link look: all but the owner's own actions.
    decorated_.assign(document_.links.size(), false);
    for (std::size_t i = 0; i < document_.links.size(); ++i)
        decorated_[i] = LinkTarget::Classify(document_.links[i].target).kind != LinkKind::Action;

    pictureSizes_.resize(document_.images.size());
    for (std::size_t i = 0; i < document_.images.size(); ++i) {
        const MarkupImage& image = document_.images[i];
        auto found = bitmaps_.find(image.id);
        if (found == bitmaps_.end())
            found = bitmaps_.emplace(image.id, pictures ? pictures(image.id) : Bitmap()).first;
        pictureSizes_[i] = PictureSize(found->second, image, width_ - 2 * std::min(image.hspace, width_ / 4));
    }
    SplitBlocks();
    MeasureTo(measureTo);
}

void RichTextLayout::SplitBlocks() {
    const std::string& text = document_.text;
    std::size_t start = 0;
    int paragraphs = 1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\n')
            continue;
        // A block ends at a line end after enough text, never at an empty
        // line (its height comes from its own line end's style).
        if (i - start >= kBlockBytes && i > start && text[i - 1] != '\n') {
            blocks_.push_back(Block{start, i, paragraphs});
            start = i + 1;
            paragraphs = 1;
        } else {
            ++paragraphs;
        }
    }
    blocks_.push_back(Block{start, text.size(), paragraphs});
    for (Block& block : blocks_) {
        block.estimate = Estimate(block);
        rawEstimateRest_ += block.estimate;
    }
    estimatedRest_ = static_cast<int>(std::min<long long>(INT_MAX / 2, rawEstimateRest_));
}

int RichTextLayout::Estimate(const Block& block) const {
    const double lineHeight = fontPixels_ * kLineHeightPerPixel;
    const double charsPerLine = std::max(1.0, width_ / (fontPixels_ * kCharWidthPerPixel));
    const double lines = block.paragraphs + static_cast<double>(block.end - block.begin) / charsPerLine;
    return static_cast<int>(std::min(lines * lineHeight, static_cast<double>(INT_MAX / 4)));
}

bool RichTextLayout::MeasureTo(int bottom) {
    bool any = false;
    while (measured_ < blocks_.size() && measuredHeight_ < bottom)
        any = MeasureNext() || any;
    return any;
}

bool RichTextLayout::MeasureNext() {
    if (measured_ >= blocks_.size())
        return false;
    Measure(blocks_[measured_]);
    ++measured_;
    return true;
}

void RichTextLayout::Measure(Block& block) {
    PangoLayout* layout = pango_layout_new(RichContext());
    block.layout = layout;
    pango_layout_set_font_description(layout, font_);
    pango_layout_set_width(layout, width_ * PANGO_SCALE);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout, document_.text.data() + block.begin,
                          static_cast<int>(block.end - block.begin));

    PangoAttrList* attributes = pango_attr_list_new();
    auto run = std::upper_bound(document_.runs.begin(), document_.runs.end(), block.begin,
                                [](std::size_t at, const MarkupRun& r) { return at < r.end; });
    for (; run != document_.runs.end() && run->begin < block.end; ++run) {
        const std::size_t begin = std::max(run->begin, block.begin) - block.begin;
        const std::size_t end = std::min(run->end, block.end) - block.begin;
        if (begin >= end)
            continue;
        const MarkupStyle& s = run->style;
        const bool linkLook = s.link >= 0 && decorated_[static_cast<std::size_t>(s.link)];
        if (s.Has(MarkupStyle::kBold))
            Add(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD), begin, end);
        if (s.Has(MarkupStyle::kItalic))
            Add(attributes, pango_attr_style_new(PANGO_STYLE_ITALIC), begin, end);
        if (s.Has(MarkupStyle::kUnderline) || linkLook)
            Add(attributes, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE), begin, end);
        if (s.Has(MarkupStyle::kStrike))
            Add(attributes, pango_attr_strikethrough_new(TRUE), begin, end);
        if (s.Has(MarkupStyle::kSuperscript) || s.Has(MarkupStyle::kSubscript)) {
            const int rise = s.Has(MarkupStyle::kSuperscript) ? fontPixels_ / kSuperscriptRiseDivisor
                                                              : -fontPixels_ / kSubscriptDropDivisor;
            Add(attributes, pango_attr_rise_new(rise * PANGO_SCALE), begin, end);
            Add(attributes, pango_attr_scale_new(kScriptScale), begin, end);
        }
        if (s.Has(MarkupStyle::kParagraphGap))
            Add(attributes, pango_attr_scale_new(kParagraphGapScale), begin, end);
        if (linkLook && !(s.hasColor && s.colorInsideLink))
            Add(attributes, Foreground(linkColor_), begin, end);
        else if (s.hasColor)
            Add(attributes, Foreground(s.color), begin, end);
    }
    // Pictures take the place of their placeholder character.
    for (std::size_t i = 0; i < document_.images.size(); ++i) {
        const MarkupImage& image = document_.images[i];
        if (image.offset < block.begin || image.offset >= block.end)
            continue;
        const int hspace = std::min(image.hspace, width_ / 4);
        const SIZE size = pictureSizes_[i];
        PangoRectangle box{0, -(size.cy + 2 * image.vspace) * PANGO_SCALE,
                           (size.cx + 2 * hspace) * PANGO_SCALE, (size.cy + 2 * image.vspace) * PANGO_SCALE};
        const std::size_t at = image.offset - block.begin;
        Add(attributes, pango_attr_shape_new(&box, &box), at, at + kPictureBytes);
    }
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);

    const std::size_t firstLine = lines_.size();
    const int top = measuredHeight_;
    PangoLayoutIter* iter = pango_layout_get_iter(layout);
    do {
        PangoRectangle extents;
        pango_layout_iter_get_line_extents(iter, nullptr, &extents);
        Line line;
        line.line = pango_layout_iter_get_line_readonly(iter);
        line.start = block.begin + static_cast<std::size_t>(line.line->start_index);
        line.top = top + PANGO_PIXELS_FLOOR(extents.y);
        line.bottom = top + PANGO_PIXELS_CEIL(extents.y + extents.height);
        line.baseline = top + PANGO_PIXELS(pango_layout_iter_get_baseline(iter));
        line.x = PANGO_PIXELS(extents.x);
        lines_.push_back(line);
    } while (pango_layout_iter_next_line(iter));
    pango_layout_iter_free(iter);

    PangoRectangle logical;
    pango_layout_get_pixel_extents(layout, nullptr, &logical);
    measuredHeight_ = top + logical.y + logical.height;
    PlacePictures(block, firstLine);
    PlaceLinks(block, firstLine);

    // What was measured corrects the estimate of what was not.
    rawEstimateMeasured_ += block.estimate;
    rawEstimateRest_ -= block.estimate;
    const double correction =
        rawEstimateMeasured_ > 0 ? static_cast<double>(measuredHeight_) / rawEstimateMeasured_ : 1.0;
    estimatedRest_ =
        static_cast<int>(std::min(static_cast<double>(INT_MAX / 2), rawEstimateRest_ * correction));
}

std::size_t RichTextLayout::LineOfIndex(const Block&, std::size_t firstLine, std::size_t index) const {
    auto it = std::upper_bound(lines_.begin() + static_cast<std::ptrdiff_t>(firstLine), lines_.end(), index,
                               [](std::size_t i, const Line& line) { return i < line.start; });
    return std::max(firstLine, static_cast<std::size_t>(it - lines_.begin()) - 1);
}

void RichTextLayout::PlacePictures(const Block& block, std::size_t firstLine) {
    for (std::size_t i = 0; i < document_.images.size(); ++i) {
        const MarkupImage& image = document_.images[i];
        const SIZE size = pictureSizes_[i];
        if (image.offset < block.begin || image.offset >= block.end || size.cx <= 0 || size.cy <= 0)
            continue;
        PangoRectangle place;
        pango_layout_index_to_pos(block.layout, static_cast<int>(image.offset - block.begin), &place);
        const Line& line = lines_[LineOfIndex(block, firstLine, image.offset)];
        const Bitmap& bitmap = bitmaps_.at(image.id);
        Picture picture;
        picture.bitmap = bitmap.IsNull() ? nullptr : &bitmap;
        const int left = PANGO_PIXELS(place.x) + std::min(image.hspace, width_ / 4);
        const int top = line.baseline - size.cy - image.vspace;
        picture.rect = RECT{left, top, left + size.cx, top + size.cy};
        pictures_.push_back(picture);
        if (image.link >= 0)
            linkBoxes_.push_back(LinkBox{image.link, picture.rect});
    }
}

void RichTextLayout::PlaceLinks(const Block& block, std::size_t firstLine) {
    // Links are in text order; start with the first that ends inside the block.
    auto link = std::upper_bound(document_.links.begin(), document_.links.end(), block.begin,
                                 [](std::size_t at, const MarkupLink& l) { return at < l.end; });
    for (; link != document_.links.end() && link->begin < block.end; ++link) {
        const int index = static_cast<int>(link - document_.links.begin());
        const std::size_t begin = std::max(link->begin, block.begin), end = std::min(link->end, block.end);
        for (std::size_t l = LineOfIndex(block, firstLine, begin); l < lines_.size(); ++l) {
            const Line& line = lines_[l];
            if (line.start >= end)
                break;
            const std::size_t lineEnd = line.start + static_cast<std::size_t>(line.line->length);
            const std::size_t from = std::max(line.start, begin), to = std::min(lineEnd, end);
            if (from >= to)
                continue;
            int* ranges = nullptr;
            int count = 0;
            pango_layout_line_get_x_ranges(line.line, static_cast<int>(from - block.begin),
                                           static_cast<int>(to - block.begin), &ranges, &count);
            for (int r = 0; r < count; ++r) {
                const int left = PANGO_PIXELS_FLOOR(ranges[2 * r]);
                const int right = PANGO_PIXELS_CEIL(ranges[2 * r + 1]);
                if (right > left)
                    linkBoxes_.push_back(LinkBox{index, RECT{left, line.top, right, line.bottom}});
            }
            g_free(ranges);
        }
    }
}

void RichTextLayout::Draw(Dc& dc, int x, int y, int top, int bottom, COLORREF textColor) const {
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
        if (!picture.bitmap || picture.rect.bottom <= top || picture.rect.top >= bottom)
            continue;
        dc.AlphaBlend(x + picture.rect.left, y + picture.rect.top, picture.rect.Width(),
                      picture.rect.Height(), *picture.bitmap, 0, 0, picture.bitmap->Width(),
                      picture.bitmap->Height(), 255);
    }
}

int RichTextLayout::LinkAt(int x, int y, int slop) const {
    int best = -1;
    long long bestDistance = static_cast<long long>(slop) * slop;
    for (const LinkBox& box : linkBoxes_) {
        const long long dx = std::max({box.rect.left - x, 0, x - box.rect.right + 1});
        const long long dy = std::max({box.rect.top - y, 0, y - box.rect.bottom + 1});
        const long long distance = dx * dx + dy * dy;
        if (distance == 0)
            return box.link;
        if (distance <= bestDistance) {
            bestDistance = distance;
            best = box.link;
        }
    }
    return best;
}

} // namespace mirodate
