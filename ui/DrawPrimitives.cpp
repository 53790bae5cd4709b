#include "ui/DrawPrimitives.h"

#include "ui/Dc.h"
#include "ui/Surface16.h"

#include <algorithm>

namespace mirodate {

namespace {
// The inside key of the rounded-rectangle mask.
constexpr COLORREF kInsideKey = RGB(255, 124, 128);
} // namespace

void DrawBitmap(Dc& dc, const Bitmap* bitmap, int x, int y, int width, int height) {
    if (!bitmap || bitmap->IsNull())
        return;
    if (width == -1)
        width = bitmap->Width();
    if (height == -1)
        height = bitmap->Height();
    dc.BitBlt(x, y, width, height, *bitmap, 0, 0);
}

void DrawTransparentBitmap(Dc& dc, const Bitmap* bitmap, int x, int y, int width, int height) {
    if (!bitmap || bitmap->IsNull())
        return;
    if (width == -1 && height == -1) {
        width = bitmap->Width();
        height = bitmap->Height();
    }
    dc.TransparentImage(x, y, width, height, *bitmap, 0, 0, bitmap->Width(), bitmap->Height(), kKeyColor);
}

void DrawTransparentIcon(Dc& dc, const Bitmap* icon, int x, int y, int width, int height, int sourceWidth,
                         int sourceHeight) {
    if (!icon || icon->IsNull() || sourceWidth <= 0 || sourceHeight <= 0)
        return;
    Surface16 surface;
    if (!surface.Create(sourceWidth, sourceHeight))
        return;
    surface.GetDc().FillSolidRect(0, 0, sourceWidth, sourceHeight, kKeyColor);
    surface.GetDc().DrawIcon(0, 0, *icon);
    // The key as the 16-bit surface stores it, which is not exactly RGB(0,128,128).
    const COLORREF key = surface.GetPixel(0, 0);
    dc.TransparentImage(x, y, width, height, surface.GetBitmap(), 0, 0, sourceWidth, sourceHeight, key);
}

void DrawShaded(Dc& dc, int x, int y, int width, int height, const Surface16& source) {
    if (!source.IsValid())
        return;
    dc.AlphaBlend(x, y, width, height, source.GetBitmap(), 0, 0, source.Width(), source.Height(),
                  kShadeAlpha);
}

void DrawGradient(Dc& dc, const RECT& rect, COLORREF bottomColor, COLORREF topColor, int offset) {
    if (rect.IsEmpty())
        return;
    int middle = rect.top + rect.Height() / 2 + offset;
    middle = std::max(rect.top, std::min(rect.bottom, middle));
    dc.GradientFillVertical(RECT{rect.left, rect.top, rect.right, middle}, topColor, bottomColor);
    dc.FillRect(RECT{rect.left, middle, rect.right, rect.bottom}, bottomColor);
}

void DrawRoundGradient(Dc& dc, const RECT& rect, int cornerRadius, COLORREF edgeColor, COLORREF middleColor) {
    const int width = rect.Width(), height = rect.Height();
    if (width <= 0 || height <= 0)
        return;
    // Work picture 1: the gradient; work picture 2: the rounded shape in the
    // inside key on the outside key. Where the shape is outside, the
    // gradient pixel becomes the key colour and so a hole.
    Bitmap gradient(width, height);
    Bitmap mask(width, height);
    {
        Dc g(gradient);
        const int half = height / 2;
        g.GradientFillVertical(RECT{0, 0, width, half}, edgeColor, middleColor);
        g.GradientFillVertical(RECT{0, half, width, height}, middleColor, edgeColor);
        Dc m(mask);
        m.FillSolidRect(0, 0, width, height, kKeyColor);
        m.RoundRect(RECT{0, 0, width, height}, 2 * cornerRadius, 2 * cornerRadius, kInsideKey, std::nullopt);
    }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (mask.GetPixel(x, y) != kInsideKey)
                gradient.SetPixel(x, y, kKeyColor);
    dc.TransparentImage(rect.left, rect.top, width, height, gradient, 0, 0, width, height, kKeyColor);
}

Bitmap CopyBitmap(const Bitmap* bitmap, const Dc& dc) {
    if (!bitmap || bitmap->IsNull())
        return Bitmap();
    const Bitmap::Format format = dc.Target().IsNull() ? Bitmap::Format::Rgb : dc.Target().GetFormat();
    Bitmap copy(bitmap->Width(), bitmap->Height(),
                format == Bitmap::Format::Rgb565 ? format : bitmap->GetFormat());
    Dc target(copy);
    target.BitBlt(0, 0, bitmap->Width(), bitmap->Height(), *bitmap, 0, 0);
    return copy;
}

} // namespace mirodate
