#pragma once
// The finger-sized push button of the toolkit: a label, a picture or an icon
// on a flat or gradient background, drawn through a back buffer so that an
// unchanged button repaints with one block copy. A click goes to the parent
// as WM_COMMAND (id 0, code 0, the button's window as the control); holding
// a long-press button 300 ms sends NM_LONG_PRESS instead. Clicks closer than
// 500 ms to the previous one are dropped, and sliding the finger off the
// button cancels the press.
#include "ui/BaseWnd.h"
#include "ui/Bitmap.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/TooltipWnd.h"

#include <memory>
#include <string>

namespace mirodate {

constexpr const char* kButtonWndClass = "KESTRELIA:BUTTONWND";

class ButtonWnd : public BaseWnd {
public:
    // Centred both ways on one line.
    static constexpr UINT kDefaultTextFormat = DT_CENTER | DT_VCENTER | DT_SINGLELINE;
    static constexpr UINT_PTR kTooltipTimer = 2;
    static constexpr UINT_PTR kLongPressTimer = 3;
    static constexpr UINT kLongPressDelay = 300;
    static constexpr DWORD kClickInterval = 500;

    ButtonWnd();
    ~ButtonWnd() override;

    // `value` is the owner's own word for this button (see Value()).
    HWND Create(HWND parent, const std::u16string& label, int x, int y, int width, int height,
                LONG_PTR value = 0);

    // Looks; each setter marks the back buffer stale and repaints.
    void SetLabel(const std::u16string& text);
    const std::u16string& Label() const { return label; }
    void SetColors(COLORREF back, COLORREF text, COLORREF pressedBack, COLORREF pressedText);
    // A vertical gradient from these top colours to the background at half height.
    void SetGradient(COLORREF top, COLORREF pressedTop);
    void SetPicture(const Bitmap* picture);
    // An icon, or the part `source` of a strip, drawn centred at its own size
    // (or `width` x `height`) with the key colour transparent.
    void SetIcon(const Bitmap* bitmap, const RECT& source, int width, int height);
    void SetSeparators(bool left, bool right);
    void SetTextFormat(UINT format, bool multiLine);
    void SetLongPress(bool on) { longPress = on; }
    LONG_PTR Value() const { return value_; }
    bool IsPressed() const { return pressed; }
    TooltipWnd& Tooltip() { return tooltip_; }

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnCaptureChanged(HWND newCapture) override;
    void OnTimer(UINT_PTR id) override;
    void OnSize(UINT sizeParam, UINT type) override;

    std::u16string label;
    UINT textFormat = kDefaultTextFormat;
    bool multiLine = false;
    COLORREF backColor = RGB(0x40, 0x40, 0x40);
    COLORREF textColor = RGB(255, 255, 255);
    COLORREF pressedBackColor = RGB(0x20, 0x20, 0x20);
    COLORREF pressedTextColor = RGB(255, 255, 255);
    bool gradient = false;
    COLORREF gradientColor = RGB(255, 255, 255);
    COLORREF pressedGradientColor = RGB(255, 255, 255);
    const Bitmap* picture = nullptr;
    const Bitmap* icon = nullptr;
    RECT iconSource;
    int iconWidth = 0;
    int iconHeight = 0;
    bool rightSeparator = false;
    bool leftSeparator = false;
    bool longPress = false;
    bool pressed = false;
    POINT pressPoint;
    DWORD lastClickTime = 0;
    bool pictureValid = false;

protected:
    void Invalidate();
    // Draws the label; buttons that need clipping or wrapping override it.
    virtual void DrawLabel(Dc& dc, const RECT& rect, UINT format, COLORREF color);

private:
    void CancelPress();
    void EnsureBackBuffer();

    Bitmap backBuffer_;
    std::unique_ptr<Dc> backDc_; // declared after the bitmap it draws on
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> tooltipFont_;
    TooltipWnd tooltip_;
    LONG_PTR value_ = 0;
};

} // namespace mirodate
