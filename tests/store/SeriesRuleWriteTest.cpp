// Writing recurrence rules and tasks through the real vdir store: rules the
// record cannot say survive other edits untouched, a changed pattern keeps
// only the exceptions that still fall on it, bad records are clamped before
// they reach a file, and tasks map their dates, status and priority.
#include "store/IcsItem.h"
#include "store/SeriesExceptions.h"
#include "tests/store/StoreFixture.h"

#include <libical/ical.h>

namespace mirodate {
namespace {

class SeriesRuleWriteTest : public StoreFixture {
protected:
    PimRecord Load(std::int32_t oid) {
        PimRecord record;
        EXPECT_TRUE(source_->GetItemFromOid(oid, record));
        return record;
    }
    // The one item of a folder.
    std::int32_t OnlyItem(int folderId) {
        auto items = source_->GetDefaultFolder(folderId)->GetItems();
        EXPECT_EQ(items->GetCount(), 1);
        PimRecord record;
        return items->Item(0, record) ? record.oid : -1;
    }
    std::string RuleOf(const std::string& relative) {
        return SeriesExceptions::RawRuleLine(ReadFile(relative));
    }
    static bool Has(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }

    std::unique_ptr<VdirSource> source_;
};

TEST_F(SeriesRuleWriteTest, RulesTheRecordCannotSayStayByteForByteThroughAnEdit) {
    const std::vector<std::string> rules = {
        "RRULE:FREQ=MONTHLY;WKST=SU;BYMONTHDAY=1,15", "RRULE:FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=1,-1",
        "RRULE:BYDAY=MO;FREQ=WEEKLY;WKST=MO;COUNT=5", // sayable, but written in another order
    };
    int n = 0;
    for (const std::string& rule : rules) {
        const std::string uid = "keep" + std::to_string(++n);
        WriteFile(
            "calendar/" + uid + ".ics",
            Event(uid,
                  "DTSTART;TZID=Europe/Berlin:20260302T090000\r\nDTEND;TZID=Europe/Berlin:20260302T100000\r\n"
                  "SUMMARY:Old\r\n" +
                      rule + "\r\nEXDATE;TZID=Europe/Berlin:20260316T090000\r\n"));
        source_ = OpenSource(false);
        const std::int32_t oid = OnlyItem(kFolderCalendar);
        PimRecord record = Load(oid);
        record.subject = u"New subject";
        ASSERT_EQ(source_->Save(record, kFolderCalendar), SaveResult::Saved) << rule;
        const std::string written = ReadFile("calendar/" + uid + ".ics");
        EXPECT_EQ(SeriesExceptions::RawRuleLine(written), rule);
        EXPECT_TRUE(Has(written, "SUMMARY:New subject"));
        EXPECT_TRUE(Has(written, "EXDATE;TZID=Europe/Berlin:20260316T090000"));
        // And it still parses as the same rule.
        EXPECT_EQ(Load(oid).recurrence, record.recurrence) << rule;
        source_.reset();
        std::filesystem::remove(dir_ / "vdir" / "calendar" / (uid + ".ics"));
    }
}

TEST_F(SeriesRuleWriteTest, ANewPatternKeepsOnlyTheExceptionsThatFallOnIt) {
    // Monday and Wednesday; the Monday 9 March cancelled, Wednesday 11 March moved.
    WriteFile(
        "calendar/mw.ics",
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VEVENT\r\nUID:mw\r\n"
        "DTSTART;TZID=Europe/Berlin:20260302T090000\r\nDTEND;TZID=Europe/Berlin:20260302T100000\r\n"
        "SUMMARY:Standup\r\nRRULE:FREQ=WEEKLY;BYDAY=MO,WE\r\nEXDATE;TZID=Europe/Berlin:20260309T090000\r\n"
        "END:VEVENT\r\nBEGIN:VEVENT\r\nUID:mw\r\nRECURRENCE-ID;TZID=Europe/Berlin:20260311T090000\r\n"
        "DTSTART;TZID=Europe/Berlin:20260311T110000\r\nDTEND;TZID=Europe/Berlin:20260311T120000\r\n"
        "SUMMARY:Standup late\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    const std::string before = ReadFile("calendar/mw.ics");
    const std::vector<double> exceptions = SeriesExceptions::Read(before);
    ASSERT_EQ(exceptions.size(), 2u);
    EXPECT_EQ(exceptions[0], DateTime(2026, 3, 9, 9, 0, 0).ToDate());
    EXPECT_EQ(exceptions[1], DateTime(2026, 3, 11, 9, 0, 0).ToDate());

    source_ = OpenSource(false);
    PimRecord record = Load(OnlyItem(kFolderCalendar));
    RecurrencePattern mondays = record.recurrence;
    mondays.DayOfWeekMask = RecurrencePattern::kMonday;
    const std::vector<double> dropped = SeriesExceptions::Dropped(mondays, record.start, exceptions);
    ASSERT_EQ(dropped.size(), 1u);
    EXPECT_EQ(dropped[0], exceptions[1]);
    // Every other week: the cancelled Monday 9 March is no occurrence either.
    RecurrencePattern fortnightly = mondays;
    fortnightly.Interval = 2;
    EXPECT_EQ(SeriesExceptions::Dropped(fortnightly, record.start, exceptions), exceptions);
    // Ended before them: both go; not recurring: both go.
    RecurrencePattern once = mondays;
    once.Occurrences = 1;
    once.NoEndDate = false;
    EXPECT_EQ(SeriesExceptions::Dropped(once, record.start, exceptions), exceptions);
    once = RecurrencePattern();
    EXPECT_EQ(SeriesExceptions::Dropped(once, record.start, exceptions), exceptions);

    record.recurrence = mondays;
    ASSERT_EQ(source_->Save(record, kFolderCalendar), SaveResult::Saved);
    const std::string after = ReadFile("calendar/mw.ics");
    EXPECT_EQ(SeriesExceptions::RawRuleLine(after), "RRULE:FREQ=WEEKLY;BYDAY=MO");
    EXPECT_TRUE(Has(after, "EXDATE;TZID=Europe/Berlin:20260309T090000"));
    EXPECT_FALSE(Has(after, "RECURRENCE-ID"));
    EXPECT_FALSE(Has(after, "Standup late"));
}

TEST_F(SeriesRuleWriteTest, BadRecordsAreClampedBeforeTheyAreWritten) {
    source_ = OpenSource(false);
    auto save = [&](auto change) {
        PimRecord r;
        r.itemKind = kItemAppointment;
        r.subject = u"Bad";
        r.start = DateTime(2026, 3, 4, 9, 0, 0).ToDate(); // a Wednesday
        r.end = DateTime(2026, 3, 4, 10, 0, 0).ToDate();
        r.isRecurring = true;
        r.recurrence.RecurrenceType = RecurrencePattern::kWeekly;
        r.recurrence.DayOfWeekMask = RecurrencePattern::kMonday;
        change(r.recurrence);
        EXPECT_EQ(source_->Save(r, kFolderCalendar), SaveResult::Saved);
        std::string rule;
        for (const auto& entry : std::filesystem::directory_iterator(dir_ / "vdir" / "calendar")) {
            rule = RuleOf("calendar/" + entry.path().filename().string());
            std::filesystem::remove(entry.path());
        }
        source_ = OpenSource(false);
        return rule;
    };
    EXPECT_EQ(save([](RecurrencePattern& p) { p.Interval = 0; }), "RRULE:FREQ=WEEKLY;BYDAY=MO");
    EXPECT_EQ(save([](RecurrencePattern& p) { p.Interval = -1; }), "RRULE:FREQ=WEEKLY;BYDAY=MO");
    EXPECT_EQ(save([](RecurrencePattern& p) { p.Interval = 100000; }),
              "RRULE:FREQ=WEEKLY;INTERVAL=999;BYDAY=MO");
    EXPECT_EQ(save([](RecurrencePattern& p) { p.DayOfWeekMask = 0; }), "RRULE:FREQ=WEEKLY;BYDAY=WE");
    EXPECT_EQ(save([](RecurrencePattern& p) { p.Occurrences = -4; }), "RRULE:FREQ=WEEKLY;BYDAY=MO");
    // An end before the start ends the series on its first day.
    const std::string early = save([](RecurrencePattern& p) {
        p.NoEndDate = false;
        p.PatternEndDate = DateTime(2026, 2, 1).ToDate();
    });
    EXPECT_EQ(early, "RRULE:FREQ=WEEKLY;UNTIL=20260304T225959Z;BYDAY=MO");
    EXPECT_EQ(save([](RecurrencePattern& p) {
                  p.RecurrenceType = RecurrencePattern::kYearly;
                  p.MonthOfYear = 13;
                  p.DayOfMonth = 0;
              }),
              "RRULE:FREQ=YEARLY;BYMONTHDAY=4;BYMONTH=3");
}

TEST_F(SeriesRuleWriteTest, TasksKeepDatesStatusAndPriorityBothWays) {
    source_ = OpenSource(false);
    PimRecord task;
    task.itemKind = kItemTask;
    task.subject = u"File taxes";
    task.startDate = DateTime(2026, 3, 10).ToDate();
    task.dueDate = DateTime(2026, 3, 20).ToDate();
    task.importance = 2;
    ASSERT_EQ(source_->Save(task, kFolderTasks), SaveResult::Saved);
    const std::string file = "tasks/" + task.uid + ".ics";
    std::string text = ReadFile(file);
    EXPECT_TRUE(Has(text, "DTSTART;VALUE=DATE:20260310"));
    EXPECT_TRUE(Has(text, "DUE;VALUE=DATE:20260320"));
    EXPECT_TRUE(Has(text, "PRIORITY:1"));
    EXPECT_TRUE(Has(text, "STATUS:NEEDS-ACTION"));
    EXPECT_FALSE(Has(text, "COMPLETED:"));

    PimRecord done = Load(task.oid);
    EXPECT_EQ(done.importance, 2);
    done.complete = true;
    done.importance = 0;
    ASSERT_EQ(source_->Save(done, kFolderTasks), SaveResult::Saved);
    text = ReadFile(file);
    EXPECT_TRUE(Has(text, "STATUS:COMPLETED"));
    EXPECT_TRUE(Has(text, "\nCOMPLETED:"));
    EXPECT_TRUE(Has(text, "PRIORITY:9"));
    EXPECT_TRUE(Load(task.oid).complete);

    PimRecord again = Load(task.oid);
    again.complete = false;
    again.importance = 1;
    ASSERT_EQ(source_->Save(again, kFolderTasks), SaveResult::Saved);
    text = ReadFile(file);
    EXPECT_FALSE(Has(text, "COMPLETED"));
    EXPECT_TRUE(Has(text, "PRIORITY:5"));

    // Other programs' priorities: 1-4 high, 5 and 0 normal, 6-9 low.
    const std::pair<int, int> priorities[] = {{1, 2}, {4, 2}, {5, 1}, {0, 1}, {6, 0}, {9, 0}};
    for (const auto& [priority, importance] : priorities) {
        IcsItem item;
        std::string problem;
        ASSERT_TRUE(
            item.Parse(Todo("p", "SUMMARY:x\r\nPRIORITY:" + std::to_string(priority) + "\r\n"), problem));
        EXPECT_EQ(item.GetRecord().importance, importance) << priority;
    }
}

TEST_F(SeriesRuleWriteTest, ARecurringTaskCompletedMovesToItsNextOccurrence) {
    WriteFile("tasks/gym.ics",
              Todo("gym", "SUMMARY:Gym\r\nDTSTART;VALUE=DATE:20260302\r\nDUE;VALUE=DATE:20260303\r\n"
                          "RRULE:FREQ=WEEKLY;COUNT=3\r\nEXDATE;VALUE=DATE:20260309\r\n"
                          "STATUS:NEEDS-ACTION\r\n"));
    source_ = OpenSource(false);
    const std::int32_t oid = OnlyItem(kFolderTasks);
    PimRecord task = Load(oid);
    ASSERT_TRUE(task.isRecurring);
    task.complete = true;
    ASSERT_EQ(source_->Save(task, kFolderTasks), SaveResult::Saved);
    // 9 March is excluded: on to 16 March, the last of three.
    std::string text = ReadFile("tasks/gym.ics");
    EXPECT_TRUE(Has(text, "DTSTART;VALUE=DATE:20260316")) << text;
    EXPECT_TRUE(Has(text, "DUE;VALUE=DATE:20260317"));
    EXPECT_TRUE(Has(text, "COUNT=1"));
    EXPECT_TRUE(Has(text, "STATUS:NEEDS-ACTION"));
    EXPECT_FALSE(Has(text, "COMPLETED"));
    PimRecord next = Load(oid);
    EXPECT_FALSE(next.complete);
    EXPECT_EQ(next.dueDate, DateTime(2026, 3, 17).ToDate());

    // The last occurrence done: the task is complete and stays where it is.
    next.complete = true;
    ASSERT_EQ(source_->Save(next, kFolderTasks), SaveResult::Saved);
    text = ReadFile("tasks/gym.ics");
    EXPECT_TRUE(Has(text, "STATUS:COMPLETED"));
    EXPECT_TRUE(Has(text, "DUE;VALUE=DATE:20260317"));
    EXPECT_TRUE(Load(oid).complete);
}

} // namespace
} // namespace mirodate

namespace mirodate {
namespace {

TEST_F(SeriesRuleWriteTest, ACompletedTaskIsListedAsDone) {
    const std::string binary = std::string(MIRODATE_BINARY_DIR) + "/mirodate";
    if (!std::filesystem::exists(binary))
        GTEST_SKIP() << "the program is not built";
    source_ = OpenSource(false);
    PimRecord task;
    task.itemKind = kItemTask;
    task.subject = u"Return books";
    task.dueDate = DateTime(2026, 3, 16).ToDate();
    ASSERT_EQ(source_->Save(task, kFolderTasks), SaveResult::Saved);
    PimRecord done = Load(task.oid);
    done.complete = true;
    ASSERT_EQ(source_->Save(done, kFolderTasks), SaveResult::Saved);
    source_.reset();
    const std::string command = "TZ=Europe/Berlin XDG_CONFIG_HOME='" + (dir_ / "config").string() +
                                "' XDG_CACHE_HOME='" + (dir_ / "cache").string() + "' '" + binary +
                                "' --store '" + Root() + "' --list 2026-03-16 2026-03-16";
    FILE* pipe = popen(command.c_str(), "r");
    ASSERT_TRUE(pipe);
    std::string out;
    char buffer[1024];
    while (size_t n = std::fread(buffer, 1, sizeof buffer, pipe))
        out.append(buffer, n);
    pclose(pipe);
    EXPECT_EQ(out, "2026-03-16 task [x] Return books\n");
}

} // namespace
} // namespace mirodate
