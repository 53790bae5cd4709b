#pragma once
// A file of named text values: one "Name=Value" per line, UTF-8. Writes
// replace the whole file through a temporary file and a rename, under an
// advisory lock, so that a crash never leaves it half written and two
// processes writing at once never lose each other's values. Reads notice when
// another process changed the file and read it again.
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>

namespace mirodate {

class SettingsStore {
public:
    // A settings file is a few KB. A larger one is not ours: it is neither
    // read nor replaced. A longer value is kept in the file but not used.
    static constexpr off_t kMaxFileBytes = 1024 * 1024;
    static constexpr size_t kMaxValueBytes = 16 * 1024;

    explicit SettingsStore(std::string path);

    const std::string& Path() const { return path_; }
    // The stored text, or nothing when the name is absent or the file is
    // missing or unreadable.
    std::optional<std::u16string> Get(const std::string& name);
    // Stores a value; false when the file could not be written, or exists
    // but could not be read (the caller ignores it, as every settings write
    // may fail quietly).
    bool Set(const std::string& name, const std::u16string& value);
    bool Remove(const std::string& name);

    // Line encoding: backslash, CR and LF are escaped so that any text
    // survives a round trip; "=" needs no escape since names never hold one.
    static std::string EscapeValue(const std::string& utf8);
    static std::string UnescapeValue(const std::string& line);

private:
    struct FileStamp {
        bool exists = false;
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        long long mtimeNs = 0;
        bool operator==(const FileStamp&) const = default;
    };
    FileStamp Stamp() const;
    void RefreshLocked();
    void LoadLocked();
    bool Modify(const std::string& name, const std::optional<std::u16string>& value);

    std::string path_;
    std::mutex mutex_;
    std::map<std::string, std::u16string> values_;
    std::map<std::string, std::string> overlong_; // name -> value as written in the file
    FileStamp loadedStamp_;
    bool loaded_ = false;
    bool unreadable_ = false; // the file exists but was not read
};

} // namespace mirodate
