#include "store/VdirFileIo.h"

#include "data/PimFolder.h"
#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/TextUtil.h"
#include "store/IcsItem.h"
#include "store/ItemFileLimits.h"
#include "store/OidRegistry.h"
#include "store/VcardReader.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

namespace {

constexpr std::int64_t kMaxFileBytes = ItemFileLimits::kMaxFileBytes;

bool EndsWith(const std::string& text, const char* suffix) {
    const std::size_t n = std::strlen(suffix);
    return text.size() >= n && text.compare(text.size() - n, n, suffix) == 0;
}

} // namespace

VdirFileIo::VdirFileIo(std::string root) : root_(std::move(root)) {
    while (root_.size() > 1 && root_.back() == '/')
        root_.pop_back();
}

std::string VdirFileIo::DirectoryPath(int directory) const {
    return root_ + "/" + kFolderNames[directory];
}

std::string VdirFileIo::FilePath(int directory, const std::string& fileName) const {
    return DirectoryPath(directory) + "/" + fileName;
}

std::string VdirFileIo::Key(int directory, const std::string& fileName) {
    std::string key;
    return KeyInto(directory, fileName, key);
}

const std::string& VdirFileIo::KeyInto(int directory, const std::string& fileName, std::string& key) {
    key.assign(std::to_string(directory));
    key += '/';
    key += fileName;
    return key;
}

bool VdirFileIo::IsItemFile(const std::string& name) {
    return !name.empty() && name[0] != '.' && (EndsWith(name, ".ics") || EndsWith(name, ".vcf"));
}

std::int64_t VdirFileIo::MtimeNs(const struct stat& st) {
    return static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
}

bool VdirFileIo::ReadWholeFile(const std::string& path, std::string& text) const {
    // Non-blocking, so that a FIFO put in place of a file cannot stop us.
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat st {};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size > kMaxFileBytes) {
        close(fd);
        return false;
    }
    text.resize(static_cast<std::size_t>(st.st_size));
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = read(fd, text.data() + done, text.size() - done);
        if (n <= 0)
            break;
        done += static_cast<std::size_t>(n);
    }
    text.resize(done);
    close(fd);
    return true;
}

StoredItem VdirFileIo::ReadFile(int directory, const std::string& fileName, bool& exists) const {
    StoredItem item;
    item.directory = directory;
    item.fileName = fileName;
    const std::string path = FilePath(directory, fileName);
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
    struct stat st {};
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
        if (n <= 0)
            break;
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
            if (item.series)
                item.parsed = std::move(parsed);
        }
    }
    if (!item.readable) {
        item.problem = problem.empty() ? "not a calendar item" : problem;
        Log::Warning("store: skipped %s: %s", PrintableText(path).c_str(),
                     PrintableText(item.problem).c_str());
        return item;
    }
    item.uid = item.record.uid.empty() ? stem : item.record.uid;
    item.record.uid = item.uid;
    return item;
}

bool VdirFileIo::StampMatches(const StoredItem& item) const {
    struct stat st {};
    const std::string path = DirectoryPath(item.directory) + "/" + item.fileName;
    return stat(path.c_str(), &st) == 0 && st.st_size == item.size && MtimeNs(st) == item.mtimeNs;
}

bool VdirFileIo::WriteAtomically(int directory, const std::string& fileName, const std::string& text) {
    const std::string dir = DirectoryPath(directory);
    if (!Paths::MakeDirs(dir))
        return false;
    const std::string target = dir + "/" + fileName;
    const std::string temp = dir + "/." + fileName + ".tmp";
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return false;
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0)
            break;
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
        if (fsync(dirFd) != 0)
            Log::Warning("store: cannot sync %s: %s", dir.c_str(), std::strerror(errno));
        close(dirFd);
    }
    return true;
}

void VdirFileIo::StageDurably(std::vector<StagedFile>& files) const {
    bool anyWritten = false;
    for (StagedFile& file : files) {
        const std::string dir = DirectoryPath(file.directory);
        if (!Paths::MakeDirs(dir))
            continue;
        const std::string temp = dir + "/." + file.fileName + ".tmp";
        const std::string& text = *file.text;
        const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0)
            continue;
        std::size_t done = 0;
        while (done < text.size()) {
            const ssize_t n = write(fd, text.data() + done, text.size() - done);
            if (n <= 0)
                break;
            done += static_cast<std::size_t>(n);
        }
        if (close(fd) != 0 || done != text.size()) {
            unlink(temp.c_str());
            continue;
        }
        file.temp = temp;
        anyWritten = true;
    }
    if (!anyWritten)
        return;
    // One sync for the batch: a file each would take the disk's time per file.
    const int rootFd = open(root_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool synced = rootFd >= 0 && syncfs(rootFd) == 0;
    if (rootFd >= 0)
        close(rootFd);
    if (!synced) {
        Log::Error("store: cannot sync the imported files: %s", std::strerror(errno));
        for (StagedFile& file : files)
            if (!file.temp.empty())
                unlink(file.temp.c_str());
        return;
    }
    // A rename keeps size and time, so the reading stays true to the file
    // once it is in place.
    for (StagedFile& file : files) {
        if (file.temp.empty())
            continue;
        bool exists = false;
        file.entry =
            std::make_shared<StoredItem>(ReadFile(file.directory, "." + file.fileName + ".tmp", exists));
        file.entry->fileName = file.fileName;
    }
}

std::string VdirFileIo::ImportFileName(const std::string& uid) {
    // Longest UID taken as it is for a file name.
    constexpr std::size_t kMaxUidFileName = 120;
    bool plain = !uid.empty() && uid.size() <= kMaxUidFileName && uid[0] != '.';
    for (char c : uid)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_' && c != '.' && c != '@')
            plain = false;
    if (plain)
        return uid + ".ics";
    char name[32];
    std::snprintf(name, sizeof name, "import-%08x.ics", static_cast<unsigned>(OidRegistry::HashUid(uid)));
    return name;
}

} // namespace mirodate
