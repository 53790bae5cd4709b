#include "forms/DateTimePickerPage.h"

namespace mirodate {

// Placeholder until the picker's page is built: it answers Cancel at once.

namespace {
std::function<void(DateTimePickerPage&)>& OpenObserver() {
    static std::function<void(DateTimePickerPage&)> observer;
    return observer;
}
} // namespace

DateTimePickerPage::DateTimePickerPage(const DateTime& initial) : value_(initial) {}
DateTimePickerPage::~DateTimePickerPage() = default;

std::optional<DateTime> DateTimePickerPage::Pick(HWND, const DateTime&) { return std::nullopt; }

void DateTimePickerPage::SetOpenObserver(std::function<void(DateTimePickerPage&)> observer) { OpenObserver() = std::move(observer); }

void DateTimePickerPage::Accept() {}
void DateTimePickerPage::Cancel() {}

} // namespace mirodate
