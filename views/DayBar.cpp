#include "views/DayBar.h"

#include "ui/Dc.h"

#include <algorithm>
#include <cmath>

namespace mirodate {

std::uint16_t DayBar::ToRgb565(COLORREF color) {
    const unsigned r = static_cast<unsigned>(GetRValue(color)) >> 3;
    const unsigned g = static_cast<unsigned>(GetGValue(color)) >> 2;
    const unsigned b = static_cast<unsigned>(GetBValue(color)) >> 3;
    return static_cast<std::uint16_t>((r << 11) | (g << 5) | b);
}

void DayBar::Fill(double itemStart, double itemEnd, double dayStart, int width, COLORREF background,
                  COLORREF color, std::uint16_t* pixels) {
    if (width <= 0)
        return;
    std::fill(pixels, pixels + width, ToRgb565(background));
    const double scale = static_cast<double>(width) / kMinutesPerDay;
    // Whole minutes: DATE fractions are not exact.
    const double startMinutes = std::round((itemStart - dayStart) * kMinutesPerDay);
    const double lengthMinutes = std::max(0.0, std::round((itemEnd - itemStart) * kMinutesPerDay));
    // Far-away spans would overflow the pixel arithmetic; clip them first.
    const double offset = std::clamp(startMinutes * scale, -2.0 * width - 1, 2.0 * width + 1);
    const double length = std::clamp(lengthMinutes * scale, 1.0, 4.0 * width + 2);
    const int first = static_cast<int>(offset);
    const int count = std::max(1, static_cast<int>(length));
    const std::uint16_t ink = ToRgb565(color);
    for (int x = std::max(first, 0); x < first + count && x < width; ++x)
        pixels[x] = ink;
}

bool DayBar::Build(const PimItem& item, double dayStart, int width, COLORREF background, COLORREF color) {
    if (width <= 0 || !surface_.Create(width, 1))
        return false;
    Fill(item.startValue, item.endValue, dayStart, width, background, color, surface_.Bits());
    surface_.MarkDirty();
    return true;
}

void DayBar::Draw(Dc& dc, const RECT& rect) const {
    if (!surface_.IsValid() || rect.IsEmpty())
        return;
    // Row by row, so that every pixel is the bar's own colour (a stretch would blend the edges).
    const int width = std::min(rect.Width(), surface_.Width());
    for (int y = rect.top; y < rect.bottom; ++y)
        dc.BitBlt(rect.left, y, width, 1, surface_.GetBitmap(), 0, 0);
}

} // namespace mirodate
