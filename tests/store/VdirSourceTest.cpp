#include "platform/TextUtil.h"
#include "store/StoreIndex.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <sys/stat.h>
#include <thread>

namespace mirodate {
namespace {

class VdirSourceTest : public StoreFixture {};

std::vector<PimRecord> Find(PimSource& source, int folder, const std::u16string& restriction,
                            const std::u16string& sort = u"[Start]") {
    auto items = source.GetDefaultFolder(folder)->GetItems();
    EXPECT_TRUE(items->Sort(sort, false));
    items->SetIncludeRecurrences(true);
    std::vector<PimRecord> found;
    PimRecord record;
    for (FindResult r = items->Find(restriction, record); r == FindResult::Found; r = items->FindNext(record))
        found.push_back(record);
    return found;
}

TEST_F(VdirSourceTest, BadFilesAreSkippedCountedAndNeverRewritten) {
    const std::map<std::string, std::string> bad = {
        {"calendar/notical.ics", "This is a shopping list, not a calendar.\n"},
        {"calendar/truncated.ics", "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:t\r\nDTSTART:202603"},
        {"calendar/baddate.ics", Event("bd", "DTSTART:20261345T250000\r\n")},
        {"calendar/dup2.ics", Event("dup", "DTSTART:20260302T100000\r\nSUMMARY:Second\r\n")},
        {"contacts/broken.vcf", "BEGIN:VCALENDAR\r\n"},
    };
    for (const auto& [name, text] : bad)
        WriteFile(name, text);
    WriteFile("calendar/dup1.ics", Event("dup", "DTSTART:20260301T100000\r\nSUMMARY:First\r\n"));
    WriteFile("calendar/unknowntz.ics",
              Event("tz", "DTSTART;TZID=Nowhere/Land:20260303T100000\r\nSUMMARY:TZ\r\n"));
    WriteFile("calendar/two.ics",
              "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260304T100000\r\nSUMMARY:A\r\n"
              "END:VEVENT\r\nBEGIN:VEVENT\r\nUID:b\r\nDTSTART:20260305T100000\r\nSUMMARY:B\r\n"
              "END:VEVENT\r\nEND:VCALENDAR\r\n");
    WriteFile("calendar/endless.ics",
              Event("e", "DTSTART:19700101T000000Z\r\nRRULE:FREQ=SECONDLY\r\nSUMMARY:Tick\r\n"));
    auto source = OpenSource();
    EXPECT_EQ(source->GetSkippedCount(), 5);
    const auto march = Find(*source, kFolderCalendar, u"[Start]<= <46112 AND [End]>= <46082");
    std::vector<std::u16string> subjects;
    for (const auto& r : march)
        if (r.subject != u"Tick")
            subjects.push_back(r.subject);
    EXPECT_EQ(subjects, (std::vector<std::u16string>{u"First", u"TZ", u"A"}));
    EXPECT_GT(march.size(), 3u); // the endless series, bounded

    // Writing other items leaves the unreadable files as they were.
    PimRecord added;
    added.itemKind = kItemAppointment;
    added.subject = u"New";
    added.start = DateTime(2026, 3, 6, 9, 0, 0).ToDate();
    added.end = DateTime(2026, 3, 6, 10, 0, 0).ToDate();
    ASSERT_EQ(source->Save(added, kFolderCalendar), SaveResult::Saved);
    for (const auto& [name, text] : bad)
        EXPECT_EQ(ReadFile(name), text) << name;
}

TEST_F(VdirSourceTest, OidsSurviveARestartWithOrWithoutTheIndex) {
    for (int i = 0; i < 50; ++i)
        WriteFile("calendar/e" + std::to_string(i) + ".ics",
                  Event("uid-" + std::to_string(i),
                        "DTSTART:20260301T100000\r\nSUMMARY:E" + std::to_string(i) + "\r\n"));
    WriteFile("tasks/t.ics", Todo("task-1", "SUMMARY:T\r\n"));
    std::map<std::string, std::int32_t> first;
    {
        auto source = OpenSource();
        for (const auto& r : Find(*source, kFolderCalendar, u""))
            first[r.uid] = r.oid;
        PimRecord task;
        ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("task-1"), task));
        EXPECT_EQ(source->GetItemKind(task.oid), kItemTask);
        EXPECT_EQ(source->GetItemKind(first["uid-3"]), kItemAppointment);
    }
    ASSERT_EQ(first.size(), 50u);
    EXPECT_TRUE(std::filesystem::exists(StoreIndex::PathFor(Root())));
    for (bool useIndex : {true, false}) {
        auto source = OpenSource(useIndex);
        for (const auto& r : Find(*source, kFolderCalendar, u""))
            EXPECT_EQ(r.oid, first[r.uid]) << r.uid;
    }
    // A damaged index is ignored.
    std::ofstream(StoreIndex::PathFor(Root()), std::ios::binary | std::ios::trunc)
        << "MIRODATE-INDEX-3\ngarbage";
    auto source = OpenSource();
    EXPECT_EQ(source->GetItemCount(), 51);
}

// A start that finds every file as the index has it takes the OIDs from the
// index and makes the UID tables only when a change needs them; hundreds of
// files are read on several threads when there is no index.
TEST_F(VdirSourceTest, AStartFromAWholeIndexKeepsOidsAndEveryUid) {
    constexpr int kFiles = 300;
    for (int i = 0; i < kFiles; ++i)
        WriteFile("calendar/e" + std::to_string(i) + ".ics",
                  Event("uid-" + std::to_string(i),
                        "DTSTART:20260301T100000\r\nSUMMARY:E" + std::to_string(i) + "\r\n"));
    WriteFile("calendar/zz-copy.ics", Event("uid-7", "DTSTART:20260302T100000\r\nSUMMARY:Copy\r\n"));
    std::map<std::string, std::int32_t> first;
    {
        auto source = OpenSource();
        for (const auto& r : Find(*source, kFolderCalendar, u""))
            first[r.uid] = r.oid;
        EXPECT_EQ(source->GetSkippedCount(), 1);
    }
    ASSERT_EQ(first.size(), static_cast<std::size_t>(kFiles));
    auto source = OpenSource();
    EXPECT_EQ(source->GetSkippedCount(), 1); // the copy, as before
    for (const auto& r : Find(*source, kFolderCalendar, u""))
        EXPECT_EQ(r.oid, first[r.uid]) << r.uid;

    // A deleted item's UID keeps its OID: a new item that asks for it gets
    // a UID of its own.
    ASSERT_TRUE(source->Delete(first["uid-5"]));
    PimRecord again;
    again.itemKind = kItemAppointment;
    again.uid = "uid-5";
    again.subject = u"Again";
    again.start = DateTime(2026, 3, 6, 9, 0, 0).ToDate();
    again.end = DateTime(2026, 3, 6, 10, 0, 0).ToDate();
    ASSERT_EQ(source->Save(again, kFolderCalendar), SaveResult::Saved);
    EXPECT_NE(again.uid, "uid-5");
    EXPECT_NE(again.oid, first["uid-5"]);
    PimRecord kept;
    ASSERT_TRUE(source->GetItemFromOid(first["uid-6"], kept));
    EXPECT_EQ(kept.subject, u"E6");
}

// A series' expansion of this month is kept with the index: the next start
// gives the very same occurrences without reading the file, for the month and
// any span inside it, and a changed file is expanded again.
TEST_F(VdirSourceTest, AKeptExpansionGivesWhatTheRuleGives) {
    const DateTime now = DateTime::Now();
    const DateTime first(now.GetYear(), now.GetMonth(), 1);
    char day[16];
    std::snprintf(day, sizeof day, "%04d%02d", first.GetYear(), first.GetMonth());
    const std::string month = day;
    WriteFile("calendar/weekly.ics", "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:weekly\r\n"
                                     "DTSTART;TZID=Europe/Berlin:" +
                                         month +
                                         "01T183000\r\n"
                                         "DTEND;TZID=Europe/Berlin:" +
                                         month +
                                         "01T193000\r\nRRULE:FREQ=WEEKLY\r\n"
                                         "EXDATE;TZID=Europe/Berlin:" +
                                         month +
                                         "08T183000\r\nSUMMARY:Choir\r\nEND:VEVENT\r\n"
                                         "BEGIN:VEVENT\r\nUID:weekly\r\nRECURRENCE-ID;TZID=Europe/Berlin:" +
                                         month +
                                         "15T183000\r\n"
                                         "DTSTART;TZID=Europe/Berlin:" +
                                         month +
                                         "16T100000\r\n"
                                         "DTEND;TZID=Europe/Berlin:" +
                                         month +
                                         "16T110000\r\nSUMMARY:Choir, moved\r\nEND:VEVENT\r\n"
                                         "BEGIN:VEVENT\r\nUID:weekly\r\nRECURRENCE-ID;TZID=Europe/Berlin:" +
                                         month +
                                         "22T183000\r\n"
                                         "DTSTART;TZID=Europe/Berlin:" +
                                         month +
                                         "22T183000\r\n"
                                         "DTEND;TZID=Europe/Berlin:" +
                                         month +
                                         "22T193000\r\nSTATUS:CANCELLED\r\nSUMMARY:Choir\r\n"
                                         "END:VEVENT\r\nEND:VCALENDAR\r\n");
    WriteFile("calendar/daily.ics", Event("daily", "DTSTART:" + month + "03T070000\r\nDTEND:" + month +
                                                       "03T073000\r\nRRULE:FREQ=DAILY;COUNT=40\r\n"
                                                       "SUMMARY:Run\r\n"));
    const DateTime last = first + DateTimeSpan(DaysInMonth(first.GetYear(), first.GetMonth()) - 1.0);
    const DateTime week = first + DateTimeSpan(13.0);
    auto overlap = [](const DateTime& from, const DateTime& to) {
        return Utf8ToUtf16("[Start]<= <" + std::to_string(to.DayNumber()) + " AND [End]>= <" +
                           std::to_string(from.DayNumber()));
    };
    std::vector<PimRecord> fromFiles, weekFromFiles;
    {
        auto source = OpenSource(false);
        fromFiles = Find(*source, kFolderCalendar, overlap(first, last));
        weekFromFiles = Find(*source, kFolderCalendar, overlap(week, week + DateTimeSpan(6.0)));
    }
    {
        auto source = OpenSource(); // reads the files, keeps the month's expansions, writes the index
        EXPECT_EQ(Find(*source, kFolderCalendar, overlap(first, last)), fromFiles);
    }
    {
        auto source = OpenSource();
        for (const auto& stored : source->GetSnapshot(kFolderCalendar)) {
            // The month's window, not the week's asked for after it.
            const auto kept = source->GetExpansion(stored);
            ASSERT_NE(kept, nullptr) << stored->fileName;
            EXPECT_LE(kept->from, first.ToDate());
            EXPECT_GE(kept->before, last.ToDate() + 1.0);
        }
        EXPECT_EQ(Find(*source, kFolderCalendar, overlap(first, last)), fromFiles);
        EXPECT_EQ(Find(*source, kFolderCalendar, overlap(week, week + DateTimeSpan(6.0))), weekFromFiles);
    }
    bool cancelledSeen = false, movedSeen = false;
    for (const PimRecord& r : fromFiles) {
        cancelledSeen |= r.cancelled;
        movedSeen |= r.subject == u"Choir, moved";
    }
    EXPECT_TRUE(cancelledSeen);
    EXPECT_TRUE(movedSeen);

    std::this_thread::sleep_for(std::chrono::milliseconds(20)); // a new modification time
    WriteFile("calendar/daily.ics", Event("daily", "DTSTART:" + month + "03T080000\r\nDTEND:" + month +
                                                       "03T083000\r\nRRULE:FREQ=DAILY;COUNT=2\r\n"
                                                       "SUMMARY:Swim\r\n"));
    {
        auto source = OpenSource(false);
        // A search a year ahead is not worth keeping.
        Find(*source, kFolderCalendar, overlap(first, first + DateTimeSpan(365.0)));
        for (const auto& stored : source->GetSnapshot(kFolderCalendar))
            EXPECT_EQ(source->GetExpansion(stored), nullptr) << stored->fileName;
    }
    auto source = OpenSource();
    int swims = 0, runs = 0;
    for (const PimRecord& r : Find(*source, kFolderCalendar, overlap(first, last))) {
        swims += r.subject == u"Swim";
        runs += r.subject == u"Run";
    }
    EXPECT_EQ(swims, 2);
    EXPECT_EQ(runs, 0);
}

TEST_F(VdirSourceTest, IndexIsCheckedAgainstTheFiles) {
    WriteFile("calendar/a.ics", Event("a", "DTSTART:20260301T100000\r\nSUMMARY:Old\r\n"));
    { auto source = OpenSource(); }
    WriteFile("calendar/a.ics", Event("a", "DTSTART:20260301T100000\r\nSUMMARY:Changed text\r\n"));
    WriteFile("calendar/b.ics", Event("b", "DTSTART:20260301T110000\r\nSUMMARY:B\r\n"));
    auto source = OpenSource();
    PimRecord record;
    ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("a"), record));
    EXPECT_EQ(record.subject, u"Changed text");
    EXPECT_EQ(source->GetItemCount(), 2);
}

TEST_F(VdirSourceTest, ContactAddressesComeFromTheFilesAndFromTheIndex) {
    WriteFile("contacts/a.vcf", "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Anna Berg\r\n"
                                "item1.EMAIL;TYPE=INTERNET,WORK:anna@work.example\r\n"
                                "EMAIL;TYPE=HOME:anna@home.exam\r\n ple\r\nEND:VCARD\r\n");
    WriteFile("contacts/b.vcf", "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:b\r\nFN:Ben\r\nEND:VCARD\r\n");
    const std::vector<std::u16string> anna{u"anna@work.example", u"anna@home.example"};
    for (bool fromIndex : {false, true}) {
        // The first start reads the files and writes the index; the second reads the index.
        auto source = OpenSource();
        PimRecord record;
        ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("a"), record));
        EXPECT_EQ(record.emails, anna) << fromIndex;
        ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("b"), record));
        EXPECT_TRUE(record.emails.empty());
    }
}

TEST_F(VdirSourceTest, SaveRefusesAFileChangedSinceItWasRead) {
    WriteFile(
        "calendar/a.ics",
        Event("a", "DTSTART:20260301T100000\r\nDTEND:20260301T110000\r\nSUMMARY:Mine\r\nX-OTHER:kept\r\n"));
    auto source = OpenSource();
    PimRecord record;
    ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("a"), record));
    record.subject = u"Edited";
    ASSERT_EQ(source->Save(record, kFolderCalendar), SaveResult::Saved);
    EXPECT_NE(ReadFile("calendar/a.ics").find("SUMMARY:Edited"), std::string::npos);
    EXPECT_NE(ReadFile("calendar/a.ics").find("X-OTHER:kept"), std::string::npos);

    const std::string theirs = Event("a", "DTSTART:20260301T100000\r\nSUMMARY:Theirs, longer text\r\n");
    WriteFile("calendar/a.ics", theirs);
    record.subject = u"Edited again";
    EXPECT_EQ(source->Save(record, kFolderCalendar), SaveResult::ChangedOnDisk);
    EXPECT_EQ(ReadFile("calendar/a.ics"), theirs);
    ASSERT_TRUE(source->GetItemFromOid(record.oid, record));
    EXPECT_EQ(record.subject, u"Theirs, longer text");
}

TEST_F(VdirSourceTest, AttendeesAreReadAndKeptOnSave) {
    // Folded lines, a name with a comma, the organizer listed again as
    // attendee, a name with the separators of the text and a mailto: in capitals.
    WriteFile("calendar/m.ics",
              Event("m", "DTSTART:20260301T100000\r\nDTEND:20260301T110000\r\nSUMMARY:Meeting\r\n"
                         "ORGANIZER;CN=Ann Boss:mailto:ann@example.org\r\n"
                         "ATTENDEE;CN=Ann Boss;ROLE=CHAIR:mailto:ann@example.org\r\n"
                         "ATTENDEE;CN=\"Doe, Jo\";PARTSTAT=ACCEPTED;RSVP=TRUE:mailto:jo@exa\r\n mple.org\r\n"
                         "ATTENDEE;CN=Pipe|Tilde~Man:MAILTO:pt@example.org\r\n"
                         "ATTENDEE:mailto:bare@example.org\r\n"));
    auto source = OpenSource();
    PimRecord record;
    ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("m"), record));
    EXPECT_EQ(record.attendees,
              u"Ann Boss|ann@example.org~Doe, Jo|jo@example.org~Pipe Tilde Man|pt@example.org~"
              u"|bare@example.org");

    // Unchanged attendees keep their roles and replies through a save.
    record.subject = u"Meeting, moved";
    ASSERT_EQ(source->Save(record, kFolderCalendar), SaveResult::Saved);
    std::string text = ReadFile("calendar/m.ics");
    EXPECT_NE(text.find("PARTSTAT=ACCEPTED"), std::string::npos);
    EXPECT_NE(text.find("ROLE=CHAIR"), std::string::npos);
    PimRecord reread;
    ASSERT_TRUE(source->GetItemFromOid(record.oid, reread));
    EXPECT_EQ(reread.attendees, record.attendees);

    // A changed list is written as it stands; the first stays organizer.
    record.attendees = u"Ann Boss|ann@example.org~New One|new@example.org";
    ASSERT_EQ(source->Save(record, kFolderCalendar), SaveResult::Saved);
    text = ReadFile("calendar/m.ics");
    EXPECT_NE(text.find("ORGANIZER;CN=Ann Boss:mailto:ann@example.org"), std::string::npos);
    EXPECT_EQ(text.find("jo@example.org"), std::string::npos);
    ASSERT_TRUE(source->GetItemFromOid(record.oid, reread));
    EXPECT_EQ(reread.attendees, record.attendees);

    // A new event with attendees and no organizer before: all attendees.
    PimRecord added;
    added.itemKind = kItemAppointment;
    added.subject = u"Lunch";
    added.start = DateTime(2026, 3, 2, 12, 0, 0).ToDate();
    added.end = DateTime(2026, 3, 2, 13, 0, 0).ToDate();
    added.attendees = u"Bo|bo@example.org";
    ASSERT_EQ(source->Save(added, kFolderCalendar), SaveResult::Saved);
    ASSERT_TRUE(source->GetItemFromOid(added.oid, reread));
    EXPECT_EQ(reread.attendees, u"Bo|bo@example.org");
}

TEST_F(VdirSourceTest, DeleteCopyAndOccurrenceChanges) {
    WriteFile("calendar/s.ics",
              Event("s", "DTSTART;TZID=Europe/Berlin:20260302T180000\r\n"
                         "DTEND;TZID=Europe/Berlin:20260302T190000\r\nRRULE:FREQ=WEEKLY\r\nSUMMARY:S\r\n"));
    auto source = OpenSource();
    const std::int32_t oid = VdirSource::HashUid("s");
    EXPECT_EQ(source->SaveOccurrence(oid, DateTime(2026, 3, 9, 18, 0, 0).ToDate(), nullptr),
              SaveResult::Saved);
    PimRecord moved;
    moved.itemKind = kItemAppointment;
    moved.subject = u"S moved";
    moved.start = DateTime(2026, 3, 17, 7, 0, 0).ToDate();
    moved.end = DateTime(2026, 3, 17, 8, 0, 0).ToDate();
    EXPECT_EQ(source->SaveOccurrence(oid, DateTime(2026, 3, 16, 18, 0, 0).ToDate(), &moved),
              SaveResult::Saved);
    const std::int32_t copy = source->Copy(oid);
    ASSERT_GT(copy, 0);
    EXPECT_NE(copy, oid);
    const auto march = Find(*source, kFolderCalendar, u"[Start]<= <46112 AND [End]>= <46082");
    std::vector<std::pair<int, std::u16string>> got;
    for (const auto& r : march)
        if (r.oid == oid)
            got.emplace_back(DateTime(r.start).GetDay(), r.subject);
    EXPECT_EQ(got, (std::vector<std::pair<int, std::u16string>>{
                       {2, u"S"}, {17, u"S moved"}, {23, u"S"}, {30, u"S"}}));
    EXPECT_EQ(std::count_if(march.begin(), march.end(), [&](const PimRecord& r) { return r.oid == copy; }),
              4);
    ASSERT_TRUE(source->Delete(oid));
    EXPECT_FALSE(std::filesystem::exists(dir_ / "vdir/calendar/s.ics"));
    EXPECT_EQ(source->GetItemKind(oid), 0);
    EXPECT_EQ(OpenSource()->GetItemKind(copy), kItemAppointment);
}

class Recorder {
public:
    void Add(const PimNotification& n) {
        std::lock_guard lock(mutex_);
        seen_.push_back(n);
        changed_.notify_all();
    }
    // Waits for `count` reports; the limit is only a guard against a hang.
    std::vector<PimNotification> WaitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(20), [&] { return seen_.size() >= count; });
        return seen_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<PimNotification> seen_;
};

TEST_F(VdirSourceTest, ReportsChangesByOriginFolderAndOid) {
    WriteFile("tasks/old.ics", Todo("old", "SUMMARY:Old\r\n"));
    auto source = OpenSource();
    Recorder recorder;
    source->SetNotificationSink([&](const PimNotification& n) { recorder.Add(n); });
    for (int folder : {kFolderCalendar, kFolderTasks, kFolderContacts})
        source->GetDefaultFolder(folder)->AddItemsNotifications(kNotifyLocal | kNotifyRemote);

    // Another process writes a new event (through a temporary file and a rename).
    const auto incoming = dir_ / "incoming.ics";
    std::ofstream(incoming) << Event("remote-1", "DTSTART:20260310T100000\r\nSUMMARY:From elsewhere\r\n");
    const std::string command =
        "mv '" + incoming.string() + "' '" + (dir_ / "vdir/calendar/remote-1.ics").string() + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    auto seen = recorder.WaitFor(1);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].message, kMsgItemCreatedRemote);
    EXPECT_EQ(seen[0].folder, kFolderCalendar);
    EXPECT_EQ(seen[0].oid, VdirSource::HashUid("remote-1"));
    PimRecord record;
    ASSERT_TRUE(source->GetItemFromOid(seen[0].oid, record));
    EXPECT_EQ(record.subject, u"From elsewhere");

    // Our own write of a task is local.
    PimRecord task;
    task.itemKind = kItemTask;
    task.subject = u"Ours";
    ASSERT_EQ(source->Save(task, kFolderTasks), SaveResult::Saved);
    seen = recorder.WaitFor(2);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[1].message, kMsgItemCreatedLocal);
    EXPECT_EQ(seen[1].folder, kFolderTasks);
    EXPECT_EQ(seen[1].oid, task.oid);

    // Another process deletes a task.
    ASSERT_EQ(std::system(("rm '" + (dir_ / "vdir/tasks/old.ics").string() + "'").c_str()), 0);
    seen = recorder.WaitFor(3);
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[2].message, kMsgItemDeletedRemote);
    EXPECT_EQ(seen[2].oid, VdirSource::HashUid("old"));
    EXPECT_EQ(seen[2].folder, kFolderTasks);
    source->SetNotificationSink({});
}

} // namespace
} // namespace mirodate
