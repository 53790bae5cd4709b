// The week view's mark-up: entries of a day box as their formats write them,
// the summary rule, tasks written once and overdue tasks in red, the links
// that name the entries, and the week's title.
#include "views/WeekMarkup.h"

#include "data/DateTimeSpan.h"
#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace mirodate {
namespace {

class WeekMarkupTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("LC_ALL", "de_DE", 1);
        LanguageTable::Instance().SetText(u"\nAppointments=Termine\nTasks=Aufgaben\nWeekNumberShort=KW\n");
        options.text = RGB(0x11, 0x22, 0x33);
        options.now = DateTime(2024, 3, 15, 12, 0, 0);
    }
    void TearDown() override { LanguageTable::Instance().SetText(u""); }

    static PimItem Timed(std::int32_t oid, const char16_t* subject, const DateTime& start, int minutes) {
        PimItem item;
        item.oid = oid;
        item.subject = subject;
        item.SetTimes(start, start + DateTimeSpan(0, 0, minutes, 0));
        return item;
    }
    static PimItem AllDay(std::int32_t oid, const char16_t* subject, const DateTime& day) {
        PimItem item = Timed(oid, subject, day, 24 * 60);
        item.isAllDay = true;
        return item;
    }
    static PimItem Task(std::int32_t oid, const char16_t* subject, double due, double start = kNoDate) {
        PimItem task;
        task.type = PimItem::kTypeTask;
        task.oid = oid;
        task.subject = subject;
        task.SetTaskDates(start, due);
        return task;
    }
    std::string Box(const DateTime& day, const std::vector<PimItem>& appointments,
                    const std::vector<PimItem>& tasks = {}, WeekMarkup::DayCounts* counts = nullptr) {
        return Utf16ToUtf8(WeekMarkup::DayBox(day, appointments, tasks, options, counts));
    }
    static std::string Link(std::int32_t oid, char kind, const char* date) {
        return "<a href='action:\\\\\\item:" + std::to_string(oid) + ":" + kind + ":" + date + "'>";
    }

    WeekMarkupOptions options;
    const DateTime friday{2024, 3, 15};
};

TEST_F(WeekMarkupTest, TimedAllDayColouredAndPastEntries) {
    PimItem review = Timed(1, u"Review", DateTime(2024, 3, 15, 9, 5, 0), 30); // over by noon
    PimItem lunch = Timed(2, u"Lunch <3", DateTime(2024, 3, 15, 12, 30, 0), 60);
    lunch.colors = {RGB(0x05, 0xA0, 0xFF)};
    PimItem trip = AllDay(3, u"Trip", friday);
    trip.colors = {RGB(0xFF, 0, 0)};
    PimItem holiday = AllDay(4, u"Holiday", friday);
    options.strikePast = true;
    options.colorize = true;
    const std::string f = "20240315";
    EXPECT_EQ(Box(friday, {review, lunch, trip, holiday}),
              "<font color='#112233'>" + Link(1, 'a', f.c_str()) + "<b>09:05 <s>Review</s></b></a>, " +
                  Link(2, 'a', f.c_str()) + "<font color='#05a0ff'><b>12:30 Lunch &lt;3</b></font></a>, " +
                  Link(3, 'a', f.c_str()) + "<font color='#ff0000'>Trip</font></a>, " +
                  Link(4, 'a', f.c_str()) + "Holiday</a>, </font>"); // all day: not over before midnight

    // Without times and colours: timed entries bold, all-day ones plain.
    options.showTime = false;
    options.colorize = false;
    options.strikePast = false;
    EXPECT_EQ(Box(friday, {lunch, holiday}), "<font color='#112233'>" + Link(2, 'a', f.c_str()) +
                                                 "<b>Lunch &lt;3</b></a>, " + Link(4, 'a', f.c_str()) +
                                                 "Holiday</a>, </font>");
    // A timed entry that began the day before has no start time on this day.
    options.showTime = true;
    const PimItem night = Timed(5, u"Night shift", DateTime(2024, 3, 14, 22, 0, 0), 8 * 60);
    EXPECT_EQ(Box(friday, {night}),
              "<font color='#112233'>" + Link(5, 'a', f.c_str()) + "<b>Night shift</b></a>, </font>");
    EXPECT_EQ(Box(friday, {}), "<font color='#112233'></font>");
}

TEST_F(WeekMarkupTest, TasksOnceItalicAndOverdueInRedOnToday) {
    const double today = friday.ToDate();
    PimItem both = Task(10, u"Report", today, today); // by start and by due date on the same day
    PimItem coloured = Task(11, u"Taxes", today);
    coloured.colors = {RGB(0, 0x80, 0)};
    PimItem late = Task(12, u"Call back", today - 3);
    PimItem done = Task(13, u"Done already", today);
    done.isComplete = true;
    PimItem sameName = Task(14, u"Report", today); // its subject already stands in the box
    options.colorize = true;
    WeekMarkup::DayCounts counts;
    const std::string box = Box(friday, {}, {late, both, coloured, done, sameName}, &counts);
    EXPECT_EQ(box, "<font color='#112233'>" + Link(10, 't', "20240315") + "<i>Report</i></a>, " +
                       Link(11, 't', "20240315") + "<font color='#008000'><i>Taxes</i></font></a>, " +
                       Link(12, 't', "20240315") +
                       "<font color='#ff0000'><i>Call back</i></font></a>, </font>");
    EXPECT_EQ(counts.tasks, 3);
    EXPECT_EQ(counts.appointments, 0);
    // The overdue task stands on today only, not on the other days of the week.
    EXPECT_EQ(Box(friday + DateTimeSpan(1, 0, 0, 0), {}, {late}), "<font color='#112233'></font>");
    // Without task placement no tasks at all.
    options.tasks = false;
    EXPECT_EQ(Box(friday, {}, {both}), "<font color='#112233'></font>");
}

TEST_F(WeekMarkupTest, SummaryBeyondTheLimit) {
    const std::vector<PimItem> two = {Timed(1, u"A", DateTime(2024, 3, 15, 9, 0, 0), 30),
                                      AllDay(2, u"B", friday)};
    const std::vector<PimItem> task = {Task(3, u"T", friday.ToDate())};
    options.maxEvents = 0; // every non-empty box is summarised
    EXPECT_EQ(Box(friday, two, task),
              "<font color='#112233'><font color='#112233'>Termine: 2, Aufgaben: 1</font></font>");
    EXPECT_EQ(Box(friday, {}), "<font color='#112233'></font>");
    options.maxEvents = 3; // three entries fit
    EXPECT_NE(Box(friday, two, task).find("<b>09:00 A</b>"), std::string::npos);
    options.maxEvents = 2;
    EXPECT_NE(Box(friday, two, task).find("Termine: 2, Aufgaben: 1"), std::string::npos);
    options.maxEvents = -1; // never summarised
    std::vector<PimItem> many;
    for (int i = 0; i < 40; ++i)
        many.push_back(Timed(100 + i, u"X", DateTime(2024, 3, 15, 8, 0, 0), 10));
    EXPECT_EQ(Box(friday, many).find("Termine"), std::string::npos);
}

TEST_F(WeekMarkupTest, EntryLinksNameTheirItem) {
    const WeekEntryLink link{123456789, true, DateTime(2024, 12, 31)};
    EXPECT_EQ(link.ToArgument(), u"item:123456789:t:20241231");
    const auto parsed = WeekEntryLink::Parse(link.ToArgument());
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->oid, 123456789);
    EXPECT_TRUE(parsed->task);
    EXPECT_EQ(parsed->day, DateTime(2024, 12, 31));
    for (const char16_t* bad :
         {u"", u"item:", u"item:12:x:20241231", u"item:12:a:20241331", u"item:-5:a:20240101",
          u"item:99999999999:a:20240101", u"open:12:a:20240101", u"item:12:a:2024010"})
        EXPECT_FALSE(WeekEntryLink::Parse(bad)) << Utf16ToUtf8(bad);
}

TEST_F(WeekMarkupTest, TitleStartAndWeekNumber) {
    // 28 March 2024 runs into April; the 20th stays in March.
    EXPECT_EQ(Utf16ToUtf8(WeekMarkup::Title(DateTime(2024, 3, 28))), "Mär/Apr  2024   KW 13");
    EXPECT_EQ(Utf16ToUtf8(WeekMarkup::Title(DateTime(2024, 3, 20))), "März  2024   KW 12");
    // The last week of a 30-day month starting on the 24th stays in it.
    EXPECT_EQ(Utf16ToUtf8(WeekMarkup::Title(DateTime(2024, 4, 24))).substr(0, 11), "April  2024");
    EXPECT_EQ(Utf16ToUtf8(WeekMarkup::Title(DateTime(2024, 12, 30))).substr(0, 14), "Dez/Jan  2024 ");
    // February of a leap year has 29 days; of 1900 (no leap year) 28.
    EXPECT_EQ(Utf16ToUtf8(WeekMarkup::Title(DateTime(2024, 2, 23))).find('/'), std::string::npos);
    EXPECT_NE(Utf16ToUtf8(WeekMarkup::Title(DateTime(1900, 2, 23))).find('/'), std::string::npos);

    EXPECT_EQ(WeekMarkup::WeekStart(DateTime(2024, 3, 15, 10, 0, 0), 1), DateTime(2024, 3, 11)); // Monday
    EXPECT_EQ(WeekMarkup::WeekStart(DateTime(2024, 3, 15), 0), DateTime(2024, 3, 10));           // Sunday
    EXPECT_EQ(WeekMarkup::WeekStart(DateTime(2024, 3, 10), 0), DateTime(2024, 3, 10));
    EXPECT_EQ(WeekMarkup::WeekStart(DateTime(2024, 3, 10), 1), DateTime(2024, 3, 4));
    EXPECT_EQ(WeekMarkup::IsoWeek(DateTime(2021, 1, 3)), 53);
    EXPECT_EQ(WeekMarkup::IsoWeek(DateTime(2024, 12, 30)), 1);
    EXPECT_EQ(WeekMarkup::HexColor(RGB(5, 0xA0, 0xFF)), u"05a0ff");
}

} // namespace
} // namespace mirodate
