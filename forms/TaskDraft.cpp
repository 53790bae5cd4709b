#include "forms/TaskDraft.h"

#include "data/EditorTexts.h"
#include "forms/AppointmentDraft.h"
#include "forms/RecordEdits.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/TextUtil.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kLow = 0;
constexpr int kNormal = 1;
constexpr int kHigh = 2;

std::u16string Cut(const std::u16string& text, std::size_t limit) {
    if (text.size() <= limit)
        return text;
    std::size_t size = limit;
    // Never split a surrogate pair.
    if (size > 0 && IsHighSurrogate(text[size - 1]))
        --size;
    return text.substr(0, size);
}
} // namespace

TaskDraft TaskDraft::NewOn(const DateTime& day) {
    TaskDraft draft;
    PimRecord& r = draft.record_;
    r.itemKind = 3;
    r.importance = kNormal;
    if (InRange(day))
        r.dueDate = day.StartOfDay().ToDate();
    draft.original_ = r;
    return draft;
}

TaskDraft TaskDraft::ForRecord(const PimRecord& record, Mode mode) {
    TaskDraft draft;
    draft.mode_ = mode;
    draft.record_ = record;
    draft.original_ = record;
    return draft;
}

bool TaskDraft::InRange(const DateTime& day) {
    return day.IsValid() && day.GetYear() >= AppointmentDraft::kFirstYear &&
           day.GetYear() <= AppointmentDraft::kLastYear;
}

void TaskDraft::SetSubject(const std::u16string& text) {
    record_.subject = Cut(text, AppointmentDraft::kMaxLineText);
}
void TaskDraft::SetNotes(const std::u16string& text) {
    record_.body = Cut(text, AppointmentDraft::kMaxNotes);
}

bool TaskDraft::SetStartDate(const std::optional<DateTime>& date) {
    if (date && !InRange(*date))
        return false;
    record_.startDate = date ? date->StartOfDay().ToDate() : kNoDate;
    return true;
}

bool TaskDraft::SetDueDate(const std::optional<DateTime>& date) {
    if (date && !InRange(*date))
        return false;
    record_.dueDate = date ? date->StartOfDay().ToDate() : kNoDate;
    return true;
}

void TaskDraft::SetComplete(bool complete) {
    record_.complete = complete;
}
void TaskDraft::SetImportance(int importance) {
    record_.importance = std::clamp(importance, kLow, kHigh);
}

void TaskDraft::SetRecurrence(const RecurrencePattern& pattern) {
    RecordEdits::SetRecurrence(record_, pattern);
}
void TaskDraft::SetRecurrenceEnd(int count, double date) {
    RecordEdits::SetRecurrenceEnd(record_, count, date);
}
void TaskDraft::SetReminder(bool set, std::int64_t leadMinutes) {
    RecordEdits::SetReminder(record_, set, leadMinutes);
}

bool TaskDraft::SetReminderMoment(const DateTime& moment) {
    std::int64_t lead = 0;
    if (!HasDueDate() || !moment.IsValid() ||
        !EditorTexts::LeadTimeForMoment(record_.dueDate, moment.ToDate(), lead))
        return false;
    SetReminder(true, lead);
    return true;
}

DateTime TaskDraft::ReminderMoment() const {
    const int lead = record_.reminderSet ? record_.reminderMinutes : 0;
    return DateTime(HasDueDate() ? record_.dueDate : DateTime::Today().ToDate()) -
           DateTimeSpan(0, 0, lead, 0);
}

void TaskDraft::SetCategories(const std::u16string& commaSeparated) {
    record_.categories = commaSeparated;
}
void TaskDraft::SetSensitivity(int value) {
    record_.sensitivity = std::clamp(value, 0, 3);
}

DateTime TaskDraft::SeriesStart(const DateTime& fallback) const {
    if (HasStartDate())
        return DateTime(record_.startDate);
    if (HasDueDate())
        return DateTime(record_.dueDate);
    return fallback;
}

bool TaskDraft::RuleNotEditable() const {
    return RecordEdits::RuleNotEditable(record_);
}

std::string TaskDraft::Problem() const {
    if ((HasStartDate() && !InRange(DateTime(record_.startDate))) ||
        (HasDueDate() && !InRange(DateTime(record_.dueDate))))
        return "editor.DateOutOfRange";
    if (HasStartDate() && HasDueDate() && record_.dueDate < record_.startDate)
        return "editor.DueBeforeStart";
    // The reminder is counted back from the due date.
    if (record_.reminderSet && !HasDueDate())
        return "editor.ReminderNeedsDue";
    // A series counts from a date.
    if (record_.isRecurring && !HasStartDate() && !HasDueDate())
        return "editor.RecurrenceNeedsDate";
    return {};
}

std::u16string TaskDraft::Label(Row row) {
    switch (row) {
    case Row::Subject:
        return Lang("addmodify.Subject");
    case Row::StartDate:
        return Lang("StartDate");
    case Row::DueDate:
        return Lang("DueDate");
    case Row::Complete:
        return Lang("addmodify.Complete");
    case Row::Priority:
        return Lang("Priority");
    case Row::Recurrence:
        return Lang("addmodify.EditPattern");
    case Row::Reminder:
        return Lang("addmodify.Reminder");
    case Row::Categories:
        return Lang("addmodify.Categories");
    case Row::Sensitivity:
        return Lang("addmodify.Sensitivity");
    case Row::Notes:
        return Lang("addmodify.Notes");
    }
    return {};
}

std::u16string TaskDraft::DateText(double date) {
    if (date == kNoDate)
        return Lang("editor.NoDate");
    const DateTime day(date);
    return Locale::DayName(day.GetDayOfWeek(), true) + u" " + Locale::FormatShortDate(day.ToSystemTime());
}

std::u16string TaskDraft::Value(Row row) const {
    switch (row) {
    case Row::Subject:
        return record_.subject;
    case Row::StartDate:
        return DateText(record_.startDate);
    case Row::DueDate:
        return DateText(record_.dueDate);
    case Row::Complete:
        return record_.complete ? u"\u2611" : u"\u2610";
    case Row::Priority:
        return EditorTexts::PriorityLabel(std::clamp(record_.importance, kLow, kHigh));
    case Row::Recurrence:
        return RecordEdits::RecurrenceText(record_);
    case Row::Reminder:
        return EditorTexts::ReminderText(record_.reminderSet, record_.reminderMinutes);
    case Row::Categories:
        return record_.categories.empty() ? u"-" : record_.categories;
    case Row::Sensitivity:
        return EditorTexts::SensitivityLabel(record_.sensitivity);
    case Row::Notes:
        return record_.body.empty() ? u"-" : record_.body;
    }
    return {};
}

} // namespace mirodate
