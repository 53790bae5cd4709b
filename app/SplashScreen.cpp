#include "app/SplashScreen.h"

#include "platform/TextUtil.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/Resources.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"
#include "ui/WindowClasses.h"

#include <algorithm>

namespace mirodate {

namespace {
// The splash picture's resource id.
constexpr UINT kSplashImageId = 2;
// Window size for a 240-pixel-wide screen.
constexpr int kWidth = 110;
constexpr int kHeight = 130;
constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kBarBorder = RGB(120, 140, 120);
// The built-in picture: a calendar leaf.
constexpr COLORREF kLeafHeader = RGB(200, 40, 40);
constexpr COLORREF kLeafText = RGB(40, 40, 40);

// Drawn when no splash picture is registered: a calendar leaf with the name.
Bitmap BuiltInPicture(int width, int height) {
    Bitmap picture(width, height);
    Dc dc(picture);
    dc.FillRect({0, 0, width, height}, kWhite);
    const int margin = Scale(14);
    const RECT leaf{margin, margin, width - margin, height - Scale(34)};
    dc.RoundRect(leaf, Scale(8), Scale(8), kWhite, kLeafText, Scale(1));
    dc.FillRect({leaf.left + Scale(1), leaf.top + Scale(1), leaf.right - Scale(1), leaf.top + Scale(16)},
                kLeafHeader);
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -Scale(28);
    logFont.lfWeight = FW_BOLD;
    Font big(logFont);
    dc.SelectFont(&big);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(kLeafText);
    RECT number{leaf.left, leaf.top + Scale(16), leaf.right, leaf.bottom};
    dc.DrawText(u"31", number, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    logFont.lfHeight = -Scale(11);
    Font small(logFont);
    dc.SelectFont(&small);
    RECT name{0, leaf.bottom, width, height - Scale(20)};
    dc.DrawText(u"Mirodate", name, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    dc.SelectFont(nullptr);
    return picture;
}
} // namespace

SplashScreen::SplashScreen(std::u16string commandLine, LoadStep loadStep)
    : commandLine(std::move(commandLine)), loadStep_(std::move(loadStep)) {}

SplashScreen::~SplashScreen() = default;

HWND SplashScreen::CreateCentered() {
    const int width = Scale(kWidth);
    const int height = Scale(kHeight);
    const int left = GetScreenWidth() / 2 - Scale(kWidth / 2);
    const int top = GetScreenHeight() / 2 - Scale(kHeight / 2);
    if (const Bitmap* image = Resources::GetBitmap(kSplashImageId))
        picture_ = image->Copy();
    else
        picture_ = BuiltInPicture(width, height);
    progress = kInitialProgress;
    if (!Create(nullptr, kSplashScreenClass, WS_POPUP | WS_VISIBLE, Utf8ToUtf16(kSplashScreenTitle), left,
                top, width, height))
        return nullptr;
    UpdateWindow(window);
    SetForegroundWindow(window);
    SetTimer(window, kLoadTimer, kLoadTimerPeriod);
    return window;
}

RECT SplashScreen::ProgressBarRect(int width, int height, bool highResolution) {
    const int s = highResolution ? 2 : 1;
    RECT bar{0, height - 16 * s, width, height};
    bar.left += 10 * s;
    bar.right -= 10 * s;
    bar.top += 3 * s - 4 * s;
    bar.bottom -= 3 * s + 4 * s;
    return bar;
}

void SplashScreen::OnPaint(HDC dc) {
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, kWhite);
    if (picture_)
        dc->StretchBlt(0, 0, client.Width(), client.Height(), picture_, 0, 0, picture_.Width(),
                       picture_.Height());
    RECT bar = ProgressBarRect(client.Width(), client.Height(), IsHighResolution());
    dc->FillRect(bar, kBarBackground);
    dc->FrameRect(bar, kBarBorder);
    bar.left += Scale(1);
    bar.top += Scale(1);
    bar.right -= Scale(1);
    bar.bottom -= Scale(1);
    if (progress != 0) {
        const int filled = std::min(bar.Width() * progress / 100, bar.Width());
        dc->FillRect({bar.left, bar.top, bar.left + filled, bar.bottom}, kBarFill);
    }
}

void SplashScreen::SetProgress(int percent) {
    progress = std::clamp(percent, 0, 100);
    if (!window)
        return;
    InvalidateRect(window, nullptr, false);
    UpdateWindow(window);
    Wm().ComposeIfNeeded();
}

void SplashScreen::OnTimer(UINT_PTR id) {
    if (id != kLoadTimer)
        return;
    KillTimer(window, kLoadTimer);
    if (loadStep_)
        loadStep_(*this);
}

void SplashScreen::Close() {
    if (window)
        DestroyWindow(window);
}

} // namespace mirodate
