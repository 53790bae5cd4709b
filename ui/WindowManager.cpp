#include "ui/WindowManager.h"

#include "platform/Clock.h"
#include "platform/Log.h"
#include "ui/Compositor.h"
#include "ui/Dc.h"
#include "ui/DialogSupport.h"
#include "ui/InputRouter.h"
#include "ui/MessageDispatcher.h"
#include "ui/MessageLoop.h"
#include "ui/MessageQueue.h"
#include "ui/Messages.h"
#include "ui/PushButtonControl.h"
#include "ui/Scale.h"
#include "ui/TimerQueue.h"
#include "ui/WindowClasses.h"
#include "ui/WindowLifecycle.h"
#include "ui/WindowTree.h"

namespace mirodate {

namespace {
WindowManager* g_current = nullptr;
} // namespace

WindowManager::WindowManager(Display& display)
    : display_(display), tree_(std::make_unique<WindowTree>()), queue_(std::make_unique<MessageQueue>()),
      timers_(std::make_unique<TimerQueue>()), compositor_(std::make_unique<Compositor>(*tree_, display)),
      input_(std::make_unique<InputRouter>(*this, *tree_, display)),
      loop_(std::make_unique<MessageLoop>(*this, *queue_, *input_, *compositor_, *timers_, display)),
      messages_(std::make_unique<MessageDispatcher>(*this, *tree_, *queue_, display)),
      dialogs_(std::make_unique<DialogSupport>(*this, *tree_, *loop_)),
      lifecycle_(std::make_unique<WindowLifecycle>(*this, *tree_, *compositor_, *input_, *timers_)) {
    if (g_current)
        Log::Warning("a second window system replaces the first");
    g_current = this;
    SetHighResolution(display.Width() >= kHighResolutionWidth);
    WNDCLASS dialog;
    dialog.lpfnWndProc = &WindowManager::DialogWindowProc;
    dialog.lpszClassName = DialogSupport::kClassName;
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
    return lifecycle_->CreateWindowEx(exStyle, className, title, style, x, y, width, height, parent, id,
                                      instance, param);
}

HWND WindowManager::CreateDialogParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    return dialogs_->CreateDialogParam(instance, templateId, parent, proc, param);
}

INT_PTR WindowManager::DialogBoxParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc,
                                      LPARAM param) {
    return dialogs_->DialogBoxParam(instance, templateId, parent, proc, param);
}

bool WindowManager::EndDialog(HWND dialog, INT_PTR result) {
    return dialogs_->EndDialog(dialog, result);
}

bool WindowManager::DestroyWindow(HWND window) {
    return lifecycle_->DestroyWindow(window);
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

bool WindowManager::ShowWindow(HWND window, int command) {
    return lifecycle_->ShowWindow(window, command);
}

bool WindowManager::MoveWindow(HWND window, int x, int y, int width, int height, bool repaint) {
    return lifecycle_->MoveWindow(window, x, y, width, height, repaint);
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
    return window ? window->GetLong(index) : 0;
}

LONG_PTR WindowManager::SetWindowLongPtr(HWND handle, int index, LONG_PTR value) {
    WindowRecord* window = Get(handle);
    if (!window)
        return 0;
    const LONG_PTR old = window->SetLong(index, value);
    if (index == GWL_STYLE)
        compositor_->MarkDirty();
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

LRESULT WindowManager::SendMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return messages_->SendMessage(window, message, wParam, lParam);
}

bool WindowManager::PostMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return messages_->PostMessage(window, message, wParam, lParam);
}

bool WindowManager::SendNotifyMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return messages_->SendNotifyMessage(window, message, wParam, lParam);
}

void WindowManager::PostQuitMessage(int exitCode) {
    messages_->PostQuitMessage(exitCode);
}

bool WindowManager::IsQuitPending() const {
    return queue_->IsQuitPending();
}
int WindowManager::QuitCode() const {
    return queue_->QuitCode();
}

UINT WindowManager::RegisterWindowMessage(const std::string& name) {
    return MessageDispatcher::RegisterWindowMessage(name);
}

void WindowManager::PostTask(std::function<void()> task) {
    messages_->PostTask(std::move(task));
}

bool WindowManager::GetMessage(MSG* msg) {
    return loop_->GetMessage(*msg);
}

bool WindowManager::PeekMessage(MSG* msg, UINT removeFlags) {
    return loop_->PeekMessage(*msg, (removeFlags & PM_REMOVE) != 0);
}

void WindowManager::TranslateMessage(const MSG* msg) {
    messages_->TranslateMessage(msg);
}

LRESULT WindowManager::DispatchMessage(const MSG* msg) {
    return messages_->DispatchMessage(msg);
}

LRESULT WindowManager::DefWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return messages_->DefWindowProc(window, message, wParam, lParam);
}

LRESULT WindowManager::DefDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return dialogs_->DefDlgProc(window, message, wParam, lParam);
}

LRESULT WindowManager::DialogWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return Current().dialogs_->WindowProc(window, message, wParam, lParam);
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
