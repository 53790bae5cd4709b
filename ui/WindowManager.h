#pragma once
// The window system: windows with classes, titles, styles, parents, owners,
// z-order and a user word; messages sent, posted and broadcast; timers;
// capture, focus and activation; the message loop with modal loops; painting
// of invalidated windows when the queue is idle and composition of every
// visible window into one frame for the display. One instance is current at a
// time (the program's, or a test's); ui/WinApi.h calls go to it.
//
// Everything runs on the thread that made it, except PostMessage, PostTask,
// PostQuitMessage and RegisterWindowMessage, which are safe from any thread
// and wake the loop.
#include "platform/Display.h"
#include "ui/Bitmap.h"
#include "ui/WinTypes.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unordered_map>
#include <vector>

typedef struct _cairo cairo_t;

namespace mirodate {

class Compositor;
class Dc;
class DialogSupport;
class InputRouter;
class MessageDispatcher;
class MessageLoop;
class MessageQueue;
class TimerQueue;
class WindowLifecycle;
class WindowTree;
struct WindowRecord;

// The face of the window system; the work is done by its parts: the window
// tree, the message queue and loops, input routing, timers, composition,
// message sending, dialogs and the changes of a window's life.
class WindowManager {
public:
    explicit WindowManager(Display& display);
    ~WindowManager();
    WindowManager(const WindowManager&) = delete;
    WindowManager& operator=(const WindowManager&) = delete;

    static WindowManager& Current();
    static bool HasCurrent();

    Display& GetDisplay() const { return display_; }
    int ScreenWidth() const { return display_.Width(); }
    int ScreenHeight() const { return display_.Height(); }

    // Classes and windows.
    bool RegisterClass(const WNDCLASS& windowClass); // false when the name is taken
    HWND CreateWindowEx(DWORD exStyle, const std::string& className, const std::u16string& title, DWORD style,
                        int x, int y, int width, int height, HWND parent, UINT_PTR id, HINSTANCE instance,
                        void* param);
    // Dialogs from a template: only the empty full-screen template exists.
    HWND CreateDialogParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc, LPARAM param);
    INT_PTR DialogBoxParam(HINSTANCE instance, int templateId, HWND parent, DLGPROC proc, LPARAM param);
    bool EndDialog(HWND dialog, INT_PTR result);
    bool DestroyWindow(HWND window);
    bool IsWindow(HWND window) const;
    bool IsDialog(HWND window) const;
    HWND FindWindow(const char* className, const char16_t* title) const;
    bool ShowWindow(HWND window, int command);
    bool IsWindowVisible(HWND window) const;
    bool MoveWindow(HWND window, int x, int y, int width, int height, bool repaint);
    bool GetClientRect(HWND window, RECT* rect) const;
    bool GetWindowRect(HWND window, RECT* rect) const; // screen coordinates
    bool ClientToScreen(HWND window, POINT* point) const;
    bool ScreenToClient(HWND window, POINT* point) const;
    HWND GetParent(HWND window) const; // the parent of a child, the owner of a top-level window
    HWND GetOwner(HWND window) const;
    HWND GetDlgItem(HWND parent, int id) const;
    int GetDlgCtrlID(HWND window) const;
    std::vector<HWND> GetChildren(HWND window) const; // back to front
    std::vector<HWND> GetTopLevelWindows() const;     // back to front
    LONG_PTR GetWindowLongPtr(HWND window, int index) const;
    LONG_PTR SetWindowLongPtr(HWND window, int index, LONG_PTR value);
    bool EnableWindow(HWND window, bool enable); // returns whether it was disabled
    bool IsWindowEnabled(HWND window) const;
    bool SetWindowText(HWND window, const std::u16string& text);
    std::u16string GetWindowText(HWND window) const;
    std::string GetClassName(HWND window) const;

    // Activation, focus and capture.
    HWND SetActiveWindow(HWND window);
    HWND GetActiveWindow() const;
    bool SetForegroundWindow(HWND window);
    bool BringWindowToTop(HWND window);
    HWND SetFocus(HWND window);
    HWND GetFocus() const;
    HWND SetCapture(HWND window);
    bool ReleaseCapture();
    HWND GetCapture() const;

    // Messages.
    LRESULT SendMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool PostMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool SendNotifyMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void PostQuitMessage(int exitCode);
    UINT RegisterWindowMessage(const std::string& name);
    // Runs `task` on the UI thread from the loop, in order with posted messages.
    void PostTask(std::function<void()> task);
    bool GetMessage(MSG* msg);
    bool PeekMessage(MSG* msg, UINT removeFlags);
    void TranslateMessage(const MSG* msg);
    LRESULT DispatchMessage(const MSG* msg);
    LRESULT DefWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT DefDlgProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // Keys held down now (virtual-key codes), as the key events reported them.
    bool IsKeyDown(UINT key) const;
    // The input method's composition in progress (empty: none) and its caret
    // in code units; WM_IME_COMPOSITION tells the focus window it changed.
    const std::u16string& GetComposition() const;
    int GetCompositionCursor() const;

    // Timers.
    UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC proc = nullptr);
    bool KillTimer(HWND window, UINT_PTR id);
    DWORD GetTickCount() const;

    // Painting.
    bool InvalidateRect(HWND window, const RECT* rect, bool erase);
    bool ValidateRect(HWND window);
    bool GetUpdateRect(HWND window, RECT* rect) const; // false when nothing is invalid
    bool UpdateWindow(HWND window);
    HDC BeginPaint(HWND window, PAINTSTRUCT* paint);
    void EndPaint(HWND window, const PAINTSTRUCT* paint);
    HDC GetDC(HWND window);
    void ReleaseDC(HWND window, HDC dc);

    // The composed frame: every visible window, children clipped to their
    // parents, as last handed to the display.
    const Bitmap& Frame() const;
    // Composes and presents now if anything changed since the last frame.
    void ComposeIfNeeded();
    // Composes and presents unconditionally.
    void Compose();
    bool WriteScreenshot(const std::string& path);
    int FramesComposed() const;

    // Loop drivers.
    // Runs the message loop until WM_QUIT; returns its exit code.
    int Run();
    // Handles everything that is ready now (messages, input, paints, due
    // timers), then composes. Returns false when WM_QUIT was seen (it stays
    // pending for the next GetMessage).
    bool RunUntilIdle();
    // Runs for `milliseconds` of clock time: a virtual clock is advanced from
    // timer to timer, a real one waited on.
    bool RunFor(std::uint32_t milliseconds);
    bool IsQuitPending() const;
    int QuitCode() const;

    // Called whenever a loop has nothing to do, with the time until the next
    // timer; it may inject input, advance a virtual clock, wait, or post a
    // quit. Without one, a virtual clock jumps to the next timer (and the loop
    // quits when there is none) and a real clock waits on the display.
    using IdleHook = std::function<void(std::optional<std::uint32_t> msUntilNextTimer)>;
    void SetIdleHook(IdleHook hook);
    // Asked before each wait; true ends the loop (polled at least every 100 ms).
    void SetStopCheck(std::function<bool()> check);
    std::optional<std::uint32_t> TimeUntilNextTimer() const;
    // Waits on the display for real time (-1: until woken), in slices short
    // enough for the stop check to be heard.
    void WaitOnDisplay(int timeoutMs);

private:
    friend class InputRouter; // hands screen resizes over

    WindowRecord* Get(HWND window) const;
    void OnScreenResize(int width, int height);

    static LRESULT DialogWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    Display& display_;
    // The parts, each behind this face; see their headers.
    std::unique_ptr<WindowTree> tree_;
    std::unique_ptr<MessageQueue> queue_;
    std::unique_ptr<TimerQueue> timers_;
    std::unique_ptr<Compositor> compositor_;
    std::unique_ptr<InputRouter> input_;
    std::unique_ptr<MessageLoop> loop_;
    std::unique_ptr<MessageDispatcher> messages_;
    std::unique_ptr<DialogSupport> dialogs_;
    std::unique_ptr<WindowLifecycle> lifecycle_;
};

} // namespace mirodate
