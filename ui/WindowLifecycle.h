#pragma once
// The changes of a window's life that other windows hear of: creation (with
// WM_CREATE and the first WM_SIZE), showing and hiding (activation and focus
// follow), moving and sizing, and destruction (owned windows and children
// first, then its timers, capture, focus and activation let go).
#include "ui/WinTypes.h"

#include <string>

namespace mirodate {

class Compositor;
class InputRouter;
class TimerQueue;
class WindowManager;
class WindowTree;

class WindowLifecycle {
public:
    WindowLifecycle(WindowManager& manager, WindowTree& tree, Compositor& compositor, InputRouter& input,
                    TimerQueue& timers);

    HWND CreateWindowEx(DWORD exStyle, const std::string& className, const std::u16string& title, DWORD style,
                        int x, int y, int width, int height, HWND parent, UINT_PTR id, HINSTANCE instance,
                        void* param);
    bool DestroyWindow(HWND window);
    bool ShowWindow(HWND window, int command); // returns whether it was visible
    bool MoveWindow(HWND window, int x, int y, int width, int height, bool repaint);

private:
    WindowManager& manager_;
    WindowTree& tree_;
    Compositor& compositor_;
    InputRouter& input_;
    TimerQueue& timers_;
};

} // namespace mirodate
