#pragma once
// A modal page that picks a span of time as weeks, days, hours and minutes
// (a reminder's lead time). Returns nothing when the user cancels.
#include "ui/DialogWnd.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace mirodate {

class TimeSpanPickerPage : public DialogWnd {
public:
    explicit TimeSpanPickerPage(std::int64_t minutes);
    ~TimeSpanPickerPage() override;

    // The chosen span in minutes, or nothing on Cancel.
    static std::optional<std::int64_t> Pick(HWND owner, std::int64_t minutes);

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(TimeSpanPickerPage& page)> observer);

    std::int64_t Value() const { return value_; }
    void SetValue(std::int64_t minutes) { value_ = minutes; }
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

private:
    std::int64_t value_ = 0;
};

} // namespace mirodate
