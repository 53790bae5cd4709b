#pragma once
// What every picker page shares around its content: the page filling the
// screen, a title band, and OK and Cancel side by side at the bottom in the
// input-form button colours. The page asks for the rectangle left between
// title and buttons and lays its own controls out in it.
#include "ui/ButtonWnd.h"
#include "ui/Font.h"

#include <memory>
#include <string>

namespace mirodate {

class Dc;

class PickerChrome {
public:
    // Unscaled sizes for a 240-pixel-wide screen.
    static constexpr int kTitleHeight = 24;
    static constexpr int kButtonHeight = 28;
    static constexpr int kMargin = 4;
    static constexpr int kTextHeight = 11;

    // Makes the title font and the two buttons on `page`.
    void Create(HWND page, const std::u16string& title);
    // Moves the page over the whole screen and the buttons to its bottom;
    // returns the content rectangle.
    RECT Layout();
    // Background and title band.
    void Paint(Dc& dc) const;
    void SetTitle(const std::u16string& title);

    bool IsOk(HWND control) const { return control && control == ok_.GetHwnd(); }
    bool IsCancel(HWND control) const { return control && control == cancel_.GetHwnd(); }
    ButtonWnd& Ok() { return ok_; }
    ButtonWnd& Cancel() { return cancel_; }
    const Font& TitleFont() const { return *font_; }
    // A font of the picker's text size times `percent` / 100, bold or not.
    static std::unique_ptr<Font> MakeFont(int percent, bool bold);

private:
    HWND page_ = nullptr;
    std::u16string title_;
    std::unique_ptr<Font> font_;
    ButtonWnd ok_;
    ButtonWnd cancel_;
};

} // namespace mirodate
