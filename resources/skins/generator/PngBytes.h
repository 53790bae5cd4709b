#pragma once
#include <cairo.h>

#include <string>

// The surface encoded as PNG, in memory.
std::string PngBytes(cairo_surface_t* surface);
