#pragma once
// The store's tables of its files: every file by key, the readable ones by
// OID, and the OID each UID holds. An OID comes from a hash of the UID; a
// hash taken by another UID moves on to the next free number, and a UID
// keeps its OID for the life of the store even when its file goes away.
// Not locked: the owning store guards it.
#include "store/StoredItem.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace mirodate {

class OidRegistry {
public:
    using Entry = std::shared_ptr<StoredItem>;
    using Snapshot = std::vector<std::shared_ptr<const StoredItem>>;
    using Files = std::unordered_map<std::string, Entry>; // by VdirFileIo::Key()

    // The OID a UID starts from (before collisions are resolved).
    static std::int32_t HashUid(const std::string& uid);

    // Filling at the start: files added, then their OIDs assigned at once.
    // `keepOids`: every entry comes from the index of this very set of
    // files and keeps the OID it had there, which skips the assignment.
    void Reserve(std::size_t files);
    void Add(std::string key, Entry entry);
    void Add(Files::node_type node);
    // Takes a whole table of files at once (an index as it was read), and
    // gives the files back out.
    // `fileOrder`, when it holds every file in folder and file name order,
    // spares AssignAll its sort.
    void Adopt(Files files, std::vector<Entry> fileOrder = {}) {
        files_ = std::move(files);
        fileOrder_ = std::move(fileOrder);
    }
    Files TakeFiles() { return std::move(files_); }
    void AssignAll(bool keepOids = false);

    // A file read again (or new) replaces its entry; one gone is removed.
    void Publish(Entry entry);
    void Unpublish(const std::string& key);

    const Files& GetFiles() const { return files_; }
    bool HasFile(const std::string& key) const { return files_.count(key) != 0; }
    Entry FindFile(const std::string& key) const;
    // The same without a reference of its own, for lookups from several threads.
    const StoredItem* PeekFile(const std::string& key) const {
        auto it = files_.find(key);
        return it == files_.end() ? nullptr : it->second.get();
    }
    Entry FindOid(std::int32_t oid) const;
    // The entry that holds a UID now (null when none does).
    Entry FindUid(const std::string& uid);
    // Whether a UID ever had an OID here (a new item must not reuse it).
    bool KnowsUid(const std::string& uid);
    std::size_t ItemCount() const { return byOid_.size(); }
    // The readable items of a folder in folder and file name order.
    Snapshot GetSnapshot(int folderId);

    // Whether the files changed since the index was last written.
    bool IsDirty() const { return dirty_; }
    void SetDirty(bool dirty) { dirty_ = dirty; }

private:
    void AssignOid(StoredItem& item);
    void Release(const Entry& entry);
    // The UID tables are made from the published entries when first needed:
    // a start that only shows the store never needs them.
    void MakeUidTables();
    // Whether `ordered` (readable entries in file order) holds its OIDs
    // once each; fills byOid_ and the snapshots from it.
    bool TakeStoredOids(const std::vector<const Entry*>& ordered);

    Files files_;
    std::unordered_map<std::int32_t, Entry> byOid_;
    std::unordered_map<std::string, std::int32_t> oidOfUid_;
    std::unordered_map<std::int32_t, std::string> uidOfOid_;
    std::map<int, Snapshot> snapshots_; // per folder, rebuilt after a change
    bool uidTablesMade_ = true;
    std::vector<Entry> fileOrder_; // given with Adopt, used once
    bool dirty_ = false;
};

} // namespace mirodate
