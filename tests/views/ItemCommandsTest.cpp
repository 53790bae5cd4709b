// The shared command handler through a real view: which questions each
// delete asks, what lands in the files (read back with libical), "Cancel"
// changing nothing, items from contacts without a pop-up, and rows whose
// file went away before the user acted.
#include "views/ItemCommands.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "tests/views/ViewFixture.h"
#include "tests/views/ViewRows.h"
#include "ui/ContextMenu.h"
#include "views/DayView.h"
#include "views/ItemTexts.h"

#include <libical/ical.h>

namespace mirodate::test {
namespace {

// The EXDATE values of the first event in a calendar text, as yyyymmdd.
std::vector<std::string> ExceptionDates(const std::string& text) {
    std::vector<std::string> dates;
    icalcomponent* calendar = icalparser_parse_string(text.c_str());
    if (!calendar)
        return dates;
    icalcomponent* event = icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
    for (icalproperty* p = event ? icalcomponent_get_first_property(event, ICAL_EXDATE_PROPERTY) : nullptr; p;
         p = icalcomponent_get_next_property(event, ICAL_EXDATE_PROPERTY)) {
        const icaltimetype t = icalproperty_get_exdate(p);
        char buffer[16];
        std::snprintf(buffer, sizeof buffer, "%04d%02d%02d", t.year, t.month, t.day);
        dates.emplace_back(buffer);
    }
    icalcomponent_free(calendar);
    return dates;
}

class ItemCommandsTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        // A weekly series of four from Friday 8 March, and a single meeting.
        AddTimed("yoga", "Yoga", "20240308T180000", "20240308T190000", "RRULE:FREQ=WEEKLY;COUNT=4\r\n");
        AddTimed("single", "Dentist", "20240315T090000", "20240315T100000");
    }
    void TearDown() override {
        day_.reset();
        ViewFixture::TearDown();
    }
    DayView& OpenDay(const DateTime& date) {
        OpenStore();
        day_ = std::make_unique<DayView>(date);
        EXPECT_TRUE(day_->Open(nullptr));
        windows_->RunUntilIdle();
        return *day_;
    }
    int IndexOf(const std::string& subject) {
        const auto rows = RowTexts(day_->List());
        const auto at = std::find(rows.begin(), rows.end(), "I:" + subject);
        return at == rows.end() ? -1 : static_cast<int>(at - rows.begin());
    }
    void Run(const std::string& subject, UINT command) {
        const int index = IndexOf(subject);
        ASSERT_GE(index, 0) << subject;
        day_->SelectRowItem(index);
        day_->RunCommand(command);
        windows_->RunUntilIdle();
    }
    std::unique_ptr<DayView> day_;
};

TEST_F(ItemCommandsTest, DeletingOneOccurrenceAddsAnExceptionToTheSeriesFile) {
    DayView& day = OpenDay(DateTime(2024, 3, 15));
    const std::string before = ReadFile("calendar/yoga.ics");
    answers = {3}; // Cancel
    Run("Yoga", ItemCommands::kDelete);
    EXPECT_EQ(questions, (std::vector<std::u16string>{u"QuestionDeleteAllSeries"}));
    EXPECT_EQ(ReadFile("calendar/yoga.ics"), before);

    answers = {2}; // Single
    questions.clear();
    Run("Yoga", ItemCommands::kDelete);
    // Only the series question, never the confirmation as well.
    EXPECT_EQ(questions, (std::vector<std::u16string>{u"QuestionDeleteAllSeries"}));
    EXPECT_EQ(ExceptionDates(ReadFile("calendar/yoga.ics")), (std::vector<std::string>{"20240315"}));
    EXPECT_EQ(IndexOf("Yoga"), -1);
    day.SetDate(DateTime(2024, 3, 22));
    EXPECT_GE(IndexOf("Yoga"), 0); // the rest of the series stays
}

TEST_F(ItemCommandsTest, DeletingAllOfASeriesRemovesItsFile) {
    OpenDay(DateTime(2024, 3, 22));
    answers = {1}; // All
    Run("Yoga", ItemCommands::kDelete);
    EXPECT_FALSE(FileExists("calendar/yoga.ics"));
    EXPECT_EQ(IndexOf("Yoga"), -1);
    EXPECT_TRUE(FileExists("calendar/single.ics"));
}

TEST_F(ItemCommandsTest, DeletingASingleItemAsksOnlyForConfirmation) {
    OpenDay(DateTime(2024, 3, 15));
    answers = {2}; // No
    Run("Dentist", ItemCommands::kDelete);
    EXPECT_EQ(questions, (std::vector<std::u16string>{u"ConfirmDelItem"}));
    EXPECT_TRUE(FileExists("calendar/single.ics"));
    answers = {1}; // Yes
    Run("Dentist", ItemCommands::kDelete);
    EXPECT_FALSE(FileExists("calendar/single.ics"));
}

TEST_F(ItemCommandsTest, DuplicateWritesTheOccurrenceAsANewFileWithANewUid) {
    OpenDay(DateTime(2024, 3, 22));
    Run("Yoga", ItemCommands::kDuplicate);
    int files = 0;
    std::string copy;
    for (const auto& entry : std::filesystem::directory_iterator(Root() + "/calendar")) {
        ++files;
        const std::string name = entry.path().filename().string();
        if (name != "yoga.ics" && name != "single.ics")
            copy = ReadFile("calendar/" + name);
    }
    EXPECT_EQ(files, 3);
    EXPECT_NE(copy.find("SUMMARY:Yoga"), std::string::npos);
    EXPECT_EQ(copy.find("RRULE"), std::string::npos); // the occurrence alone
    EXPECT_EQ(copy.find("UID:yoga"), std::string::npos);
    EXPECT_NE(copy.find("20240322T180000"), std::string::npos);
}

TEST_F(ItemCommandsTest, BirthdaysHaveNoPopup) {
    AddContact("ann", "Ann Example", "1990-03-15");
    Settings::SetBool("ShowContactsBirthdays", true);
    DayView& day = OpenDay(DateTime(2024, 3, 15));
    PimStore::Instance().SetFilters(u"", u"", false, true, false);
    day.Reload();
    int birthday = -1;
    for (int i = 0; i < day.List().ItemCount(); ++i)
        if (auto* row = dynamic_cast<ViewRow*>(day.List().Item(i));
            row && row->Item()->kind == PimItem::kBirthday)
            birthday = i;
    ASSERT_GE(birthday, 0);
    EXPECT_FALSE(day.List().Item(birthday)->AcceptsLongTap(day.List().GetHwnd()));
    day.OnListHold(birthday);
    EXPECT_EQ(ContextMenu::OpenCount(), 0);
    // An appointment's hold does open it.
    Wait(600);
    day.OnListHold(IndexOf("Dentist"));
    EXPECT_EQ(ContextMenu::OpenCount(), 1);
    // Left closes it (and frees it) without a choice.
    Wait(500);
    const HWND menu = FindWindow(nullptr, kContextMenuTitle);
    ASSERT_TRUE(menu);
    SendMessage(menu, WM_KEYDOWN, VK_LEFT, 0);
    Wait(500);
    EXPECT_FALSE(IsWindow(menu));
}

TEST_F(ItemCommandsTest, ARowWhoseFileVanishedIsReportedNotActedOn) {
    AddTask("gone", "Vanishing task", "20240315");
    OpenDay(DateTime(2024, 3, 15));
    std::filesystem::remove(Root() + "/tasks/gone.ics");
    std::filesystem::remove(Root() + "/calendar/single.ics");
    Run("Vanishing task", ItemCommands::kToggleComplete);
    EXPECT_EQ(questions, (std::vector<std::u16string>{u"ItemNotFound"}));
    EXPECT_FALSE(FileExists("tasks/gone.ics")); // nothing written in its place
    // Deleting what is gone already asks as usual and leaves it gone.
    questions.clear();
    answers = {1};
    Run("Dentist", ItemCommands::kDelete);
    EXPECT_EQ(questions, (std::vector<std::u16string>{u"ConfirmDelItem"}));
    EXPECT_EQ(IndexOf("Dentist"), -1);
}

TEST_F(ItemCommandsTest, AFileChangedOnDiskSinceItWasReadIsNotOverwritten) {
    AddTask("rent", "Pay rent", "20240315");
    OpenDay(DateTime(2024, 3, 15));
    // Another program rewrites the file after the store read it.
    const std::string theirs =
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VTODO\r\nUID:rent\r\n"
        "SUMMARY:Pay rent (theirs, a longer text)\r\nDUE;VALUE=DATE:20240315\r\nEND:VTODO\r\n"
        "END:VCALENDAR\r\n";
    WriteFile("tasks/rent.ics", theirs);
    Run("Pay rent", ItemCommands::kToggleComplete);
    EXPECT_EQ(ReadFile("tasks/rent.ics"), theirs);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_EQ(questions[0], u"ItemChangedOnDisk");
}

TEST(ItemTextsTest, TimeRangesAndDueTexts) {
    setenv("LANG", "C", 1);
    PimItem item;
    item.SetTimes(DateTime(2024, 3, 15, 9, 0, 0), DateTime(2024, 3, 15, 10, 30, 0));
    EXPECT_EQ(ItemTexts::TimeRange(item), u"9:00\u202fAM - 10:30\u202fAM");
    item.SetTimes(DateTime(2024, 3, 15, 9, 0, 0), DateTime(2024, 3, 15, 9, 0, 0));
    EXPECT_EQ(ItemTexts::TimeRange(item), u"9:00\u202fAM");
    item.SetTimes(DateTime(2024, 3, 15, 22, 0, 0), DateTime(2024, 3, 16, 1, 0, 0));
    EXPECT_EQ(ItemTexts::TimeRange(item), u"3/15/24 10:00\u202fPM - 3/16/24 1:00\u202fAM");
    item.isAllDay = true;
    item.SetTimes(DateTime(2024, 3, 15), DateTime(2024, 3, 16));
    EXPECT_EQ(ItemTexts::TimeRange(item), u"Allday");
    item.SetTimes(DateTime(2024, 3, 15), DateTime(2024, 3, 18));
    EXPECT_EQ(ItemTexts::TimeRange(item), u"3/15/24 - 3/17/24 Allday");

    PimItem task;
    task.type = PimItem::kTypeTask;
    const DateTime today(2024, 3, 15);
    task.SetTaskDates(kNoDate, DateTime(2024, 3, 15).ToDate());
    EXPECT_EQ(ItemTexts::DueText(task, today), u"Due: Today");
    task.SetTaskDates(kNoDate, DateTime(2024, 3, 16).ToDate());
    EXPECT_EQ(ItemTexts::DueText(task, today), u"Due: Tomorrow");
    task.SetTaskDates(kNoDate, DateTime(2024, 3, 20).ToDate());
    EXPECT_EQ(ItemTexts::DueText(task, today), u"Due: 5 Days (3/20/24)");
    task.SetTaskDates(kNoDate, DateTime(2024, 3, 1).ToDate());
    EXPECT_EQ(ItemTexts::DueText(task, today), u"Due: 3/1/24");
    task.SetTaskDates(kNoDate, kNoDate);
    EXPECT_EQ(ItemTexts::DueText(task, today), u"");
}

} // namespace
} // namespace mirodate::test
