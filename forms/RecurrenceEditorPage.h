#pragma once
// A modal page that edits a recurrence pattern by finger: type, interval,
// days of the week, day of the month, instance, month and the end, with the
// pattern's sentence at the top. Returns nothing when the user cancels.
//
// A rule the record can only approximate (written by another program) shows
// the generic sentence and a warning; until the user changes something, OK
// returns the pattern exactly as it came, so that the store leaves the rule
// as it was written. When the series has cancelled or moved occurrences,
// OK first asks before a new pattern leaves any of them behind.
#include "data/DateTime.h"
#include "data/RecurrencePattern.h"
#include "forms/RecurrenceEditorRows.h"
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace mirodate {

class RecurrenceEditorPage : public DialogWnd {
public:
    using Row = RecurrenceEditorRows::Row;
    // Deferred commands of the page's menus.
    static constexpr UINT kCmdTypeBase = 0x7A00;
    static constexpr UINT kCmdEndBase = 0x7A20;
    static constexpr UINT kCmdInstanceBase = 0x7A40;
    static constexpr UINT kCmdMonthBase = 0x7A60;

    RecurrenceEditorPage(const RecurrencePattern& pattern, const DateTime& start);
    ~RecurrenceEditorPage() override;

    // The edited pattern (RecurrenceType kNotRecurring for "once"), or
    // nothing on Cancel. `start` is the item's first start.
    static std::optional<RecurrencePattern> Edit(HWND owner, const RecurrencePattern& pattern,
                                                 const DateTime& start);
    // The same for a series whose file cancels or moves the occurrences
    // starting at `exceptions` (local DATEs, see SeriesExceptions::ReadFile).
    static std::optional<RecurrencePattern> Edit(HWND owner, const RecurrencePattern& pattern,
                                                 const DateTime& start, std::vector<double> exceptions);

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(RecurrenceEditorPage& page)> observer);

    const RecurrencePattern& Value() const { return value_; }
    void SetValue(const RecurrencePattern& pattern);
    void SetExceptions(std::vector<double> exceptions) { exceptions_ = std::move(exceptions); }
    // Ends the page with the current value (OK) or with nothing (Cancel).
    // OK is refused while the end lies before the start, and waits for the
    // user's yes before exceptions are left behind.
    void Accept();
    void Cancel();

    // The edits a finger makes, for keys and tests alike.
    void SetType(int type);
    void SetEnd(int end);
    void SetEndDate(const DateTime& day);
    void Step(Row row, int delta);
    void ToggleDay(int dayOfWeek);
    // Whether the page has been changed since it opened.
    bool Changed() const { return changed_; }
    // The sentence at the top, and whether the warning under it is shown.
    const std::u16string& Sentence() const { return sentence_; }
    bool ShowsWarning() const;
    // Screen rectangles of what a finger taps: a row (its menu or picker), a
    // stepper's minus or plus, a day toggle, and OK and Cancel.
    RECT RowScreenRect(Row row) const;
    RECT StepperScreenRect(Row row, int delta) const;
    RECT DayScreenRect(int dayOfWeek) const;
    RECT ButtonScreenRect(bool ok) const;

    BOOL OnInitDialog() override;
    void OnDialogReady() override;
    void OnPaint(HDC dc) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnDeferredCommand(UINT id) override;
    void OnScreenReset() override;

private:
    struct Target {
        RECT rect;
        Row row;
        int action; // 0 the row itself, -1/+1 a stepper, 10 + weekday a day toggle
    };
    static constexpr int kDayAction = 10;

    void Layout();
    void Edited();
    void OpenMenu(Row row);
    void PickEndDate();
    RECT ToScreen(RECT rect) const;
    void PaintRow(Dc& dc, Row row, const RECT& rect);

    RecurrencePattern original_;
    RecurrencePattern value_;
    DateTime start_;
    std::vector<double> exceptions_;
    bool changed_ = false;
    std::u16string sentence_;
    std::vector<Row> rows_;
    std::vector<RECT> rowRects_;
    std::vector<Target> targets_;
    RECT sentenceRect_{};
    RECT warningRect_{};
    ButtonWnd ok_;
    ButtonWnd cancel_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> boldFont_;
};

} // namespace mirodate
