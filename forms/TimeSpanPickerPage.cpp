#include "forms/TimeSpanPickerPage.h"

namespace mirodate {

// Placeholder until the picker's page is built: it answers Cancel at once.

namespace {
std::function<void(TimeSpanPickerPage&)>& OpenObserver() {
    static std::function<void(TimeSpanPickerPage&)> observer;
    return observer;
}
} // namespace

TimeSpanPickerPage::TimeSpanPickerPage(std::int64_t minutes) : value_(minutes) {}
TimeSpanPickerPage::~TimeSpanPickerPage() = default;

std::optional<std::int64_t> TimeSpanPickerPage::Pick(HWND, std::int64_t) { return std::nullopt; }

void TimeSpanPickerPage::SetOpenObserver(std::function<void(TimeSpanPickerPage&)> observer) { OpenObserver() = std::move(observer); }

void TimeSpanPickerPage::Accept() {}
void TimeSpanPickerPage::Cancel() {}

} // namespace mirodate
