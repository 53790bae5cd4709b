#include "ui/TooltipWnd.h"

#include "ui/Bitmap.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <cstdlib>

namespace mirodate {

namespace {
constexpr COLORREF kBalloonFill = RGB(228, 228, 128);
constexpr COLORREF kBalloonOutline = RGB(0, 0, 0);
constexpr COLORREF kBalloonText = RGB(0, 0, 0);
constexpr int kPaddingWidth = 8;   // added to the text width
constexpr int kPaddingHeight = 10; // added to the text height (the tip lives here)
constexpr int kGap = 1;            // between the balloon and the button
constexpr int kTipHeight = 5;      // also half the tip's base
} // namespace

HWND TooltipWnd::Create(HWND button_, const Font* font_) {
    button = button_;
    font = font_;
    return BaseWnd::Create(button_, kTooltipClass, WS_POPUP, u"", 0, 0, 1, 1);
}

void TooltipWnd::Show(const std::u16string& text) {
    if (!window || !IsWindow(button))
        return;
    text_ = text;
    Bitmap scratch(1, 1);
    Dc measure(scratch);
    measure.SelectFont(font);
    const SIZE extent = measure.GetTextExtent(text);
    const int width = extent.cx + Scale(kPaddingWidth);
    const int height = extent.cy + Scale(kPaddingHeight);

    RECT buttonRect;
    GetWindowRect(button, &buttonRect);
    int x = buttonRect.left + buttonRect.Width() / 2 - width / 2;
    const int y = buttonRect.top - Scale(kGap) - height;
    const int screenWidth = GetScreenWidth();
    tipOffset = 0;
    if (x + width >= screenWidth) {
        tipOffset = x - screenWidth + width + 1;
        x -= std::abs(screenWidth - x - width - 1);
    }
    if (x < 0) {
        tipOffset = x;
        x = 0;
    }
    MoveTo(x, y, width, height);
    BringWindowToTop(window);
    ShowWindow(window, SW_SHOWNA);
    InvalidateRect(window, nullptr, false);
}

void TooltipWnd::Hide() {
    if (window && IsWindowVisible(window))
        ShowWindow(window, SW_HIDE);
}

void TooltipWnd::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int w = client.right, h = client.bottom;
    // What lies under the balloon shows around its tip.
    RECT screen;
    GetWindowRect(window, &screen);
    dc->BitBlt(0, 0, w, h, Wm().Frame(), screen.left, screen.top);

    const int tip = Scale(kTipHeight);
    const int body = h - 1 - tip;
    const int point = w / 2 + tipOffset;
    const std::vector<POINT> balloon{{0, 0},         {w - 1, 0},          {w - 1, body}, {point + tip, body},
                                     {point, h - 1}, {point - tip, body}, {0, body},     {0, 0}};
    dc->Polygon(balloon, kBalloonFill, kBalloonOutline);

    dc->SelectFont(font);
    dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(kBalloonText);
    RECT text{0, Scale(1), w, body + Scale(1)};
    dc->DrawText(text_, text, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    dc->SelectFont(nullptr);
}

} // namespace mirodate
