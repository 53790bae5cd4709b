#pragma once
// A modal page that picks a time of day: kinetic wheels of hours and minutes
// when `TimePickerWheel` is 1, a grid of hours and minutes otherwise. Up and
// Down change the value, Left and Right switch between hours and minutes,
// Enter is OK and Escape Cancel. Returns nothing when the user cancels.
#include "data/DateTime.h"
#include "forms/PickerChrome.h"
#include "forms/TimePanelWnd.h"
#include "ui/DialogWnd.h"

#include <functional>
#include <memory>
#include <optional>

namespace mirodate {

class TimePickerPage : public DialogWnd {
public:
    explicit TimePickerPage(const DateTime& initial);
    ~TimePickerPage() override;

    // The chosen time (the day of `initial` kept), or nothing on Cancel.
    static std::optional<DateTime> Pick(HWND owner, const DateTime& initial);

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(TimePickerPage& page)> observer);

    DateTime Value() const { return value_; }
    void SetValue(const DateTime& value);
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

    TimePanelWnd& Panel() { return panel_; }
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
    void FromPanel();

    DateTime value_;
    PickerChrome chrome_;
    TimePanelWnd panel_;
    std::unique_ptr<Font> valueFont_;
    RECT valueRect_{};
};

} // namespace mirodate
