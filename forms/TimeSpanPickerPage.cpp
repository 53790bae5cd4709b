#include "forms/TimeSpanPickerPage.h"

#include "data/EditorTexts.h"
#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <string>

namespace mirodate {

namespace {
constexpr std::int64_t kMinutesPerHour = 60;
constexpr std::int64_t kMinutesPerDay = 24 * kMinutesPerHour;
constexpr std::int64_t kMinutesPerWeek = 7 * kMinutesPerDay;
constexpr std::array<int, TimeSpanPickerPage::kUnits> kPartMax = {TimeSpanPickerPage::kMaxWeeks, 6, 23, 59};
constexpr std::array<const char*, TimeSpanPickerPage::kUnits> kLabelKeys = {"picker.Weeks", "picker.Days",
                                                                            "picker.Hours", "picker.Minutes"};
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTextHeight = 36;
constexpr int kLabelHeight = 18;
constexpr int kButtonHeight = 36;
constexpr int kNumberHeight = 36;
constexpr int kGap = 4;

std::function<void(TimeSpanPickerPage&)>& OpenObserver() {
    static std::function<void(TimeSpanPickerPage&)> observer;
    return observer;
}
} // namespace

TimeSpanPickerPage::TimeSpanPickerPage(std::int64_t minutes) {
    value_ = std::clamp<std::int64_t>(minutes, 0, MaxMinutes());
}
TimeSpanPickerPage::~TimeSpanPickerPage() = default;

std::optional<std::int64_t> TimeSpanPickerPage::Pick(HWND owner, std::int64_t minutes) {
    TimeSpanPickerPage page(minutes);
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
    return page.Value();
}

void TimeSpanPickerPage::SetOpenObserver(std::function<void(TimeSpanPickerPage&)> observer) {
    OpenObserver() = std::move(observer);
}

std::int64_t TimeSpanPickerPage::MaxMinutes() {
    return kMaxWeeks * kMinutesPerWeek + 6 * kMinutesPerDay + 23 * kMinutesPerHour + 59;
}

void TimeSpanPickerPage::SetValue(std::int64_t minutes) {
    value_ = std::clamp<std::int64_t>(minutes, 0, MaxMinutes());
    if (window)
        InvalidateRect(window, nullptr, false);
}

int TimeSpanPickerPage::Part(Unit unit) const {
    switch (unit) {
    case kWeeks:
        return static_cast<int>(value_ / kMinutesPerWeek);
    case kDays:
        return static_cast<int>(value_ % kMinutesPerWeek / kMinutesPerDay);
    case kHours:
        return static_cast<int>(value_ % kMinutesPerDay / kMinutesPerHour);
    default:
        return static_cast<int>(value_ % kMinutesPerHour);
    }
}

void TimeSpanPickerPage::SetParts(const std::array<int, kUnits>& parts) {
    SetValue(parts[kWeeks] * kMinutesPerWeek + parts[kDays] * kMinutesPerDay +
             parts[kHours] * kMinutesPerHour + parts[kMinutes]);
}

void TimeSpanPickerPage::StepPart(Unit unit, int direction) {
    std::array<int, kUnits> parts = {Part(kWeeks), Part(kDays), Part(kHours), Part(kMinutes)};
    int& part = parts[static_cast<size_t>(unit)];
    if (unit == kMinutes)
        part = direction > 0 ? (part / kMinuteStep + 1) * kMinuteStep
                             : ((part + kMinuteStep - 1) / kMinuteStep - 1) * kMinuteStep;
    else
        part += direction > 0 ? 1 : -1;
    // Each part stops at its ends; a minute step past 55 stops at 59.
    part = std::clamp(part, 0, kPartMax[static_cast<size_t>(unit)]);
    SetParts(parts);
}

std::u16string TimeSpanPickerPage::ValueText() const {
    if (value_ == 0)
        return u"0 " + Lang("Minutes");
    return EditorTexts::FormatTimeSpan(value_);
}

RECT TimeSpanPickerPage::PlusRect(Unit unit) const {
    return columns_[static_cast<size_t>(unit)].plus;
}
RECT TimeSpanPickerPage::MinusRect(Unit unit) const {
    return columns_[static_cast<size_t>(unit)].minus;
}

void TimeSpanPickerPage::Accept() {
    if (window)
        EndDialog(window, IDOK);
}

void TimeSpanPickerPage::Cancel() {
    if (window)
        EndDialog(window, IDCANCEL);
}

BOOL TimeSpanPickerPage::OnInitDialog() {
    chrome_.Create(window, Lang("picker.TimeSpan"));
    textFont_ = PickerChrome::MakeFont(120, true);
    labelFont_ = PickerChrome::MakeFont(90, false);
    numberFont_ = PickerChrome::MakeFont(170, true);
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void TimeSpanPickerPage::Layout() {
    const RECT content = chrome_.Layout();
    const int margin = Scale(PickerChrome::kMargin), gap = Scale(kGap);
    textRect_ =
        RECT{margin, content.top + margin, content.right - margin, content.top + margin + Scale(kTextHeight)};
    const int columnsHeight = Scale(kLabelHeight) + 2 * Scale(kButtonHeight) + Scale(kNumberHeight) + 3 * gap;
    const int room = content.bottom - textRect_.bottom;
    const int top = textRect_.bottom + std::max(0, (room - columnsHeight) / 2);
    const int width = (content.Width() - 2 * margin - (kUnits - 1) * gap) / kUnits;
    for (int unit = 0; unit < kUnits; ++unit) {
        const int left = margin + unit * (width + gap), right = left + width;
        Column& column = columns_[static_cast<size_t>(unit)];
        int y = top;
        column.label = RECT{left, y, right, y + Scale(kLabelHeight)};
        y = column.label.bottom + gap;
        column.plus = RECT{left, y, right, y + Scale(kButtonHeight)};
        y = column.plus.bottom + gap;
        column.value = RECT{left, y, right, y + Scale(kNumberHeight)};
        y = column.value.bottom + gap;
        column.minus = RECT{left, y, right, y + Scale(kButtonHeight)};
    }
}

void TimeSpanPickerPage::OnScreenReset() {
    Layout();
}

void TimeSpanPickerPage::OnDialogReady() {
    if (OpenObserver())
        OpenObserver()(*this);
}

void TimeSpanPickerPage::PaintButton(Dc& dc, const RECT& rect, const std::u16string& text,
                                     bool pressed) const {
    const ButtonColors& colors = SkinStyles::Current().inputForms.buttons;
    const COLORREF back = pressed ? colors.colorButtonBgPressed : colors.colorButtonBg;
    const COLORREF top = pressed ? colors.colorButtonGradientPressed : colors.colorButtonGradient;
    // As the toolkit's buttons: from the gradient colour at the top to the background at half height.
    dc.FillRect(rect, back);
    dc.GradientFillVertical(RECT{rect.left, rect.top, rect.right, rect.top + rect.Height() / 2}, top, back);
    dc.SetTextColor(pressed ? colors.colorButtonTextPressed : colors.colorButtonText);
    RECT label = rect;
    dc.DrawText(text, label, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
}

void TimeSpanPickerPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    chrome_.Paint(*dc);
    const SkinStyles& styles = SkinStyles::Current();
    const InputFormsStyle& form = styles.inputForms;
    const COLORREF mark = styles.addModifyForm.colorSelectionMark;
    dc->SetBkMode(TRANSPARENT);
    dc->SelectFont(textFont_.get());
    dc->SetTextColor(form.colorItemText);
    RECT text = textRect_;
    dc->DrawText(ValueText(), text, DT_CENTER | DT_VCENTER | DT_WORDBREAK | DT_NOPREFIX | DT_END_ELLIPSIS);
    for (int unit = 0; unit < kUnits; ++unit) {
        const Column& column = columns_[static_cast<size_t>(unit)];
        const bool active = unit == active_;
        dc->SelectFont(labelFont_.get());
        dc->SetTextColor(active ? mark : form.colorItemText);
        RECT label = column.label;
        dc->DrawText(Lang(kLabelKeys[static_cast<size_t>(unit)]), label,
                     DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
        dc->SelectFont(numberFont_.get());
        PaintButton(*dc, column.plus, u"+", pressedButton_ == unit * 2);
        PaintButton(*dc, column.minus, u"\u2212", pressedButton_ == unit * 2 + 1);
        dc->FillRect(column.value, form.colorItemBg);
        if (active)
            dc->FrameRect(column.value, mark, std::max(1, Scale(1)));
        dc->SetTextColor(form.colorItemText);
        RECT number = column.value;
        const std::u16string digits = ToU16(Part(static_cast<Unit>(unit)));
        dc->DrawText(digits, number, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
    dc->SelectFont(nullptr);
}

void TimeSpanPickerPage::OnCommand(UINT, UINT, HWND control) {
    if (chrome_.IsOk(control))
        Accept();
    else if (chrome_.IsCancel(control))
        Cancel();
}

void TimeSpanPickerPage::OnKeyDown(UINT key, UINT) {
    switch (key) {
    case VK_RETURN:
        Accept();
        break;
    case VK_ESCAPE:
        Cancel();
        break;
    case VK_UP:
        StepPart(static_cast<Unit>(active_), 1);
        break;
    case VK_DOWN:
        StepPart(static_cast<Unit>(active_), -1);
        break;
    case VK_LEFT:
    case VK_RIGHT:
        active_ = std::clamp(active_ + (key == VK_LEFT ? -1 : 1), 0, kUnits - 1);
        InvalidateRect(window, nullptr, false);
        break;
    default:
        break;
    }
}

LRESULT TimeSpanPickerPage::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    for (int unit = 0; unit < kUnits; ++unit) {
        const Column& column = columns_[static_cast<size_t>(unit)];
        const int which = column.plus.Contains(x, y) ? 0 : column.minus.Contains(x, y) ? 1 : -1;
        if (which < 0)
            continue;
        active_ = unit;
        pressedButton_ = unit * 2 + which;
        StepPart(static_cast<Unit>(unit), which == 0 ? 1 : -1);
        SetCapture(window);
        SetTimer(window, kRepeatTimer, kRepeatDelay);
        InvalidateRect(window, nullptr, false);
        return 0;
    }
    return 0;
}

void TimeSpanPickerPage::OnPointerMove(int x, int y, WPARAM) {
    if (pressedButton_ < 0)
        return;
    const Column& column = columns_[static_cast<size_t>(pressedButton_ / 2)];
    // Sliding off the button ends the press, as with the toolkit's buttons.
    if (!(pressedButton_ % 2 ? column.minus : column.plus).Contains(x, y))
        EndPress();
}

LRESULT TimeSpanPickerPage::OnPointerUp(int, int, int, WPARAM) {
    EndPress();
    return 0;
}

void TimeSpanPickerPage::OnCaptureChanged(HWND newCapture) {
    if (newCapture != window)
        EndPress();
}

void TimeSpanPickerPage::EndPress() {
    if (pressedButton_ < 0)
        return;
    pressedButton_ = -1;
    KillTimer(window, kRepeatTimer);
    if (GetCapture() == window)
        ReleaseCapture();
    InvalidateRect(window, nullptr, false);
}

void TimeSpanPickerPage::OnTimer(UINT_PTR id) {
    if (id != kRepeatTimer) {
        DialogWnd::OnTimer(id);
        return;
    }
    if (pressedButton_ < 0)
        return;
    SetTimer(window, kRepeatTimer, kRepeatInterval);
    StepPart(static_cast<Unit>(pressedButton_ / 2), pressedButton_ % 2 ? -1 : 1);
}

void TimeSpanPickerPage::OnClose() {
    Cancel();
}

} // namespace mirodate
