#pragma once
// The files of a vdir root: listing its item files, reading one into a
// stored item, and writing one atomically (a temporary file, synced, then
// renamed over the old one), so that a reader or a crash sees the old file
// or the new one, never a mix.
#include "store/StoredItem.h"

#include <cstdint>
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

private:
    std::string root_;
};

} // namespace mirodate
