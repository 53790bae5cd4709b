#pragma once
// The posted messages and tasks of the UI thread, in order, and the pending
// quit. Safe to use from any thread; waking the loop is the caller's part.
#include "ui/WinTypes.h"

#include <deque>
#include <functional>
#include <mutex>

namespace mirodate {

class MessageQueue {
public:
    void Post(const MSG& msg);
    void PostTask(std::function<void()> task);
    void PostQuit(int exitCode);
    bool IsQuitPending() const;
    int QuitCode() const;

    enum class Taken { Nothing, Message, Task };
    // The front of the queue: a posted message (removed when `remove`), a task
    // (always removed, to be run by the caller), or WM_QUIT once the queue is
    // empty and a quit is pending (cleared when `remove`).
    Taken Take(MSG& msg, std::function<void()>& task, bool remove);

private:
    struct Posted {
        MSG msg;
        std::function<void()> task;
    };
    mutable std::mutex mutex_;
    std::deque<Posted> posted_;
    bool quitPending_ = false;
    int quitCode_ = 0;
};

} // namespace mirodate
