// The day view: its header, the slide to the next and previous day across
// the turn of the year and a leap day, the flick guard, and the check-mark
// zone writing the task's file.
#include "views/DayView.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "tests/views/ViewFixture.h"
#include "tests/views/ViewRows.h"
#include "views/ItemRow.h"

namespace mirodate::test {
namespace {

class DayViewTest : public ViewFixture {
protected:
    DayView& OpenDay(const DateTime& date) {
        OpenStore();
        day_ = std::make_unique<DayView>(date);
        EXPECT_TRUE(day_->Open(nullptr));
        windows_->RunUntilIdle();
        return *day_;
    }
    void TearDown() override {
        day_.reset();
        ViewFixture::TearDown();
    }
    int ListX(TouchListCtrlWnd& list) {
        RECT rect;
        GetWindowRect(list.GetHwnd(), &rect);
        return rect.left;
    }
    void Swipe(int fromX, int toX, int y) {
        Pointer(DisplayEvent::Type::PointerDown, fromX, y);
        Pointer(DisplayEvent::Type::PointerMove, (fromX + toX) / 2, y);
        Pointer(DisplayEvent::Type::PointerMove, toX, y);
        Pointer(DisplayEvent::Type::PointerUp, toX, y);
    }
    std::unique_ptr<DayView> day_;
};

TEST_F(DayViewTest, ShowsTheDaysItemsUnderItsLongDate) {
    AddTimed("a", "Dentist", "20240315T140000", "20240315T150000");
    AddTimed("b", "Tomorrow", "20240316T140000", "20240316T150000");
    AddTask("t", "Pay rent", "20240315");
    DayView& day = OpenDay(DateTime(2024, 3, 15));
    EXPECT_EQ(RowTexts(day.List()), (std::vector<std::string>{"I:Dentist", "I:Pay rent"}));
    EXPECT_EQ(Narrow(DayView::HeaderText(DateTime(2024, 3, 15))), "Friday, 15 March 2024");
    // Without "Day" in the views that list tasks, the task stays out.
    Settings::SetText("ShowTasksInViews", u"Month|Agenda");
    day.Reload();
    EXPECT_EQ(RowTexts(day.List()), (std::vector<std::string>{"I:Dentist"}));
}

TEST_F(DayViewTest, SlidesToTheNextAndPreviousDayAcrossYearsAndLeapDays) {
    DayView& day = OpenDay(DateTime(2023, 12, 31));
    std::vector<int> offsets;
    day.SetSlideObserver([&](int) { offsets.push_back(ListX(day.List())); });
    Key(VK_RIGHT);
    EXPECT_EQ(day.CurrentDate(), DateTime(2024, 1, 1));
    // 16 equal steps of the width x 0.0625 (30 pixels), the old day going left.
    ASSERT_EQ(offsets.size(), 16u);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(offsets[static_cast<size_t>(i)], -30 * (i + 1));
    EXPECT_EQ(ListX(day.List()), 0);
    EXPECT_FALSE(IsWindowVisible(day.IncomingList().GetHwnd()));

    day.SetDate(DateTime(2024, 3, 1));
    offsets.clear();
    Key(VK_LEFT);
    EXPECT_EQ(day.CurrentDate(), DateTime(2024, 2, 29));
    ASSERT_EQ(offsets.size(), 16u);
    EXPECT_EQ(offsets.back(), 480); // the old day went right

    // Without animations the lists never move.
    Settings::SetBool("DisableAnimations", true);
    offsets.clear();
    Key(VK_LEFT);
    EXPECT_EQ(day.CurrentDate(), DateTime(2024, 2, 28));
    EXPECT_TRUE(offsets.empty());
    day.SetDate(DateTime(2100, 2, 28));
    Key(VK_RIGHT);
    EXPECT_EQ(day.CurrentDate(), DateTime(2100, 3, 1)); // 2100 is no leap year
}

TEST_F(DayViewTest, TwoFlicksWithin50MillisecondsChangeTheDayOnce) {
    Settings::SetBool("DisableAnimations", true);
    DayView& day = OpenDay(DateTime(2024, 3, 15));
    Swipe(400, 80, 300);
    Swipe(400, 80, 300);
    EXPECT_EQ(day.CurrentDate(), DateTime(2024, 3, 16));
    Wait(60);
    Swipe(80, 400, 300); // to the right: the day before
    EXPECT_EQ(day.CurrentDate(), DateTime(2024, 3, 15));
}

TEST_F(DayViewTest, ACheckMarkTapTogglesTheTaskInItsFile) {
    AddTask("rent", "Pay rent", "20240315");
    DayView& day = OpenDay(DateTime(2024, 3, 15));
    ASSERT_EQ(day.List().ItemCount(), 1);
    const POINT check = RowPoint(day.List(), 0, day.Look().CheckZoneWidth() / 2);
    Tap(check.x, check.y);
    EXPECT_NE(ReadFile("tasks/rent.ics").find("STATUS:COMPLETED"), std::string::npos);
    auto* row = dynamic_cast<ItemRow*>(day.List().Item(0));
    ASSERT_TRUE(row);
    EXPECT_TRUE(row->Item()->isComplete);
    EXPECT_TRUE(row->IsStruckThrough());
    // A second tap within the guard does nothing; after it, the task is open again.
    Tap(check.x, check.y);
    EXPECT_NE(ReadFile("tasks/rent.ics").find("STATUS:COMPLETED"), std::string::npos);
    Wait(600);
    Tap(check.x, check.y);
    EXPECT_EQ(ReadFile("tasks/rent.ics").find("STATUS:COMPLETED"), std::string::npos);
    EXPECT_TRUE(questions.empty());
}

TEST_F(DayViewTest, AnEmptyDayShowsOnlyItsHeader) {
    DayView& day = OpenDay(DateTime(2024, 3, 15));
    EXPECT_EQ(day.List().ItemCount(), 0);
    EXPECT_GT(day.List().HeaderHeight(), 0);
}

} // namespace
} // namespace mirodate::test
