#pragma once
// Draws the menu-bar icon strip: nine square icons (menu, filter, tasks, week,
// agenda, month, new, back, search) in one row. The icons are drawn
// anti-aliased over `matte` (the menu bar's colour), and every untouched pixel
// gets the key colour RGB(0,128,128) so that the bar shows through.
#include "CairoPtr.h"

#include <string>

class IconPainter {
public:
    static constexpr int kIconCount = 9;

    IconPainter(Rgb ink, Rgb matte) : ink_(ink), matte_(matte) {}

    // The strip for icons of `size` pixels, as PNG bytes.
    std::string StripPng(int size) const;

private:
    void DrawIcon(cairo_t* cr, int index) const;

    Rgb ink_;
    Rgb matte_;
};
