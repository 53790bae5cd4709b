#pragma once
// The shapes of the window system's calls: handles, message parameters and
// the records some messages point to, with the names and widths of the
// platform the toolkit's algorithms are written for.
#include "platform/Types.h"

#include <cstdint>
#include <string>

namespace mirodate {

class Dc;
struct WindowHandle;
using HWND = WindowHandle*; // opaque; a destroyed window's handle is never reused
using HDC = Dc*;
using UINT = std::uint32_t;
using DWORD = std::uint32_t;
using WORD = std::uint16_t;
using BOOL = int;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using HINSTANCE = void*;

using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = INT_PTR (*)(HWND, UINT, WPARAM, LPARAM);
using TIMERPROC = void (*)(HWND, UINT, UINT_PTR, DWORD);

// Messages sent or posted to this handle go to every top-level window.
inline const HWND HWND_BROADCAST = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(0xFFFF));

constexpr WORD LOWORD(std::uintptr_t v) {
    return static_cast<WORD>(v & 0xFFFF);
}
constexpr WORD HIWORD(std::uintptr_t v) {
    return static_cast<WORD>((v >> 16) & 0xFFFF);
}
constexpr LPARAM MAKELPARAM(int low, int high) {
    return static_cast<LPARAM>(static_cast<std::uint32_t>((low & 0xFFFF) | ((high & 0xFFFF) << 16)));
}
constexpr WPARAM MAKEWPARAM(int low, int high) {
    return static_cast<WPARAM>(static_cast<std::uint32_t>((low & 0xFFFF) | ((high & 0xFFFF) << 16)));
}
// Signed client coordinates packed into a pointer message's lParam.
constexpr int GET_X_LPARAM(LPARAM lp) {
    return static_cast<std::int16_t>(LOWORD(static_cast<std::uintptr_t>(lp)));
}
constexpr int GET_Y_LPARAM(LPARAM lp) {
    return static_cast<std::int16_t>(HIWORD(static_cast<std::uintptr_t>(lp)));
}

struct MSG {
    HWND hwnd = nullptr;
    UINT message = 0;
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    DWORD time = 0;
    POINT pt;
};

struct CREATESTRUCT {
    void* lpCreateParams = nullptr;
    HINSTANCE hInstance = nullptr;
    UINT_PTR hMenu = 0; // the control id of a child
    HWND hwndParent = nullptr;
    int cy = 0;
    int cx = 0;
    int y = 0;
    int x = 0;
    DWORD style = 0;
    const char16_t* lpszName = nullptr;
    const char* lpszClass = nullptr;
    DWORD dwExStyle = 0;
};

struct WINDOWPOS {
    HWND hwnd = nullptr;
    HWND hwndInsertAfter = nullptr;
    int x = 0;
    int y = 0;
    int cx = 0;
    int cy = 0;
    UINT flags = 0;
};

struct NMHDR {
    HWND hwndFrom = nullptr;
    UINT_PTR idFrom = 0;
    UINT code = 0;
};

struct DRAWITEMSTRUCT {
    UINT CtlType = 0;
    UINT CtlID = 0;
    UINT itemID = 0;
    UINT itemAction = 0;
    UINT itemState = 0;
    HWND hwndItem = nullptr;
    HDC hDC = nullptr;
    RECT rcItem;
    UINT_PTR itemData = 0;
};

struct COPYDATASTRUCT {
    UINT_PTR dwData = 0;
    DWORD cbData = 0;
    const void* lpData = nullptr;
};

struct PAINTSTRUCT {
    HDC hdc = nullptr;
    BOOL fErase = 0;
    RECT rcPaint;
};

struct WNDCLASS {
    UINT style = 0;
    WNDPROC lpfnWndProc = nullptr;
    int cbClsExtra = 0;
    int cbWndExtra = 0;
    HINSTANCE hInstance = nullptr;
    std::string lpszClassName;
};

} // namespace mirodate
