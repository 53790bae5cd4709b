#include "ui/SkinBitmap.h"

#include <cairo.h>
#include <cstring>

namespace mirodate {

Bitmap SkinBitmap::FromPicture(const SkinPicture* picture) {
    if (!picture || picture->width <= 0 || picture->height <= 0 ||
        picture->pixels.size() < static_cast<size_t>(picture->width) * picture->height)
        return Bitmap();
    Bitmap bitmap(picture->width, picture->height, Bitmap::Format::Argb);
    if (bitmap.IsNull())
        return bitmap;
    cairo_surface_t* surface = bitmap.Surface();
    cairo_surface_flush(surface);
    unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    // Both are premultiplied ARGB32 in native order; only the row stride may differ.
    for (int y = 0; y < picture->height; ++y)
        std::memcpy(data + static_cast<size_t>(y) * stride,
                    &picture->pixels[static_cast<size_t>(y) * picture->width],
                    static_cast<size_t>(picture->width) * 4);
    cairo_surface_mark_dirty(surface);
    return bitmap;
}

} // namespace mirodate
