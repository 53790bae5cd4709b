// Calendar files from elsewhere brought into a real vdir store, listed by the
// real binary's --list, exported by its --export and brought back.
#include "data/PimFolder.h"
#include "store/IcsImport.h"
#include "store/VdirSource.h"
#include "tests/platform/TempDir.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

namespace mirodate {
namespace {

// As Google Calendar exports a calendar: its own zone definition, a weekly
// series with one cancelled and one moved occurrence, an all-day event.
constexpr const char* kGoogleExport =
    "BEGIN:VCALENDAR\r\nPRODID:-//Google Inc//Google Calendar "
    "70.9054//EN\r\nVERSION:2.0\r\nCALSCALE:GREGORIAN\r\n"
    "METHOD:PUBLISH\r\nX-WR-CALNAME:Work\r\nX-WR-TIMEZONE:America/New_York\r\n"
    "BEGIN:VTIMEZONE\r\nTZID:America/New_York\r\nX-LIC-LOCATION:America/New_York\r\n"
    "BEGIN:DAYLIGHT\r\nTZOFFSETFROM:-0500\r\nTZOFFSETTO:-0400\r\nTZNAME:EDT\r\nDTSTART:19700308T020000\r\n"
    "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\r\nEND:DAYLIGHT\r\n"
    "BEGIN:STANDARD\r\nTZOFFSETFROM:-0400\r\nTZOFFSETTO:-0500\r\nTZNAME:EST\r\nDTSTART:19701101T020000\r\n"
    "RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n"
    "BEGIN:VEVENT\r\nDTSTART;TZID=America/New_York:20240304T090000\r\n"
    "DTEND;TZID=America/New_York:20240304T093000\r\nRRULE:FREQ=WEEKLY;COUNT=5;BYDAY=MO\r\n"
    "EXDATE;TZID=America/New_York:20240311T090000\r\nDTSTAMP:20240301T100000Z\r\n"
    "UID:7kq1series@google.com\r\nSUMMARY:Standup\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nDTSTART;TZID=America/New_York:20240318T110000\r\n"
    "DTEND;TZID=America/New_York:20240318T113000\r\nDTSTAMP:20240301T100000Z\r\n"
    "RECURRENCE-ID;TZID=America/New_York:20240318T090000\r\nUID:7kq1series@google.com\r\n"
    "SUMMARY:Standup (moved)\r\nEND:VEVENT\r\n"
    "BEGIN:VEVENT\r\nDTSTART;VALUE=DATE:20240329\r\nDTEND;VALUE=DATE:20240330\r\nDTSTAMP:20240301T100000Z\r\n"
    "UID:holiday1@google.com\r\nSUMMARY:Good Friday\r\nEND:VEVENT\r\n"
    "END:VCALENDAR\r\n";

// What Google Calendar shows a user in Berlin for March and April 2024.
constexpr const char* kBerlinListing = "2024-03-04 15:00-15:30 Standup\n"
                                       "2024-03-18 16:00-16:30 Standup (moved)\n"
                                       "2024-03-25 14:00-14:30 Standup\n"
                                       "2024-03-29 allday Good Friday\n"
                                       "2024-04-01 15:00-15:30 Standup\n";

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

class ImportExportTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "Europe/Berlin", 1);
        setenv("XDG_CACHE_HOME", dir_.File("cache").c_str(), 1);
        setenv("XDG_CONFIG_HOME", dir_.File("config").c_str(), 1);
    }
    void TearDown() override { setenv("TZ", "UTC", 1); }
    // Imports the file into the store at `root` as the import page does.
    std::vector<SaveResult> Import(const std::string& root, const std::string& text) {
        IcsImport::Parsed parsed;
        EXPECT_EQ(IcsImport::Parse(text, parsed), IcsImport::Result::Ok);
        VdirSource::Options options;
        options.createIfMissing = true;
        options.useIndex = false;
        VdirSource source(root, options);
        EXPECT_TRUE(source.Logon());
        std::vector<VdirSource::ImportFile> files;
        for (const ImportItem& item : parsed.items)
            files.push_back({item.folder, item.uid, item.text});
        return source.ImportFiles(files);
    }
    // The binary's own output for a command line.
    std::string Run(const std::string& arguments) {
        const std::string command =
            std::string(MIRODATE_BINARY_DIR) + "/mirodate " + arguments + " 2>/dev/null";
        FILE* pipe = popen(command.c_str(), "r");
        std::string out;
        char buffer[4096];
        while (pipe && std::fgets(buffer, sizeof buffer, pipe))
            out += buffer;
        if (pipe)
            pclose(pipe);
        return out;
    }
    std::map<std::string, std::string> Files(const std::string& folder) {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            files[entry.path().filename().string()] = ReadAll(entry.path());
        return files;
    }

    test::TempDir dir_;
};

TEST_F(ImportExportTest, GoogleExportListsAsGoogleShowsItAndRoundTrips) {
    const std::string store = dir_.File("store");
    const auto results = Import(store, kGoogleExport);
    ASSERT_EQ(results.size(), 2u); // the series with its moved occurrence is one item
    for (SaveResult result : results)
        EXPECT_EQ(result, SaveResult::Saved);
    // The series keeps its UID as its file name and its zone as given.
    const std::string series = ReadAll(store + "/calendar/7kq1series@google.com.ics");
    EXPECT_NE(series.find("TZOFFSETFROM:-0500"), std::string::npos);
    EXPECT_NE(series.find("RECURRENCE-ID;TZID=America/New_York:20240318T090000"), std::string::npos);
    EXPECT_EQ(Run("--store " + store + " --list 2024-03-01 2024-04-07"), kBerlinListing);

    // Importing the same file again changes nothing.
    const auto before = Files(store + "/calendar");
    Import(store, kGoogleExport);
    EXPECT_EQ(Files(store + "/calendar"), before);

    // Exported and imported into an empty store, it lists the same.
    const std::string exported = dir_.File("export.ics");
    Run("--store " + store + " --export 2024-03-01 2024-04-30 " + exported);
    const std::string text = ReadAll(exported);
    EXPECT_EQ(text.rfind("BEGIN:VCALENDAR", 0), 0u);
    EXPECT_EQ(text.find("BEGIN:VCALENDAR", 1), std::string::npos);          // one calendar
    EXPECT_EQ(text.find("BEGIN:VTIMEZONE"), text.rfind("BEGIN:VTIMEZONE")); // its zone once
    const std::string copy = dir_.File("copy");
    Import(copy, text);
    EXPECT_EQ(Run("--store " + copy + " --list 2024-03-01 2024-04-07"), kBerlinListing);
}

TEST_F(ImportExportTest, KhalReadsTheExport) {
    if (std::system("command -v khal >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "khal is not installed";
    const std::string store = dir_.File("store");
    Import(store, kGoogleExport);
    const std::string exported = dir_.File("export.ics");
    Run("--store " + store + " --export 2024-03-01 2024-04-30 " + exported);
    std::ofstream(dir_.File("khal.conf")) << "[calendars]\n[[work]]\npath = " << dir_.File("khal") << "\n"
                                          << "[locale]\ntimeformat = %H:%M\ndateformat = %Y-%m-%d\n"
                                          << "longdateformat = %Y-%m-%d\ndatetimeformat = %Y-%m-%d %H:%M\n"
                                          << "longdatetimeformat = %Y-%m-%d %H:%M\n";
    std::filesystem::create_directories(dir_.File("khal"));
    const std::string khal = "khal -c " + dir_.File("khal.conf") + " ";
    ASSERT_EQ(std::system((khal + "import --batch -a work " + exported + " >/dev/null 2>&1").c_str()), 0);
    FILE* pipe = popen((khal + "list 2024-03-18 1d 2>&1").c_str(), "r");
    std::string out;
    char buffer[512];
    while (pipe && std::fgets(buffer, sizeof buffer, pipe))
        out += buffer;
    if (pipe)
        pclose(pipe);
    EXPECT_NE(out.find("16:00-16:30 Standup (moved)"), std::string::npos) << out;
}

TEST_F(ImportExportTest, BadImportFiles) {
    IcsImport::Parsed parsed;
    EXPECT_EQ(IcsImport::Parse("From: someone\r\nSubject: lunch\r\n\r\nSee you!\r\n", parsed),
              IcsImport::Result::NotCalendar);
    EXPECT_EQ(IcsImport::Parse(std::string("\0\x01\x02", 3), parsed), IcsImport::Result::NotCalendar);
    EXPECT_EQ(IcsImport::Parse("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nEND:VCALENDAR\r\n", parsed),
              IcsImport::Result::Empty);
    EXPECT_EQ(IcsImport::ReadFile(dir_.File("missing.ics"), parsed), IcsImport::Result::Unreadable);

    // 100,000 reminders on one event: the event comes in with a sane number.
    std::string text =
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:alarms\r\nDTSTART:20240320T090000Z\r\n"
        "SUMMARY:Many reminders\r\n";
    for (int i = 0; i < 100000; ++i)
        text += "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT" + std::to_string(i % 60 + 1) +
                "M\r\nEND:VALARM\r\n";
    text += "END:VEVENT\r\nEND:VCALENDAR\r\n";
    ASSERT_EQ(IcsImport::Parse(text, parsed), IcsImport::Result::Ok);
    ASSERT_EQ(parsed.items.size(), 1u);
    EXPECT_EQ(parsed.droppedAlarms, 100000 - IcsImport::kMaxAlarmsPerComponent);
    const std::string store = dir_.File("store");
    const auto results = Import(store, text);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0], SaveResult::Saved);
    EXPECT_EQ(Run("--store " + store + " --list 2024-03-20 2024-03-20"),
              "2024-03-20 10:00-10:00 Many reminders\n");
}

} // namespace
} // namespace mirodate
