#include "app/StatusBar.h"

#include "platform/Clock.h"
#include "platform/Locale.h"
#include "platform/PowerStatus.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Text height as a share of the bar height.
constexpr double kTextShare = 0.55;
// The battery box is shrunk to this inner height (unscaled) when taller.
constexpr int kMaxBatteryInner = 10;
} // namespace

StatusBarColors StatusBarColors::FromSkin() {
    const StatusBarStyle& s = SkinStyles::Current().statusBar;
    StatusBarColors c;
    if (s.colorBg)
        c.background = *s.colorBg;
    c.gradient = s.colorBgGradient;
    if (s.colorText)
        c.text = *s.colorText;
    if (s.colorMeters)
        c.meters = *s.colorMeters;
    if (!s.textShadowOff)
        c.textShadow = s.colorTextShadow;
    else
        c.textShadow.reset();
    if (s.metersShadowOff)
        c.metersShadowOn = false;
    else if (s.colorMetersShadow)
        c.metersShadow = *s.colorMetersShadow;
    return c;
}

StatusBar::StatusBar() = default;
StatusBar::~StatusBar() = default;

HWND StatusBar::Create(HWND parent, int x, int y, int width, int height) {
    colors_ = StatusBarColors::FromSkin();
    if (!BaseWnd::Create(parent, kStatusBarClass, WS_CHILD | WS_VISIBLE, u"", x, y, width, height))
        return nullptr;
    Refresh();
    SetTimer(window, kRefreshTimer, kRefreshPeriod);
    return window;
}

void StatusBar::Refresh() {
    const std::u16string clock = Locale::FormatShortTime(Clock::Current().GetLocalTime());
    const std::optional<int> level = PowerStatus::BatteryPercent();
    if (clock == clockText && level == battery)
        return;
    clockText = clock;
    battery = level;
    if (window)
        InvalidateRect(window, nullptr, false);
}

void StatusBar::OnTimer(UINT_PTR id) {
    if (id == kRefreshTimer)
        Refresh();
}

RECT StatusBar::SignalBox(int, int height) {
    return {Scale(3), Scale(4), Scale(31), height - Scale(4)};
}

RECT StatusBar::BatteryBox(int width, int height) {
    return {width - Scale(27), Scale(7), width - Scale(4), height - Scale(4)};
}

void StatusBar::DrawMeter(HDC dc, RECT box, int level, COLORREF color, bool batteryShape) {
    if (batteryShape) {
        // A tall box is shrunk to the largest inner height, centred.
        const int inset = Scale(2);
        const int inner = box.Height() - 2 * inset;
        if (inner > Scale(kMaxBatteryInner)) {
            const int excess = inner - Scale(kMaxBatteryInner);
            box.top += excess / 2;
            box.bottom = box.top + Scale(kMaxBatteryInner) + 2 * inset;
        }
    }
    dc->FrameRect(box, color);
    RECT fill{box.left + Scale(2), box.top + Scale(2), box.right - Scale(2), box.bottom - Scale(2)};
    level = std::clamp(level, 1, 100);
    fill.right = fill.left + fill.Width() * level / 100;
    dc->FillRect(fill, color);
}

void StatusBar::UpdateFont(int barHeight) {
    // The bar is created before the page knows its height, and a rotation
    // changes it: the font follows the bar, made anew only when it changes.
    if (font_ && fontBarHeight_ == barHeight)
        return;
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::max(static_cast<int>(barHeight * kTextShare), 6);
    logFont.lfWeight = FW_BOLD;
    font_ = std::make_unique<Font>(logFont);
    fontBarHeight_ = barHeight;
}

void StatusBar::SetActivity(const std::u16string& text) {
    if (text == activity_)
        return;
    activity_ = text;
    if (window)
        InvalidateRect(window, nullptr, false);
}

void StatusBar::OnPaint(HDC dc) {
    RECT client;
    GetClientRect(window, &client);
    UpdateFont(client.bottom - client.top);
    if (colors_.gradient)
        dc->GradientFillVertical(client, colors_.background, *colors_.gradient);
    else
        dc->FillRect(client, colors_.background);

    dc->SelectFont(font_.get());
    dc->SetBkMode(TRANSPARENT);
    constexpr UINT kFormat = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX;
    auto drawText = [&](const std::u16string& text, RECT rect, UINT align) {
        if (text.empty())
            return;
        if (colors_.textShadow) {
            RECT shadow{rect.left + Scale(1), rect.top + Scale(1), rect.right + Scale(1),
                        rect.bottom + Scale(1)};
            dc->SetTextColor(*colors_.textShadow);
            dc->DrawText(text, shadow, kFormat | align);
        }
        dc->SetTextColor(colors_.text);
        dc->DrawText(text, rect, kFormat | align);
    };
    const int textLeft = signal ? Scale(34) : Scale(4);
    if (activity_.empty()) {
        drawText(operatorName, {textLeft, 0, client.Width() / 2, client.Height()}, DT_LEFT);
    } else {
        // Work in the background ("Syncing") stands where the operator's name was,
        // clear of the clock.
        drawText(activity_, {textLeft, 0, client.Width() / 2 - Scale(kClockHalfWidth), client.Height()},
                 DT_LEFT | DT_END_ELLIPSIS);
    }
    drawText(clockText, client, DT_CENTER);
    dc->SelectFont(nullptr);

    auto drawMeter = [&](const RECT& box, int level, bool batteryShape) {
        if (colors_.metersShadowOn) {
            const RECT shadow{box.left + Scale(1), box.top + Scale(1), box.right + Scale(1),
                              box.bottom + Scale(1)};
            DrawMeter(dc, shadow, level, colors_.metersShadow, batteryShape);
        }
        DrawMeter(dc, box, level, colors_.meters, batteryShape);
    };
    if (signal)
        drawMeter(SignalBox(client.Width(), client.Height()), *signal, false);
    if (battery)
        drawMeter(BatteryBox(client.Width(), client.Height()), *battery, true);
}

bool StatusBar::Inside(int x, int y) const {
    RECT client;
    GetClientRect(window, &client);
    return x >= 0 && y >= 0 && x < client.Width() && y < client.Height();
}

LRESULT StatusBar::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    pressedInside_ = Inside(x, y);
    SetCapture(window);
    return 0;
}

LRESULT StatusBar::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    if (GetCapture() == window)
        ReleaseCapture();
    // Both ends of the tap must lie in the bar.
    const bool tap = pressedInside_ && Inside(x, y);
    pressedInside_ = false;
    if (!tap)
        return 0;
    NotifyParent(NM_TOP_BAR_TAP);
    return 0;
}

} // namespace mirodate
