#include "ui/Shell.h"

#include "platform/Settings.h"
#include "ui/Messages.h"
#include "ui/WinApi.h"

#include <optional>

namespace mirodate {

namespace {
std::optional<bool> g_hideTaskBar;
std::function<void(bool)> g_inputPanelListener;
} // namespace

bool Shell::HandleActivate(HWND window, WPARAM wParam, LPARAM, SHACTIVATEINFO* info) {
    if (!info || !IsWindow(window))
        return false;
    if (LOWORD(wParam) == WA_INACTIVE) {
        info->hwndLastFocus = GetFocus();
    } else if (info->hwndLastFocus && IsWindow(info->hwndLastFocus) &&
               GetParent(info->hwndLastFocus) == window) {
        SetFocus(info->hwndLastFocus);
    }
    return true;
}

bool Shell::HandleSettingChange(HWND window, WPARAM wParam, LPARAM, SHACTIVATEINFO*) {
    if (wParam != SETTINGCHANGE_RESET || !IsWindow(window))
        return false;
    if (GetWindowLongPtr(window, GWL_STYLE) & WS_CHILD)
        return false;
    MoveWindow(window, 0, 0, GetScreenWidth(), GetScreenHeight(), true);
    return true;
}

bool Shell::FullScreen(HWND window, DWORD flags) {
    if (!IsWindow(window))
        return false;
    if (flags & SHFS_HIDETASKBAR)
        Wm().GetDisplay().SetFullScreen(true);
    else if (flags & SHFS_SHOWTASKBAR)
        Wm().GetDisplay().SetFullScreen(false);
    return true;
}

bool Shell::HideTaskBar() {
    if (!g_hideTaskBar)
        g_hideTaskBar = !Settings::GetShowWindowsTaskBar();
    return *g_hideTaskBar;
}

void Shell::SetHideTaskBar(bool hide) {
    g_hideTaskBar = hide;
}

void Shell::SetInputPanelButtonListener(std::function<void(bool)> listener) {
    g_inputPanelListener = std::move(listener);
}

void Shell::NotifyInputPanelButton(bool show) {
    if (g_inputPanelListener)
        g_inputPanelListener(show);
}

} // namespace mirodate
