#include "PngBytes.h"

#include <stdexcept>

std::string PngBytes(cairo_surface_t* surface) {
    std::string bytes;
    auto append = [](void* closure, const unsigned char* data, unsigned int length) {
        static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
        return CAIRO_STATUS_SUCCESS;
    };
    if (cairo_surface_write_to_png_stream(surface, append, &bytes) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("PNG encoding failed");
    return bytes;
}
