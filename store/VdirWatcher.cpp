#include "store/VdirWatcher.h"

#include "store/OidRegistry.h"
#include "store/VdirFileIo.h"

#include <algorithm>
#include <memory>

namespace mirodate {

VdirWatcher::VdirWatcher(std::mutex& storeMutex, OidRegistry& registry, const VdirFileIo& io)
    : storeMutex_(storeMutex), registry_(registry), io_(io) {}

VdirWatcher::~VdirWatcher() {
    watcher_.Stop();
}

void VdirWatcher::SetSink(PimSource::NotificationSink sink) {
    std::lock_guard lock(sinkMutex_);
    sink_ = std::move(sink);
}

void VdirWatcher::SetOrigins(int folderId, int origins) {
    notifyOrigins_[folderId] = origins;
}

void VdirWatcher::Update(bool storeOpen) {
    bool wanted = false;
    {
        std::lock_guard sinkLock(sinkMutex_);
        std::lock_guard lock(storeMutex_);
        const bool anyOrigin = std::any_of(notifyOrigins_.begin(), notifyOrigins_.end(),
                                           [](const auto& pair) { return pair.second != 0; });
        wanted = sink_ && anyOrigin && storeOpen;
    }
    if (wanted && !watcher_.IsRunning()) {
        std::vector<std::string> directories;
        for (int d = 0; d < VdirFileIo::kDirectoryCount; ++d)
            directories.push_back(io_.DirectoryPath(d));
        watcher_.Start(directories,
                       [this](int directory, const std::string& name, DirectoryWatcher::Change change) {
                           OnFileEvent(directory, name, change);
                       });
    } else if (!wanted && watcher_.IsRunning()) {
        Stop();
    }
}

void VdirWatcher::Stop() {
    watcher_.Stop();
    std::lock_guard lock(storeMutex_);
    pendingLocal_.clear();
}

void VdirWatcher::ExpectLocal(const std::string& key, const PimNotification& notification) {
    if (watcher_.IsRunning())
        pendingLocal_[key] = notification;
}

void VdirWatcher::OnFileEvent(int directory, const std::string& fileName, DirectoryWatcher::Change change) {
    if (!VdirFileIo::IsItemFile(fileName))
        return;
    std::vector<PimNotification> notifications;
    {
        std::lock_guard lock(storeMutex_);
        const std::string key = VdirFileIo::Key(directory, fileName);
        const OidRegistry::Entry current = registry_.FindFile(key);
        auto pending = pendingLocal_.find(key);
        if (pending != pendingLocal_.end()) {
            notifications.push_back(pending->second);
            pendingLocal_.erase(pending);
        } else if (change == DirectoryWatcher::Change::Written) {
            bool exists = false;
            auto fresh = std::make_shared<StoredItem>(io_.ReadFile(directory, fileName, exists));
            if (!exists)
                return;
            const bool known = current != nullptr;
            if (known && current->size == fresh->size && current->mtimeNs == fresh->mtimeNs)
                return;
            const bool wasReadable = known && current->readable;
            const std::int32_t oldOid = wasReadable ? current->record.oid : -1;
            const int oldFolder = known ? current->folder : 0;
            registry_.Publish(fresh);
            if (fresh->readable)
                notifications.push_back({wasReadable ? kMsgItemChangedRemote : kMsgItemCreatedRemote,
                                         fresh->record.oid, fresh->folder});
            else if (wasReadable)
                notifications.push_back({kMsgItemDeletedRemote, oldOid, oldFolder});
        } else if (current) {
            if (current->readable)
                notifications.push_back({kMsgItemDeletedRemote, current->record.oid, current->folder});
            registry_.Unpublish(key);
        }
        std::erase_if(notifications, [this](const PimNotification& n) {
            auto origins = notifyOrigins_.find(n.folder);
            const int wanted = origins == notifyOrigins_.end() ? 0 : origins->second;
            return !(wanted & (n.IsRemote() ? kNotifyRemote : kNotifyLocal));
        });
    }
    Notify(notifications);
}

void VdirWatcher::Notify(const std::vector<PimNotification>& notifications) {
    std::lock_guard lock(sinkMutex_);
    if (!sink_)
        return;
    for (const auto& notification : notifications)
        sink_(notification);
}

} // namespace mirodate
