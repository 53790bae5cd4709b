#include "skin/SkinArchive.h"
#include "SkinTestFiles.h"
#include "skin/SkinColor.h"
#include "skin/SkinPicture.h"

#include <gtest/gtest.h>

#include <cstring>

namespace mirodate {
namespace {

using test::MakePng;
using test::MakeZip;

TEST(ParseSkinColor, AcceptsSixDigitsWithOrWithoutALeadingCharacter) {
    const COLORREF expected = RGB(0x33, 0x66, 0xCC);
    EXPECT_EQ(ParseSkinColor("#3366cc"), expected);
    EXPECT_EQ(ParseSkinColor("3366CC"), expected);
    EXPECT_EQ(ParseSkinColor("x3366cc"), expected);
    EXPECT_EQ(ParseSkinColor("#FF0000"), RGB(0xFF, 0, 0)); // red ends up in the low byte
    EXPECT_EQ(ParseSkinColor("#36c"), 0u);
    EXPECT_EQ(ParseSkinColor("#3366cc00"), 0u);            // eight characters
    EXPECT_EQ(ParseSkinColor("3366cc001"), 0u);            // cut to eight, still not six or seven
    EXPECT_EQ(ParseSkinColor("#12zz56"), RGB(0, 0, 0x12)); // read as far as it is hexadecimal
    EXPECT_EQ(ParseSkinColor("zzzzzz"), 0u);
    EXPECT_EQ(ParseSkinColor(""), 0u);
}

class SkinArchiveTest : public ::testing::Test {
protected:
    std::string zip_ = MakeZip({{"skin.ini", "[info]\nauthor=me\n"},
                                {"Images/Back.PNG", MakePng(3, 2, 0x102030)},
                                {"stored.txt", "plain", true},
                                {"empty.txt", ""}});
};

TEST_F(SkinArchiveTest, FindsEntriesRegardlessOfCase) {
    SkinArchive archive;
    ASSERT_EQ(archive.OpenMemory(zip_), SkinArchive::kOk);
    SkinArchive::Item item;
    EXPECT_EQ(archive.FindItem(std::string_view("images/back.png"), item), SkinArchive::kOk);
    EXPECT_EQ(archive.FindItem(std::u16string_view(u"SKIN.INI"), item), SkinArchive::kOk);
    EXPECT_EQ(item.size, 17u);
    std::string text(item.size, '\0');
    EXPECT_EQ(archive.Unzip(item, text.data(), text.size()), SkinArchive::kOk);
    EXPECT_EQ(text, "[info]\nauthor=me\n");

    std::string data;
    EXPECT_EQ(archive.ReadItem("stored.txt", data), SkinArchive::kOk);
    EXPECT_EQ(data, "plain");
    EXPECT_EQ(archive.ReadItem("empty.txt", data), SkinArchive::kOk);
    EXPECT_TRUE(data.empty());
}

TEST_F(SkinArchiveTest, ResultCodesAreReturnedAndKept) {
    SkinArchive archive;
    SkinArchive::Item item;
    EXPECT_EQ(archive.FindItem(std::string_view("skin.ini"), item), SkinArchive::kNoArchive);
    EXPECT_EQ(SkinArchive::LastResult(), SkinArchive::kNoArchive);
    EXPECT_EQ(archive.OpenMemory("not a zip at all"), SkinArchive::kNotOpenForReading);
    EXPECT_EQ(archive.OpenMemory(""), SkinArchive::kNotOpenForReading);
    EXPECT_EQ(archive.Open("/nonexistent/skin.zip"), SkinArchive::kNotOpenForReading);
    EXPECT_EQ(SkinArchive::LastResult(), SkinArchive::kNotOpenForReading);

    ASSERT_EQ(archive.OpenMemory(zip_), SkinArchive::kOk);
    EXPECT_EQ(archive.FindItem(std::string_view("missing.png"), item), SkinArchive::kItemNotFound);
    EXPECT_EQ(archive.FindItem(std::string_view(""), item), SkinArchive::kItemNotFound);
    EXPECT_EQ(SkinArchive::LastResult(), SkinArchive::kItemNotFound);
    archive.Close();
    EXPECT_EQ(archive.FindItem(std::string_view("skin.ini"), item), SkinArchive::kNoArchive);
}

TEST_F(SkinArchiveTest, DamagedArchivesFailCleanly) {
    SkinArchive archive;
    // Cut anywhere: the archive does not open, the entry does not read, or
    // what is read is the real content.
    const std::string picture = MakePng(3, 2, 0x102030);
    for (size_t cut = 0; cut < zip_.size(); cut += 7) {
        std::string data;
        if (archive.OpenMemory(zip_.substr(0, cut)) != SkinArchive::kOk)
            continue;
        if (archive.ReadItem("images/back.png", data) == SkinArchive::kOk) {
            EXPECT_EQ(data, picture) << "cut at " << cut;
        }
    }

    // A flipped byte inside the compressed picture fails the inflate or the CRC.
    std::string damaged = zip_;
    const size_t pictureData = damaged.find("Images/Back.PNG") + std::strlen("Images/Back.PNG") + 10;
    damaged[pictureData] = static_cast<char>(damaged[pictureData] ^ 0x5A);
    ASSERT_EQ(archive.OpenMemory(damaged), SkinArchive::kOk);
    std::string data;
    EXPECT_EQ(archive.ReadItem("images/back.png", data), SkinArchive::kItemUnreadable);
    EXPECT_TRUE(data.empty());
}

TEST_F(SkinArchiveTest, EnormousDeclaredSizesAreRefusedWithoutAllocating) {
    // Rewrite the uncompressed size of "skin.ini" in the central directory.
    std::string patched = zip_;
    const size_t header = patched.find(std::string("PK\x01\x02", 4)); // first entry: skin.ini
    ASSERT_NE(header, std::string::npos);
    const char huge[4] = {'\xF0', '\xFF', '\xFF', '\x7F'};
    std::memcpy(patched.data() + header + 24, huge, 4);

    SkinArchive archive;
    ASSERT_EQ(archive.OpenMemory(patched), SkinArchive::kOk);
    SkinArchive::Item item;
    ASSERT_EQ(archive.FindItem(std::string_view("skin.ini"), item), SkinArchive::kOk);
    EXPECT_GT(item.size, SkinArchive::kMaxItemSize);
    std::string data;
    EXPECT_EQ(archive.ReadItem("skin.ini", data), SkinArchive::kItemUnreadable);
    char small[4];
    EXPECT_EQ(archive.Unzip(item, small, sizeof small), SkinArchive::kItemUnreadable);
}

TEST(SkinPicture, DecodesPngsAndRefusesEverythingElse) {
    auto picture = SkinPicture::DecodePng(MakePng(4, 3, 0x008080));
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 4);
    EXPECT_EQ(picture->height, 3);
    EXPECT_EQ(picture->At(3, 2), 0xFF008080u);

    EXPECT_FALSE(SkinPicture::DecodePng(""));
    EXPECT_FALSE(SkinPicture::DecodePng("GIF89a and more bytes than a PNG header needs"));
    const std::string png = MakePng(4, 3, 0);
    EXPECT_FALSE(SkinPicture::DecodePng(png.substr(0, png.size() / 2)));

    // A header that declares a gigantic picture is refused before decoding.
    std::string huge = png;
    const char side[4] = {0, 1, 0, 0}; // 65536
    std::memcpy(huge.data() + 16, side, 4);
    std::memcpy(huge.data() + 20, side, 4);
    EXPECT_FALSE(SkinPicture::DecodePng(huge));
}

} // namespace
} // namespace mirodate
