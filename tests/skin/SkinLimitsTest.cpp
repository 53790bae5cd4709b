// Skin archives are downloaded: their pictures, entries and style file are
// bounded, and a skin that goes beyond a bound is not used at all.
#include "SkinTestFiles.h"
#include "skin/PictureCache.h"
#include "skin/PngChecker.h"
#include "skin/SkinArchive.h"
#include "skin/SkinLoader.h"
#include "skin/SkinPicture.h"
#include "skin/SkinStyles.h"

#include <gtest/gtest.h>
#include <zlib.h>

namespace mirodate {
namespace {

using test::MakePng;
using test::MakeZip;
using test::TempFolder;
using test::ZipEntry;

std::string BigEndian(std::uint32_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
            static_cast<char>(value)};
}

std::string Chunk(const std::string& type, const std::string& data) {
    const std::string body = type + data;
    const uLong crc = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    return BigEndian(static_cast<std::uint32_t>(data.size())) + body +
           BigEndian(static_cast<std::uint32_t>(crc));
}

std::string Deflated(const std::string& data) {
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    std::string out(size, '\0');
    compress2(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(data.data()),
              static_cast<uLong>(data.size()), Z_BEST_COMPRESSION);
    out.resize(size);
    return out;
}

// An 8-bit RGBA picture of transparent black whose image data is `raw`
// inflated bytes long; `before` goes between the header and the data.
std::string Png(std::uint32_t width, std::uint32_t height, std::size_t raw, const std::string& before = {}) {
    const std::string header = BigEndian(width) + BigEndian(height) + std::string("\x08\x06\x00\x00\x00", 5);
    return std::string("\x89PNG\r\n\x1a\n", 8) + Chunk("IHDR", header) + before +
           Chunk("IDAT", Deflated(std::string(raw, '\0'))) + Chunk("IEND", "");
}

std::size_t Needed(std::uint32_t width, std::uint32_t height) {
    return height * (1 + 4 * width);
}

TEST(PngChecker, KnowsTheImageDataOfEveryLayout) {
    EXPECT_EQ(PngChecker::RawImageBytes(3, 2, 8, 6, false), 2u * (1 + 12));
    EXPECT_EQ(PngChecker::RawImageBytes(3, 2, 16, 2, false), 2u * (1 + 18));
    EXPECT_EQ(PngChecker::RawImageBytes(9, 1, 1, 0, false), 1u * (1 + 2)); // bits round up to bytes
    EXPECT_EQ(PngChecker::RawImageBytes(5, 1, 4, 3, false), 1u * (1 + 3));
    // Seven passes of an interlaced 8 x 8 one-bit picture: rows x (filter + bytes).
    EXPECT_EQ(PngChecker::RawImageBytes(8, 8, 1, 0, true), 2u + 2 + 2 + 4 + 4 + 8 + 8);
    EXPECT_EQ(PngChecker::RawImageBytes(1, 1, 8, 6, true), 5u);  // the first pass alone
    EXPECT_EQ(PngChecker::RawImageBytes(4, 4, 3, 6, false), 0u); // no such depth
    EXPECT_EQ(PngChecker::RawImageBytes(4, 4, 8, 5, false), 0u); // no such colour type

    // The pictures cairo writes inflate to exactly that.
    std::string essential;
    int width = 0, height = 0;
    EXPECT_EQ(PngChecker::Check(MakePng(33, 7, 0x102030), SkinPicture::kMaxPixels, SkinPicture::kMaxSide,
                                essential, width, height),
              PngChecker::Result::Ok);
    EXPECT_EQ(width, 33);
    EXPECT_EQ(height, 7);
}

TEST(SkinPictureLimits, DataBeyondWhatTheSizeNeedsIsRefusedWithoutInflatingIt) {
    SkinPicture::Problem problem = SkinPicture::Problem::None;
    ASSERT_TRUE(SkinPicture::DecodePng(Png(64, 32, Needed(64, 32)), &problem));
    EXPECT_EQ(problem, SkinPicture::Problem::None);
    // A few stray bytes after the last row are tolerated, as libpng does.
    EXPECT_TRUE(SkinPicture::DecodePng(Png(64, 32, Needed(64, 32) + 100)));
    // 64 MB of data for a picture that needs 8 KB.
    EXPECT_FALSE(SkinPicture::DecodePng(Png(64, 32, 64 << 20), &problem));
    EXPECT_EQ(problem, SkinPicture::Problem::TooMuchData);
    // Too little data is a broken picture, not a hostile one.
    EXPECT_FALSE(SkinPicture::DecodePng(Png(64, 32, Needed(64, 32) / 2), &problem));
    EXPECT_EQ(problem, SkinPicture::Problem::NotPng);
}

TEST(SkinPictureLimits, TextAndProfileChunksAreNeverInflated) {
    // Compressed text that would inflate to 8 MB per chunk, a thousand
    // times: only the image's own chunks reach the decoder.
    const std::string bomb =
        Chunk("zTXt", std::string("Comment\0\0", 9) + Deflated(std::string(8 << 20, 'a')));
    std::string chunks;
    for (int i = 0; i < 1000; ++i)
        chunks += bomb;
    chunks += Chunk("iCCP", std::string("icc\0\0", 5) + Deflated(std::string(8 << 20, 'b')));
    auto picture = SkinPicture::DecodePng(Png(16, 16, Needed(16, 16), chunks));
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 16);
    EXPECT_EQ(picture->At(15, 15), 0u);
}

TEST(SkinPictureLimits, PixelsAreCountedBeforeDecoding) {
    const std::string picture = Png(2048, 2048, 1); // the data is never looked at
    SkinPicture::Problem problem = SkinPicture::Problem::None;
    EXPECT_FALSE(SkinPicture::DecodePng(picture, &problem, 2048 * 2048 - 1));
    EXPECT_EQ(problem, SkinPicture::Problem::TooManyPixels);
    EXPECT_FALSE(SkinPicture::DecodePng(Png(4096, 1025, 1), &problem));
    EXPECT_EQ(problem, SkinPicture::Problem::TooManyPixels);
}

class SkinArchiveLimits : public ::testing::Test {
protected:
    void SetUp() override { PictureCache::Instance().Clear(); }
    void TearDown() override { PictureCache::Instance().Clear(); }
    TempFolder folder_;
};

TEST_F(SkinArchiveLimits, TheArchiveBoundsItsEntriesAndWhatTheyInflateTo) {
    std::vector<ZipEntry> many{{"skin.ini", "[info]\n"}};
    for (std::uint64_t i = 0; i < SkinArchive::kMaxItems; ++i)
        many.push_back({"e" + std::to_string(i), ""});
    SkinArchive archive;
    EXPECT_EQ(archive.OpenMemory(MakeZip(many)), SkinArchive::kNotOpenForReading);
    EXPECT_TRUE(archive.LimitExceeded());
    EXPECT_NE(archive.LimitReason().find("entries"), std::string::npos);

    // Three entries of 15 MB pass one by one; the fourth would pass the 48 MB.
    const std::string zeros(15 << 20, '\0');
    ASSERT_EQ(archive.OpenMemory(MakeZip({{"a", zeros}, {"b", zeros}, {"c", zeros}, {"d", zeros}})),
              SkinArchive::kOk);
    EXPECT_FALSE(archive.LimitExceeded());
    std::string data;
    for (const char* name : {"a", "b", "c"})
        EXPECT_EQ(archive.ReadItem(name, data), SkinArchive::kOk) << name;
    EXPECT_EQ(archive.ReadItem("d", data), SkinArchive::kItemUnreadable);
    EXPECT_TRUE(archive.LimitExceeded());
    // Once over a limit, nothing more is unpacked.
    EXPECT_EQ(archive.ReadItem("a", data), SkinArchive::kItemUnreadable);
}

TEST_F(SkinArchiveLimits, PicturesShareOneBudgetOfPixels) {
    const std::string picture = Png(2048, 2048, Needed(2048, 2048));
    ASSERT_EQ(2048 * 2048 * 2, SkinArchive::kMaxPicturePixels);
    SkinArchive archive;
    ASSERT_EQ(
        archive.OpenMemory(MakeZip({{"one.png", picture}, {"two.png", picture}, {"three.png", picture}})),
        SkinArchive::kOk);
    SkinPictureRef result;
    EXPECT_TRUE(LoadSkinImage(archive, u"one.png", result));
    EXPECT_TRUE(LoadSkinImage(archive, u"two.png", result));
    EXPECT_TRUE(LoadSkinImage(archive, u"one.png", result)); // from the cache: no new pixels
    EXPECT_FALSE(LoadSkinImage(archive, u"three.png", result));
    EXPECT_TRUE(archive.LimitExceeded());
    EXPECT_NE(archive.LimitReason().find("all pictures of a skin"), std::string::npos);
}

TEST_F(SkinArchiveLimits, ASkinBeyondALimitLeavesNothingOfItselfAndSaysWhy) {
    const std::string hostile = folder_.Write(
        "skin.Hostile.zip",
        MakeZip({{"skin.ini", "[styles.calendar]\ncolorDayGridBg=#102030\nbackgroundImage=good.png\n"
                              "backgroundImageLandscape=bad.png\n[styles.contextmenu]\ncolorBg=#405060\n"},
                 {"good.png", MakePng(4, 4, 0x00FF00)},
                 {"bad.png", Png(64, 64, 32 << 20)}}));
    SkinStyles styles;
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(SkinLoader::LoadArchive(hostile, styles, true));
    const std::string warnings = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(warnings.find("skin.Hostile.zip is not used: picture bad.png inflates to more data"),
              std::string::npos)
        << warnings;
    EXPECT_NE(warnings.find("the default skin"), std::string::npos) << warnings;
    // Neither its colours nor the picture it decoded before the bad one stay.
    const SkinStyles builtIn;
    EXPECT_EQ(styles.calendar.colorDayGridBg, builtIn.calendar.colorDayGridBg);
    EXPECT_EQ(styles.calendar.pictures.portrait, nullptr);
    EXPECT_EQ(styles.contextMenu.colorBg, builtIn.contextMenu.colorBg);
    EXPECT_EQ(PictureCache::Instance().Find(u"good.png"), nullptr);
    EXPECT_TRUE(styles.menuBar.icons); // the built-in strip
}

TEST_F(SkinArchiveLimits, AStyleFileOfMillionsOfLinesIsRefusedUnread) {
    std::string ini;
    for (int i = 0; i < 100000; ++i)
        ini += "[]\n";
    const std::string path = folder_.Write("skin.Lines.zip", MakeZip({{"skin.ini", ini}}));
    SkinStyles styles;
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(SkinLoader::LoadArchive(path, styles, false));
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("skin.ini has 300000 bytes"), std::string::npos);
}

} // namespace
} // namespace mirodate
