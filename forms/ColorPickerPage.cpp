#include "forms/ColorPickerPage.h"

#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 24;
constexpr int kButtonHeight = 26;
constexpr int kMargin = 4;
constexpr int kTextHeight = 11;
constexpr int kGap = 4;
} // namespace

ColorPickerPage::ColorPickerPage(std::u16string title, COLORREF current)
    : title_(std::move(title)), color_(current) {}

ColorPickerPage::~ColorPickerPage() = default;

const std::vector<COLORREF>& ColorPickerPage::Palette() {
    // Six rows from light to strong, five hues each: enough to tell
    // categories apart on both the dark and the light skin.
    static const std::vector<COLORREF> palette = {
        RGB(0xF4, 0x43, 0x36), RGB(0xE9, 0x1E, 0x63), RGB(0x9C, 0x27, 0xB0), RGB(0x67, 0x3A, 0xB7),
        RGB(0x3F, 0x51, 0xB5), RGB(0x21, 0x96, 0xF3), RGB(0x03, 0xA9, 0xF4), RGB(0x00, 0xBC, 0xD4),
        RGB(0x00, 0x96, 0x88), RGB(0x4C, 0xAF, 0x50), RGB(0x8B, 0xC3, 0x4A), RGB(0xCD, 0xDC, 0x39),
        RGB(0xFF, 0xEB, 0x3B), RGB(0xFF, 0xC1, 0x07), RGB(0xFF, 0x98, 0x00), RGB(0xFF, 0x57, 0x22),
        RGB(0x79, 0x55, 0x48), RGB(0x9E, 0x9E, 0x9E), RGB(0x60, 0x7D, 0x8B), RGB(0x00, 0x00, 0x00),
        RGB(0xCC, 0xCC, 0x00), RGB(0x00, 0xCC, 0xCC), RGB(0xCC, 0x00, 0xCC), RGB(0x80, 0x00, 0x00),
        RGB(0x00, 0x50, 0x00), RGB(0xFF, 0xCD, 0xD2), RGB(0xC8, 0xE6, 0xC9), RGB(0xBB, 0xDE, 0xFB),
        RGB(0xFF, 0xF9, 0xC4), RGB(0xFF, 0xFF, 0xFF)};
    return palette;
}

RECT ColorPickerPage::SwatchRect(int index) const {
    const int rows = (static_cast<int>(Palette().size()) + kColumns - 1) / kColumns;
    const int cellWidth = grid_.Width() / kColumns;
    const int cellHeight = std::min(grid_.Height() / std::max(rows, 1), cellWidth);
    const int left = grid_.left + (index % kColumns) * cellWidth;
    const int top = grid_.top + (index / kColumns) * cellHeight;
    return RECT{left + Scale(kGap) / 2, top + Scale(kGap) / 2, left + cellWidth - Scale(kGap) / 2,
                top + cellHeight - Scale(kGap) / 2};
}

BOOL ColorPickerPage::OnInitDialog() {
    SetWindowText(window, title_);
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    cancel_.Create(window, Lang("Cancel"), 0, 0, 1, 1, IDCANCEL);
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    cancel_.SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText,
                      form.buttons.colorButtonBgPressed, form.buttons.colorButtonTextPressed);
    cancel_.SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void ColorPickerPage::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int buttonTop = height - Scale(kMargin) - Scale(kButtonHeight);
    MoveWindow(cancel_.GetHwnd(), Scale(kMargin), buttonTop, width - 2 * Scale(kMargin), Scale(kButtonHeight),
               true);
    grid_ = RECT{Scale(kMargin), Scale(kTitleHeight) + Scale(kMargin), width - Scale(kMargin),
                 buttonTop - Scale(kMargin)};
    InvalidateRect(window, nullptr, false);
}

void ColorPickerPage::OnScreenReset() {
    Layout();
}

void ColorPickerPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), font_.get(), title_);
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    const std::vector<COLORREF>& palette = Palette();
    for (size_t i = 0; i < palette.size(); ++i) {
        const RECT rect = SwatchRect(static_cast<int>(i));
        dc->FillRect(rect, palette[i]);
        dc->FrameRect(rect, form.colorItemText);
        if (palette[i] == color_) {
            // The colour in use: a second frame outside the swatch.
            const int out = std::max(1, Scale(kGap) / 2 - 1);
            dc->FrameRect(RECT{rect.left - out, rect.top - out, rect.right + out, rect.bottom + out},
                          form.colorItemText);
        }
    }
}

LRESULT ColorPickerPage::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    const std::vector<COLORREF>& palette = Palette();
    for (size_t i = 0; i < palette.size(); ++i) {
        if (SwatchRect(static_cast<int>(i)).Contains(x, y)) {
            color_ = palette[i];
            EndDialog(window, IDOK);
            return 0;
        }
    }
    return 0;
}

void ColorPickerPage::OnCommand(UINT, UINT, HWND control) {
    if (control == cancel_.GetHwnd())
        EndDialog(window, IDCANCEL);
}

void ColorPickerPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE)
        EndDialog(window, IDCANCEL);
}

} // namespace mirodate
