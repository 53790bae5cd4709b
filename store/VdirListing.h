#pragma once
// A listing of a vdir's item files in three steps, so that its stat calls,
// most of a start on a store of ten thousand files, can be shared by every
// thread that has nothing else to do: the names are read, then any number
// of threads stamp them (size and modification time) a chunk at a time,
// then the listing is finished with its warnings.
#include "store/VdirFileIo.h"

#include <atomic>
#include <cstdint>
#include <dirent.h>
#include <vector>

namespace mirodate {

class VdirListing {
public:
    // Reads the names of the three directories (made first when `create`).
    VdirListing(const VdirFileIo& io, bool create);
    ~VdirListing();
    VdirListing(const VdirListing&) = delete;
    VdirListing& operator=(const VdirListing&) = delete;

    // Stamps chunks of names until none is left; safe on several threads at once.
    void StampAll();
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
};

} // namespace mirodate
