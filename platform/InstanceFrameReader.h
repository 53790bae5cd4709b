#pragma once
// Cuts the byte stream of one instance-link client into frames: bytes are
// appended as they arrive, complete frames taken out one at a time. A frame
// announcing more than the protocol allows is refused before its payload is
// waited for, so a client cannot make the server buffer without bound.
#include <cstddef>
#include <string>

namespace mirodate {

class InstanceFrameReader {
public:
    struct Frame {
        char type = 0;
        std::string payload;
    };
    enum class Result { Frame, NeedMore, TooLarge };

    void Append(const char* bytes, std::size_t size);
    // The next complete frame; TooLarge ends the stream for good.
    Result Next(Frame& frame);
    std::size_t Buffered() const { return buffer_.size() - consumed_; }

    // "class\ntitle" payloads; a payload without a newline is all class.
    static void SplitClassTitle(const std::string& payload, std::string& className, std::string& title);

private:
    std::string buffer_;
    std::size_t consumed_ = 0; // bytes of buffer_ already handed out
    bool refused_ = false;
};

} // namespace mirodate
