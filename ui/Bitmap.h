#pragma once
// An off-screen picture: the bitmap of the drawing calls. Opaque bitmaps hold
// 32-bit RGB pixels, icons also an alpha channel, and 16-bit surfaces 5-6-5
// pixels. Move-only; the pixels are freed with the object.
#include "platform/Types.h"

#include <string>

typedef struct _cairo_surface cairo_surface_t;

namespace mirodate {

class Bitmap {
public:
    enum class Format { Rgb, Argb, Rgb565 };

    Bitmap() = default; // a null bitmap
    // Pixels start black (and fully transparent for Argb).
    Bitmap(int width, int height, Format format = Format::Rgb);
    // Takes over a surface reference.
    explicit Bitmap(cairo_surface_t* adopted);
    ~Bitmap();
    Bitmap(Bitmap&& other) noexcept;
    Bitmap& operator=(Bitmap&& other) noexcept;
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    // Decodes a PNG held in memory; a null bitmap when it is not a PNG.
    static Bitmap FromPngData(const std::string& bytes);
    static Bitmap LoadPng(const std::string& path);
    bool WritePng(const std::string& path) const;

    bool IsNull() const { return surface_ == nullptr; }
    explicit operator bool() const { return surface_ != nullptr; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    Format GetFormat() const { return format_; }
    bool HasAlpha() const { return format_ == Format::Argb; }
    cairo_surface_t* Surface() const { return surface_; }

    // The colour of one pixel (alpha ignored, un-premultiplied); 0 outside.
    COLORREF GetPixel(int x, int y) const;
    // Alpha of one pixel, 255 for opaque formats.
    int GetAlpha(int x, int y) const;
    // Sets one pixel opaque; coordinates outside are ignored.
    void SetPixel(int x, int y, COLORREF color);
    // A deep copy in the same format.
    Bitmap Copy() const;

private:
    cairo_surface_t* surface_ = nullptr;
    int width_ = 0;
    int height_ = 0;
    Format format_ = Format::Rgb;
};

} // namespace mirodate
