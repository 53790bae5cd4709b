#pragma once
// The top bar of the main window: operator name at the left, the clock
// without seconds in the centre, the signal meter at the left and the
// battery meter at the right, in the skin's "styles.statusbar" colours.
// A tap that starts and ends inside it tells the parent (NM_TOP_BAR_TAP).
#include "ui/BaseWnd.h"

#include <memory>
#include <optional>
#include <string>

namespace mirodate {

class Font;

constexpr const char* kStatusBarClass = "MIRODATE::STATUSBAR";
constexpr UINT NM_TOP_BAR_TAP = 0x8195;

struct StatusBarColors {
    COLORREF background = RGB(0xFF, 0xFF, 0xFF);
    std::optional<COLORREF> gradient;
    COLORREF text = RGB(0xFF, 0xFF, 0xFF);
    COLORREF meters = RGB(0x00, 0x00, 0x80);
    COLORREF metersShadow = RGB(0x60, 0x60, 0x80);
    std::optional<COLORREF> textShadow;
    bool metersShadowOn = true;

    static StatusBarColors FromSkin();
};

class StatusBar : public BaseWnd {
public:
    // How often the clock and the battery are looked at.
    static constexpr UINT_PTR kRefreshTimer = 1;
    static constexpr UINT kRefreshPeriod = 1000;

    StatusBar();
    ~StatusBar() override;

    HWND Create(HWND parent, int x, int y, int width, int height);
    // Reads clock, battery and signal again; repaints when anything changed.
    void Refresh();
    // A short text of work that runs in the background; empty when none.
    void SetActivity(const std::u16string& text);
    const std::u16string& Activity() const { return activity_; }
    // Half the clock's width at 240 pixels, which the activity text keeps clear of.
    static constexpr int kClockHalfWidth = 22;

    // The meters' boxes for a bar of this size (before the battery's shrink).
    static RECT SignalBox(int width, int height);
    static RECT BatteryBox(int width, int height);

    void OnPaint(HDC dc) override;
    void OnTimer(UINT_PTR id) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;

    std::u16string clockText;
    std::u16string operatorName;
    std::optional<int> battery;
    std::optional<int> signal;

private:
    void DrawMeter(HDC dc, RECT box, int level, COLORREF color, bool battery);
    bool Inside(int x, int y) const;

    StatusBarColors colors_;
    void UpdateFont(int barHeight);

    std::unique_ptr<Font> font_;
    int fontBarHeight_ = 0;
    bool pressedInside_ = false;
    std::u16string activity_;
};

} // namespace mirodate
