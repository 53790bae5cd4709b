#pragma once
// A skin package: a zip archive whose entries are found by name regardless of
// case and unpacked whole into memory. Every operation returns one of the
// result codes below and also leaves it in LastResult().
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace mirodate {

class SkinArchive {
public:
    static constexpr std::uint32_t kOk = 0;
    static constexpr std::uint32_t kItemNotFound = 0x500;
    static constexpr std::uint32_t kNoArchive = 0x10000;
    // The entry exists but its data cannot be unpacked (damaged, too big, bad CRC).
    static constexpr std::uint32_t kItemUnreadable = 0x20000;
    static constexpr std::uint32_t kNotOpenForReading = 0x80000;

    // Entries that claim to be bigger than this are refused before anything
    // is allocated; skins hold a few pictures of a few hundred KB.
    static constexpr std::uint64_t kMaxItemSize = 16 * 1024 * 1024;
    // Limits on one skin as a whole, so that a hostile archive costs no more
    // than a rich real one: its number of entries, what they inflate to
    // together, and the pixels of its pictures. The shipped skins have five
    // entries, 60 KB and under a million pixels.
    static constexpr std::uint64_t kMaxItems = 4096;
    static constexpr std::uint64_t kMaxUnpackedBytes = 48 * 1024 * 1024;
    static constexpr std::int64_t kMaxPicturePixels = 8 * 1024 * 1024;

    struct Item {
        std::uint64_t directoryOffset = 0;
        std::uint64_t index = 0;
        std::uint64_t size = 0; // uncompressed
    };

    SkinArchive();
    ~SkinArchive();
    SkinArchive(const SkinArchive&) = delete;
    SkinArchive& operator=(const SkinArchive&) = delete;

    std::uint32_t Open(const std::string& path);
    // Reads an archive held in memory; the bytes are copied.
    std::uint32_t OpenMemory(std::string_view bytes);
    void Close();
    bool IsOpen() const { return handle_ != nullptr; }

    std::uint32_t FindItem(std::string_view utf8Name, Item& item);
    std::uint32_t FindItem(std::u16string_view name, Item& item);
    // Unpacks `item` into `buffer`, which must hold `item.size` bytes.
    std::uint32_t Unzip(const Item& item, void* buffer, std::uint64_t bufferSize);
    // Finds and unpacks a whole entry; an entry of size 0 gives an empty string.
    std::uint32_t ReadItem(std::string_view utf8Name, std::string& data);

    static std::uint32_t LastResult();

    // Records that the archive went beyond one of the limits above; the
    // loader then does not use the skin. The first reason is kept, and
    // nothing more is unpacked.
    void NoteLimitExceeded(const std::string& reason);
    bool LimitExceeded() const { return !limitReason_.empty(); }
    const std::string& LimitReason() const { return limitReason_; }
    // Pixels the pictures of this skin may still decode to.
    std::int64_t PixelsLeft() const { return kMaxPicturePixels - picturePixels_; }
    void UsePixels(std::int64_t pixels) { picturePixels_ += pixels; }

private:
    struct MemoryStream;
    std::uint32_t Result(std::uint32_t code);
    std::uint32_t CheckItemCount();

    void* handle_ = nullptr; // unzFile
    std::unique_ptr<MemoryStream> memory_;
    std::uint64_t unpackedBytes_ = 0;
    std::int64_t picturePixels_ = 0;
    std::string limitReason_;
};

} // namespace mirodate
