#include "app/MonthGesture.h"
#include "app/MonthGridModel.h"

#include <gtest/gtest.h>

using namespace mirodate;

TEST(MonthGridModel, MonthStartingOnTheFirstDayOfTheWeekHasNoLeadingDays) {
    MonthGridModel monday(true);
    monday.ShowMonth(2010, 2); // 1 February 2010 was a Monday
    EXPECT_EQ(monday.LeadingDays(), 0);
    EXPECT_EQ(monday.Cells()[0].day, 1);
    MonthGridModel sunday(false);
    sunday.ShowMonth(2010, 8); // 1 August 2010 was a Sunday
    EXPECT_EQ(sunday.LeadingDays(), 0);
    sunday.ShowMonth(2010, 2);
    EXPECT_EQ(sunday.LeadingDays(), 1);
    EXPECT_EQ(sunday.Cells()[0].day, 31);
    EXPECT_EQ(sunday.Cells()[0].month, 1);
    // A Sunday the 1st is the last column in a Monday-first week.
    monday.ShowMonth(2010, 8);
    EXPECT_EQ(monday.LeadingDays(), 6);
    EXPECT_EQ(monday.Cells()[6].day, 1);
}

TEST(MonthGridModel, CellsRunAcrossMonthAndYearEnds) {
    MonthGridModel grid(true);
    grid.ShowMonth(2009, 12); // Tuesday the 1st
    EXPECT_EQ(grid.LeadingDays(), 1);
    const auto& cells = grid.Cells();
    EXPECT_EQ(cells[0].day, 30);
    EXPECT_EQ(cells[0].month, 11);
    EXPECT_EQ(cells[grid.CellOfDay(31)].day, 31);
    EXPECT_EQ(cells[grid.CellOfDay(31) + 1].day, 1);
    EXPECT_EQ(cells[grid.CellOfDay(31) + 1].year, 2010);
    EXPECT_EQ(cells[41].month, 1);
    EXPECT_TRUE(grid.IsInDisplayedMonth(grid.CellOfDay(1)));
    EXPECT_FALSE(grid.IsInDisplayedMonth(0));
    EXPECT_FALSE(grid.IsInDisplayedMonth(42));
}

TEST(MonthGridModel, LeapYearsAndClampedSelection) {
    MonthGridModel grid(true);
    grid.ShowDate(2000, 1, 31);
    grid.StepMonths(1);
    EXPECT_EQ(grid.Month(), 2);
    EXPECT_EQ(grid.SelectedDay(), 29); // 2000 is a leap year
    EXPECT_EQ(grid.Cells()[grid.CellOfDay(29)].day, 29);
    grid.ShowDate(1900, 2, 29);
    EXPECT_EQ(grid.SelectedDay(), 28);
    grid.ShowDate(2100, 3, 31);
    grid.StepMonths(-1);
    EXPECT_EQ(grid.SelectedDay(), 28);
    grid.StepMonths(-12 * 3 - 2);
    EXPECT_EQ(grid.Year(), 2096);
    EXPECT_EQ(grid.Month(), 12);
}

TEST(MonthGridModel, DayNameColoursIndexSundayAsZero) {
    MonthGridModel monday(true);
    EXPECT_EQ(monday.SundayColumn(), 6);
    EXPECT_EQ(monday.DayNameColorKey(6), "colorDayName_0");
    EXPECT_EQ(monday.DayNameColorKey(0), "colorDayName_1");
    MonthGridModel sunday(false);
    EXPECT_EQ(sunday.SundayColumn(), 0);
    EXPECT_EQ(sunday.DayNameColorKey(0), "colorDayName_0");
    EXPECT_EQ(sunday.DayNameColorKey(6), "colorDayName_6");
}

TEST(MonthGridModel, GeometryReachesTheEdges) {
    auto g = MonthGridModel::Layout(480, 500);
    EXPECT_EQ(g.barHeight, 46);      // trunc(500 * 0.09375)
    EXPECT_EQ(g.rowHeight, 68);      // trunc((500 - 92) / 6)
    EXPECT_EQ(g.columnWidth, 68);    // trunc(480 / 7)
    EXPECT_EQ(g.Cell(6).right, 479); // the last column ends at W - 1
    EXPECT_EQ(g.Cell(41).bottom, 499);
    EXPECT_EQ(g.Cell(0).top, 92);
    EXPECT_EQ(g.HitCell(479, 498), 41);
    EXPECT_EQ(g.HitCell(10, 91), -1); // the day-name row is no cell
    EXPECT_EQ(g.HitCell(0, 92), 0);
}

TEST(MonthGesture, SwipesStepOnceAtTheThreshold) {
    MonthGesture g(1);
    g.Down(100, 100, 0);
    EXPECT_EQ(g.Move(100, 41), 0);   // 59 up: not yet
    EXPECT_EQ(g.Move(100, 40), 1);   // 60 up: a month forward
    EXPECT_EQ(g.Move(100, -100), 0); // the gesture has ended
    EXPECT_FALSE(g.Up(50));
    g.Down(100, 100, 1000);
    EXPECT_EQ(g.Move(160, 110), -12); // right: a year back
    g.Up(1100);
    g.SetYearsOnVertical(true);
    g.Down(100, 100, 2000);
    EXPECT_EQ(g.Move(100, 160), -12); // down, axes exchanged: a year back
    g.Up(2100);
    MonthGesture high(2);
    high.Down(0, 0, 0);
    EXPECT_EQ(high.Move(-119, 0), 0);
    EXPECT_EQ(high.Move(-120, 0), 12);
}

TEST(MonthGesture, TapsNeedStillnessBrevityAndAGap) {
    MonthGesture g(1);
    g.Down(10, 10, 0);
    g.Move(16, 16); // 6 pixels: still a tap
    EXPECT_TRUE(g.Up(100));
    g.Down(10, 10, 200);
    EXPECT_FALSE(g.Up(300)); // 200 ms after the last accepted tap
    g.Down(10, 10, 301);
    EXPECT_TRUE(g.Up(301));
    g.Down(10, 10, 1000);
    g.Move(17, 10); // 7 pixels: a drag
    EXPECT_FALSE(g.Up(1100));
    g.Down(10, 10, 2000);
    EXPECT_FALSE(g.Up(2500)); // held 500 ms
    g.Down(10, 10, 3000);
    EXPECT_TRUE(g.Up(3499));
}
