#include "platform/SettingsStore.h"

#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/TextUtil.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace mirodate {

namespace {

// Closes a descriptor and releases its flock on every path.
class LockedFd {
public:
    explicit LockedFd(const std::string& path) {
        fd_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (fd_ >= 0 && flock(fd_, LOCK_EX) != 0) {
            close(fd_);
            fd_ = -1;
        }
    }
    ~LockedFd() {
        if (fd_ >= 0) {
            flock(fd_, LOCK_UN);
            close(fd_);
        }
    }
    LockedFd(const LockedFd&) = delete;
    LockedFd& operator=(const LockedFd&) = delete;
    bool Ok() const { return fd_ >= 0; }

private:
    int fd_ = -1;
};
} // namespace

SettingsStore::SettingsStore(std::string path) : path_(std::move(path)) {}

SettingsStore::FileStamp SettingsStore::Stamp() const {
    struct stat st {};
    FileStamp stamp;
    if (stat(path_.c_str(), &st) != 0)
        return stamp;
    stamp.exists = true;
    stamp.device = st.st_dev;
    stamp.inode = st.st_ino;
    stamp.size = st.st_size;
    stamp.mtimeNs = static_cast<long long>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec;
    return stamp;
}

std::string SettingsStore::EscapeValue(const std::string& utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (char c : utf8) {
        switch (c) {
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        default:
            out += c;
        }
    }
    return out;
}

std::string SettingsStore::UnescapeValue(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            char next = text[++i];
            out += next == 'n' ? '\n' : next == 'r' ? '\r' : next;
        } else {
            out += text[i];
        }
    }
    return out;
}

void SettingsStore::LoadLocked() {
    values_.clear();
    overlong_.clear();
    loadedStamp_ = Stamp();
    loaded_ = true;
    unreadable_ = false;
    if (!loadedStamp_.exists)
        return;
    // Until it is read, the file must not be replaced by one without its values.
    unreadable_ = true;
    if (loadedStamp_.size > kMaxFileBytes) {
        Log::Warning(
            "settings file %s is not read: %lld bytes, more than the %lld KB a settings file may have; "
            "defaults are used and nothing is saved",
            PrintableText(path_).c_str(), static_cast<long long>(loadedStamp_.size),
            static_cast<long long>(kMaxFileBytes / 1024));
        return;
    }
    std::ifstream in(path_, std::ios::binary);
    if (!in) {
        Log::Warning("settings file %s cannot be read; defaults are used and nothing is saved",
                     PrintableText(path_).c_str());
        return;
    }
    unreadable_ = false;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        auto eq = line.find('=');
        if (eq == std::string::npos || eq == 0)
            continue;
        std::string name = line.substr(0, eq);
        if (line.size() - eq - 1 > kMaxValueBytes) {
            Log::Warning("settings file %s: the value of %s is longer than %zu bytes and is not used",
                         PrintableText(path_).c_str(), PrintableText(name).c_str(), kMaxValueBytes);
            values_.erase(name);
            overlong_[std::move(name)] = line.substr(eq + 1);
            continue;
        }
        overlong_.erase(name);
        values_[std::move(name)] = Utf8ToUtf16(UnescapeValue(line.substr(eq + 1)));
    }
}

void SettingsStore::RefreshLocked() {
    if (!loaded_ || !(Stamp() == loadedStamp_))
        LoadLocked();
}

std::optional<std::u16string> SettingsStore::Get(const std::string& name) {
    std::lock_guard lock(mutex_);
    RefreshLocked();
    auto it = values_.find(name);
    if (it == values_.end())
        return std::nullopt;
    return it->second;
}

bool SettingsStore::Set(const std::string& name, const std::u16string& value) {
    return Modify(name, value);
}

bool SettingsStore::Remove(const std::string& name) {
    return Modify(name, std::nullopt);
}

bool SettingsStore::Modify(const std::string& name, const std::optional<std::u16string>& value) {
    if (name.empty() || name.find_first_of("=\r\n") != std::string::npos)
        return false;
    std::lock_guard lock(mutex_);
    auto slash = path_.rfind('/');
    std::string dir = slash == std::string::npos ? "." : path_.substr(0, slash);
    if (!Paths::MakeDirs(dir, 0700))
        return false;

    // Serialise writers across processes, then merge our change into what is
    // on disk now, not what we read earlier.
    LockedFd fileLock(path_ + ".lock");
    if (!fileLock.Ok())
        return false;
    LoadLocked();
    if (unreadable_)
        return false;
    // Whatever happens below, a failed write must not leave our unsaved change
    // in memory as if it were stored: the next read goes back to the file.
    loaded_ = false;
    overlong_.erase(name);
    if (value)
        values_[name] = *value;
    else
        values_.erase(name);

    // Values too long to use are written back as they were read.
    std::map<std::string, std::string> lines = std::move(overlong_);
    for (const auto& [key, text] : values_)
        lines[key] = EscapeValue(Utf16ToUtf8(text));
    std::ostringstream out;
    for (const auto& [key, text] : lines)
        out << key << '=' << text << '\n';
    const std::string data = out.str();

    std::string temp = path_ + ".tmp." + std::to_string(getpid());
    int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    size_t written = 0;
    while (written < data.size()) {
        ssize_t n = write(fd, data.data() + written, data.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        written += static_cast<size_t>(n);
    }
    bool ok = written == data.size() && fsync(fd) == 0;
    ok = close(fd) == 0 && ok;
    if (!ok || rename(temp.c_str(), path_.c_str()) != 0) {
        unlink(temp.c_str());
        Log::Warning("could not write settings file %s", path_.c_str());
        return false;
    }
    loadedStamp_ = Stamp();
    loaded_ = true;
    return true;
}

} // namespace mirodate
