#include "platform/InstanceFrameReader.h"

#include "platform/InstanceProtocol.h"

namespace mirodate {

using namespace instance;

void InstanceFrameReader::Append(const char* bytes, std::size_t size) {
    if (refused_)
        return;
    // Drop what was handed out before growing, so the buffer stays one frame long.
    if (consumed_ > 0) {
        buffer_.erase(0, consumed_);
        consumed_ = 0;
    }
    buffer_.append(bytes, size);
}

InstanceFrameReader::Result InstanceFrameReader::Next(Frame& frame) {
    if (refused_)
        return Result::TooLarge;
    if (Buffered() < kHeaderSize)
        return Result::NeedMore;
    const char* head = buffer_.data() + consumed_;
    const std::uint32_t length = DecodeU32(head + 1);
    if (length > kMaxPayload) {
        refused_ = true;
        buffer_.clear();
        consumed_ = 0;
        return Result::TooLarge;
    }
    if (Buffered() - kHeaderSize < length)
        return Result::NeedMore;
    frame.type = head[0];
    frame.payload.assign(head + kHeaderSize, length);
    consumed_ += kHeaderSize + length;
    return Result::Frame;
}

void InstanceFrameReader::SplitClassTitle(const std::string& payload, std::string& className,
                                          std::string& title) {
    const std::size_t newline = payload.find('\n');
    className = payload.substr(0, newline);
    title = newline == std::string::npos ? std::string() : payload.substr(newline + 1);
}

} // namespace mirodate
