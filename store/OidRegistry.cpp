#include "store/OidRegistry.h"

#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "store/VdirFileIo.h"

#include <algorithm>
#include <string_view>

namespace mirodate {

namespace {

constexpr std::int32_t kMaxOid = 0x7FFFFFFF;

bool InFileOrder(const StoredItem& a, const StoredItem& b) {
    return a.directory != b.directory ? a.directory < b.directory : a.fileName < b.fileName;
}

} // namespace

std::int32_t OidRegistry::HashUid(const std::string& uid) {
    std::uint32_t hash = 2166136261u;
    for (unsigned char c : uid)
        hash = (hash ^ c) * 16777619u;
    const auto oid = static_cast<std::int32_t>(hash & static_cast<std::uint32_t>(kMaxOid));
    return oid == 0 ? 1 : oid;
}

void OidRegistry::Reserve(std::size_t files) {
    files_.reserve(files);
}

void OidRegistry::Add(std::string key, Entry entry) {
    files_[std::move(key)] = std::move(entry);
}

void OidRegistry::Add(Files::node_type node) {
    files_.insert(std::move(node));
}

bool OidRegistry::TakeStoredOids(const std::vector<const Entry*>& ordered) {
    byOid_.reserve(ordered.size());
    for (const Entry* entry : ordered) {
        const Entry& item = *entry;
        if (!byOid_.emplace(item->record.oid, item).second) {
            byOid_.clear();
            snapshots_.clear();
            return false;
        }
        snapshots_[item->folder].push_back(item);
    }
    uidTablesMade_ = false;
    return true;
}

void OidRegistry::MakeUidTables() {
    if (uidTablesMade_)
        return;
    uidTablesMade_ = true;
    oidOfUid_.reserve(byOid_.size());
    uidOfOid_.reserve(byOid_.size());
    for (const auto& [oid, item] : byOid_) {
        oidOfUid_.emplace(item->uid, oid);
        uidOfOid_.emplace(oid, item->uid);
    }
}

void OidRegistry::AssignAll(bool keepOids) {
    // OIDs handed out before (a second filling) stay with their UIDs.
    MakeUidTables();
    keepOids = keepOids && oidOfUid_.empty();
    byOid_.clear();
    snapshots_.clear();
    std::vector<const Entry*> ordered;
    ordered.reserve(files_.size());
    auto inOrder = [](const Entry* a, const Entry* b) { return InFileOrder(**a, **b); };
    if (fileOrder_.size() == files_.size()) {
        for (const Entry& item : fileOrder_)
            if (item->readable)
                ordered.push_back(&item);
    }
    if (ordered.empty() || !std::is_sorted(ordered.begin(), ordered.end(), inOrder)) {
        ordered.clear();
        for (auto& [key, item] : files_)
            if (item->readable)
                ordered.push_back(&item);
        std::sort(ordered.begin(), ordered.end(), inOrder);
    }
    if (keepOids && TakeStoredOids(ordered)) {
        fileOrder_.clear();
        return;
    }
    // The first file of a UID (in folder and name order) holds it; later
    // files with the same UID are skipped.
    std::unordered_map<std::string_view, StoredItem*> byUid;
    byUid.reserve(ordered.size());
    std::vector<std::pair<std::int32_t, StoredItem*>> hashes;
    hashes.reserve(ordered.size());
    for (const Entry* entry : ordered) {
        StoredItem* item = entry->get();
        auto [it, inserted] = byUid.emplace(item->uid, item);
        if (!inserted) {
            item->problem = "UID " + item->uid + " is used by " + it->second->fileName;
            Log::Warning("store: skipped %s/%s: %s", VdirFileIo::kFolderNames[item->directory],
                         PrintableText(item->fileName).c_str(), PrintableText(item->problem).c_str());
            item->readable = false;
            continue;
        }
        hashes.emplace_back(HashUid(item->uid), item);
    }
    // In (hash, UID) order, so that collisions resolve the same way on every
    // start whatever order the folder lists its files in.
    std::sort(hashes.begin(), hashes.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second->uid < b.second->uid;
    });
    oidOfUid_.reserve(hashes.size());
    uidOfOid_.reserve(hashes.size());
    for (auto& [hash, item] : hashes)
        AssignOid(*item);
    // The folders' snapshots come from the same order, so that the first
    // query sorts nothing.
    byOid_.reserve(hashes.size());
    for (const Entry* entry : ordered) {
        const Entry& item = *entry;
        if (!item->readable)
            continue;
        byOid_[item->record.oid] = item;
        snapshots_[item->folder].push_back(item);
    }
    fileOrder_.clear();
}

void OidRegistry::AssignOid(StoredItem& item) {
    MakeUidTables();
    auto known = oidOfUid_.find(item.uid);
    if (known != oidOfUid_.end()) {
        item.record.oid = known->second;
        return;
    }
    // A hash taken by another UID moves on to the next free number.
    std::int32_t oid = HashUid(item.uid);
    while (uidOfOid_.count(oid))
        oid = oid == kMaxOid ? 1 : oid + 1;
    oidOfUid_[item.uid] = oid;
    uidOfOid_[oid] = item.uid;
    item.record.oid = oid;
}

void OidRegistry::Release(const Entry& entry) {
    snapshots_.erase(entry->folder);
    if (!entry->readable)
        return;
    auto holder = byOid_.find(entry->record.oid);
    if (holder != byOid_.end() && holder->second == entry)
        byOid_.erase(holder);
}

void OidRegistry::Publish(Entry entry) {
    MakeUidTables();
    const std::string key = VdirFileIo::Key(entry->directory, entry->fileName);
    auto old = files_.find(key);
    if (old != files_.end())
        Release(old->second);
    if (entry->readable) {
        // A second file with a UID already held elsewhere is skipped.
        auto known = oidOfUid_.find(entry->uid);
        if (known != oidOfUid_.end()) {
            auto holder = byOid_.find(known->second);
            if (holder != byOid_.end() &&
                VdirFileIo::Key(holder->second->directory, holder->second->fileName) != key) {
                entry->problem = "UID " + entry->uid + " is used by " + holder->second->fileName;
                Log::Warning("store: skipped %s: %s", PrintableText(entry->fileName).c_str(),
                             PrintableText(entry->problem).c_str());
                entry->readable = false;
            }
        }
    }
    if (entry->readable) {
        AssignOid(*entry);
        byOid_[entry->record.oid] = entry;
    }
    snapshots_.erase(entry->folder);
    files_[key] = std::move(entry);
    dirty_ = true;
}

void OidRegistry::Unpublish(const std::string& key) {
    MakeUidTables();
    auto it = files_.find(key);
    if (it == files_.end())
        return;
    Release(it->second);
    files_.erase(it);
    dirty_ = true;
}

OidRegistry::Entry OidRegistry::FindFile(const std::string& key) const {
    auto it = files_.find(key);
    return it == files_.end() ? nullptr : it->second;
}

OidRegistry::Entry OidRegistry::FindOid(std::int32_t oid) const {
    auto it = byOid_.find(oid);
    return it == byOid_.end() ? nullptr : it->second;
}

bool OidRegistry::KnowsUid(const std::string& uid) {
    MakeUidTables();
    return oidOfUid_.count(uid) != 0;
}

OidRegistry::Entry OidRegistry::FindUid(const std::string& uid) {
    MakeUidTables();
    auto known = oidOfUid_.find(uid);
    return known == oidOfUid_.end() ? nullptr : FindOid(known->second);
}

OidRegistry::Snapshot OidRegistry::GetSnapshot(int folderId) {
    auto it = snapshots_.find(folderId);
    if (it != snapshots_.end())
        return it->second;
    Snapshot snapshot;
    for (const auto& [key, item] : files_)
        if (item->readable && item->folder == folderId)
            snapshot.push_back(item);
    // Folder and file name order, the same on every run.
    std::sort(snapshot.begin(), snapshot.end(),
              [](const auto& a, const auto& b) { return InFileOrder(*a, *b); });
    snapshots_[folderId] = snapshot;
    return snapshot;
}

} // namespace mirodate
