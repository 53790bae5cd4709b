// A save cut short by a kill at any moment: a child process saves changes to
// a series in a loop and is killed with SIGKILL after a random delay, a
// hundred times. Each time every file of the store must parse and hold one
// whole version, never an older one than before, and nothing the store
// would read as an item may be left behind.
#include "data/PimFolder.h"
#include "platform/TextUtil.h"
#include "store/IcsItem.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace mirodate {
namespace {

constexpr int kRounds = 100;
// Delays up to this long let a kill land before, during and between saves.
constexpr int kMaxDelayMicroseconds = 40000;

class PowerLossTest : public StoreFixture {
protected:
    // The child: opens the store and saves the series again and again, each
    // time with a higher version in its subject and a moved occurrence
    // every other time. Never returns.
    [[noreturn]] void SaveForever(int round) {
        VdirSource source(Root());
        if (!source.Logon())
            _exit(2);
        const std::int32_t oid = VdirSource::HashUid("series");
        for (int i = 0;; ++i) {
            PimRecord record;
            if (!source.GetItemFromOid(oid, record))
                _exit(3);
            record.subject = Utf8ToUtf16(Version(round, i));
            record.location = u"Room " + Utf8ToUtf16(std::to_string(i % 7));
            if (source.Save(record, kFolderCalendar) != SaveResult::Saved)
                _exit(4);
            if (i % 2 == 1) {
                PimRecord moved = record;
                moved.start = (DateTime(2026, 3, 9 + 7 * (i % 4), 19, 0, 0)).ToDate();
                moved.end = (DateTime(2026, 3, 9 + 7 * (i % 4), 20, 0, 0)).ToDate();
                source.SaveOccurrence(oid, DateTime(2026, 3, 9 + 7 * (i % 4), 18, 0, 0).ToDate(), &moved);
            }
        }
    }

    // "v0003.000017": ordered as text in the order the child writes them.
    static std::string Version(int round, int i) {
        char text[32];
        std::snprintf(text, sizeof text, "v%04d.%06d", round, i);
        return text;
    }

    std::set<std::string> ItemNames() const {
        std::set<std::string> names;
        for (const char* folder : {"calendar", "tasks", "contacts"})
            for (const auto& entry : std::filesystem::directory_iterator(dir_ / "vdir" / folder)) {
                const std::string name = entry.path().filename().string();
                const bool item = name[0] != '.' && (name.ends_with(".ics") || name.ends_with(".vcf"));
                if (item)
                    names.insert(std::string(folder) + "/" + name);
            }
        return names;
    }
};

TEST_F(PowerLossTest, EveryFileHoldsOneWholeVersionAfterAKill) {
    WriteFile("calendar/series.ics",
              Event("series", "SUMMARY:v0000.000000\r\nDTSTART;TZID=Europe/Berlin:20260302T180000\r\n"
                              "DTEND;TZID=Europe/Berlin:20260302T190000\r\nRRULE:FREQ=WEEKLY;BYDAY=MO\r\n"));
    WriteFile("calendar/single.ics", Event("single", "SUMMARY:Dentist\r\nDTSTART:20260310T090000\r\n"));
    WriteFile("tasks/task.ics", Todo("task", "SUMMARY:Taxes\r\nDUE;VALUE=DATE:20260331\r\n"));
    const std::set<std::string> items = ItemNames();
    const std::string single = ReadFile("calendar/single.ics"), task = ReadFile("tasks/task.ics");

    std::mt19937 random(19);
    std::uniform_int_distribution<int> delay(0, kMaxDelayMicroseconds);
    std::string lastVersion = "v0000.000000";
    int roundsThatSaved = 0;
    for (int round = 1; round <= kRounds; ++round) {
        std::fflush(nullptr);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            SaveForever(round);
        usleep(static_cast<useconds_t>(delay(random)));
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status))
            << "round " << round << ": the saving child stopped by itself, status " << status;

        ASSERT_EQ(ItemNames(), items) << "round " << round;
        const std::string text = ReadFile("calendar/series.ics");
        IcsItem parsed;
        std::string problem;
        ASSERT_TRUE(parsed.Parse(text, problem)) << "round " << round << ": " << problem << "\n" << text;
        ASSERT_TRUE(text.ends_with("END:VCALENDAR\r\n")) << "round " << round;
        EXPECT_EQ(parsed.GetUid(), "series");
        EXPECT_TRUE(parsed.IsSeries());
        const std::string version = Utf16ToUtf8(parsed.GetRecord().subject);
        ASSERT_EQ(version.size(), lastVersion.size()) << "round " << round << ": " << version;
        ASSERT_GE(version, lastVersion) << "round " << round << ": an older version came back";
        if (version != lastVersion)
            ++roundsThatSaved;
        lastVersion = version;
        // The files nobody saved are untouched.
        ASSERT_EQ(ReadFile("calendar/single.ics"), single);
        ASSERT_EQ(ReadFile("tasks/task.ics"), task);
    }
    // Some kills landed after a save (how many depends on the disk and the
    // machine's load, so only that any did is checked).
    EXPECT_GT(roundsThatSaved, 0);
    // A fresh start reads every item.
    auto source = OpenSource();
    EXPECT_EQ(source->GetItemCount(), static_cast<int>(items.size()));
    EXPECT_EQ(source->GetSkippedCount(), 0);
}

} // namespace
} // namespace mirodate
