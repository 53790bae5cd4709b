#include "forms/DatePickerPage.h"

#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kGridId = 100;
// Unscaled height of the line that shows the chosen day.
constexpr int kValueHeight = 22;

std::function<void(DatePickerPage&)>& OpenObserver() {
    static std::function<void(DatePickerPage&)> observer;
    return observer;
}
} // namespace

DateTime ClampPickerDate(const DateTime& value) {
    if (!value.IsValid())
        return DateTime::Today();
    const DateTime first(DatePickerGrid::kMinYear, 1, 1);
    const DateTime last(DatePickerGrid::kMaxYear, 12, 31, 23, 59, 59);
    if (value < first)
        return first;
    if (value > last)
        return last;
    return value;
}

DatePickerPage::DatePickerPage(const DateTime& initial) : value_(ClampPickerDate(initial)) {}
DatePickerPage::~DatePickerPage() = default;

std::optional<DateTime> DatePickerPage::Pick(HWND owner, const DateTime& initial) {
    DatePickerPage page(initial);
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
    return page.Value();
}

void DatePickerPage::SetOpenObserver(std::function<void(DatePickerPage&)> observer) {
    OpenObserver() = std::move(observer);
}

void DatePickerPage::SetValue(const DateTime& value) {
    value_ = ClampPickerDate(value);
    if (grid_.GetHwnd())
        grid_.SetDate(value_.GetYear(), value_.GetMonth(), value_.GetDay());
}

void DatePickerPage::FromGrid() {
    value_ = DateTime(grid_.Year(), grid_.Month(), grid_.Day(), value_.GetHour(), value_.GetMinute(),
                      value_.GetSecond());
    InvalidateRect(window, &valueRect_, false);
}

void DatePickerPage::Accept() {
    if (window)
        EndDialog(window, IDOK);
}

void DatePickerPage::Cancel() {
    if (window)
        EndDialog(window, IDCANCEL);
}

BOOL DatePickerPage::OnInitDialog() {
    chrome_.Create(window, Lang("picker.Date"));
    valueFont_ = PickerChrome::MakeFont(120, true);
    grid_.Create(window, kGridId, RECT{0, 0, 1, 1});
    grid_.SetDate(value_.GetYear(), value_.GetMonth(), value_.GetDay());
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void DatePickerPage::Layout() {
    const RECT content = chrome_.Layout();
    const int margin = Scale(PickerChrome::kMargin);
    valueRect_ = RECT{margin, content.top, content.right - margin, content.top + Scale(kValueHeight)};
    MoveWindow(grid_.GetHwnd(), margin, valueRect_.bottom, content.Width() - 2 * margin,
               std::max(1, content.bottom - valueRect_.bottom), true);
}

void DatePickerPage::OnScreenReset() {
    Layout();
}

void DatePickerPage::OnDialogReady() {
    if (OpenObserver())
        OpenObserver()(*this);
}

void DatePickerPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    chrome_.Paint(*dc);
    // The chosen day written out, with its weekday.
    const SYSTEMTIME date = value_.ToSystemTime();
    const std::u16string text =
        Locale::DayName(value_.GetDayOfWeek()) + u", " + Locale::FormatShortDate(date);
    dc->SelectFont(valueFont_.get());
    dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(SkinStyles::Current().inputForms.colorItemText);
    RECT rect = valueRect_;
    dc->DrawText(text, rect, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc->SelectFont(nullptr);
}

void DatePickerPage::OnCommand(UINT id, UINT code, HWND control) {
    if (chrome_.IsOk(control))
        Accept();
    else if (chrome_.IsCancel(control))
        Cancel();
    else if (id == kGridId && code == DatePickerGrid::kChanged)
        FromGrid();
}

void DatePickerPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_RETURN)
        Accept();
    else if (key == VK_ESCAPE)
        Cancel();
    else
        grid_.HandleKey(key);
}

void DatePickerPage::OnClose() {
    Cancel();
}

} // namespace mirodate
