#pragma once
// Owners for the cairo objects the generator creates.
#include <cairo.h>

#include <memory>

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
    void operator()(cairo_t* cr) const { cairo_destroy(cr); }
};
using SurfacePtr = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using ContextPtr = std::unique_ptr<cairo_t, ContextDeleter>;

// A colour as 0xRRGGBB.
struct Rgb {
    unsigned value = 0;
    double R() const { return ((value >> 16) & 0xFF) / 255.0; }
    double G() const { return ((value >> 8) & 0xFF) / 255.0; }
    double B() const { return (value & 0xFF) / 255.0; }
};

inline void SetColor(cairo_t* cr, Rgb color, double alpha = 1.0) {
    cairo_set_source_rgba(cr, color.R(), color.G(), color.B(), alpha);
}
