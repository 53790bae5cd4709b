#include "platform/LibnotifyNotifier.h"

#include "platform/Log.h"

#include <chrono>
#include <cstdlib>
#include <libnotify/notify.h>
#include <unistd.h>

namespace mirodate {

namespace {
constexpr const char* kApplicationName = "Mirodate";
constexpr const char* kIcon = "x-office-calendar";
constexpr const char* kCategory = "x-mirodate.reminder";

void Send(const std::string& summary, const std::string& body) {
    NotifyNotification* note = notify_notification_new(summary.c_str(), body.c_str(), kIcon);
    if (!note)
        return;
    notify_notification_set_timeout(note, LibnotifyNotifier::kExpireMs);
    notify_notification_set_category(note, kCategory);
    notify_notification_set_urgency(note, NOTIFY_URGENCY_NORMAL);
    GError* error = nullptr;
    if (!notify_notification_show(note, &error)) {
        Log::Info("notification \"%s\" not shown: %s", summary.c_str(), error ? error->message : "no server");
    }
    if (error)
        g_error_free(error);
    g_object_unref(G_OBJECT(note));
}
} // namespace

LibnotifyNotifier::LibnotifyNotifier() : shared_(std::make_shared<Shared>()) {}

LibnotifyNotifier::~LibnotifyNotifier() {
    if (!worker_.joinable())
        return;
    std::unique_lock lock(shared_->mutex);
    shared_->stop = true;
    shared_->wake.notify_all();
    // A call that hangs is not waited for: the worker keeps its own state.
    const bool done = shared_->idle.wait_for(lock, std::chrono::milliseconds(kCloseWaitMs),
                                             [this] { return !shared_->busy && shared_->queue.empty(); });
    lock.unlock();
    if (done) {
        worker_.join();
    } else {
        worker_.detach();
    }
}

bool LibnotifyNotifier::Show(const std::string& summary, const std::string& body) {
    // Without a session bus the library would try to start one.
    const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const bool userBus = runtime && *runtime && access((std::string(runtime) + "/bus").c_str(), F_OK) == 0;
    if ((!address || !*address) && !userBus) {
        Log::Info("no session bus: notification \"%s\" not shown", summary.c_str());
        return false;
    }
    std::lock_guard lock(shared_->mutex);
    if (shared_->queue.size() >= kMaxQueued) {
        Log::Warning("too many notifications waiting; \"%s\" dropped", summary.c_str());
        return false;
    }
    shared_->queue.emplace_back(summary, body);
    if (!worker_.joinable())
        worker_ = std::thread(Work, shared_);
    shared_->wake.notify_all();
    return true;
}

void LibnotifyNotifier::Work(std::shared_ptr<Shared> shared) {
    const bool ready = notify_is_initted() || notify_init(kApplicationName);
    std::unique_lock lock(shared->mutex);
    for (;;) {
        shared->wake.wait(lock, [&] { return shared->stop || !shared->queue.empty(); });
        if (shared->queue.empty())
            break;
        auto [summary, body] = std::move(shared->queue.front());
        shared->queue.pop_front();
        shared->busy = true;
        lock.unlock();
        if (ready)
            Send(summary, body);
        lock.lock();
        shared->busy = false;
        if (shared->queue.empty())
            shared->idle.notify_all();
        if (shared->stop && shared->queue.empty())
            break;
    }
    shared->idle.notify_all();
}

} // namespace mirodate
