#pragma once
// A modal page that edits a recurrence pattern by finger: type, interval,
// days of the week, day of the month, instance, month and the end, with the
// pattern's sentence at the top. Returns nothing when the user cancels.
#include "data/DateTime.h"
#include "data/RecurrencePattern.h"
#include "ui/DialogWnd.h"

#include <functional>
#include <optional>

namespace mirodate {

class RecurrenceEditorPage : public DialogWnd {
public:
    RecurrenceEditorPage(const RecurrencePattern& pattern, const DateTime& start);
    ~RecurrenceEditorPage() override;

    // The edited pattern (RecurrenceType kNotRecurring for "once"), or
    // nothing on Cancel. `start` is the item's first start.
    static std::optional<RecurrencePattern> Edit(HWND owner, const RecurrencePattern& pattern, const DateTime& start);

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(RecurrenceEditorPage& page)> observer);

    const RecurrencePattern& Value() const { return value_; }
    void SetValue(const RecurrencePattern& pattern) { value_ = pattern; }
    // Ends the page with the current value (OK) or with nothing (Cancel).
    void Accept();
    void Cancel();

private:
    RecurrencePattern value_;
    DateTime start_;
};

} // namespace mirodate
