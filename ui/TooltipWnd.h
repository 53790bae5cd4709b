#pragma once
// The balloon that shows an icon button's label while the button is held:
// a small pop-up above the button, pushed inside the screen when the button
// sits at an edge, with its tip still pointing at the button's centre.
#include "ui/BaseWnd.h"

#include <string>

namespace mirodate {

class Font;

constexpr const char* kTooltipClass = "KESTRELIA:TOOLTIPWND";

class TooltipWnd : public BaseWnd {
public:
    // Creates the hidden 1 x 1 pop-up owned by `button`; `font` must outlive it.
    HWND Create(HWND button, const Font* font);
    // Places the balloon above the button and shows it with `text`.
    void Show(const std::u16string& text);
    void Hide();

    int TipOffset() const { return tipOffset; }
    void OnPaint(HDC dc) override;

    HWND button = nullptr;
    const Font* font = nullptr;
    // Horizontal shift of the tip from the balloon's centre after the balloon
    // was pushed inside the screen.
    int tipOffset = 0;

private:
    std::u16string text_;
};

} // namespace mirodate
