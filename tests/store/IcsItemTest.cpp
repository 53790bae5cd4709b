#include "store/IcsItem.h"
#include "store/RecurrenceRule.h"
#include "store/VcardReader.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

class IcsItemTest : public StoreFixture {
protected:
    IcsItem Parse(const std::string& body, const std::string& extra = "") {
        IcsItem item;
        std::string problem;
        const std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:u1\r\n" + body +
                                 "END:VEVENT\r\n" + extra + "END:VCALENDAR\r\n";
        EXPECT_TRUE(item.Parse(text, problem)) << problem;
        return item;
    }
    std::vector<PimRecord> Expand(const IcsItem& item, const DateTime& from, const DateTime& before) {
        std::vector<PimRecord> out;
        item.Expand(from.ToDate(), before.ToDate(), out);
        return out;
    }
};

TEST_F(IcsItemTest, TimesAreConvertedToTheLocalZone) {
    auto utc = Parse("DTSTART:20260315T080000Z\r\nDTEND:20260315T090000Z\r\nSUMMARY:UTC\r\n");
    EXPECT_EQ(DateTime(utc.GetRecord().start), DateTime(2026, 3, 15, 9, 0, 0));
    auto ny = Parse(
        "DTSTART;TZID=America/New_York:20260315T080000\r\nDTEND;TZID=America/New_York:20260315T090000\r\n");
    EXPECT_EQ(DateTime(ny.GetRecord().start),
              DateTime(2026, 3, 15, 13, 0, 0)); // NY already on DST, Berlin not
    auto floating = Parse("DTSTART:20260315T080000\r\n");
    EXPECT_EQ(DateTime(floating.GetRecord().start), DateTime(2026, 3, 15, 8, 0, 0));
    EXPECT_EQ(floating.GetRecord().end, floating.GetRecord().start);
    auto unknown = Parse("DTSTART;TZID=Mars/Olympus:20260315T080000\r\nDURATION:PT30M\r\n");
    EXPECT_EQ(DateTime(unknown.GetRecord().start), DateTime(2026, 3, 15, 8, 0, 0)); // read as local
    EXPECT_EQ(DateTime(unknown.GetRecord().end), DateTime(2026, 3, 15, 8, 30, 0));
    auto allDay = Parse("DTSTART;VALUE=DATE:20260315\r\n");
    EXPECT_TRUE(allDay.GetRecord().allDay);
    EXPECT_EQ(DateTime(allDay.GetRecord().end), DateTime(2026, 3, 16));
}

TEST_F(IcsItemTest, SeriesWithExdateRdateAndOverrides) {
    const std::string moved =
        "BEGIN:VEVENT\r\nUID:u1\r\nRECURRENCE-ID;TZID=Europe/Berlin:20260309T180000\r\n"
        "DTSTART;TZID=Europe/Berlin:20260310T190000\r\nDTEND;TZID=Europe/Berlin:20260310T200000\r\n"
        "SUMMARY:Moved\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:u1\r\nRECURRENCE-ID:20260323T170000Z\r\nSTATUS:CANCELLED\r\n"
        "DTSTART;TZID=Europe/Berlin:20260323T180000\r\nEND:VEVENT\r\n";
    auto item =
        Parse("DTSTART;TZID=Europe/Berlin:20260302T180000\r\nDTEND;TZID=Europe/Berlin:20260302T190000\r\n"
              "SUMMARY:Yoga\r\nRRULE:FREQ=WEEKLY;BYDAY=MO\r\nEXDATE;TZID=Europe/Berlin:20260316T180000\r\n"
              "RDATE;TZID=Europe/Berlin:20260305T120000\r\n",
              moved);
    ASSERT_TRUE(item.IsSeries());
    EXPECT_EQ(item.GetSeriesEnd(), kNoDate);
    const auto march = Expand(item, DateTime(2026, 3, 1), DateTime(2026, 4, 1));
    std::vector<std::pair<DateTime, std::u16string>> got;
    for (const auto& r : march)
        got.emplace_back(DateTime(r.start), r.subject);
    const std::vector<std::pair<DateTime, std::u16string>> want = {
        {DateTime(2026, 3, 2, 18, 0, 0), u"Yoga"},
        {DateTime(2026, 3, 5, 12, 0, 0), u"Yoga"},
        {DateTime(2026, 3, 10, 19, 0, 0), u"Moved"},
        {DateTime(2026, 3, 23, 18, 0, 0), u"Yoga"},
        {DateTime(2026, 3, 30, 18, 0, 0), u"Yoga"}};
    EXPECT_EQ(got, want);
    for (const auto& r : march)
        EXPECT_TRUE(r.isRecurring);
    // The cancelled occurrence stays in its place, marked; the others are not.
    for (const auto& r : march)
        EXPECT_EQ(r.cancelled, DateTime(r.start) == DateTime(2026, 3, 23, 18, 0, 0));
    // After the change to summer time the series keeps its wall time.
    EXPECT_EQ(DateTime(march.back().end), DateTime(2026, 3, 30, 19, 0, 0));
    // A window far ahead costs no walk from the start and still finds the day.
    const auto later = Expand(item, DateTime(2030, 1, 1), DateTime(2030, 1, 8));
    ASSERT_EQ(later.size(), 1u);
    EXPECT_EQ(DateTime(later[0].start), DateTime(2030, 1, 7, 18, 0, 0));
}

TEST_F(IcsItemTest, AllDaySeriesKeepsWholeDays) {
    auto item =
        Parse("DTSTART;VALUE=DATE:20260301\r\nDTEND;VALUE=DATE:20260303\r\nRRULE:FREQ=MONTHLY;COUNT=3\r\n");
    const auto occurrences = Expand(item, DateTime(2026, 1, 1), DateTime(2027, 1, 1));
    ASSERT_EQ(occurrences.size(), 3u);
    EXPECT_EQ(DateTime(occurrences[2].start), DateTime(2026, 5, 1));
    EXPECT_EQ(DateTime(occurrences[2].end), DateTime(2026, 5, 3));
}

TEST_F(IcsItemTest, HugeRulesAreBounded) {
    auto secondly = Parse("DTSTART:19700101T000000Z\r\nRRULE:FREQ=SECONDLY\r\n");
    const auto month = Expand(secondly, DateTime(2026, 3, 1), DateTime(2026, 4, 1));
    EXPECT_LE(month.size(), static_cast<std::size_t>(IcsItem::kMaxOccurrences));
    // A counted rule from long ago is reached by arithmetic, not by a walk
    // from its start, and is bounded the same way.
    auto counted = Parse("DTSTART:19700101T000000Z\r\nRRULE:FREQ=MINUTELY;COUNT=900000000\r\n");
    const auto minutes = Expand(counted, DateTime(2026, 3, 1), DateTime(2026, 4, 1));
    ASSERT_EQ(minutes.size(), static_cast<std::size_t>(IcsItem::kMaxOccurrences));
    EXPECT_EQ(DateTime(minutes.front().start), DateTime(2026, 3, 1, 0, 0, 0));
    EXPECT_EQ(DateTime(minutes[1].start), DateTime(2026, 3, 1, 0, 1, 0));
    auto ended = Parse("DTSTART:19700101T000000Z\r\nRRULE:FREQ=MINUTELY;COUNT=1000\r\n");
    EXPECT_TRUE(Expand(ended, DateTime(2026, 3, 1), DateTime(2026, 4, 1)).empty());
    auto every7 =
        Parse("DTSTART:20260301T100000\r\nRRULE:FREQ=MINUTELY;INTERVAL=7;UNTIL=20260301T102100\r\n");
    std::vector<DateTime> starts;
    for (const auto& r : Expand(every7, DateTime(2026, 3, 1), DateTime(2026, 3, 2)))
        starts.push_back(DateTime(r.start));
    EXPECT_EQ(starts,
              (std::vector<DateTime>{DateTime(2026, 3, 1, 10, 0, 0), DateTime(2026, 3, 1, 10, 7, 0),
                                     DateTime(2026, 3, 1, 10, 14, 0), DateTime(2026, 3, 1, 10, 21, 0)}));
}

TEST_F(IcsItemTest, RulesLibicalWouldSearchForeverAreNotExpanded) {
    // Each of these keeps libical inside one call for minutes or for good:
    // the 30th of February, and BY parts on a rule finer than hourly. The
    // item keeps its first occurrence.
    for (const char* rule :
         {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", "FREQ=DAILY;COUNT=5;BYMONTH=2,4;BYMONTHDAY=31",
          "FREQ=SECONDLY;BYMONTH=2", "FREQ=MINUTELY;BYMONTHDAY=30;BYMONTH=2",
          // found by ics_fuzz: no month has a ninth-last Sunday
          "FREQ=MONTHLY;BYDAY=-9SU;COUNT=4", "FREQ=YEARLY;BYMONTH=3;BYDAY=6SU"}) {
        auto item = Parse("DTSTART:20260301T090000\r\nRRULE:" + std::string(rule) + "\r\n");
        const auto year = Expand(item, DateTime(2026, 1, 1), DateTime(2027, 1, 1));
        ASSERT_EQ(year.size(), 1u) << rule;
        EXPECT_EQ(DateTime(year[0].start), DateTime(2026, 3, 1, 9, 0, 0)) << rule;
    }
    // A rule that matches rarely but does match is still expanded.
    auto leap = Parse("DTSTART:20240229T090000\r\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=29\r\n");
    EXPECT_EQ(Expand(leap, DateTime(2027, 1, 1), DateTime(2029, 1, 1)).size(), 1u);
}

TEST_F(IcsItemTest, FarFutureTimesFollowTheZonesRules) {
    // Found by ics_fuzz: a time in the year 4050 made libical work out New
    // York's changes for two thousand years (a third of a second, and
    // seconds for a file's own zone). Far years are read as the same dates
    // whole 400-year cycles earlier, where the rules give the same changes.
    for (int month : {1, 3, 4, 7, 10, 11}) {
        char far[160], near[160];
        std::snprintf(far, sizeof far, "DTSTART;TZID=America/New_York:4050%02d10T090000\r\n", month);
        std::snprintf(near, sizeof near, "DTSTART;TZID=America/New_York:2050%02d10T090000\r\n", month);
        const DateTime farStart(Parse(far).GetRecord().start), nearStart(Parse(near).GetRecord().start);
        EXPECT_EQ(farStart.GetHour(), nearStart.GetHour()) << "month " << month;
        EXPECT_EQ(farStart.GetYear(), 4050);
    }
    EXPECT_EQ(DateTime(Parse("DTSTART;TZID=America/New_York:40500610T090000\r\n").GetRecord().start),
              DateTime(4050, 6, 10, 15, 0, 0));
}

TEST_F(IcsItemTest, OutlookAllDayEventsAreAllDay) {
    // Midnight to midnight in the writer's zone, marked by Outlook: the
    // calendar days it names, read in Berlin from New York.
    auto marked = Parse(
        "DTSTART;TZID=America/New_York:20260316T000000\r\nDTEND;TZID=America/New_York:20260317T000000\r\n"
        "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE\r\n");
    EXPECT_TRUE(marked.GetRecord().allDay);
    EXPECT_EQ(DateTime(marked.GetRecord().start), DateTime(2026, 3, 16));
    EXPECT_EQ(DateTime(marked.GetRecord().end), DateTime(2026, 3, 17));
    // Without the mark, or not at midnight, it is the timed event it says.
    auto unmarked = Parse(
        "DTSTART;TZID=America/New_York:20260316T000000\r\nDTEND;TZID=America/New_York:20260317T000000\r\n");
    EXPECT_FALSE(unmarked.GetRecord().allDay);
    EXPECT_EQ(DateTime(unmarked.GetRecord().start), DateTime(2026, 3, 16, 5, 0, 0));
    auto notMidnight = Parse(
        "DTSTART;TZID=America/New_York:20260316T090000\r\nDTEND;TZID=America/New_York:20260316T100000\r\n"
        "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE\r\n");
    EXPECT_FALSE(notMidnight.GetRecord().allDay);
    auto falseMark =
        Parse("DTSTART:20260316T000000\r\nDTEND:20260317T000000\r\nX-MICROSOFT-CDO-ALLDAYEVENT:FALSE\r\n");
    EXPECT_FALSE(falseMark.GetRecord().allDay);
}

TEST_F(IcsItemTest, BadInputIsRefusedWithAReason) {
    for (const std::string& text :
         {std::string("hello"), std::string("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:x\r\nDTSTART:2026"),
          std::string("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:x\r\nDTSTART:20261345T250000\r\nEND:"
                      "VEVENT\r\nEND:VCALENDAR\r\n"),
          std::string("BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n"), std::string()}) {
        IcsItem item;
        std::string problem;
        EXPECT_FALSE(item.Parse(text, problem)) << text;
        EXPECT_FALSE(problem.empty());
    }
    IcsItem two;
    std::string problem;
    ASSERT_TRUE(two.Parse(
        "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:a\r\nDTSTART:20260301T100000\r\nSUMMARY:A\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:b\r\nDTSTART:20260302T100000\r\nSUMMARY:B\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n",
        problem));
    EXPECT_TRUE(two.HasUnrelatedComponents());
    EXPECT_EQ(two.GetRecord().subject, u"A");
}

TEST(RecurrenceRule, RulesMapToRecords) {
    const double start = DateTime(2026, 3, 10, 9, 0, 0).ToDate(); // a Tuesday
    RecurrencePattern p;
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,TH;COUNT=10", start, 0.0, p));
    EXPECT_EQ(p.RecurrenceType, RecurrencePattern::kWeekly);
    EXPECT_EQ(p.Interval, 2);
    EXPECT_EQ(p.DayOfWeekMask, RecurrencePattern::kMonday | RecurrencePattern::kThursday);
    EXPECT_EQ(p.Occurrences, 10);
    EXPECT_FALSE(p.NoEndDate);
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=WEEKLY", start, 0.0, p));
    EXPECT_EQ(p.DayOfWeekMask, RecurrencePattern::kTuesday);
    EXPECT_TRUE(p.NoEndDate);
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=MONTHLY;BYDAY=-1FR", start, 0.0, p));
    EXPECT_EQ(p.RecurrenceType, RecurrencePattern::kMonthNth);
    EXPECT_EQ(p.Instance, 5);
    EXPECT_EQ(p.DayOfWeekMask, RecurrencePattern::kFriday);
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=MONTHLY", start, 0.0, p));
    EXPECT_EQ(p.RecurrenceType, RecurrencePattern::kMonthly);
    EXPECT_EQ(p.DayOfMonth, 10);
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=YEARLY;BYMONTH=5;BYDAY=2SU", start, 0.0, p));
    EXPECT_EQ(p.RecurrenceType, RecurrencePattern::kYearNth);
    EXPECT_EQ(p.MonthOfYear, 5);
    EXPECT_EQ(p.Instance, 2);
    const double until = DateTime(2026, 6, 30, 23, 59, 59).ToDate();
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=DAILY;INTERVAL=3;UNTIL=20260630T215959Z", start, until, p));
    EXPECT_EQ(p.RecurrenceType, RecurrencePattern::kDaily);
    EXPECT_EQ(p.Interval, 3);
    EXPECT_EQ(p.PatternEndDate, DateTime(2026, 6, 30).ToDate());
    EXPECT_EQ(p.RuleFit, RecurrencePattern::kExact);
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=HOURLY", start, 0.0, p));
    EXPECT_EQ(p.RuleFit, RecurrencePattern::kNoFit);
    // "On the 1st" would leave out the 15th: no record says this rule.
    ASSERT_TRUE(RecurrenceRule::ToPattern("FREQ=MONTHLY;BYMONTHDAY=1,15", start, 0.0, p));
    EXPECT_EQ(p.RuleFit, RecurrencePattern::kNoFit);
    EXPECT_FALSE(RecurrenceRule::ToPattern("NOT A RULE", start, 0.0, p));
}

TEST(RecurrenceRule, RecordsRoundTrip) {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    const double start = DateTime(2026, 3, 10, 9, 0, 0).ToDate();
    RecurrencePattern p;
    p.RecurrenceType = RecurrencePattern::kMonthNth;
    p.Interval = 2;
    p.Instance = 5;
    p.DayOfWeekMask = RecurrencePattern::kFriday;
    p.PatternEndDate = DateTime(2026, 12, 31).ToDate();
    p.NoEndDate = false;
    const std::string rule = RecurrenceRule::FromPattern(p, false);
    EXPECT_EQ(rule, "FREQ=MONTHLY;BYDAY=-1FR;INTERVAL=2;UNTIL=20261231T225959Z");
    RecurrencePattern back;
    ASSERT_TRUE(RecurrenceRule::ToPattern(rule, start, DateTime(2026, 12, 31, 23, 59, 59).ToDate(), back));
    p.PatternStartDate = DateTime(2026, 3, 10).ToDate();
    EXPECT_EQ(back, p);
    p.RecurrenceType = RecurrencePattern::kYearly;
    p.MonthOfYear = 7;
    p.DayOfMonth = 4;
    p.Occurrences = 5;
    EXPECT_EQ(RecurrenceRule::FromPattern(p, true), "FREQ=YEARLY;BYMONTH=7;BYMONTHDAY=4;INTERVAL=2;COUNT=5");
    EXPECT_EQ(RecurrenceRule::FromPattern(RecurrencePattern(), false), "");
}

TEST(VcardReader, DatesWithAndWithoutYear) {
    double date = 0;
    bool hasYear = false;
    ASSERT_TRUE(VcardReader::ParseDate("1990-02-15", date, hasYear));
    EXPECT_EQ(DateTime(date), DateTime(1990, 2, 15));
    EXPECT_TRUE(hasYear);
    ASSERT_TRUE(VcardReader::ParseDate("19851224T000000Z", date, hasYear));
    EXPECT_EQ(DateTime(date), DateTime(1985, 12, 24));
    ASSERT_TRUE(VcardReader::ParseDate("--0229", date, hasYear));
    EXPECT_FALSE(hasYear);
    EXPECT_EQ(DateTime(date).GetMonth(), 2);
    EXPECT_EQ(DateTime(date).GetDay(), 29);
    ASSERT_TRUE(VcardReader::ParseDate("--07-04", date, hasYear));
    for (const char* bad : {"1990-02-30", "1990", "--13-01", "yesterday", ""})
        EXPECT_FALSE(VcardReader::ParseDate(bad, date, hasYear)) << bad;

    PimRecord record;
    std::string problem;
    ASSERT_TRUE(VcardReader::Read("BEGIN:VCARD\r\nVERSION:4.0\r\nUID:c1\r\nN:Berg;Anna;;;\r\n"
                                  "item1.BDAY:19900215\r\nANNIVERSARY:--0601\r\nEND:VCARD\r\n",
                                  record, problem));
    EXPECT_EQ(record.subject, u"Anna Berg");
    EXPECT_EQ(DateTime(record.birthday), DateTime(1990, 2, 15));
    EXPECT_FALSE(record.anniversaryHasYear);
    ASSERT_TRUE(VcardReader::Read("BEGIN:VCARD\nVERSION:3.0\nFN:Jo\n "
                                  "e\nX-ANNIVERSARY:2015-06-01\nBDAY;VALUE=text:circa 1800\nEND:VCARD\n",
                                  record, problem));
    EXPECT_EQ(record.subject, u"Joe");
    EXPECT_EQ(record.birthday, kNoDate);
    EXPECT_EQ(DateTime(record.anniversary), DateTime(2015, 6, 1));
    EXPECT_FALSE(VcardReader::Read("BEGIN:VCALENDAR\r\n", record, problem));
}

TEST(VcardReader, EveryEmailAddressOnceAndOnlyAddresses) {
    PimRecord record;
    std::string problem;
    // Grouped, with parameters of every version, "mailto:" and blanks
    // around; a doubled address counts once; what cannot be an address
    // (no "@", blanks or a comma inside) is left out.
    ASSERT_TRUE(VcardReader::Read("BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Eva\r\n"
                                  "EMAIL;PREF=1:eva@example.org\r\n"
                                  "item2.email;type=INTERNET;type=pref:  eva.k@example.com \r\n"
                                  "EMAIL;INTERNET:MAILTO:eva@home.example\r\nEMAIL:eva\\,home@example.net\r\n"
                                  "EMAIL:EVA@example.org\r\nEMAIL:eva@example.org\r\n"
                                  "EMAIL:no address\r\nEMAIL:\r\nEMAIL:a b@example.org\r\n"
                                  "END:VCARD\r\nBEGIN:VCARD\r\nEMAIL:second@card.example\r\nEND:VCARD\r\n",
                                  record, problem));
    EXPECT_EQ(record.emails, (std::vector<std::u16string>{u"eva@example.org", u"eva.k@example.com",
                                                          u"eva@home.example", u"EVA@example.org"}));
    // A card stuffed with addresses gives a bounded list.
    std::string card = "BEGIN:VCARD\r\nFN:Many\r\n";
    for (int i = 0; i < 1000; ++i)
        card += "EMAIL:m" + std::to_string(i) + "@example.org\r\n";
    card += "EMAIL:" + std::string(300, 'x') + "@example.org\r\nEND:VCARD\r\n";
    ASSERT_TRUE(VcardReader::Read(card, record, problem));
    EXPECT_EQ(record.emails.size(), VcardReader::kMaxEmails);
    EXPECT_EQ(record.emails.front(), u"m0@example.org");
}

} // namespace
} // namespace mirodate
