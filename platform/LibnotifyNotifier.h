#pragma once
// The desktop notifier on libnotify. One worker thread owns libnotify and
// sends the queued notifications one by one, so that a notification server
// that does not answer holds up only the worker; closing waits at most
// kCloseWaitMs for it and leaves a hung call behind.
#include "platform/DesktopNotifier.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace mirodate {

class LibnotifyNotifier : public DesktopNotifier {
public:
    static constexpr int kCloseWaitMs = 500;
    // How long a notification stays on screen (the server may choose).
    static constexpr int kExpireMs = 60000;
    // At most this many notifications wait; more are dropped (logged).
    static constexpr std::size_t kMaxQueued = 32;

    LibnotifyNotifier();
    ~LibnotifyNotifier() override;

    bool Show(const std::string& summary, const std::string& body) override;

private:
    struct Shared {
        std::mutex mutex;
        std::condition_variable wake;
        std::condition_variable idle;
        std::deque<std::pair<std::string, std::string>> queue;
        bool stop = false;
        bool busy = false;
    };
    static void Work(std::shared_ptr<Shared> shared);

    std::shared_ptr<Shared> shared_;
    std::thread worker_;
};

} // namespace mirodate
