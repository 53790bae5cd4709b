#pragma once
// An off-screen 16-bit surface (5-6-5 pixels, top-down rows, rows (2 x width
// + 3) rounded down to four bytes) with its own drawing context, for effects
// that touch pixels directly.
#include "ui/Bitmap.h"
#include "ui/Dc.h"

#include <cstdint>
#include <memory>

namespace mirodate {

class Surface16 {
public:
    Surface16() = default;
    Surface16(int width, int height) { Create(width, height); }
    Surface16(const Surface16&) = delete;
    Surface16& operator=(const Surface16&) = delete;
    // Makes a new surface, freeing the previous one; false when it cannot.
    bool Create(int width, int height);
    void Free();

    bool IsValid() const { return !bitmap_.IsNull(); }
    int Width() const { return bitmap_.Width(); }
    int Height() const { return bitmap_.Height(); }
    int Stride() const;
    std::uint16_t* Bits();
    const Bitmap& GetBitmap() const { return bitmap_; }
    Dc& GetDc() { return *dc_; }

    // Ignores coordinates outside the surface.
    void SetPixel(int x, int y, COLORREF color);
    COLORREF GetPixel(int x, int y) const { return bitmap_.GetPixel(x, y); }
    // Direct pixel writes are made visible to later drawing.
    void MarkDirty();

private:
    Bitmap bitmap_;
    std::unique_ptr<Dc> dc_; // declared last so that it goes before the bitmap it draws on
};

} // namespace mirodate
