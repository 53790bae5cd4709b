// Feeds arbitrary bytes to the instance link's frame reader in pieces of
// varying size, as a client's sends arrive, and reads each frame's payload
// the way the running instance does: class and title, or a command text.
#include "app/Application.h"
#include "app/CommandRequest.h"
#include "platform/InstanceFrameReader.h"
#include "platform/InstanceProtocol.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mirodate;
    if (size < 1)
        return 0;
    // The first byte sets the size of the pieces (1..256).
    const std::size_t piece = static_cast<std::size_t>(data[0]) + 1;
    const char* bytes = reinterpret_cast<const char*>(data + 1);
    const std::size_t length = size - 1;
    InstanceFrameReader reader;
    InstanceFrameReader::Frame frame;
    std::size_t handedOut = 0;
    for (std::size_t at = 0; at < length; at += piece) {
        reader.Append(bytes + at, std::min(piece, length - at));
        for (;;) {
            const InstanceFrameReader::Result result = reader.Next(frame);
            if (result != InstanceFrameReader::Result::Frame)
                break;
            handedOut += instance::kHeaderSize + frame.payload.size();
            std::string className, title;
            switch (frame.type) {
            case instance::kCopyData:
                if (frame.payload.size() >= 4)
                    CommandRequest::Parse(Application::CommandFromPayload(frame.payload.substr(4)));
                break;
            default:
                InstanceFrameReader::SplitClassTitle(frame.payload, className, title);
                break;
            }
        }
        // Never more buffered than one frame's header and largest payload plus a piece.
        if (reader.Buffered() > instance::kHeaderSize + instance::kMaxPayload + piece)
            abort();
    }
    if (handedOut > length)
        abort();
    return 0;
}
