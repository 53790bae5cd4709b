#include "ui/MarkupPictures.h"

#include "platform/TextUtil.h"
#include "skin/MenuBarIcons.h"
#include "skin/PictureCache.h"
#include "skin/SkinStyles.h"
#include "ui/Resources.h"
#include "ui/Scale.h"
#include "ui/SkinBitmap.h"

#include <array>

namespace mirodate {

namespace {
constexpr std::array<const char16_t*, static_cast<std::size_t>(MenuBarIcon::Count)> kIconNames{
    u"menu", u"filter", u"tasks", u"week", u"agenda", u"month", u"new", u"back", u"search"};
// The icon strip's transparent colour, as premultiplied ARGB.
constexpr std::uint32_t kKeyPixel = 0xFF008080;

Bitmap StripIcon(const SkinPicture& strip, MenuBarIcon icon) {
    const RECT source = MenuBarIcons::IconRect(strip, icon);
    if (source.Width() <= 0 || source.Height() <= 0)
        return Bitmap();
    SkinPicture picture;
    picture.width = source.Width();
    picture.height = source.Height();
    picture.pixels.reserve(static_cast<std::size_t>(picture.width) * picture.height);
    for (int y = source.top; y < source.bottom; ++y)
        for (int x = source.left; x < source.right; ++x) {
            const std::uint32_t pixel = strip.At(x, y);
            picture.pixels.push_back(pixel == kKeyPixel ? 0 : pixel);
        }
    return SkinBitmap::FromPicture(&picture);
}
} // namespace

Bitmap MarkupPictures::Find(const std::u16string& id) {
    if (id.empty())
        return Bitmap();
    if (SkinPictureRef picture = PictureCache::Instance().Find(id))
        return SkinBitmap::FromPicture(picture.get());
    const std::u16string lower = ToLower(id);
    for (std::size_t i = 0; i < kIconNames.size(); ++i) {
        if (lower != kIconNames[i])
            continue;
        SkinPictureRef strip = SkinStyles::Current().menuBar.icons;
        if (!strip)
            strip = MenuBarIcons::Builtin(IsHighResolution());
        return strip ? StripIcon(*strip, static_cast<MenuBarIcon>(i)) : Bitmap();
    }
    bool digits = true;
    for (char16_t ch : id)
        digits = digits && ch >= u'0' && ch <= u'9';
    if (digits && id.size() <= 9) {
        const UINT number = static_cast<UINT>(ParseUnsignedLong(id));
        if (const Bitmap* icon = Resources::GetIcon(number))
            return icon->Copy();
        if (const Bitmap* bitmap = Resources::GetBitmap(number))
            return bitmap->Copy();
    }
    return Bitmap();
}

} // namespace mirodate
