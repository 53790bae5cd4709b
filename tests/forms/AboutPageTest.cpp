// The about box on a real vdir: the counts of what could be read and every
// file that could not, with its reason.
#include "forms/AboutPage.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"

#include <filesystem>
#include <fstream>

namespace mirodate::test {
namespace {

class AboutPageTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        for (const char* folder : {"calendar", "tasks", "contacts"})
            std::filesystem::create_directories(dir_ + "/vdir/" + folder);
        LanguageTable::Instance().Load(std::string(MIRODATE_BINARY_DIR) + "/lang.en.txt");
    }
    void TearDown() override {
        PimStore::Instance().Close();
        UiTest::TearDown();
    }
    void Write(const std::string& relative, const std::string& text) {
        std::ofstream(dir_ + "/vdir/" + relative, std::ios::binary) << text;
    }
    static std::string Event(const std::string& uid) {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:" + uid +
               "\r\nSUMMARY:x\r\nDTSTART:20240315T090000\r\nDTEND:20240315T100000\r\nEND:VEVENT\r\nEND:"
               "VCALENDAR\r\n";
    }
};

TEST_F(AboutPageTest, ListsCountsAndEveryFileThatCouldNotBeRead) {
    Write("calendar/a.ics", Event("a"));
    Write("calendar/b.ics", Event("b"));
    Write("calendar/copy-of-a.ics", Event("a"));
    Write("calendar/broken.ics", "BEGIN:VCALENDAR\r\nthis is not a calendar\r\n");
    Write("tasks/t.ics", "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VTODO\r\nUID:t\r\nSUMMARY:t\r\nEND:"
                         "VTODO\r\nEND:VCALENDAR\r\n");
    VdirSource::Options options;
    options.useIndex = false;
    ASSERT_TRUE(PimStore::Instance().Open(std::make_unique<VdirSource>(dir_ + "/vdir", options)));

    AboutPage page;
    ASSERT_TRUE(page.CreateModeless(nullptr));
    windows_->RunUntilIdle();
    std::string all;
    for (const std::u16string& line : page.Lines())
        all += Utf16ToUtf8(line) + "\n";
    EXPECT_NE(all.find("Calendar files: " + dir_ + "/vdir"), std::string::npos) << all;
    EXPECT_NE(all.find("Appointments: 2\nTasks: 1\nContacts: 0"), std::string::npos) << all;
    EXPECT_NE(all.find("Files that could not be read: 2"), std::string::npos) << all;
    EXPECT_NE(all.find(dir_ + "/vdir/calendar/broken.ics\n"), std::string::npos) << all;
    // One of the two files with the same UID is the one skipped, and it says why.
    EXPECT_NE(all.find("UID a is used by "), std::string::npos) << all;
    EXPECT_NE(all.find("Skin: "), std::string::npos);
}

TEST_F(AboutPageTest, SaysSoWhenEveryFileWasRead) {
    Write("calendar/a.ics", Event("a"));
    VdirSource::Options options;
    options.useIndex = false;
    ASSERT_TRUE(PimStore::Instance().Open(std::make_unique<VdirSource>(dir_ + "/vdir", options)));
    AboutPage page;
    EXPECT_EQ(page.Lines().back(), Lang("about.AllRead"));
}

} // namespace
} // namespace mirodate::test
