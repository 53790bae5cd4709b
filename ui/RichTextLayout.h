#pragma once
// A parsed mark-up text laid out with pango for one width. The text is cut
// at line ends into blocks of about a kilobyte, each its own pango layout,
// so that the measuring pass (wrapping at word boundaries, the height, where
// each link and picture landed) can run block by block from the top: the
// first screenful at once, the rest in the background or when a scroll
// reaches it. Blocks not measured yet count with an estimated height. The
// drawing pass draws only the lines that cross the rows asked for.
// Links are drawn in the link colour and underlined, except "action:"
// links, which are the owner's own tap targets and keep the look their
// mark-up gives them.
#include "ui/Bitmap.h"
#include "ui/MarkupDocument.h"

#include <climits>
#include <functional>
#include <map>
#include <string>
#include <vector>

typedef struct _PangoLayout PangoLayout;
typedef struct _PangoLayoutLine PangoLayoutLine;
typedef struct _PangoFontDescription PangoFontDescription;

namespace mirodate {

class Dc;
class Font;

class RichTextLayout {
public:
    struct LinkBox {
        int link = -1; // index into the document's links
        RECT rect;     // in layout coordinates
    };
    using PictureSource = std::function<Bitmap(const std::u16string& id)>;

    // Blocks end at the first line end after this many bytes of text.
    static constexpr std::size_t kBlockBytes = 1024;

    RichTextLayout() = default;
    ~RichTextLayout();
    RichTextLayout(const RichTextLayout&) = delete;
    RichTextLayout& operator=(const RichTextLayout&) = delete;

    // The text to lay out; Build must follow.
    void SetDocument(MarkupDocument document);
    const MarkupDocument& Document() const { return document_; }

    // Prepares the blocks for `width` and measures them from the top until
    // the rows down to `measureTo` are known (by default all of them).
    // `pictures` resolves img ids, each id once.
    void Build(const Font& font, int width, COLORREF linkColor, const PictureSource& pictures,
               int measureTo = INT_MAX);
    // Measures on until rows down to `bottom` are known; true when anything was measured.
    bool MeasureTo(int bottom);
    // Measures the next block; false when there was none left.
    bool MeasureNext();
    bool IsComplete() const { return measured_ == blocks_.size(); }
    void Clear();

    // Measured rows plus the estimate for the rest.
    int Height() const { return measuredHeight_ + estimatedRest_; }
    int Width() const { return width_; }
    // Lines measured so far.
    int LineCount() const { return static_cast<int>(lines_.size()); }

    // The drawing pass: the measured lines and pictures that cross layout
    // rows [top, bottom), with the layout's origin at (x, y) of the context.
    void Draw(Dc& dc, int x, int y, int top, int bottom, COLORREF textColor) const;

    // The link under a point of the layout, or the nearest one no farther
    // than `slop` pixels away (a fingertip is wide); -1 for none.
    int LinkAt(int x, int y, int slop) const;
    const std::vector<LinkBox>& LinkBoxes() const { return linkBoxes_; }

private:
    struct Block {
        std::size_t begin = 0; // byte range of the document's text
        std::size_t end = 0;
        int paragraphs = 1;
        int estimate = 0;
        PangoLayout* layout = nullptr;
    };
    struct Line {
        PangoLayoutLine* line = nullptr; // owned by its block's layout
        std::size_t start = 0;           // byte index of its first character in the document
        int top = 0;                     // in layout coordinates
        int bottom = 0;
        int baseline = 0;
        int x = 0;
    };
    struct Picture {
        const Bitmap* bitmap = nullptr; // null: a reserved empty place
        RECT rect;
    };

    void SplitBlocks();
    int Estimate(const Block& block) const;
    void Measure(Block& block);
    void PlaceLinks(const Block& block, std::size_t firstLine);
    void PlacePictures(const Block& block, std::size_t firstLine);
    std::size_t LineOfIndex(const Block& block, std::size_t firstLine, std::size_t index) const;

    MarkupDocument document_;
    std::vector<bool> decorated_; // per link: wears the link look
    std::vector<Block> blocks_;
    std::size_t measured_ = 0;
    std::vector<Line> lines_;
    std::vector<LinkBox> linkBoxes_;
    std::vector<Picture> pictures_;
    std::map<std::u16string, Bitmap> bitmaps_;
    std::vector<SIZE> pictureSizes_; // per document image
    PangoFontDescription* font_ = nullptr;
    int fontPixels_ = 1;
    COLORREF linkColor_ = 0;
    int width_ = 0;
    int measuredHeight_ = 0;
    int estimatedRest_ = 0;
    long long rawEstimateMeasured_ = 0; // estimates of the measured blocks, to correct the rest's
    long long rawEstimateRest_ = 0;
};

} // namespace mirodate
