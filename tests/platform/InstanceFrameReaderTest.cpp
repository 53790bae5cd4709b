#include "platform/InstanceFrameReader.h"
#include "platform/InstanceProtocol.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace mirodate {
namespace {

using Result = InstanceFrameReader::Result;

TEST(InstanceFrameReader, FramesArriveInAnyPieces) {
    const std::string stream = instance::EncodeFrame('W', "MirodateMain\nMirodate") +
                               instance::EncodeFrame('B', "") +
                               instance::EncodeFrame('C', std::string("\0\0\0\0x\0", 6));
    for (std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{7}, stream.size()}) {
        InstanceFrameReader reader;
        std::vector<InstanceFrameReader::Frame> frames;
        for (std::size_t at = 0; at < stream.size(); at += piece) {
            reader.Append(stream.data() + at, std::min(piece, stream.size() - at));
            for (InstanceFrameReader::Frame frame; reader.Next(frame) == Result::Frame;)
                frames.push_back(frame);
        }
        ASSERT_EQ(frames.size(), 3u) << "pieces of " << piece;
        EXPECT_EQ(frames[0].type, 'W');
        EXPECT_EQ(frames[0].payload, "MirodateMain\nMirodate");
        EXPECT_EQ(frames[1].payload, "");
        EXPECT_EQ(frames[2].payload, std::string("\0\0\0\0x\0", 6));
        EXPECT_EQ(reader.Buffered(), 0u);
    }
    std::string className, title;
    InstanceFrameReader::SplitClassTitle("only", className, title);
    EXPECT_EQ(className, "only");
    EXPECT_EQ(title, "");
}

TEST(InstanceFrameReader, AnOversizedFrameEndsTheStreamWithoutWaitingForIt) {
    InstanceFrameReader reader;
    const std::string header = std::string(1, 'C') + instance::EncodeU32(instance::kMaxPayload + 1);
    reader.Append(header.data(), header.size());
    InstanceFrameReader::Frame frame;
    EXPECT_EQ(reader.Next(frame), Result::TooLarge);
    // Whatever follows is not buffered, and the stream stays refused.
    const std::string more(4096, 'x');
    reader.Append(more.data(), more.size());
    EXPECT_EQ(reader.Buffered(), 0u);
    EXPECT_EQ(reader.Next(frame), Result::TooLarge);
    // The largest allowed frame is taken.
    InstanceFrameReader large;
    const std::string biggest = instance::EncodeFrame('B', std::string(instance::kMaxPayload, 'b'));
    large.Append(biggest.data(), biggest.size());
    ASSERT_EQ(large.Next(frame), Result::Frame);
    EXPECT_EQ(frame.payload.size(), instance::kMaxPayload);
}

} // namespace
} // namespace mirodate
