#pragma once
// Reports files written into or removed from a few directories, on a
// background thread (inotify). A file counts as written when it is closed
// after writing or renamed into the directory, as removed when it is deleted
// or renamed away.
#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace mirodate {

class DirectoryWatcher {
public:
    enum class Change { Written, Removed };
    // directoryIndex is the position in the list given to Start.
    using Callback = std::function<void(int directoryIndex, const std::string& fileName, Change change)>;

    DirectoryWatcher() = default;
    ~DirectoryWatcher();
    DirectoryWatcher(const DirectoryWatcher&) = delete;
    DirectoryWatcher& operator=(const DirectoryWatcher&) = delete;

    // False when no directory could be watched.
    bool Start(const std::vector<std::string>& directories, Callback callback);
    void Stop();
    bool IsRunning() const { return thread_.joinable(); }

private:
    void Run();

    int inotifyFd_ = -1;
    int wakeFd_ = -1;
    std::vector<int> watches_; // watch descriptor per directory (-1 when not watched)
    Callback callback_;
    std::thread thread_;
};

} // namespace mirodate
