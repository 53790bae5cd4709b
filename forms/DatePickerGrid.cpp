#include "forms/DatePickerGrid.h"

#include "data/DateTime.h"
#include "forms/PickerChrome.h"
#include "platform/Locale.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/GestureTuning.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace mirodate {

namespace {
constexpr int kWeeks = 6;
constexpr int kDays = 7;
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kBandHeight = 26;
constexpr int kNamesHeight = 16;
constexpr int kArrowWidth = 40;
constexpr int kArrowSize = 6;
constexpr int kCellInset = 1;

long DayNumberOf(int year, int month, int day) {
    return DateTime(year, month, day).DayNumber();
}

COLORREF Mix(COLORREF a, COLORREF b) {
    return RGB((GetRValue(a) + GetRValue(b)) / 2, (GetGValue(a) + GetGValue(b)) / 2,
               (GetBValue(a) + GetBValue(b)) / 2);
}
} // namespace

DatePickerGrid::DatePickerGrid() = default;
DatePickerGrid::~DatePickerGrid() = default;

HWND DatePickerGrid::Create(HWND parent, int id, const RECT& rect) {
    id_ = id;
    GestureTuning::Set();
    titleFont_ = PickerChrome::MakeFont(110, true);
    nameFont_ = PickerChrome::MakeFont(85, false);
    dayFont_ = PickerChrome::MakeFont(110, false);
    return BaseWnd::Create(parent, kMonthGridClass, WS_CHILD | WS_VISIBLE, u"", rect.left, rect.top,
                           rect.Width(), rect.Height());
}

void DatePickerGrid::SetDate(int year, int month, int day) {
    if (year < kMinYear) {
        year = kMinYear, month = 1, day = 1;
    } else if (year > kMaxYear) {
        year = kMaxYear, month = 12, day = 31;
    }
    month = std::clamp(month, 1, 12);
    day = std::clamp(day, 1, DaysInMonth(year, month));
    if (year == year_ && month == month_ && day == day_)
        return;
    year_ = year, month_ = month, day_ = day;
    Changed();
}

void DatePickerGrid::SetDayNumber(long dayNumber) {
    const long first = DayNumberOf(kMinYear, 1, 1), last = DayNumberOf(kMaxYear, 12, 31);
    const DateTime date(static_cast<double>(std::clamp(dayNumber, first, last)));
    SetDate(date.GetYear(), date.GetMonth(), date.GetDay());
}

void DatePickerGrid::MoveDays(int days) {
    SetDayNumber(DayNumberOf(year_, month_, day_) + days);
}

void DatePickerGrid::MoveMonths(int months) {
    // Whole months from year 0, so that a step over the year's end needs no special case.
    const int index = std::clamp(year_ * 12 + (month_ - 1) + months, kMinYear * 12, kMaxYear * 12 + 11);
    SetDate(index / 12, index % 12 + 1, day_);
}

bool DatePickerGrid::HandleKey(UINT key) {
    switch (key) {
    case VK_LEFT:
        MoveDays(-1);
        return true;
    case VK_RIGHT:
        MoveDays(1);
        return true;
    case VK_UP:
        MoveDays(-kDays);
        return true;
    case VK_DOWN:
        MoveDays(kDays);
        return true;
    case VK_PRIOR:
        MoveMonths(-1);
        return true;
    case VK_NEXT:
        MoveMonths(1);
        return true;
    default:
        return false;
    }
}

void DatePickerGrid::Changed() {
    if (!window)
        return;
    InvalidateRect(window, nullptr, false);
    if (HWND parent = GetParent(window))
        SendMessage(parent, WM_COMMAND, MAKEWPARAM(id_, kChanged), reinterpret_cast<LPARAM>(window));
}

DatePickerGrid::Metrics DatePickerGrid::Measure() const {
    RECT client{};
    if (window)
        GetClientRect(window, &client);
    Metrics m{};
    // A low grid (beside the time on one page) keeps most of its height for the days.
    m.bandHeight = std::min(Scale(kBandHeight), client.Height() / 6);
    m.namesHeight = std::min(Scale(kNamesHeight), client.Height() / 9);
    m.cellWidth = std::max(1, client.Width() / kDays);
    m.cellHeight = std::max(1, (client.Height() - m.bandHeight - m.namesHeight) / kWeeks);
    m.left = (client.Width() - m.cellWidth * kDays) / 2;
    m.top = m.bandHeight + m.namesHeight;
    return m;
}

long DatePickerGrid::FirstShownDay() const {
    const DateTime first(year_, month_, 1);
    const int lead = (first.GetDayOfWeek() - Locale::FirstDayOfWeek() + kDays) % kDays;
    return first.DayNumber() - lead;
}

int DatePickerGrid::CellAt(int x, int y) const {
    const Metrics m = Measure();
    if (x < m.left || y < m.top)
        return -1;
    const int column = (x - m.left) / m.cellWidth, row = (y - m.top) / m.cellHeight;
    if (column >= kDays || row >= kWeeks)
        return -1;
    return row * kDays + column;
}

RECT DatePickerGrid::DayRect(int year, int month, int day) const {
    if (DaysInMonth(year, month) < day || day < 1)
        return RECT{};
    const long index = DayNumberOf(year, month, day) - FirstShownDay();
    if (index < 0 || index >= kWeeks * kDays)
        return RECT{};
    const Metrics m = Measure();
    const int left = m.left + static_cast<int>(index % kDays) * m.cellWidth;
    const int top = m.top + static_cast<int>(index / kDays) * m.cellHeight;
    return RECT{left, top, left + m.cellWidth, top + m.cellHeight};
}

RECT DatePickerGrid::PreviousRect() const {
    return RECT{0, 0, Scale(kArrowWidth), Measure().bandHeight};
}

RECT DatePickerGrid::NextRect() const {
    RECT client{};
    GetClientRect(window, &client);
    return RECT{client.right - Scale(kArrowWidth), 0, client.right, Measure().bandHeight};
}

void DatePickerGrid::OnPaint(HDC dc) {
    if (!dc)
        return;
    const SkinStyles& styles = SkinStyles::Current();
    const InputFormsStyle& form = styles.inputForms;
    const COLORREF mark = styles.addModifyForm.colorSelectionMark;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, form.colorBg);
    dc->SetBkMode(TRANSPARENT);
    const Metrics m = Measure();

    // The band: month and year between the two arrows.
    RECT band{0, 0, client.right, m.bandHeight};
    dc->SelectFont(titleFont_.get());
    dc->SetTextColor(form.colorItemText);
    const std::u16string title = Locale::MonthName(month_, false, true) + u" " + ToU16(year_);
    dc->DrawText(title, band, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    const int arrow = Scale(kArrowSize), middle = m.bandHeight / 2;
    const RECT previous = PreviousRect(), next = NextRect();
    const int pc = (previous.left + previous.right) / 2, nc = (next.left + next.right) / 2;
    const bool atStart = year_ == kMinYear && month_ == 1, atEnd = year_ == kMaxYear && month_ == 12;
    const COLORREF dim = Mix(form.colorItemText, form.colorBg);
    dc->Polygon(
        {{pc - arrow / 2, middle}, {pc + arrow / 2, middle - arrow}, {pc + arrow / 2, middle + arrow}},
        atStart ? dim : form.colorItemText, std::nullopt);
    dc->Polygon(
        {{nc + arrow / 2, middle}, {nc - arrow / 2, middle - arrow}, {nc - arrow / 2, middle + arrow}},
        atEnd ? dim : form.colorItemText, std::nullopt);

    // Weekday names from the locale's first day.
    dc->SelectFont(nameFont_.get());
    for (int column = 0; column < kDays; ++column) {
        RECT cell{m.left + column * m.cellWidth, m.bandHeight, m.left + (column + 1) * m.cellWidth, m.top};
        dc->DrawText(Locale::DayName((Locale::FirstDayOfWeek() + column) % kDays, true), cell,
                     DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    }

    // The days.
    dc->SelectFont(dayFont_.get());
    const long first = FirstShownDay();
    const long today = DateTime::Today().DayNumber();
    const long chosen = DayNumberOf(year_, month_, day_);
    const int inset = std::max(1, Scale(kCellInset));
    const int frame = std::max(1, Scale(1));
    for (int index = 0; index < kWeeks * kDays; ++index) {
        const DateTime date(static_cast<double>(first + index));
        const int left = m.left + (index % kDays) * m.cellWidth, top = m.top + (index / kDays) * m.cellHeight;
        RECT cell{left + inset, top + inset, left + m.cellWidth - inset, top + m.cellHeight - inset};
        const bool isChosen = first + index == chosen;
        const bool inMonth = date.GetMonth() == month_;
        dc->FillRect(cell, isChosen ? mark : form.colorItemBg);
        if (first + index == today)
            dc->FrameRect(cell, isChosen ? styles.addModifyForm.colorTextSel : mark, 2 * frame);
        dc->SetTextColor(isChosen ? styles.addModifyForm.colorTextSel : (inMonth ? form.colorItemText : dim));
        if (date.GetYear() < kMinYear || date.GetYear() > kMaxYear)
            continue;
        dc->DrawText(ToU16(date.GetDay()), cell, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
    dc->SelectFont(nullptr);
}

LRESULT DatePickerGrid::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    pressed_ = true;
    swiped_ = false;
    pressX_ = x, pressY_ = y;
    SetCapture(window);
    return 0;
}

void DatePickerGrid::OnPointerMove(int x, int y, WPARAM) {
    if (!pressed_ || swiped_)
        return;
    const int dx = x - pressX_, dy = y - pressY_;
    if (std::abs(dx) > GestureTuning::Current().swipeThreshold && std::abs(dx) > std::abs(dy)) {
        // A swipe to the left brings the next month in from the right.
        swiped_ = true;
        MoveMonths(dx < 0 ? 1 : -1);
    }
}

LRESULT DatePickerGrid::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0 || !pressed_)
        return 0;
    pressed_ = false;
    if (GetCapture() == window)
        ReleaseCapture();
    if (swiped_)
        return 0;
    if (PreviousRect().Contains(pressX_, pressY_) && PreviousRect().Contains(x, y)) {
        MoveMonths(-1);
        return 0;
    }
    if (NextRect().Contains(pressX_, pressY_) && NextRect().Contains(x, y)) {
        MoveMonths(1);
        return 0;
    }
    // A tap chooses the day under the finger, if the finger stayed on it.
    const int cell = CellAt(x, y);
    if (cell >= 0 && cell == CellAt(pressX_, pressY_))
        SetDayNumber(FirstShownDay() + cell);
    return 0;
}

void DatePickerGrid::OnCaptureChanged(HWND newCapture) {
    if (newCapture != window)
        pressed_ = false;
}

} // namespace mirodate
