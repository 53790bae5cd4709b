#include "app/MonthGridModel.h"

#include "data/DateTime.h"

#include <algorithm>

namespace mirodate {

namespace {
// The two top bars together are an eighth of the height, each three quarters of that.
constexpr double kBarShare = 0.125 * 0.75;
} // namespace

MonthGridModel::MonthGridModel(bool mondayFirst) : mondayFirst_(mondayFirst) {
    Rebuild();
}

void MonthGridModel::SetMondayFirst(bool mondayFirst) {
    if (mondayFirst == mondayFirst_)
        return;
    mondayFirst_ = mondayFirst;
    Rebuild();
}

void MonthGridModel::ShowMonth(int year, int month) {
    year_ = std::clamp(year, 100, 9999);
    month_ = std::clamp(month, 1, 12);
    selectedDay_ = std::min(selectedDay_, DaysInMonth(year_, month_));
    Rebuild();
}

void MonthGridModel::SelectDay(int day) {
    selectedDay_ = std::clamp(day, 1, DaysInMonth(year_, month_));
}

void MonthGridModel::ShowDate(int year, int month, int day) {
    ShowMonth(year, month);
    SelectDay(day);
}

void MonthGridModel::StepMonths(int months) {
    int index = year_ * 12 + (month_ - 1) + months;
    ShowMonth(index / 12, index % 12 + 1);
}

std::string MonthGridModel::DayNameColorKey(int column) const {
    return "colorDayName_" + std::to_string(DayOfWeekOfColumn(column));
}

bool MonthGridModel::IsInDisplayedMonth(int cell) const {
    return cell >= 0 && cell < kCells && cells_[cell].month == month_ && cells_[cell].year == year_;
}

void MonthGridModel::Rebuild() {
    const DateTime first(year_, month_, 1);
    const int weekday = first.GetDayOfWeek();
    leading_ = mondayFirst_ ? (weekday + 6) % 7 : weekday;
    DateTime day = first - DateTimeSpan(leading_, 0, 0, 0);
    for (auto& cell : cells_) {
        cell = MonthCell{day.GetDay(), day.GetMonth(), day.GetYear(), {}};
        day += DateTimeSpan(1, 0, 0, 0);
    }
}

MonthGridModel::Geometry MonthGridModel::Layout(int width, int height) {
    Geometry g;
    g.width = width;
    g.height = height;
    g.barHeight = static_cast<int>(height * kBarShare);
    g.rowHeight = (height - 2 * g.barHeight) / kRows;
    g.columnWidth = width / kColumns;
    return g;
}

RECT MonthGridModel::Geometry::DayNameCell(int column) const {
    const int right = column == kColumns - 1 ? width - 1 : (column + 1) * columnWidth;
    return {column * columnWidth, barHeight, right, 2 * barHeight};
}

RECT MonthGridModel::Geometry::Cell(int index) const {
    const int row = index / kColumns;
    const int column = index % kColumns;
    const int top = 2 * barHeight + row * rowHeight;
    // The last column and row reach the edge, absorbing the division's remainder.
    const int right = column == kColumns - 1 ? width - 1 : (column + 1) * columnWidth;
    const int bottom = row == kRows - 1 ? height - 1 : top + rowHeight;
    return {column * columnWidth, top, right, bottom};
}

int MonthGridModel::Geometry::HitCell(int x, int y) const {
    if (x < 0 || y < 2 * barHeight || x >= width || y >= height || columnWidth <= 0 || rowHeight <= 0)
        return -1;
    const int column = std::min(x / columnWidth, kColumns - 1);
    const int row = std::min((y - 2 * barHeight) / rowHeight, kRows - 1);
    return row * kColumns + column;
}

} // namespace mirodate
