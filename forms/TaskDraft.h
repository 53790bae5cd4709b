#pragma once
// What the task editor edits: a copy of the task's record with the rules
// that keep it consistent (whole days for the start and due dates, either
// of which may be absent; the reminder counted back from the due date) and
// the texts of the editor's rows. Knows nothing of windows; the page draws
// it and the saver writes it.
#include "data/DateTime.h"
#include "data/PimRecord.h"

#include <cstdint>
#include <optional>
#include <string>

namespace mirodate {

class TaskDraft {
public:
    // How the editor was opened.
    enum class Mode {
        New,       // a new task, nothing in the store yet
        Item,      // a task of the store
        Duplicate, // a copy made just before; Cancel removes it
    };
    // The rows, top to bottom.
    enum class Row {
        Subject,
        StartDate,
        DueDate,
        Complete,
        Priority,
        Recurrence,
        Reminder,
        Categories,
        Sensitivity,
        Notes,
    };
    static constexpr Row kRows[] = {Row::Subject,     Row::StartDate,  Row::DueDate,  Row::Complete,
                                    Row::Priority,    Row::Recurrence, Row::Reminder, Row::Categories,
                                    Row::Sensitivity, Row::Notes};

    // A new task due on `day`, without a start date, normal priority, no reminder.
    static TaskDraft NewOn(const DateTime& day);
    static TaskDraft ForRecord(const PimRecord& record, Mode mode);

    Mode GetMode() const { return mode_; }
    const PimRecord& Record() const { return record_; }
    // The record as it was read (for `New`, as made).
    const PimRecord& Original() const { return original_; }
    bool IsChanged() const { return !(record_ == original_); }

    void SetSubject(const std::u16string& text);
    void SetNotes(const std::u16string& text);
    // The day of `date`, or no date for nothing; false (nothing changed) for
    // a day outside the years the editors accept.
    bool SetStartDate(const std::optional<DateTime>& date);
    bool SetDueDate(const std::optional<DateTime>& date);
    void SetComplete(bool complete);
    // 0 low, 1 normal, 2 high.
    void SetImportance(int importance);
    void SetRecurrence(const RecurrencePattern& pattern);
    // The end-of-recurrence menu: after `count` times, on `date`, or never.
    void SetRecurrenceEnd(int count, double date);
    void SetReminder(bool set, std::int64_t leadMinutes);
    // The reminder chosen as a moment; false (the reminder as it was) when
    // there is no due date or the moment lies after it.
    bool SetReminderMoment(const DateTime& moment);
    // The moment the reminder picker opens with: the due date minus the lead time.
    DateTime ReminderMoment() const;
    void SetCategories(const std::u16string& commaSeparated);
    void SetSensitivity(int value);

    bool HasStartDate() const { return record_.startDate != kNoDate; }
    bool HasDueDate() const { return record_.dueDate != kNoDate; }
    // The day a series counts from: the start date, else the due date, else `fallback`.
    DateTime SeriesStart(const DateTime& fallback) const;
    // The task's rule says more than the pattern record can: it is kept as written.
    bool RuleNotEditable() const;
    // The language key of what forbids saving, or empty when it may be saved.
    std::string Problem() const;

    // Row texts.
    static std::u16string Label(Row row);
    std::u16string Value(Row row) const;
    static bool IsTwoLine(Row row) { return row == Row::Reminder || row == Row::Recurrence; }

private:
    static bool InRange(const DateTime& day);
    static std::u16string DateText(double date);

    Mode mode_ = Mode::New;
    PimRecord record_;
    PimRecord original_;
};

} // namespace mirodate
