#include "store/VdirOpening.h"

#include "platform/Log.h"
#include "platform/ParallelFor.h"
#include "platform/TextUtil.h"
#include "store/StoreIndex.h"
#include "store/VdirListing.h"

#include <atomic>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace mirodate {

namespace {

// Files read per thread below which another thread does not pay.
constexpr std::size_t kMinReadsPerSlice = 64;

} // namespace

VdirOpening::VdirOpening(const VdirFileIo& io, bool createFolders, bool useIndex)
    : io_(io), createFolders_(createFolders), useIndex_(useIndex),
      indexPath_(StoreIndex::PathFor(io.Root())) {}

OidRegistry VdirOpening::Open() {
    OidRegistry prepared;
    const bool allMatchIndex = ListBesideIndex(prepared);
    const std::size_t indexed = prepared.GetFiles().size();
    const bool indexFits = indexed == 0 || IndexFits(indexed);
    // Every file as the index has it, and no other: its tables are the store's.
    if (allMatchIndex && indexFits && indexed == found_.size() && indexed > 0) {
        for (const auto& [key, item] : prepared.GetFiles())
            if (!item->readable)
                WarnSkipped(*item);
        reused_ = indexed;
        return prepared;
    }
    return FromFiles(prepared.TakeFiles(), indexFits);
}

bool VdirOpening::ListBesideIndex(OidRegistry& prepared) {
    // Whether a listed file is as the index has it.
    const VdirListing::Check matchesIndex = [&prepared](const VdirFileIo::FoundFile& file, std::string& key) {
        const StoredItem* known = prepared.PeekFile(VdirFileIo::KeyInto(file.directory, file.name, key));
        return known && known->size == file.size && known->mtimeNs == file.mtimeNs;
    };
    // The listing's names, once read: the index thread, or a thread of its
    // own without an index, helps stamp them, and the index thread checks
    // them against the index as they are stamped.
    std::atomic<VdirListing*> names{nullptr};
    auto readIndex = [&] {
        std::vector<OidRegistry::Entry> order;
        auto entries = StoreIndex::Load(indexPath_, io_.Root(), StoreIndex::ZoneSignature(), SIZE_MAX,
                                        UINT64_MAX, &order);
        prepared.Adopt(std::move(entries), std::move(order));
        prepared.AssignAll(true);
    };
    auto stampWhenListed = [&names] {
        names.wait(nullptr);
        names.load()->StampAll();
    };
    std::vector<std::thread> helpers;
    auto startHelper = [&helpers](auto work) {
        try {
            helpers.emplace_back(std::move(work));
            return true;
        } catch (const std::system_error&) {
            return false; // no thread to be had: the work is done here
        }
    };
    bool indexReadHere = false;
    if (useIndex_) {
        indexReadHere = !startHelper([&] {
            readIndex();
            names.wait(nullptr);
            if (!prepared.GetFiles().empty())
                names.load()->SetCheck(&matchesIndex);
            names.load()->StampAll();
        });
        if (indexReadHere)
            readIndex();
    }
    // Every other core stamps names too, this one included.
    for (std::size_t core = helpers.size() + 1; core < std::min(CoreCount(), kMaxParallelSlices); ++core)
        if (!startHelper(stampWhenListed))
            break;
    VdirListing listing(io_, createFolders_);
    if (indexReadHere && !prepared.GetFiles().empty())
        listing.SetCheck(&matchesIndex);
    names.store(&listing);
    names.notify_all();
    listing.StampAll();
    for (std::thread& helper : helpers)
        helper.join();
    const bool allMatchIndex = listing.CheckRest();
    found_ = listing.Finish(foundBytes_);
    return allMatchIndex;
}

bool VdirOpening::IndexFits(std::size_t entries) const {
    if (entries > found_.size()) {
        Log::Info("store: the index %s has more entries than the store has files; it is built again",
                  PrintableText(indexPath_).c_str());
        return false;
    }
    struct stat st {};
    if (stat(indexPath_.c_str(), &st) == 0 &&
        static_cast<std::uint64_t>(st.st_size) > StoreIndex::MaxBytesFor(found_.size(), foundBytes_)) {
        // Stale (files deleted while the program was not running) or not ours.
        Log::Info("store: the index %s is larger than the store's files can explain; it is built again",
                  PrintableText(indexPath_).c_str());
        return false;
    }
    return true;
}

OidRegistry VdirOpening::FromFiles(OidRegistry::Files index, bool indexFits) {
    if (!indexFits)
        index.clear();
    OidRegistry registry;
    registry.Reserve(found_.size());
    // Each file takes its entry when it is as the index has it, and is read when not.
    std::vector<std::size_t> unread;
    std::string key;
    for (std::size_t i = 0; i < found_.size(); ++i) {
        const VdirFileIo::FoundFile& file = found_[i];
        auto known = index.find(VdirFileIo::KeyInto(file.directory, file.name, key));
        if (known == index.end() || known->second->size != file.size ||
            known->second->mtimeNs != file.mtimeNs) {
            unread.push_back(i);
            continue;
        }
        if (!known->second->readable)
            WarnSkipped(*known->second);
        registry.Add(index.extract(known));
        ++reused_;
    }
    std::vector<StoredItem> fresh(unread.size());
    std::vector<unsigned char> exists(unread.size(), 0);
    ParallelFor(unread.size(), kMinReadsPerSlice, [&](std::size_t begin, std::size_t end) {
        for (std::size_t j = begin; j < end; ++j) {
            const VdirFileIo::FoundFile& file = found_[unread[j]];
            bool there = false;
            fresh[j] = io_.ReadFile(file.directory, file.name, there);
            exists[j] = there;
        }
    });
    read_ = unread.size();
    // Entries left over are files gone since; an index that did not fit is rewritten.
    dirty_ = !indexFits || !index.empty();
    for (std::size_t j = 0; j < unread.size(); ++j) {
        if (!exists[j])
            continue;
        const VdirFileIo::FoundFile& file = found_[unread[j]];
        registry.Add(VdirFileIo::Key(file.directory, file.name),
                     std::make_shared<StoredItem>(std::move(fresh[j])));
        dirty_ = true;
    }
    registry.AssignAll();
    return registry;
}

void VdirOpening::WarnSkipped(const StoredItem& item) const {
    Log::Warning("store: skipped %s: %s", PrintableText(io_.FilePath(item.directory, item.fileName)).c_str(),
                 PrintableText(item.problem).c_str());
}

} // namespace mirodate
