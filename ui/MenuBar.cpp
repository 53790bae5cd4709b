#include "ui/MenuBar.h"

#include "lang/LanguageTable.h"
#include "skin/SkinStyles.h"
#include "ui/Scale.h"
#include "ui/SkinBitmap.h"
#include "ui/WinApi.h"

namespace mirodate {

namespace {
struct StripCache {
    SkinPictureRef source; // held, so that a new strip never takes the old one's address
    Bitmap bitmap;
};

SkinPictureRef CurrentStripPicture() {
    const SkinPictureRef& skin = SkinStyles::Current().menuBar.icons;
    if (skin)
        return skin;
    return MenuBarIcons::Builtin(IsHighResolution());
}
} // namespace

MenuBar::MenuBar() = default;
MenuBar::~MenuBar() = default;

const Bitmap& MenuBar::IconStrip() {
    // Converted once per strip: the skin's, or the built-in one of the resolution.
    static StripCache cache;
    SkinPictureRef picture = CurrentStripPicture();
    if (picture != cache.source) {
        cache.bitmap = SkinBitmap::FromPicture(picture.get());
        cache.source = std::move(picture);
    }
    return cache.bitmap;
}

bool MenuBar::Create(HWND parent, const std::vector<MenuBarEntry>& entries, int x, int y, int width,
                     int height) {
    entries_ = entries;
    buttons_.clear();
    height_ = height > 0 ? height : SkinStyles::Current().menuBar.height;
    const ButtonColors& colors = SkinStyles::Current().menuBar.buttons;
    const Bitmap& strip = IconStrip();
    const SkinPictureRef picture = CurrentStripPicture();
    for (size_t i = 0; i < entries_.size(); ++i) {
        auto button = std::make_unique<ButtonWnd>();
        if (!button->Create(parent, Lang(entries_[i].langKey), 0, 0, 1, 1, static_cast<LONG_PTR>(i)))
            return false;
        button->SetColors(colors.colorButtonBg, colors.colorButtonText, colors.colorButtonBgPressed,
                          colors.colorButtonTextPressed);
        button->SetGradient(colors.colorButtonGradient, colors.colorButtonGradientPressed);
        button->SetSeparators(i > 0, i + 1 < entries_.size());
        button->SetLongPress(entries_[i].longPress);
        if (picture && !strip.IsNull()) {
            const RECT source = MenuBarIcons::IconRect(*picture, entries_[i].icon);
            if (!source.IsEmpty())
                button->SetIcon(&strip, source, source.Width(), source.Height());
        }
        buttons_.push_back(std::move(button));
    }
    MoveTo(x, y, width, height_);
    return true;
}

void MenuBar::MoveTo(int x, int y, int width, int height) {
    height_ = height;
    if (buttons_.empty())
        return;
    const int count = static_cast<int>(buttons_.size());
    const int each = width / count;
    for (int i = 0; i < count; ++i) {
        const int left = x + i * each;
        const int right = i + 1 == count ? x + width : left + each;
        buttons_[i]->MoveTo(left, y, right - left, height);
    }
}

void MenuBar::Relabel() {
    for (size_t i = 0; i < buttons_.size(); ++i)
        buttons_[i]->SetLabel(Lang(entries_[i].langKey));
}

ButtonWnd* MenuBar::Button(int index) const {
    return index >= 0 && index < Count() ? buttons_[index].get() : nullptr;
}

int MenuBar::IndexOf(HWND button) const {
    for (int i = 0; i < Count(); ++i)
        if (buttons_[i]->GetHwnd() == button)
            return i;
    return -1;
}

} // namespace mirodate
