#include "app/MonthGridWnd.h"

#include "data/DateTime.h"
#include "platform/Clock.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/SkinBitmap.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cstdio>

namespace mirodate {

namespace {
// Timer of a pending hold; killed on every release.
constexpr UINT_PTR kHoldTimer = 111;
// Text heights as shares of the bar and row heights.
constexpr double kBarTextShare = 0.6;
constexpr double kDayTextShare = 0.42;
constexpr double kWeekTextShare = 0.22;

COLORREF Pick(const std::optional<COLORREF>& skin, COLORREF fallback) {
    return skin ? *skin : fallback;
}

// ISO 8601 week of a date: the week of its Thursday.
int IsoWeek(int year, int month, int day) {
    const DateTime date(year, month, day);
    const int dayOfWeek = (date.GetDayOfWeek() + 6) % 7; // 0 Monday .. 6 Sunday
    const DateTime thursday = date + DateTimeSpan(3 - dayOfWeek, 0, 0, 0);
    const int dayOfYear = static_cast<int>((thursday - DateTime(thursday.GetYear(), 1, 1)).GetDays());
    return dayOfYear / 7 + 1;
}

std::unique_ptr<Font> MakeFont(int height, int weight) {
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::max(height + FontSizeDelta(), 6);
    logFont.lfWeight = weight;
    return std::make_unique<Font>(logFont);
}
} // namespace

MonthGridColors MonthGridColors::FromSkin() {
    const CalendarStyle& s = SkinStyles::Current().calendar;
    MonthGridColors c;
    c.grid = Pick(s.colorGrid, c.grid);
    c.yearMonthBarBg = Pick(s.colorYearMonthBarBg, c.yearMonthBarBg);
    c.yearMonthBarText = Pick(s.colorYearMonthBarText, c.yearMonthBarText);
    c.dayBarBg = Pick(s.colorDayBarBg, c.dayBarBg);
    c.dayBarText = Pick(s.colorDayBarText, c.dayBarText);
    c.dayGridText = Pick(s.colorDayGridText, c.dayGridText);
    c.dayGridTextNextPrevMonth = Pick(s.colorDayGridTextNextPrevMonth, c.dayGridTextNextPrevMonth);
    c.weekNumber = Pick(s.colorWeekNumber, c.weekNumber);
    c.dayGridBg = Pick(s.colorDayGridBg, c.dayGridBg);
    c.dayGridBgSelected = Pick(s.colorDayGridBgSelected, c.dayGridBgSelected);
    c.dayGridBorderToday = Pick(s.colorDayGridBorderToday, c.dayGridBorderToday);
    c.dayGridTextSelected = Pick(s.colorDayGridTextSelected, c.dayGridTextSelected);
    c.appointmentIndicator = Pick(s.colorAppointmentIndicator, c.appointmentIndicator);
    c.taskIndicator = Pick(s.colorTaskIndicator, c.taskIndicator);
    return c;
}

MonthGridWnd::MonthGridWnd() : model_(Locale::FirstDayOfWeek() == 1) {}

MonthGridWnd::~MonthGridWnd() = default;

HWND MonthGridWnd::Create(HWND parent, int x, int y, int width, int height) {
    colors_ = MonthGridColors::FromSkin();
    SkinStyles::Current().calendar.ApplyGridLines(firstLineStyle_, secondLineStyle_);
    showWeekNumbers_ = Settings::GetShowWeekNumber();
    gesture_.SetScale(IsHighResolution() ? 2 : 1);
    gesture_.SetYearsOnVertical(Settings::GetMonthScrollMode() != 0);
    if (!BaseWnd::Create(parent, kMonthGridClass, WS_CHILD | WS_VISIBLE, u"", x, y, width, height))
        return nullptr;
    return window;
}

void MonthGridWnd::ShowDate(int year, int month, int day) {
    const bool monthChanged = year != model_.Year() || month != model_.Month();
    model_.ShowDate(year, month, day);
    Changed(monthChanged);
}

void MonthGridWnd::StepMonths(int months) {
    model_.StepMonths(months);
    Changed(true);
}

void MonthGridWnd::Changed(bool monthChanged) {
    if (monthChanged)
        RefreshMarkers();
    if (window)
        Redraw(false);
}

void MonthGridWnd::RefreshMarkers(bool immediate) {
    if (!markersEnabled_ || !window)
        return;
    auto job = std::make_unique<MarkerJob>();
    job->cells = model_.Cells();
    job->grid = window;
    job->tick = GetTickCount();
    job->year = model_.Year();
    job->month = model_.Month();
    job->withTasks = Settings::IsTaskViewEnabled(u"Month");
    worker_.Start(std::move(job), immediate);
}

LRESULT MonthGridWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_MARKERS_READY) {
        std::unique_ptr<MarkerJob> job = worker_.TakeFinished(lParam);
        // A result for a month no longer shown is dropped.
        if (job && job->year == model_.Year() && job->month == model_.Month()) {
            model_.MutableCells() = job->cells;
            Redraw(false);
        }
        return 0;
    }
    // A quick second tap (a double click to the window system) is a tap of its own.
    if (message == WM_LBUTTONDBLCLK)
        return OnPointerDown(0, static_cast<short>(lParam & 0xFFFF),
                             static_cast<short>((lParam >> 16) & 0xFFFF), wParam);
    return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
}

void MonthGridWnd::Notify(UINT code) {
    NotifyParent(code);
}

LRESULT MonthGridWnd::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    SetCapture(window);
    gesture_.Down(x, y, GetTickCount());
    return 0;
}

void MonthGridWnd::OnPointerMove(int x, int y, WPARAM) {
    const int months = gesture_.Move(x, y);
    if (months == 0)
        return;
    StepMonths(months);
    Notify(NM_MONTH_CHANGED);
}

LRESULT MonthGridWnd::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    if (GetCapture() == window)
        ReleaseCapture();
    KillTimer(window, kHoldTimer);
    if (!gesture_.Up(GetTickCount()))
        return 0;
    RECT client;
    GetClientRect(window, &client);
    const MonthGridModel::Geometry g = MonthGridModel::Layout(client.Width(), client.Height());
    const int cell = g.HitCell(x, y);
    if (cell >= 0) {
        const MonthCell& target = model_.Cells()[cell];
        if (model_.IsInDisplayedMonth(cell)) {
            model_.SelectDay(target.day);
            Redraw(false);
            Notify(NM_DAY_SELECTED);
        } else {
            ShowDate(target.year, target.month, target.day);
            Notify(NM_MONTH_CHANGED);
        }
    } else if (y >= 0 && y < 2 * g.barHeight && x >= 0 && x < g.width) {
        Notify(x < g.width / 2 ? NM_MONTH_BAR_TAP : NM_YEAR_BAR_TAP);
    }
    return 0;
}

void MonthGridWnd::EnsureFonts(int barHeight, int rowHeight) {
    if (barFont_ && barHeight == fontBarHeight_ && rowHeight == fontRowHeight_)
        return;
    fontBarHeight_ = barHeight;
    fontRowHeight_ = rowHeight;
    barFont_ = MakeFont(static_cast<int>(barHeight * kBarTextShare), FW_BOLD);
    dayFont_ = MakeFont(static_cast<int>(rowHeight * kDayTextShare), FW_NORMAL);
    weekFont_ = MakeFont(static_cast<int>(rowHeight * kWeekTextShare), FW_NORMAL);
}

void MonthGridWnd::OnPaint(HDC dc) {
    RECT client;
    GetClientRect(window, &client);
    const MonthGridModel::Geometry g = MonthGridModel::Layout(client.Width(), client.Height());
    if (g.width <= 0 || g.height <= 0)
        return;
    EnsureFonts(g.barHeight, g.rowHeight);
    const SYSTEMTIME today = Clock::Current().GetLocalTime();

    dc->FillRect(client, colors_.dayGridBg);
    const SkinPicture* picture =
        SkinStyles::Current().calendar.pictures.ForScreen(GetScreenWidth(), GetScreenHeight());
    if (picture != backgroundSource_) {
        backgroundSource_ = picture;
        background_ = SkinBitmap::FromPicture(picture);
    }
    if (background_)
        dc->BitBlt(0, 0, background_.Width(), background_.Height(), background_, 0, 0);
    dc->SetBkMode(TRANSPARENT);
    for (int i = 0; i < MonthGridModel::kCells; ++i)
        DrawCell(*dc, g, i, today);
    DrawGridLines(*dc, g);
    DrawBars(*dc, g);
    dc->SelectFont(nullptr);
}

void MonthGridWnd::DrawBars(Dc& dc, const MonthGridModel::Geometry& g) {
    dc.SelectFont(barFont_.get());
    // Year and month: the month name centred in the left half, the year in the right.
    RECT bar = g.YearMonthBar();
    dc.FillRect(bar, colors_.yearMonthBarBg);
    dc.SetTextColor(colors_.yearMonthBarText);
    RECT left{0, 0, g.width / 2, g.barHeight};
    dc.DrawText(Locale::MonthName(model_.Month(), false, true), left, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    char year[16];
    std::snprintf(year, sizeof year, "%04i", model_.Year());
    RECT right{g.width / 2, 0, g.width, g.barHeight};
    dc.DrawText(std::u16string(year, year + std::char_traits<char>::length(year)), right,
                DT_CENTER | DT_VCENTER | DT_SINGLELINE);

    dc.FillRect(g.DayNameRow(), colors_.dayBarBg);
    const DayNameColors& named = SkinStyles::Current().calendar.colorDayName;
    for (int column = 0; column < MonthGridModel::kColumns; ++column) {
        const int dayOfWeek = model_.DayOfWeekOfColumn(column);
        COLORREF color = column == model_.SundayColumn() ? kSundayRed : colors_.dayBarText;
        if (named[dayOfWeek])
            color = *named[dayOfWeek];
        dc.SetTextColor(color);
        RECT cell = g.DayNameCell(column);
        dc.DrawText(Locale::DayName(dayOfWeek, true), cell, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    }
    if (firstLineStyle_ || secondLineStyle_)
        dc.Line(0, 2 * g.barHeight - 1, g.width, 2 * g.barHeight - 1, colors_.grid);
}

void MonthGridWnd::DrawGridLines(Dc& dc, const MonthGridModel::Geometry& g) {
    if (!firstLineStyle_ && !secondLineStyle_)
        return;
    const int top = 2 * g.barHeight;
    // Both styles draw the row lines; the first adds the column lines.
    for (int row = 1; row < MonthGridModel::kRows; ++row) {
        const int y = top + row * g.rowHeight;
        dc.Line(0, y, g.width, y, colors_.grid);
    }
    if (firstLineStyle_)
        for (int column = 1; column < MonthGridModel::kColumns; ++column)
            dc.Line(column * g.columnWidth, top, column * g.columnWidth, g.height, colors_.grid);
}

void MonthGridWnd::DrawCell(Dc& dc, const MonthGridModel::Geometry& g, int index, const SYSTEMTIME& today) {
    const MonthCell& cell = model_.Cells()[index];
    const RECT rect = g.Cell(index);
    const bool inMonth = model_.IsInDisplayedMonth(index);
    const bool selected = inMonth && cell.day == model_.SelectedDay();
    if (selected)
        dc.FillRect(rect, colors_.dayGridBgSelected);

    const int side = static_cast<int>(std::min(g.columnWidth, g.rowHeight) * kMarkerShare);
    if (cell.markers[0]) // appointments: the top right corner
        dc.Polygon({{rect.right - side, rect.top}, {rect.right, rect.top}, {rect.right, rect.top + side}},
                   colors_.appointmentIndicator, std::nullopt);
    if (cell.markers[1]) // tasks: the bottom left corner
        dc.Polygon(
            {{rect.left, rect.bottom - side}, {rect.left, rect.bottom}, {rect.left + side, rect.bottom}},
            colors_.taskIndicator, std::nullopt);
    if (cell.markers[2]) { // birthdays and anniversaries: a double line along the top
        const int gap = Scale(2);
        dc.Line(rect.left + gap, rect.top + gap, rect.right - gap, rect.top + gap,
                colors_.appointmentIndicator, Scale(1));
        dc.Line(rect.left + gap, rect.top + 2 * gap, rect.right - gap, rect.top + 2 * gap,
                colors_.appointmentIndicator, Scale(1));
    }
    if (cell.year == today.wYear && cell.month == today.wMonth && cell.day == today.wDay) {
        const int inset = Scale(1);
        const RECT frame{rect.left + inset, rect.top + inset, rect.right - inset, rect.bottom - inset};
        dc.RoundRect(frame, Scale(4), Scale(4), std::nullopt, colors_.dayGridBorderToday, Scale(1));
    }

    COLORREF text = inMonth ? colors_.dayGridText : colors_.dayGridTextNextPrevMonth;
    if (selected)
        text = colors_.dayGridTextSelected;
    dc.SelectFont(dayFont_.get());
    dc.SetTextColor(text);
    const std::string number = std::to_string(cell.day);
    RECT textRect = rect;
    dc.DrawText(std::u16string(number.begin(), number.end()), textRect,
                DT_CENTER | DT_VCENTER | DT_SINGLELINE);

    if (showWeekNumbers_ && index % MonthGridModel::kColumns == 0) {
        // The row's Monday decides its ISO week in either layout.
        const MonthCell& monday = model_.Cells()[index + (model_.IsMondayFirst() ? 0 : 1)];
        const std::string week = std::to_string(IsoWeek(monday.year, monday.month, monday.day));
        dc.SelectFont(weekFont_.get());
        dc.SetTextColor(colors_.weekNumber);
        RECT weekRect{rect.left + Scale(2), rect.top + Scale(1), rect.right, rect.bottom};
        dc.DrawText(std::u16string(week.begin(), week.end()), weekRect, DT_LEFT | DT_SINGLELINE);
    }
}

} // namespace mirodate
