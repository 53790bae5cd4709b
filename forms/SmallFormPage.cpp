#include "forms/SmallFormPage.h"

#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

SmallFormPage::SmallFormPage(std::u16string title) : title_(std::move(title)) {}
SmallFormPage::~SmallFormPage() = default;

void SmallFormPage::Style(ButtonWnd& button) {
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    button.SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText,
                     form.buttons.colorButtonBgPressed, form.buttons.colorButtonTextPressed);
    button.SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
}

BOOL SmallFormPage::OnInitDialog() {
    SetWindowText(window, title_);
    DefaultFont(logFont_);
    logFont_.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont_);
    LOGFONT bold = logFont_;
    bold.lfWeight = FW_BOLD;
    bold_ = std::make_unique<Font>(bold);
    ok_.Create(window, Lang("OK"), 0, 0, 1, 1, IDOK);
    cancel_.Create(window, Lang("Cancel"), 0, 0, 1, 1, IDCANCEL);
    Style(ok_);
    Style(cancel_);
    CreateControls();
    Layout();
    return DialogWnd::OnInitDialog();
}

void SmallFormPage::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int margin = Scale(kMargin);
    const int half = (width - 3 * margin) / 2;
    const int buttonTop = height - margin - Scale(kButtonHeight);
    MoveWindow(ok_.GetHwnd(), margin, buttonTop, half, Scale(kButtonHeight), true);
    MoveWindow(cancel_.GetHwnd(), 2 * margin + half, buttonTop, half, Scale(kButtonHeight), true);
    LayoutControls(
        RECT{0, Scale(kTitleHeight), width, std::max(Scale(kTitleHeight) + 1, buttonTop - margin)});
    InvalidateRect(window, nullptr, false);
}

void SmallFormPage::OnScreenReset() {
    Layout();
}

void SmallFormPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), bold_.get(), title_);
}

void SmallFormPage::Accept() {
    if (OnAccept())
        EndDialog(window, IDOK);
}

void SmallFormPage::Cancel() {
    EndDialog(window, IDCANCEL);
}

void SmallFormPage::OnCommand(UINT id, UINT code, HWND control) {
    if (control && control == ok_.GetHwnd())
        Accept();
    else if (control && control == cancel_.GetHwnd())
        Cancel();
    else if (control)
        OnControl(control, code);
    else if (id == IDCANCEL)
        Cancel();
}

void SmallFormPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE)
        Cancel();
}

} // namespace mirodate
