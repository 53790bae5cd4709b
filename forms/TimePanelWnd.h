#pragma once
// The time part of the time and date-and-time pickers: two kinetic wheels
// (hours 0-23, minutes 0-59) when `TimePickerWheel` is 1, a grid of hour and
// minute buttons otherwise. Up and Down change the active part, Left and
// Right choose it. Each change goes to the parent as WM_COMMAND with the
// panel's id and kChanged, a touch on a wheel with kTouched.
#include "forms/TimeGridWnd.h"
#include "forms/TimeWheelWnd.h"
#include "ui/BaseWnd.h"
#include "ui/Font.h"

#include <memory>

namespace mirodate {

constexpr const char* kTimePanelClass = "MIRODATE::TIMEPANEL";

class TimePanelWnd : public BaseWnd {
public:
    static constexpr WORD kChanged = 1;
    // A finger touched one of the wheels.
    static constexpr WORD kTouched = 2;

    TimePanelWnd();
    ~TimePanelWnd() override;

    // `wheels` as the setting says.
    HWND Create(HWND parent, int id, const RECT& rect, bool wheels);

    int Hour() const;
    int Minute() const;
    void SetTime(int hour, int minute);
    // Up/Down/Left/Right; false for other keys.
    bool HandleKey(UINT key);
    // 0 hours, 1 minutes.
    int ActivePart() const { return activePart_; }
    void SetActivePart(int part);
    // Ends a turning wheel on the entry it was coming to rest on.
    void Settle();
    // Whether keys are meant for this panel (the date-and-time page has two parts).
    void SetFocused(bool focused);

    bool UsesWheels() const { return wheels_; }
    TimeWheelWnd& HourWheel() { return hourWheel_; }
    TimeWheelWnd& MinuteWheel() { return minuteWheel_; }
    TimeGridWnd& Grid() { return grid_; }

    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnSize(UINT sizeParam, UINT type) override;

private:
    void Layout();
    void Changed();

    int id_ = 0;
    bool wheels_ = false;
    bool focused_ = true;
    int activePart_ = 0;
    std::unique_ptr<Font> wheelFont_, colonFont_;
    TimeWheelWnd hourWheel_;
    TimeWheelWnd minuteWheel_;
    TimeGridWnd grid_;
    RECT colon_{};
};

} // namespace mirodate
