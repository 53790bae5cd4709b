#pragma once
// A parsed mark-up text laid out with pango for one width: the measuring
// pass (Build: wrapping at word boundaries, the height of the whole text,
// where each link and picture landed) and the drawing pass (Draw: only the
// lines that cross the rows asked for, so that a scroll through a long text
// paints a screenful). Links are drawn in the link colour and underlined,
// except "action:" links, which are the owner's own tap targets and keep
// the look their mark-up gives them.
#include "ui/Bitmap.h"
#include "ui/MarkupDocument.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

typedef struct _PangoLayout PangoLayout;
typedef struct _PangoLayoutLine PangoLayoutLine;

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

    RichTextLayout() = default;
    ~RichTextLayout();
    RichTextLayout(const RichTextLayout&) = delete;
    RichTextLayout& operator=(const RichTextLayout&) = delete;

    // The measuring pass. `pictures` resolves img ids (each id once).
    void Build(const MarkupDocument& document, const Font& font, int width, COLORREF linkColor,
               const PictureSource& pictures);
    void Clear();

    int Height() const { return height_; }
    int Width() const { return width_; }
    int LineCount() const { return static_cast<int>(lines_.size()); }

    // The drawing pass: the lines and pictures that cross layout rows
    // [top, bottom), with the layout's origin at (x, y) of the context.
    void Draw(Dc& dc, int x, int y, int top, int bottom, COLORREF textColor) const;

    // The link under a point of the layout, or the nearest one no farther
    // than `slop` pixels away (a fingertip is wide); -1 for none.
    int LinkAt(int x, int y, int slop) const;
    const std::vector<LinkBox>& LinkBoxes() const { return linkBoxes_; }

private:
    struct Line {
        PangoLayoutLine* line = nullptr; // owned by the layout
        int start = 0;                   // byte index of its first character
        int top = 0;
        int bottom = 0;
        int baseline = 0;
        int x = 0;
    };
    struct Picture {
        const Bitmap* bitmap = nullptr; // null: a reserved empty place
        RECT rect;
    };

    int LineOfIndex(std::size_t index) const;
    void PlaceLinks(const MarkupDocument& document);

    PangoLayout* layout_ = nullptr;
    std::vector<Line> lines_;
    std::vector<LinkBox> linkBoxes_;
    std::vector<Picture> pictures_;
    std::map<std::u16string, Bitmap> bitmaps_;
    int height_ = 0;
    int width_ = 0;
};

} // namespace mirodate
