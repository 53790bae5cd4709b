#include "ui/DialogWnd.h"

#include "platform/Settings.h"
#include "ui/RegisteredMessages.h"
#include "ui/WinApi.h"
#include "ui/WindowClasses.h"

#include <atomic>
#include <cstring>

namespace mirodate {

namespace {
std::atomic<int> g_livePages{0};

UINT CloseAllMessage() {
    static const UINT message = RegisterWindowMessage(kMinimizedBroadcastName);
    return message;
}

UINT StoreChangedMessage() {
    static const UINT message = RegisterWindowMessage(kPoomDataChangedName);
    return message;
}

// The month of the data-changed broadcast: year << 16 | month, or -1 for any.
constexpr LPARAM kAnyMonth = -1;
constexpr int kYearShift = 16;
constexpr unsigned kMonthMask = 0xFFFF;

bool IsItemNotification(UINT message) {
    return (message >= kMsgItemCreatedLocal && message <= kMsgItemChangedLocal) ||
           (message >= kMsgItemCreatedRemote && message <= kMsgItemChangedRemote);
}

// A COPYDATA payload: cbData bytes of UTF-16 LE, read up to the first zero.
std::u16string TextOfCopyData(const COPYDATASTRUCT& data) {
    std::u16string text((data.cbData + 1) / 2, u'\0');
    std::memcpy(text.data(), data.lpData, data.cbData);
    const size_t end = text.find(u'\0');
    if (end != std::u16string::npos)
        text.resize(end);
    return text;
}
} // namespace

DialogWnd::DialogWnd() {
    showInputPanelButton = 0;
    ++g_livePages;
}

DialogWnd::~DialogWnd() {
    --g_livePages;
}

int DialogWnd::LivePageCount() {
    return g_livePages;
}

BOOL DialogWnd::OnInitDialog() {
    shellActivateInfo = SHACTIVATEINFO();
    shellActivateInfo.cbSize = kShellActivateInfoSize;
    initTime = GetTickCount();
    (void)Settings::GetDisableAnimations(); // read as the page always did; the value is not used here
    SetTimer(window, kDialogReadyTimer, kDialogReadyDelay);
    return 1;
}

void DialogWnd::OnTimer(UINT_PTR id) {
    if (id != kDialogReadyTimer)
        return;
    KillTimer(window, kDialogReadyTimer);
    OnDialogReady();
}

LRESULT DialogWnd::OnActivate(UINT state, BOOL minimized, HWND other) {
    Shell::HandleActivate(window, MAKEWPARAM(static_cast<int>(state), minimized),
                          reinterpret_cast<LPARAM>(other), &shellActivateInfo);
    if (state == WA_ACTIVE || state == WA_CLICKACTIVE)
        ApplyFullScreen();
    return 0;
}

void DialogWnd::ApplyFullScreen() {
    const bool hideTaskBar = Shell::HideTaskBar();
    DWORD flags;
    if (hideTaskBar)
        flags = showInputPanelButton ? SHFS_HIDETASKBAR | SHFS_SHOWSIPBUTTON
                                     : SHFS_HIDETASKBAR | SHFS_HIDESIPBUTTON;
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
    if (auto* object = reinterpret_cast<BaseWnd*>(lParam))
        delete object;
    OnDeferredCommand(static_cast<UINT>(wParam));
}

bool DialogWnd::DispatchApplication(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, bool dialog,
                                    LRESULT& result) {
    result = 0;
    if (message == WM_DEFERRED_COMMAND) {
        HandleDeferredCommand(wParam, lParam);
        return true;
    }
    if (message == WM_SETTINGCHANGE && wParam == SETTINGCHANGE_RESET) {
        Shell::HandleSettingChange(hwnd, wParam, lParam, &shellActivateInfo);
        OnScreenReset();
        return true;
    }
    if (message == StoreChangedMessage()) {
        StoreChange change;
        change.reloaded = wParam != 0;
        if (lParam != kAnyMonth) {
            change.year = static_cast<int>((static_cast<unsigned long>(lParam) >> kYearShift) & kMonthMask);
            change.month = static_cast<int>(static_cast<unsigned long>(lParam) & kMonthMask);
        }
        OnStoreChanged(change);
        return true;
    }
    if (IsItemNotification(message)) {
        PimNotification notification;
        notification.message = message;
        notification.oid = static_cast<std::int32_t>(wParam);
        notification.folder = static_cast<int>(lParam);
        OnItemNotification(notification);
        return true;
    }
    if (message == WM_COPYDATA) {
        const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
        if (!data || data->cbData == 0 || !data->lpData)
            return false;
        result = OnCommandText(TextOfCopyData(*data)) ? 1 : 0;
        return result != 0;
    }
    if (message == CloseAllMessage() && dialog) {
        OnCloseAll(); // may delete this page
        return true;
    }
    return false;
}

LRESULT DialogWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (LRESULT result; DispatchApplication(hwnd, message, wParam, lParam, false, result))
        return result;
    return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
}

INT_PTR DialogWnd::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (LRESULT result; DispatchApplication(hwnd, message, wParam, lParam, true, result))
        return result;
    return BaseWnd::DialogProc(hwnd, message, wParam, lParam);
}

void DialogWnd::ReservedHook() {}
void DialogWnd::OnDeferredCommand(UINT) {}
void DialogWnd::OnScreenReset() {}
void DialogWnd::OnDialogReady() {}
void DialogWnd::OnStoreChanged(const StoreChange&) {}
void DialogWnd::OnItemNotification(const PimNotification&) {}
bool DialogWnd::OnCommandText(const std::u16string&) {
    return false;
}

void DialogWnd::OnCloseAll() {
    if (!modal) {
        // The page owns itself once shown modeless; the broadcast ends it.
        delete this;
        return;
    }
    EndDialog(window, IDCANCEL);
}

void DialogWnd::BroadcastStoreChanged(const StoreChange& change) {
    const LPARAM month = change.year < 1 || change.month < 1
                             ? kAnyMonth
                             : static_cast<LPARAM>((static_cast<unsigned>(change.year) << kYearShift) |
                                                   static_cast<unsigned>(change.month));
    SendNotifyMessage(HWND_BROADCAST, StoreChangedMessage(), change.reloaded ? 1 : 0, month);
}

void DialogWnd::BroadcastCloseAll(bool post) {
    if (post)
        PostMessage(HWND_BROADCAST, CloseAllMessage(), 0, 0);
    else
        SendNotifyMessage(HWND_BROADCAST, CloseAllMessage(), 0, 0);
}

void DialogWnd::PostDeferredCommand(UINT id, BaseWnd* object) {
    if (window) {
        InvalidateRect(window, nullptr, false);
        UpdateWindow(window);
    }
    PostMessage(window, WM_DEFERRED_COMMAND, id, reinterpret_cast<LPARAM>(object));
}

} // namespace mirodate
