#include "ui/ButtonWnd.h"

#include "ui/DrawPrimitives.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cstdlib>

namespace mirodate {

namespace {
constexpr COLORREF kRightSeparator = RGB(0, 0, 0);
constexpr COLORREF kLeftSeparator = RGB(96, 96, 96);
constexpr COLORREF kLabelShadow = RGB(0, 0, 0);
constexpr int kLabelInset = 2;
constexpr UINT kTooltipDelay = 1;
constexpr int kTooltipFontHeight = 12;
} // namespace

ButtonWnd::ButtonWnd() = default;

ButtonWnd::~ButtonWnd() {
    if (window && IsWindow(window))
        DestroyWindow(window);
    window = nullptr;
}

HWND ButtonWnd::Create(HWND parent, const std::u16string& text, int x, int y, int width, int height,
                       LONG_PTR value) {
    label = text;
    picture = nullptr;
    textFormat = kDefaultTextFormat;
    value_ = value;
    BaseWnd::Create(parent, kButtonWndClass, WS_CHILD | WS_VISIBLE, text, x, y, width, height);
    if (!window)
        return nullptr;
    EnsureBackBuffer();
    LOGFONT lf;
    DefaultFont(lf);
    lf.lfHeight = -(Scale(kTooltipFontHeight) + FontSizeDelta());
    tooltipFont_ = std::make_unique<Font>(lf);
    tooltip_.Create(window, tooltipFont_.get());
    return window;
}

void ButtonWnd::EnsureBackBuffer() {
    RECT client;
    GetClientRect(window, &client);
    const int width = std::max(1, client.right), height = std::max(1, client.bottom);
    if (backBuffer_.Width() == width && backBuffer_.Height() == height)
        return;
    backDc_.reset();
    backBuffer_ = Bitmap(width, height);
    backDc_ = std::make_unique<Dc>(backBuffer_);
    backDc_->FillSolidRect(0, 0, width, height, backColor);
    pictureValid = false;
}

void ButtonWnd::Invalidate() {
    pictureValid = false;
    if (window && IsWindow(window))
        Redraw(false);
}

void ButtonWnd::SetLabel(const std::u16string& text) {
    label = text;
    if (window)
        SetWindowText(window, text);
    Invalidate();
}

void ButtonWnd::SetColors(COLORREF back, COLORREF text, COLORREF pressedBack, COLORREF pressedText) {
    backColor = back;
    textColor = text;
    pressedBackColor = pressedBack;
    pressedTextColor = pressedText;
    Invalidate();
}

void ButtonWnd::SetGradient(COLORREF top, COLORREF pressedTop) {
    gradient = true;
    gradientColor = top;
    pressedGradientColor = pressedTop;
    Invalidate();
}

void ButtonWnd::SetPicture(const Bitmap* bitmap) {
    picture = bitmap;
    Invalidate();
}

void ButtonWnd::SetIcon(const Bitmap* bitmap, const RECT& source, int width, int height) {
    icon = bitmap;
    iconSource = source;
    iconWidth = width;
    iconHeight = height;
    Invalidate();
}

void ButtonWnd::SetSeparators(bool left, bool right) {
    leftSeparator = left;
    rightSeparator = right;
    Invalidate();
}

void ButtonWnd::SetTextFormat(UINT format, bool multi) {
    textFormat = format;
    multiLine = multi;
    Invalidate();
}

// ---- painting --------------------------------------------------------------

void ButtonWnd::OnPaint(HDC dc) {
    if (!dc || !window)
        return;
    EnsureBackBuffer();
    const int width = backBuffer_.Width(), height = backBuffer_.Height();
    if (!pictureValid) {
        Dc& back = *backDc_;
        const COLORREF background = pressed ? pressedBackColor : backColor;
        const COLORREF text = pressed ? pressedTextColor : textColor;
        const COLORREF top = pressed ? pressedGradientColor : gradientColor;
        back.FillSolidRect(0, 0, width, height, background);
        const bool useGradient = gradient && top != background;
        if (useGradient)
            DrawGradient(back, RECT{0, 0, width, height + 1}, background, top, 0);

        if (picture) {
            back.StretchBlt(0, 0, width, height, *picture, 0, 0, picture->Width(), picture->Height());
        } else if (icon) {
            const RECT source = iconSource.IsEmpty() ? RECT{0, 0, icon->Width(), icon->Height()} : iconSource;
            const int w = iconWidth > 0 ? iconWidth : source.Width();
            const int h = iconHeight > 0 ? iconHeight : source.Height();
            back.TransparentImage((width - w) / 2, (height - h) / 2, w, h, *icon, source.left, source.top,
                                  source.Width(), source.Height(), kKeyColor);
        } else {
            if (rightSeparator)
                back.Line(width - 1, 1, width - 1, height, kRightSeparator);
            if (leftSeparator)
                back.Line(0, 1, 0, height, kLeftSeparator);
            UINT format = textFormat | DT_NOPREFIX;
            if (multiLine)
                format &= ~DT_VCENTER;
            else
                format |= DT_VCENTER;
            const int inset = kLabelInset;
            RECT area{inset, inset, width - inset, height - inset};
            if (useGradient) {
                RECT shadow{area.left - 1, area.top - 1, area.right - 1, area.bottom - 1};
                DrawLabel(back, shadow, format, kLabelShadow);
            }
            DrawLabel(back, area, format, text);
        }
        pictureValid = true;
    }
    dc->BitBlt(0, 0, width, height, backBuffer_, 0, 0);
}

void ButtonWnd::DrawLabel(Dc& dc, const RECT& rect, UINT format, COLORREF color) {
    if (label.empty())
        return;
    if (!font_) {
        LOGFONT lf;
        DefaultFont(lf);
        lf.lfHeight -= FontSizeDelta();
        font_ = std::make_unique<Font>(lf);
    }
    dc.SelectFont(font_.get());
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(color);
    RECT area = rect;
    dc.DrawText(label, area, format);
    dc.SelectFont(nullptr);
}

void ButtonWnd::OnSize(UINT, UINT) {
    if (window)
        EnsureBackBuffer();
}

// ---- input -----------------------------------------------------------------

LRESULT ButtonWnd::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    KillTimer(window, kLongPressTimer);
    SetCapture(window);
    if (icon || picture)
        SetTimer(window, kTooltipTimer, kTooltipDelay);
    if (longPress)
        SetTimer(window, kLongPressTimer, kLongPressDelay);
    pressPoint = POINT{x, y};
    pressed = true;
    Invalidate();
    return 0;
}

void ButtonWnd::OnPointerMove(int x, int y, WPARAM) {
    if (!pressed)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int distance = std::abs(x - pressPoint.x) + std::abs(y - pressPoint.y);
    if (distance > std::min(client.right, client.bottom))
        CancelPress();
}

void ButtonWnd::CancelPress() {
    KillTimer(window, kLongPressTimer);
    KillTimer(window, kTooltipTimer);
    tooltip_.Hide();
    pressed = false;
    Invalidate();
}

LRESULT ButtonWnd::OnPointerUp(int button, int, int, WPARAM) {
    if (button != 0)
        return 0;
    const bool wasPressed = pressed;
    KillTimer(window, kLongPressTimer);
    KillTimer(window, kTooltipTimer);
    tooltip_.Hide();
    pressed = false; // before letting go, so that losing the capture changes nothing
    if (GetCapture() == window)
        ReleaseCapture();
    Invalidate();
    const DWORD now = GetTickCount();
    if (wasPressed && now - lastClickTime > kClickInterval) {
        lastClickTime = now;
        SendNotifyMessage(GetParent(window), WM_COMMAND, MAKEWPARAM(0, 0), reinterpret_cast<LPARAM>(window));
    }
    return 0;
}

void ButtonWnd::OnCaptureChanged(HWND newCapture) {
    if (newCapture == window)
        return;
    tooltip_.Hide();
    KillTimer(window, kTooltipTimer);
    if (pressed) {
        pressed = false;
        Invalidate();
    }
}

void ButtonWnd::OnTimer(UINT_PTR id) {
    if (id == kLongPressTimer) {
        KillTimer(window, kLongPressTimer);
        pressed = false;
        Invalidate();
        NotifyParent(NM_LONG_PRESS);
    } else if (id == kTooltipTimer) {
        KillTimer(window, kTooltipTimer);
        const std::u16string text = label.empty() ? GetWindowText(window) : label;
        if (!text.empty())
            tooltip_.Show(text);
    }
}

} // namespace mirodate
