#pragma once
// A modal page that picks a date and a time together (the reminder moment):
// the month grid of the date picker above the time picker's wheels or grid,
// the moment as chosen so far in the title band.
// Tab moves the keys between the two parts (a touch on a part does too);
// PageUp/PageDown always change the month, Enter is OK and Escape Cancel.
// Returns nothing when the user cancels.
#include "data/DateTime.h"
#include "forms/DatePickerGrid.h"
#include "forms/PickerChrome.h"
#include "forms/TimePanelWnd.h"
#include "ui/DialogWnd.h"

#include <functional>
#include <memory>
#include <optional>

namespace mirodate {

class DateTimePickerPage : public DialogWnd {
public:
    explicit DateTimePickerPage(const DateTime& initial);
    ~DateTimePickerPage() override;

    // The chosen moment, or nothing on Cancel.
    static std::optional<DateTime> Pick(HWND owner, const DateTime& initial);

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(DateTimePickerPage& page)> observer);

    DateTime Value() const { return value_; }
    void SetValue(const DateTime& value);
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

    DatePickerGrid& Grid() { return grid_; }
    TimePanelWnd& Panel() { return panel_; }
    PickerChrome& Chrome() { return chrome_; }
    // 0 when the keys go to the date, 1 to the time.
    int FocusedPart() const { return focusedPart_; }

    BOOL OnInitDialog() override;
    void OnDialogReady() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnClose() override;
    void OnScreenReset() override;

private:
    void Layout();
    void FromParts();
    void FocusPart(int part);

    DateTime value_;
    PickerChrome chrome_;
    DatePickerGrid grid_;
    TimePanelWnd panel_;
    int focusedPart_ = 0;
};

} // namespace mirodate
