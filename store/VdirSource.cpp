#include "store/VdirSource.h"

#include "store/IcsExport.h"

#include "store/IcsAlarms.h"

#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/TextUtil.h"
#include "store/IcsItem.h"
#include "store/IcsWriter.h"
#include "store/ItemFileLimits.h"
#include "store/StoreIndex.h"
#include "store/SyncState.h"
#include "store/VcardReader.h"
#include "store/VdirFolder.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <filesystem>
#include <fcntl.h>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

namespace {

constexpr std::int32_t kMaxOid = 0x7FFFFFFF;
constexpr int kDirectoryCount = 3;

bool EndsWith(const std::string& text, const char* suffix) {
    const std::size_t n = std::strlen(suffix);
    return text.size() >= n && text.compare(text.size() - n, n, suffix) == 0;
}

bool IsItemFile(const std::string& name) {
    return !name.empty() && name[0] != '.' && (EndsWith(name, ".ics") || EndsWith(name, ".vcf"));
}

std::int64_t MtimeNs(const struct stat& st) {
    return static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
}

int DirectoryOfFolder(int folderId) {
    if (folderId == kFolderTasks) return 1;
    if (folderId == kFolderContacts) return 2;
    return 0;
}

} // namespace

VdirSource::VdirSource(std::string root) : VdirSource(std::move(root), Options{}) {}

VdirSource::VdirSource(std::string root, Options options) : root_(std::move(root)), options_(options) {
    while (root_.size() > 1 && root_.back() == '/') root_.pop_back();
}

VdirSource::~VdirSource() {
    watcher_.Stop();
    std::lock_guard lock(mutex_);
    if (indexDirty_) SaveIndexLocked();
}

std::string VdirSource::DefaultRoot() { return Paths::DataDir(); }

std::int32_t VdirSource::HashUid(const std::string& uid) {
    std::uint32_t hash = 2166136261u;
    for (unsigned char c : uid) hash = (hash ^ c) * 16777619u;
    const auto oid = static_cast<std::int32_t>(hash & static_cast<std::uint32_t>(kMaxOid));
    return oid == 0 ? 1 : oid;
}

std::string VdirSource::DirectoryPath(int directory) const { return root_ + "/" + kFolderNames[directory]; }

std::string VdirSource::Key(int directory, const std::string& fileName) {
    return std::to_string(directory) + "/" + fileName;
}

bool VdirSource::ReadWholeFile(const std::string& path, std::string& text) const {
    // Non-blocking, so that a FIFO put in place of a file cannot stop us.
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return false;
    struct stat st{};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > kMaxFileBytes) {
        close(fd);
        return false;
    }
    text.resize(static_cast<std::size_t>(st.st_size));
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = read(fd, text.data() + done, text.size() - done);
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    text.resize(done);
    close(fd);
    return true;
}

StoredItem VdirSource::ReadFile(int directory, const std::string& fileName, bool& exists) const {
    StoredItem item;
    item.directory = directory;
    item.fileName = fileName;
    const std::string path = DirectoryPath(directory) + "/" + fileName;
    exists = false;
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        if (errno == ELOOP)
            Log::Warning("store: skipped %s: a loop of symbolic links", PrintableText(path).c_str());
        // A file we may not read is still the user's: listed as skipped.
        if (errno == EACCES) {
            exists = true;
            item.problem = std::strerror(errno);
            Log::Warning("store: skipped %s: %s", PrintableText(path).c_str(), item.problem.c_str());
        }
        return item;
    }
    struct stat st{};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return item;
    }
    exists = true;
    item.size = st.st_size;
    item.mtimeNs = MtimeNs(st);
    if (item.problem = ItemFileLimits::CheckSize(st.st_size); !item.problem.empty()) {
        close(fd);
        Log::Warning("store: skipped %s: %s", PrintableText(path).c_str(), item.problem.c_str());
        return item;
    }
    std::string text(static_cast<std::size_t>(st.st_size), '\0');
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = read(fd, text.data() + done, text.size() - done);
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    close(fd);
    text.resize(done);

    std::string problem = ItemFileLimits::CheckText(text);
    const std::string stem = fileName.substr(0, fileName.rfind('.'));
    if (!problem.empty()) {
        // Too big for its kind: no parser sees it.
    } else if (EndsWith(fileName, ".vcf")) {
        if (VcardReader::Read(text, item.record, problem)) {
            item.readable = true;
            item.folder = kFolderContacts;
        }
    } else {
        auto parsed = std::make_shared<IcsItem>();
        if (parsed->Parse(text, problem)) {
            item.readable = true;
            item.folder = parsed->GetKind() == IcsItem::Kind::Task ? kFolderTasks : kFolderCalendar;
            item.record = parsed->GetRecord();
            item.series = parsed->IsSeries();
            item.seriesEnd = parsed->GetSeriesEnd();
            item.longest = parsed->GetLongestDuration();
            if (parsed->HasUnrelatedComponents())
                Log::Warning("store: %s holds unrelated items; only the first is read",
                             PrintableText(path).c_str());
            if (item.series) item.parsed = std::move(parsed);
        }
    }
    if (!item.readable) {
        item.problem = problem.empty() ? "not a calendar item" : problem;
        Log::Warning("store: skipped %s: %s", PrintableText(path).c_str(), PrintableText(item.problem).c_str());
        return item;
    }
    item.uid = item.record.uid.empty() ? stem : item.record.uid;
    item.record.uid = item.uid;
    return item;
}

bool VdirSource::Logon() {
    std::lock_guard lock(mutex_);
    if (loggedOn_) return true;
    struct stat st{};
    if (stat(root_.c_str(), &st) != 0) {
        if (!options_.createIfMissing || !Paths::MakeDirs(root_)) {
            Log::Error("store: cannot open %s: %s", root_.c_str(), std::strerror(errno));
            return false;
        }
    } else if (!S_ISDIR(st.st_mode) || access(root_.c_str(), R_OK | X_OK) != 0) {
        Log::Error("store: %s is not a readable folder", root_.c_str());
        return false;
    }
    // The files first: what they are bounds what the index may hold.
    struct FoundFile {
        int directory;
        std::string name;
        struct stat stat;
    };
    std::vector<FoundFile> found;
    std::uint64_t foundBytes = 0;
    for (int directory = 0; directory < kDirectoryCount; ++directory) {
        const std::string path = DirectoryPath(directory);
        if (options_.createIfMissing) Paths::MakeDirs(path);
        DIR* dir = opendir(path.c_str());
        if (!dir) continue;
        const int dirFd = dirfd(dir);
        while (dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (!IsItemFile(name)) continue;
            struct stat fileStat{};
            if (fstatat(dirFd, name.c_str(), &fileStat, 0) != 0) {
                if (errno == ELOOP)
                    Log::Warning("store: skipped %s: a loop of symbolic links",
                                 PrintableText(path + "/" + name).c_str());
                continue;
            }
            if (!S_ISREG(fileStat.st_mode)) {
                Log::Warning("store: skipped %s: not a regular file",
                             PrintableText(path + "/" + name).c_str());
                continue;
            }
            foundBytes += static_cast<std::uint64_t>(fileStat.st_size);
            found.push_back({directory, name, fileStat});
        }
        closedir(dir);
    }

    const std::string zone = StoreIndex::ZoneSignature();
    const std::string indexPath = StoreIndex::PathFor(root_);
    StoreIndex::Entries index;
    if (options_.useIndex)
        index = StoreIndex::Load(indexPath, root_, zone, found.size(),
                                 StoreIndex::MaxBytesFor(found.size(), foundBytes));
    std::size_t reused = 0;
    for (FoundFile& file : found) {
        const std::string key = Key(file.directory, file.name);
        const std::string path = DirectoryPath(file.directory) + "/" + file.name;
        auto known = index.find(key);
        Entry item;
        if (known != index.end() && known->second.size == file.stat.st_size &&
            known->second.mtimeNs == MtimeNs(file.stat)) {
            item = std::make_shared<StoredItem>(std::move(known->second));
            ++reused;
            if (!item->readable)
                Log::Warning("store: skipped %s: %s", PrintableText(path).c_str(),
                             PrintableText(item->problem).c_str());
        } else {
            bool exists = false;
            item = std::make_shared<StoredItem>(ReadFile(file.directory, file.name, exists));
            if (!exists)
                continue;
            indexDirty_ = true;
        }
        files_[key] = std::move(item);
    }
    if (reused != index.size()) indexDirty_ = true;
    AssignOids();
    if (indexDirty_ && options_.useIndex) SaveIndexLocked();
    loggedOn_ = true;
    return true;
}

void VdirSource::AssignOids() {
    byOid_.clear();
    snapshots_.clear();
    std::vector<Entry> ordered;
    ordered.reserve(files_.size());
    for (auto& [key, item] : files_)
        if (item->readable) ordered.push_back(item);
    std::sort(ordered.begin(), ordered.end(), [](const Entry& a, const Entry& b) {
        return a->directory != b->directory ? a->directory < b->directory : a->fileName < b->fileName;
    });
    // The first file of a UID (in folder and name order) holds it; later
    // files with the same UID are skipped.
    std::unordered_map<std::string_view, StoredItem*> byUid;
    byUid.reserve(ordered.size());
    std::vector<std::pair<std::int32_t, StoredItem*>> hashes;
    hashes.reserve(ordered.size());
    for (auto& item : ordered) {
        auto [it, inserted] = byUid.emplace(item->uid, item.get());
        if (!inserted) {
            item->problem = "UID " + item->uid + " is used by " + it->second->fileName;
            Log::Warning("store: skipped %s/%s: %s", kFolderNames[item->directory],
                         PrintableText(item->fileName).c_str(), PrintableText(item->problem).c_str());
            item->readable = false;
            item->problem = "UID " + item->uid + " is used by " + it->second->fileName;
            continue;
        }
        hashes.emplace_back(HashUid(item->uid), item.get());
    }
    // In (hash, UID) order, so that collisions resolve the same way on every
    // start whatever order the folder lists its files in.
    std::sort(hashes.begin(), hashes.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first < b.first : a.second->uid < b.second->uid;
    });
    oidOfUid_.reserve(hashes.size());
    uidOfOid_.reserve(hashes.size());
    for (auto& [hash, item] : hashes) AssignOid(*item);
    byOid_.reserve(ordered.size());
    for (auto& item : ordered)
        if (item->readable) byOid_[item->record.oid] = item;
}

void VdirSource::AssignOid(StoredItem& item) {
    auto known = oidOfUid_.find(item.uid);
    if (known != oidOfUid_.end()) {
        item.record.oid = known->second;
        return;
    }
    // A hash taken by another UID moves on to the next free number.
    std::int32_t oid = HashUid(item.uid);
    while (uidOfOid_.count(oid)) oid = oid == kMaxOid ? 1 : oid + 1;
    oidOfUid_[item.uid] = oid;
    uidOfOid_[oid] = item.uid;
    item.record.oid = oid;
}

void VdirSource::Publish(Entry entry) {
    const std::string key = Key(entry->directory, entry->fileName);
    auto old = files_.find(key);
    if (old != files_.end()) {
        snapshots_.erase(old->second->folder);
        if (old->second->readable) {
            auto holder = byOid_.find(old->second->record.oid);
            if (holder != byOid_.end() && holder->second == old->second) byOid_.erase(holder);
        }
    }
    if (entry->readable) {
        // A second file with a UID already held elsewhere is skipped.
        auto known = oidOfUid_.find(entry->uid);
        if (known != oidOfUid_.end()) {
            auto holder = byOid_.find(known->second);
            if (holder != byOid_.end() && Key(holder->second->directory, holder->second->fileName) != key) {
                entry->problem = "UID " + entry->uid + " is used by " + holder->second->fileName;
                Log::Warning("store: skipped %s: %s", PrintableText(entry->fileName).c_str(),
                             PrintableText(entry->problem).c_str());
                entry->readable = false;
                entry->problem = "UID " + entry->uid + " is used by " + holder->second->fileName;
            }
        }
    }
    if (entry->readable) {
        AssignOid(*entry);
        byOid_[entry->record.oid] = entry;
    }
    snapshots_.erase(entry->folder);
    files_[key] = std::move(entry);
    indexDirty_ = true;
}

void VdirSource::Unpublish(const std::string& key) {
    auto it = files_.find(key);
    if (it == files_.end()) return;
    snapshots_.erase(it->second->folder);
    if (it->second->readable) {
        auto holder = byOid_.find(it->second->record.oid);
        if (holder != byOid_.end() && holder->second == it->second) byOid_.erase(holder);
    }
    files_.erase(it);
    indexDirty_ = true;
}

void VdirSource::SaveIndexLocked() {
    if (!options_.useIndex) return;
    std::vector<const StoredItem*> items;
    items.reserve(files_.size());
    for (const auto& [key, item] : files_) items.push_back(item.get());
    if (StoreIndex::Save(StoreIndex::PathFor(root_), root_, StoreIndex::ZoneSignature(), items)) indexDirty_ = false;
}

std::unique_ptr<PimFolder> VdirSource::GetDefaultFolder(int folderId) {
    if (folderId != kFolderCalendar && folderId != kFolderTasks && folderId != kFolderContacts) return nullptr;
    return std::make_unique<VdirFolder>(*this, folderId);
}

VdirSource::Snapshot VdirSource::GetSnapshot(int folderId) {
    std::lock_guard lock(mutex_);
    auto it = snapshots_.find(folderId);
    if (it != snapshots_.end()) return it->second;
    Snapshot snapshot;
    for (const auto& [key, item] : files_)
        if (item->readable && item->folder == folderId) snapshot.push_back(item);
    // Folder and file name order, the same on every run.
    std::sort(snapshot.begin(), snapshot.end(), [](const auto& a, const auto& b) {
        return a->directory != b->directory ? a->directory < b->directory : a->fileName < b->fileName;
    });
    snapshots_[folderId] = snapshot;
    return snapshot;
}

std::shared_ptr<const IcsItem> VdirSource::GetParsed(const std::shared_ptr<const StoredItem>& item) {
    std::lock_guard lock(mutex_);
    return GetParsedLocked(item);
}

std::shared_ptr<const IcsItem> VdirSource::GetParsedLocked(const std::shared_ptr<const StoredItem>& item) {
    if (item->parsed) return item->parsed;
    auto it = files_.find(Key(item->directory, item->fileName));
    std::string text;
    auto parsed = std::make_shared<IcsItem>();
    std::string problem;
    if (!ReadWholeFile(DirectoryPath(item->directory) + "/" + item->fileName, text) || !parsed->Parse(text, problem))
        return nullptr;
    if (it != files_.end() && it->second == item) it->second->parsed = parsed;
    return parsed;
}

int VdirSource::GetItemKind(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    auto it = byOid_.find(oid);
    if (it == byOid_.end()) return 0;
    switch (it->second->folder) {
    case kFolderCalendar: return kItemAppointment;
    case kFolderTasks: return kItemTask;
    case kFolderContacts: return kItemContact;
    default: return 0;
    }
}

bool VdirSource::GetItemFromOid(std::int32_t oid, PimRecord& item) {
    std::lock_guard lock(mutex_);
    auto it = byOid_.find(oid);
    if (it == byOid_.end()) return false;
    item = it->second->record;
    return true;
}

std::string VdirSource::FilePath(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    auto it = byOid_.find(oid);
    return it == byOid_.end() ? std::string() : DirectoryPath(it->second->directory) + "/" + it->second->fileName;
}

int VdirSource::GetItemCount() {
    std::lock_guard lock(mutex_);
    return static_cast<int>(byOid_.size());
}

bool VdirSource::StampMatches(const StoredItem& item) const {
    struct stat st{};
    const std::string path = DirectoryPath(item.directory) + "/" + item.fileName;
    return stat(path.c_str(), &st) == 0 && st.st_size == item.size && MtimeNs(st) == item.mtimeNs;
}

bool VdirSource::WriteAtomically(int directory, const std::string& fileName, const std::string& text) {
    const std::string dir = DirectoryPath(directory);
    if (!Paths::MakeDirs(dir)) return false;
    const std::string target = dir + "/" + fileName;
    const std::string temp = dir + "/." + fileName + ".tmp";
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return false;
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    // The content reaches the disk before the rename makes it the item, so
    // that a crash leaves the old file or the new one, never an empty one.
    const bool written = done == text.size() && fsync(fd) == 0;
    if (close(fd) != 0 || !written || rename(temp.c_str(), target.c_str()) != 0) {
        Log::Error("store: cannot write %s: %s", target.c_str(), std::strerror(errno));
        unlink(temp.c_str());
        return false;
    }
    // And the rename itself, once: the folder's entry is what a restart finds.
    const int dirFd = open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (dirFd >= 0) {
        if (fsync(dirFd) != 0) Log::Warning("store: cannot sync %s: %s", dir.c_str(), std::strerror(errno));
        close(dirFd);
    }
    return true;
}

SaveResult VdirSource::Save(PimRecord& record, int folderId) {
    std::unique_lock lock(mutex_);
    auto found = record.oid >= 0 ? byOid_.find(record.oid) : byOid_.end();
    if (found != byOid_.end()) {
        Entry entry = found->second;
        const std::string key = Key(entry->directory, entry->fileName);
        if (!StampMatches(*entry)) {
            // Someone else changed the file: keep theirs and read it again.
            bool exists = false;
            auto fresh = std::make_shared<StoredItem>(ReadFile(entry->directory, entry->fileName, exists));
            if (exists) Publish(fresh);
            else Unpublish(key);
            return SaveResult::ChangedOnDisk;
        }
        if (entry->folder == kFolderContacts) return SaveResult::Failed;
        std::string text, out;
        if (!ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) ||
            !IcsWriter::Update(text, record, out))
            return SaveResult::Failed;
        if (!WriteAtomically(entry->directory, entry->fileName, out)) return SaveResult::Failed;
        bool exists = false;
        Publish(std::make_shared<StoredItem>(ReadFile(entry->directory, entry->fileName, exists)));
        if (watcher_.IsRunning()) pendingLocal_[key] = {kMsgItemChangedLocal, record.oid, entry->folder};
        return SaveResult::Saved;
    }
    if (record.itemKind == 0)
        record.itemKind = folderId == kFolderTasks ? kItemTask : folderId == kFolderContacts ? kItemContact : kItemAppointment;
    const int directory = DirectoryOfFolder(record.itemKind == kItemTask      ? kFolderTasks
                                            : record.itemKind == kItemContact ? kFolderContacts
                                                                              : kFolderCalendar);
    const std::string uid = record.uid.empty() || oidOfUid_.count(record.uid) ? IcsWriter::MakeUid() : record.uid;
    const std::string fileName = uid + (record.itemKind == kItemContact ? ".vcf" : ".ics");
    const std::string text =
        record.itemKind == kItemContact ? IcsWriter::NewContact(record, uid) : IcsWriter::NewItem(record, uid);
    if (!WriteAtomically(directory, fileName, text)) return SaveResult::Failed;
    bool exists = false;
    auto entry = std::make_shared<StoredItem>(ReadFile(directory, fileName, exists));
    if (!entry->readable) return SaveResult::Failed;
    Publish(entry);
    record.oid = entry->record.oid;
    record.uid = uid;
    if (watcher_.IsRunning()) pendingLocal_[Key(directory, fileName)] = {kMsgItemCreatedLocal, record.oid, entry->folder};
    return SaveResult::Saved;
}

SaveResult VdirSource::SaveOccurrence(std::int32_t oid, double originalStart, const PimRecord* occurrence) {
    std::lock_guard lock(mutex_);
    auto found = byOid_.find(oid);
    if (found == byOid_.end()) return SaveResult::NotFound;
    Entry entry = found->second;
    const std::string key = Key(entry->directory, entry->fileName);
    if (!StampMatches(*entry)) {
        bool exists = false;
        auto fresh = std::make_shared<StoredItem>(ReadFile(entry->directory, entry->fileName, exists));
        if (exists) Publish(fresh);
        else Unpublish(key);
        return SaveResult::ChangedOnDisk;
    }
    std::string text, out;
    if (!ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) ||
        !IcsWriter::AddException(text, originalStart, occurrence, out))
        return SaveResult::Failed;
    if (!WriteAtomically(entry->directory, entry->fileName, out)) return SaveResult::Failed;
    bool exists = false;
    Publish(std::make_shared<StoredItem>(ReadFile(entry->directory, entry->fileName, exists)));
    if (watcher_.IsRunning()) pendingLocal_[key] = {kMsgItemChangedLocal, oid, entry->folder};
    return SaveResult::Saved;
}

bool VdirSource::Delete(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    auto found = byOid_.find(oid);
    if (found == byOid_.end()) return false;
    Entry entry = found->second;
    const std::string key = Key(entry->directory, entry->fileName);
    if (unlink((DirectoryPath(entry->directory) + "/" + entry->fileName).c_str()) != 0 && errno != ENOENT) return false;
    if (watcher_.IsRunning()) pendingLocal_[key] = {kMsgItemDeletedLocal, oid, entry->folder};
    Unpublish(key);
    return true;
}

std::int32_t VdirSource::Copy(std::int32_t oid) {
    std::lock_guard lock(mutex_);
    auto found = byOid_.find(oid);
    if (found == byOid_.end() || found->second->folder == kFolderContacts) return -1;
    Entry entry = found->second;
    std::string text, out;
    const std::string uid = IcsWriter::MakeUid();
    if (!ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) ||
        !IcsWriter::ReplaceUid(text, uid, out))
        return -1;
    const std::string fileName = uid + ".ics";
    if (!WriteAtomically(entry->directory, fileName, out)) return -1;
    bool exists = false;
    auto copy = std::make_shared<StoredItem>(ReadFile(entry->directory, fileName, exists));
    if (!copy->readable) return -1;
    Publish(copy);
    if (watcher_.IsRunning()) pendingLocal_[Key(entry->directory, fileName)] = {kMsgItemCreatedLocal, copy->record.oid, copy->folder};
    return copy->record.oid;
}

void VdirSource::SetNotificationSink(NotificationSink sink) {
    {
        std::lock_guard lock(sinkMutex_);
        sink_ = std::move(sink);
    }
    UpdateWatcher();
}

void VdirSource::EnableNotifications(int folderId, int origins) {
    {
        std::lock_guard lock(mutex_);
        notifyOrigins_[folderId] = origins;
    }
    UpdateWatcher();
}

void VdirSource::UpdateWatcher() {
    bool wanted = false;
    {
        std::lock_guard sinkLock(sinkMutex_);
        std::lock_guard lock(mutex_);
        const bool anyOrigin = std::any_of(notifyOrigins_.begin(), notifyOrigins_.end(),
                                           [](const auto& pair) { return pair.second != 0; });
        wanted = sink_ && anyOrigin && loggedOn_;
    }
    if (wanted && !watcher_.IsRunning()) {
        std::vector<std::string> directories;
        for (int d = 0; d < kDirectoryCount; ++d) directories.push_back(DirectoryPath(d));
        watcher_.Start(directories, [this](int directory, const std::string& name, DirectoryWatcher::Change change) {
            OnFileEvent(directory, name, change);
        });
    } else if (!wanted && watcher_.IsRunning()) {
        watcher_.Stop();
        std::lock_guard lock(mutex_);
        pendingLocal_.clear();
    }
}

void VdirSource::OnFileEvent(int directory, const std::string& fileName, DirectoryWatcher::Change change) {
    if (!IsItemFile(fileName)) return;
    std::vector<PimNotification> notifications;
    {
        std::lock_guard lock(mutex_);
        const std::string key = Key(directory, fileName);
        auto current = files_.find(key);
        auto pending = pendingLocal_.find(key);
        if (pending != pendingLocal_.end()) {
            notifications.push_back(pending->second);
            pendingLocal_.erase(pending);
        } else if (change == DirectoryWatcher::Change::Written) {
            bool exists = false;
            auto fresh = std::make_shared<StoredItem>(ReadFile(directory, fileName, exists));
            if (!exists) return;
            const bool known = current != files_.end();
            if (known && current->second->size == fresh->size && current->second->mtimeNs == fresh->mtimeNs) return;
            const bool wasReadable = known && current->second->readable;
            const std::int32_t oldOid = wasReadable ? current->second->record.oid : -1;
            const int oldFolder = known ? current->second->folder : 0;
            Publish(fresh);
            if (fresh->readable)
                notifications.push_back(
                    {wasReadable ? kMsgItemChangedRemote : kMsgItemCreatedRemote, fresh->record.oid, fresh->folder});
            else if (wasReadable)
                notifications.push_back({kMsgItemDeletedRemote, oldOid, oldFolder});
        } else if (current != files_.end()) {
            if (current->second->readable)
                notifications.push_back({kMsgItemDeletedRemote, current->second->record.oid, current->second->folder});
            Unpublish(key);
        }
        std::erase_if(notifications, [this](const PimNotification& n) {
            auto origins = notifyOrigins_.find(n.folder);
            const int wanted = origins == notifyOrigins_.end() ? 0 : origins->second;
            return !(wanted & (n.IsRemote() ? kNotifyRemote : kNotifyLocal));
        });
    }
    Notify(notifications);
}

void VdirSource::Notify(const std::vector<PimNotification>& notifications) {
    std::lock_guard lock(sinkMutex_);
    if (!sink_) return;
    for (const auto& notification : notifications) sink_(notification);
}

bool VdirSource::IsSynchronizing() { return SyncState::IsSynchronizerRunning(); }

std::vector<std::u16string> VdirSource::GetCategoryNames() {
    std::lock_guard lock(mutex_);
    std::set<std::u16string> names;
    for (const auto& [key, item] : files_)
        if (item->readable && !item->record.categories.empty()) names.insert(item->record.categories);
    return {names.begin(), names.end()};
}

int VdirSource::GetSkippedCount() {
    std::lock_guard lock(mutex_);
    return static_cast<int>(std::count_if(files_.begin(), files_.end(), [](const auto& pair) { return !pair.second->readable; }));
}

StoreSummary VdirSource::Summarize() {
    StoreSummary summary;
    summary.location = root_;
    std::lock_guard lock(mutex_);
    for (const auto& [key, item] : files_) {
        if (!item->readable) {
            summary.skipped.push_back({DirectoryPath(item->directory) + "/" + item->fileName, item->problem});
            continue;
        }
        if (item->folder == kFolderCalendar) ++summary.appointments;
        else if (item->folder == kFolderTasks) ++summary.tasks;
        else if (item->folder == kFolderContacts) ++summary.contacts;
    }
    std::sort(summary.skipped.begin(), summary.skipped.end());
    return summary;
}

bool VdirSource::ExportItem(std::int32_t oid, std::string& text) {
    const std::string path = FilePath(oid);
    std::string content;
    if (path.empty() || !ReadWholeFile(path, content)) return false;
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
    if (item.folder == kFolderTasks) return !record.complete;
    const double margin = IcsAlarms::kMaxOffsetDays;
    const double start = record.start;
    if (start > before + margin) return false;
    if (item.series) return item.seriesEnd == kNoDate || item.seriesEnd >= from - margin;
    return start + item.longest >= from - margin && record.end >= from - margin;
}

void VdirSource::ReadAlarmsLocked(StoredItem& item) {
    item.alarmsRead = true;
    std::string text;
    if (!ReadWholeFile(DirectoryPath(item.directory) + "/" + item.fileName, text) || !IcsAlarms::MayHaveAlarms(text))
        return;
    auto alarms = std::make_shared<IcsAlarms>();
    if (alarms->Parse(text)) item.alarms = std::move(alarms);
}

std::vector<Reminder> VdirSource::GetReminders(double from, double before) {
    std::vector<Reminder> out;
    std::lock_guard lock(mutex_);
    for (auto& [key, item] : files_) {
        if (!item->readable || (item->folder != kFolderCalendar && item->folder != kFolderTasks)) continue;
        if (!MayRemindIn(*item, from, before)) continue;
        if (!item->alarmsRead) ReadAlarmsLocked(*item);
        if (!item->alarms) continue;
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
        if (a.moment != b.moment) return a.moment < b.moment;
        if (a.oid != b.oid) return a.oid < b.oid;
        if (a.occurrence != b.occurrence) return a.occurrence < b.occurrence;
        return a.alarm < b.alarm;
    });
    return out;
}

SaveResult VdirSource::RewriteItem(std::int32_t oid,
                                   const std::function<bool(std::string_view, std::string&)>& change) {
    std::lock_guard lock(mutex_);
    auto found = byOid_.find(oid);
    if (found == byOid_.end()) return SaveResult::NotFound;
    Entry entry = found->second;
    const std::string key = Key(entry->directory, entry->fileName);
    if (!StampMatches(*entry)) {
        // Someone else changed the file: keep theirs and read it again.
        bool exists = false;
        auto fresh = std::make_shared<StoredItem>(ReadFile(entry->directory, entry->fileName, exists));
        if (exists) Publish(fresh);
        else Unpublish(key);
        return SaveResult::ChangedOnDisk;
    }
    std::string text, out;
    if (!ReadWholeFile(DirectoryPath(entry->directory) + "/" + entry->fileName, text) || !change(text, out))
        return SaveResult::Failed;
    if (!WriteAtomically(entry->directory, entry->fileName, out)) return SaveResult::Failed;
    bool exists = false;
    Publish(std::make_shared<StoredItem>(ReadFile(entry->directory, entry->fileName, exists)));
    if (watcher_.IsRunning()) pendingLocal_[key] = {kMsgItemChangedLocal, oid, entry->folder};
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

namespace {
// A UID makes the file name when it is a plain one; otherwise its hash does.
constexpr std::size_t kMaxUidFileName = 120;

std::string ImportFileName(const std::string& uid) {
    bool plain = !uid.empty() && uid.size() <= kMaxUidFileName && uid[0] != '.';
    for (char c : uid)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_' && c != '.' && c != '@') plain = false;
    if (plain) return uid + ".ics";
    char name[32];
    std::snprintf(name, sizeof name, "import-%08x.ics", static_cast<unsigned>(VdirSource::HashUid(uid)));
    return name;
}
} // namespace

bool VdirSource::HasUid(const std::string& uid) {
    std::lock_guard lock(mutex_);
    auto known = oidOfUid_.find(uid);
    return known != oidOfUid_.end() && byOid_.count(known->second);
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
            Pending item{i, DirectoryOfFolder(file.folder == kFolderTasks ? kFolderTasks : kFolderCalendar), "", "", {}, {}};
            auto known = oidOfUid_.find(file.uid);
            auto holder = known == oidOfUid_.end() ? byOid_.end() : byOid_.find(known->second);
            if (holder != byOid_.end()) {
                // The item is here already: its file takes the new version.
                if (holder->second->folder == kFolderContacts) continue;
                item.directory = holder->second->directory;
                item.fileName = holder->second->fileName;
                item.replaced = holder->second;
            } else {
                item.fileName = ImportFileName(file.uid);
                // Never over a file of another UID (or one we could not read).
                for (int n = 1; files_.count(Key(item.directory, item.fileName)) || taken.count(item.fileName); ++n)
                    item.fileName = ImportFileName(file.uid + "#" + std::to_string(n));
            }
            if (!taken.insert(item.fileName).second) continue; // the same UID twice in one batch
            pending.push_back(std::move(item));
        }
    }
    // The data, written and synced without holding the store.
    std::vector<Pending> written;
    for (Pending& item : pending) {
        const std::string dir = DirectoryPath(item.directory);
        if (!Paths::MakeDirs(dir)) continue;
        item.temp = dir + "/." + item.fileName + ".tmp";
        const std::string& text = files[item.index].text;
        const int fd = open(item.temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0) continue;
        std::size_t done = 0;
        while (done < text.size()) {
            const ssize_t n = write(fd, text.data() + done, text.size() - done);
            if (n <= 0) break;
            done += static_cast<std::size_t>(n);
        }
        if (close(fd) != 0 || done != text.size()) {
            unlink(item.temp.c_str());
            continue;
        }
        written.push_back(std::move(item));
    }
    if (written.empty()) return results;
    const int rootFd = open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool synced = rootFd >= 0 && syncfs(rootFd) == 0;
    if (rootFd >= 0) close(rootFd);
    if (!synced) {
        Log::Error("store: cannot sync the imported files: %s", std::strerror(errno));
        for (const Pending& item : written) unlink(item.temp.c_str());
        return results;
    }
    // Read back without holding the store: a rename keeps size and time,
    // so the entry stays true to the file once it is in place.
    for (Pending& item : written) {
        bool exists = false;
        item.entry = std::make_shared<StoredItem>(ReadFile(item.directory, "." + item.fileName + ".tmp", exists));
        item.entry->fileName = item.fileName;
    }
    // Renamed into place under the lock, unless someone changed the file meanwhile.
    std::lock_guard lock(mutex_);
    for (const Pending& item : written) {
        const std::string target = DirectoryPath(item.directory) + "/" + item.fileName;
        const std::string key = Key(item.directory, item.fileName);
        if (item.replaced ? !StampMatches(*item.replaced) : std::filesystem::exists(target)) {
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
        Publish(entry);
        if (!entry->readable) continue;
        results[item.index] = SaveResult::Saved;
        if (watcher_.IsRunning())
            pendingLocal_[key] = {item.replaced ? kMsgItemChangedLocal : kMsgItemCreatedLocal, entry->record.oid,
                                  entry->folder};
    }
    return results;
}

} // namespace mirodate
