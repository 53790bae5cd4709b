#include "skin/SkinColor.h"

#include "platform/TextUtil.h"

#include <cstdio>
#include <string>

namespace mirodate {

namespace {
constexpr size_t kMaxColorChars = 8;
constexpr size_t kHexDigits = 6;
} // namespace

COLORREF ParseSkinColor(std::string_view value) {
    const std::string text = ToLowerAscii(value.substr(0, kMaxColorChars));
    std::string digits;
    if (text.size() == kHexDigits)
        digits = text;
    else if (text.size() == kHexDigits + 1)
        digits = text.substr(1);
    else
        return 0;
    unsigned int rgb = 0;
    // sscanf's "%x" stops at the first non-hex character and keeps what it read.
    if (std::sscanf(digits.c_str(), "%x", &rgb) != 1)
        return 0;
    return RGB((rgb >> 16) & 0xFF, (rgb >> 8) & 0xFF, rgb & 0xFF);
}

} // namespace mirodate
