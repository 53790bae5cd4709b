#include "app/Application.h"
#include "app/CmdLineArg.h"
#include "app/CommandRequest.h"
#include "app/ProgramOptions.h"

#include <gtest/gtest.h>

using namespace mirodate;
using Kind = CommandRequest::Kind;

TEST(CmdLineArg, FindsNameWithoutRegardToCaseAndKeepsValueCase) {
    std::u16string value;
    EXPECT_TRUE(GetCmdLineArg(u"action", value, u"/ACTION=Restart"));
    EXPECT_EQ(value, u"Restart"); // so this is not a restart
    EXPECT_TRUE(GetCmdLineArg(u"action", value, u"calendar /action=restart /x=1"));
    EXPECT_EQ(value, u"restart");
    EXPECT_TRUE(GetCmdLineArg(u"x", value, u"calendar /action=restart /x=  spaced value  "));
    EXPECT_EQ(value, u"spaced value");
    // The value runs to the next " /", so a slash inside it stays.
    EXPECT_TRUE(GetCmdLineArg(u"path", value, u"/path=a/b c /next=1"));
    EXPECT_EQ(value, u"a/b c");
}

TEST(CmdLineArg, EmptyOrMissingValues) {
    std::u16string value = u"stale";
    EXPECT_FALSE(GetCmdLineArg(u"action", value, u"calendar"));
    EXPECT_EQ(value, u"");
    EXPECT_FALSE(GetCmdLineArg(u"action", value, u"calendar /action="));
    EXPECT_FALSE(GetCmdLineArg(u"action", value, u"/action=   /next=1"));
    EXPECT_FALSE(GetCmdLineArg(u"action", value, u""));
}

TEST(CommandRequest, SpecialTexts) {
    EXPECT_EQ(CommandRequest::Parse(u"firstrun").kind, Kind::FirstRun);
    EXPECT_EQ(CommandRequest::Parse(u"FirstRun").kind, Kind::FirstRun);
    EXPECT_EQ(CommandRequest::Parse(u"reactivate").kind, Kind::Restore);
    EXPECT_EQ(CommandRequest::Parse(u"").kind, Kind::Restore);
    EXPECT_EQ(CommandRequest::Parse(u"CALENDAR").kind, Kind::Restore);
    // Anything more than the bare word is a request.
    EXPECT_EQ(CommandRequest::Parse(u"calendar ").kind, Kind::Request);
}

TEST(CommandRequest, DatesAndOffsets) {
    auto r = CommandRequest::Parse(u"calendar -vd -d20091231");
    EXPECT_EQ(r.mode, CommandRequest::kCalendar);
    EXPECT_EQ(r.view, CommandRequest::kDay);
    ASSERT_TRUE(r.hasDate);
    EXPECT_EQ(r.date.year, 2009);
    EXPECT_EQ(r.date.month, 12);
    EXPECT_EQ(r.date.day, 31);

    r = CommandRequest::Parse(u"calendar -d5");
    EXPECT_FALSE(r.hasDate);
    EXPECT_EQ(r.dayOffset, 5);
    r = CommandRequest::Parse(u"calendar -d-3");
    EXPECT_EQ(r.dayOffset, -3);
    r = CommandRequest::Parse(u"calendar -d999");
    EXPECT_FALSE(r.hasDate);
    EXPECT_EQ(r.dayOffset, 999);
    // A magnitude of 1000 or more is a date, even when it makes no sense as one.
    r = CommandRequest::Parse(u"calendar -d1000");
    ASSERT_TRUE(r.hasDate);
    EXPECT_EQ(r.date.year, 1000);
    EXPECT_EQ(r.date.month, 0);
    EXPECT_EQ(r.date.day, 0);
    EXPECT_EQ(r.dayOffset, 0);
    r = CommandRequest::Parse(u"calendar -d20100101");
    EXPECT_EQ(r.date.year, 2010);
    EXPECT_EQ(r.date.month, 1);
    EXPECT_EQ(r.date.day, 1);
    r = CommandRequest::Parse(u"calendar -dx");
    EXPECT_FALSE(r.hasDate);
    EXPECT_EQ(r.dayOffset, 0);
}

TEST(CommandRequest, LaterTokensOverrideEarlierOnes) {
    auto r = CommandRequest::Parse(u"tasks calendar -vw -vd -d3 -d-1");
    EXPECT_EQ(r.mode, CommandRequest::kCalendar);
    EXPECT_EQ(r.view, CommandRequest::kDay);
    EXPECT_EQ(r.dayOffset, -1);
    r = CommandRequest::Parse(u"calendar -d-1 -vw");
    EXPECT_EQ(r.view, CommandRequest::kWeek);
    r = CommandRequest::Parse(u"calendar -vm -vx");
    EXPECT_EQ(r.view, CommandRequest::kMonth); // unknown letter keeps the view
    r = CommandRequest::Parse(u"calendar -va -o");
    EXPECT_EQ(r.view, CommandRequest::kDay);
    r = CommandRequest::Parse(u"Calendar -VA");
    EXPECT_EQ(r.view, CommandRequest::kAgenda);
}

TEST(CommandRequest, ModesItemsAndFlags) {
    auto r = CommandRequest::Parse(u"tasks -new");
    EXPECT_EQ(r.mode, CommandRequest::kTasks);
    EXPECT_TRUE(r.newItem);
    r = CommandRequest::Parse(u"noparam");
    EXPECT_EQ(r.mode, CommandRequest::kCalendar);
    EXPECT_TRUE(r.noParam);
    r = CommandRequest::Parse(u"calendar oid 12345");
    EXPECT_TRUE(r.oidGiven);
    EXPECT_EQ(r.oid, 12345);
    // Without a mode the request is read all the same; acting on it decides.
    r = CommandRequest::Parse(u"oid 42");
    EXPECT_EQ(r.mode, CommandRequest::kNoMode);
    EXPECT_EQ(r.oid, 42);
    r = CommandRequest::Parse(u"-vd -d5");
    EXPECT_EQ(r.mode, CommandRequest::kNoMode);
    // Only the token right after "oid" is the identifier.
    r = CommandRequest::Parse(u"calendar oid 7 -vd 99");
    EXPECT_EQ(r.oid, 7);
    EXPECT_EQ(r.view, CommandRequest::kDay);
    // Double spaces make empty tokens, which the identifier skips.
    r = CommandRequest::Parse(u"calendar oid  8");
    EXPECT_EQ(r.oid, 8);
    r = CommandRequest::Parse(u"calendar edit");
    EXPECT_TRUE(r.edit);
    EXPECT_TRUE(r.oidGiven);
    EXPECT_EQ(r.oid, 0);
    r = CommandRequest::Parse(u"calendar bogus -x /action=restart");
    EXPECT_EQ(r.mode, CommandRequest::kCalendar);
    EXPECT_EQ(r.view, CommandRequest::kNoView);
}

TEST(CopyDataPayload, CarriesTextWithItsTerminator) {
    const std::u16string text = u"calendar -d20100101 \u00e9";
    const std::string bytes = Application::CommandPayload(text);
    EXPECT_EQ(bytes.size(), (text.size() + 1) * 2);
    EXPECT_EQ(Application::CommandFromPayload(bytes), text);
    // Without a terminator, or cut inside a character, it still reads sanely.
    EXPECT_EQ(Application::CommandFromPayload(bytes.substr(0, 4)), u"ca");
    EXPECT_EQ(Application::CommandFromPayload(std::string("c\0a", 3)),
              u"ca"); // odd byte pairs with the zero fill
    EXPECT_EQ(Application::CommandFromPayload(std::string()), u"");
}

TEST(ProgramOptions, SplitsOwnOptionsFromTheCommandText) {
    ProgramOptions options;
    std::string error;
    ASSERT_TRUE(ProgramOptions::Parse(
        {"--store", "/tmp/s", "calendar", "--size", "240x320", "-vd", "--headless"}, options, error));
    EXPECT_EQ(options.storeDir, "/tmp/s");
    EXPECT_EQ(options.width, 240);
    EXPECT_EQ(options.height, 320);
    EXPECT_TRUE(options.headless);
    EXPECT_EQ(options.commandLine, u"calendar -vd");

    ProgramOptions bad;
    EXPECT_FALSE(ProgramOptions::Parse({"--size", "99999x2"}, bad, error));
    EXPECT_FALSE(ProgramOptions::Parse({"--size", "480x640junk"}, bad, error));
    EXPECT_FALSE(ProgramOptions::Parse({"--store"}, bad, error));
    EXPECT_FALSE(ProgramOptions::Parse({"--list", "2020-01-01"}, bad, error));
    EXPECT_FALSE(ProgramOptions::Parse({"--frobnicate"}, bad, error));
    EXPECT_NE(error.find("--frobnicate"), std::string::npos);
    EXPECT_FALSE(ProgramOptions::Parse({"--export", "2024-01-01", "2024-01-31"}, bad, error));
    EXPECT_FALSE(ProgramOptions::Parse({"--import"}, bad, error));
}

TEST(ProgramOptions, CalendarFilesAreImportedUnlessACommandTakesThem) {
    ProgramOptions options;
    std::string error;
    ASSERT_TRUE(ProgramOptions::Parse({"--store", "/tmp/s", "/home/me/Invite.ICS"}, options, error));
    EXPECT_EQ(options.importPath, "/home/me/Invite.ICS");
    EXPECT_EQ(options.commandLine, u"--import /home/me/Invite.ICS");
    // A relative name is made absolute: a running instance elsewhere opens it.
    ProgramOptions relative;
    ASSERT_TRUE(ProgramOptions::Parse({"--import", "with blank.ics"}, relative, error));
    EXPECT_EQ(relative.commandLine.rfind(u"--import /", 0), 0u);
    EXPECT_NE(relative.commandLine.find(u"with blank.ics"), std::u16string::npos);
    // "-f FILE" hands the file to the previous calendar program.
    ProgramOptions handed;
    ASSERT_TRUE(ProgramOptions::Parse({"-f", "invite.ics"}, handed, error));
    EXPECT_TRUE(handed.importPath.empty());
    EXPECT_EQ(handed.commandLine, u"-f invite.ics");
    ProgramOptions exported;
    ASSERT_TRUE(ProgramOptions::Parse({"--export", "2024-01-01", "2024-01-31", "out.ics"}, exported, error));
    EXPECT_TRUE(exported.exportGiven);
    EXPECT_EQ(exported.exportPath, "out.ics");
    EXPECT_TRUE(exported.importPath.empty());
}
