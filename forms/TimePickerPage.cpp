#include "forms/TimePickerPage.h"

namespace mirodate {

// Placeholder until the picker's page is built: it answers Cancel at once.

namespace {
std::function<void(TimePickerPage&)>& OpenObserver() {
    static std::function<void(TimePickerPage&)> observer;
    return observer;
}
} // namespace

TimePickerPage::TimePickerPage(const DateTime& initial) : value_(initial) {}
TimePickerPage::~TimePickerPage() = default;

std::optional<DateTime> TimePickerPage::Pick(HWND, const DateTime&) { return std::nullopt; }

void TimePickerPage::SetOpenObserver(std::function<void(TimePickerPage&)> observer) { OpenObserver() = std::move(observer); }

void TimePickerPage::Accept() {}
void TimePickerPage::Cancel() {}

} // namespace mirodate
