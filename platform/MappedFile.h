#pragma once
// A whole file mapped read-only, its pages read in at once: a large file
// is read without a buffer to zero and copy into. Unmapped on destruction.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace mirodate {

class MappedFile {
public:
    MappedFile() = default;
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    // Maps a regular file of at most `maxBytes`; false (and nothing mapped)
    // when it is missing, empty, not a regular file or larger. `size` tells
    // the size found, also when it was too large.
    bool Open(const std::string& path, std::uint64_t maxBytes, std::uint64_t& size);
    std::string_view Data() const { return {static_cast<const char*>(data_), size_}; }

private:
    void* data_ = nullptr;
    std::size_t size_ = 0;
};

} // namespace mirodate
