#include "ui/BaseWnd.h"

#include "ui/Bitmap.h"
#include "ui/Dc.h"
#include "ui/DrawPrimitives.h"
#include "ui/Font.h"
#include "ui/Resources.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// The module instance the classes and dialogs are registered under.
HINSTANCE ModuleInstance() {
    static int module;
    return &module;
}

constexpr UINT kButtonDown[] = {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN};
constexpr UINT kButtonUp[] = {WM_LBUTTONUP, WM_RBUTTONUP, WM_MBUTTONUP};
// Embossed (disabled) labels: a white copy one pixel down and right, then grey.
constexpr COLORREF kEmbossLight = RGB(255, 255, 255);
constexpr COLORREF kEmbossDark = RGB(152, 152, 152);

int PointerX(LPARAM lParam) {
    return GET_X_LPARAM(lParam);
}
int PointerY(LPARAM lParam) {
    return GET_Y_LPARAM(lParam);
}

std::u16string Label(const std::u16string& text) {
    return text.substr(0, std::min(text.size(), kOwnerButtonTextLength - 1));
}
} // namespace

BaseWnd::BaseWnd() = default;

BaseWnd::~BaseWnd() {
    if (window && IsWindow(window))
        DestroyWindow(window);
    ownerButtons.clear();
}

void BaseWnd::OnPaint(HDC) {}
void BaseWnd::OnAfterPaint() {}

BOOL BaseWnd::OnDrawItem(UINT, DRAWITEMSTRUCT* drawItem) {
    if (!drawItem)
        return 0;
    auto record = std::find_if(ownerButtons.begin(), ownerButtons.end(),
                               [&](const OwnerButton& b) { return b.controlId == drawItem->CtlID; });
    if (record == ownerButtons.end())
        return 0;
    const OwnerButton& button = *record;

    const bool selected = drawItem->itemState & ODS_SELECTED;
    const bool focused = drawItem->itemState & ODS_FOCUS;
    const bool disabled = drawItem->itemState & ODS_DISABLED;
    UINT bitmapId = button.bitmapId;
    UINT iconId = button.iconId;
    std::u16string text = button.text;
    COLORREF color = button.textColor;
    bool embossed = false;
    if (!button.stateful) {
        embossed = disabled;
    } else if (selected) {
        bitmapId = button.pressedBitmapId;
        iconId = button.pressedIconId ? button.pressedIconId : button.iconId;
        if (!button.pressedText.empty())
            text = button.pressedText;
        color = button.pressedTextColor;
    } else if (focused) {
        bitmapId = button.focusedBitmapId ? button.focusedBitmapId : button.bitmapId;
    } else if (disabled) {
        embossed = true;
    }

    const int width = drawItem->rcItem.Width(), height = drawItem->rcItem.Height();
    Bitmap offscreen(width, height);
    {
        Dc dc(offscreen);
        if (bitmapId)
            DrawBitmap(dc, Resources::GetBitmap(bitmapId), 0, 0, -1, -1);
        if (const Bitmap* icon = iconId ? Resources::GetIcon(iconId) : nullptr) {
            const OwnerButton::IconRect& r = button.iconRect;
            if (r.transparentIcon)
                DrawTransparentIcon(dc, icon, r.x, r.y, r.iconFillsButton ? width : r.width,
                                    r.iconFillsButton ? height : r.height, r.sourceWidth, r.sourceHeight);
            else
                dc.DrawIcon(button.iconX, button.iconY, *icon);
        }
        text = Label(text);
        if (!text.empty()) {
            LOGFONT logFont;
            DefaultFont(logFont);
            logFont.lfWeight = FW_BOLD;
            logFont.lfHeight = button.fontHeight + FontSizeDelta();
            Font font(logFont);
            dc.SelectFont(&font);
            dc.SetBkMode(TRANSPARENT);
            RECT area{button.marginX, button.marginY, width - button.marginX, height - button.marginY};
            if (embossed) {
                RECT shifted{area.left + 1, area.top + 1, area.right + 1, area.bottom + 1};
                dc.SetTextColor(kEmbossLight);
                dc.DrawText(text, shifted, button.textFormat);
                dc.SetTextColor(kEmbossDark);
            } else {
                dc.SetTextColor(color);
            }
            dc.DrawText(text, area, button.textFormat);
            dc.SelectFont(nullptr);
        }
    }
    if (drawItem->hDC)
        drawItem->hDC->BitBlt(drawItem->rcItem.left, drawItem->rcItem.top, width, height, offscreen, 0, 0);
    return 1;
}

BOOL BaseWnd::OnEraseBackground(HDC) {
    return 0;
}

LRESULT BaseWnd::OnControlColorButton(HDC dc, HWND control) {
    return DefWindowProc(window, WM_CTLCOLORBTN, reinterpret_cast<WPARAM>(dc),
                         reinterpret_cast<LPARAM>(control));
}

void BaseWnd::OnClose() {}
void BaseWnd::OnDestroy() {}
void BaseWnd::OnDoubleTap(int) {}

LRESULT BaseWnd::OnPointerUp(int button, int x, int y, WPARAM keys) {
    return DefWindowProc(window, kButtonUp[std::clamp(button, 0, 2)], keys, MAKELPARAM(x, y));
}

LRESULT BaseWnd::OnPointerDown(int button, int x, int y, WPARAM keys) {
    return DefWindowProc(window, kButtonDown[std::clamp(button, 0, 2)], keys, MAKELPARAM(x, y));
}

void BaseWnd::OnPointerMove(int, int, WPARAM) {}
LRESULT BaseWnd::OnMouseWheel(UINT, short, int, int) {
    return 0;
}
void BaseWnd::OnCaptureChanged(HWND) {}
void BaseWnd::OnKeyUp(UINT, UINT) {}
void BaseWnd::OnKeyDown(UINT, UINT) {}
void BaseWnd::OnHotKey(int, UINT) {}
void BaseWnd::OnChar(char16_t, UINT) {}
BOOL BaseWnd::OnInitDialog() {
    return 1;
}

LRESULT BaseWnd::OnCreate(WPARAM wParam, CREATESTRUCT* createStruct) {
    return DefWindowProc(window, WM_CREATE, wParam, reinterpret_cast<LPARAM>(createStruct));
}

void BaseWnd::OnShowWindow(BOOL) {}

void BaseWnd::OnCommand(UINT id, UINT, HWND) {
    if (modal && (id == IDOK || id == IDCANCEL))
        EndDialog(window, id);
}

LRESULT BaseWnd::OnSysCommand(UINT command, int x, int y) {
    return DefWindowProc(window, WM_SYSCOMMAND, command, MAKELPARAM(x, y));
}

LRESULT BaseWnd::OnNotify(UINT_PTR, NMHDR*) {
    return 0;
}
void BaseWnd::OnTimer(UINT_PTR) {}
void BaseWnd::OnSize(UINT, UINT) {}
LRESULT BaseWnd::OnWindowPosChanged(WINDOWPOS*) {
    return 0;
}
LRESULT BaseWnd::OnActivate(UINT, BOOL, HWND) {
    return 0;
}

LRESULT BaseWnd::OnSetFocus(HWND previous) {
    return DefWindowProc(window, WM_SETFOCUS, reinterpret_cast<WPARAM>(previous), 0);
}

LRESULT BaseWnd::OnKillFocus(HWND next) {
    return DefWindowProc(window, WM_KILLFOCUS, reinterpret_cast<WPARAM>(next), 0);
}

bool BaseWnd::DispatchCommon(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    result = 0;
    switch (message) {
    case WM_PAINT: {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(hwnd, &paint);
        OnPaint(dc);
        EndPaint(hwnd, &paint);
        OnAfterPaint();
        return true;
    }
    case WM_ERASEBKGND:
        result = OnEraseBackground(reinterpret_cast<HDC>(wParam));
        return true;
    case WM_CLOSE:
        OnClose();
        return true;
    case WM_DESTROY:
        OnDestroy();
        return true;
    case WM_LBUTTONDBLCLK:
        OnDoubleTap(0);
        return true;
    case WM_RBUTTONDBLCLK:
        OnDoubleTap(1);
        return true;
    case WM_MBUTTONDBLCLK:
        OnDoubleTap(2);
        return true;
    case WM_LBUTTONUP:
        result = OnPointerUp(0, PointerX(lParam), PointerY(lParam), wParam);
        return true;
    case WM_RBUTTONUP:
        result = OnPointerUp(1, PointerX(lParam), PointerY(lParam), wParam);
        return true;
    case WM_MBUTTONUP:
        result = OnPointerUp(2, PointerX(lParam), PointerY(lParam), wParam);
        return true;
    case WM_LBUTTONDOWN:
        result = OnPointerDown(0, PointerX(lParam), PointerY(lParam), wParam);
        return true;
    case WM_RBUTTONDOWN:
        result = OnPointerDown(1, PointerX(lParam), PointerY(lParam), wParam);
        return true;
    case WM_MBUTTONDOWN:
        result = OnPointerDown(2, PointerX(lParam), PointerY(lParam), wParam);
        return true;
    case WM_MOUSEMOVE:
        OnPointerMove(PointerX(lParam), PointerY(lParam), wParam);
        return true;
    case WM_MOUSEWHEEL:
        OnMouseWheel(LOWORD(wParam), static_cast<short>(HIWORD(wParam)), PointerX(lParam), PointerY(lParam));
        return true;
    case WM_KEYUP:
        OnKeyUp(static_cast<UINT>(wParam), static_cast<UINT>(lParam));
        return true;
    case WM_KEYDOWN:
        OnKeyDown(static_cast<UINT>(wParam), static_cast<UINT>(lParam));
        return true;
    case WM_HOTKEY:
        OnHotKey(static_cast<int>(wParam), static_cast<UINT>(lParam));
        return true;
    case WM_CHAR:
        OnChar(static_cast<char16_t>(wParam & 0xFFFF), static_cast<UINT>(lParam));
        return true;
    case WM_SHOWWINDOW:
        OnShowWindow(static_cast<BOOL>(wParam));
        return true;
    case WM_COMMAND:
        OnCommand(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
        return true;
    case WM_SYSCOMMAND:
        OnSysCommand(static_cast<UINT>(wParam), PointerX(lParam), PointerY(lParam));
        return true;
    case WM_NOTIFY:
        result = OnNotify(wParam, reinterpret_cast<NMHDR*>(lParam));
        return true;
    case WM_TIMER:
        OnTimer(wParam);
        return true;
    case WM_SIZE:
        OnSize(static_cast<UINT>(lParam), static_cast<UINT>(wParam));
        return true;
    case WM_WINDOWPOSCHANGED:
        result = OnWindowPosChanged(reinterpret_cast<WINDOWPOS*>(lParam));
        return true;
    case WM_ACTIVATE:
        result = OnActivate(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
        return true;
    default:
        return false;
    }
}

LRESULT BaseWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (DispatchCommon(hwnd, message, wParam, lParam, result))
        return result;
    switch (message) {
    case WM_CREATE:
        return OnCreate(wParam, reinterpret_cast<CREATESTRUCT*>(lParam));
    case WM_CAPTURECHANGED:
        OnCaptureChanged(reinterpret_cast<HWND>(lParam));
        return 0;
    default:
        return DefWindowProc(hwnd, message, wParam, lParam);
    }
}

INT_PTR BaseWnd::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    LRESULT result = 0;
    if (DispatchCommon(hwnd, message, wParam, lParam, result))
        return result;
    switch (message) {
    case WM_DRAWITEM:
        return OnDrawItem(static_cast<UINT>(wParam), reinterpret_cast<DRAWITEMSTRUCT*>(lParam));
    case WM_CTLCOLORBTN:
        return OnControlColorButton(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    case WM_INITDIALOG:
        return OnInitDialog();
    case WM_SETFOCUS:
        return OnSetFocus(reinterpret_cast<HWND>(wParam));
    case WM_KILLFOCUS:
        return OnKillFocus(reinterpret_cast<HWND>(wParam));
    default:
        return 0;
    }
}

void BaseWnd::MoveTo(const RECT& rect) {
    MoveWindow(window, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, true);
}

void BaseWnd::MoveTo(int x, int y, int width, int height) {
    placementX = x;
    placementY = y;
    placementWidth = width;
    placementHeight = height;
    MoveWindow(window, x, y, width, height, true);
}

void BaseWnd::RegisterWindowClass(const char* className) {
    WNDCLASS windowClass;
    windowClass.style = 0;
    windowClass.lpfnWndProc = &BaseWnd::FrameworkWindowProc;
    windowClass.hInstance = ModuleInstance();
    windowClass.lpszClassName = className;
    RegisterClass(windowClass); // an existing class is fine
}

HWND BaseWnd::Create(HWND parent, const char* className, DWORD style, const std::u16string& title, int x,
                     int y, int width, int height) {
    RegisterWindowClass(className);
    HWND created =
        CreateWindowEx(0, className, title, style, x, y, width, height, parent, 0, ModuleInstance(), this);
    placementX = x;
    placementY = y;
    placementWidth = width;
    placementHeight = height;
    return created;
}

HWND BaseWnd::CreateModeless(HWND parent) {
    modal = 0;
    HWND created = Wm().CreateDialogParam(ModuleInstance(), kEmptyDialogTemplate, parent,
                                          &BaseWnd::FrameworkDialogProc, reinterpret_cast<LPARAM>(this));
    templateId = kEmptyDialogTemplate;
    return created;
}

INT_PTR BaseWnd::DoModal(HWND parent) {
    modal = 1;
    return Wm().DialogBoxParam(ModuleInstance(), kEmptyDialogTemplate, parent, &BaseWnd::FrameworkDialogProc,
                               reinterpret_cast<LPARAM>(this));
}

LRESULT BaseWnd::NotifyParent(UINT code) {
    NMHDR header;
    return SendParentNotify(header, code, &header);
}

LRESULT BaseWnd::SendParentNotify(NMHDR& header, UINT code, void* notice) {
    header.hwndFrom = window;
    header.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(window));
    header.code = code;
    HWND parent = GetParent(window);
    if (!parent)
        return 0;
    return SendMessage(parent, WM_NOTIFY, header.idFrom, reinterpret_cast<LPARAM>(notice));
}

void BaseWnd::Redraw(bool erase) {
    if (!window)
        return;
    InvalidateRect(window, nullptr, erase);
    UpdateWindow(window);
}

LRESULT BaseWnd::FrameworkWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE) {
        auto* create = reinterpret_cast<CREATESTRUCT*>(lParam);
        auto* object = create ? static_cast<BaseWnd*>(create->lpCreateParams) : nullptr;
        if (!object)
            return DefWindowProc(hwnd, message, wParam, lParam);
        object->previousWindowProc = reinterpret_cast<WNDPROC>(GetWindowLongPtr(hwnd, GWL_WNDPROC));
        SetWindowLongPtr(hwnd, GWL_WNDPROC, reinterpret_cast<LONG_PTR>(&BaseWnd::FrameworkWindowProc));
        SetWindowLongPtr(hwnd, GWL_USERDATA, reinterpret_cast<LONG_PTR>(object));
        object->window = hwnd;
        return object->WindowProc(hwnd, message, wParam, lParam);
    }
    if (auto* object = reinterpret_cast<BaseWnd*>(GetWindowLongPtr(hwnd, GWL_USERDATA)))
        return object->WindowProc(hwnd, message, wParam, lParam);
    return DefWindowProc(hwnd, message, wParam, lParam);
}

INT_PTR BaseWnd::FrameworkDialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* object = reinterpret_cast<BaseWnd*>(GetWindowLongPtr(hwnd, DWL_USER));
    if (!object) {
        if (message != WM_INITDIALOG || !lParam)
            return 0;
        object = reinterpret_cast<BaseWnd*>(lParam);
        SetWindowLongPtr(hwnd, DWL_USER, lParam);
        object->window = hwnd;
    }
    if (object->window != hwnd)
        return 0;
    return object->DialogProc(hwnd, message, wParam, lParam);
}

} // namespace mirodate
