#pragma once
// A modal page that picks a time of day: kinetic wheels of hours and minutes when
// `TimePickerWheel` is 1, a grid of hours and minutes otherwise.
// Returns nothing when the user cancels.
#include "data/DateTime.h"
#include "ui/DialogWnd.h"

#include <functional>
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
    void SetValue(const DateTime& value) { value_ = value; }
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

private:
    DateTime value_;
};

} // namespace mirodate
