#pragma once
// A decoded skin picture, kept as plain pixels so that any layer can hold it
// and the drawing layer can wrap it without copying: 32-bit premultiplied
// ARGB in native byte order (cairo's ARGB32), rows of `width` pixels.
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace mirodate {

struct SkinPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    int Stride() const { return width * 4; }
    std::uint32_t At(int x, int y) const { return pixels[static_cast<size_t>(y) * width + x]; }

    // Pictures larger than this are refused before decoding: 2048 x 2048
    // pixels (16 MB decoded, a fifth of a second) hold the background of a
    // 1440 x 2560 screen, which a skin draws at its own size.
    static constexpr int kMaxSide = 8192;
    static constexpr std::int64_t kMaxPixels = 4 * 1024 * 1024;

    enum class Problem { None, NotPng, TooManyPixels, TooMuchData };

    // Decodes PNG data; nullptr when it is not a PNG, is broken, declares more
    // than `maxPixels` pixels or holds more image data than its size needs.
    // Only the chunks that make the image are decoded; text and colour
    // profiles, which a hostile file can make inflate without end, are not.
    static std::shared_ptr<const SkinPicture> DecodePng(std::string_view data, Problem* problem = nullptr,
                                                        std::int64_t maxPixels = kMaxPixels);
};

using SkinPictureRef = std::shared_ptr<const SkinPicture>;

} // namespace mirodate
