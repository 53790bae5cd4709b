#pragma once
// The files of a vdir root: listing its item files, reading one into a
// stored item, and writing one atomically (a temporary file, synced, then
// renamed over the old one), so that a reader or a crash sees the old file
// or the new one, never a mix.
#include "store/StoredItem.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct stat;

namespace mirodate {

class VdirFileIo {
public:
    static constexpr const char* kFolderNames[3] = {"calendar", "tasks", "contacts"};
    static constexpr int kDirectoryCount = 3;

    explicit VdirFileIo(std::string root);

    const std::string& Root() const { return root_; }
    std::string DirectoryPath(int directory) const;
    std::string FilePath(int directory, const std::string& fileName) const;
    // The store's key of a file: "<directory>/<file name>".
    static std::string Key(int directory, const std::string& fileName);
    // The same built in `key`, which keeps its room between calls.
    static const std::string& KeyInto(int directory, const std::string& fileName, std::string& key);
    // A name the store reads: .ics or .vcf, not hidden (our temporary files are).
    static bool IsItemFile(const std::string& name);
    static std::int64_t MtimeNs(const struct stat& st);

    // An item file found by a listing (VdirListing), with the stamp it has now.
    struct FoundFile {
        int directory = 0;
        std::string name;
        std::int64_t size = 0;
        std::int64_t mtimeNs = 0;
    };

    // A whole regular file of at most the size limit.
    bool ReadWholeFile(const std::string& path, std::string& text) const;
    // Reads one file into an entry (readable or not); `exists` is false when
    // there is no regular file of that name.
    StoredItem ReadFile(int directory, const std::string& fileName, bool& exists) const;
    // Whether the file still has the size and time it had when read.
    bool StampMatches(const StoredItem& item) const;
    bool WriteAtomically(int directory, const std::string& fileName, const std::string& text);

    // A file of a batch written beside its final name (hidden, ".NAME.tmp"),
    // ready to be renamed into place.
    struct StagedFile {
        int directory = 0;
        std::string fileName;
        const std::string* text = nullptr;
        std::string temp;                  // the temporary file, once written
        std::shared_ptr<StoredItem> entry; // its reading, once the batch is synced
    };
    // Writes every file of the batch, syncs the file system once for all of
    // them and reads each back. A file that could not be written, or a batch
    // that could not be synced, has no entry and leaves no temporary file.
    void StageDurably(std::vector<StagedFile>& files) const;
    // The file name an imported item takes: its UID when that is a plain
    // name, else one made from the UID's hash.
    static std::string ImportFileName(const std::string& uid);

private:
    std::string root_;
};

} // namespace mirodate
