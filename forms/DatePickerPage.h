#pragma once
// A modal page that picks a day from a month grid in the locale's week
// layout; swipes, the arrows and PageUp/PageDown change the month, a tap or
// the arrow keys choose the day, Enter is OK and Escape Cancel. Days stay
// within 1900..2100. Returns nothing when the user cancels.
#include "data/DateTime.h"
#include "forms/DatePickerGrid.h"
#include "forms/PickerChrome.h"
#include "ui/DialogWnd.h"

#include <functional>
#include <memory>
#include <optional>

namespace mirodate {

class DatePickerPage : public DialogWnd {
public:
    explicit DatePickerPage(const DateTime& initial);
    ~DatePickerPage() override;

    // The chosen day (time of day of `initial` kept), or nothing on Cancel.
    static std::optional<DateTime> Pick(HWND owner, const DateTime& initial);

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(DatePickerPage& page)> observer);

    DateTime Value() const { return value_; }
    void SetValue(const DateTime& value);
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

    DatePickerGrid& Grid() { return grid_; }
    PickerChrome& Chrome() { return chrome_; }

    BOOL OnInitDialog() override;
    void OnDialogReady() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnClose() override;
    void OnScreenReset() override;

private:
    void Layout();
    void FromGrid();

    DateTime value_;
    PickerChrome chrome_;
    DatePickerGrid grid_;
    std::unique_ptr<Font> valueFont_;
    RECT valueRect_{};
};

// A valid value within 1900-01-01 00:00 .. 2100-12-31 23:59 (today for an invalid one).
DateTime ClampPickerDate(const DateTime& value);

} // namespace mirodate
