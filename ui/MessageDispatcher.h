#pragma once
// Messages between windows: sending (a direct call on the UI thread, a post
// from any other), posting and broadcasting, quit and tasks from any thread
// (waking the loop), registered message numbers, the translation of keys to
// the characters they stand for, the dispatch of a taken message, and what a
// window does with the messages its procedure leaves alone.
#include "platform/Display.h"
#include "ui/WinTypes.h"

#include <functional>
#include <string>
#include <thread>

namespace mirodate {

class MessageQueue;
class WindowManager;
class WindowTree;

class MessageDispatcher {
public:
    // The thread that makes it is the UI thread.
    MessageDispatcher(WindowManager& manager, WindowTree& tree, MessageQueue& queue, Display& display);

    LRESULT SendMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool PostMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    bool SendNotifyMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void PostQuitMessage(int exitCode);
    void PostTask(std::function<void()> task);
    static UINT RegisterWindowMessage(const std::string& name);
    void TranslateMessage(const MSG* msg);
    LRESULT DispatchMessage(const MSG* msg);
    LRESULT DefWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

private:
    bool OnUiThread() const { return std::this_thread::get_id() == uiThread_; }
    // Another thread posted: the loop may be waiting on the display.
    void WakeFromOtherThread();

    WindowManager& manager_;
    WindowTree& tree_;
    MessageQueue& queue_;
    Display& display_;
    std::thread::id uiThread_;
};

} // namespace mirodate
