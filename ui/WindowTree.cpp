#include "ui/WindowTree.h"

#include "ui/Dc.h"

#include <algorithm>

namespace mirodate {

namespace {
std::uintptr_t Key(HWND window) {
    return reinterpret_cast<std::uintptr_t>(window);
}
// Handles are spaced so that no two windows share an address-like value.
constexpr std::uintptr_t kHandleStep = 4;
} // namespace

LONG_PTR WindowRecord::GetLong(int index) const {
    if (isDialog && index == DWL_USER)
        return dialogUser;
    if (isDialog && index == DWL_MSGRESULT)
        return dialogMessageResult;
    switch (index) {
    case GWL_USERDATA:
        return userData;
    case GWL_STYLE:
        return static_cast<LONG_PTR>(style);
    case GWL_ID:
        return static_cast<LONG_PTR>(id);
    case GWL_WNDPROC:
        return reinterpret_cast<LONG_PTR>(proc);
    default:
        return 0;
    }
}

LONG_PTR WindowRecord::SetLong(int index, LONG_PTR value) {
    const LONG_PTR old = GetLong(index);
    if (isDialog && index == DWL_USER) {
        dialogUser = value;
        return old;
    }
    if (isDialog && index == DWL_MSGRESULT) {
        dialogMessageResult = value;
        return old;
    }
    switch (index) {
    case GWL_USERDATA:
        userData = value;
        break;
    case GWL_STYLE:
        style = static_cast<DWORD>(value);
        break;
    case GWL_ID:
        id = static_cast<UINT_PTR>(value);
        break;
    case GWL_WNDPROC:
        proc = reinterpret_cast<WNDPROC>(value);
        break;
    default:
        break;
    }
    return old;
}

WindowTree::WindowTree() = default;
WindowTree::~WindowTree() = default;

bool WindowTree::RegisterClass(const WNDCLASS& windowClass) {
    if (windowClass.lpszClassName.empty() || classes_.count(windowClass.lpszClassName))
        return false;
    classes_[windowClass.lpszClassName] = windowClass;
    return true;
}

const WNDCLASS* WindowTree::FindClass(const std::string& name) const {
    auto it = classes_.find(name);
    return it == classes_.end() ? nullptr : &it->second;
}

WindowRecord* WindowTree::Get(HWND window) const {
    auto it = windows_.find(Key(window));
    return it == windows_.end() ? nullptr : it->second.get();
}

HWND WindowTree::Add(std::unique_ptr<WindowRecord> window) {
    HWND handle = reinterpret_cast<HWND>(nextHandle_);
    nextHandle_ += kHandleStep;
    window->handle = handle;
    if (window->parent)
        Get(window->parent)->children.push_back(handle);
    else
        topLevel_.push_back(handle);
    windows_[Key(handle)] = std::move(window);
    return handle;
}

void WindowTree::Remove(HWND handle) {
    WindowRecord* window = Get(handle);
    if (!window)
        return;
    if (window->parent) {
        if (WindowRecord* parent = Get(window->parent))
            std::erase(parent->children, handle);
    } else {
        std::erase(topLevel_, handle);
    }
    windows_.erase(Key(handle));
}

HWND WindowTree::TopLevelOf(HWND handle) const {
    const WindowRecord* w = Get(handle);
    while (w && w->parent)
        w = Get(w->parent);
    return w ? w->handle : nullptr;
}

bool WindowTree::IsShown(const WindowRecord* window) const {
    while (window) {
        if (!window->IsVisibleStyle())
            return false;
        window = window->parent ? Get(window->parent) : nullptr;
    }
    return true;
}

RECT WindowTree::ScreenRectOf(const WindowRecord* window) const {
    RECT r = window->rect;
    for (const WindowRecord* p = window->parent ? Get(window->parent) : nullptr; p;
         p = p->parent ? Get(p->parent) : nullptr) {
        r.left += p->rect.left;
        r.right += p->rect.left;
        r.top += p->rect.top;
        r.bottom += p->rect.top;
    }
    return r;
}

HWND WindowTree::ChildFromPoint(HWND parent, int x, int y) const {
    const WindowRecord* window = Get(parent);
    for (auto it = window->children.rbegin(); it != window->children.rend(); ++it) {
        const WindowRecord* child = Get(*it);
        if (!child || !child->IsVisibleStyle())
            continue;
        if (ScreenRectOf(child).Contains(x, y))
            return ChildFromPoint(*it, x, y);
    }
    return parent;
}

HWND WindowTree::WindowFromPoint(int x, int y) const {
    for (auto it = topLevel_.rbegin(); it != topLevel_.rend(); ++it) {
        const WindowRecord* window = Get(*it);
        if (!window || !window->IsVisibleStyle())
            continue;
        if (window->rect.Contains(x, y))
            return ChildFromPoint(*it, x, y);
    }
    return nullptr;
}

HWND WindowTree::FindTopLevel(const char* className, const char16_t* title) const {
    for (auto it = topLevel_.rbegin(); it != topLevel_.rend(); ++it) {
        const WindowRecord* w = Get(*it);
        if (!w || w->destroying)
            continue;
        if (className && w->className != className)
            continue;
        if (title && w->title != title)
            continue;
        return *it;
    }
    return nullptr;
}

bool WindowTree::Raise(HWND handle) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    std::vector<HWND>& list = window->parent ? Get(window->parent)->children : topLevel_;
    auto it = std::find(list.begin(), list.end(), handle);
    if (it == list.end() || it + 1 == list.end())
        return false;
    list.erase(it);
    list.push_back(handle);
    return true;
}

} // namespace mirodate
