#pragma once
// Draws the month view's background: a vertical gradient with a few soft
// sweeping arcs, quiet enough that day numbers stay readable over it.
#include "CairoPtr.h"

#include <string>

class BackgroundPainter {
public:
    BackgroundPainter(Rgb top, Rgb bottom, Rgb accent, double accentAlpha)
        : top_(top), bottom_(bottom), accent_(accent), accentAlpha_(accentAlpha) {}

    std::string Png(int width, int height) const;

private:
    Rgb top_;
    Rgb bottom_;
    Rgb accent_;
    double accentAlpha_;
};
