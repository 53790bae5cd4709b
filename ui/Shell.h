#pragma once
// The shell services pages call on activation, on a screen change and to go
// full screen. Here the "task bar" is the desktop around the program's
// window: hiding it means full screen on the display.
#include "ui/WinTypes.h"

#include <functional>

namespace mirodate {

// Per-page activation record; the size word is 12 as the shell expects.
struct SHACTIVATEINFO {
    DWORD cbSize = 0;
    HWND hwndLastFocus = nullptr;
    DWORD flags = 0; // input-panel state bits
};
constexpr DWORD kShellActivateInfoSize = 12;

// Full-screen switch flags.
constexpr DWORD SHFS_SHOWTASKBAR = 0x0001;
constexpr DWORD SHFS_HIDETASKBAR = 0x0002;
constexpr DWORD SHFS_SHOWSIPBUTTON = 0x0004;
constexpr DWORD SHFS_HIDESIPBUTTON = 0x0008;

class Shell {
public:
    // Remembers the focus of a page that loses activation and gives it back
    // when the page is activated again.
    static bool HandleActivate(HWND window, WPARAM wParam, LPARAM lParam, SHACTIVATEINFO* info);
    // A screen reset makes full-screen pages cover the new screen.
    static bool HandleSettingChange(HWND window, WPARAM wParam, LPARAM lParam, SHACTIVATEINFO* info);
    static bool FullScreen(HWND window, DWORD flags);

    // The process-wide hide-task-bar choice: from the "ShowWindowsTaskBar"
    // setting on first use, kept up to date by the main window.
    static bool HideTaskBar();
    static void SetHideTaskBar(bool hide);

    // Where a page's input-panel-button wish goes (the main window listens).
    static void SetInputPanelButtonListener(std::function<void(bool show)> listener);
    static void NotifyInputPanelButton(bool show);
};

} // namespace mirodate
