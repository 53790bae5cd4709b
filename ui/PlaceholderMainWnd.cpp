#include "ui/PlaceholderMainWnd.h"

#include "platform/TextUtil.h"
#include "ui/Dc.h"
#include "ui/WinApi.h"
#include "ui/WindowClasses.h"

namespace mirodate {

HWND PlaceholderMainWnd::CreateFullScreen() {
    return Create(nullptr, kMainWndClass, WS_POPUP | WS_VISIBLE, Utf8ToUtf16(kMainWndTitle), 0, 0,
                  GetScreenWidth(), GetScreenHeight());
}

void PlaceholderMainWnd::OnPaint(HDC dc) {
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, kPlaceholderBackground);
}

void PlaceholderMainWnd::OnClose() {
    DestroyWindow(window);
    PostQuitMessage(0);
}

LRESULT PlaceholderMainWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SETTINGCHANGE && wParam == SETTINGCHANGE_RESET)
        MoveTo(0, 0, GetScreenWidth(), GetScreenHeight());
    return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
}

} // namespace mirodate
