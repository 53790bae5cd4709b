#include "skin/SkinArchive.h"

#include "platform/TextUtil.h"

#include <minizip/unzip.h>

#include <algorithm>
#include <climits>
#include <cstring>

namespace mirodate {

namespace {

std::uint32_t g_lastResult = SkinArchive::kOk;

// Entry names are compared case-insensitively by minizip's own comparison.
constexpr int kCaseInsensitive = 2;

} // namespace

// minizip reads archives through these callbacks when the archive is in memory.
struct SkinArchive::MemoryStream {
    std::string bytes;
    std::uint64_t position = 0;

    static voidpf ZCALLBACK OpenFile(voidpf opaque, const void*, int mode) {
        return (mode & ZLIB_FILEFUNC_MODE_WRITE) ? nullptr : opaque;
    }
    static uLong ZCALLBACK ReadFile(voidpf, voidpf stream, void* buffer, uLong size) {
        auto* self = static_cast<MemoryStream*>(stream);
        const std::uint64_t left =
            self->bytes.size() - std::min<std::uint64_t>(self->position, self->bytes.size());
        const uLong count = static_cast<uLong>(std::min<std::uint64_t>(size, left));
        if (count > 0)
            std::memcpy(buffer, self->bytes.data() + self->position, count);
        self->position += count;
        return count;
    }
    static uLong ZCALLBACK WriteFile(voidpf, voidpf, const void*, uLong) { return 0; }
    static ZPOS64_T ZCALLBACK Tell(voidpf, voidpf stream) {
        return static_cast<MemoryStream*>(stream)->position;
    }
    static long ZCALLBACK Seek(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
        auto* self = static_cast<MemoryStream*>(stream);
        std::uint64_t base = 0;
        if (origin == ZLIB_FILEFUNC_SEEK_CUR)
            base = self->position;
        else if (origin == ZLIB_FILEFUNC_SEEK_END)
            base = self->bytes.size();
        if (offset > self->bytes.size() || base + offset > self->bytes.size())
            return -1;
        self->position = base + offset;
        return 0;
    }
    static int ZCALLBACK CloseFile(voidpf, voidpf) { return 0; }
    static int ZCALLBACK TestError(voidpf, voidpf) { return 0; }
};

SkinArchive::SkinArchive() = default;
SkinArchive::~SkinArchive() {
    Close();
}

std::uint32_t SkinArchive::Result(std::uint32_t code) {
    g_lastResult = code;
    return code;
}

std::uint32_t SkinArchive::LastResult() {
    return g_lastResult;
}

std::uint32_t SkinArchive::Open(const std::string& path) {
    Close();
    handle_ = unzOpen64(path.c_str());
    return handle_ ? CheckItemCount() : Result(kNotOpenForReading);
}

// Every look-up walks the directory, so its length is bounded.
std::uint32_t SkinArchive::CheckItemCount() {
    unz_global_info64 info{};
    if (unzGetGlobalInfo64(handle_, &info) != UNZ_OK) {
        Close();
        return Result(kNotOpenForReading);
    }
    if (info.number_entry > kMaxItems) {
        Close();
        NoteLimitExceeded(std::to_string(info.number_entry) + " entries, more than the " +
                          std::to_string(kMaxItems) + " a skin may have");
        return Result(kNotOpenForReading);
    }
    return Result(kOk);
}

void SkinArchive::NoteLimitExceeded(const std::string& reason) {
    if (limitReason_.empty())
        limitReason_ = reason;
}

std::uint32_t SkinArchive::OpenMemory(std::string_view bytes) {
    Close();
    memory_ = std::make_unique<MemoryStream>();
    memory_->bytes.assign(bytes);
    zlib_filefunc64_def functions{};
    functions.zopen64_file = &MemoryStream::OpenFile;
    functions.zread_file = &MemoryStream::ReadFile;
    functions.zwrite_file = &MemoryStream::WriteFile;
    functions.ztell64_file = &MemoryStream::Tell;
    functions.zseek64_file = &MemoryStream::Seek;
    functions.zclose_file = &MemoryStream::CloseFile;
    functions.zerror_file = &MemoryStream::TestError;
    functions.opaque = memory_.get();
    handle_ = unzOpen2_64("memory", &functions);
    if (!handle_) {
        memory_.reset();
        return Result(kNotOpenForReading);
    }
    return CheckItemCount();
}

void SkinArchive::Close() {
    if (handle_)
        unzClose(handle_);
    handle_ = nullptr;
    memory_.reset();
    unpackedBytes_ = 0;
    picturePixels_ = 0;
    limitReason_.clear();
}

std::uint32_t SkinArchive::FindItem(std::string_view utf8Name, Item& item) {
    if (!handle_)
        return Result(kNoArchive);
    const std::string name(utf8Name);
    if (name.empty() || unzLocateFile(handle_, name.c_str(), kCaseInsensitive) != UNZ_OK)
        return Result(kItemNotFound);
    unz64_file_pos position{};
    unz_file_info64 info{};
    if (unzGetFilePos64(handle_, &position) != UNZ_OK ||
        unzGetCurrentFileInfo64(handle_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK)
        return Result(kItemNotFound);
    item.directoryOffset = position.pos_in_zip_directory;
    item.index = position.num_of_file;
    item.size = info.uncompressed_size;
    return Result(kOk);
}

std::uint32_t SkinArchive::FindItem(std::u16string_view name, Item& item) {
    return FindItem(std::string_view(Utf16ToUtf8(name)), item);
}

std::uint32_t SkinArchive::Unzip(const Item& item, void* buffer, std::uint64_t bufferSize) {
    if (!handle_)
        return Result(kNoArchive);
    if (item.size > kMaxItemSize || bufferSize < item.size || LimitExceeded())
        return Result(kItemUnreadable);
    if (unpackedBytes_ + item.size > kMaxUnpackedBytes) {
        NoteLimitExceeded("its entries inflate to more than the " +
                          std::to_string(kMaxUnpackedBytes / (1024 * 1024)) + " MB a skin may have");
        return Result(kItemUnreadable);
    }
    unpackedBytes_ += item.size;
    unz64_file_pos position{item.directoryOffset, item.index};
    if (unzGoToFilePos64(handle_, &position) != UNZ_OK)
        return Result(kItemNotFound);
    if (unzOpenCurrentFile(handle_) != UNZ_OK)
        return Result(kItemUnreadable);
    auto* out = static_cast<char*>(buffer);
    std::uint64_t done = 0;
    bool failed = false;
    while (done < item.size) {
        const unsigned chunk = static_cast<unsigned>(std::min<std::uint64_t>(item.size - done, INT_MAX));
        const int got = unzReadCurrentFile(handle_, out + done, chunk);
        if (got <= 0) {
            failed = true;
            break;
        }
        done += static_cast<std::uint64_t>(got);
    }
    // Closing checks the CRC once the whole entry was read.
    const int closed = unzCloseCurrentFile(handle_);
    return Result(failed || closed != UNZ_OK ? kItemUnreadable : kOk);
}

std::uint32_t SkinArchive::ReadItem(std::string_view utf8Name, std::string& data) {
    data.clear();
    Item item;
    if (const std::uint32_t found = FindItem(utf8Name, item); found != kOk)
        return found;
    if (item.size > kMaxItemSize) {
        NoteLimitExceeded("entry " + std::string(utf8Name) + " inflates to " + std::to_string(item.size) +
                          " bytes, more than the " + std::to_string(kMaxItemSize / (1024 * 1024)) +
                          " MB an entry may have");
        return Result(kItemUnreadable);
    }
    data.resize(static_cast<size_t>(item.size));
    const std::uint32_t result = Unzip(item, data.data(), data.size());
    if (result != kOk)
        data.clear();
    return result;
}

} // namespace mirodate
