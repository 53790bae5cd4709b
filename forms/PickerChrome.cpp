#include "forms/PickerChrome.h"

#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
void Colour(ButtonWnd& button) {
    const ButtonColors& colors = SkinStyles::Current().inputForms.buttons;
    button.SetColors(colors.colorButtonBg, colors.colorButtonText, colors.colorButtonBgPressed,
                     colors.colorButtonTextPressed);
    button.SetGradient(colors.colorButtonGradient, colors.colorButtonGradientPressed);
}
} // namespace

std::unique_ptr<Font> PickerChrome::MakeFont(int percent, bool bold) {
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp((Scale(kTextHeight) + FontSizeDelta()) * percent / 100, 6, 200);
    if (bold)
        logFont.lfWeight = FW_BOLD;
    return std::make_unique<Font>(logFont);
}

void PickerChrome::Create(HWND page, const std::u16string& title) {
    page_ = page;
    title_ = title;
    SetWindowText(page, title);
    font_ = MakeFont(100, true);
    ok_.Create(page, Lang("OK"), 0, 0, 1, 1, IDOK);
    cancel_.Create(page, Lang("Cancel"), 0, 0, 1, 1, IDCANCEL);
    Colour(ok_);
    Colour(cancel_);
}

RECT PickerChrome::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(page_, 0, 0, width, height, false);
    const int margin = Scale(kMargin);
    const int buttonHeight = Scale(kButtonHeight) + std::max(0, FontSizeDelta());
    const int buttonTop = height - margin - buttonHeight;
    const int buttonWidth = (width - 3 * margin) / 2;
    MoveWindow(ok_.GetHwnd(), margin, buttonTop, buttonWidth, buttonHeight, true);
    MoveWindow(cancel_.GetHwnd(), width - margin - buttonWidth, buttonTop, buttonWidth, buttonHeight, true);
    InvalidateRect(page_, nullptr, false);
    return RECT{0, Scale(kTitleHeight), width, std::max(Scale(kTitleHeight) + 1, buttonTop - margin)};
}

void PickerChrome::Paint(Dc& dc) const {
    RECT client;
    GetClientRect(page_, &client);
    FormPainter::PaintPage(dc, client, Scale(kTitleHeight), font_.get(), title_);
}

void PickerChrome::SetTitle(const std::u16string& title) {
    if (title == title_)
        return;
    title_ = title;
    SetWindowText(page_, title);
    RECT band{0, 0, GetScreenWidth(), Scale(kTitleHeight)};
    InvalidateRect(page_, &band, false);
}

} // namespace mirodate
