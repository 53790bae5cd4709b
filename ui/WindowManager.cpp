#include "ui/WindowManager.h"

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/VirtualKeys.h"
#include "ui/Compositor.h"
#include "ui/Dc.h"
#include "ui/InputRouter.h"
#include "ui/MessageLoop.h"
#include "ui/MessageQueue.h"
#include "ui/Messages.h"
#include "ui/PushButtonControl.h"
#include "ui/Scale.h"
#include "ui/TimerQueue.h"
#include "ui/WindowClasses.h"
#include "ui/WindowTree.h"

#include <algorithm>

namespace mirodate {

namespace {
WindowManager* g_current = nullptr;

constexpr const char* kDialogClass = "#32770";

bool DirectDialogResult(UINT message) {
    return message == WM_INITDIALOG || message == WM_CTLCOLORBTN;
}
} // namespace

WindowManager::WindowManager(Display& display)
    : display_(display), uiThread_(std::this_thread::get_id()), tree_(std::make_unique<WindowTree>()),
      queue_(std::make_unique<MessageQueue>()), timers_(std::make_unique<TimerQueue>()),
      compositor_(std::make_unique<Compositor>(*tree_, display)),
      input_(std::make_unique<InputRouter>(*this, *tree_, display)),
      loop_(std::make_unique<MessageLoop>(*this, *queue_, *input_, *compositor_, *timers_, display)) {
    if (g_current)
        Log::Warning("a second window system replaces the first");
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
}

WindowManager::~WindowManager() {
    // Owners first, so that owned windows go with them.
    for (HWND window : GetTopLevelWindows())
        DestroyWindow(window);
    compositor_->ReleaseAllDcs();
    if (g_current == this)
        g_current = nullptr;
}

WindowManager& WindowManager::Current() {
    return *g_current;
}
bool WindowManager::HasCurrent() {
    return g_current != nullptr;
}

WindowRecord* WindowManager::Get(HWND window) const {
    return tree_->Get(window);
}

// ---- the window tree -------------------------------------------------------

bool WindowManager::RegisterClass(const WNDCLASS& windowClass) {
    return tree_->RegisterClass(windowClass);
}

HWND WindowManager::CreateWindowEx(DWORD exStyle, const std::string& className, const std::u16string& title,
                                   DWORD style, int x, int y, int width, int height, HWND parent, UINT_PTR id,
                                   HINSTANCE instance, void* param) {
    const WNDCLASS* cls = tree_->FindClass(className);
    if (!cls) {
        Log::Warning("window class %s is not registered", className.c_str());
        return nullptr;
    }
    const bool child = (style & WS_CHILD) != 0;
    if (child && !Get(parent))
        return nullptr;
    if (!child && parent && !Get(parent))
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
        window->owner = parent ? tree_->TopLevelOf(parent) : nullptr;
    Compositor::ResizeSurface(*window);
    const HWND handle = tree_->Add(std::move(window));

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
    if (!IsWindow(handle))
        return nullptr;
    SendMessage(handle, WM_SIZE, SIZE_RESTORED, MAKELPARAM(width, height));
    if (style & WS_VISIBLE)
        ShowWindow(handle, SW_SHOW);
    return IsWindow(handle) ? handle : nullptr;
}

HWND WindowManager::CreateDialogParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    if (templateId != kEmptyDialogTemplate) {
        Log::Warning("no dialog template %d", templateId);
        return nullptr;
    }
    // The empty template: a full-screen pop-up, shown once initialised.
    HWND window = CreateWindowEx(0, kDialogClass, u"", WS_POPUP, 0, 0, ScreenWidth(), ScreenHeight(), parent,
                                 0, instance, nullptr);
    if (!window)
        return nullptr;
    WindowRecord* dialog = Get(window);
    dialog->isDialog = true;
    dialog->dialogProc = proc;
    SendMessage(window, WM_INITDIALOG, 0, param);
    if (!IsWindow(window))
        return nullptr;
    ShowWindow(window, SW_SHOW);
    return IsWindow(window) ? window : nullptr;
}

INT_PTR WindowManager::DialogBoxParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    HWND owner = parent ? tree_->TopLevelOf(parent) : nullptr;
    const bool disableOwner = owner && IsWindowEnabled(owner);
    if (disableOwner)
        EnableWindow(owner, false);
    HWND dialog = CreateDialogParam(instance, templateId, parent, proc, param);
    INT_PTR result = -1;
    if (dialog) {
        result = loop_->RunModal(dialog, [&]() -> std::optional<INT_PTR> {
            const WindowRecord* window = Get(dialog);
            if (window && window->dialogEnded)
                return window->dialogResult;
            return std::nullopt;
        });
    }
    if (disableOwner && IsWindow(owner))
        EnableWindow(owner, true);
    if (dialog && IsWindow(dialog)) {
        if (owner && IsWindow(owner) && IsWindowVisible(owner))
            SetActiveWindow(owner);
        DestroyWindow(dialog);
    }
    return result;
}

bool WindowManager::EndDialog(HWND dialog, INT_PTR result) {
    WindowRecord* window = Get(dialog);
    if (!window || !window->isDialog)
        return false;
    window->dialogEnded = true;
    window->dialogResult = result;
    ShowWindow(dialog, SW_HIDE);
    return true;
}

bool WindowManager::DestroyWindow(HWND handle) {
    WindowRecord* window = Get(handle);
    if (!window || window->destroying)
        return false;
    window->destroying = true;
    for (HWND owned : GetTopLevelWindows())
        if (WindowRecord* w = Get(owned); w && w->owner == handle)
            DestroyWindow(owned);
    if (IsWindowVisible(handle))
        compositor_->MarkDirty();
    input_->DropCapture(handle);
    SendMessage(handle, WM_DESTROY, 0, 0);
    if (WindowRecord* w = Get(handle)) {
        const std::vector<HWND> children = w->children;
        for (HWND child : children)
            DestroyWindow(child);
    }
    SendMessage(handle, WM_NCDESTROY, 0, 0);

    window = Get(handle);
    if (!window)
        return true;
    timers_->KillAllOf(handle);
    const bool wasActive = input_->Forget(handle);
    const HWND owner = window->owner;
    tree_->Remove(handle);
    compositor_->MarkDirty();
    if (wasActive) {
        if (owner && IsWindow(owner) && IsWindowVisible(owner) && IsWindowEnabled(owner))
            SetActiveWindow(owner);
        else
            input_->ActivateNextAfter(handle);
    }
    return true;
}

bool WindowManager::IsWindow(HWND window) const {
    return Get(window) != nullptr;
}

bool WindowManager::IsDialog(HWND window) const {
    const WindowRecord* w = Get(window);
    return w && w->isDialog;
}

HWND WindowManager::FindWindow(const char* className, const char16_t* title) const {
    return tree_->FindTopLevel(className, title);
}

bool WindowManager::IsWindowVisible(HWND window) const {
    return tree_->IsShown(Get(window));
}

bool WindowManager::ShowWindow(HWND handle, int command) {
    WindowRecord* window = Get(handle);
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
        SendMessage(handle, WM_SHOWWINDOW, show ? 1 : 0, 0);
        window = Get(handle);
        if (!window)
            return wasVisible;
        compositor_->MarkDirty();
        if (show)
            InvalidateRect(handle, nullptr, true);
    }
    if (!window->parent) {
        if (show && command != SW_SHOWNA)
            SetActiveWindow(handle);
        else if (!show)
            input_->Deactivate(handle);
    } else if (!show && input_->Focus() && input_->Focus() == handle) {
        SetFocus(window->parent);
    }
    return wasVisible;
}

bool WindowManager::MoveWindow(HWND handle, int x, int y, int width, int height, bool repaint) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    const RECT old = window->rect;
    window->rect = RECT{x, y, x + std::max(0, width), y + std::max(0, height)};
    const bool sized = old.Width() != window->rect.Width() || old.Height() != window->rect.Height();
    const bool moved = old.left != x || old.top != y;
    if (sized)
        Compositor::ResizeSurface(*window);
    if (tree_->IsShown(window))
        compositor_->MarkDirty();
    WINDOWPOS pos;
    pos.hwnd = handle;
    pos.x = x;
    pos.y = y;
    pos.cx = width;
    pos.cy = height;
    SendMessage(handle, WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&pos));
    // Size and move follow directly, also for windows that handle the
    // position change themselves.
    if (sized)
        SendMessage(handle, WM_SIZE, SIZE_RESTORED, MAKELPARAM(width, height));
    if (moved)
        SendMessage(handle, WM_MOVE, 0, MAKELPARAM(x, y));
    if (repaint && IsWindow(handle))
        InvalidateRect(handle, nullptr, true);
    return true;
}

bool WindowManager::GetClientRect(HWND handle, RECT* rect) const {
    const WindowRecord* window = Get(handle);
    if (!window || !rect)
        return false;
    *rect = window->ClientRect();
    return true;
}

bool WindowManager::GetWindowRect(HWND handle, RECT* rect) const {
    const WindowRecord* window = Get(handle);
    if (!window || !rect)
        return false;
    *rect = tree_->ScreenRectOf(window);
    return true;
}

bool WindowManager::ClientToScreen(HWND handle, POINT* point) const {
    const WindowRecord* window = Get(handle);
    if (!window || !point)
        return false;
    const RECT r = tree_->ScreenRectOf(window);
    point->x += r.left;
    point->y += r.top;
    return true;
}

bool WindowManager::ScreenToClient(HWND handle, POINT* point) const {
    const WindowRecord* window = Get(handle);
    if (!window || !point)
        return false;
    const RECT r = tree_->ScreenRectOf(window);
    point->x -= r.left;
    point->y -= r.top;
    return true;
}

HWND WindowManager::GetParent(HWND handle) const {
    const WindowRecord* window = Get(handle);
    if (!window)
        return nullptr;
    return window->parent ? window->parent : window->owner;
}

HWND WindowManager::GetOwner(HWND handle) const {
    const WindowRecord* window = Get(handle);
    return window ? window->owner : nullptr;
}

HWND WindowManager::GetDlgItem(HWND parent, int id) const {
    const WindowRecord* window = Get(parent);
    if (!window)
        return nullptr;
    for (HWND child : window->children)
        if (const WindowRecord* c = Get(child); c && c->id == static_cast<UINT_PTR>(id))
            return child;
    return nullptr;
}

int WindowManager::GetDlgCtrlID(HWND handle) const {
    const WindowRecord* window = Get(handle);
    return window ? static_cast<int>(window->id) : 0;
}

std::vector<HWND> WindowManager::GetChildren(HWND handle) const {
    const WindowRecord* window = Get(handle);
    return window ? window->children : std::vector<HWND>();
}

std::vector<HWND> WindowManager::GetTopLevelWindows() const {
    return tree_->TopLevel();
}

LONG_PTR WindowManager::GetWindowLongPtr(HWND handle, int index) const {
    const WindowRecord* window = Get(handle);
    if (!window)
        return 0;
    if (window->isDialog && index == DWL_USER)
        return window->dialogUser;
    if (window->isDialog && index == DWL_MSGRESULT)
        return window->dialogMessageResult;
    switch (index) {
    case GWL_USERDATA:
        return window->userData;
    case GWL_STYLE:
        return static_cast<LONG_PTR>(window->style);
    case GWL_ID:
        return static_cast<LONG_PTR>(window->id);
    case GWL_WNDPROC:
        return reinterpret_cast<LONG_PTR>(window->proc);
    default:
        return 0;
    }
}

LONG_PTR WindowManager::SetWindowLongPtr(HWND handle, int index, LONG_PTR value) {
    WindowRecord* window = Get(handle);
    if (!window)
        return 0;
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
    case GWL_USERDATA:
        window->userData = value;
        break;
    case GWL_STYLE:
        window->style = static_cast<DWORD>(value);
        compositor_->MarkDirty();
        break;
    case GWL_ID:
        window->id = static_cast<UINT_PTR>(value);
        break;
    case GWL_WNDPROC:
        window->proc = reinterpret_cast<WNDPROC>(value);
        break;
    default:
        break;
    }
    return old;
}

bool WindowManager::EnableWindow(HWND handle, bool enable) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    const bool wasDisabled = (window->style & WS_DISABLED) != 0;
    if (enable == wasDisabled) {
        if (enable)
            window->style &= ~WS_DISABLED;
        else
            window->style |= WS_DISABLED;
        if (!enable && input_->Capture() == handle)
            ReleaseCapture();
        SendMessage(handle, WM_ENABLE, enable ? 1 : 0, 0);
    }
    return wasDisabled;
}

bool WindowManager::IsWindowEnabled(HWND handle) const {
    const WindowRecord* window = Get(handle);
    return window && !(window->style & WS_DISABLED);
}

bool WindowManager::SetWindowText(HWND handle, const std::u16string& text) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    window->title = text;
    return true;
}

std::u16string WindowManager::GetWindowText(HWND handle) const {
    const WindowRecord* window = Get(handle);
    return window ? window->title : std::u16string();
}

std::string WindowManager::GetClassName(HWND handle) const {
    const WindowRecord* window = Get(handle);
    return window ? window->className : std::string();
}

// ---- activation, focus and capture: the input router -----------------------

HWND WindowManager::SetActiveWindow(HWND window) {
    return input_->SetActiveWindow(window);
}
HWND WindowManager::GetActiveWindow() const {
    return input_->Active();
}

bool WindowManager::SetForegroundWindow(HWND handle) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    if (window->minimized)
        ShowWindow(handle, SW_SHOW);
    SetActiveWindow(handle);
    return true;
}

bool WindowManager::BringWindowToTop(HWND handle) {
    if (!IsWindow(handle))
        return false;
    if (tree_->Raise(handle))
        compositor_->MarkDirty();
    return true;
}

HWND WindowManager::SetFocus(HWND window) {
    return input_->SetFocus(window);
}
HWND WindowManager::GetFocus() const {
    return input_->Focus();
}
HWND WindowManager::SetCapture(HWND window) {
    return input_->SetCapture(window);
}
bool WindowManager::ReleaseCapture() {
    return input_->ReleaseCapture();
}
HWND WindowManager::GetCapture() const {
    return input_->Capture();
}
bool WindowManager::IsKeyDown(UINT key) const {
    return input_->IsKeyDown(key);
}
const std::u16string& WindowManager::GetComposition() const {
    return input_->Composition();
}
int WindowManager::GetCompositionCursor() const {
    return input_->CompositionCursor();
}

// ---- messages --------------------------------------------------------------

LRESULT WindowManager::SendMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!OnUiThread()) {
        // Only the UI thread calls windows; others get the message queued.
        PostMessage(handle, message, wParam, lParam);
        return 0;
    }
    if (handle == HWND_BROADCAST) {
        for (HWND window : GetTopLevelWindows())
            if (IsWindow(window))
                SendMessage(window, message, wParam, lParam);
        return 0;
    }
    const WindowRecord* window = Get(handle);
    if (!window || !window->proc)
        return 0;
    return window->proc(handle, message, wParam, lParam);
}

bool WindowManager::PostMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (OnUiThread() && handle && handle != HWND_BROADCAST && !IsWindow(handle))
        return false;
    MSG msg;
    msg.hwnd = handle;
    msg.message = message;
    msg.wParam = wParam;
    msg.lParam = lParam;
    queue_->Post(msg);
    if (!OnUiThread())
        display_.Wake();
    return true;
}

bool WindowManager::SendNotifyMessage(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!OnUiThread())
        return PostMessage(handle, message, wParam, lParam);
    SendMessage(handle, message, wParam, lParam);
    return true;
}

void WindowManager::PostQuitMessage(int exitCode) {
    queue_->PostQuit(exitCode);
    if (!OnUiThread())
        display_.Wake();
}

bool WindowManager::IsQuitPending() const {
    return queue_->IsQuitPending();
}
int WindowManager::QuitCode() const {
    return queue_->QuitCode();
}

UINT WindowManager::RegisterWindowMessage(const std::string& name) {
    // Process-wide, so that a number once handed out keeps its meaning even
    // when a test replaces the window system.
    static std::mutex mutex;
    static std::map<std::string, UINT> registered;
    std::lock_guard lock(mutex);
    auto [it, inserted] =
        registered.try_emplace(name, kFirstRegisteredMessage + static_cast<UINT>(registered.size()));
    return it->second;
}

void WindowManager::PostTask(std::function<void()> task) {
    queue_->PostTask(std::move(task));
    if (!OnUiThread())
        display_.Wake();
}

bool WindowManager::GetMessage(MSG* msg) {
    return loop_->GetMessage(*msg);
}

bool WindowManager::PeekMessage(MSG* msg, UINT removeFlags) {
    return loop_->PeekMessage(*msg, (removeFlags & PM_REMOVE) != 0);
}

void WindowManager::TranslateMessage(const MSG* msg) {
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

LRESULT WindowManager::DispatchMessage(const MSG* msg) {
    if (msg->message == WM_TIMER && msg->lParam) {
        reinterpret_cast<TIMERPROC>(msg->lParam)(msg->hwnd, WM_TIMER, msg->wParam, GetTickCount());
        return 0;
    }
    if (msg->hwnd == HWND_BROADCAST)
        return SendMessage(HWND_BROADCAST, msg->message, msg->wParam, msg->lParam);
    if (!IsWindow(msg->hwnd))
        return 0;
    LRESULT result = SendMessage(msg->hwnd, msg->message, msg->wParam, msg->lParam);
    // A window that did not paint is taken as painted, or it would be asked forever.
    if (msg->message == WM_PAINT)
        ValidateRect(msg->hwnd);
    return result;
}

LRESULT WindowManager::DefWindowProc(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_CLOSE:
        DestroyWindow(handle);
        return 0;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        BeginPaint(handle, &paint);
        EndPaint(handle, &paint);
        return 0;
    }
    case WM_ERASEBKGND:
        return 0; // no class has a background brush
    case WM_SETTEXT:
        if (lParam)
            SetWindowText(handle, reinterpret_cast<const char16_t*>(lParam));
        return 1;
    case WM_MOUSEWHEEL:
        // Unhandled wheel turns go to the parent, as scrolling containers expect.
        if (WindowRecord* window = Get(handle); window && window->parent)
            return SendMessage(window->parent, message, wParam, lParam);
        return 0;
    default:
        (void)wParam;
        return 0;
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
    WindowRecord* window = wm.Get(handle);
    if (!window)
        return 0;
    DLGPROC proc = window->dialogProc;
    const INT_PTR result = proc ? proc(handle, message, wParam, lParam) : 0;
    window = wm.Get(handle);
    if (!window)
        return result; // the page went away while handling the message
    if (DirectDialogResult(message))
        return result;
    if (result)
        return window->dialogMessageResult;
    return wm.DefDlgProc(handle, message, wParam, lParam);
}

void WindowManager::OnScreenResize(int width, int height) {
    if (width <= 0 || height <= 0)
        return;
    compositor_->ResizeFrame(width, height);
    SetHighResolution(width >= kHighResolutionWidth);
    for (HWND window : GetTopLevelWindows())
        if (IsWindow(window))
            SendMessage(window, WM_SETTINGCHANGE, SETTINGCHANGE_RESET, 0);
}

// ---- timers ----------------------------------------------------------------

DWORD WindowManager::GetTickCount() const {
    return Clock::Current().GetTickCount();
}

UINT_PTR WindowManager::SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC proc) {
    if (window && !IsWindow(window))
        return 0;
    return timers_->Set(window, id, milliseconds, proc, GetTickCount());
}

bool WindowManager::KillTimer(HWND window, UINT_PTR id) {
    return timers_->Kill(window, id);
}

std::optional<std::uint32_t> WindowManager::TimeUntilNextTimer() const {
    return timers_->TimeUntilNext(GetTickCount());
}

// ---- painting: the compositor ------------------------------------------------

bool WindowManager::InvalidateRect(HWND handle, const RECT* rect, bool erase) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    compositor_->Invalidate(*window, rect, erase);
    return true;
}

bool WindowManager::ValidateRect(HWND handle) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    Compositor::Validate(*window);
    return true;
}

bool WindowManager::GetUpdateRect(HWND handle, RECT* rect) const {
    const WindowRecord* window = Get(handle);
    if (!window || !window->invalid)
        return false;
    if (rect)
        *rect = window->update;
    return true;
}

bool WindowManager::UpdateWindow(HWND handle) {
    WindowRecord* window = Get(handle);
    if (!window)
        return false;
    if (window->invalid && tree_->IsShown(window)) {
        SendMessage(handle, WM_PAINT, 0, 0);
        ValidateRect(handle);
    }
    return true;
}

HDC WindowManager::BeginPaint(HWND handle, PAINTSTRUCT* paint) {
    WindowRecord* window = Get(handle);
    if (!window || !paint)
        return nullptr;
    bool erase = false;
    compositor_->BeginPaint(*window, *paint, erase);
    if (erase)
        paint->fErase = SendMessage(handle, WM_ERASEBKGND, reinterpret_cast<WPARAM>(paint->hdc), 0) ? 0 : 1;
    return paint->hdc;
}

void WindowManager::EndPaint(HWND handle, const PAINTSTRUCT* paint) {
    WindowRecord* window = Get(handle);
    if (!window || !paint)
        return;
    compositor_->EndPaint(*window, *paint);
}

HDC WindowManager::GetDC(HWND handle) {
    WindowRecord* window = Get(handle);
    if (!window)
        return nullptr;
    return compositor_->GetDC(*window);
}

void WindowManager::ReleaseDC(HWND, HDC dc) {
    compositor_->ReleaseDC(dc);
}

const Bitmap& WindowManager::Frame() const {
    return compositor_->Frame();
}
void WindowManager::ComposeIfNeeded() {
    compositor_->ComposeIfNeeded();
}
void WindowManager::Compose() {
    compositor_->Compose();
}
int WindowManager::FramesComposed() const {
    return compositor_->FramesComposed();
}

bool WindowManager::WriteScreenshot(const std::string& path) {
    ComposeIfNeeded();
    return Frame().WritePng(path);
}

// ---- loops -----------------------------------------------------------------

int WindowManager::Run() {
    return loop_->Run();
}
bool WindowManager::RunUntilIdle() {
    return loop_->RunUntilIdle();
}
bool WindowManager::RunFor(std::uint32_t milliseconds) {
    return loop_->RunFor(milliseconds);
}
void WindowManager::SetIdleHook(IdleHook hook) {
    loop_->SetIdleHook(std::move(hook));
}
void WindowManager::SetStopCheck(std::function<bool()> check) {
    loop_->SetStopCheck(std::move(check));
}
void WindowManager::WaitOnDisplay(int timeoutMs) {
    loop_->WaitOnDisplay(timeoutMs);
}

} // namespace mirodate
