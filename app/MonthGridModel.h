#pragma once
// What the month grid shows, without drawing it: the displayed month, the
// selected day, the 42 cells from the first row's first day on, their
// markers, and where each part of the grid lies for a given client size.
#include "platform/Types.h"

#include <array>
#include <string>

namespace mirodate {

struct MonthCell {
    int day = 0;
    int month = 0;
    int year = 0;
    // 0: the day has appointments, 1: tasks, 2: birthdays or anniversaries.
    std::array<bool, 3> markers{};
};

class MonthGridModel {
public:
    static constexpr int kRows = 6;
    static constexpr int kColumns = 7;
    static constexpr int kCells = kRows * kColumns;

    // Monday-first or Sunday-first only.
    explicit MonthGridModel(bool mondayFirst = true);

    void SetMondayFirst(bool mondayFirst);
    bool IsMondayFirst() const { return mondayFirst_; }

    // Shows a month; the selected day is clamped to its length.
    void ShowMonth(int year, int month);
    // Selects a day of the displayed month (clamped).
    void SelectDay(int day);
    // Shows the month of the date and selects the date.
    void ShowDate(int year, int month, int day);
    // Steps the displayed month by `months` (negative goes back).
    void StepMonths(int months);

    int Year() const { return year_; }
    int Month() const { return month_; }
    int SelectedDay() const { return selectedDay_; }

    const std::array<MonthCell, kCells>& Cells() const { return cells_; }
    std::array<MonthCell, kCells>& MutableCells() { return cells_; }
    // The number of cells before the 1st.
    int LeadingDays() const { return leading_; }
    // Column of Sunday: 0 Sunday-first, 6 Monday-first.
    int SundayColumn() const { return mondayFirst_ ? 6 : 0; }
    // Day of the week (0 Sunday .. 6 Saturday) shown in a column.
    int DayOfWeekOfColumn(int column) const { return mondayFirst_ ? (column + 1) % 7 : column; }
    // The skin key of a column's day-name colour ("colorDayName_0" is always Sunday).
    std::string DayNameColorKey(int column) const;
    // The cell index of a day of the displayed month.
    int CellOfDay(int day) const { return leading_ + day - 1; }
    bool IsInDisplayedMonth(int cell) const;

    // Geometry for a client area of `width` x `height`.
    struct Geometry {
        int width = 0;
        int height = 0;
        int barHeight = 0;   // B: the year/month bar, and the day-name row under it
        int rowHeight = 0;   // R
        int columnWidth = 0; // C
        RECT YearMonthBar() const { return {0, 0, width, barHeight}; }
        RECT DayNameRow() const { return {0, barHeight, width, 2 * barHeight}; }
        RECT DayNameCell(int column) const;
        RECT Cell(int index) const;
        // The cell under a point, or -1.
        int HitCell(int x, int y) const;
    };
    static Geometry Layout(int width, int height);

private:
    void Rebuild();

    bool mondayFirst_;
    int year_ = 2000;
    int month_ = 1;
    int selectedDay_ = 1;
    int leading_ = 0;
    std::array<MonthCell, kCells> cells_{};
};

} // namespace mirodate
