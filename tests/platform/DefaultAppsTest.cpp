// Taking over as the desktop's calendar and tasks program in a temporary
// XDG_CONFIG_HOME and XDG_DATA_HOME: mimeapps.list edited in place and given
// back byte for byte, the displaced handler recorded and run by the "-f"
// start, and files that must not be written left alone.
#include "platform/DefaultApps.h"
#include "platform/MimeAppsList.h"
#include "platform/RecordingPlatformServices.h"
#include "platform/Settings.h"
#include "tests/platform/TempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate::test {
namespace {

using Role = DefaultApps::Role;

class DefaultAppsTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("XDG_CONFIG_HOME", dir_.File("config").c_str(), 1);
        setenv("XDG_DATA_HOME", dir_.File("data").c_str(), 1);
        setenv("XDG_CONFIG_DIRS", dir_.File("etc").c_str(), 1);
        setenv("XDG_DATA_DIRS", dir_.File("usr").c_str(), 1);
        std::filesystem::create_directories(dir_.File("config"));
        std::filesystem::create_directories(dir_.File("data/applications"));
        Settings::UseFile(dir_.File("settings.conf"));
    }
    std::string MimeApps() const { return dir_.File("config/mimeapps.list"); }
    void Write(const std::string& path, const std::string& text) const {
        std::ofstream(path, std::ios::binary) << text;
    }
    std::string Read(const std::string& path) const {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    void AddOtherCalendar() const {
        Write(dir_.File("data/applications/other-cal.desktop"),
              "[Desktop Entry]\nType=Application\nName=Other\nExec=othercal --open "
              "%f\nMimeType=text/calendar;\n");
    }

    TempDir dir_;
};

const char* const kUserList = "# written by hand\r\n"
                              "[Added Associations]\r\n"
                              "text/calendar=other-cal.desktop;\r\n"
                              "\r\n"
                              "[Default Applications]\r\n"
                              "text/html=firefox.desktop\r\n"
                              "text/calendar=other-cal.desktop;second.desktop;\r\n"
                              "this line means nothing to us\r\n"
                              "\r\n"
                              "[Removed Associations]\r\n"
                              "text/plain=gedit.desktop;";

TEST_F(DefaultAppsTest, ReplaceThenRestoreGivesTheFileBackByteForByte) {
    Write(MimeApps(), kUserList);
    std::string error;
    ASSERT_TRUE(DefaultApps::Replace(Role::Calendar, error)) << error;
    EXPECT_TRUE(DefaultApps::IsCalendarReplaced());
    EXPECT_FALSE(DefaultApps::IsTasksReplaced());
    const std::string replaced = Read(MimeApps());
    EXPECT_NE(replaced.find("\r\ntext/calendar=mirodate.desktop;\r\nthis line means nothing to us\r\n"),
              std::string::npos)
        << replaced;
    // Only the default changed: the added association and every other line stay.
    EXPECT_NE(replaced.find("[Added Associations]\r\ntext/calendar=other-cal.desktop;\r\n"),
              std::string::npos);
    EXPECT_EQ(replaced.size(), std::string(kUserList).size() -
                                   std::string("other-cal.desktop;second.desktop;").size() +
                                   std::string("mirodate.desktop;").size());
    EXPECT_EQ(DefaultApps::PreviousHandler(Role::Calendar), "other-cal.desktop;second.desktop;");
    const std::string entry = Read(DefaultApps::DesktopFile(Role::Calendar));
    EXPECT_NE(entry.find("MimeType=text/calendar;"), std::string::npos);
    EXPECT_NE(entry.find(" calendar %f"), std::string::npos);

    // A second Replace keeps the first record: the user's program, not ours.
    ASSERT_TRUE(DefaultApps::Replace(Role::Calendar, error));
    EXPECT_EQ(DefaultApps::PreviousHandler(Role::Calendar), "other-cal.desktop;second.desktop;");

    ASSERT_TRUE(DefaultApps::Restore(Role::Calendar, error)) << error;
    EXPECT_EQ(Read(MimeApps()), kUserList);
    EXPECT_FALSE(DefaultApps::IsCalendarReplaced());
    EXPECT_FALSE(std::filesystem::exists(DefaultApps::DesktopFile(Role::Calendar)));
}

TEST_F(DefaultAppsTest, MissingLinesAndSectionsAreAddedAndTakenAwayAgain) {
    const std::string noSection = "[Added Associations]\nimage/png=viewer.desktop;"; // no final newline
    const std::string noLine = "[Default Applications]\ntext/html=firefox.desktop\n\n[Other]\nx=y\n";
    std::string error;
    for (const std::string& original : {noSection, noLine}) {
        Write(MimeApps(), original);
        ASSERT_TRUE(DefaultApps::Replace(Role::Tasks, error)) << error;
        MimeAppsList list;
        ASSERT_TRUE(list.Load(MimeApps(), error));
        EXPECT_EQ(list.Get("Default Applications", "text/x-vtodo"), "mirodate-tasks.desktop;");
        EXPECT_EQ(list.Get("Default Applications", "text/html"),
                  original == noLine ? "firefox.desktop" : std::optional<std::string>());
        EXPECT_EQ(DefaultApps::PreviousHandler(Role::Tasks), "");
        ASSERT_TRUE(DefaultApps::Restore(Role::Tasks, error));
        // The text differs only by the final newline a section needed.
        std::string after = Read(MimeApps());
        if (original == noSection)
            after = after.substr(0, original.size());
        EXPECT_EQ(after, original);
    }
    // No file at all: one is made, and restoring leaves it without our line.
    std::filesystem::remove(MimeApps());
    ASSERT_TRUE(DefaultApps::Replace(Role::Calendar, error));
    EXPECT_TRUE(DefaultApps::IsCalendarReplaced());
    ASSERT_TRUE(DefaultApps::Restore(Role::Calendar, error));
    EXPECT_EQ(Read(MimeApps()), "");
}

TEST_F(DefaultAppsTest, CalendarAndTasksAreReplacedEachByItself) {
    Write(MimeApps(), kUserList);
    std::string error;
    ASSERT_TRUE(DefaultApps::Replace(Role::Calendar, error));
    ASSERT_TRUE(DefaultApps::Replace(Role::Tasks, error));
    ASSERT_TRUE(DefaultApps::Restore(Role::Calendar, error));
    EXPECT_FALSE(DefaultApps::IsCalendarReplaced());
    EXPECT_TRUE(DefaultApps::IsTasksReplaced());
    EXPECT_TRUE(std::filesystem::exists(DefaultApps::DesktopFile(Role::Tasks)));
    ASSERT_TRUE(DefaultApps::Restore(Role::Tasks, error));
    EXPECT_EQ(Read(MimeApps()), kUserList);
}

TEST_F(DefaultAppsTest, OnlyOurExactIdCounts) {
    Write(MimeApps(), "[Default Applications]\ntext/calendar=Mirodate.desktop;\n");
    EXPECT_FALSE(DefaultApps::IsCalendarReplaced());
    Write(MimeApps(), "[Default Applications]\ntext/calendar=other.desktop;mirodate.desktop;\n");
    EXPECT_FALSE(DefaultApps::IsCalendarReplaced());
    // Restoring what we do not hold changes nothing in the file.
    std::string error;
    ASSERT_TRUE(DefaultApps::Restore(Role::Calendar, error));
    EXPECT_EQ(Read(MimeApps()), "[Default Applications]\ntext/calendar=other.desktop;mirodate.desktop;\n");
}

TEST_F(DefaultAppsTest, FilesThatMustNotBeWrittenAreLeftAlone) {
    std::string error;
    // Read-only: refused with a reason, nothing written.
    Write(MimeApps(), kUserList);
    chmod(MimeApps().c_str(), 0444);
    if (access(MimeApps().c_str(), W_OK) != 0) { // root writes anything
        EXPECT_FALSE(DefaultApps::Replace(Role::Calendar, error));
        EXPECT_NE(error.find("read-only"), std::string::npos) << error;
        EXPECT_EQ(Read(MimeApps()), kUserList);
        EXPECT_FALSE(std::filesystem::exists(DefaultApps::DesktopFile(Role::Calendar)));
    }
    chmod(MimeApps().c_str(), 0644);
    // Binary data is no mimeapps.list.
    const std::string binary("[Default Applications]\n\0\x01\x02text/calendar=x\n", 35);
    Write(MimeApps(), binary);
    error.clear();
    EXPECT_FALSE(DefaultApps::Replace(Role::Calendar, error));
    EXPECT_FALSE(error.empty());
    EXPECT_EQ(Read(MimeApps()), binary);
    // A folder in its place.
    std::filesystem::remove(MimeApps());
    std::filesystem::create_directory(MimeApps());
    EXPECT_FALSE(DefaultApps::Replace(Role::Calendar, error));
    EXPECT_FALSE(DefaultApps::IsCalendarReplaced());
}

TEST_F(DefaultAppsTest, ASymbolicLinkStaysALinkToTheChangedFile) {
    std::filesystem::create_directories(dir_.File("dotfiles"));
    Write(dir_.File("dotfiles/mimeapps.list"), kUserList);
    std::filesystem::create_symlink(dir_.File("dotfiles/mimeapps.list"), MimeApps());
    std::string error;
    ASSERT_TRUE(DefaultApps::Replace(Role::Calendar, error)) << error;
    EXPECT_TRUE(std::filesystem::is_symlink(MimeApps()));
    EXPECT_TRUE(DefaultApps::IsCalendarReplaced());
    ASSERT_TRUE(DefaultApps::Restore(Role::Calendar, error));
    EXPECT_TRUE(std::filesystem::is_symlink(MimeApps()));
    EXPECT_EQ(Read(dir_.File("dotfiles/mimeapps.list")), kUserList);
}

TEST_F(DefaultAppsTest, ForwardedStartRunsThePreviousHandlerWithoutUsAndTakesOverAgain) {
    AddOtherCalendar();
    Write(MimeApps(), kUserList);
    std::string error;
    ASSERT_TRUE(DefaultApps::Replace(Role::Calendar, error));
    ASSERT_TRUE(DefaultApps::Replace(Role::Tasks, error));
    RecordingPlatformServices recorder;
    bool sawOriginal = false;
    recorder.SetWaitHook([&](const std::vector<std::string>&) {
        // While the other program runs, the desktop's defaults are its own again.
        sawOriginal = Read(MimeApps()) == kUserList && !DefaultApps::IsCalendarReplaced() &&
                      !DefaultApps::IsTasksReplaced();
    });
    DefaultApps::RunPreviousHandler({"/home/u/invite.ics"});
    ASSERT_EQ(recorder.Calls().size(), 1u);
    EXPECT_EQ(recorder.Calls()[0], "othercal --open /home/u/invite.ics");
    EXPECT_TRUE(sawOriginal);
    EXPECT_TRUE(DefaultApps::IsCalendarReplaced());
    EXPECT_TRUE(DefaultApps::IsTasksReplaced());
    EXPECT_EQ(DefaultApps::PreviousHandler(Role::Calendar), "other-cal.desktop;second.desktop;");

    // Only what was installed is installed again.
    ASSERT_TRUE(DefaultApps::Restore(Role::Tasks, error));
    recorder.Clear();
    DefaultApps::RunPreviousHandler({"calendar"});
    EXPECT_EQ(recorder.Calls(), std::vector<std::string>{"othercal --open"});
    EXPECT_TRUE(DefaultApps::IsCalendarReplaced());
    EXPECT_FALSE(DefaultApps::IsTasksReplaced());
}

} // namespace
} // namespace mirodate::test
