#include "skin/PngChecker.h"

#include <zlib.h>

#include <array>
#include <cstring>

namespace mirodate {

namespace {

constexpr unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kChunkOverhead = 12; // length, type, CRC
constexpr std::size_t kIhdrLength = 13;
// Encoders may leave a few bytes after the last scan line; libpng accepts them.
constexpr std::uint64_t kInflateSlack = 1024;

std::uint32_t BigEndian32(const unsigned char* p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}

bool IsEssential(std::string_view type) {
    return type == "IHDR" || type == "PLTE" || type == "tRNS" || type == "IDAT" || type == "IEND";
}

// Inflates the IDAT data as one stream, giving up as soon as it produces
// more than `limit` bytes. True when the whole stream fits.
class BoundedInflater {
public:
    explicit BoundedInflater(std::uint64_t limit) : limit_(limit) { ok_ = inflateInit(&stream_) == Z_OK; }
    ~BoundedInflater() {
        if (ok_)
            inflateEnd(&stream_);
    }
    BoundedInflater(const BoundedInflater&) = delete;
    BoundedInflater& operator=(const BoundedInflater&) = delete;

    // False once the stream is broken or too long.
    bool Feed(std::string_view data) {
        if (!ok_ || tooLong_)
            return false;
        stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
        stream_.avail_in = static_cast<uInt>(data.size());
        while (stream_.avail_in > 0 && !ended_) {
            stream_.next_out = buffer_.data();
            stream_.avail_out = static_cast<uInt>(buffer_.size());
            const int status = inflate(&stream_, Z_NO_FLUSH);
            produced_ += buffer_.size() - stream_.avail_out;
            if (produced_ > limit_) {
                tooLong_ = true;
                return false;
            }
            if (status == Z_STREAM_END)
                ended_ = true;
            else if (status != Z_OK && status != Z_BUF_ERROR)
                return ok_ = false;
            else if (status == Z_BUF_ERROR && stream_.avail_out != 0)
                break;
        }
        return true;
    }
    bool TooLong() const { return tooLong_; }

private:
    z_stream stream_{};
    std::array<Bytef, 64 * 1024> buffer_{};
    std::uint64_t limit_;
    std::uint64_t produced_ = 0;
    bool ok_ = false;
    bool ended_ = false;
    bool tooLong_ = false;
};

} // namespace

std::uint64_t PngChecker::RawImageBytes(std::uint32_t width, std::uint32_t height, int bitDepth,
                                        int colorType, bool interlaced) {
    int channels = 0;
    switch (colorType) {
    case 0:
        channels = 1;
        break; // grey
    case 2:
        channels = 3;
        break; // RGB
    case 3:
        channels = 1;
        break; // palette
    case 4:
        channels = 2;
        break; // grey and alpha
    case 6:
        channels = 4;
        break; // RGBA
    default:
        return 0;
    }
    if (bitDepth != 1 && bitDepth != 2 && bitDepth != 4 && bitDepth != 8 && bitDepth != 16)
        return 0;
    const std::uint64_t bitsPerPixel = static_cast<std::uint64_t>(channels) * bitDepth;
    auto lines = [&](std::uint64_t columns, std::uint64_t rows) {
        return columns == 0 || rows == 0 ? 0 : rows * (1 + (columns * bitsPerPixel + 7) / 8);
    };
    if (!interlaced)
        return lines(width, height);
    // Adam7: start column and row, and the steps, of the seven passes.
    static constexpr int kPasses[7][4] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                          {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
    std::uint64_t total = 0;
    for (const auto& pass : kPasses) {
        const std::uint64_t columns =
            width > static_cast<std::uint32_t>(pass[0]) ? (width - pass[0] + pass[2] - 1) / pass[2] : 0;
        const std::uint64_t rows =
            height > static_cast<std::uint32_t>(pass[1]) ? (height - pass[1] + pass[3] - 1) / pass[3] : 0;
        total += lines(columns, rows);
    }
    return total;
}

PngChecker::Result PngChecker::Check(std::string_view data, std::int64_t maxPixels, int maxSide,
                                     std::string& essential, int& width, int& height) {
    essential.clear();
    if (data.size() < sizeof kSignature + kChunkOverhead + kIhdrLength ||
        std::memcmp(data.data(), kSignature, sizeof kSignature) != 0)
        return Result::NotPng;
    const auto* bytes = reinterpret_cast<const unsigned char*>(data.data());
    if (BigEndian32(bytes + 8) != kIhdrLength || std::memcmp(bytes + 12, "IHDR", 4) != 0)
        return Result::NotPng;
    const std::uint32_t w = BigEndian32(bytes + 16);
    const std::uint32_t h = BigEndian32(bytes + 20);
    if (w == 0 || h == 0)
        return Result::NotPng;
    if (w > static_cast<std::uint32_t>(maxSide) || h > static_cast<std::uint32_t>(maxSide) ||
        static_cast<std::int64_t>(w) * h > maxPixels)
        return Result::TooManyPixels;
    const std::uint64_t raw = RawImageBytes(w, h, bytes[24], bytes[25], bytes[28] == 1);
    if (raw == 0)
        return Result::NotPng;

    BoundedInflater inflater(raw + kInflateSlack);
    essential.reserve(data.size());
    essential.append(data.substr(0, sizeof kSignature));
    std::size_t position = sizeof kSignature;
    bool ended = false;
    while (!ended) {
        if (data.size() - position < kChunkOverhead)
            return Result::NotPng;
        const std::uint32_t length = BigEndian32(bytes + position);
        if (length > data.size() - position - kChunkOverhead)
            return Result::NotPng;
        const std::string_view type = data.substr(position + 4, 4);
        const std::string_view content = data.substr(position + 8, length);
        if (type == "IDAT" && !inflater.Feed(content))
            return inflater.TooLong() ? Result::TooMuchData : Result::NotPng;
        if (IsEssential(type))
            essential.append(data.substr(position, kChunkOverhead + length));
        ended = type == "IEND";
        position += kChunkOverhead + length;
    }
    width = static_cast<int>(w);
    height = static_cast<int>(h);
    return Result::Ok;
}

} // namespace mirodate
