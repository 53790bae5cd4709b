#include "ui/MessageQueue.h"

#include "ui/Messages.h"

namespace mirodate {

void MessageQueue::Post(const MSG& msg) {
    std::lock_guard lock(mutex_);
    Posted posted;
    posted.msg = msg;
    posted_.push_back(std::move(posted));
}

void MessageQueue::PostTask(std::function<void()> task) {
    std::lock_guard lock(mutex_);
    Posted posted;
    posted.task = std::move(task);
    posted_.push_back(std::move(posted));
}

void MessageQueue::PostQuit(int exitCode) {
    std::lock_guard lock(mutex_);
    quitPending_ = true;
    quitCode_ = exitCode;
}

bool MessageQueue::IsQuitPending() const {
    std::lock_guard lock(mutex_);
    return quitPending_;
}

int MessageQueue::QuitCode() const {
    std::lock_guard lock(mutex_);
    return quitCode_;
}

MessageQueue::Taken MessageQueue::Take(MSG& msg, std::function<void()>& task, bool remove) {
    std::lock_guard lock(mutex_);
    if (!posted_.empty()) {
        if (posted_.front().task) {
            task = std::move(posted_.front().task);
            posted_.pop_front();
            return Taken::Task;
        }
        msg = posted_.front().msg;
        if (remove)
            posted_.pop_front();
        return Taken::Message;
    }
    if (quitPending_) {
        msg = MSG();
        msg.message = WM_QUIT;
        msg.wParam = static_cast<WPARAM>(quitCode_);
        if (remove)
            quitPending_ = false;
        return Taken::Message;
    }
    return Taken::Nothing;
}

} // namespace mirodate
