#include "skin/SkinPicture.h"

#include "skin/PngChecker.h"

#include <cairo.h>

#include <cstring>
#include <string>

namespace mirodate {

namespace {

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

std::shared_ptr<const SkinPicture> SkinPicture::DecodePng(std::string_view data, Problem* problem,
                                                          std::int64_t maxPixels) {
    std::string essential;
    int declaredWidth = 0, declaredHeight = 0;
    const PngChecker::Result checked =
        PngChecker::Check(data, maxPixels, kMaxSide, essential, declaredWidth, declaredHeight);
    if (problem)
        *problem = checked == PngChecker::Result::TooManyPixels ? Problem::TooManyPixels
                   : checked == PngChecker::Result::TooMuchData ? Problem::TooMuchData
                   : checked == PngChecker::Result::NotPng      ? Problem::NotPng
                                                                : Problem::None;
    if (checked != PngChecker::Result::Ok)
        return nullptr;
    if (problem)
        *problem = Problem::NotPng; // until it has decoded
    PngReader reader{essential};
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
    if (picture->width != declaredWidth || picture->height != declaredHeight)
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
    if (problem)
        *problem = Problem::None;
    return picture;
}

} // namespace mirodate
