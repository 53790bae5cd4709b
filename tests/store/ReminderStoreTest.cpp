// Reminders read from the alarms of real files, and dismiss and snooze
// written back so that a new store over the same folder (and other
// programs) see them.
#include "data/DateTime.h"
#include "store/IcsAlarms.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <chrono>

namespace mirodate {
namespace {

double At(int day, int hour, int minute) {
    return DateTime(2026, 3, day, hour, minute, 0).ToDate();
}
constexpr double kMinute = 1.0 / 1440.0;

std::string Alarm(const std::string& trigger, const std::string& extra = "") {
    return "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\n" + trigger + "\r\n" + extra +
           "END:VALARM\r\n";
}

class ReminderStoreTest : public StoreFixture {
protected:
    std::vector<Reminder> Due(VdirSource& source, double from = At(1, 0, 0), double before = At(31, 0, 0)) {
        return source.GetReminders(from, before);
    }
};

TEST_F(ReminderStoreTest, TriggersRelativeToStartEndDueAndAbsolute) {
    WriteFile(
        "calendar/a.ics",
        Event("a", "SUMMARY:Dentist\r\nLOCATION:Main St\r\nDTSTART;TZID=Europe/Berlin:20260316T090000\r\n"
                   "DTEND;TZID=Europe/Berlin:20260316T100000\r\n" +
                       Alarm("TRIGGER:-PT15M") + Alarm("TRIGGER;RELATED=END:PT5M") +
                       Alarm("TRIGGER;VALUE=DATE-TIME:20260315T170000Z")));
    WriteFile("tasks/t.ics",
              Todo("t", "SUMMARY:Taxes\r\nDUE:20260320T120000\r\n" + Alarm("TRIGGER;RELATED=END:-PT1H")));
    // Cancelled, completed, an e-mail alarm and a property that is no alarm at all.
    WriteFile("calendar/c.ics", Event("c", "SUMMARY:Off\r\nSTATUS:CANCELLED\r\nDTSTART:20260317T090000\r\n" +
                                               Alarm("TRIGGER:-PT15M")));
    WriteFile("tasks/d.ics", Todo("d", "SUMMARY:Done\r\nSTATUS:COMPLETED\r\nDUE:20260320T120000\r\n" +
                                           Alarm("TRIGGER:-PT15M")));
    WriteFile("calendar/e.ics",
              Event("e", "SUMMARY:Mail\r\nDTSTART:20260318T090000\r\nBEGIN:VALARM\r\nACTION:EMAIL\r\n"
                         "TRIGGER:-PT15M\r\nEND:VALARM\r\n"));
    auto source = OpenSource();
    const auto due = Due(*source);
    ASSERT_EQ(due.size(), 4u);
    EXPECT_NEAR(due[0].moment, At(15, 18, 0), 1e-9); // 17:00 UTC is 18:00 in Berlin
    EXPECT_NEAR(due[1].moment, At(16, 8, 45), 1e-9);
    EXPECT_EQ(due[1].subject, u"Dentist");
    EXPECT_EQ(due[1].location, u"Main St");
    EXPECT_NEAR(due[1].start, At(16, 9, 0), 1e-9);
    EXPECT_NEAR(due[2].moment, At(16, 10, 5), 1e-9);
    EXPECT_NEAR(due[3].moment, At(20, 11, 0), 1e-9);
    EXPECT_EQ(due[3].itemKind, kItemTask);
    // The window bounds what is reported.
    EXPECT_EQ(Due(*source, At(16, 8, 45), At(16, 8, 46)).size(), 1u);
    EXPECT_TRUE(Due(*source, At(16, 8, 46), At(16, 10, 5)).empty());
}

TEST_F(ReminderStoreTest, SeriesRemindsOnEveryOccurrenceWithOverridesAndExclusions) {
    // Weekly on Mondays; the 16th is excluded, the 23rd moved to 11:00 with an
    // alarm of its own, the 30th cancelled.
    WriteFile(
        "calendar/w.ics",
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//t//EN\r\nBEGIN:VEVENT\r\nUID:w\r\nSUMMARY:Weekly\r\n"
        "DTSTART:20260302T090000\r\nDTEND:20260302T100000\r\nRRULE:FREQ=WEEKLY\r\n"
        "EXDATE:20260316T090000\r\n" +
            Alarm("TRIGGER:-PT10M") +
            "END:VEVENT\r\nBEGIN:VEVENT\r\nUID:w\r\nRECURRENCE-ID:20260323T090000\r\nSUMMARY:Moved\r\n"
            "DTSTART:20260323T110000\r\nDTEND:20260323T120000\r\n" +
            Alarm("TRIGGER:-PT30M") +
            "END:VEVENT\r\nBEGIN:VEVENT\r\nUID:w\r\nRECURRENCE-ID:20260330T090000\r\nSTATUS:CANCELLED\r\n"
            "DTSTART:20260330T090000\r\nDTEND:20260330T100000\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    auto source = OpenSource();
    const auto due = Due(*source, At(1, 0, 0), DateTime(2026, 4, 10).ToDate());
    ASSERT_EQ(due.size(), 4u);
    EXPECT_NEAR(due[0].moment, At(2, 8, 50), 1e-9);
    EXPECT_NEAR(due[1].moment, At(9, 8, 50), 1e-9);
    EXPECT_NEAR(due[2].moment, At(23, 10, 30), 1e-9);
    EXPECT_EQ(due[2].subject, u"Moved");
    EXPECT_NEAR(due[2].occurrence, At(23, 9, 0), 1e-9);
    EXPECT_NEAR(due[3].moment, DateTime(2026, 4, 6, 8, 50, 0).ToDate(), 1e-9);
    EXPECT_NEAR(due[0].occurrence, At(2, 9, 0), 1e-9);
}

TEST_F(ReminderStoreTest, DismissIsWrittenAndHoldsForANewStore) {
    WriteFile("calendar/a.ics",
              Event("a", "SUMMARY:Dentist\r\nX-OTHER-APP:kept\r\nDTSTART:20260316T090000\r\n"
                         "DTEND:20260316T100000\r\n" +
                             Alarm("TRIGGER:-PT15M")));
    {
        auto source = OpenSource();
        auto due = Due(*source);
        ASSERT_EQ(due.size(), 1u);
        EXPECT_EQ(source->DismissReminder(due[0], At(16, 8, 46)), SaveResult::Saved);
        EXPECT_TRUE(Due(*source).empty());
    }
    const std::string text = ReadFile("calendar/a.ics");
    EXPECT_NE(text.find("ACKNOWLEDGED:20260316T074600Z"), std::string::npos) << text;
    EXPECT_NE(text.find("X-MOZ-LASTACK:20260316T074600Z"), std::string::npos) << text;
    EXPECT_NE(text.find("X-OTHER-APP:kept"), std::string::npos);
    auto again = OpenSource(false);
    EXPECT_TRUE(Due(*again).empty());
}

TEST_F(ReminderStoreTest, SnoozeComesBackOnceAndIsRelatedToItsAlarm) {
    WriteFile("calendar/a.ics",
              Event("a", "SUMMARY:Dentist\r\nDTSTART:20260316T090000\r\nDTEND:20260316T100000\r\n" +
                             Alarm("TRIGGER:-PT15M")));
    auto source = OpenSource();
    auto due = Due(*source);
    ASSERT_EQ(due.size(), 1u);
    ASSERT_EQ(source->SnoozeReminder(due[0], At(16, 8, 45), At(16, 8, 50)), SaveResult::Saved);
    const std::string text = ReadFile("calendar/a.ics");
    EXPECT_NE(text.find("RELTYPE=SNOOZE"), std::string::npos) << text;
    EXPECT_NE(text.find("X-MOZ-SNOOZE-TIME:20260316T075000Z"), std::string::npos) << text;
    due = Due(*OpenSource(false));
    ASSERT_EQ(due.size(), 1u);
    EXPECT_NEAR(due[0].moment, At(16, 8, 50), 1e-9);
    EXPECT_TRUE(due[0].snoozed);
    // Snoozed again, then dismissed: nothing is left to come.
    ASSERT_EQ(source->SnoozeReminder(due[0], At(16, 8, 50), At(16, 9, 0)), SaveResult::Saved);
    due = Due(*source);
    ASSERT_EQ(due.size(), 1u);
    EXPECT_NEAR(due[0].moment, At(16, 9, 0), 1e-9);
    ASSERT_EQ(source->DismissReminder(due[0], At(16, 9, 0)), SaveResult::Saved);
    EXPECT_TRUE(Due(*OpenSource(false)).empty());
    EXPECT_EQ(ReadFile("calendar/a.ics").find("RELTYPE=SNOOZE"), std::string::npos);
}

TEST_F(ReminderStoreTest, AcknowledgementsOfOtherProgramsAreHonoured) {
    // Acknowledged on the alarm, or through the item's last acknowledgement,
    // and a snooze kept only on the item as some readers do.
    WriteFile("calendar/a.ics", Event("a", "SUMMARY:A\r\nDTSTART:20260316T090000\r\n" +
                                               Alarm("TRIGGER:-PT15M", "ACKNOWLEDGED:20260316T074500Z\r\n")));
    WriteFile("calendar/b.ics", Event("b", "SUMMARY:B\r\nDTSTART:20260316T090000\r\n"
                                           "X-MOZ-LASTACK:20260316T080000Z\r\n" +
                                               Alarm("TRIGGER:-PT15M")));
    WriteFile("calendar/c.ics", Event("c", "SUMMARY:C\r\nDTSTART:20260316T090000\r\n"
                                           "X-MOZ-LASTACK:20260316T074600Z\r\n"
                                           "X-MOZ-SNOOZE-TIME:20260316T080000Z\r\n" +
                                               Alarm("TRIGGER:-PT15M")));
    auto source = OpenSource();
    const auto due = Due(*source);
    ASSERT_EQ(due.size(), 1u);
    EXPECT_EQ(due[0].subject, u"C");
    EXPECT_NEAR(due[0].moment, At(16, 9, 0), 1e-9);
    ASSERT_EQ(source->DismissReminder(due[0], At(16, 9, 1)), SaveResult::Saved);
    EXPECT_EQ(ReadFile("calendar/c.ics").find("X-MOZ-SNOOZE-TIME"), std::string::npos);
}

TEST_F(ReminderStoreTest, ChangedOrUnreadableFilesAreNotOverwritten) {
    WriteFile("calendar/a.ics",
              Event("a", "SUMMARY:A\r\nDTSTART:20260316T090000\r\n" + Alarm("TRIGGER:-PT15M")));
    auto source = OpenSource();
    const auto due = Due(*source);
    ASSERT_EQ(due.size(), 1u);
    // Another program rewrites the file (different size) before the dismissal.
    const std::string theirs =
        Event("a", "SUMMARY:Theirs\r\nDTSTART:20260316T100000\r\n" + Alarm("TRIGGER:-PT15M"));
    WriteFile("calendar/a.ics", theirs);
    EXPECT_EQ(source->DismissReminder(due[0], At(16, 8, 46)), SaveResult::ChangedOnDisk);
    EXPECT_EQ(ReadFile("calendar/a.ics"), theirs);
    // The moved reminder is what the store now reports.
    const auto moved = Due(*source);
    ASSERT_EQ(moved.size(), 1u);
    EXPECT_NEAR(moved[0].moment, At(16, 9, 45), 1e-9);
}

TEST_F(ReminderStoreTest, HostileAlarmsAreBounded) {
    // Absurd triggers are ignored; a file with a hundred thousand alarms is
    // beyond the item limits and skipped; one just inside them is read up to
    // the alarm limit, quickly.
    WriteFile("calendar/a.ics",
              Event("a", "SUMMARY:A\r\nDTSTART:20260316T090000\r\n" + Alarm("TRIGGER:-P100000W") +
                             Alarm("TRIGGER:P99999999W") + Alarm("TRIGGER;VALUE=DATE-TIME:99991231T000000Z") +
                             Alarm("TRIGGER:-PT15M")));
    std::string many;
    for (int i = 0; i < 100000; ++i)
        many += "BEGIN:VALARM\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n";
    WriteFile("calendar/b.ics", Event("b", "SUMMARY:B\r\nDTSTART:20260316T090000\r\n" + many));
    many.clear();
    for (int i = 0; i < 15000; ++i)
        many += "BEGIN:VALARM\r\nTRIGGER:-PT" + std::to_string(i) + "M\r\nEND:VALARM\r\n";
    WriteFile("calendar/c.ics", Event("c", "SUMMARY:C\r\nDTSTART:20260316T090000\r\n" + many));
    auto source = OpenSource();
    const auto due = Due(*source, At(1, 0, 0), DateTime(2100, 1, 1).ToDate());
    int a = 0, c = 0;
    for (const Reminder& r : due)
        (r.subject == u"A" ? a : c) += 1;
    EXPECT_EQ(a, 1);
    EXPECT_EQ(c, IcsAlarms::kMaxAlarms);
}

} // namespace
} // namespace mirodate
