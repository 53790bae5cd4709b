#pragma once
// A listing of a vdir's item files in three steps, so that its stat calls,
// most of a start on a store of ten thousand files, can be shared by every
// thread that has nothing else to do: the names are read, then any number
// of threads stamp them (size and modification time) a chunk at a time,
// then the listing is finished with its warnings. A check set meanwhile
// (does the file match the index?) runs on each chunk right after its stamps,
// while the chunk is still in the cache; CheckRest checks the chunks stamped
// before it was set.
#include "store/VdirFileIo.h"

#include <atomic>
#include <cstdint>
#include <dirent.h>
#include <functional>
#include <string>
#include <vector>

namespace mirodate {

class VdirListing {
public:
    // Reads the names of the three directories (made first when `create`).
    VdirListing(const VdirFileIo& io, bool create);
    ~VdirListing();
    VdirListing(const VdirListing&) = delete;
    VdirListing& operator=(const VdirListing&) = delete;

    // Whether a stamped file is as expected; `scratch` is the caller's own.
    using Check = std::function<bool(const VdirFileIo::FoundFile& file, std::string& scratch)>;

    // Stamps chunks of names until none is left; safe on several threads at once.
    void StampAll();
    // Sets the check (once, from any thread); `check` must outlive the listing's use.
    void SetCheck(const Check* check);
    // After every StampAll has returned: checks the chunks stamped before the
    // check was set, on every core. True when a check was set and every
    // regular file passed it.
    bool CheckRest();
    // The regular files with their stamps, the others skipped with a warning;
    // `bytes` is their size in all. Only after every StampAll has returned.
    std::vector<VdirFileIo::FoundFile> Finish(std::uint64_t& bytes);

private:
    enum class Problem : unsigned char { None, Gone, Loop, NotRegular };

    const VdirFileIo& io_;
    DIR* dirs_[VdirFileIo::kDirectoryCount] = {};
    std::vector<VdirFileIo::FoundFile> files_;
    std::vector<Problem> problems_;
    std::atomic<std::size_t> next_{0};
    std::atomic<const Check*> check_{nullptr};
    std::vector<unsigned char> chunkChecked_; // each written by the thread that stamped the chunk
    std::atomic<bool> checkFailed_{false};

    void CheckChunk(const Check& check, std::size_t chunk);
};

} // namespace mirodate
