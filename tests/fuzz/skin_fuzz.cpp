// Opens arbitrary bytes as a skin archive and applies it. Half of each input
// also runs through the picture decoder directly, so PNG damage is reached
// without having to build a valid zip around it.
#include "lang/IniFile.h"
#include "skin/ApplySkin.h"
#include "skin/PictureCache.h"
#include "skin/SkinArchive.h"
#include "skin/SkinPicture.h"
#include "skin/SkinStyles.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    mirodate::SkinPicture::DecodePng(bytes);

    mirodate::PictureCache::Instance().Clear();
    mirodate::SkinArchive archive;
    if (archive.OpenMemory(bytes) != mirodate::SkinArchive::kOk)
        return 0;
    std::string text;
    if (archive.ReadItem("skin.ini", text) != mirodate::SkinArchive::kOk)
        return 0;
    mirodate::IniFile ini(text);
    for (bool highResolution : {true, false}) {
        mirodate::SkinStyles styles;
        mirodate::ApplySkin(ini, archive, highResolution, styles);
    }
    mirodate::PictureCache::Instance().Clear();
    return 0;
}
