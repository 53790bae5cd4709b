#include "ui/Surface16.h"

#include <cairo.h>

namespace mirodate {

bool Surface16::Create(int width, int height) {
    Free();
    bitmap_ = Bitmap(width, height, Bitmap::Format::Rgb565);
    if (bitmap_.IsNull())
        return false;
    dc_ = std::make_unique<Dc>(bitmap_);
    return true;
}

void Surface16::Free() {
    dc_.reset();
    bitmap_ = Bitmap();
}

int Surface16::Stride() const {
    return bitmap_.IsNull() ? 0 : cairo_image_surface_get_stride(bitmap_.Surface());
}

std::uint16_t* Surface16::Bits() {
    if (bitmap_.IsNull())
        return nullptr;
    cairo_surface_flush(bitmap_.Surface());
    return reinterpret_cast<std::uint16_t*>(cairo_image_surface_get_data(bitmap_.Surface()));
}

void Surface16::SetPixel(int x, int y, COLORREF color) {
    bitmap_.SetPixel(x, y, color);
}

void Surface16::MarkDirty() {
    if (!bitmap_.IsNull())
        cairo_surface_mark_dirty(bitmap_.Surface());
}

} // namespace mirodate
