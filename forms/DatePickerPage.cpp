#include "forms/DatePickerPage.h"

namespace mirodate {

// Placeholder until the picker's page is built: it answers Cancel at once.

namespace {
std::function<void(DatePickerPage&)>& OpenObserver() {
    static std::function<void(DatePickerPage&)> observer;
    return observer;
}
} // namespace

DatePickerPage::DatePickerPage(const DateTime& initial) : value_(initial) {}
DatePickerPage::~DatePickerPage() = default;

std::optional<DateTime> DatePickerPage::Pick(HWND, const DateTime&) { return std::nullopt; }

void DatePickerPage::SetOpenObserver(std::function<void(DatePickerPage&)> observer) { OpenObserver() = std::move(observer); }

void DatePickerPage::Accept() {}
void DatePickerPage::Cancel() {}

} // namespace mirodate
