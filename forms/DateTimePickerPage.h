#pragma once
// A modal page that picks a date and a time together (the reminder moment).
// Returns nothing when the user cancels.
#include "data/DateTime.h"
#include "ui/DialogWnd.h"

#include <functional>
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
    void SetValue(const DateTime& value) { value_ = value; }
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

private:
    DateTime value_;
};

} // namespace mirodate
