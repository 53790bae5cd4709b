#include "forms/DateTimePickerPage.h"

#include "forms/DatePickerPage.h"
#include "forms/TimeTexts.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kGridId = 100;
constexpr int kPanelId = 101;
// The date grid's share of the room below the value line, in percent: the
// time's grid of buttons needs more than its wheels.
constexpr int kGridShareWheels = 56;
constexpr int kGridShareButtons = 52;

std::function<void(DateTimePickerPage&)>& OpenObserver() {
    static std::function<void(DateTimePickerPage&)> observer;
    return observer;
}
} // namespace

DateTimePickerPage::DateTimePickerPage(const DateTime& initial) : value_(ClampPickerDate(initial)) {}
DateTimePickerPage::~DateTimePickerPage() = default;

std::optional<DateTime> DateTimePickerPage::Pick(HWND owner, const DateTime& initial) {
    DateTimePickerPage page(initial);
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
    return page.Value();
}

void DateTimePickerPage::SetOpenObserver(std::function<void(DateTimePickerPage&)> observer) {
    OpenObserver() = std::move(observer);
}

void DateTimePickerPage::SetValue(const DateTime& value) {
    const DateTime clamped = ClampPickerDate(value);
    value_ = clamped;
    if (!window)
        return;
    grid_.SetDate(clamped.GetYear(), clamped.GetMonth(), clamped.GetDay());
    panel_.SetTime(clamped.GetHour(), clamped.GetMinute());
    value_ = clamped;
}

void DateTimePickerPage::FromParts() {
    // The parts show whole minutes: seconds given with the value stay while
    // its minute is the one chosen, so an unchanged moment comes back as given.
    const bool sameMinute = value_.IsValid() && value_.GetYear() == grid_.Year() &&
                            value_.GetMonth() == grid_.Month() && value_.GetDay() == grid_.Day() &&
                            value_.GetHour() == panel_.Hour() && value_.GetMinute() == panel_.Minute();
    value_ = DateTime(grid_.Year(), grid_.Month(), grid_.Day(), panel_.Hour(), panel_.Minute(),
                      sameMinute ? value_.GetSecond() : 0);
    // The moment stands in the title band: the page needs every line below for its parts.
    chrome_.SetTitle(Locale::DayName(value_.GetDayOfWeek(), true) + u", " +
                     Locale::FormatShortDate(value_.ToSystemTime()) + u"  " +
                     TimeTexts::TimeLabel(value_.GetHour(), value_.GetMinute()));
}

void DateTimePickerPage::FocusPart(int part) {
    focusedPart_ = part;
    panel_.SetFocused(part == 1);
}

void DateTimePickerPage::Accept() {
    if (!window)
        return;
    panel_.Settle();
    FromParts();
    EndDialog(window, IDOK);
}

void DateTimePickerPage::Cancel() {
    if (window)
        EndDialog(window, IDCANCEL);
}

BOOL DateTimePickerPage::OnInitDialog() {
    chrome_.Create(window, Lang("picker.DateTime"));
    const DateTime initial = value_;
    grid_.Create(window, kGridId, RECT{0, 0, 1, 1});
    panel_.Create(window, kPanelId, RECT{0, 0, 1, 1}, Settings::GetTimePickerWheel());
    grid_.SetDate(initial.GetYear(), initial.GetMonth(), initial.GetDay());
    panel_.SetTime(initial.GetHour(), initial.GetMinute());
    FromParts();
    FocusPart(0);
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void DateTimePickerPage::Layout() {
    const RECT content = chrome_.Layout();
    const int margin = Scale(PickerChrome::kMargin);
    const int room = std::max(2, content.Height());
    const int gridHeight = room * (panel_.UsesWheels() ? kGridShareWheels : kGridShareButtons) / 100;
    MoveWindow(grid_.GetHwnd(), margin, content.top, content.Width() - 2 * margin, gridHeight, true);
    MoveWindow(panel_.GetHwnd(), margin, content.top + gridHeight + margin, content.Width() - 2 * margin,
               std::max(1, room - gridHeight - margin), true);
}

void DateTimePickerPage::OnScreenReset() {
    Layout();
}

void DateTimePickerPage::OnDialogReady() {
    if (OpenObserver())
        OpenObserver()(*this);
}

void DateTimePickerPage::OnPaint(HDC dc) {
    if (dc)
        chrome_.Paint(*dc);
}

void DateTimePickerPage::OnCommand(UINT id, UINT code, HWND control) {
    if (chrome_.IsOk(control)) {
        Accept();
    } else if (chrome_.IsCancel(control)) {
        Cancel();
    } else if (id == kGridId && code == DatePickerGrid::kChanged) {
        FocusPart(0);
        FromParts();
    } else if (id == kPanelId && code == TimePanelWnd::kChanged) {
        FocusPart(1);
        FromParts();
    } else if (id == kPanelId && code == TimePanelWnd::kTouched) {
        FocusPart(1);
    }
}

void DateTimePickerPage::OnKeyDown(UINT key, UINT) {
    switch (key) {
    case VK_RETURN:
        Accept();
        return;
    case VK_ESCAPE:
        Cancel();
        return;
    case VK_TAB:
        FocusPart(1 - focusedPart_);
        return;
    case VK_PRIOR:
    case VK_NEXT:
        grid_.HandleKey(key);
        return;
    default:
        break;
    }
    // Changing a part keeps the keys with it.
    const int part = focusedPart_;
    if (part == 0)
        grid_.HandleKey(key);
    else
        panel_.HandleKey(key);
    FocusPart(part);
}

void DateTimePickerPage::OnClose() {
    Cancel();
}

} // namespace mirodate
