#include "platform/DirectoryWatcher.h"

#include "platform/Log.h"

#include <algorithm>
#include <cstring>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace mirodate {

namespace {
constexpr std::uint32_t kWatchMask = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
constexpr std::size_t kEventBufferSize = 64 * 1024;
} // namespace

DirectoryWatcher::~DirectoryWatcher() {
    Stop();
}

bool DirectoryWatcher::Start(const std::vector<std::string>& directories, Callback callback) {
    Stop();
    inotifyFd_ = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (inotifyFd_ < 0) {
        Log::Warning("watcher: inotify unavailable: %s", std::strerror(errno));
        return false;
    }
    bool any = false;
    for (const auto& directory : directories) {
        const int wd = inotify_add_watch(inotifyFd_, directory.c_str(), kWatchMask);
        watches_.push_back(wd);
        any |= wd >= 0;
    }
    wakeFd_ = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (!any || wakeFd_ < 0) {
        Stop();
        return false;
    }
    callback_ = std::move(callback);
    thread_ = std::thread([this] { Run(); });
    return true;
}

void DirectoryWatcher::Stop() {
    if (thread_.joinable()) {
        const std::uint64_t one = 1;
        [[maybe_unused]] ssize_t written = write(wakeFd_, &one, sizeof one);
        thread_.join();
    }
    if (inotifyFd_ >= 0)
        close(inotifyFd_);
    if (wakeFd_ >= 0)
        close(wakeFd_);
    inotifyFd_ = wakeFd_ = -1;
    watches_.clear();
    callback_ = nullptr;
}

void DirectoryWatcher::Run() {
    alignas(inotify_event) char buffer[kEventBufferSize];
    for (;;) {
        pollfd fds[2] = {{inotifyFd_, POLLIN, 0}, {wakeFd_, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            return;
        }
        if (fds[1].revents)
            return;
        const ssize_t length = read(inotifyFd_, buffer, sizeof buffer);
        if (length <= 0)
            continue;
        for (ssize_t offset = 0; offset < length;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
            offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            if (event->len == 0 || (event->mask & IN_ISDIR))
                continue;
            const auto it = std::find(watches_.begin(), watches_.end(), event->wd);
            if (it == watches_.end())
                continue;
            const Change change =
                (event->mask & (IN_DELETE | IN_MOVED_FROM)) ? Change::Removed : Change::Written;
            callback_(static_cast<int>(it - watches_.begin()), event->name, change);
        }
    }
}

} // namespace mirodate
