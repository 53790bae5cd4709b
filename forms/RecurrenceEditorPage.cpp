#include "forms/RecurrenceEditorPage.h"

namespace mirodate {

// Placeholder until the editor's page is built: it answers Cancel at once.

namespace {
std::function<void(RecurrenceEditorPage&)>& OpenObserver() {
    static std::function<void(RecurrenceEditorPage&)> observer;
    return observer;
}
} // namespace

RecurrenceEditorPage::RecurrenceEditorPage(const RecurrencePattern& pattern, const DateTime& start)
    : value_(pattern), start_(start) {}
RecurrenceEditorPage::~RecurrenceEditorPage() = default;

std::optional<RecurrencePattern> RecurrenceEditorPage::Edit(HWND, const RecurrencePattern&, const DateTime&) {
    return std::nullopt;
}

void RecurrenceEditorPage::SetOpenObserver(std::function<void(RecurrenceEditorPage&)> observer) {
    OpenObserver() = std::move(observer);
}

void RecurrenceEditorPage::Accept() {}
void RecurrenceEditorPage::Cancel() {}

} // namespace mirodate
