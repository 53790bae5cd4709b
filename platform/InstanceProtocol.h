#pragma once
// Frames exchanged over the instance socket. Every frame is one type byte,
// a 32-bit little-endian payload length and the payload. The running
// instance answers every request frame with one reply frame of type 'R'.
#include <cstdint>
#include <string>

namespace mirodate::instance {

enum FrameType : char {
    kFindWindow = 'W',   // payload: class "\n" title (UTF-8); reply: "1" or "0"
    kBroadcast = 'B',    // payload: registered message name; reply: empty
    kCopyData = 'C',     // payload: dwData (4 bytes LE) + the bytes; reply: result (4 bytes LE)
    kBringToFront = 'F', // payload: class "\n" title; reply: empty
    kClose = 'X',        // payload: class "\n" title; WM_CLOSE without waiting; reply: empty
    kReply = 'R',
};

constexpr size_t kHeaderSize = 5;
// A command text is a few hundred bytes; anything past this is not ours and
// ends the connection instead of being buffered.
constexpr std::uint32_t kMaxPayload = 64 * 1024;
// A client that stops sending half-way is dropped after this long.
constexpr int kClientTimeoutMs = 2000;

inline std::string EncodeU32(std::uint32_t value) {
    std::string out(4, '\0');
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<char>((value >> (8 * i)) & 0xFF);
    return out;
}

inline std::uint32_t DecodeU32(const char* bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) << (8 * i);
    return value;
}

inline std::string EncodeFrame(char type, const std::string& payload) {
    return std::string(1, type) + EncodeU32(static_cast<std::uint32_t>(payload.size())) + payload;
}

} // namespace mirodate::instance
