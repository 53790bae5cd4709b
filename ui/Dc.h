#pragma once
// A drawing context on a bitmap (a window's surface or an off-screen
// picture) with the drawing calls the toolkit is written in: fills, frames,
// rounded shapes, lines, vertical gradients, block transfers, stretched,
// transparent-key and constant-alpha blits, and text. Colours are COLORREF;
// the key colour of a transparent blit leaves holes.
#include "platform/Types.h"
#include "ui/WinTypes.h"

#include <optional>
#include <string>
#include <vector>

typedef struct _cairo cairo_t;

namespace mirodate {

class Bitmap;
class Font;

// DrawText flags.
constexpr UINT DT_LEFT = 0x0000;
constexpr UINT DT_CENTER = 0x0001;
constexpr UINT DT_RIGHT = 0x0002;
constexpr UINT DT_VCENTER = 0x0004;
constexpr UINT DT_BOTTOM = 0x0008;
constexpr UINT DT_WORDBREAK = 0x0010;
constexpr UINT DT_SINGLELINE = 0x0020;
constexpr UINT DT_NOCLIP = 0x0100;
constexpr UINT DT_CALCRECT = 0x0400;
constexpr UINT DT_NOPREFIX = 0x0800;
constexpr UINT DT_END_ELLIPSIS = 0x8000;

// Background modes for text.
constexpr int TRANSPARENT = 1;
constexpr int OPAQUE = 2;

class Dc {
public:
    explicit Dc(Bitmap& target);
    ~Dc();
    Dc(const Dc&) = delete;
    Dc& operator=(const Dc&) = delete;

    Bitmap& Target() const { return *target_; }
    int Width() const;
    int Height() const;

    // Restricts all drawing to a rectangle (intersected with any earlier one).
    void IntersectClip(const RECT& rect);
    void ResetClip();

    COLORREF SetTextColor(COLORREF color);
    COLORREF GetTextColor() const { return textColor_; }
    int SetBkMode(int mode);
    COLORREF SetBkColor(COLORREF color);
    // The font for text calls; null is the default font. The Font must live
    // while it is selected.
    const Font* SelectFont(const Font* font);

    void FillRect(const RECT& rect, COLORREF color);
    void FillSolidRect(int x, int y, int width, int height, COLORREF color);
    // A frame `penWidth` pixels wide inside the rectangle.
    void FrameRect(const RECT& rect, COLORREF color, int penWidth = 1);
    // Rounded rectangle with ellipse width and height of the corners; either
    // colour may be left out (no fill, no outline).
    void RoundRect(const RECT& rect, int ellipseWidth, int ellipseHeight, std::optional<COLORREF> fill,
                   std::optional<COLORREF> pen, int penWidth = 1);
    void Ellipse(const RECT& rect, std::optional<COLORREF> fill, std::optional<COLORREF> pen,
                 int penWidth = 1);
    void Polygon(const std::vector<POINT>& points, std::optional<COLORREF> fill, std::optional<COLORREF> pen,
                 int penWidth = 1);
    // A line from (x1, y1) towards (x2, y2), the end point left out as the
    // line calls always did.
    void Line(int x1, int y1, int x2, int y2, COLORREF color, int penWidth = 1);
    // Vertical gradient over the rectangle, from `top` at the top edge to
    // `bottom` at the bottom edge.
    void GradientFillVertical(const RECT& rect, COLORREF top, COLORREF bottom);

    void BitBlt(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY);
    void BitBlt(int x, int y, int width, int height, const Dc& source, int sourceX, int sourceY);
    // Bilinear stretch of a part of the source.
    void StretchBlt(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight);
    // Stretches a part of the source leaving out every pixel of `keyColor`.
    void TransparentImage(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY,
                          int sourceWidth, int sourceHeight, COLORREF keyColor);
    // Blends a part of the source over the rectangle with constant opacity
    // `alpha` of 255 (per-pixel alpha of the source also counts).
    void AlphaBlend(int x, int y, int width, int height, const Bitmap& source, int sourceX, int sourceY,
                    int sourceWidth, int sourceHeight, int alpha);
    // Draws a picture with its own alpha at its own size.
    void DrawIcon(int x, int y, const Bitmap& icon);

    // Lays out and draws text in the rectangle as the DT_ flags say; returns
    // the height of the text. With DT_CALCRECT nothing is drawn and the
    // rectangle's right and bottom are set to fit the text.
    int DrawText(const std::u16string& text, RECT& rect, UINT format);
    SIZE GetTextExtent(const std::u16string& text);

    COLORREF GetPixel(int x, int y) const;
    void SetPixel(int x, int y, COLORREF color);

    cairo_t* Cairo() const { return cr_; }

private:
    Bitmap* target_;
    cairo_t* cr_;
    COLORREF textColor_ = RGB(0, 0, 0);
    COLORREF bkColor_ = RGB(255, 255, 255);
    int bkMode_ = OPAQUE;
    const Font* font_ = nullptr;
};

} // namespace mirodate
