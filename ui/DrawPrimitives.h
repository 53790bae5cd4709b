#pragma once
// The drawing primitives every control shares: plain and transparent blits,
// transparent icons, shading, gradients and a bitmap copy. A picture pixel of
// exactly the key colour RGB(0,128,128) is always a hole.
#include "platform/Types.h"
#include "ui/Bitmap.h"

namespace mirodate {

class Dc;
class Surface16;

// Copies the bitmap; width and height -1 mean its own size. Null draws nothing.
void DrawBitmap(Dc& dc, const Bitmap* bitmap, int x, int y, int width, int height);
// Stretches the whole bitmap to the rectangle (-1, -1: own size), leaving out
// the key colour.
void DrawTransparentBitmap(Dc& dc, const Bitmap* bitmap, int x, int y, int width, int height);
// Draws the icon into a 16-bit surface of the source size pre-filled with the
// key colour, takes the surface's top-left pixel as the key and stretches it
// to the rectangle leaving that colour out.
void DrawTransparentIcon(Dc& dc, const Bitmap* icon, int x, int y, int width, int height, int sourceWidth,
                         int sourceHeight);
// Blends the source over the rectangle with constant opacity 82 of 255.
void DrawShaded(Dc& dc, int x, int y, int width, int height, const Surface16& source);
// `topColor` at the top edge to `bottomColor` half-way down plus `offset`,
// then `bottomColor` flat to the bottom.
void DrawGradient(Dc& dc, const RECT& rect, COLORREF bottomColor, COLORREF topColor, int offset);
// `edgeColor` at top and bottom, `middleColor` at half height, inside a
// rounded rectangle; outside it the target is left untouched.
void DrawRoundGradient(Dc& dc, const RECT& rect, int cornerRadius, COLORREF edgeColor, COLORREF middleColor);
// A copy of the bitmap in the context's format; null in, null out.
Bitmap CopyBitmap(const Bitmap* bitmap, const Dc& dc);

// The shading opacity of DrawShaded.
constexpr int kShadeAlpha = 82;

} // namespace mirodate
