#pragma once
// The window-system calls by their familiar names, for code that is written
// in them (pages, controls, views). Each goes to the current WindowManager.
#include "ui/Messages.h"
#include "ui/WindowManager.h"

namespace mirodate {

inline WindowManager& Wm() {
    return WindowManager::Current();
}

inline bool RegisterClass(const WNDCLASS& c) {
    return Wm().RegisterClass(c);
}
inline HWND CreateWindowEx(DWORD exStyle, const std::string& className, const std::u16string& title,
                           DWORD style, int x, int y, int width, int height, HWND parent, UINT_PTR id,
                           HINSTANCE instance, void* param) {
    return Wm().CreateWindowEx(exStyle, className, title, style, x, y, width, height, parent, id, instance,
                               param);
}
inline bool DestroyWindow(HWND w) {
    return Wm().DestroyWindow(w);
}
inline bool IsWindow(HWND w) {
    return WindowManager::HasCurrent() && Wm().IsWindow(w);
}
inline HWND FindWindow(const char* className, const char16_t* title) {
    return Wm().FindWindow(className, title);
}
inline bool ShowWindow(HWND w, int command) {
    return Wm().ShowWindow(w, command);
}
inline bool IsWindowVisible(HWND w) {
    return Wm().IsWindowVisible(w);
}
inline bool MoveWindow(HWND w, int x, int y, int width, int height, bool repaint) {
    return Wm().MoveWindow(w, x, y, width, height, repaint);
}
inline bool GetClientRect(HWND w, RECT* r) {
    return Wm().GetClientRect(w, r);
}
inline bool GetWindowRect(HWND w, RECT* r) {
    return Wm().GetWindowRect(w, r);
}
inline bool ClientToScreen(HWND w, POINT* p) {
    return Wm().ClientToScreen(w, p);
}
inline bool ScreenToClient(HWND w, POINT* p) {
    return Wm().ScreenToClient(w, p);
}
inline HWND GetParent(HWND w) {
    return Wm().GetParent(w);
}
inline HWND GetDlgItem(HWND parent, int id) {
    return Wm().GetDlgItem(parent, id);
}
inline int GetDlgCtrlID(HWND w) {
    return Wm().GetDlgCtrlID(w);
}
inline LONG_PTR GetWindowLongPtr(HWND w, int index) {
    return Wm().GetWindowLongPtr(w, index);
}
inline LONG_PTR SetWindowLongPtr(HWND w, int index, LONG_PTR value) {
    return Wm().SetWindowLongPtr(w, index, value);
}
inline bool EnableWindow(HWND w, bool enable) {
    return Wm().EnableWindow(w, enable);
}
inline bool IsWindowEnabled(HWND w) {
    return Wm().IsWindowEnabled(w);
}
inline bool SetWindowText(HWND w, const std::u16string& text) {
    return Wm().SetWindowText(w, text);
}
inline std::u16string GetWindowText(HWND w) {
    return Wm().GetWindowText(w);
}
inline bool SetForegroundWindow(HWND w) {
    return Wm().SetForegroundWindow(w);
}
inline bool BringWindowToTop(HWND w) {
    return Wm().BringWindowToTop(w);
}
inline HWND SetActiveWindow(HWND w) {
    return Wm().SetActiveWindow(w);
}
inline HWND GetActiveWindow() {
    return Wm().GetActiveWindow();
}
inline HWND SetFocus(HWND w) {
    return Wm().SetFocus(w);
}
inline HWND GetFocus() {
    return Wm().GetFocus();
}
inline HWND SetCapture(HWND w) {
    return Wm().SetCapture(w);
}
inline bool ReleaseCapture() {
    return Wm().ReleaseCapture();
}
inline HWND GetCapture() {
    return Wm().GetCapture();
}

inline LRESULT SendMessage(HWND w, UINT m, WPARAM wp, LPARAM lp) {
    return Wm().SendMessage(w, m, wp, lp);
}
inline bool PostMessage(HWND w, UINT m, WPARAM wp, LPARAM lp) {
    return Wm().PostMessage(w, m, wp, lp);
}
inline bool SendNotifyMessage(HWND w, UINT m, WPARAM wp, LPARAM lp) {
    return Wm().SendNotifyMessage(w, m, wp, lp);
}
inline void PostQuitMessage(int code) {
    Wm().PostQuitMessage(code);
}
inline UINT RegisterWindowMessage(const std::string& name) {
    return Wm().RegisterWindowMessage(name);
}
inline bool GetMessage(MSG* msg) {
    return Wm().GetMessage(msg);
}
inline bool PeekMessage(MSG* msg, UINT removeFlags) {
    return Wm().PeekMessage(msg, removeFlags);
}
inline void TranslateMessage(const MSG* msg) {
    Wm().TranslateMessage(msg);
}
inline LRESULT DispatchMessage(const MSG* msg) {
    return Wm().DispatchMessage(msg);
}
inline LRESULT DefWindowProc(HWND w, UINT m, WPARAM wp, LPARAM lp) {
    return Wm().DefWindowProc(w, m, wp, lp);
}
inline bool EndDialog(HWND w, INT_PTR result) {
    return Wm().EndDialog(w, result);
}

inline UINT_PTR SetTimer(HWND w, UINT_PTR id, UINT ms, TIMERPROC proc = nullptr) {
    return Wm().SetTimer(w, id, ms, proc);
}
inline bool KillTimer(HWND w, UINT_PTR id) {
    return Wm().KillTimer(w, id);
}
inline DWORD GetTickCount() {
    return Wm().GetTickCount();
}

inline bool InvalidateRect(HWND w, const RECT* r, bool erase) {
    return Wm().InvalidateRect(w, r, erase);
}
inline bool ValidateRect(HWND w) {
    return Wm().ValidateRect(w);
}
inline bool UpdateWindow(HWND w) {
    return Wm().UpdateWindow(w);
}
inline HDC BeginPaint(HWND w, PAINTSTRUCT* ps) {
    return Wm().BeginPaint(w, ps);
}
inline void EndPaint(HWND w, const PAINTSTRUCT* ps) {
    Wm().EndPaint(w, ps);
}
inline HDC GetDC(HWND w) {
    return Wm().GetDC(w);
}
inline void ReleaseDC(HWND w, HDC dc) {
    Wm().ReleaseDC(w, dc);
}

// Screen size in pixels (the program's window).
inline int GetScreenWidth() {
    return Wm().ScreenWidth();
}
inline int GetScreenHeight() {
    return Wm().ScreenHeight();
}

} // namespace mirodate
