#include "forms/TimePanelWnd.h"

#include "forms/PickerChrome.h"
#include "forms/TimeTexts.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <string>
#include <vector>

namespace mirodate {

namespace {
constexpr int kHourId = 1;
constexpr int kMinuteId = 2;
constexpr int kGridId = 3;
constexpr int kHours = 24;
constexpr int kMinutes = 60;
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kColonWidth = 16;
constexpr int kMaxWheelWidth = 90;
} // namespace

TimePanelWnd::TimePanelWnd() = default;
TimePanelWnd::~TimePanelWnd() = default;

HWND TimePanelWnd::Create(HWND parent, int id, const RECT& rect, bool wheels) {
    id_ = id;
    wheels_ = wheels;
    wheelFont_ = PickerChrome::MakeFont(150, true);
    colonFont_ = PickerChrome::MakeFont(150, true);
    HWND created = BaseWnd::Create(parent, kTimePanelClass, WS_CHILD | WS_VISIBLE, u"", rect.left, rect.top,
                                   rect.Width(), rect.Height());
    if (wheels_) {
        std::vector<std::u16string> hours, minutes;
        for (int hour = 0; hour < kHours; ++hour)
            hours.push_back(TimeTexts::HourLabel(hour));
        for (int minute = 0; minute < kMinutes; ++minute)
            minutes.push_back(TimeTexts::MinuteLabel(minute));
        hourWheel_.Create(window, kHourId, RECT{0, 0, 1, 1}, hours, *wheelFont_);
        minuteWheel_.Create(window, kMinuteId, RECT{0, 0, 1, 1}, minutes, *wheelFont_);
    } else {
        grid_.Create(window, kGridId, RECT{0, 0, 1, 1});
    }
    SetActivePart(0);
    Layout();
    return created;
}

void TimePanelWnd::Layout() {
    if (!window)
        return;
    RECT client;
    GetClientRect(window, &client);
    if (!wheels_) {
        if (grid_.GetHwnd())
            MoveWindow(grid_.GetHwnd(), 0, 0, client.Width(), client.Height(), true);
        return;
    }
    if (!hourWheel_.GetHwnd())
        return;
    const int colon = Scale(kColonWidth);
    const int wheel = std::min(Scale(kMaxWheelWidth), (client.Width() - colon) / 2);
    const int left = (client.Width() - 2 * wheel - colon) / 2;
    MoveWindow(hourWheel_.GetHwnd(), left, 0, wheel, client.Height(), true);
    MoveWindow(minuteWheel_.GetHwnd(), left + wheel + colon, 0, wheel, client.Height(), true);
    colon_ = RECT{left + wheel, 0, left + wheel + colon, client.Height()};
    InvalidateRect(window, nullptr, false);
}

int TimePanelWnd::Hour() const {
    return wheels_ ? hourWheel_.Value() : grid_.Hour();
}
int TimePanelWnd::Minute() const {
    return wheels_ ? minuteWheel_.Value() : grid_.Minute();
}

void TimePanelWnd::SetTime(int hour, int minute) {
    hour = std::clamp(hour, 0, kHours - 1);
    minute = std::clamp(minute, 0, kMinutes - 1);
    if (wheels_) {
        hourWheel_.SetValue(hour, false);
        minuteWheel_.SetValue(minute, false);
    } else {
        grid_.SetTime(hour, minute);
    }
}

void TimePanelWnd::SetActivePart(int part) {
    activePart_ = std::clamp(part, 0, 1);
    if (wheels_) {
        hourWheel_.SetActive(focused_ && activePart_ == 0);
        minuteWheel_.SetActive(focused_ && activePart_ == 1);
    } else {
        grid_.SetActivePart(focused_ ? activePart_ : -1);
    }
}

void TimePanelWnd::SetFocused(bool focused) {
    focused_ = focused;
    SetActivePart(activePart_);
}

bool TimePanelWnd::HandleKey(UINT key) {
    if (key == VK_LEFT || key == VK_RIGHT) {
        SetActivePart(key == VK_LEFT ? 0 : 1);
        return true;
    }
    if (key != VK_UP && key != VK_DOWN)
        return false;
    // Up counts forward, as a spin box does.
    const int direction = key == VK_UP ? 1 : -1;
    if (wheels_) {
        (activePart_ == 0 ? hourWheel_ : minuteWheel_).Step(direction);
    } else if (activePart_ == 0) {
        grid_.SetTime((grid_.Hour() + direction + kHours) % kHours, grid_.Minute());
    } else {
        // To the next multiple of the grid's step in that direction.
        const int step = TimeGridWnd::kMinuteStep;
        const int minute = grid_.Minute();
        const int next = direction > 0 ? (minute / step + 1) * step : ((minute + step - 1) / step - 1) * step;
        grid_.SetTime(grid_.Hour(), (next + kMinutes) % kMinutes);
    }
    return true;
}

void TimePanelWnd::Settle() {
    if (!wheels_)
        return;
    hourWheel_.Settle();
    minuteWheel_.Settle();
}

void TimePanelWnd::Changed() {
    if (HWND parent = GetParent(window))
        SendMessage(parent, WM_COMMAND, MAKEWPARAM(id_, kChanged), reinterpret_cast<LPARAM>(window));
}

void TimePanelWnd::OnCommand(UINT id, UINT code, HWND) {
    // A touch on a wheel or on a part of the grid makes it the one the keys change.
    if (code == TimeWheelWnd::kTouched) {
        SetActivePart(id == kHourId ? 0 : 1);
        if (HWND parent = GetParent(window))
            SendMessage(parent, WM_COMMAND, MAKEWPARAM(id_, kTouched), reinterpret_cast<LPARAM>(window));
        return;
    }
    if (code != kChanged)
        return;
    if (id == kGridId && grid_.ActivePart() >= 0)
        activePart_ = grid_.ActivePart();
    Changed();
}

void TimePanelWnd::OnSize(UINT, UINT) {
    Layout();
}

void TimePanelWnd::OnPaint(HDC dc) {
    if (!dc)
        return;
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, form.colorBg);
    if (!wheels_)
        return;
    dc->SetBkMode(TRANSPARENT);
    dc->SelectFont(colonFont_.get());
    dc->SetTextColor(form.colorItemText);
    RECT colon = colon_;
    dc->DrawText(u":", colon, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    dc->SelectFont(nullptr);
}

} // namespace mirodate
