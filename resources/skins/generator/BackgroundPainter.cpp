#include "BackgroundPainter.h"

#include "PngBytes.h"

#include <algorithm>
#include <cmath>

std::string BackgroundPainter::Png(int width, int height) const {
    SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
    ContextPtr cr(cairo_create(surface.get()));

    cairo_pattern_t* gradient = cairo_pattern_create_linear(0, 0, 0, height);
    cairo_pattern_add_color_stop_rgb(gradient, 0, top_.R(), top_.G(), top_.B());
    cairo_pattern_add_color_stop_rgb(gradient, 1, bottom_.R(), bottom_.G(), bottom_.B());
    cairo_set_source(cr.get(), gradient);
    cairo_paint(cr.get());
    cairo_pattern_destroy(gradient);

    // Concentric arcs from beyond the lower right corner, fading outwards.
    const double unit = std::min(width, height);
    const double centerX = width * 1.05;
    const double centerY = height * 1.1;
    constexpr int kArcs = 7;
    for (int arc = 0; arc < kArcs; ++arc) {
        const double radius = unit * (0.35 + 0.16 * arc);
        SetColor(cr.get(), accent_, accentAlpha_ * (1.0 - static_cast<double>(arc) / kArcs));
        cairo_set_line_width(cr.get(), unit * (0.05 - 0.005 * arc));
        cairo_arc(cr.get(), centerX, centerY, radius, M_PI, 1.5 * M_PI);
        cairo_stroke(cr.get());
    }
    cr.reset();
    return PngBytes(surface.get());
}
