#include "store/VdirSource.h"

#include "platform/Log.h"
#include "platform/ParallelFor.h"
#include "platform/Paths.h"
#include "platform/TextUtil.h"
#include "store/IcsAlarms.h"
#include "store/IcsExport.h"
#include "store/IcsItem.h"
#include "store/IcsWriter.h"
#include "store/ItemFileLimits.h"
#include "store/StoreIndex.h"
#include "store/SyncState.h"
#include "store/VdirFolder.h"
#include "store/VdirOpening.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

namespace {

// The longest window and the most occurrences of a series kept with the index
// (a month's view with its longest items, a series several times a day).
constexpr double kMaxKeptDays = 62.0;
constexpr std::size_t kMaxKeptOccurrences = 250;
// Series files parsed per thread below which another thread does not pay.
constexpr std::size_t kMinParsesPerSlice = 16;

int DirectoryOfFolder(int folderId) {
    if (folderId == kFolderTasks)
        return 1;
    if (folderId == kFolderContacts)
        return 2;
    return 0;
}

} // namespace

VdirSource::VdirSource(std::string root) : VdirSource(std::move(root), Options{}) {}

VdirSource::VdirSource(std::string root, Options options) : io_(std::move(root)), options_(options) {}

VdirSource::~VdirSource() {
    watcher_.Stop();
    std::lock_guard lock(mutex_);
    if (registry_.IsDirty())
        SaveIndexLocked();
}

std::string VdirSource::DefaultRoot() {
    return Paths::DataDir();
}

std::int32_t VdirSource::HashUid(const std::string& uid) {
    return OidRegistry::HashUid(uid);
}

bool VdirSource::Logon() {
    std::lock_guard lock(mutex_);
    if (loggedOn_)
        return true;
    const std::string& root = io_.Root();
    struct stat st {};
    if (stat(root.c_str(), &st) != 0) {
        if (!options_.createIfMissing || !Paths::MakeDirs(root)) {
            Log::Error("store: cannot open %s: %s", root.c_str(), std::strerror(errno));
            return false;
        }
    } else if (!S_ISDIR(st.st_mode) || access(root.c_str(), R_OK | X_OK) != 0) {
        Log::Error("store: %s is not a readable folder", root.c_str());
        return false;
    }
    const auto started = std::chrono::steady_clock::now();
    VdirOpening opening(io_, options_.createIfMissing, options_.useIndex);
    registry_ = opening.Open();
    registry_.SetDirty(opening.Dirty());
    if (opening.Dirty() && options_.useIndex)
        SaveIndexLocked();
    loggedOn_ = true;
    Log::Info("store: %zu files (%zu as the index has them, %zu read) opened in %.1f ms", opening.FileCount(),
              opening.ReusedCount(), opening.ReadCount(),
              std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started).count());
    return true;
}

void VdirSource::SaveIndexLocked() {
    if (!options_.useIndex)
        return;
    std::vector<const StoredItem*> items;
    items.reserve(registry_.GetFiles().size());
    for (const auto& [key, item] : registry_.GetFiles())
        items.push_back(item.get());
    if (StoreIndex::Save(StoreIndex::PathFor(io_.Root()), io_.Root(), StoreIndex::ZoneSignature(),
                         std::move(items)))
        registry_.SetDirty(false);
}

void VdirSource::SaveIndexIfChanged() {
    std::lock_guard lock(mutex_);
    if (registry_.IsDirty())
        SaveIndexLocked();
}

void VdirSource::Reread(const Entry& entry) {
    bool exists = false;
    auto fresh = std::make_shared<StoredItem>(io_.ReadFile(entry->directory, entry->fileName, exists));
    if (exists)
        registry_.Publish(fresh);
    else
        registry_.Unpublish(Key(entry->directory, entry->fileName));
}

std::unique_ptr<PimFolder> VdirSource::GetDefaultFolder(int folderId) {
    if (folderId != kFolderCalendar && folderId != kFolderTasks && folderId != kFolderContacts)
        return nullptr;
    return std::make_unique<VdirFolder>(*this, folderId);
}

VdirSource::Snapshot VdirSource::GetSnapshot(int folderId) {
    std::lock_guard lock(mutex_);
    return registry_.GetSnapshot(folderId);
}

std::shared_ptr<const IcsItem> VdirSource::GetParsed(const std::shared_ptr<const StoredItem>& item) {
    std::lock_guard lock(mutex_);
    return GetParsedLocked(item);
}

std::shared_ptr<const StoredExpansion>
VdirSource::GetExpansion(const std::shared_ptr<const StoredItem>& item) {
    std::lock_guard lock(mutex_);
    return item->expansion;
}

void VdirSource::KeepExpansion(const std::shared_ptr<const StoredItem>& item, double from, double before,
                               std::vector<PimRecord> occurrences, double now) {
    std::lock_guard lock(mutex_);
    const Entry current = registry_.FindFile(Key(item->directory, item->fileName));
    if (current != item)
        return;
    // Only a month's window around today is worth its room in the index: a
    // search a year ahead, or a series every ten minutes, is expanded anew.
    if (!(from <= now && now < before) || before - from > kMaxKeptDays ||
        occurrences.size() > kMaxKeptOccurrences)
        return;
    // A kept window that holds today gives way only to one that covers it,
    // so that a day or week view does not undo the month's.
    if (const auto& kept = current->expansion;
        kept && kept->from <= now && now < kept->before && !(from <= kept->from && kept->before <= before))
        return;
    auto expansion = std::make_shared<StoredExpansion>();
    expansion->from = from;
    expansion->before = before;
    expansion->occurrences = std::move(occurrences);
    current->expansion = std::move(expansion);
    registry_.SetDirty(true);
}

void VdirSource::ParseAhead(const std::vector<std::shared_ptr<const StoredItem>>& items) {
    std::vector<std::shared_ptr<const StoredItem>> wanted;
    {
        std::lock_guard lock(mutex_);
        for (const auto& item : items)
            if (!item->parsed)
                wanted.push_back(item);
    }
    if (wanted.size() < 2 * kMinParsesPerSlice)
        return; // GetParsed reads them one by one
    // Read and parsed outside the lock, so that the views' queries on other
    // threads go on meanwhile.
    std::vector<std::shared_ptr<const IcsItem>> parsed(wanted.size());
    ParallelFor(wanted.size(), kMinParsesPerSlice, [&](std::size_t begin, std::size_t end) {
        std::string text, problem;
        for (std::size_t i = begin; i < end; ++i) {
            auto item = std::make_shared<IcsItem>();
            if (io_.ReadWholeFile(io_.FilePath(wanted[i]->directory, wanted[i]->fileName), text) &&
                item->Parse(text, problem))
                parsed[i] = std::move(item);
        }
    });
    std::lock_guard lock(mutex_);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        // Kept only for the entry still published: a file changed meanwhile
        // is read again when asked for.
        const Entry current = registry_.FindFile(Key(wanted[i]->directory, wanted[i]->fileName));
        if (parsed[i] && current == wanted[i] && !current->parsed)
            current->parsed = parsed[i];
    }
}

std::shared_ptr<const IcsItem> VdirSource::GetParsedLocked(const std::shared_ptr<const StoredItem>& item) {
    if (item->parsed)
        return item->parsed;
    const Entry current = registry_.FindFile(Key(item->directory, item->fileName));
    std::string text;
    auto parsed = std::make_shared<IcsItem>();
    std::string problem;
    if (!io_.ReadWholeFile(DirectoryPath(item->directory) + "/" + item->fileName, text) ||
        !parsed->Parse(text, problem))
        return nullptr;
    if (current == item)
        current->parsed = parsed;
    return parsed;
}

int VdirSource::GetItemKind(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    const Entry entry = registry_.FindOid(oid);
    if (!entry)
        return 0;
    switch (entry->folder) {
    case kFolderCalendar:
        return kItemAppointment;
    case kFolderTasks:
        return kItemTask;
    case kFolderContacts:
        return kItemContact;
    default:
        return 0;
    }
}

bool VdirSource::GetItemFromOid(std::int32_t oid, PimRecord& item) {
    std::lock_guard lock(mutex_);
    const Entry entry = registry_.FindOid(oid);
    if (!entry)
        return false;
    item = entry->record;
    return true;
}

std::string VdirSource::FilePath(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    const Entry entry = registry_.FindOid(oid);
    return entry ? io_.FilePath(entry->directory, entry->fileName) : std::string();
}

int VdirSource::GetItemCount() {
    std::lock_guard lock(mutex_);
    return static_cast<int>(registry_.ItemCount());
}

SaveResult VdirSource::Save(PimRecord& record, int folderId) {
    std::unique_lock lock(mutex_);
    if (const Entry entry = record.oid >= 0 ? registry_.FindOid(record.oid) : nullptr) {
        const std::string key = Key(entry->directory, entry->fileName);
        if (!io_.StampMatches(*entry)) {
            // Someone else changed the file: keep theirs and read it again.
            Reread(entry);
            return SaveResult::ChangedOnDisk;
        }
        if (entry->folder == kFolderContacts)
            return SaveResult::Failed;
        std::string text, out;
        if (!io_.ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) ||
            !IcsWriter::Update(text, record, out))
            return SaveResult::Failed;
        if (!io_.WriteAtomically(entry->directory, entry->fileName, out))
            return SaveResult::Failed;
        bool exists = false;
        registry_.Publish(
            std::make_shared<StoredItem>(io_.ReadFile(entry->directory, entry->fileName, exists)));
        watcher_.ExpectLocal(key, {kMsgItemChangedLocal, record.oid, entry->folder});
        return SaveResult::Saved;
    }
    if (record.itemKind == 0)
        record.itemKind = folderId == kFolderTasks      ? kItemTask
                          : folderId == kFolderContacts ? kItemContact
                                                        : kItemAppointment;
    const int directory = DirectoryOfFolder(record.itemKind == kItemTask      ? kFolderTasks
                                            : record.itemKind == kItemContact ? kFolderContacts
                                                                              : kFolderCalendar);
    const std::string uid =
        record.uid.empty() || registry_.KnowsUid(record.uid) ? IcsWriter::MakeUid() : record.uid;
    const std::string fileName = uid + (record.itemKind == kItemContact ? ".vcf" : ".ics");
    const std::string text = record.itemKind == kItemContact ? IcsWriter::NewContact(record, uid)
                                                             : IcsWriter::NewItem(record, uid);
    if (!io_.WriteAtomically(directory, fileName, text))
        return SaveResult::Failed;
    bool exists = false;
    auto entry = std::make_shared<StoredItem>(io_.ReadFile(directory, fileName, exists));
    if (!entry->readable)
        return SaveResult::Failed;
    registry_.Publish(entry);
    record.oid = entry->record.oid;
    record.uid = uid;
    watcher_.ExpectLocal(Key(directory, fileName), {kMsgItemCreatedLocal, record.oid, entry->folder});
    return SaveResult::Saved;
}

SaveResult VdirSource::SaveOccurrence(std::int32_t oid, double originalStart, const PimRecord* occurrence) {
    std::lock_guard lock(mutex_);
    const Entry entry = registry_.FindOid(oid);
    if (!entry)
        return SaveResult::NotFound;
    const std::string key = Key(entry->directory, entry->fileName);
    if (!io_.StampMatches(*entry)) {
        Reread(entry);
        return SaveResult::ChangedOnDisk;
    }
    std::string text, out;
    if (!io_.ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) ||
        !IcsWriter::AddException(text, originalStart, occurrence, out))
        return SaveResult::Failed;
    if (!io_.WriteAtomically(entry->directory, entry->fileName, out))
        return SaveResult::Failed;
    bool exists = false;
    registry_.Publish(std::make_shared<StoredItem>(io_.ReadFile(entry->directory, entry->fileName, exists)));
    watcher_.ExpectLocal(key, {kMsgItemChangedLocal, oid, entry->folder});
    return SaveResult::Saved;
}

bool VdirSource::Delete(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    const Entry entry = registry_.FindOid(oid);
    if (!entry)
        return false;
    const std::string key = Key(entry->directory, entry->fileName);
    if (unlink((DirectoryPath(entry->directory) + "/" + entry->fileName).c_str()) != 0 && errno != ENOENT)
        return false;
    watcher_.ExpectLocal(key, {kMsgItemDeletedLocal, oid, entry->folder});
    registry_.Unpublish(key);
    return true;
}

std::int32_t VdirSource::Copy(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    const Entry entry = registry_.FindOid(oid);
    if (!entry || entry->folder == kFolderContacts)
        return -1;
    std::string text, out;
    const std::string uid = IcsWriter::MakeUid();
    if (!io_.ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) ||
        !IcsWriter::ReplaceUid(text, uid, out))
        return -1;
    const std::string fileName = uid + ".ics";
    if (!io_.WriteAtomically(entry->directory, fileName, out))
        return -1;
    bool exists = false;
    auto copy = std::make_shared<StoredItem>(io_.ReadFile(entry->directory, fileName, exists));
    if (!copy->readable)
        return -1;
    registry_.Publish(copy);
    watcher_.ExpectLocal(Key(entry->directory, fileName),
                         {kMsgItemCreatedLocal, copy->record.oid, copy->folder});
    return copy->record.oid;
}

void VdirSource::SetNotificationSink(NotificationSink sink) {
    watcher_.SetSink(std::move(sink));
    UpdateWatcher();
}

void VdirSource::EnableNotifications(int folderId, int origins) {
    {
        std::lock_guard lock(mutex_);
        watcher_.SetOrigins(folderId, origins);
    }
    UpdateWatcher();
}

void VdirSource::UpdateWatcher() {
    bool open = false;
    {
        std::lock_guard lock(mutex_);
        open = loggedOn_;
    }
    watcher_.Update(open);
}

bool VdirSource::IsSynchronizing() {
    return SyncState::IsSynchronizerRunning();
}

std::vector<std::u16string> VdirSource::GetCategoryNames() {
    std::lock_guard lock(mutex_);
    std::set<std::u16string> names;
    for (const auto& [key, item] : registry_.GetFiles())
        if (item->readable && !item->record.categories.empty())
            names.insert(item->record.categories);
    return {names.begin(), names.end()};
}

int VdirSource::GetSkippedCount() {
    std::lock_guard lock(mutex_);
    return static_cast<int>(std::count_if(registry_.GetFiles().begin(), registry_.GetFiles().end(),
                                          [](const auto& pair) { return !pair.second->readable; }));
}

StoreSummary VdirSource::Summarize() {
    StoreSummary summary;
    summary.location = io_.Root();
    std::lock_guard lock(mutex_);
    for (const auto& [key, item] : registry_.GetFiles()) {
        if (!item->readable) {
            summary.skipped.push_back({DirectoryPath(item->directory) + "/" + item->fileName, item->problem});
            continue;
        }
        if (item->folder == kFolderCalendar)
            ++summary.appointments;
        else if (item->folder == kFolderTasks)
            ++summary.tasks;
        else if (item->folder == kFolderContacts)
            ++summary.contacts;
    }
    std::sort(summary.skipped.begin(), summary.skipped.end());
    return summary;
}

bool VdirSource::ExportItem(std::int32_t oid, std::string& text) {
    const std::string path = FilePath(oid);
    std::string content;
    if (path.empty() || !io_.ReadWholeFile(path, content))
        return false;
    if (GetItemKind(oid) == kItemContact) {
        text = std::move(content);
        return true;
    }
    return IcsExport::Standalone(content, text);
}

} // namespace mirodate

namespace mirodate {

bool VdirSource::MayRemindIn(const StoredItem& item, double from, double before) {
    // No alarm fires further from its item than IcsAlarms reads, so that an
    // item far from the window needs no reading of its file. Open tasks are
    // always read: a snoozed reminder of one long overdue comes back now.
    const PimRecord& record = item.record;
    if (item.folder == kFolderTasks)
        return !record.complete;
    const double margin = IcsAlarms::kMaxOffsetDays;
    const double start = record.start;
    if (start > before + margin)
        return false;
    if (item.series)
        return item.seriesEnd == kNoDate || item.seriesEnd >= from - margin;
    return start + item.longest >= from - margin && record.end >= from - margin;
}

void VdirSource::ReadAlarmsLocked(StoredItem& item) {
    item.alarmsRead = true;
    std::string text;
    if (!io_.ReadWholeFile(DirectoryPath(item.directory) + "/" + item.fileName, text) ||
        !IcsAlarms::MayHaveAlarms(text))
        return;
    auto alarms = std::make_shared<IcsAlarms>();
    if (alarms->Parse(text))
        item.alarms = std::move(alarms);
}

std::vector<Reminder> VdirSource::GetReminders(double from, double before) {
    std::vector<Reminder> out;
    std::lock_guard lock(mutex_);
    for (const auto& [key, item] : registry_.GetFiles()) {
        if (!item->readable || (item->folder != kFolderCalendar && item->folder != kFolderTasks))
            continue;
        if (!MayRemindIn(*item, from, before))
            continue;
        if (!item->alarmsRead)
            ReadAlarmsLocked(*item);
        if (!item->alarms)
            continue;
        if (item->remindersFrom != from || item->remindersBefore != before) {
            item->reminders.clear();
            std::shared_ptr<const IcsItem> series = item->series ? GetParsedLocked(item) : nullptr;
            item->alarms->Collect(item->record, series.get(), from, before, item->reminders);
            item->remindersFrom = from;
            item->remindersBefore = before;
        }
        out.insert(out.end(), item->reminders.begin(), item->reminders.end());
    }
    std::sort(out.begin(), out.end(), [](const Reminder& a, const Reminder& b) {
        if (a.moment != b.moment)
            return a.moment < b.moment;
        if (a.oid != b.oid)
            return a.oid < b.oid;
        if (a.occurrence != b.occurrence)
            return a.occurrence < b.occurrence;
        return a.alarm < b.alarm;
    });
    return out;
}

SaveResult VdirSource::RewriteItem(std::int32_t oid,
                                   const std::function<bool(std::string_view, std::string&)>& change) {
    std::lock_guard lock(mutex_);
    const Entry entry = registry_.FindOid(oid);
    if (!entry)
        return SaveResult::NotFound;
    const std::string key = Key(entry->directory, entry->fileName);
    if (!io_.StampMatches(*entry)) {
        // Someone else changed the file: keep theirs and read it again.
        Reread(entry);
        return SaveResult::ChangedOnDisk;
    }
    std::string text, out;
    if (!io_.ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) ||
        !change(text, out))
        return SaveResult::Failed;
    if (!io_.WriteAtomically(entry->directory, entry->fileName, out))
        return SaveResult::Failed;
    bool exists = false;
    registry_.Publish(std::make_shared<StoredItem>(io_.ReadFile(entry->directory, entry->fileName, exists)));
    watcher_.ExpectLocal(key, {kMsgItemChangedLocal, oid, entry->folder});
    return SaveResult::Saved;
}

SaveResult VdirSource::DismissReminder(const Reminder& reminder, double now) {
    return RewriteItem(reminder.oid, [&](std::string_view existing, std::string& out) {
        return IcsAlarms::Dismiss(existing, reminder, now, out);
    });
}

SaveResult VdirSource::SnoozeReminder(const Reminder& reminder, double now, double until) {
    return RewriteItem(reminder.oid, [&](std::string_view existing, std::string& out) {
        return IcsAlarms::Snooze(existing, reminder, now, until, out);
    });
}

bool VdirSource::HasUid(const std::string& uid) {
    std::lock_guard lock(mutex_);
    return registry_.FindUid(uid) != nullptr;
}

std::vector<SaveResult> VdirSource::ImportFiles(const std::vector<ImportFile>& files) {
    std::vector<SaveResult> results(files.size(), SaveResult::Failed);
    struct Pending {
        std::size_t index;
        int directory;
        std::string fileName;
        std::string temp;
        Entry replaced; // the entry whose file the item replaces
        Entry entry;    // the new file, read
    };
    std::vector<Pending> pending;
    {
        // Where each item goes, decided under the lock.
        std::lock_guard lock(mutex_);
        std::set<std::string> taken; // file names of this batch
        for (std::size_t i = 0; i < files.size(); ++i) {
            const ImportFile& file = files[i];
            Pending item{i,  DirectoryOfFolder(file.folder == kFolderTasks ? kFolderTasks : kFolderCalendar),
                         "", "",
                         {}, {}};
            if (const Entry holder = registry_.FindUid(file.uid)) {
                // The item is here already: its file takes the new version.
                if (holder->folder == kFolderContacts)
                    continue;
                item.directory = holder->directory;
                item.fileName = holder->fileName;
                item.replaced = holder;
            } else {
                item.fileName = VdirFileIo::ImportFileName(file.uid);
                // Never over a file of another UID (or one we could not read).
                for (int n = 1;
                     registry_.HasFile(Key(item.directory, item.fileName)) || taken.count(item.fileName); ++n)
                    item.fileName = VdirFileIo::ImportFileName(file.uid + "#" + std::to_string(n));
            }
            if (!taken.insert(item.fileName).second)
                continue; // the same UID twice in one batch
            pending.push_back(std::move(item));
        }
    }
    // The data, written, synced and read back without holding the store.
    std::vector<VdirFileIo::StagedFile> staged;
    for (const Pending& item : pending)
        staged.push_back({item.directory, item.fileName, &files[item.index].text, {}, nullptr});
    io_.StageDurably(staged);
    std::vector<Pending> written;
    for (std::size_t i = 0; i < pending.size(); ++i)
        if (staged[i].entry) {
            pending[i].temp = std::move(staged[i].temp);
            pending[i].entry = std::move(staged[i].entry);
            written.push_back(std::move(pending[i]));
        }
    if (written.empty())
        return results;
    // Renamed into place under the lock, unless someone changed the file meanwhile.
    std::lock_guard lock(mutex_);
    for (const Pending& item : written) {
        const std::string target = DirectoryPath(item.directory) + "/" + item.fileName;
        const std::string key = Key(item.directory, item.fileName);
        if (item.replaced ? !io_.StampMatches(*item.replaced) : std::filesystem::exists(target)) {
            unlink(item.temp.c_str());
            results[item.index] = SaveResult::ChangedOnDisk;
            continue;
        }
        if (rename(item.temp.c_str(), target.c_str()) != 0) {
            Log::Error("store: cannot write %s: %s", target.c_str(), std::strerror(errno));
            unlink(item.temp.c_str());
            continue;
        }
        const Entry& entry = item.entry;
        registry_.Publish(entry);
        if (!entry->readable)
            continue;
        results[item.index] = SaveResult::Saved;
        watcher_.ExpectLocal(key, {item.replaced ? kMsgItemChangedLocal : kMsgItemCreatedLocal,
                                   entry->record.oid, entry->folder});
    }
    return results;
}

} // namespace mirodate
