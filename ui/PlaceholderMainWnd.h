#pragma once
// The program's top-level window until the month view takes its place: it
// carries the main window's class and title (other instances find the program
// by them), paints a plain background, follows the screen's size and ends the
// program when closed.
#include "ui/BaseWnd.h"

namespace mirodate {

class PlaceholderMainWnd : public BaseWnd {
public:
    HWND CreateFullScreen();
    void OnPaint(HDC dc) override;
    void OnClose() override;
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;
};

// The neutral background it paints.
constexpr COLORREF kPlaceholderBackground = RGB(40, 44, 52);

} // namespace mirodate
