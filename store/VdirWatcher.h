#pragma once
// The change watcher of the vdir store: watches its directories while
// anyone wants notifications, reads a file that changed into the store's
// tables, and reports each change as local (one of our own writes, expected
// beforehand) or remote (anyone else's), filtered by what each folder asked for.
#include "data/PimSource.h"
#include "platform/DirectoryWatcher.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace mirodate {

class OidRegistry;
class VdirFileIo;

class VdirWatcher {
public:
    // `storeMutex` guards `registry` and this watcher's expectations and
    // wishes; the watcher's thread takes it for each event.
    VdirWatcher(std::mutex& storeMutex, OidRegistry& registry, const VdirFileIo& io);
    ~VdirWatcher();
    VdirWatcher(const VdirWatcher&) = delete;
    VdirWatcher& operator=(const VdirWatcher&) = delete;

    void SetSink(PimSource::NotificationSink sink);
    // Which origins (kNotify flags) a folder wants; store mutex held.
    void SetOrigins(int folderId, int origins);
    // Starts watching when a sink and a wish are there (and the store is
    // open), stops when not.
    void Update(bool storeOpen);
    void Stop();
    bool IsRunning() const { return watcher_.IsRunning(); }
    // One of our own changes to the file of `key`, reported when the watcher
    // sees it; store mutex held. Nothing is expected while not watching.
    void ExpectLocal(const std::string& key, const PimNotification& notification);

private:
    void OnFileEvent(int directory, const std::string& fileName, DirectoryWatcher::Change change);
    void Notify(const std::vector<PimNotification>& notifications);

    std::mutex& storeMutex_;
    OidRegistry& registry_;
    const VdirFileIo& io_;
    std::map<std::string, PimNotification> pendingLocal_; // our own writes, by key
    std::map<int, int> notifyOrigins_;                    // folder -> kNotify flags
    PimSource::NotificationSink sink_;
    std::mutex sinkMutex_;
    DirectoryWatcher watcher_;
};

} // namespace mirodate
