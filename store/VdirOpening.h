#pragma once
// The opening of a vdir: its files listed and compared with the derived
// index, into the tables the store keeps. The index is read on a thread of
// its own while the folders are listed, and made into the tables as if every
// file were as it has them; the listing then only confirms that, which is
// what a start finds nearly always. Files new or changed since are read on
// every core.
#include "store/OidRegistry.h"
#include "store/VdirFileIo.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

class VdirOpening {
public:
    // `useIndex` false: every file is read and no index is looked at.
    VdirOpening(const VdirFileIo& io, bool createFolders, bool useIndex);

    // The tables of the files as they are now; run once.
    OidRegistry Open();

    // Whether the tables differ from the index (it should be written again).
    bool Dirty() const { return dirty_; }
    std::size_t FileCount() const { return found_.size(); }
    std::size_t ReusedCount() const { return reused_; }
    std::size_t ReadCount() const { return read_; }

private:
    // Lists and stamps the files while the index is read into prepared_.
    // True when every listed regular file is as the index has it.
    bool ListBesideIndex(OidRegistry& prepared);
    // Whether an index of `entries` entries fits the files listed; one that
    // does not is stale or not ours.
    bool IndexFits(std::size_t entries) const;
    // The tables from the index entries that still hold and the files read.
    OidRegistry FromFiles(OidRegistry::Files index, bool indexFits);
    void WarnSkipped(const StoredItem& item) const;

    const VdirFileIo& io_;
    const bool createFolders_;
    const bool useIndex_;
    const std::string indexPath_;
    std::vector<VdirFileIo::FoundFile> found_;
    std::uint64_t foundBytes_ = 0;
    bool dirty_ = false;
    std::size_t reused_ = 0;
    std::size_t read_ = 0;
};

} // namespace mirodate
