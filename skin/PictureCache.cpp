#include "skin/PictureCache.h"

#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "skin/SkinArchive.h"

#include <algorithm>

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
    // A skin that went beyond a limit is not used: spend nothing more on it.
    if (archive.LimitExceeded())
        return false;
    const std::string utf8Name = Utf16ToUtf8(name);
    std::string data;
    if (archive.ReadItem(utf8Name, data) != SkinArchive::kOk || data.empty()) {
        Log::Info("skin picture %s is missing or unreadable", PrintableText(utf8Name).c_str());
        return false;
    }
    SkinPicture::Problem problem = SkinPicture::Problem::None;
    const std::int64_t maxPixels = std::min(SkinPicture::kMaxPixels, archive.PixelsLeft());
    SkinPictureRef picture = SkinPicture::DecodePng(data, &problem, maxPixels);
    if (problem == SkinPicture::Problem::TooManyPixels) {
        archive.NoteLimitExceeded("picture " + utf8Name + " has more pixels than the " +
                                  (maxPixels < SkinPicture::kMaxPixels
                                       ? std::to_string(SkinArchive::kMaxPicturePixels) +
                                             " all pictures of a skin may have together"
                                       : std::to_string(SkinPicture::kMaxPixels) + " a picture may have"));
        return false;
    }
    if (problem == SkinPicture::Problem::TooMuchData) {
        archive.NoteLimitExceeded("picture " + utf8Name + " inflates to more data than its size needs");
        return false;
    }
    if (!picture) {
        Log::Warning("skin picture %s does not decode", PrintableText(utf8Name).c_str());
        return false;
    }
    archive.UsePixels(static_cast<std::int64_t>(picture->width) * picture->height);
    PictureCache::Instance().Store(name, picture);
    result = std::move(picture);
    return true;
}

} // namespace mirodate
