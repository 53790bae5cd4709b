#include "ui/DialogWnd.h"

#include "platform/Settings.h"
#include "ui/RegisteredMessages.h"
#include "ui/WinApi.h"
#include "ui/WindowClasses.h"

#include <atomic>

namespace mirodate {

namespace {
std::atomic<int> g_livePages{0};

UINT CloseAllMessage() {
    static const UINT message = RegisterWindowMessage(kMinimizedBroadcastName);
    return message;
}
} // namespace

DialogWnd::DialogWnd() {
    showInputPanelButton = 0;
    ++g_livePages;
}

DialogWnd::~DialogWnd() { --g_livePages; }

int DialogWnd::LivePageCount() { return g_livePages; }

BOOL DialogWnd::OnInitDialog() {
    shellActivateInfo = SHACTIVATEINFO();
    shellActivateInfo.cbSize = kShellActivateInfoSize;
    initTime = GetTickCount();
    (void)Settings::GetDisableAnimations(); // read as the page always did; the value is not used here
    SetTimer(window, kDialogReadyTimer, kDialogReadyDelay);
    return 1;
}

void DialogWnd::OnTimer(UINT_PTR id) {
    if (id != kDialogReadyTimer) return;
    KillTimer(window, kDialogReadyTimer);
    OnDialogReady();
}

LRESULT DialogWnd::OnActivate(UINT state, BOOL minimized, HWND other) {
    Shell::HandleActivate(window, MAKEWPARAM(static_cast<int>(state), minimized), reinterpret_cast<LPARAM>(other),
                          &shellActivateInfo);
    if (state == WA_ACTIVE || state == WA_CLICKACTIVE) ApplyFullScreen();
    return 0;
}

void DialogWnd::ApplyFullScreen() {
    const bool hideTaskBar = Shell::HideTaskBar();
    DWORD flags;
    if (hideTaskBar)
        flags = showInputPanelButton ? SHFS_HIDETASKBAR | SHFS_SHOWSIPBUTTON : SHFS_HIDETASKBAR | SHFS_HIDESIPBUTTON;
    else
        flags = showInputPanelButton ? SHFS_SHOWSIPBUTTON : SHFS_HIDESIPBUTTON;
    Shell::FullScreen(window, flags);
    Shell::NotifyInputPanelButton(showInputPanelButton != 0);
    if (HWND main = FindWindow(kMainWndClass, nullptr)) {
        InvalidateRect(main, nullptr, true);
        UpdateWindow(main);
    }
    if (IsWindow(window)) {
        InvalidateRect(window, nullptr, true);
        UpdateWindow(window);
    }
}

void DialogWnd::HandleDeferredCommand(WPARAM wParam, LPARAM lParam) {
    if (auto* object = reinterpret_cast<BaseWnd*>(lParam)) delete object;
    OnDeferredCommand(static_cast<UINT>(wParam));
}

LRESULT DialogWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DEFERRED_COMMAND) HandleDeferredCommand(wParam, lParam);
    return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
}

INT_PTR DialogWnd::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_DEFERRED_COMMAND) {
        HandleDeferredCommand(wParam, lParam);
    } else if (message == CloseAllMessage()) {
        if (!modal) {
            // The page owns itself once shown modeless; the broadcast ends it.
            delete this;
            return 0;
        }
        EndDialog(window, IDCANCEL);
    } else if (message == WM_SETTINGCHANGE && wParam == SETTINGCHANGE_RESET) {
        Shell::HandleSettingChange(hwnd, wParam, lParam, &shellActivateInfo);
        OnScreenReset();
    }
    return BaseWnd::DialogProc(hwnd, message, wParam, lParam);
}

void DialogWnd::ReservedHook() {}
void DialogWnd::OnDeferredCommand(UINT) {}
void DialogWnd::OnScreenReset() {}
void DialogWnd::OnDialogReady() {}

void DialogWnd::PostDeferredCommand(UINT id, BaseWnd* object) {
    if (window) {
        InvalidateRect(window, nullptr, false);
        UpdateWindow(window);
    }
    PostMessage(window, WM_DEFERRED_COMMAND, id, reinterpret_cast<LPARAM>(object));
}

} // namespace mirodate
