#include "ui/MessageDispatcher.h"

#include "platform/VirtualKeys.h"
#include "ui/MessageQueue.h"
#include "ui/Messages.h"
#include "ui/WindowManager.h"
#include "ui/WindowTree.h"

#include <map>
#include <mutex>

namespace mirodate {

MessageDispatcher::MessageDispatcher(WindowManager& manager, WindowTree& tree, MessageQueue& queue,
                                     Display& display)
    : manager_(manager), tree_(tree), queue_(queue), display_(display),
      uiThread_(std::this_thread::get_id()) {}

void MessageDispatcher::WakeFromOtherThread() {
    if (!OnUiThread())
        display_.Wake();
}

LRESULT MessageDispatcher::SendMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!OnUiThread()) {
        // Only the UI thread calls windows; others get the message queued.
        PostMessage(handle, message, wParam, lParam);
        return 0;
    }
    if (handle == HWND_BROADCAST) {
        for (HWND window : manager_.GetTopLevelWindows())
            if (manager_.IsWindow(window))
                SendMessage(window, message, wParam, lParam);
        return 0;
    }
    const WindowRecord* window = tree_.Get(handle);
    if (!window || !window->proc)
        return 0;
    return window->proc(handle, message, wParam, lParam);
}

bool MessageDispatcher::PostMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (OnUiThread() && handle && handle != HWND_BROADCAST && !manager_.IsWindow(handle))
        return false;
    MSG msg;
    msg.hwnd = handle;
    msg.message = message;
    msg.wParam = wParam;
    msg.lParam = lParam;
    queue_.Post(msg);
    WakeFromOtherThread();
    return true;
}

bool MessageDispatcher::SendNotifyMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!OnUiThread())
        return PostMessage(handle, message, wParam, lParam);
    SendMessage(handle, message, wParam, lParam);
    return true;
}

void MessageDispatcher::PostQuitMessage(int exitCode) {
    queue_.PostQuit(exitCode);
    WakeFromOtherThread();
}

void MessageDispatcher::PostTask(std::function<void()> task) {
    queue_.PostTask(std::move(task));
    WakeFromOtherThread();
}

UINT MessageDispatcher::RegisterWindowMessage(const std::string& name) {
    // Process-wide, so that a number once handed out keeps its meaning even
    // when a test replaces the window system.
    static std::mutex mutex;
    static std::map<std::string, UINT> registered;
    std::lock_guard lock(mutex);
    auto [it, inserted] =
        registered.try_emplace(name, kFirstRegisteredMessage + static_cast<UINT>(registered.size()));
    return it->second;
}

void MessageDispatcher::TranslateMessage(const MSG* msg) {
    if (msg->message != WM_KEYDOWN)
        return;
    // Keys that stand for a character without typing one.
    switch (msg->wParam) {
    case VK_RETURN:
        PostMessage(msg->hwnd, WM_CHAR, '\r', msg->lParam);
        break;
    case VK_ESCAPE:
        PostMessage(msg->hwnd, WM_CHAR, 0x1B, msg->lParam);
        break;
    case VK_BACK:
        PostMessage(msg->hwnd, WM_CHAR, '\b', msg->lParam);
        break;
    case VK_TAB:
        PostMessage(msg->hwnd, WM_CHAR, '\t', msg->lParam);
        break;
    default:
        break;
    }
}

LRESULT MessageDispatcher::DispatchMessage(const MSG* msg) {
    if (msg->message == WM_TIMER && msg->lParam) {
        reinterpret_cast<TIMERPROC>(msg->lParam)(msg->hwnd, WM_TIMER, msg->wParam, manager_.GetTickCount());
        return 0;
    }
    if (msg->hwnd == HWND_BROADCAST)
        return SendMessage(HWND_BROADCAST, msg->message, msg->wParam, msg->lParam);
    if (!manager_.IsWindow(msg->hwnd))
        return 0;
    LRESULT result = SendMessage(msg->hwnd, msg->message, msg->wParam, msg->lParam);
    // A window that did not paint is taken as painted, or it would be asked forever.
    if (msg->message == WM_PAINT)
        manager_.ValidateRect(msg->hwnd);
    return result;
}

LRESULT MessageDispatcher::DefWindowProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CLOSE:
        manager_.DestroyWindow(handle);
        return 0;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        manager_.BeginPaint(handle, &paint);
        manager_.EndPaint(handle, &paint);
        return 0;
    }
    case WM_ERASEBKGND:
        return 0; // no class has a background brush
    case WM_SETTEXT:
        if (lParam)
            manager_.SetWindowText(handle, reinterpret_cast<const char16_t*>(lParam));
        return 1;
    case WM_MOUSEWHEEL:
        // Unhandled wheel turns go to the parent, as scrolling containers expect.
        if (WindowRecord* window = tree_.Get(handle); window && window->parent)
            return SendMessage(window->parent, message, wParam, lParam);
        return 0;
    default:
        (void)wParam;
        return 0;
    }
}

} // namespace mirodate
