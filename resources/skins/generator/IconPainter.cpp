#include "IconPainter.h"

#include "PngBytes.h"

#include <cmath>
#include <cstdint>

namespace {

// Icons are drawn in a unit square; strokes are this fraction of the size.
constexpr double kStroke = 0.1;
// Pixels less covered than this become the transparent key colour.
constexpr unsigned kKeyThreshold = 24;
constexpr unsigned kKeyRed = 0, kKeyGreen = 128, kKeyBlue = 128;

void Line(cairo_t* cr, double x1, double y1, double x2, double y2) {
    cairo_move_to(cr, x1, y1);
    cairo_line_to(cr, x2, y2);
    cairo_stroke(cr);
}

void Box(cairo_t* cr, double x, double y, double w, double h) {
    cairo_rectangle(cr, x, y, w, h);
    cairo_fill(cr);
}

// A desk calendar: frame, header band and two binder rings.
void CalendarFrame(cairo_t* cr) {
    cairo_rectangle(cr, 0.14, 0.2, 0.72, 0.66);
    cairo_stroke(cr);
    Box(cr, 0.14, 0.2, 0.72, 0.16);
    Line(cr, 0.32, 0.1, 0.32, 0.26);
    Line(cr, 0.68, 0.1, 0.68, 0.26);
}

} // namespace

void IconPainter::DrawIcon(cairo_t* cr, int index) const {
    cairo_set_line_width(cr, kStroke);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    SetColor(cr, ink_);
    switch (index) {
    case 0: // menu: three bars
        for (double y : {0.28, 0.5, 0.72})
            Line(cr, 0.18, y, 0.82, y);
        break;
    case 1: // filter: a funnel
        cairo_move_to(cr, 0.14, 0.18);
        cairo_line_to(cr, 0.86, 0.18);
        cairo_line_to(cr, 0.58, 0.5);
        cairo_line_to(cr, 0.58, 0.78);
        cairo_line_to(cr, 0.42, 0.88);
        cairo_line_to(cr, 0.42, 0.5);
        cairo_close_path(cr);
        cairo_fill(cr);
        break;
    case 2: // tasks: a ticked box
        cairo_rectangle(cr, 0.16, 0.16, 0.68, 0.68);
        cairo_stroke(cr);
        cairo_set_line_width(cr, kStroke * 1.4);
        cairo_move_to(cr, 0.3, 0.5);
        cairo_line_to(cr, 0.45, 0.66);
        cairo_line_to(cr, 0.74, 0.3);
        cairo_stroke(cr);
        break;
    case 3: // week: a calendar with seven day columns
        CalendarFrame(cr);
        for (int day = 0; day < 7; ++day)
            Box(cr, 0.2 + day * 0.087, 0.46, 0.055, 0.32);
        break;
    case 4: // agenda: bulleted lines
        for (double y : {0.24, 0.5, 0.76}) {
            Box(cr, 0.12, y - 0.08, 0.16, 0.16);
            Line(cr, 0.4, y, 0.86, y);
        }
        break;
    case 5: // month: a calendar with a grid of days
        CalendarFrame(cr);
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 4; ++column)
                Box(cr, 0.22 + column * 0.15, 0.44 + row * 0.13, 0.1, 0.08);
        break;
    case 6: // new: a plus
        cairo_set_line_width(cr, kStroke * 1.5);
        Line(cr, 0.5, 0.16, 0.5, 0.84);
        Line(cr, 0.16, 0.5, 0.84, 0.5);
        break;
    case 7: // back: an arrow to the left
        cairo_set_line_width(cr, kStroke * 1.3);
        Line(cr, 0.2, 0.5, 0.84, 0.5);
        cairo_move_to(cr, 0.46, 0.2);
        cairo_line_to(cr, 0.18, 0.5);
        cairo_line_to(cr, 0.46, 0.8);
        cairo_stroke(cr);
        break;
    case 8: // search: a magnifying glass
        cairo_arc(cr, 0.42, 0.42, 0.25, 0, 2 * M_PI);
        cairo_stroke(cr);
        cairo_set_line_width(cr, kStroke * 1.6);
        Line(cr, 0.61, 0.61, 0.84, 0.84);
        break;
    default:
        break;
    }
}

std::string IconPainter::StripPng(int size) const {
    SurfacePtr art(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size * kIconCount, size));
    {
        ContextPtr cr(cairo_create(art.get()));
        for (int index = 0; index < kIconCount; ++index) {
            cairo_save(cr.get());
            cairo_translate(cr.get(), index * size, 0);
            cairo_scale(cr.get(), size, size);
            DrawIcon(cr.get(), index);
            cairo_restore(cr.get());
        }
    }
    cairo_surface_flush(art.get());

    // Flatten onto the matte; uncovered pixels become the key colour.
    SurfacePtr strip(cairo_image_surface_create(CAIRO_FORMAT_RGB24, size * kIconCount, size));
    cairo_surface_flush(strip.get());
    const int width = size * kIconCount;
    for (int y = 0; y < size; ++y) {
        auto* from = reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(art.get()) +
                                                            y * cairo_image_surface_get_stride(art.get()));
        auto* to = reinterpret_cast<std::uint32_t*>(cairo_image_surface_get_data(strip.get()) +
                                                    y * cairo_image_surface_get_stride(strip.get()));
        for (int x = 0; x < width; ++x) {
            const std::uint32_t pixel = from[x];
            const unsigned alpha = pixel >> 24;
            if (alpha < kKeyThreshold) {
                to[x] = (kKeyRed << 16) | (kKeyGreen << 8) | kKeyBlue;
                continue;
            }
            auto channel = [&](int shift, unsigned matte) {
                return ((pixel >> shift) & 0xFF) + matte * (255 - alpha) / 255;
            };
            const unsigned matte = matte_.value;
            to[x] = (channel(16, (matte >> 16) & 0xFF) << 16) | (channel(8, (matte >> 8) & 0xFF) << 8) |
                    channel(0, matte & 0xFF);
        }
    }
    cairo_surface_mark_dirty(strip.get());
    return PngBytes(strip.get());
}
