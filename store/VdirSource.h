#pragma once
// The PIM source on the user's own files: a vdir root with the folders
// "calendar", "tasks" and "contacts", one item per .ics or .vcf file, as
// khal, todoman and vdirsyncer keep them. Items are found by a stable OID
// derived from their UID; writes go through a temporary file and a rename
// and never replace a file that changed since it was read; changes on disk
// are reported as local (ours) or remote (anyone else's). This class is the
// face; VdirFileIo reads and writes the files, OidRegistry keeps the tables
// of files and OIDs, VdirWatcher reports changes on disk.
#include "data/PimSource.h"
#include "store/ItemFileLimits.h"
#include "store/OidRegistry.h"
#include "store/StoredItem.h"
#include "store/VdirFileIo.h"
#include "store/VdirWatcher.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace mirodate {

class IcsItem;

class VdirSource : public PimSource {
public:
    // Larger files are skipped with a warning (see ItemFileLimits).
    static constexpr std::int64_t kMaxFileBytes = ItemFileLimits::kMaxFileBytes;

    struct Options {
        bool createIfMissing = false; // make the root and its folders
        bool useIndex = true;         // the derived index under the cache dir
    };

    explicit VdirSource(std::string root);
    VdirSource(std::string root, Options options);
    ~VdirSource() override;

    // The default root: $XDG_DATA_HOME/mirodate.
    static std::string DefaultRoot();
    // The OID a UID starts from (before collisions are resolved).
    static std::int32_t HashUid(const std::string& uid);

    bool Logon() override;
    std::unique_ptr<PimFolder> GetDefaultFolder(int folderId) override;
    int GetItemKind(std::int32_t oid) override;
    bool GetItemFromOid(std::int32_t oid, PimRecord& item) override;
    SaveResult Save(PimRecord& item, int folderId) override;
    SaveResult SaveOccurrence(std::int32_t oid, double originalStart, const PimRecord* occurrence) override;
    bool Delete(std::int32_t oid) override;
    std::int32_t Copy(std::int32_t oid) override;
    void SetNotificationSink(NotificationSink sink) override;
    bool IsSynchronizing() override;
    std::vector<std::u16string> GetCategoryNames() override;
    int GetSkippedCount() override;
    StoreSummary Summarize() override;
    std::string ItemFilePath(std::int32_t oid) override { return FilePath(oid); }
    bool ExportItem(std::int32_t oid, std::string& text) override;
    std::vector<Reminder> GetReminders(double from, double before) override;
    SaveResult DismissReminder(const Reminder& reminder, double now) override;
    SaveResult SnoozeReminder(const Reminder& reminder, double now, double until) override;

    const std::string& Root() const { return io_.Root(); }

    // An item brought in from a calendar file elsewhere (see IcsImport).
    struct ImportFile {
        int folder = 0; // kFolderCalendar or kFolderTasks
        std::string uid;
        std::string text;
    };
    // Writes imported items: each over the file that holds its UID, or as a
    // new file named after it. A batch's data reaches the disk with one sync
    // before any of its files is renamed into place, so an interrupted
    // import leaves whole files or none. Returns a result per item.
    std::vector<SaveResult> ImportFiles(const std::vector<ImportFile>& files);
    bool HasUid(const std::string& uid);
    std::string FilePath(std::int32_t oid);
    // Writes the index now if the files changed since it was written (the
    // store does so when it closes, too).
    void SaveIndexIfChanged();
    int GetItemCount();

    // Used by the folders and collections.
    using Snapshot = OidRegistry::Snapshot;
    Snapshot GetSnapshot(int folderId);
    std::shared_ptr<const IcsItem> GetParsed(const std::shared_ptr<const StoredItem>& item);
    // The expansion kept for a series (null: none).
    std::shared_ptr<const StoredExpansion> GetExpansion(const std::shared_ptr<const StoredItem>& item);
    // Keeps a series' whole expansion over [from, before) for later queries
    // and the index when the window holds `now` (a local DATE) and is about a
    // month long, the window every start asks for, unless the entry was
    // replaced meanwhile.
    void KeepExpansion(const std::shared_ptr<const StoredItem>& item, double from, double before,
                       std::vector<PimRecord> occurrences, double now);
    // Parses those of `items` not parsed yet, on every core, so that the
    // GetParsed calls that follow find them done.
    void ParseAhead(const std::vector<std::shared_ptr<const StoredItem>>& items);
    void EnableNotifications(int folderId, int origins);

private:
    using Entry = OidRegistry::Entry;

    std::string DirectoryPath(int directory) const { return io_.DirectoryPath(directory); }
    static std::string Key(int directory, const std::string& fileName) {
        return VdirFileIo::Key(directory, fileName);
    }
    // Reads an entry's file again after someone else changed it.
    void Reread(const Entry& entry);
    void SaveIndexLocked();
    std::shared_ptr<const IcsItem> GetParsedLocked(const std::shared_ptr<const StoredItem>& item);
    void ReadAlarmsLocked(StoredItem& item);
    static bool MayRemindIn(const StoredItem& item, double from, double before);
    // Rewrites an item's file through `change` (existing text to new text),
    // with the same checks as Save.
    SaveResult RewriteItem(std::int32_t oid,
                           const std::function<bool(std::string_view, std::string&)>& change);
    void UpdateWatcher();

    VdirFileIo io_;
    Options options_;
    std::mutex mutex_; // guards registry_ and the watcher's expectations
    OidRegistry registry_;
    VdirWatcher watcher_{mutex_, registry_, io_};
    bool loggedOn_ = false;
};

} // namespace mirodate
