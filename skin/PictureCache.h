#pragma once
// Decoded skin pictures by name, so that a picture several views use is
// decoded once. The cache lives for the whole process.
#include "skin/SkinPicture.h"

#include <map>
#include <string>
#include <string_view>

namespace mirodate {

class SkinArchive;

class PictureCache {
public:
    static PictureCache& Instance();

    SkinPictureRef Find(const std::u16string& name) const;
    void Store(const std::u16string& name, SkinPictureRef picture);
    void Clear() { pictures_.clear(); }
    size_t Size() const { return pictures_.size(); }

private:
    std::map<std::u16string, SkinPictureRef> pictures_;
};

// Finds `name` in the cache or else in the archive, decodes it and caches it.
// Returns false (and leaves `result` empty) for an empty name, a missing,
// empty or unreadable entry, or data that does not decode.
bool LoadSkinImage(SkinArchive& archive, const std::u16string& name, SkinPictureRef& result);

} // namespace mirodate
