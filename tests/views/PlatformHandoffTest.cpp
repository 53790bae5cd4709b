// Hand-offs to the desktop's programs, recorded instead of started: the
// other calendar program from mimeapps.list (never this one), the contact's
// card for a birthday row, and beaming an item as a standalone calendar file
// with its time zone into the download folder.
#include "platform/DesktopHandlers.h"
#include "platform/RecordingPlatformServices.h"
#include "platform/Settings.h"
#include "tests/views/ViewFixture.h"
#include "tests/views/ViewRows.h"
#include "views/DayView.h"
#include "views/ItemCommands.h"

namespace mirodate::test {
namespace {

class PlatformHandoffTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        setenv("HOME", dir_.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (dir_ + "/config").c_str(), 1);
        setenv("XDG_DATA_HOME", (dir_ + "/data").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", (dir_ + "/nowhere").c_str(), 1);
        setenv("XDG_DATA_DIRS", (dir_ + "/nowhere").c_str(), 1);
        std::filesystem::create_directories(dir_ + "/config");
        std::filesystem::create_directories(dir_ + "/data/applications");
    }
    void TearDown() override {
        day_.reset();
        ViewFixture::TearDown();
    }
    void WriteAt(const std::string& path, const std::string& text) {
        std::ofstream(dir_ + "/" + path) << text;
    }
    DayView& OpenDay() {
        OpenStore();
        day_ = std::make_unique<DayView>(DateTime(2024, 3, 15));
        EXPECT_TRUE(day_->Open(nullptr));
        windows_->RunUntilIdle();
        return *day_;
    }
    RecordingPlatformServices services;
    std::unique_ptr<DayView> day_;
};

TEST_F(PlatformHandoffTest, OpenInPlatformCalendarRunsTheOtherCalendarProgramOnTheItemsFile) {
    AddTimed("meet", "Meeting", "20240315T090000", "20240315T100000");
    DayView& day = OpenDay();
    // Nothing set up: the user is told, nothing runs.
    day.SelectRowItem(0);
    day.RunCommand(ItemCommands::kOpenInPlatform);
    EXPECT_EQ(questions, (std::vector<std::u16string>{u"NoPlatformCalendar"}));
    EXPECT_TRUE(services.Calls().empty());

    WriteAt("config/mimeapps.list",
            "[Default Applications]\ntext/calendar=mirodate.desktop;othercal.desktop;\n");
    WriteAt("data/applications/mirodate.desktop", "[Desktop Entry]\nExec=mirodate %f\n");
    WriteAt("data/applications/othercal.desktop",
            "[Desktop Entry]\nName=Other\nExec=\"/opt/other cal/bin/othercal\" --import %f\n");
    day.SelectRowItem(0);
    day.RunCommand(ItemCommands::kOpenInPlatform);
    ASSERT_EQ(services.Programs().size(), 1u);
    EXPECT_EQ(services.Programs()[0], (std::vector<std::string>{"/opt/other cal/bin/othercal", "--import",
                                                                Root() + "/calendar/meet.ics"}));
    day.RunCommand(ItemCommands::kOpenPlatformCalendar);
    ASSERT_EQ(services.Programs().size(), 2u);
    EXPECT_EQ(services.Programs()[1], (std::vector<std::string>{"/opt/other cal/bin/othercal", "--import"}));
}

TEST_F(PlatformHandoffTest, ABirthdayRowOpensTheContactsCard) {
    AddContact("ann", "Ann Example", "1990-03-15");
    DayView& day = OpenDay();
    PimStore::Instance().SetFilters(u"", u"", false, true, false);
    day.Reload();
    ASSERT_EQ(day.List().ItemCount(), 1);
    const POINT row = RowPoint(day.List(), 0, 200);
    Tap(row.x, row.y);
    EXPECT_EQ(services.Calls(), (std::vector<std::string>{"xdg-open " + Root() + "/contacts/ann.vcf"}));
}

TEST_F(PlatformHandoffTest, BeamWritesAStandaloneCalendarFileWithItsTimeZone) {
    AddEvent("berlin", "Call Berlin / Team",
             "DTSTART;TZID=Europe/Berlin:20240315T090000\r\n"
             "DTEND;TZID=Europe/Berlin:20240315T100000\r\n");
    WriteAt("config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Fetched\"\n");
    DayView& day = OpenDay();
    ASSERT_EQ(day.List().ItemCount(), 1);
    day.SelectRowItem(0);
    day.RunCommand(ItemCommands::kBeam);
    day.RunCommand(ItemCommands::kBeam); // a second copy does not overwrite the first
    const std::string first = dir_ + "/Fetched/Call-Berlin-Team.ics";
    const std::string second = dir_ + "/Fetched/Call-Berlin-Team-2.ics";
    ASSERT_TRUE(std::filesystem::exists(first));
    EXPECT_TRUE(std::filesystem::exists(second));
    std::ifstream file(first);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("BEGIN:VTIMEZONE"), std::string::npos);
    EXPECT_NE(text.find("TZID:Europe/Berlin"), std::string::npos);
    EXPECT_NE(text.find("SUMMARY:Call Berlin / Team"), std::string::npos);
    ASSERT_EQ(questions.size(), 2u);
    EXPECT_NE(Narrow(questions[0]).find(first), std::string::npos);
}

TEST(DesktopHandlersTest, ExecLinesFollowTheDesktopEntryRules) {
    EXPECT_EQ(DesktopHandlers::SplitExec("cal %U --x=%% \"a \\\"b\\\"\" %i", "/f.ics"),
              (std::vector<std::string>{"cal", "/f.ics", "--x=%", "a \"b\""}));
    EXPECT_EQ(DesktopHandlers::SplitExec("cal %f", ""), (std::vector<std::string>{"cal"}));
    EXPECT_TRUE(DesktopHandlers::SplitExec("", "x").empty());
}

} // namespace
} // namespace mirodate::test
