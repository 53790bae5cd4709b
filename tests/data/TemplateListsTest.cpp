#include "data/TemplateLists.h"
#include "tests/platform/TempDir.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace mirodate;
using mirodate::test::TempDir;

namespace {
class TemplateListsTest : public ::testing::Test {
protected:
    void SetUp() override { TemplateLists::SetDirectory(dir_.Path()); }
    void TearDown() override { TemplateLists::SetDirectory(""); }
    std::string Bytes(const char* name) {
        std::ifstream in(dir_.File(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    void WriteBytes(const char* name, const std::string& bytes) {
        std::ofstream(dir_.File(name), std::ios::binary) << bytes;
    }
    std::vector<std::u16string> Locations() {
        std::vector<std::u16string> list;
        TemplateLists::LoadLocations(list);
        return list;
    }
    TempDir dir_;
};
} // namespace

TEST_F(TemplateListsTest, AddLocationWritesMarkOnceAndEntriesWithLineEnds) {
    TemplateLists::AddLocation(u"  Office ");
    TemplateLists::AddLocation(u"Office");
    TemplateLists::AddLocation(u"   ");
    EXPECT_EQ(Bytes("MDLocations.txt"), std::string("\xFF\xFEO\0f\0f\0i\0c\0e\0\r\0\n\0", 18));
}

TEST_F(TemplateListsTest, KnownLocationIsASubstringTestThatMindsCase) {
    TemplateLists::AddLocation(u"Main Office");
    TemplateLists::AddLocation(u"Office"); // "Office\r\n" occurs inside "Main Office\r\n"
    EXPECT_EQ(Locations(), (std::vector<std::u16string>{u"Main Office"}));
    TemplateLists::AddLocation(u"office");
    EXPECT_EQ(Locations(), (std::vector<std::u16string>{u"Main Office", u"office"}));
}

TEST_F(TemplateListsTest, LocationsAreSortedSubjectsKeepFileOrder) {
    TemplateLists::AddLocation(u"Zoo");
    TemplateLists::AddLocation(u"Bank");
    EXPECT_EQ(Locations(), (std::vector<std::u16string>{u"Bank", u"Zoo"}));
    ASSERT_TRUE(TemplateLists::SaveSubjects(u"Zoo visit\r\nBank\r\n\r\nDentist"));
    std::vector<std::u16string> subjects;
    TemplateLists::LoadSubjects(subjects);
    EXPECT_EQ(subjects, (std::vector<std::u16string>{u"Zoo visit", u"Bank", u"Dentist"}));
}

TEST_F(TemplateListsTest, EmptyMarkOnlyAndOddFiles) {
    EXPECT_TRUE(Locations().empty()); // absent
    WriteBytes("MDLocations.txt", "\xFF\xFE");
    EXPECT_TRUE(Locations().empty());
    ASSERT_TRUE(TemplateLists::SaveLocations(u""));
    EXPECT_EQ(Bytes("MDLocations.txt"), "\xFF\xFE");
    // An odd trailing byte and an embedded zero end the text there.
    WriteBytes("MDLocations.txt", std::string("\xFF\xFE"
                                              "A\0\r\0\n\0B\0\0\0C\0x",
                                              15));
    EXPECT_EQ(Locations(), (std::vector<std::u16string>{u"A", u"B"}));
    // Adding to a mark-only file appends without a second mark.
    WriteBytes("MDLocations.txt", "\xFF\xFE");
    TemplateLists::AddLocation(u"Q");
    EXPECT_EQ(Bytes("MDLocations.txt"), std::string("\xFF\xFEQ\0\r\0\n\0", 8));
}
