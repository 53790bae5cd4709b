#include "skin/MenuBarIcons.h"

#include <cstddef>
#include <string_view>

namespace mirodate {

// PNG data produced at build time by the skin generator.
extern const unsigned char kBuiltinMenuBarIcons20[];
extern const std::size_t kBuiltinMenuBarIcons20Size;
extern const unsigned char kBuiltinMenuBarIcons40[];
extern const std::size_t kBuiltinMenuBarIcons40Size;

SkinPictureRef MenuBarIcons::Builtin(bool highResolution) {
    auto decode = [](const unsigned char* data, std::size_t size) {
        return SkinPicture::DecodePng(std::string_view(reinterpret_cast<const char*>(data), size));
    };
    static const SkinPictureRef low = decode(kBuiltinMenuBarIcons20, kBuiltinMenuBarIcons20Size);
    static const SkinPictureRef high = decode(kBuiltinMenuBarIcons40, kBuiltinMenuBarIcons40Size);
    return highResolution ? high : low;
}

RECT MenuBarIcons::IconRect(const SkinPicture& strip, MenuBarIcon icon) {
    const int size = strip.height;
    const int left = static_cast<int>(icon) * size;
    if (left + size > strip.width)
        return {};
    return {left, 0, left + size, size};
}

} // namespace mirodate
