#pragma once
// The thin bar under a timed appointment that shows where in its row's day
// it lies: one 16-bit (5-6-5) pixel row as wide as the view, the whole day
// of 1440 minutes across it, the appointment's span in its colour over the
// row's background. A span that begins before the row's day or runs past its
// midnight is clipped at the bar's ends.
#include "data/DateTime.h"
#include "data/PimItem.h"
#include "platform/Types.h"
#include "ui/Surface16.h"

#include <cstdint>

namespace mirodate {

class Dc;

class DayBar {
public:
    static constexpr int kMinutesPerDay = 1440;

    // Red's top five bits, green's top six, blue's top five.
    static std::uint16_t ToRgb565(COLORREF color);
    // Writes `width` pixels for the appointment on the day that starts at
    // `dayStart` (a DATE at 00:00).
    static void Fill(double itemStart, double itemEnd, double dayStart, int width, COLORREF background,
                     COLORREF color, std::uint16_t* pixels);

    // Makes the bar's picture; false when the surface cannot be made.
    bool Build(const PimItem& item, double dayStart, int width, COLORREF background, COLORREF color);
    bool IsEmpty() const { return !surface_.IsValid(); }
    // Repeats the one-pixel row over `rect`'s height.
    void Draw(Dc& dc, const RECT& rect) const;
    const Surface16& Surface() const { return surface_; }

private:
    Surface16 surface_;
};

} // namespace mirodate
