#include "ui/WindowManager.h"

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "ui/Dc.h"
#include "ui/Messages.h"
#include "ui/PushButtonControl.h"
#include "ui/Scale.h"
#include "ui/WindowClasses.h"

#include <algorithm>
#include <cairo.h>
#include <cstdio>

namespace mirodate {

namespace {
WindowManager* g_current = nullptr;

constexpr const char* kDialogClass = "#32770";
// The shortest timer period; shorter requests would spin the loop.
constexpr UINT kMinimumTimerPeriod = 10;
// Double clicks: the second press within this time and distance.
constexpr std::uint32_t kDoubleClickTime = 500;
constexpr int kDoubleClickDistance = 4;
// With a stop check installed, waits are cut into slices of this length.
constexpr int kStopPollMs = 100;

std::uintptr_t Key(HWND window) { return reinterpret_cast<std::uintptr_t>(window); }

RECT Intersect(const RECT& a, const RECT& b) {
    return RECT{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                std::min(a.bottom, b.bottom)};
}
RECT Union(const RECT& a, const RECT& b) {
    if (a.IsEmpty()) return b;
    if (b.IsEmpty()) return a;
    return RECT{std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                std::max(a.bottom, b.bottom)};
}

bool DirectDialogResult(UINT message) {
    return message == WM_INITDIALOG || message == WM_CTLCOLORBTN;
}
} // namespace

struct WindowManager::Window {
    HWND handle = nullptr;
    std::string className;
    UINT classStyle = 0;
    std::u16string title;
    DWORD style = 0;
    DWORD exStyle = 0;
    HWND parent = nullptr;
    HWND owner = nullptr;
    UINT_PTR id = 0;
    RECT rect; // in the parent's client coordinates; on the screen for top-level windows
    std::vector<HWND> children; // back to front
    WNDPROC proc = nullptr;
    LONG_PTR userData = 0;
    bool isDialog = false;
    DLGPROC dialogProc = nullptr;
    LONG_PTR dialogUser = 0;
    LONG_PTR dialogMessageResult = 0;
    bool dialogEnded = false;
    INT_PTR dialogResult = 0;
    bool minimized = false;
    bool invalid = false;
    bool erase = false;
    RECT update;
    Bitmap surface;
    std::vector<std::unique_ptr<Dc>> paintDcs;
    bool destroying = false;
};

WindowManager::WindowManager(Display& display)
    : display_(display), uiThread_(std::this_thread::get_id()) {
    if (g_current) Log::Warning("a second window system replaces the first");
    g_current = this;
    SetHighResolution(display.Width() >= kHighResolutionWidth);
    WNDCLASS dialog;
    dialog.lpfnWndProc = &WindowManager::DialogWindowProc;
    dialog.lpszClassName = kDialogClass;
    RegisterClass(dialog);
    WNDCLASS button;
    button.lpfnWndProc = &PushButtonControl::WindowProc;
    button.lpszClassName = PushButtonControl::kClassName;
    RegisterClass(button);
    frame_ = Bitmap(display.Width(), display.Height());
}

WindowManager::~WindowManager() {
    // Owners first, so that owned windows go with them.
    for (HWND window : GetTopLevelWindows()) DestroyWindow(window);
    windowDcs_.clear();
    if (g_current == this) g_current = nullptr;
}

WindowManager& WindowManager::Current() { return *g_current; }
bool WindowManager::HasCurrent() { return g_current != nullptr; }

WindowManager::Window* WindowManager::Get(HWND window) const {
    auto it = windows_.find(Key(window));
    return it == windows_.end() ? nullptr : it->second.get();
}

bool WindowManager::RegisterClass(const WNDCLASS& windowClass) {
    if (windowClass.lpszClassName.empty() || classes_.count(windowClass.lpszClassName)) return false;
    classes_[windowClass.lpszClassName] = windowClass;
    return true;
}

HWND WindowManager::CreateWindowEx(DWORD exStyle, const std::string& className, const std::u16string& title,
                                   DWORD style, int x, int y, int width, int height, HWND parent, UINT_PTR id,
                                   HINSTANCE instance, void* param) {
    auto cls = classes_.find(className);
    if (cls == classes_.end()) {
        Log::Warning("window class %s is not registered", className.c_str());
        return nullptr;
    }
    const bool child = (style & WS_CHILD) != 0;
    if (child && !Get(parent)) return nullptr;
    if (!child && parent && !Get(parent)) return nullptr;

    auto window = std::make_unique<Window>();
    HWND handle = reinterpret_cast<HWND>(nextHandle_);
    nextHandle_ += 4;
    window->handle = handle;
    window->className = className;
    window->classStyle = cls->second.style;
    window->title = title;
    window->style = style & ~WS_VISIBLE;
    window->exStyle = exStyle;
    window->id = child ? id : 0;
    window->rect = RECT{x, y, x + std::max(0, width), y + std::max(0, height)};
    window->proc = cls->second.lpfnWndProc;
    if (child) {
        window->parent = parent;
        Get(parent)->children.push_back(handle);
    } else {
        window->owner = parent ? TopLevelOf(parent) : nullptr;
        topLevel_.push_back(handle);
    }
    windows_[Key(handle)] = std::move(window);
    ResizeSurface(Get(handle));

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
    if (SendMessage(handle, WM_CREATE, 0, reinterpret_cast<LPARAM>(&create)) == -1) {
        DestroyWindow(handle);
        return nullptr;
    }
    if (!IsWindow(handle)) return nullptr;
    SendMessage(handle, WM_SIZE, SIZE_RESTORED, MAKELPARAM(width, height));
    if (style & WS_VISIBLE) ShowWindow(handle, SW_SHOW);
    return IsWindow(handle) ? handle : nullptr;
}

HWND WindowManager::CreateDialogParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    if (templateId != kEmptyDialogTemplate) {
        Log::Warning("no dialog template %d", templateId);
        return nullptr;
    }
    // The empty template: a full-screen pop-up, shown once initialised.
    HWND window = CreateWindowEx(0, kDialogClass, u"", WS_POPUP, 0, 0, ScreenWidth(), ScreenHeight(), parent, 0,
                                 instance, nullptr);
    if (!window) return nullptr;
    Window* dialog = Get(window);
    dialog->isDialog = true;
    dialog->dialogProc = proc;
    SendMessage(window, WM_INITDIALOG, 0, param);
    if (!IsWindow(window)) return nullptr;
    ShowWindow(window, SW_SHOW);
    return IsWindow(window) ? window : nullptr;
}

INT_PTR WindowManager::DialogBoxParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    HWND owner = parent ? TopLevelOf(parent) : nullptr;
    const bool disableOwner = owner && IsWindowEnabled(owner);
    if (disableOwner) EnableWindow(owner, false);
    HWND dialog = CreateDialogParam(instance, templateId, parent, proc, param);
    INT_PTR result = -1;
    if (dialog) {
        result = IDCANCEL;
        while (true) {
            Window* window = Get(dialog);
            if (!window) break;
            if (window->dialogEnded) {
                result = window->dialogResult;
                break;
            }
            MSG msg;
            if (!GetMessage(&msg)) {
                // Leave the quit for the outer loop.
                PostQuitMessage(static_cast<int>(msg.wParam));
                break;
            }
            TranslateMessage(&msg);
            DispatchMessage(&msg);
        }
    }
    if (disableOwner && IsWindow(owner)) EnableWindow(owner, true);
    if (dialog && IsWindow(dialog)) {
        if (owner && IsWindow(owner) && IsWindowVisible(owner)) SetActiveWindow(owner);
        DestroyWindow(dialog);
    }
    return result;
}

bool WindowManager::EndDialog(HWND dialog, INT_PTR result) {
    Window* window = Get(dialog);
    if (!window || !window->isDialog) return false;
    window->dialogEnded = true;
    window->dialogResult = result;
    ShowWindow(dialog, SW_HIDE);
    return true;
}

bool WindowManager::DestroyWindow(HWND handle) {
    Window* window = Get(handle);
    if (!window || window->destroying) return false;
    window->destroying = true;
    for (HWND owned : GetTopLevelWindows())
        if (Window* w = Get(owned); w && w->owner == handle) DestroyWindow(owned);
    if (IsWindowVisible(handle)) MarkFrameDirty();
    if (capture_ == handle) capture_ = nullptr;
    SendMessage(handle, WM_DESTROY, 0, 0);
    if (Window* w = Get(handle)) {
        const std::vector<HWND> children = w->children;
        for (HWND child : children) DestroyWindow(child);
    }
    SendMessage(handle, WM_NCDESTROY, 0, 0);

    window = Get(handle);
    if (!window) return true;
    timers_.erase(std::remove_if(timers_.begin(), timers_.end(), [&](const Timer& t) { return t.window == handle; }),
                  timers_.end());
    if (window->parent) {
        if (Window* parent = Get(window->parent)) std::erase(parent->children, handle);
    } else {
        std::erase(topLevel_, handle);
    }
    if (capture_ == handle) capture_ = nullptr;
    if (focus_ == handle) focus_ = nullptr;
    if (lastDownWindow_ == handle) lastDownWindow_ = nullptr;
    const bool wasActive = active_ == handle;
    if (wasActive) active_ = nullptr;
    const HWND owner = window->owner;
    windows_.erase(Key(handle));
    MarkFrameDirty();
    if (wasActive) {
        if (owner && IsWindow(owner) && IsWindowVisible(owner) && IsWindowEnabled(owner))
            SetActiveWindow(owner);
        else
            ActivateNextAfter(handle);
    }
    return true;
}

void WindowManager::ActivateNextAfter(HWND leaving) {
    for (auto it = topLevel_.rbegin(); it != topLevel_.rend(); ++it) {
        if (*it == leaving) continue;
        if (IsWindowVisible(*it) && IsWindowEnabled(*it)) {
            SetActiveWindow(*it);
            return;
        }
    }
}

bool WindowManager::IsWindow(HWND window) const {
    const Window* w = Get(window);
    return w != nullptr;
}

bool WindowManager::IsDialog(HWND window) const {
    const Window* w = Get(window);
    return w && w->isDialog;
}

HWND WindowManager::FindWindow(const char* className, const char16_t* title) const {
    for (auto it = topLevel_.rbegin(); it != topLevel_.rend(); ++it) {
        const Window* w = Get(*it);
        if (!w || w->destroying) continue;
        if (className && w->className != className) continue;
        if (title && w->title != title) continue;
        return *it;
    }
    return nullptr;
}

HWND WindowManager::TopLevelOf(HWND handle) const {
    const Window* w = Get(handle);
    while (w && w->parent) w = Get(w->parent);
    return w ? w->handle : nullptr;
}

bool WindowManager::IsShown(const Window* window) const {
    while (window) {
        if (!(window->style & WS_VISIBLE)) return false;
        window = window->parent ? Get(window->parent) : nullptr;
    }
    return true;
}

bool WindowManager::IsWindowVisible(HWND window) const { return IsShown(Get(window)); }

bool WindowManager::ShowWindow(HWND handle, int command) {
    Window* window = Get(handle);
    if (!window) return false;
    const bool wasVisible = (window->style & WS_VISIBLE) != 0;
    const bool show = command != SW_HIDE && command != SW_MINIMIZE && command != SW_SHOWMINIMIZED;
    window->minimized = command == SW_MINIMIZE || command == SW_SHOWMINIMIZED;
    if (show != wasVisible) {
        if (show)
            window->style |= WS_VISIBLE;
        else
            window->style &= ~WS_VISIBLE;
        SendMessage(handle, WM_SHOWWINDOW, show ? 1 : 0, 0);
        window = Get(handle);
        if (!window) return wasVisible;
        MarkFrameDirty();
        if (show) InvalidateRect(handle, nullptr, true);
    }
    if (!window->parent) {
        if (show && command != SW_SHOWNA) {
            SetActiveWindow(handle);
        } else if (!show) {
            if (active_ == handle) {
                active_ = nullptr;
                SendMessage(handle, WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, 0), 0);
                ActivateNextAfter(handle);
            }
        }
    } else if (!show && focus_ && (focus_ == handle)) {
        SetFocus(window->parent);
    }
    return wasVisible;
}

void WindowManager::ResizeSurface(Window* window) {
    const int width = std::max(1, window->rect.Width()), height = std::max(1, window->rect.Height());
    if (window->surface.Width() == width && window->surface.Height() == height) return;
    Bitmap surface(width, height);
    if (window->surface) {
        Dc dc(surface);
        dc.BitBlt(0, 0, window->surface.Width(), window->surface.Height(), window->surface, 0, 0);
    }
    window->surface = std::move(surface);
}

bool WindowManager::MoveWindow(HWND handle, int x, int y, int width, int height, bool repaint) {
    Window* window = Get(handle);
    if (!window) return false;
    const RECT old = window->rect;
    window->rect = RECT{x, y, x + std::max(0, width), y + std::max(0, height)};
    const bool sized = old.Width() != window->rect.Width() || old.Height() != window->rect.Height();
    const bool moved = old.left != x || old.top != y;
    if (sized) ResizeSurface(window);
    if (IsShown(window)) MarkFrameDirty();
    WINDOWPOS pos;
    pos.hwnd = handle;
    pos.x = x;
    pos.y = y;
    pos.cx = width;
    pos.cy = height;
    SendMessage(handle, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos));
    // Size and move follow directly, also for windows that handle the
    // position change themselves.
    if (sized) SendMessage(handle, WM_SIZE, SIZE_RESTORED, MAKELPARAM(width, height));
    if (moved) SendMessage(handle, WM_MOVE, 0, MAKELPARAM(x, y));
    if (repaint && IsWindow(handle)) InvalidateRect(handle, nullptr, true);
    return true;
}

bool WindowManager::GetClientRect(HWND handle, RECT* rect) const {
    const Window* window = Get(handle);
    if (!window || !rect) return false;
    *rect = RECT{0, 0, window->rect.Width(), window->rect.Height()};
    return true;
}

RECT WindowManager::ScreenRectOf(const Window* window) const {
    RECT r = window->rect;
    for (const Window* p = window->parent ? Get(window->parent) : nullptr; p; p = p->parent ? Get(p->parent) : nullptr) {
        r.left += p->rect.left;
        r.right += p->rect.left;
        r.top += p->rect.top;
        r.bottom += p->rect.top;
    }
    return r;
}

bool WindowManager::GetWindowRect(HWND handle, RECT* rect) const {
    const Window* window = Get(handle);
    if (!window || !rect) return false;
    *rect = ScreenRectOf(window);
    return true;
}

bool WindowManager::ClientToScreen(HWND handle, POINT* point) const {
    const Window* window = Get(handle);
    if (!window || !point) return false;
    const RECT r = ScreenRectOf(window);
    point->x += r.left;
    point->y += r.top;
    return true;
}

bool WindowManager::ScreenToClient(HWND handle, POINT* point) const {
    const Window* window = Get(handle);
    if (!window || !point) return false;
    const RECT r = ScreenRectOf(window);
    point->x -= r.left;
    point->y -= r.top;
    return true;
}

HWND WindowManager::GetParent(HWND handle) const {
    const Window* window = Get(handle);
    if (!window) return nullptr;
    return window->parent ? window->parent : window->owner;
}

HWND WindowManager::GetOwner(HWND handle) const {
    const Window* window = Get(handle);
    return window ? window->owner : nullptr;
}

HWND WindowManager::GetDlgItem(HWND parent, int id) const {
    const Window* window = Get(parent);
    if (!window) return nullptr;
    for (HWND child : window->children)
        if (const Window* c = Get(child); c && c->id == static_cast<UINT_PTR>(id)) return child;
    return nullptr;
}

int WindowManager::GetDlgCtrlID(HWND handle) const {
    const Window* window = Get(handle);
    return window ? static_cast<int>(window->id) : 0;
}

std::vector<HWND> WindowManager::GetChildren(HWND handle) const {
    const Window* window = Get(handle);
    return window ? window->children : std::vector<HWND>();
}

std::vector<HWND> WindowManager::GetTopLevelWindows() const { return topLevel_; }

LONG_PTR WindowManager::GetWindowLongPtr(HWND handle, int index) const {
    const Window* window = Get(handle);
    if (!window) return 0;
    if (window->isDialog && index == DWL_USER) return window->dialogUser;
    if (window->isDialog && index == DWL_MSGRESULT) return window->dialogMessageResult;
    switch (index) {
    case GWL_USERDATA: return window->userData;
    case GWL_STYLE: return static_cast<LONG_PTR>(window->style);
    case GWL_ID: return static_cast<LONG_PTR>(window->id);
    case GWL_WNDPROC: return reinterpret_cast<LONG_PTR>(window->proc);
    default: return 0;
    }
}

LONG_PTR WindowManager::SetWindowLongPtr(HWND handle, int index, LONG_PTR value) {
    Window* window = Get(handle);
    if (!window) return 0;
    LONG_PTR old = GetWindowLongPtr(handle, index);
    if (window->isDialog && index == DWL_USER) {
        window->dialogUser = value;
        return old;
    }
    if (window->isDialog && index == DWL_MSGRESULT) {
        window->dialogMessageResult = value;
        return old;
    }
    switch (index) {
    case GWL_USERDATA: window->userData = value; break;
    case GWL_STYLE: window->style = static_cast<DWORD>(value); MarkFrameDirty(); break;
    case GWL_ID: window->id = static_cast<UINT_PTR>(value); break;
    case GWL_WNDPROC: window->proc = reinterpret_cast<WNDPROC>(value); break;
    default: break;
    }
    return old;
}

bool WindowManager::EnableWindow(HWND handle, bool enable) {
    Window* window = Get(handle);
    if (!window) return false;
    const bool wasDisabled = (window->style & WS_DISABLED) != 0;
    if (enable == wasDisabled) {
        if (enable)
            window->style &= ~WS_DISABLED;
        else
            window->style |= WS_DISABLED;
        if (!enable && capture_ == handle) ReleaseCapture();
        SendMessage(handle, WM_ENABLE, enable ? 1 : 0, 0);
    }
    return wasDisabled;
}

bool WindowManager::IsWindowEnabled(HWND handle) const {
    const Window* window = Get(handle);
    return window && !(window->style & WS_DISABLED);
}

bool WindowManager::SetWindowText(HWND handle, const std::u16string& text) {
    Window* window = Get(handle);
    if (!window) return false;
    window->title = text;
    return true;
}

std::u16string WindowManager::GetWindowText(HWND handle) const {
    const Window* window = Get(handle);
    return window ? window->title : std::u16string();
}

std::string WindowManager::GetClassName(HWND handle) const {
    const Window* window = Get(handle);
    return window ? window->className : std::string();
}

void WindowManager::RaiseInZOrder(HWND handle) {
    Window* window = Get(handle);
    if (!window) return;
    std::vector<HWND>& list = window->parent ? Get(window->parent)->children : topLevel_;
    auto it = std::find(list.begin(), list.end(), handle);
    if (it == list.end() || it + 1 == list.end()) return;
    list.erase(it);
    list.push_back(handle);
    MarkFrameDirty();
}

HWND WindowManager::SetActiveWindow(HWND handle) {
    HWND top = TopLevelOf(handle);
    if (!top) return nullptr;
    const HWND previous = active_;
    RaiseInZOrder(top);
    if (top == previous) return previous;
    active_ = top;
    if (previous && IsWindow(previous))
        SendMessage(previous, WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, 0), reinterpret_cast<LPARAM>(top));
    if (active_ != top || !IsWindow(top)) return previous;
    SendMessage(top, WM_ACTIVATE, MAKEWPARAM(WA_ACTIVE, 0), reinterpret_cast<LPARAM>(previous));
    if (active_ == top && IsWindow(top) && (!focus_ || TopLevelOf(focus_) != top)) SetFocus(top);
    return previous;
}

bool WindowManager::SetForegroundWindow(HWND handle) {
    Window* window = Get(handle);
    if (!window) return false;
    if (window->minimized) ShowWindow(handle, SW_SHOW);
    SetActiveWindow(handle);
    return true;
}

bool WindowManager::BringWindowToTop(HWND handle) {
    if (!IsWindow(handle)) return false;
    RaiseInZOrder(handle);
    return true;
}

HWND WindowManager::SetFocus(HWND handle) {
    if (handle && !IsWindow(handle)) return nullptr;
    const HWND previous = focus_;
    if (handle) {
        HWND top = TopLevelOf(handle);
        if (top != active_) SetActiveWindow(top);
        if (focus_ == handle) return previous;
    }
    if (handle == focus_) return previous;
    const HWND losing = focus_;
    focus_ = handle;
    if (losing && IsWindow(losing)) SendMessage(losing, WM_KILLFOCUS, reinterpret_cast<WPARAM>(handle), 0);
    if (handle && focus_ == handle && IsWindow(handle))
        SendMessage(handle, WM_SETFOCUS, reinterpret_cast<WPARAM>(losing), 0);
    return previous;
}

HWND WindowManager::SetCapture(HWND handle) {
    const HWND previous = capture_;
    if (handle && !IsWindow(handle)) return previous;
    capture_ = handle;
    if (previous && previous != handle && IsWindow(previous))
        SendMessage(previous, WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(handle));
    return previous;
}

bool WindowManager::ReleaseCapture() {
    const HWND previous = capture_;
    capture_ = nullptr;
    if (previous && IsWindow(previous)) SendMessage(previous, WM_CAPTURECHANGED, 0, 0);
    return true;
}

// ---- messages ------------------------------------------------------------

LRESULT WindowManager::SendMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!OnUiThread()) {
        // Only the UI thread calls windows; others get the message queued.
        PostMessage(handle, message, wParam, lParam);
        return 0;
    }
    if (handle == HWND_BROADCAST) {
        for (HWND window : GetTopLevelWindows())
            if (IsWindow(window)) SendMessage(window, message, wParam, lParam);
        return 0;
    }
    const Window* window = Get(handle);
    if (!window || !window->proc) return 0;
    return window->proc(handle, message, wParam, lParam);
}

bool WindowManager::PostMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (OnUiThread() && handle && handle != HWND_BROADCAST && !IsWindow(handle)) return false;
    {
        std::lock_guard lock(queueMutex_);
        Posted posted;
        posted.msg.hwnd = handle;
        posted.msg.message = message;
        posted.msg.wParam = wParam;
        posted.msg.lParam = lParam;
        posted_.push_back(std::move(posted));
    }
    if (!OnUiThread()) display_.Wake();
    return true;
}

bool WindowManager::SendNotifyMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!OnUiThread()) return PostMessage(handle, message, wParam, lParam);
    SendMessage(handle, message, wParam, lParam);
    return true;
}

void WindowManager::PostQuitMessage(int exitCode) {
    {
        std::lock_guard lock(queueMutex_);
        quitPending_ = true;
        quitCode_ = exitCode;
    }
    if (!OnUiThread()) display_.Wake();
}

bool WindowManager::IsQuitPending() const {
    std::lock_guard lock(queueMutex_);
    return quitPending_;
}

UINT WindowManager::RegisterWindowMessage(const std::string& name) {
    // Process-wide, so that a number once handed out keeps its meaning even
    // when a test replaces the window system.
    static std::mutex mutex;
    static std::map<std::string, UINT> registered;
    std::lock_guard lock(mutex);
    auto [it, inserted] = registered.try_emplace(name, kFirstRegisteredMessage + static_cast<UINT>(registered.size()));
    return it->second;
}

void WindowManager::PostTask(std::function<void()> task) {
    {
        std::lock_guard lock(queueMutex_);
        Posted posted;
        posted.task = std::move(task);
        posted_.push_back(std::move(posted));
    }
    if (!OnUiThread()) display_.Wake();
}

bool WindowManager::NextMessage(MSG& msg, bool remove) {
    while (true) {
        std::function<void()> task;
        {
            std::lock_guard lock(queueMutex_);
            if (!posted_.empty()) {
                if (posted_.front().task) {
                    task = std::move(posted_.front().task);
                    posted_.pop_front();
                } else {
                    msg = posted_.front().msg;
                    if (remove) posted_.pop_front();
                    msg.time = GetTickCount();
                    return true;
                }
            } else if (quitPending_) {
                msg = MSG();
                msg.message = WM_QUIT;
                msg.wParam = static_cast<WPARAM>(quitCode_);
                if (remove) quitPending_ = false;
                return true;
            }
        }
        if (task) {
            task();
            continue;
        }
        break;
    }
    if (input_.empty()) {
        DisplayEvent event;
        while (input_.empty() && display_.PollEvent(event)) TranslateDisplayEvent(event);
    }
    if (!input_.empty()) {
        msg = input_.front();
        if (remove) input_.pop_front();
        return true;
    }
    if (HWND paint = NextWindowToPaint()) {
        msg = MSG();
        msg.hwnd = paint;
        msg.message = WM_PAINT;
        msg.time = GetTickCount();
        return true;
    }
    ComposeIfNeeded();
    if (TakeDueTimer(msg)) return true;
    return false;
}

bool WindowManager::GetMessage(MSG* msg) {
    while (true) {
        if (NextMessage(*msg, true)) return msg->message != WM_QUIT;
        WaitForWork();
    }
}

bool WindowManager::PeekMessage(MSG* msg, UINT removeFlags) {
    return NextMessage(*msg, (removeFlags & PM_REMOVE) != 0);
}

void WindowManager::TranslateMessage(const MSG* msg) {
    if (msg->message != WM_KEYDOWN) return;
    // Keys that stand for a character without typing one.
    switch (msg->wParam) {
    case VK_RETURN: PostMessage(msg->hwnd, WM_CHAR, '\r', msg->lParam); break;
    case VK_ESCAPE: PostMessage(msg->hwnd, WM_CHAR, 0x1B, msg->lParam); break;
    case VK_BACK: PostMessage(msg->hwnd, WM_CHAR, '\b', msg->lParam); break;
    case VK_TAB: PostMessage(msg->hwnd, WM_CHAR, '\t', msg->lParam); break;
    default: break;
    }
}

LRESULT WindowManager::DispatchMessage(const MSG* msg) {
    if (msg->message == WM_TIMER && msg->lParam) {
        reinterpret_cast<TIMERPROC>(msg->lParam)(msg->hwnd, WM_TIMER, msg->wParam, GetTickCount());
        return 0;
    }
    if (msg->hwnd == HWND_BROADCAST) return SendMessage(HWND_BROADCAST, msg->message, msg->wParam, msg->lParam);
    if (!IsWindow(msg->hwnd)) return 0;
    LRESULT result = SendMessage(msg->hwnd, msg->message, msg->wParam, msg->lParam);
    // A window that did not paint is taken as painted, or it would be asked forever.
    if (msg->message == WM_PAINT) ValidateRect(msg->hwnd);
    return result;
}

LRESULT WindowManager::DefWindowProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CLOSE: DestroyWindow(handle); return 0;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        BeginPaint(handle, &paint);
        EndPaint(handle, &paint);
        return 0;
    }
    case WM_ERASEBKGND: return 0; // no class has a background brush
    case WM_SETTEXT:
        if (lParam) SetWindowText(handle, reinterpret_cast<const char16_t*>(lParam));
        return 1;
    case WM_MOUSEWHEEL:
        // Unhandled wheel turns go to the parent, as scrolling containers expect.
        if (Window* window = Get(handle); window && window->parent)
            return SendMessage(window->parent, message, wParam, lParam);
        return 0;
    default: (void)wParam; return 0;
    }
}

LRESULT WindowManager::DefDlgProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE) {
        PostMessage(handle, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        return 0;
    }
    return DefWindowProc(handle, message, wParam, lParam);
}

LRESULT WindowManager::DialogWindowProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    WindowManager& wm = Current();
    Window* window = wm.Get(handle);
    if (!window) return 0;
    DLGPROC proc = window->dialogProc;
    const INT_PTR result = proc ? proc(handle, message, wParam, lParam) : 0;
    window = wm.Get(handle);
    if (!window) return result; // the page went away while handling the message
    if (DirectDialogResult(message)) return result;
    if (result) return window->dialogMessageResult;
    return wm.DefDlgProc(handle, message, wParam, lParam);
}

// ---- input ---------------------------------------------------------------

HWND WindowManager::ChildFromPoint(HWND parent, int x, int y) const {
    const Window* window = Get(parent);
    for (auto it = window->children.rbegin(); it != window->children.rend(); ++it) {
        const Window* child = Get(*it);
        if (!child || !(child->style & WS_VISIBLE)) continue;
        if (ScreenRectOf(child).Contains(x, y)) return ChildFromPoint(*it, x, y);
    }
    return parent;
}

HWND WindowManager::WindowFromPoint(int x, int y) const {
    for (auto it = topLevel_.rbegin(); it != topLevel_.rend(); ++it) {
        const Window* window = Get(*it);
        if (!window || !(window->style & WS_VISIBLE)) continue;
        if (window->rect.Contains(x, y)) return ChildFromPoint(*it, x, y);
    }
    return nullptr;
}

void WindowManager::QueuePointer(UINT message, int x, int y, WPARAM keys) {
    HWND target = capture_ ? capture_ : WindowFromPoint(x, y);
    if (!target) return;
    if (!capture_) {
        // Input to a disabled window (or one inside a disabled page) is dropped.
        for (HWND w = target; w; w = Get(w)->parent)
            if (!IsWindowEnabled(w)) return;
    }
    if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_MBUTTONDOWN) {
        HWND top = TopLevelOf(target);
        if (top && top != active_) {
            SetActiveWindow(top);
            if (!IsWindow(target)) return;
        }
        const Window* window = Get(target);
        const std::uint32_t now = GetTickCount();
        if (message == WM_LBUTTONDOWN && (window->classStyle & CS_DBLCLKS) && target == lastDownWindow_ &&
            now - lastDownTime_ <= kDoubleClickTime && std::abs(x - lastDownPoint_.x) <= kDoubleClickDistance &&
            std::abs(y - lastDownPoint_.y) <= kDoubleClickDistance) {
            message = WM_LBUTTONDBLCLK;
            lastDownWindow_ = nullptr;
        } else if (message == WM_LBUTTONDOWN) {
            lastDownWindow_ = target;
            lastDownTime_ = now;
            lastDownPoint_ = POINT{x, y};
        }
    }
    POINT client{x, y};
    ScreenToClient(target, &client);
    MSG msg;
    msg.hwnd = target;
    msg.message = message;
    msg.wParam = keys;
    msg.lParam = MAKELPARAM(client.x, client.y);
    msg.time = GetTickCount();
    msg.pt = POINT{x, y};
    input_.push_back(msg);
}

void WindowManager::TranslateDisplayEvent(const DisplayEvent& event) {
    using T = DisplayEvent::Type;
    static constexpr UINT kDown[] = {WM_LBUTTONDOWN, WM_RBUTTONDOWN, WM_MBUTTONDOWN};
    static constexpr UINT kUp[] = {WM_LBUTTONUP, WM_RBUTTONUP, WM_MBUTTONUP};
    static constexpr WPARAM kBit[] = {MK_LBUTTON, MK_RBUTTON, MK_MBUTTON};
    const int button = std::clamp(event.button, 0, 2);
    switch (event.type) {
    case T::PointerDown:
        buttonKeys_ |= kBit[button];
        QueuePointer(kDown[button], event.x, event.y, buttonKeys_);
        break;
    case T::PointerMove: QueuePointer(WM_MOUSEMOVE, event.x, event.y, buttonKeys_); break;
    case T::PointerUp:
        buttonKeys_ &= ~kBit[button];
        QueuePointer(kUp[button], event.x, event.y, buttonKeys_);
        break;
    case T::Wheel: {
        HWND target = focus_ ? focus_ : active_;
        if (!target) break;
        MSG msg;
        msg.hwnd = target;
        msg.message = WM_MOUSEWHEEL;
        msg.wParam = MAKEWPARAM(static_cast<int>(buttonKeys_), event.wheelDelta);
        msg.lParam = MAKELPARAM(event.x, event.y);
        msg.time = GetTickCount();
        input_.push_back(msg);
        break;
    }
    case T::KeyDown:
    case T::KeyUp: {
        if (event.key < keysDown_.size()) keysDown_[event.key] = event.type == T::KeyDown;
        HWND target = focus_ ? focus_ : active_;
        if (!target) break;
        MSG msg;
        msg.hwnd = target;
        msg.message = event.type == T::KeyDown ? WM_KEYDOWN : WM_KEYUP;
        msg.wParam = event.key;
        msg.lParam = event.type == T::KeyDown ? 1 : static_cast<LPARAM>(0xC0000001u);
        msg.time = GetTickCount();
        input_.push_back(msg);
        break;
    }
    case T::Text: {
        HWND target = focus_ ? focus_ : active_;
        if (!target) break;
        for (char16_t unit : Utf8ToUtf16(event.text)) {
            MSG msg;
            msg.hwnd = target;
            msg.message = WM_CHAR;
            msg.wParam = unit;
            msg.lParam = 1 | kCharFromTextInput;
            msg.time = GetTickCount();
            input_.push_back(msg);
        }
        break;
    }
    case T::Composition: {
        composition_ = Utf8ToUtf16(event.text);
        // The input method counts code points; ours are code units.
        int units = 0;
        for (int points = 0; units < static_cast<int>(composition_.size()) && points < event.compositionCursor;
             ++points)
            units += IsHighSurrogate(composition_[static_cast<size_t>(units)]) ? 2 : 1;
        compositionCursor_ = std::min(units, static_cast<int>(composition_.size()));
        HWND target = focus_ ? focus_ : active_;
        if (!target) break;
        MSG msg;
        msg.hwnd = target;
        msg.message = WM_IME_COMPOSITION;
        msg.wParam = 0;
        msg.lParam = 0;
        msg.time = GetTickCount();
        input_.push_back(msg);
        break;
    }
    case T::Resize: OnScreenResize(event.width, event.height); break;
    case T::Quit:
        // Closing the program's window closes the main window, as the close
        // path of the instance link does.
        if (HWND main = FindWindow(kMainWndClass, nullptr))
            PostMessage(main, WM_CLOSE, 0, 0);
        else
            PostQuitMessage(0);
        break;
    }
}

void WindowManager::OnScreenResize(int width, int height) {
    if (width <= 0 || height <= 0) return;
    frame_ = Bitmap(width, height);
    MarkFrameDirty();
    SetHighResolution(width >= kHighResolutionWidth);
    for (HWND window : GetTopLevelWindows())
        if (IsWindow(window)) SendMessage(window, WM_SETTINGCHANGE, SETTINGCHANGE_RESET, 0);
}

// ---- timers --------------------------------------------------------------

DWORD WindowManager::GetTickCount() const { return Clock::Current().GetTickCount(); }

UINT_PTR WindowManager::SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC proc) {
    if (window && !IsWindow(window)) return 0;
    if (!window) {
        // A timer without a window gets an id of its own.
        static UINT_PTR nextId = 0x7F00;
        id = ++nextId;
    }
    const UINT interval = std::max(milliseconds, kMinimumTimerPeriod);
    const std::uint32_t due = GetTickCount() + interval;
    for (Timer& timer : timers_) {
        if (timer.window == window && timer.id == id) {
            timer.interval = interval;
            timer.due = due;
            timer.proc = proc;
            timer.sequence = ++timerSequence_;
            return window ? 1 : id;
        }
    }
    timers_.push_back(Timer{window, id, interval, due, ++timerSequence_, proc});
    return window ? 1 : id;
}

bool WindowManager::KillTimer(HWND window, UINT_PTR id) {
    auto it = std::find_if(timers_.begin(), timers_.end(),
                           [&](const Timer& t) { return t.window == window && t.id == id; });
    if (it == timers_.end()) return false;
    timers_.erase(it);
    return true;
}

std::optional<std::uint32_t> WindowManager::TimeUntilNextTimer() const {
    if (timers_.empty()) return std::nullopt;
    const std::uint32_t now = GetTickCount();
    std::int32_t best = INT32_MAX;
    for (const Timer& timer : timers_) best = std::min(best, static_cast<std::int32_t>(timer.due - now));
    return static_cast<std::uint32_t>(std::max(0, best));
}

bool WindowManager::TakeDueTimer(MSG& msg) {
    const std::uint32_t now = GetTickCount();
    Timer* chosen = nullptr;
    for (Timer& timer : timers_) {
        if (static_cast<std::int32_t>(now - timer.due) < 0) continue;
        if (!chosen || static_cast<std::int32_t>(timer.due - chosen->due) < 0 ||
            (timer.due == chosen->due && timer.sequence < chosen->sequence))
            chosen = &timer;
    }
    if (!chosen) return false;
    msg = MSG();
    msg.hwnd = chosen->window;
    msg.message = WM_TIMER;
    msg.wParam = chosen->id;
    msg.lParam = reinterpret_cast<LPARAM>(chosen->proc);
    msg.time = now;
    chosen->due = now + chosen->interval;
    return true;
}

// ---- painting ------------------------------------------------------------

bool WindowManager::InvalidateRect(HWND handle, const RECT* rect, bool erase) {
    Window* window = Get(handle);
    if (!window) return false;
    RECT client{0, 0, window->rect.Width(), window->rect.Height()};
    RECT area = rect ? Intersect(*rect, client) : client;
    if (area.IsEmpty() && rect) return true;
    window->update = window->invalid ? Union(window->update, area) : area;
    window->invalid = true;
    window->erase = window->erase || erase;
    return true;
}

bool WindowManager::ValidateRect(HWND handle) {
    Window* window = Get(handle);
    if (!window) return false;
    window->invalid = false;
    window->erase = false;
    window->update = RECT();
    return true;
}

bool WindowManager::GetUpdateRect(HWND handle, RECT* rect) const {
    const Window* window = Get(handle);
    if (!window || !window->invalid) return false;
    if (rect) *rect = window->update;
    return true;
}

bool WindowManager::UpdateWindow(HWND handle) {
    Window* window = Get(handle);
    if (!window) return false;
    if (window->invalid && IsShown(window)) {
        SendMessage(handle, WM_PAINT, 0, 0);
        ValidateRect(handle);
    }
    return true;
}

HDC WindowManager::BeginPaint(HWND handle, PAINTSTRUCT* paint) {
    Window* window = Get(handle);
    if (!window || !paint) return nullptr;
    ResizeSurface(window);
    auto dc = std::make_unique<Dc>(window->surface);
    const RECT client{0, 0, window->rect.Width(), window->rect.Height()};
    paint->rcPaint = window->invalid ? window->update : client;
    dc->IntersectClip(paint->rcPaint);
    paint->hdc = dc.get();
    window->paintDcs.push_back(std::move(dc));
    const bool erase = window->erase;
    window->invalid = false;
    window->erase = false;
    window->update = RECT();
    MarkFrameDirty();
    paint->fErase = 0;
    if (erase) paint->fErase = SendMessage(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(paint->hdc), 0) ? 0 : 1;
    return paint->hdc;
}

void WindowManager::EndPaint(HWND handle, const PAINTSTRUCT* paint) {
    Window* window = Get(handle);
    if (!window || !paint) return;
    std::erase_if(window->paintDcs, [&](const std::unique_ptr<Dc>& dc) { return dc.get() == paint->hdc; });
    MarkFrameDirty();
}

HDC WindowManager::GetDC(HWND handle) {
    Window* window = Get(handle);
    if (!window) return nullptr;
    ResizeSurface(window);
    windowDcs_.push_back(std::make_unique<Dc>(window->surface));
    MarkFrameDirty();
    return windowDcs_.back().get();
}

void WindowManager::ReleaseDC(HWND, HDC dc) {
    std::erase_if(windowDcs_, [&](const std::unique_ptr<Dc>& owned) { return owned.get() == dc; });
    MarkFrameDirty();
}

HWND WindowManager::FindWindowToPaint(HWND handle) const {
    const Window* window = Get(handle);
    if (!window || !(window->style & WS_VISIBLE)) return nullptr;
    if (window->invalid) return handle;
    for (HWND child : window->children)
        if (HWND found = FindWindowToPaint(child)) return found;
    return nullptr;
}

HWND WindowManager::NextWindowToPaint() const {
    for (HWND window : topLevel_)
        if (HWND found = FindWindowToPaint(window)) return found;
    return nullptr;
}

void WindowManager::ComposeWindow(cairo_t* cr, const Window* window, const RECT& clip, int originX, int originY) {
    const RECT screen{originX + window->rect.left, originY + window->rect.top, originX + window->rect.right,
                      originY + window->rect.bottom};
    const RECT visible = Intersect(screen, clip);
    if (visible.IsEmpty()) return;
    if (window->surface) {
        cairo_save(cr);
        cairo_rectangle(cr, visible.left, visible.top, visible.Width(), visible.Height());
        cairo_clip(cr);
        cairo_set_source_surface(cr, window->surface.Surface(), screen.left, screen.top);
        cairo_paint(cr);
        cairo_restore(cr);
    }
    for (HWND child : window->children) {
        const Window* c = Get(child);
        if (c && (c->style & WS_VISIBLE)) ComposeWindow(cr, c, visible, screen.left, screen.top);
    }
}

void WindowManager::Compose() {
    if (!frame_) return;
    cairo_t* cr = cairo_create(frame_.Surface());
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_paint(cr);
    const RECT screen{0, 0, frame_.Width(), frame_.Height()};
    for (HWND handle : topLevel_) {
        const Window* window = Get(handle);
        if (window && (window->style & WS_VISIBLE)) ComposeWindow(cr, window, screen, 0, 0);
    }
    cairo_destroy(cr);
    cairo_surface_flush(frame_.Surface());
    display_.Present(cairo_image_surface_get_data(frame_.Surface()), cairo_image_surface_get_stride(frame_.Surface()));
    frameDirty_ = false;
    ++framesComposed_;
}

void WindowManager::ComposeIfNeeded() {
    if (frameDirty_) Compose();
}

bool WindowManager::WriteScreenshot(const std::string& path) {
    ComposeIfNeeded();
    return frame_.WritePng(path);
}

// ---- loops ---------------------------------------------------------------

void WindowManager::WaitForWork() {
    if (stopCheck_ && !stopped_ && stopCheck_()) {
        stopped_ = true;
        PostQuitMessage(0);
        return;
    }
    const std::optional<std::uint32_t> next = TimeUntilNextTimer();
    if (idleHook_) {
        idleHook_(next);
        return;
    }
    // Headless on the virtual clock nothing can happen until time moves, so
    // it jumps to the next timer. A real screen waits for its user.
    if (Clock::Current().IsVirtual() && display_.IsHeadless()) {
        if (next) {
            Clock::Current().Advance(*next);
        } else {
            Log::Info("nothing is left to happen on the virtual clock; quitting");
            PostQuitMessage(0);
        }
        return;
    }
    WaitOnDisplay(next ? static_cast<int>(*next) : -1);
}

void WindowManager::WaitOnDisplay(int timeoutMs) {
    if (stopCheck_) timeoutMs = timeoutMs < 0 ? kStopPollMs : std::min(timeoutMs, kStopPollMs);
    display_.WaitEvent(timeoutMs);
}

int WindowManager::Run() {
    MSG msg;
    while (GetMessage(&msg)) {
        TranslateMessage(&msg);
        DispatchMessage(&msg);
    }
    return static_cast<int>(msg.wParam);
}

bool WindowManager::RunUntilIdle() {
    MSG msg;
    while (NextMessage(msg, true)) {
        if (msg.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(msg.wParam));
            return false;
        }
        TranslateMessage(&msg);
        DispatchMessage(&msg);
    }
    return true;
}

bool WindowManager::RunFor(std::uint32_t milliseconds) {
    const std::uint32_t end = GetTickCount() + milliseconds;
    while (true) {
        if (!RunUntilIdle()) return false;
        const std::int32_t remaining = static_cast<std::int32_t>(end - GetTickCount());
        if (remaining <= 0) return true;
        const std::optional<std::uint32_t> next = TimeUntilNextTimer();
        const std::uint32_t step =
            next ? std::min<std::uint32_t>(*next, static_cast<std::uint32_t>(remaining)) : static_cast<std::uint32_t>(remaining);
        if (Clock::Current().IsVirtual())
            Clock::Current().Advance(step);
        else
            WaitOnDisplay(static_cast<int>(step));
    }
}

} // namespace mirodate
