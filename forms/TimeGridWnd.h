#pragma once
// The time picker's grid: a button for each hour and one for every fifth
// minute, under the words "Hours" and "Minutes". A tap sets the hour or the
// minute; the chosen ones are filled in the selection colour, and the part
// that keys change is framed. Each change goes to the parent as WM_COMMAND
// with the grid's id and kChanged.
#include "ui/BaseWnd.h"
#include "ui/Font.h"

#include <memory>

namespace mirodate {

constexpr const char* kTimeGridClass = "MIRODATE::TIMEGRID";

class TimeGridWnd : public BaseWnd {
public:
    static constexpr WORD kChanged = 1;
    static constexpr int kMinuteStep = 5;
    static constexpr int kMinuteCells = 60 / kMinuteStep;

    TimeGridWnd();
    ~TimeGridWnd() override;

    HWND Create(HWND parent, int id, const RECT& rect);

    int Hour() const { return hour_; }
    int Minute() const { return minute_; }
    void SetTime(int hour, int minute);
    // 0 hours, 1 minutes: the part the keys change (-1: none framed).
    void SetActivePart(int part);
    int ActivePart() const { return activePart_; }

    // Cells in client coordinates: hours 0..23, minutes by their index 0..11.
    RECT HourRect(int hour) const;
    RECT MinuteRect(int index) const;

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;

private:
    struct Metrics {
        int labelHeight, cellHeight, hourColumns, minuteColumns, hoursTop, minutesTop;
        int width;
    };
    Metrics Measure() const;
    // -1 none; 0..23 an hour; 100 + i the minute cell i.
    int CellAt(int x, int y) const;

    int id_ = 0;
    int hour_ = 0, minute_ = 0;
    int activePart_ = 0;
    int pressedCell_ = -1;
    std::unique_ptr<Font> labelFont_, cellFont_, smallCellFont_;
};

} // namespace mirodate
