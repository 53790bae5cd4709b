#include "ui/PushButtonControl.h"

#include "ui/Dc.h"
#include "ui/WinApi.h"

#include <unordered_map>

namespace mirodate {

namespace {
constexpr unsigned kPressed = 0x1;  // shown pressed
constexpr unsigned kTracking = 0x2; // the pointer went down on it and is not up yet
constexpr COLORREF kFace = RGB(212, 208, 200);
constexpr COLORREF kPressedFace = RGB(160, 160, 160);
constexpr COLORREF kEdge = RGB(64, 64, 64);
constexpr COLORREF kGreyText = RGB(128, 128, 128);

// The state of every button, by window.
std::unordered_map<HWND, unsigned>& States() {
    static std::unordered_map<HWND, unsigned> states;
    return states;
}

void Redraw(HWND window) {
    InvalidateRect(window, nullptr, false);
    UpdateWindow(window);
}

bool Inside(HWND window, LPARAM point) {
    RECT client;
    GetClientRect(window, &client);
    return client.Contains(GET_X_LPARAM(point), GET_Y_LPARAM(point));
}

void Paint(HWND window, unsigned state) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    RECT client;
    GetClientRect(window, &client);
    const DWORD style = static_cast<DWORD>(GetWindowLongPtr(window, GWL_STYLE));
    UINT itemState = 0;
    if (state & kPressed)
        itemState |= ODS_SELECTED;
    if (GetFocus() == window)
        itemState |= ODS_FOCUS;
    if (style & WS_DISABLED)
        itemState |= ODS_DISABLED;
    const int id = GetDlgCtrlID(window);
    if ((style & 0xF) == BS_OWNERDRAW) {
        DRAWITEMSTRUCT item;
        item.CtlType = ODT_BUTTON;
        item.CtlID = static_cast<UINT>(id);
        item.itemAction = ODA_DRAWENTIRE;
        item.itemState = itemState;
        item.hwndItem = window;
        item.hDC = dc;
        item.rcItem = client;
        SendMessage(GetParent(window), WM_DRAWITEM, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(&item));
    } else {
        SendMessage(GetParent(window), WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(dc),
                    reinterpret_cast<LPARAM>(window));
        dc->FillRect(client, (itemState & ODS_SELECTED) ? kPressedFace : kFace);
        dc->FrameRect(client, kEdge);
        dc->SetBkMode(TRANSPARENT);
        dc->SetTextColor((itemState & ODS_DISABLED) ? kGreyText : RGB(0, 0, 0));
        RECT text = client;
        dc->DrawText(GetWindowText(window), text, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    }
    EndPaint(window, &paint);
}
} // namespace

LRESULT PushButtonControl::WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    unsigned& state = States()[window];
    switch (message) {
    case WM_PAINT:
        Paint(window, state);
        return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
        state |= kPressed | kTracking;
        SetCapture(window);
        SetFocus(window);
        Redraw(window);
        return 0;
    case WM_MOUSEMOVE:
        if (state & kTracking) {
            const unsigned before = state;
            if (Inside(window, lParam))
                state |= kPressed;
            else
                state &= ~kPressed;
            if (before != state)
                Redraw(window);
        }
        return 0;
    case WM_LBUTTONUP: {
        if (!(state & kTracking))
            return 0;
        const bool click = Inside(window, lParam);
        state &= ~(kPressed | kTracking);
        ReleaseCapture();
        Redraw(window);
        if (click && IsWindow(window))
            SendMessage(GetParent(window), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(window), BN_CLICKED),
                        reinterpret_cast<LPARAM>(window));
        return 0;
    }
    case WM_CAPTURECHANGED:
        if (state & kTracking) {
            state &= ~(kPressed | kTracking);
            Redraw(window);
        }
        return 0;
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
    case WM_ENABLE:
        Redraw(window);
        return 0;
    case BM_SETSTATE:
        if (wParam)
            state |= kPressed;
        else
            state &= ~kPressed;
        Redraw(window);
        return 0;
    case BM_GETSTATE:
        return ((state & kPressed) ? BST_PUSHED : 0) | (GetFocus() == window ? BST_FOCUS : 0);
    case WM_NCDESTROY:
        States().erase(window);
        return 0;
    default:
        return DefWindowProc(window, message, wParam, lParam);
    }
}

} // namespace mirodate
