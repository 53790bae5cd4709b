#include "ui/WindowLifecycle.h"

#include "platform/Log.h"
#include "ui/Compositor.h"
#include "ui/Dc.h"
#include "ui/InputRouter.h"
#include "ui/TimerQueue.h"
#include "ui/WindowManager.h"
#include "ui/WindowTree.h"

#include <algorithm>
#include <memory>

namespace mirodate {

WindowLifecycle::WindowLifecycle(WindowManager& manager, WindowTree& tree, Compositor& compositor,
                                 InputRouter& input, TimerQueue& timers)
    : manager_(manager), tree_(tree), compositor_(compositor), input_(input), timers_(timers) {}

HWND WindowLifecycle::CreateWindowEx(DWORD exStyle, const std::string& className, const std::u16string& title,
                                     DWORD style, int x, int y, int width, int height, HWND parent,
                                     UINT_PTR id, HINSTANCE instance, void* param) {
    const WNDCLASS* cls = tree_.FindClass(className);
    if (!cls) {
        Log::Warning("window class %s is not registered", className.c_str());
        return nullptr;
    }
    const bool child = (style & WS_CHILD) != 0;
    if (child && !tree_.Get(parent))
        return nullptr;
    if (!child && parent && !tree_.Get(parent))
        return nullptr;

    auto window = std::make_unique<WindowRecord>();
    window->className = className;
    window->classStyle = cls->style;
    window->title = title;
    window->style = style & ~WS_VISIBLE;
    window->exStyle = exStyle;
    window->id = child ? id : 0;
    window->rect = RECT{x, y, x + std::max(0, width), y + std::max(0, height)};
    window->proc = cls->lpfnWndProc;
    if (child)
        window->parent = parent;
    else
        window->owner = parent ? tree_.TopLevelOf(parent) : nullptr;
    Compositor::ResizeSurface(*window);
    const HWND handle = tree_.Add(std::move(window));

    CREATESTRUCT create;
    create.lpCreateParams = param;
    create.hInstance = instance;
    create.hMenu = id;
    create.hwndParent = parent;
    create.x = x;
    create.y = y;
    create.cx = width;
    create.cy = height;
    create.style = style;
    create.lpszName = title.c_str();
    create.lpszClass = className.c_str();
    create.dwExStyle = exStyle;
    if (manager_.SendMessage(handle, WM_CREATE, 0, reinterpret_cast<LPARAM>(&create)) == -1) {
        DestroyWindow(handle);
        return nullptr;
    }
    if (!manager_.IsWindow(handle))
        return nullptr;
    manager_.SendMessage(handle, WM_SIZE, SIZE_RESTORED, MAKELPARAM(width, height));
    if (style & WS_VISIBLE)
        ShowWindow(handle, SW_SHOW);
    return manager_.IsWindow(handle) ? handle : nullptr;
}

bool WindowLifecycle::DestroyWindow(HWND handle) {
    WindowRecord* window = tree_.Get(handle);
    if (!window || window->destroying)
        return false;
    window->destroying = true;
    for (HWND owned : manager_.GetTopLevelWindows())
        if (WindowRecord* w = tree_.Get(owned); w && w->owner == handle)
            DestroyWindow(owned);
    if (manager_.IsWindowVisible(handle))
        compositor_.MarkDirty();
    input_.DropCapture(handle);
    manager_.SendMessage(handle, WM_DESTROY, 0, 0);
    if (WindowRecord* w = tree_.Get(handle)) {
        const std::vector<HWND> children = w->children;
        for (HWND child : children)
            DestroyWindow(child);
    }
    manager_.SendMessage(handle, WM_NCDESTROY, 0, 0);

    window = tree_.Get(handle);
    if (!window)
        return true;
    timers_.KillAllOf(handle);
    const bool wasActive = input_.Forget(handle);
    const HWND owner = window->owner;
    tree_.Remove(handle);
    compositor_.MarkDirty();
    if (wasActive) {
        if (owner && manager_.IsWindow(owner) && manager_.IsWindowVisible(owner) &&
            manager_.IsWindowEnabled(owner))
            manager_.SetActiveWindow(owner);
        else
            input_.ActivateNextAfter(handle);
    }
    return true;
}

bool WindowLifecycle::ShowWindow(HWND handle, int command) {
    WindowRecord* window = tree_.Get(handle);
    if (!window)
        return false;
    const bool wasVisible = window->IsVisibleStyle();
    const bool show = command != SW_HIDE && command != SW_MINIMIZE && command != SW_SHOWMINIMIZED;
    window->minimized = command == SW_MINIMIZE || command == SW_SHOWMINIMIZED;
    if (show != wasVisible) {
        if (show)
            window->style |= WS_VISIBLE;
        else
            window->style &= ~WS_VISIBLE;
        manager_.SendMessage(handle, WM_SHOWWINDOW, show ? 1 : 0, 0);
        window = tree_.Get(handle);
        if (!window)
            return wasVisible;
        compositor_.MarkDirty();
        if (show)
            manager_.InvalidateRect(handle, nullptr, true);
    }
    if (!window->parent) {
        if (show && command != SW_SHOWNA)
            manager_.SetActiveWindow(handle);
        else if (!show)
            input_.Deactivate(handle);
    } else if (!show && input_.Focus() && input_.Focus() == handle) {
        manager_.SetFocus(window->parent);
    }
    return wasVisible;
}

bool WindowLifecycle::MoveWindow(HWND handle, int x, int y, int width, int height, bool repaint) {
    WindowRecord* window = tree_.Get(handle);
    if (!window)
        return false;
    const RECT old = window->rect;
    window->rect = RECT{x, y, x + std::max(0, width), y + std::max(0, height)};
    const bool sized = old.Width() != window->rect.Width() || old.Height() != window->rect.Height();
    const bool moved = old.left != x || old.top != y;
    if (sized)
        Compositor::ResizeSurface(*window);
    if (tree_.IsShown(window))
        compositor_.MarkDirty();
    WINDOWPOS pos;
    pos.hwnd = handle;
    pos.x = x;
    pos.y = y;
    pos.cx = width;
    pos.cy = height;
    manager_.SendMessage(handle, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos));
    // Size and move follow directly, also for windows that handle the
    // position change themselves.
    if (sized)
        manager_.SendMessage(handle, WM_SIZE, SIZE_RESTORED, MAKELPARAM(width, height));
    if (moved)
        manager_.SendMessage(handle, WM_MOVE, 0, MAKELPARAM(x, y));
    if (repaint && manager_.IsWindow(handle))
        manager_.InvalidateRect(handle, nullptr, true);
    return true;
}

} // namespace mirodate
