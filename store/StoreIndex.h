#pragma once
// A derived index of a vdir kept under $XDG_CACHE_HOME/mirodate/, so that a
// start does not parse every file again. It is never the source of truth:
// an entry is used only while the file's size and modification time match,
// the whole index only for the same folder and local time zone, and the
// file may be deleted at any time.
#include "store/StoredItem.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace mirodate {

class StoreIndex {
public:
    // By "<folder>/<file name>"; each entry ready to be published, with the
    // OID it had when the index was written.
    using Entries = std::unordered_map<std::string, std::shared_ptr<StoredItem>>;

    // The index file of a store root.
    static std::string PathFor(const std::string& root);
    // What local times in the index depend on (TZ and /etc/localtime).
    static std::string ZoneSignature();

    // Empty when the file is missing, damaged, or for another root or zone.
    // An index with more entries than the store has files, or more bytes
    // than its files could give, is not read: it is stale or not ours.
    // `order`, when given, gets the entries as the file holds them, which
    // is folder and file name order for an index this program wrote.
    static Entries Load(const std::string& path, const std::string& root, const std::string& zone,
                        std::size_t maxEntries = SIZE_MAX, std::uint64_t maxBytes = UINT64_MAX,
                        std::vector<std::shared_ptr<StoredItem>>* order = nullptr);
    // The most bytes an honest index of `files` files of `fileBytes` bytes
    // in all can take: their text twice over (UTF-16) and a record each.
    static std::uint64_t MaxBytesFor(std::size_t files, std::uint64_t fileBytes);
    // Writes the items in folder and file name order.
    static bool Save(const std::string& path, const std::string& root, const std::string& zone,
                     std::vector<const StoredItem*> items);
};

} // namespace mirodate
