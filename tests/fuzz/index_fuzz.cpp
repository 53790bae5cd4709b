// Feeds arbitrary entries to the store's index reader behind a header that
// matches (so the entries themselves are read), then hands what it accepts
// to the store's tables, and writes and reads it again: the second reading
// must give as many entries as the first.
#include "store/OidRegistry.h"
#include "store/StoreIndex.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

void AppendString(std::string& out, const std::string& text) {
    const auto size = static_cast<std::uint32_t>(text.size());
    out.append(reinterpret_cast<const char*>(&size), sizeof size);
    out += text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mirodate;
    static const std::string path = "/tmp/mirodate-index-fuzz-" + std::to_string(getpid()) + ".bin";
    const std::string root = "/fuzz/store", zone = "TZ=UTC";
    std::string file = "MIRODATE-INDEX-11\n";
    AppendString(file, root);
    AppendString(file, zone);
    file.append(reinterpret_cast<const char*>(data), size);
    std::ofstream(path, std::ios::binary | std::ios::trunc) << file;

    std::vector<OidRegistry::Entry> order;
    StoreIndex::Entries entries = StoreIndex::Load(path, root, zone, SIZE_MAX, UINT64_MAX, &order);
    const std::size_t count = entries.size();
    std::vector<const StoredItem*> items;
    for (const auto& [key, item] : entries)
        items.push_back(item.get());
    if (count > 0 && !StoreIndex::Save(path, root, zone, items))
        abort();
    OidRegistry registry;
    registry.Adopt(std::move(entries), std::move(order));
    registry.AssignAll(true);
    if (count > 0 && StoreIndex::Load(path, root, zone).size() != count)
        abort();
    return 0;
}
