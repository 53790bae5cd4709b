#pragma once
// The platform's push button control ("BUTTON"): pressed while the pointer
// is down on it, a click (WM_COMMAND with BN_CLICKED to the parent) when the
// pointer comes up still on it. An owner-draw button asks its parent to draw
// it with WM_DRAWITEM and its state (pressed, focused, disabled); a plain one
// draws a simple face with its title.
#include "ui/WinTypes.h"

namespace mirodate {

class PushButtonControl {
public:
    static constexpr const char* kClassName = "BUTTON";
    static LRESULT WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
};

} // namespace mirodate
