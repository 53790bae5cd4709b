#pragma once
// The checks a PNG passes before it reaches the decoder: a sound chunk
// structure, a size within bounds, and image data that inflates to no more
// than the declared size needs. The result is a copy that holds only the
// chunks the image is made of.
#include <cstdint>
#include <string>
#include <string_view>

namespace mirodate {

class PngChecker {
public:
    enum class Result { Ok, NotPng, TooManyPixels, TooMuchData };

    // On Ok, `essential` holds the signature and the IHDR, PLTE, tRNS, IDAT
    // and IEND chunks of `data`, and `width` and `height` the picture's size.
    static Result Check(std::string_view data, std::int64_t maxPixels, int maxSide, std::string& essential,
                        int& width, int& height);

    // Bytes the filtered scan lines of a picture take once inflated
    // (interlaced pictures in seven passes); 0 for an unknown pixel format.
    static std::uint64_t RawImageBytes(std::uint32_t width, std::uint32_t height, int bitDepth, int colorType,
                                       bool interlaced);
};

} // namespace mirodate
