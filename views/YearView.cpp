#include "views/YearView.h"

#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/WinApi.h"
#include "views/ViewNavigator.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 26;
constexpr int kMonthGap = 3;
// A month is its name, a row of day initials and six weeks.
constexpr int kMonthLines = 8;
constexpr int kDaysPerWeek = 7;

struct YearColors {
    COLORREF background, text, header, headerText, dayNames, marked, markedText, today;
};

YearColors ColorsFromSkin() {
    const CalendarStyle& s = SkinStyles::Current().calendar;
    YearColors c;
    c.background = s.colorDayGridBg.value_or(RGB(0xFF, 0xFF, 0xFF));
    c.text = s.colorDayGridText.value_or(RGB(0, 0, 0));
    c.header = s.colorYearMonthBarBg.value_or(RGB(0x40, 0x40, 0x40));
    c.headerText = s.colorYearMonthBarText.value_or(RGB(0xFF, 0xFF, 0xFF));
    c.dayNames = s.colorDayBarText.value_or(c.text);
    c.marked = s.colorAppointmentIndicator.value_or(RGB(0xFF, 0x80, 0));
    c.markedText = s.colorDayGridTextSelected.value_or(c.text);
    c.today = s.colorDayGridBorderToday.value_or(RGB(0xFF, 0, 0));
    return c;
}

std::u16string Number(int value) {
    return Utf8ToUtf16(std::to_string(value));
}
} // namespace

YearView::YearView(int year) : year_(year), mondayFirst_(Locale::FirstDayOfWeek() == 1) {}

namespace {
// Deferred command: the worker has read the marks.
constexpr UINT kCmdMarkersRead = 0x7C01;
} // namespace

YearView::~YearView() {
    JoinReader();
}

void YearView::JoinReader() {
    if (reading_ && reading_->thread.joinable())
        reading_->thread.join();
    reading_.reset();
}

void YearView::LoadMarkers() {
    JoinReader();
    const bool withTasks = YearMarkers::WithTasks();
    if (YearMarkers::IsCached(year_, withTasks)) {
        markers_.Load(year_);
        return;
    }
    markers_.Clear(year_);
    reading_ = std::make_unique<Reading>();
    reading_->year = year_;
    Reading* reading = reading_.get();
    const HWND page = window;
    WindowManager* windows = &Wm();
    reading_->thread = std::thread([reading, page, windows, withTasks] {
        reading->days = YearMarkers::Compute(reading->year, withTasks);
        windows->PostMessage(page, WM_DEFERRED_COMMAND, kCmdMarkersRead, 0);
    });
}

void YearView::OnDeferredCommand(UINT id) {
    if (id != kCmdMarkersRead || !reading_)
        return;
    const int year = reading_->year;
    if (reading_->thread.joinable())
        reading_->thread.join();
    std::vector<bool> days = std::move(reading_->days);
    reading_.reset();
    if (year != year_)
        return; // the user has moved on
    markers_.Set(year, std::move(days));
    InvalidateRect(window, nullptr, false);
}

HWND YearView::Open(HWND owner) {
    if (!CreateModeless(owner))
        return nullptr;
    SetForegroundWindow(window);
    return window;
}

std::u16string YearView::Title() const {
    return Number(year_);
}

BOOL YearView::OnInitDialog() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    SetWindowText(window, Lang("YearView"));
    const TimeViewStyle& look = SkinStyles::Current().agendaView;
    title_.Create(window, Title(), 0, 0, width, Scale(kTitleHeight));
    title_.SetColors(look.colorHeaderBg, look.colorHeaderText, look.colorSelectionMark,
                     look.colorTextSelected);
    title_.SetGradient(look.colorHeaderGradient, look.colorSelectionMark);
    menuBar_.Create(window, {{"Today", MenuBarIcon::Month}, {"Back", MenuBarIcon::Back}}, 0, height - 1,
                    width);
    Layout();
    LoadMarkers();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void YearView::Layout() {
    if (!window)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int top = ScreenBars::TopBarHeight() > 0 ? ScreenBars::TopBarHeight() : Scale(kTitleHeight);
    const int menu = menuBar_.Height();
    MoveWindow(title_.GetHwnd(), 0, 0, client.Width(), top, true);
    menuBar_.MoveTo(0, client.Height() - menu, client.Width(), menu);
    grid_ = RECT{Scale(kMonthGap), top + Scale(kMonthGap), client.Width() - Scale(kMonthGap),
                 std::max(top + 1, client.Height() - menu - Scale(kMonthGap))};
    // Three months across upright, four on a wide screen.
    columns_ = client.Width() > client.Height() ? 4 : 3;
    MakeFonts();
}

void YearView::MakeFonts() {
    const RECT first = MonthRect(1);
    const int line = std::max(1, first.Height() / kMonthLines);
    const int cell = std::max(1, first.Width() / kDaysPerWeek);
    LOGFONT logFont;
    DefaultFont(logFont);
    // Two digits must fit a cell: the size follows the smaller of line and cell.
    logFont.lfHeight = -std::clamp(std::min(line * 4 / 5, cell * 3 / 5) + FontSizeDelta() / 2, 6, 200);
    dayFont_ = std::make_unique<Font>(logFont);
    logFont.lfHeight = -std::clamp(line * 5 / 6, 6, 200);
    logFont.lfWeight = FW_BOLD;
    headerFont_ = std::make_unique<Font>(logFont);
}

RECT YearView::MonthRect(int month) const {
    const int rows = 12 / columns_;
    const int width = grid_.Width() / columns_;
    const int height = grid_.Height() / rows;
    const int index = month - 1;
    const int left = grid_.left + (index % columns_) * width;
    const int top = grid_.top + (index / columns_) * height;
    return RECT{left, top, left + width - Scale(kMonthGap), top + height - Scale(kMonthGap)};
}

RECT YearView::DayRect(int month, int day) const {
    const RECT box = MonthRect(month);
    const int line = box.Height() / kMonthLines;
    const int cell = box.Width() / kDaysPerWeek;
    const int firstColumn =
        (DateTime(year_, month, 1).GetDayOfWeek() - (mondayFirst_ ? 1 : 0) + kDaysPerWeek) % kDaysPerWeek;
    const int slot = firstColumn + day - 1;
    const int left = box.left + (slot % kDaysPerWeek) * cell;
    const int top = box.top + (2 + slot / kDaysPerWeek) * line;
    return RECT{left, top, left + cell, top + line};
}

void YearView::SetYear(int year) {
    if (year < 1601 || year > 9998 || year == year_)
        return;
    year_ = year;
    LoadMarkers();
    title_.SetLabel(Title());
    InvalidateRect(window, nullptr, false);
}

void YearView::Relabel() {
    menuBar_.Relabel();
    InvalidateRect(window, nullptr, false);
}

void YearView::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, ColorsFromSkin().background);
    for (int month = 1; month <= 12; ++month)
        DrawMonth(*dc, month);
}

void YearView::DrawMonth(Dc& dc, int month) {
    const YearColors colors = ColorsFromSkin();
    const RECT box = MonthRect(month);
    const int line = box.Height() / kMonthLines;
    const int cell = box.Width() / kDaysPerWeek;
    dc.SetBkMode(TRANSPARENT);
    RECT header{box.left, box.top, box.right, box.top + line};
    dc.FillRect(header, colors.header);
    dc.SelectFont(headerFont_.get());
    dc.SetTextColor(colors.headerText);
    dc.DrawText(Locale::MonthName(month, false, true), header,
                DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc.SelectFont(dayFont_.get());
    dc.SetTextColor(colors.dayNames);
    for (int column = 0; column < kDaysPerWeek; ++column) {
        const int dayOfWeek = (column + (mondayFirst_ ? 1 : 0)) % kDaysPerWeek;
        const std::u16string name = Locale::DayName(dayOfWeek, true).substr(0, 1);
        RECT rect{box.left + column * cell, box.top + line, box.left + (column + 1) * cell,
                  box.top + 2 * line};
        dc.DrawText(name, rect, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
    const DateTime today = DateTime::Today();
    for (int day = 1; day <= DaysInMonth(year_, month); ++day) {
        RECT rect = DayRect(month, day);
        const bool marked = markers_.HasItems(month, day);
        if (marked)
            dc.FillRect(RECT{rect.left + 1, rect.top + 1, rect.right - 1, rect.bottom - 1}, colors.marked);
        if (today.GetYear() == year_ && today.GetMonth() == month && today.GetDay() == day)
            dc.FrameRect(rect, colors.today);
        dc.SetTextColor(marked ? colors.markedText : colors.text);
        dc.DrawText(Number(day), rect, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
    dc.SelectFont(nullptr);
}

LRESULT YearView::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    down_ = true;
    downX_ = x;
    downY_ = y;
    SetCapture(window);
    return 0;
}

LRESULT YearView::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0 || !down_)
        return 0;
    down_ = false;
    ReleaseCapture();
    const int dx = x - downX_;
    if (std::abs(dx) >= Scale(kSwipeDistance) && std::abs(dx) > std::abs(y - downY_)) {
        // The finger pulls the next year in from the right.
        SetYear(year_ + (dx < 0 ? 1 : -1));
        return 0;
    }
    if (std::abs(dx) > Scale(kSwipeDistance) / 2 || std::abs(y - downY_) > Scale(kSwipeDistance) / 2)
        return 0;
    for (int month = 1; month <= 12; ++month) {
        if (!MonthRect(month).Contains(x, y))
            continue;
        int day = 1;
        for (int d = 1; d <= DaysInMonth(year_, month); ++d)
            if (DayRect(month, d).Contains(x, y))
                day = d;
        if (ViewNavigator* navigator = ViewNavigator::Current())
            navigator->ShowMonth(DateTime(year_, month, day));
        Close();
        return 0;
    }
    return 0;
}

void YearView::Close() {
    if (window)
        ShowWindow(window, SW_HIDE);
    if (closeHandler_)
        closeHandler_(*this);
}

void YearView::OnCommand(UINT, UINT, HWND control) {
    if (control == title_.GetHwnd()) {
        Close();
        return;
    }
    switch (menuBar_.IndexOf(control)) {
    case 0:
        SetYear(DateTime::Today().GetYear());
        break;
    case 1:
        Close();
        break;
    default:
        break;
    }
}

void YearView::OnKeyDown(UINT key, UINT) {
    if (key == VK_LEFT)
        SetYear(year_ - 1);
    else if (key == VK_RIGHT)
        SetYear(year_ + 1);
    else if (key == VK_ESCAPE)
        Close();
}

void YearView::OnScreenReset() {
    MoveWindow(window, 0, 0, GetScreenWidth(), GetScreenHeight(), true);
    Layout();
    InvalidateRect(window, nullptr, false);
}

void YearView::OnStoreChanged(const StoreChange&) {
    LoadMarkers();
    InvalidateRect(window, nullptr, false);
}

void YearView::OnCloseAll() {
    Close();
}

} // namespace mirodate
