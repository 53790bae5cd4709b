// The date, time, time-span and date-and-time pickers by finger and by keys:
// the tapped day, month swipes, the years' bounds, wheels that fling and come
// to rest on a whole entry, the grid of hours and minutes, the span's parts
// and text, and every way of leaving a page.
#include "data/EditorTexts.h"
#include "forms/DatePickerPage.h"
#include "forms/DateTimePickerPage.h"
#include "forms/TimePickerPage.h"
#include "forms/TimeSpanPickerPage.h"
#include "forms/TimeTexts.h"
#include "skin/SkinStyles.h"
#include "tests/forms/PickerFixture.h"
#include "ui/RegisteredMessages.h"

#include <cmath>

namespace mirodate::test {
namespace {

COLORREF Mark() {
    return SkinStyles::Current().addModifyForm.colorSelectionMark;
}

// A point inside a cell but clear of its centred text.
POINT Corner(const RECT& cell) {
    return POINT{cell.left + cell.Width() / 6, cell.top + cell.Height() / 5};
}

class DatePickerTest : public PickerTest {
protected:
    DatePickerPage& Open(const DateTime& initial) {
        page_ = std::make_unique<DatePickerPage>(initial);
        EXPECT_TRUE(page_->CreateModeless(nullptr));
        windows_->RunUntilIdle();
        return *page_;
    }
    void TapDay(int year, int month, int day) {
        DatePickerGrid& grid = page_->Grid();
        const RECT cell = grid.DayRect(year, month, day);
        ASSERT_GT(cell.Width(), 0) << year << "-" << month << "-" << day << " is not shown";
        TapIn(grid.GetHwnd(), cell);
    }
    void Swipe(int direction) {
        RECT grid;
        GetWindowRect(page_->Grid().GetHwnd(), &grid);
        const int y = (grid.top + grid.bottom) / 2, middle = (grid.left + grid.right) / 2;
        Drag(middle - direction * 150, y, middle + direction * 150, y + 10, 6, 16);
    }
    void TearDown() override {
        page_.reset();
        PickerTest::TearDown();
    }
    std::unique_ptr<DatePickerPage> page_;
};

TEST_F(DatePickerTest, ATapChoosesTheDayAndKeepsTheTime) {
    DatePickerPage& page = Open(DateTime(2024, 3, 15, 10, 30));
    TapDay(2024, 3, 20);
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 20, 10, 30));
    // A day of the next month shown in the last week moves there.
    TapDay(2024, 4, 2);
    EXPECT_EQ(page.Value(), DateTime(2024, 4, 2, 10, 30));
    EXPECT_EQ(page.Grid().Month(), 4);
}

TEST_F(DatePickerTest, TheChosenDayIsFilledInTheSelectionColourAndTodayIsFramed) {
    DatePickerPage& page = Open(DateTime(2024, 3, 20));
    DatePickerGrid& grid = page.Grid();
    const RECT chosen = grid.DayRect(2024, 3, 20);
    const POINT inside = OnScreen(grid.GetHwnd(), Corner(chosen).x, Corner(chosen).y);
    EXPECT_EQ(FramePixel(inside.x, inside.y), Mark());
    // Today (the 15th) is not chosen: filled as any day, framed in the mark.
    const RECT today = grid.DayRect(2024, 3, 15);
    const POINT todayInside = OnScreen(grid.GetHwnd(), Corner(today).x, Corner(today).y);
    EXPECT_EQ(FramePixel(todayInside.x, todayInside.y), SkinStyles::Current().inputForms.colorItemBg);
    const POINT todayEdge = OnScreen(grid.GetHwnd(), today.left + 3, (today.top + today.bottom) / 2);
    EXPECT_EQ(FramePixel(todayEdge.x, todayEdge.y), Mark());
    TapDay(2024, 3, 15);
    EXPECT_EQ(FramePixel(todayInside.x, todayInside.y), Mark());
    EXPECT_EQ(FramePixel(inside.x, inside.y), SkinStyles::Current().inputForms.colorItemBg);
}

TEST_F(DatePickerTest, SwipesAndArrowsChangeTheMonthKeepingTheDayWhereItExists) {
    DatePickerPage& page = Open(DateTime(2024, 1, 31, 8, 0));
    Swipe(-1); // finger to the left: the next month
    EXPECT_EQ(page.Value(), DateTime(2024, 2, 29, 8, 0));
    Swipe(1);
    Swipe(1);
    EXPECT_EQ(page.Value(), DateTime(2023, 12, 29, 8, 0));
    // A swipe is no tap: the day under the finger's start was not chosen.
    EXPECT_EQ(page.Grid().Day(), 29);
    TapIn(page.Grid().GetHwnd(), page.Grid().NextRect());
    EXPECT_EQ(page.Value(), DateTime(2024, 1, 29, 8, 0));
    TapIn(page.Grid().GetHwnd(), page.Grid().PreviousRect());
    EXPECT_EQ(page.Value(), DateTime(2023, 12, 29, 8, 0));
}

TEST_F(DatePickerTest, KeysMoveTheDayAndTheMonth) {
    DatePickerPage& page = Open(DateTime(2024, 3, 15));
    Key(VK_RIGHT);
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 16));
    Key(VK_DOWN);
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 23));
    Key(VK_LEFT);
    Key(VK_UP);
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15));
    Key(VK_NEXT);
    EXPECT_EQ(page.Value(), DateTime(2024, 4, 15));
    Key(VK_PRIOR);
    Key(VK_PRIOR);
    EXPECT_EQ(page.Value(), DateTime(2024, 2, 15));
    // Across the year's end.
    for (int i = 0; i < 2; ++i)
        Key(VK_PRIOR);
    EXPECT_EQ(page.Value(), DateTime(2023, 12, 15));
}

TEST_F(DatePickerTest, YearsStayWithin1900And2100) {
    EXPECT_EQ(DatePickerPage(DateTime(1899, 12, 31, 9, 0)).Value(), DateTime(1900, 1, 1));
    EXPECT_EQ(DatePickerPage(DateTime(2150, 6, 1)).Value(), DateTime(2100, 12, 31, 23, 59, 59));
    EXPECT_EQ(DatePickerPage(DateTime()).Value(), DateTime::Today());

    DatePickerPage& page = Open(DateTime(2100, 12, 20, 12, 0));
    Key(VK_NEXT);
    EXPECT_EQ(page.Value(), DateTime(2100, 12, 20, 12, 0));
    Key(VK_DOWN);
    Key(VK_DOWN);
    EXPECT_EQ(page.Value(), DateTime(2100, 12, 31, 12, 0));
    Swipe(-1);
    EXPECT_EQ(page.Value(), DateTime(2100, 12, 31, 12, 0));

    page.SetValue(DateTime(1900, 1, 3));
    Key(VK_UP);
    EXPECT_EQ(page.Value(), DateTime(1900, 1, 1));
    Key(VK_PRIOR);
    Swipe(1);
    EXPECT_EQ(page.Value(), DateTime(1900, 1, 1));
}

TEST_F(DatePickerTest, WeeksAndHoursFollowTheLocale) {
    // English (United States): weeks from Sunday, hours on a 12-hour clock.
    Open(DateTime(2024, 3, 15));
    RECT sunday = page_->Grid().DayRect(2024, 3, 3), monday = page_->Grid().DayRect(2024, 3, 4);
    EXPECT_EQ(sunday.top, monday.top);
    EXPECT_LT(sunday.left, monday.left);
    EXPECT_NE(TimeTexts::HourLabel(14), u"14");
    EXPECT_NE(TimeTexts::HourLabel(14).find(u"2"), std::u16string::npos);

    setenv("LC_ALL", "de_DE.UTF-8", 1);
    Open(DateTime(2024, 3, 15));
    sunday = page_->Grid().DayRect(2024, 3, 3), monday = page_->Grid().DayRect(2024, 3, 4);
    EXPECT_LT(sunday.top, monday.top); // Monday starts the next row
    EXPECT_GT(sunday.left, monday.left);
    EXPECT_EQ(TimeTexts::HourLabel(14), u"14");
    EXPECT_EQ(TimeTexts::HourLabel(7), u"07");
}

TEST_F(DatePickerTest, PickAnswersOkAndNothingOnCancelEscapeOrTheCloseAllBroadcast) {
    DatePickerPage::SetOpenObserver([this](DatePickerPage& page) {
        InjectTap(CentreIn(page.Grid().GetHwnd(), page.Grid().DayRect(2024, 3, 21)));
        InjectTap(CentreOf(page.Chrome().Ok().GetHwnd()));
    });
    EXPECT_EQ(DatePickerPage::Pick(nullptr, DateTime(2024, 3, 15, 9, 15)), DateTime(2024, 3, 21, 9, 15));

    DatePickerPage::SetOpenObserver([this](DatePickerPage& page) {
        InjectKey(VK_RIGHT);
        InjectTap(CentreOf(page.Chrome().Cancel().GetHwnd()));
    });
    EXPECT_EQ(DatePickerPage::Pick(nullptr, DateTime(2024, 3, 15)), std::nullopt);

    DatePickerPage::SetOpenObserver([this](DatePickerPage&) {
        InjectKey(VK_RIGHT);
        InjectKey(VK_RETURN);
    });
    EXPECT_EQ(DatePickerPage::Pick(nullptr, DateTime(2024, 3, 15)), DateTime(2024, 3, 16));

    DatePickerPage::SetOpenObserver([this](DatePickerPage&) {
        InjectKey(VK_RIGHT);
        InjectKey(VK_ESCAPE);
    });
    EXPECT_EQ(DatePickerPage::Pick(nullptr, DateTime(2024, 3, 15)), std::nullopt);

    DatePickerPage::SetOpenObserver([](DatePickerPage&) {
        PostMessage(HWND_BROADCAST, RegisterWindowMessage(kMinimizedBroadcastName), 0, 0);
    });
    EXPECT_EQ(DatePickerPage::Pick(nullptr, DateTime(2024, 3, 15)), std::nullopt);
    DatePickerPage::SetOpenObserver(nullptr);
}

class TimePickerTest : public PickerTest {
protected:
    TimePickerPage& Open(const DateTime& initial, bool wheels) {
        Settings::SetBool("TimePickerWheel", wheels);
        page_ = std::make_unique<TimePickerPage>(initial);
        EXPECT_TRUE(page_->CreateModeless(nullptr));
        windows_->RunUntilIdle();
        return *page_;
    }
    // A quick upward flick over the middle of a wheel, lifted while moving.
    void Flick(TimeWheelWnd& wheel, int distance) {
        RECT rect;
        GetWindowRect(wheel.GetHwnd(), &rect);
        const int x = (rect.left + rect.right) / 2, y = (rect.top + rect.bottom) / 2 + distance / 2;
        Drag(x, y, x, y - distance, 4, 16);
    }
    static bool RestsOnWholeEntry(const TimeWheelWnd& wheel) {
        return !wheel.IsMoving() && std::fmod(wheel.Offset(), wheel.RowHeight()) == 0.0;
    }
    void TearDown() override {
        page_.reset();
        PickerTest::TearDown();
    }
    std::unique_ptr<TimePickerPage> page_;
};

TEST_F(TimePickerTest, AFlungWheelSlowsDownAndRestsOnAWholeMinute) {
    TimePickerPage& page = Open(DateTime(2024, 3, 15, 10, 30), true);
    TimeWheelWnd& minutes = page.Panel().MinuteWheel();
    ASSERT_TRUE(page.Panel().UsesWheels());
    ASSERT_EQ(minutes.Value(), 30);
    const int row = minutes.RowHeight();
    Flick(minutes, 3 * row);
    EXPECT_TRUE(minutes.IsMoving());
    // The fling carries the wheel well beyond the three entries the finger moved.
    Wait(5000);
    EXPECT_TRUE(RestsOnWholeEntry(minutes)) << minutes.Offset();
    const int moved = (minutes.Value() - 30 + 60) % 60;
    EXPECT_GT(moved, 5);
    // The page follows the wheel; the hours did not move.
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15, 10, minutes.Value()));
}

TEST_F(TimePickerTest, ADragHeldStillBeforeLiftingSnapsWithoutAFling) {
    TimePickerPage& page = Open(DateTime(2024, 3, 15, 10, 0), true);
    TimeWheelWnd& hours = page.Panel().HourWheel();
    const int row = hours.RowHeight();
    RECT rect;
    GetWindowRect(hours.GetHwnd(), &rect);
    const int x = (rect.left + rect.right) / 2, y = (rect.top + rect.bottom) / 2;
    // Two entries and a little more down (earlier hours), then a rest.
    Pointer(DisplayEvent::Type::PointerDown, x, y);
    for (int step = 1; step <= 5; ++step) {
        Wait(16);
        Pointer(DisplayEvent::Type::PointerMove, x, y + (2 * row + row / 4) * step / 5);
    }
    Wait(300);
    Pointer(DisplayEvent::Type::PointerUp, x, y + 2 * row + row / 4);
    Wait(2000);
    EXPECT_TRUE(RestsOnWholeEntry(hours));
    EXPECT_EQ(hours.Value(), 8);
    EXPECT_EQ(page.Value().GetHour(), 8);
    // Past midnight the wheel goes round.
    Pointer(DisplayEvent::Type::PointerDown, x, y);
    for (int step = 1; step <= 5; ++step) {
        Wait(16);
        Pointer(DisplayEvent::Type::PointerMove, x, y + 9 * row * step / 5);
    }
    Wait(300);
    Pointer(DisplayEvent::Type::PointerUp, x, y + 9 * row);
    Wait(2000);
    EXPECT_EQ(hours.Value(), 23);
}

TEST_F(TimePickerTest, ATapOnAWheelTurnsTheTappedEntryIntoTheBand) {
    TimePickerPage& page = Open(DateTime(2024, 3, 15, 10, 30), true);
    TimeWheelWnd& minutes = page.Panel().MinuteWheel();
    RECT rect;
    GetWindowRect(minutes.GetHwnd(), &rect);
    Tap((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2 + 2 * minutes.RowHeight());
    Wait(1000);
    EXPECT_EQ(minutes.Value(), 32);
    EXPECT_TRUE(RestsOnWholeEntry(minutes));
    // The band is in the selection colour.
    EXPECT_EQ(FramePixel(rect.left + 4, (rect.top + rect.bottom) / 2), Mark());
}

TEST_F(TimePickerTest, KeysTurnTheActiveWheelAndOkTakesWhereAFlingWillRest) {
    TimePickerPage& page = Open(DateTime(2024, 3, 15, 23, 59), true);
    Key(VK_UP);
    Wait(1000);
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15, 0, 59));
    Key(VK_RIGHT);
    Key(VK_UP);
    Key(VK_UP);
    Wait(1000);
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15, 0, 1));
    Key(VK_DOWN);
    Key(VK_LEFT);
    Key(VK_DOWN);
    // Still gliding: OK takes the entries the wheels are coming to.
    page.Accept();
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15, 23, 0));
}

TEST_F(TimePickerTest, TheGridSetsHourAndMinuteByTapAndKeys) {
    TimePickerPage& page = Open(DateTime(2024, 3, 15, 10, 37, 12), false);
    ASSERT_FALSE(page.Panel().UsesWheels());
    // Seconds are dropped; an odd minute is kept until a minute is chosen.
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15, 10, 37));
    TimeGridWnd& grid = page.Panel().Grid();
    const RECT hour = grid.HourRect(14);
    EXPECT_GE(hour.Height(), 40); // finger-sized at 480 pixels
    TapIn(grid.GetHwnd(), hour);
    TapIn(grid.GetHwnd(), grid.MinuteRect(9));
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15, 14, 45));
    const POINT inHour = OnScreen(grid.GetHwnd(), Corner(hour).x, Corner(hour).y);
    EXPECT_EQ(FramePixel(inHour.x, inHour.y), Mark());
    // The minutes were tapped last: Up and Down step them by five.
    Key(VK_UP);
    EXPECT_EQ(page.Value().GetMinute(), 50);
    Key(VK_LEFT);
    Key(VK_DOWN);
    EXPECT_EQ(page.Value(), DateTime(2024, 3, 15, 13, 50));
    page.SetValue(DateTime(2024, 3, 15, 13, 52));
    Key(VK_RIGHT);
    Key(VK_DOWN);
    EXPECT_EQ(page.Value().GetMinute(), 50);
    Key(VK_UP);
    Key(VK_UP);
    EXPECT_EQ(page.Value().GetMinute(), 0);
}

TEST_F(TimePickerTest, PickKeepsTheDayAndAnswersNothingOnCancel) {
    Settings::SetBool("TimePickerWheel", false);
    TimePickerPage::SetOpenObserver([this](TimePickerPage& page) {
        InjectTap(CentreIn(page.Panel().Grid().GetHwnd(), page.Panel().Grid().HourRect(7)));
        InjectKey(VK_RETURN);
    });
    EXPECT_EQ(TimePickerPage::Pick(nullptr, DateTime(2024, 5, 2, 18, 30)), DateTime(2024, 5, 2, 7, 30));
    TimePickerPage::SetOpenObserver([this](TimePickerPage& page) {
        InjectTap(CentreIn(page.Panel().Grid().GetHwnd(), page.Panel().Grid().HourRect(7)));
        InjectTap(CentreOf(page.Chrome().Cancel().GetHwnd()));
    });
    EXPECT_EQ(TimePickerPage::Pick(nullptr, DateTime(2024, 5, 2, 18, 30)), std::nullopt);
    TimePickerPage::SetOpenObserver(nullptr);
}

class TimeSpanPickerTest : public PickerTest {
protected:
    TimeSpanPickerPage& Open(std::int64_t minutes) {
        page_ = std::make_unique<TimeSpanPickerPage>(minutes);
        EXPECT_TRUE(page_->CreateModeless(nullptr));
        windows_->RunUntilIdle();
        return *page_;
    }
    void TapRect(const RECT& rect) { Tap((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2); }
    void TearDown() override {
        page_.reset();
        PickerTest::TearDown();
    }
    std::unique_ptr<TimeSpanPickerPage> page_;
};

TEST_F(TimeSpanPickerTest, ButtonsChangeOnePartAndTheTextFollows) {
    using Page = TimeSpanPickerPage;
    Page& page = Open(90);
    EXPECT_EQ(page.Part(Page::kHours), 1);
    EXPECT_EQ(page.Part(Page::kMinutes), 30);
    EXPECT_EQ(page.ValueText(), u"1 hour, 30 minutes");
    EXPECT_GE(page.PlusRect(Page::kDays).Height(), 40);
    TapRect(page.PlusRect(Page::kDays));
    EXPECT_EQ(page.Value(), 1440 + 90);
    EXPECT_EQ(page.ValueText(), u"1 day, 1 hour, 30 minutes");
    TapRect(page.MinusRect(Page::kHours));
    TapRect(page.MinusRect(Page::kMinutes));
    EXPECT_EQ(page.Value(), 1440 + 25);
    TapRect(page.PlusRect(Page::kWeeks));
    EXPECT_EQ(page.Value(), 10080 + 1440 + 25);
    TapRect(page.MinusRect(Page::kMinutes));
    for (int i = 0; i < 5; ++i)
        TapRect(page.MinusRect(Page::kMinutes));
    EXPECT_EQ(page.Value(), 11520);
    EXPECT_EQ(page.ValueText(), u"1 week, 1 day");
    EXPECT_EQ(page.ValueText(), EditorTexts::FormatTimeSpan(page.Value()));
    TapRect(page.MinusRect(Page::kDays));
    TapRect(page.MinusRect(Page::kWeeks));
    TapRect(page.MinusRect(Page::kWeeks));
    EXPECT_EQ(page.Value(), 0);
    EXPECT_EQ(page.ValueText(), u"0 minutes");
}

TEST_F(TimeSpanPickerTest, KeysAndAHeldButtonStepAndThePartsStopAtTheirEnds) {
    using Page = TimeSpanPickerPage;
    Page& page = Open(1);
    // Minutes step to the next multiple of five.
    Key(VK_UP);
    EXPECT_EQ(page.Value(), 5);
    Key(VK_DOWN);
    Key(VK_DOWN);
    EXPECT_EQ(page.Value(), 0);
    Key(VK_LEFT);
    Key(VK_UP);
    EXPECT_EQ(page.Value(), 60);
    EXPECT_EQ(page.ActiveUnit(), Page::kHours);
    // Held, the hours run up and stop at 23.
    const RECT plus = page.PlusRect(Page::kHours);
    Pointer(DisplayEvent::Type::PointerDown, (plus.left + plus.right) / 2, (plus.top + plus.bottom) / 2);
    Wait(Page::kRepeatDelay + 5 * Page::kRepeatInterval + 10);
    const int held = page.Part(Page::kHours);
    EXPECT_GE(held, 7);
    Wait(5000);
    Pointer(DisplayEvent::Type::PointerUp, (plus.left + plus.right) / 2, (plus.top + plus.bottom) / 2);
    EXPECT_EQ(page.Part(Page::kHours), 23);
    Wait(1000);
    EXPECT_EQ(page.Part(Page::kHours), 23);

    page.SetValue(std::int64_t{1} << 40);
    EXPECT_EQ(page.Value(), Page::MaxMinutes());
    EXPECT_EQ(page.Part(Page::kWeeks), Page::kMaxWeeks);
    for (int i = 0; i < 4; ++i)
        Key(VK_LEFT);
    Key(VK_UP);
    EXPECT_EQ(page.Part(Page::kWeeks), Page::kMaxWeeks);
    EXPECT_EQ(Page(-5).Value(), 0);
}

TEST_F(TimeSpanPickerTest, PickAnswersTheSpanOrNothing) {
    TimeSpanPickerPage::SetOpenObserver([this](TimeSpanPickerPage& page) {
        const RECT plus = page.PlusRect(TimeSpanPickerPage::kMinutes);
        InjectTap(POINT{(plus.left + plus.right) / 2, (plus.top + plus.bottom) / 2});
        InjectTap(CentreOf(page.Chrome().Ok().GetHwnd()));
    });
    EXPECT_EQ(TimeSpanPickerPage::Pick(nullptr, 15), 20);
    TimeSpanPickerPage::SetOpenObserver([this](TimeSpanPickerPage&) {
        InjectKey(VK_UP);
        InjectKey(VK_ESCAPE);
    });
    EXPECT_EQ(TimeSpanPickerPage::Pick(nullptr, 15), std::nullopt);
    TimeSpanPickerPage::SetOpenObserver(nullptr);
}

class DateTimePickerTest : public PickerTest {};

TEST_F(DateTimePickerTest, DateAndTimeAreChosenOnOnePage) {
    for (const bool wheels : {false, true}) {
        Settings::SetBool("TimePickerWheel", wheels);
        DateTimePickerPage page(DateTime(2024, 3, 15, 9, 30));
        ASSERT_TRUE(page.CreateModeless(nullptr));
        windows_->RunUntilIdle();
        EXPECT_EQ(page.Panel().UsesWheels(), wheels);
        TapIn(page.Grid().GetHwnd(), page.Grid().DayRect(2024, 3, 12));
        EXPECT_EQ(page.FocusedPart(), 0);
        Key(VK_RIGHT); // the date has the keys: the 13th
        Key(VK_TAB);
        EXPECT_EQ(page.FocusedPart(), 1);
        Key(VK_UP); // an hour later
        Key(VK_RIGHT);
        Key(VK_DOWN); // the minutes back a step
        Key(VK_NEXT); // the month, whichever part has the keys
        Wait(1000);
        EXPECT_EQ(page.Value(), DateTime(2024, 4, 13, 10, wheels ? 29 : 25)) << "wheels " << wheels;
    }
}

TEST_F(DateTimePickerTest, PickAnswersTheMomentOrNothing) {
    Settings::SetBool("TimePickerWheel", true);
    DateTimePickerPage::SetOpenObserver([this](DateTimePickerPage&) {
        InjectKey(VK_LEFT);
        InjectKey(VK_TAB);
        InjectKey(VK_DOWN);
        InjectKey(VK_RETURN); // while the wheel still turns
    });
    EXPECT_EQ(DateTimePickerPage::Pick(nullptr, DateTime(2024, 3, 15, 9, 30)), DateTime(2024, 3, 14, 8, 30));
    DateTimePickerPage::SetOpenObserver([this](DateTimePickerPage& page) {
        InjectKey(VK_LEFT);
        InjectTap(CentreOf(page.Chrome().Cancel().GetHwnd()));
    });
    EXPECT_EQ(DateTimePickerPage::Pick(nullptr, DateTime(2024, 3, 15, 9, 30)), std::nullopt);
    DateTimePickerPage::SetOpenObserver([](DateTimePickerPage&) {
        PostMessage(HWND_BROADCAST, RegisterWindowMessage(kMinimizedBroadcastName), 0, 0);
    });
    EXPECT_EQ(DateTimePickerPage::Pick(nullptr, DateTime(2024, 3, 15, 9, 30)), std::nullopt);
    DateTimePickerPage::SetOpenObserver(nullptr);
}

TEST_F(DateTimePickerTest, FitsTheLowResolutionScreenWithFingerSizedParts) {
    Open(240, 320);
    for (const bool wheels : {false, true}) {
        Settings::SetBool("TimePickerWheel", wheels);
        DateTimePickerPage page(DateTime(2024, 3, 15, 9, 30));
        ASSERT_TRUE(page.CreateModeless(nullptr));
        windows_->RunUntilIdle();
        RECT grid, panel, ok;
        GetWindowRect(page.Grid().GetHwnd(), &grid);
        GetWindowRect(page.Panel().GetHwnd(), &panel);
        GetWindowRect(page.Chrome().Ok().GetHwnd(), &ok);
        EXPECT_LE(grid.bottom, panel.top);
        EXPECT_LE(panel.bottom, ok.top);
        EXPECT_GE(page.Grid().DayRect(2024, 3, 15).Height(), 14);
        if (!wheels)
            EXPECT_GE(page.Panel().Grid().HourRect(0).Height(), 14);
        else
            EXPECT_GE(page.Panel().HourWheel().RowHeight(), 14);
    }
}

} // namespace
} // namespace mirodate::test
