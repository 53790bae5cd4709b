#include "forms/TimePickerPage.h"

#include "forms/DatePickerPage.h"
#include "forms/TimeTexts.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kPanelId = 100;
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kValueHeight = 30;
// Wheels taller than this show more entries than anyone needs.
constexpr int kMaxWheelHeight = 220;

std::function<void(TimePickerPage&)>& OpenObserver() {
    static std::function<void(TimePickerPage&)> observer;
    return observer;
}
} // namespace

TimePickerPage::TimePickerPage(const DateTime& initial) : value_(ClampPickerDate(initial)) {}
TimePickerPage::~TimePickerPage() = default;

std::optional<DateTime> TimePickerPage::Pick(HWND owner, const DateTime& initial) {
    TimePickerPage page(initial);
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
    return page.Value();
}

void TimePickerPage::SetOpenObserver(std::function<void(TimePickerPage&)> observer) {
    OpenObserver() = std::move(observer);
}

void TimePickerPage::SetValue(const DateTime& value) {
    value_ = ClampPickerDate(value);
    if (panel_.GetHwnd())
        panel_.SetTime(value_.GetHour(), value_.GetMinute());
}

void TimePickerPage::FromPanel() {
    value_ =
        DateTime(value_.GetYear(), value_.GetMonth(), value_.GetDay(), panel_.Hour(), panel_.Minute(), 0);
    InvalidateRect(window, &valueRect_, false);
}

void TimePickerPage::Accept() {
    if (!window)
        return;
    // A wheel still turning ends where it was coming to rest.
    panel_.Settle();
    FromPanel();
    EndDialog(window, IDOK);
}

void TimePickerPage::Cancel() {
    if (window)
        EndDialog(window, IDCANCEL);
}

BOOL TimePickerPage::OnInitDialog() {
    chrome_.Create(window, Lang("picker.Time"));
    valueFont_ = PickerChrome::MakeFont(200, true);
    panel_.Create(window, kPanelId, RECT{0, 0, 1, 1}, Settings::GetTimePickerWheel());
    // The seconds go: a picked time is a whole minute.
    const int hour = value_.GetHour(), minute = value_.GetMinute();
    panel_.SetTime(hour, minute);
    value_ = DateTime(value_.GetYear(), value_.GetMonth(), value_.GetDay(), hour, minute, 0);
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void TimePickerPage::Layout() {
    const RECT content = chrome_.Layout();
    const int margin = Scale(PickerChrome::kMargin);
    valueRect_ = RECT{margin, content.top + margin, content.right - margin,
                      content.top + margin + Scale(kValueHeight)};
    int top = valueRect_.bottom + margin;
    int height = std::max(1, content.bottom - top);
    if (panel_.UsesWheels() && height > Scale(kMaxWheelHeight)) {
        top += (height - Scale(kMaxWheelHeight)) / 2;
        height = Scale(kMaxWheelHeight);
    }
    MoveWindow(panel_.GetHwnd(), margin, top, content.Width() - 2 * margin, height, true);
}

void TimePickerPage::OnScreenReset() {
    Layout();
}

void TimePickerPage::OnDialogReady() {
    if (OpenObserver())
        OpenObserver()(*this);
}

void TimePickerPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    chrome_.Paint(*dc);
    dc->SelectFont(valueFont_.get());
    dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(SkinStyles::Current().inputForms.colorItemText);
    RECT rect = valueRect_;
    dc->DrawText(TimeTexts::TimeLabel(value_.GetHour(), value_.GetMinute()), rect,
                 DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc->SelectFont(nullptr);
}

void TimePickerPage::OnCommand(UINT id, UINT code, HWND control) {
    if (chrome_.IsOk(control))
        Accept();
    else if (chrome_.IsCancel(control))
        Cancel();
    else if (id == kPanelId && code == TimePanelWnd::kChanged)
        FromPanel();
}

void TimePickerPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_RETURN)
        Accept();
    else if (key == VK_ESCAPE)
        Cancel();
    else
        panel_.HandleKey(key);
}

void TimePickerPage::OnClose() {
    Cancel();
}

} // namespace mirodate
