// The year view and the quick view on a real vdir: which days are marked
// (spans over several days, all-day items, the filter), the marks on the
// screen, swiping between years, and the next items from now.
#include "views/YearView.h"
#include "data/Categories.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "tests/views/ViewFixture.h"
#include "views/QuickView.h"

#include <chrono>
#include <thread>

namespace mirodate::test {
namespace {

class YearViewTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        AddTimed("a", "Dentist", "20240315T090000", "20240315T100000");
        AddTimed("trip", "Trip", "20240630T180000", "20240702T120000");
        AddEvent("xmas", "Holiday", "DTSTART;VALUE=DATE:20241225\r\nDTEND;VALUE=DATE:20241226\r\n");
        AddTimed("next", "Next year", "20250110T090000", "20250110T100000");
        AddTimed("hidden", "Secret", "20240401T090000", "20240401T100000", "CATEGORIES:Private\r\n");
        AddTask("t", "File taxes", "20240520");
        OpenStore();
    }
    // The marks are read away from the page; this waits for them.
    void AwaitMarkers(const YearView& view) {
        for (int i = 0; i < 2000 && view.MarkersPending(); ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            windows_->RunUntilIdle();
        }
        ASSERT_FALSE(view.MarkersPending());
    }
};

TEST_F(YearViewTest, MarksEveryDayAnItemTouches) {
    YearView view(2024);
    ASSERT_TRUE(view.Open(nullptr));
    AwaitMarkers(view);
    const YearMarkers& marks = view.Markers();
    EXPECT_TRUE(marks.HasItems(3, 15));
    EXPECT_FALSE(marks.HasItems(3, 16));
    for (auto [month, day] : {std::pair{6, 30}, {7, 1}, {7, 2}})
        EXPECT_TRUE(marks.HasItems(month, day)) << day;
    EXPECT_FALSE(marks.HasItems(7, 3));
    // An all-day item ends at midnight: the next day stays free.
    EXPECT_TRUE(marks.HasItems(12, 25));
    EXPECT_FALSE(marks.HasItems(12, 26));
    EXPECT_TRUE(marks.HasItems(5, 20)); // the task, by its due date
    EXPECT_TRUE(marks.HasItems(4, 1));
    EXPECT_FALSE(marks.HasItems(2, 30)); // no such day
    EXPECT_EQ(marks.MarkedDays(), 7);

    // On the screen: a marked day's cell in the marker colour, a free one not.
    const CalendarStyle& style = SkinStyles::Current().calendar;
    const COLORREF marker = style.colorAppointmentIndicator.value_or(RGB(0xFF, 0x80, 0));
    const RECT marked = view.DayRect(3, 15), free = view.DayRect(3, 16);
    EXPECT_GE(marked.Width(), 15);
    EXPECT_EQ(FramePixel(marked.left + 2, marked.top + 2), marker);
    EXPECT_NE(FramePixel(free.left + 2, free.top + 2), marker);
}

TEST_F(YearViewTest, FilterHidesWhatItHidesElsewhere) {
    PimStore::Instance().SetFilters(u"Private", u"", false, false, false);
    YearView view(2024);
    ASSERT_TRUE(view.Open(nullptr));
    AwaitMarkers(view);
    EXPECT_FALSE(view.Markers().HasItems(4, 1));
    EXPECT_TRUE(view.Markers().HasItems(3, 15));
}

TEST_F(YearViewTest, SwipesChangeTheYearAndShortMovesDoNot) {
    YearView view(2024);
    ASSERT_TRUE(view.Open(nullptr));
    windows_->RunUntilIdle();
    const RECT june = view.MonthRect(6);
    const int y = (june.top + june.bottom) / 2;
    auto swipe = [&](int from, int to) {
        Pointer(DisplayEvent::Type::PointerDown, from, y);
        Pointer(DisplayEvent::Type::PointerMove, (from + to) / 2, y);
        Pointer(DisplayEvent::Type::PointerUp, to, y);
    };
    swipe(400, 150);
    EXPECT_EQ(view.Year(), 2025);
    AwaitMarkers(view);
    EXPECT_TRUE(view.Markers().HasItems(1, 10));
    EXPECT_FALSE(view.Markers().HasItems(3, 15));
    swipe(100, 380);
    swipe(100, 380);
    EXPECT_EQ(view.Year(), 2023);
    swipe(200, 260); // too short for a swipe, too long for a tap
    EXPECT_EQ(view.Year(), 2023);
    EXPECT_TRUE(IsWindowVisible(view.GetHwnd()));
    // Left and right keys step as well.
    Key(VK_RIGHT);
    EXPECT_EQ(view.Year(), 2024);
}

TEST_F(YearViewTest, MonthsFitTheSmallScreenInLocaleOrder) {
    Open(240, 320);
    YearView view(2024);
    ASSERT_TRUE(view.Open(nullptr));
    windows_->RunUntilIdle();
    // 1 March 2024 is a Friday: the sixth column with Sunday first (LANG=C).
    const RECT first = view.DayRect(3, 1), month = view.MonthRect(3);
    EXPECT_EQ((first.left - month.left) / first.Width(), 5);
    // Every day lies inside its month, and December inside the page.
    for (int m = 1; m <= 12; ++m) {
        const RECT box = view.MonthRect(m);
        const RECT last = view.DayRect(m, DaysInMonth(2024, m));
        EXPECT_LE(last.bottom, box.bottom) << m;
        EXPECT_LE(last.right, box.right) << m;
    }
    EXPECT_LE(view.MonthRect(12).bottom, 320);
}

TEST_F(YearViewTest, QuickViewListsTheNextItemsFromNow) {
    // Now is 15 March 2024 10:00: the dentist at 9 is over.
    AddTimed("now", "Running", "20240315T093000", "20240315T110000");
    AddTimed("later", "Lunch", "20240315T120000", "20240315T130000");
    AddTimed("mon", "Monday meeting", "20240318T090000", "20240318T100000");
    PimStore::Instance().Close();
    OpenStore();
    QuickView view;
    ASSERT_TRUE(view.Open(nullptr));
    windows_->RunUntilIdle();
    std::vector<std::u16string> subjects;
    for (const PimItem& item : view.Shown())
        subjects.push_back(item.subject);
    EXPECT_EQ(subjects, (std::vector<std::u16string>{u"Running", u"Lunch", u"Monday meeting"}));
}

} // namespace
} // namespace mirodate::test
