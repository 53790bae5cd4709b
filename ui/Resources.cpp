#include "ui/Resources.h"

#include <map>

namespace mirodate {

namespace {
std::map<UINT, Bitmap>& Bitmaps() {
    static std::map<UINT, Bitmap> bitmaps;
    return bitmaps;
}
std::map<UINT, Bitmap>& Icons() {
    static std::map<UINT, Bitmap> icons;
    return icons;
}
const Bitmap* Find(const std::map<UINT, Bitmap>& map, UINT id) {
    auto it = map.find(id);
    return it == map.end() || it->second.IsNull() ? nullptr : &it->second;
}
} // namespace

void Resources::SetBitmap(UINT id, Bitmap bitmap) {
    Bitmaps()[id] = std::move(bitmap);
}
const Bitmap* Resources::GetBitmap(UINT id) {
    return Find(Bitmaps(), id);
}
void Resources::SetIcon(UINT id, Bitmap icon) {
    Icons()[id] = std::move(icon);
}
const Bitmap* Resources::GetIcon(UINT id) {
    return Find(Icons(), id);
}
void Resources::Clear() {
    Bitmaps().clear();
    Icons().clear();
}

} // namespace mirodate
