#pragma once
// The month grid the date pickers share: a band with the month's name and
// arrows to the previous and next month, the weekday names in the locale's
// week layout, and six weeks of day cells. Today is framed and the chosen
// day filled in the selection colour. A tap on a day chooses it (a day of
// the neighbouring months moves there); a horizontal swipe or an arrow
// changes the month, keeping the day number as far as the month has it.
// Every change of the chosen day goes to the parent as WM_COMMAND with the
// grid's id and kChanged. Dates are kept within 1900..2100.
#include "ui/BaseWnd.h"
#include "ui/Font.h"

#include <memory>

namespace mirodate {

constexpr const char* kMonthGridClass = "MIRODATE::MONTHGRID";

class DatePickerGrid : public BaseWnd {
public:
    static constexpr int kMinYear = 1900;
    static constexpr int kMaxYear = 2100;
    static constexpr WORD kChanged = 1;

    DatePickerGrid();
    ~DatePickerGrid() override;

    HWND Create(HWND parent, int id, const RECT& rect);

    // Chooses a day, clamped into 1900-01-01..2100-12-31; invalid fields
    // (30 February) take the month's last day.
    void SetDate(int year, int month, int day);
    int Year() const { return year_; }
    int Month() const { return month_; }
    int Day() const { return day_; }
    void MoveDays(int days);
    void MoveMonths(int months);
    // Arrows move the day, PageUp/PageDown the month; false for other keys.
    bool HandleKey(UINT key);

    // A day's cell in client coordinates; empty when the shown weeks do not hold it.
    RECT DayRect(int year, int month, int day) const;
    RECT PreviousRect() const;
    RECT NextRect() const;

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnCaptureChanged(HWND newCapture) override;

private:
    struct Metrics {
        int bandHeight, namesHeight, cellWidth, cellHeight, left, top;
    };
    Metrics Measure() const;
    // Day number (days since 30 December 1899) of the first cell shown.
    long FirstShownDay() const;
    // Index 0..41 of the cell at a client point, or -1.
    int CellAt(int x, int y) const;
    void SetDayNumber(long dayNumber);
    void Changed();

    int id_ = 0;
    int year_ = 2000, month_ = 1, day_ = 1;
    std::unique_ptr<Font> titleFont_, nameFont_, dayFont_;
    bool pressed_ = false;
    bool swiped_ = false;
    int pressX_ = 0, pressY_ = 0;
};

} // namespace mirodate
