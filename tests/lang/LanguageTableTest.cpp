#include "lang/LanguageTable.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace mirodate {
namespace {

std::string Utf16LeBytes(std::u16string_view text, bool bom = true) {
    std::string bytes;
    if (bom)
        bytes += "\xFF\xFE";
    for (char16_t c : text) {
        bytes.push_back(static_cast<char>(c & 0xFF));
        bytes.push_back(static_cast<char>(c >> 8));
    }
    return bytes;
}

class LanguageFile : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() /
               ("mirodate-lang-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
                ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir_);
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::string Write(const std::string& bytes) {
        std::string path = (dir_ / "lang.xx.txt").string();
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    std::filesystem::path dir_;
};

TEST(LanguageTable, LookupRules) {
    LanguageTable table;
    table.SetText(u"LANGUAGE=English\r\nOk=OK\r\nOk=Second\r\nTwo=first\\nsecond\r\nEmpty=\r\n"
                  u" Indented=x\r\n;Commented=x\r\nLast=end");
    EXPECT_EQ(table.Get(u"LANGUAGE"), u"English");
    EXPECT_EQ(table.Get(u"Ok"), u"OK"); // the first definition wins
    EXPECT_EQ(table.Get("Two"), u"first\nsecond");
    EXPECT_EQ(table.Get("Empty"), u"");
    EXPECT_EQ(table.Get("Missing"), u"Missing");
    EXPECT_EQ(table.Get("Indented"), u"Indented");
    EXPECT_EQ(table.Get("Commented"), u"Commented");
    EXPECT_EQ(table.Get("Last"), u"end"); // no line break at the end of the text
    EXPECT_EQ(table.Get("ok"), u"ok");    // keys are case-sensitive
}

TEST(LanguageTable, OnlyLanguageMayStandOnTheFirstLine) {
    LanguageTable table;
    table.SetText(u"First=1\nLANGUAGE=Deutsch\n");
    EXPECT_EQ(table.Get("First"), u"First");
    EXPECT_EQ(table.Get("LANGUAGE"), u"Deutsch");
}

TEST(LanguageTable, NarrowKeysAreCut) {
    LanguageTable table;
    const std::string longKey(LanguageTable::kMaxNarrowKey, 'k');
    table.SetText(u"\n" + std::u16string(longKey.begin(), longKey.end()) + u"=long\n");
    EXPECT_EQ(table.Get(longKey + "extra"), u"long");
}

TEST_F(LanguageFile, LoadsLittleEndianFilesWithOrWithoutBom) {
    LanguageTable table;
    ASSERT_TRUE(table.Load(Write(Utf16LeBytes(u"LANGUAGE=Русский\r\nДа=Ja\r\n"))));
    EXPECT_EQ(table.Get(u"LANGUAGE"), u"Русский");
    EXPECT_EQ(table.Get(u"Да"), u"Ja");

    ASSERT_TRUE(table.Load(Write(Utf16LeBytes(u"LANGUAGE=English\r\nKey=Value", false) + "x")));
    EXPECT_EQ(table.Get("Key"), u"Value"); // the odd last byte is dropped
}

TEST_F(LanguageFile, UnreadableFilesLeaveAnEmptyTable) {
    LanguageTable table;
    table.SetText(u"\nKey=old\n");
    EXPECT_FALSE(table.Load((dir_ / "missing.txt").string()));
    EXPECT_TRUE(table.IsEmpty());
    EXPECT_EQ(table.Get("Key"), u"Key");

    ASSERT_TRUE(table.Load(Write("")));
    EXPECT_EQ(table.Get("Key"), u"Key");

    // A sparse file beyond the cap is refused without reading it.
    std::string path = Write("");
    std::filesystem::resize_file(path, LanguageTable::kMaxFileBytes + 2);
    EXPECT_FALSE(table.Load(path));
    EXPECT_TRUE(table.IsEmpty());
}

TEST(LanguageTable, FreeFunctionsReadTheSharedTable) {
    LanguageTable::Instance().SetText(u"\nMenu=Menü\n");
    EXPECT_EQ(Lang("Menu"), u"Menü");
    EXPECT_EQ(LangW(u"Menu"), u"Menü");
    EXPECT_EQ(Lang("Nope"), u"Nope");
    LanguageTable::Instance().SetText({});
}

} // namespace
} // namespace mirodate
