#include "skin/SkinPicture.h"

#include <cairo.h>

#include <cstring>

namespace mirodate {

namespace {

constexpr unsigned char kPngSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
// Signature, chunk length, "IHDR", then width and height (big-endian).
constexpr size_t kHeaderBytes = 8 + 4 + 4 + 8;

std::uint32_t BigEndian32(const unsigned char* p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}

// Checks the declared size so that a hostile header cannot make the decoder
// allocate gigabytes.
bool HeaderIsAcceptable(std::string_view data) {
    if (data.size() < kHeaderBytes)
        return false;
    const auto* bytes = reinterpret_cast<const unsigned char*>(data.data());
    if (std::memcmp(bytes, kPngSignature, sizeof kPngSignature) != 0)
        return false;
    if (std::memcmp(bytes + 12, "IHDR", 4) != 0)
        return false;
    const std::uint32_t width = BigEndian32(bytes + 16);
    const std::uint32_t height = BigEndian32(bytes + 20);
    return width > 0 && height > 0 && width <= SkinPicture::kMaxSide && height <= SkinPicture::kMaxSide &&
           std::int64_t{width} * height <= SkinPicture::kMaxPixels;
}

struct PngReader {
    std::string_view data;
    size_t position = 0;

    static cairo_status_t Read(void* closure, unsigned char* out, unsigned int length) {
        auto* self = static_cast<PngReader*>(closure);
        if (self->data.size() - self->position < length)
            return CAIRO_STATUS_READ_ERROR;
        std::memcpy(out, self->data.data() + self->position, length);
        self->position += length;
        return CAIRO_STATUS_SUCCESS;
    }
};

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

} // namespace

std::shared_ptr<const SkinPicture> SkinPicture::DecodePng(std::string_view data) {
    if (!HeaderIsAcceptable(data))
        return nullptr;
    PngReader reader{data};
    std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface(
        cairo_image_surface_create_from_png_stream(&PngReader::Read, &reader));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        return nullptr;
    cairo_surface_flush(surface.get());

    const cairo_format_t format = cairo_image_surface_get_format(surface.get());
    if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24)
        return nullptr;
    auto picture = std::make_shared<SkinPicture>();
    picture->width = cairo_image_surface_get_width(surface.get());
    picture->height = cairo_image_surface_get_height(surface.get());
    if (picture->width <= 0 || picture->height <= 0)
        return nullptr;
    picture->pixels.resize(static_cast<size_t>(picture->width) * picture->height);

    const unsigned char* source = cairo_image_surface_get_data(surface.get());
    const int stride = cairo_image_surface_get_stride(surface.get());
    // RGB24 leaves the top byte undefined; the pictures are opaque then.
    const std::uint32_t opaque = format == CAIRO_FORMAT_RGB24 ? 0xFF000000u : 0u;
    for (int y = 0; y < picture->height; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(source + static_cast<size_t>(y) * stride);
        std::uint32_t* target = picture->pixels.data() + static_cast<size_t>(y) * picture->width;
        for (int x = 0; x < picture->width; ++x)
            target[x] = row[x] | opaque;
    }
    return picture;
}

} // namespace mirodate
