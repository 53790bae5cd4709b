#include "skin/PictureCache.h"

#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "skin/SkinArchive.h"

namespace mirodate {

PictureCache& PictureCache::Instance() {
    static PictureCache cache;
    return cache;
}

SkinPictureRef PictureCache::Find(const std::u16string& name) const {
    auto it = pictures_.find(name);
    return it == pictures_.end() ? nullptr : it->second;
}

void PictureCache::Store(const std::u16string& name, SkinPictureRef picture) {
    pictures_[name] = std::move(picture);
}

bool LoadSkinImage(SkinArchive& archive, const std::u16string& name, SkinPictureRef& result) {
    result.reset();
    if (name.empty())
        return false;
    if (SkinPictureRef cached = PictureCache::Instance().Find(name)) {
        result = std::move(cached);
        return true;
    }
    const std::string utf8Name = Utf16ToUtf8(name);
    std::string data;
    if (archive.ReadItem(utf8Name, data) != SkinArchive::kOk || data.empty()) {
        Log::Info("skin picture %s is missing or unreadable", utf8Name.c_str());
        return false;
    }
    SkinPictureRef picture = SkinPicture::DecodePng(data);
    if (!picture) {
        Log::Warning("skin picture %s does not decode", utf8Name.c_str());
        return false;
    }
    PictureCache::Instance().Store(name, picture);
    result = std::move(picture);
    return true;
}

} // namespace mirodate
