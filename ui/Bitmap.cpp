#include "ui/Bitmap.h"

#include <cairo.h>
#include <cstddef>
#include <cstring>
#include <utility>

namespace mirodate {

namespace {
cairo_format_t CairoFormat(Bitmap::Format format) {
    switch (format) {
    case Bitmap::Format::Argb:
        return CAIRO_FORMAT_ARGB32;
    case Bitmap::Format::Rgb565:
        return CAIRO_FORMAT_RGB16_565;
    default:
        return CAIRO_FORMAT_RGB24;
    }
}

struct PngReader {
    const std::string* bytes;
    size_t offset;
};

cairo_status_t ReadPngChunk(void* closure, unsigned char* data, unsigned int length) {
    auto* reader = static_cast<PngReader*>(closure);
    if (reader->offset + length > reader->bytes->size())
        return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, reader->bytes->data() + reader->offset, length);
    reader->offset += length;
    return CAIRO_STATUS_SUCCESS;
}
} // namespace

Bitmap::Bitmap(int width, int height, Format format) {
    if (width <= 0 || height <= 0)
        return;
    cairo_surface_t* surface = cairo_image_surface_create(CairoFormat(format), width, height);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(surface);
        return;
    }
    surface_ = surface;
    width_ = width;
    height_ = height;
    format_ = format;
}

Bitmap::Bitmap(cairo_surface_t* adopted) {
    if (!adopted)
        return;
    if (cairo_surface_status(adopted) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(adopted);
        return;
    }
    surface_ = adopted;
    width_ = cairo_image_surface_get_width(adopted);
    height_ = cairo_image_surface_get_height(adopted);
    switch (cairo_image_surface_get_format(adopted)) {
    case CAIRO_FORMAT_ARGB32:
        format_ = Format::Argb;
        break;
    case CAIRO_FORMAT_RGB16_565:
        format_ = Format::Rgb565;
        break;
    default:
        format_ = Format::Rgb;
        break;
    }
}

Bitmap::~Bitmap() {
    if (surface_)
        cairo_surface_destroy(surface_);
}

Bitmap::Bitmap(Bitmap&& other) noexcept
    : surface_(std::exchange(other.surface_, nullptr)), width_(std::exchange(other.width_, 0)),
      height_(std::exchange(other.height_, 0)), format_(other.format_) {}

Bitmap& Bitmap::operator=(Bitmap&& other) noexcept {
    if (this != &other) {
        if (surface_)
            cairo_surface_destroy(surface_);
        surface_ = std::exchange(other.surface_, nullptr);
        width_ = std::exchange(other.width_, 0);
        height_ = std::exchange(other.height_, 0);
        format_ = other.format_;
    }
    return *this;
}

Bitmap Bitmap::FromPngData(const std::string& bytes) {
    static const char kSignature[] = "\x89PNG\r\n\x1a\n";
    if (bytes.size() < 8 || std::memcmp(bytes.data(), kSignature, 8) != 0)
        return Bitmap();
    PngReader reader{&bytes, 0};
    return Bitmap(cairo_image_surface_create_from_png_stream(ReadPngChunk, &reader));
}

Bitmap Bitmap::LoadPng(const std::string& path) {
    return Bitmap(cairo_image_surface_create_from_png(path.c_str()));
}

bool Bitmap::WritePng(const std::string& path) const {
    if (!surface_)
        return false;
    cairo_surface_flush(surface_);
    return cairo_surface_write_to_png(surface_, path.c_str()) == CAIRO_STATUS_SUCCESS;
}

COLORREF Bitmap::GetPixel(int x, int y) const {
    if (!surface_ || x < 0 || y < 0 || x >= width_ || y >= height_)
        return 0;
    cairo_surface_flush(surface_);
    const unsigned char* row = cairo_image_surface_get_data(surface_) +
                               static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface_);
    if (format_ == Format::Rgb565) {
        std::uint16_t v;
        std::memcpy(&v, row + 2 * x, 2);
        const int r = (v >> 11) & 0x1F, g = (v >> 5) & 0x3F, b = v & 0x1F;
        return RGB((r << 3) | (r >> 2), (g << 2) | (g >> 4), (b << 3) | (b >> 2));
    }
    std::uint32_t v;
    std::memcpy(&v, row + 4 * x, 4);
    int r = (v >> 16) & 0xFF, g = (v >> 8) & 0xFF, b = v & 0xFF;
    if (format_ == Format::Argb) {
        const int a = (v >> 24) & 0xFF;
        if (a == 0)
            return 0;
        if (a != 255) {
            r = r * 255 / a;
            g = g * 255 / a;
            b = b * 255 / a;
        }
    }
    return RGB(r, g, b);
}

int Bitmap::GetAlpha(int x, int y) const {
    if (!surface_ || x < 0 || y < 0 || x >= width_ || y >= height_)
        return 0;
    if (format_ != Format::Argb)
        return 255;
    cairo_surface_flush(surface_);
    const unsigned char* row = cairo_image_surface_get_data(surface_) +
                               static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface_);
    std::uint32_t v;
    std::memcpy(&v, row + 4 * x, 4);
    return static_cast<int>(v >> 24);
}

void Bitmap::SetPixel(int x, int y, COLORREF color) {
    if (!surface_ || x < 0 || y < 0 || x >= width_ || y >= height_)
        return;
    cairo_surface_flush(surface_);
    unsigned char* row = cairo_image_surface_get_data(surface_) +
                         static_cast<std::ptrdiff_t>(y) * cairo_image_surface_get_stride(surface_);
    if (format_ == Format::Rgb565) {
        const std::uint16_t v = static_cast<std::uint16_t>(
            ((GetRValue(color) >> 3) << 11) | ((GetGValue(color) >> 2) << 5) | (GetBValue(color) >> 3));
        std::memcpy(row + 2 * x, &v, 2);
    } else {
        const std::uint32_t v = 0xFF000000u | (static_cast<std::uint32_t>(GetRValue(color)) << 16) |
                                (static_cast<std::uint32_t>(GetGValue(color)) << 8) |
                                static_cast<std::uint32_t>(GetBValue(color));
        std::memcpy(row + 4 * x, &v, 4);
    }
    cairo_surface_mark_dirty_rectangle(surface_, x, y, 1, 1);
}

Bitmap Bitmap::Copy() const {
    if (!surface_)
        return Bitmap();
    Bitmap copy(width_, height_, format_);
    if (!copy.surface_)
        return copy;
    cairo_t* cr = cairo_create(copy.surface_);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(cr, surface_, 0, 0);
    cairo_paint(cr);
    cairo_destroy(cr);
    return copy;
}

} // namespace mirodate
