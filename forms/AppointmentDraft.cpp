#include "forms/AppointmentDraft.h"

#include "data/EditorTexts.h"
#include "forms/AttachmentUri.h"
#include "forms/RecordEdits.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"

#include <algorithm>
#include <cmath>

namespace mirodate {

namespace {
constexpr double kMinutesPerDay = 24.0 * 60.0;
constexpr int kBusy = 2;
// A timed item made from an all-day one starts at this hour.
constexpr int kDefaultHour = 9;
constexpr char16_t kPersonSeparator = u'~';
constexpr char16_t kFieldSeparator = u'|';

std::u16string Cut(const std::u16string& text, std::size_t limit) {
    if (text.size() <= limit)
        return text;
    std::size_t size = limit;
    // Never split a surrogate pair.
    if (size > 0 && IsHighSurrogate(text[size - 1]))
        --size;
    return text.substr(0, size);
}

// Separators of the people text and line breaks cannot be part of a name.
std::u16string CleanField(const std::u16string& text) {
    std::u16string out = Cut(text, AppointmentDraft::kMaxLineText);
    for (char16_t& c : out)
        if (c == kPersonSeparator || c == kFieldSeparator || c < u' ')
            c = u' ';
    return out;
}

double Minutes(double minutes) {
    return minutes / kMinutesPerDay;
}

DateTime Midnight(double date) {
    const DateTime d(date);
    return DateTime(d.GetYear(), d.GetMonth(), d.GetDay());
}
} // namespace

AppointmentDraft AppointmentDraft::NewOn(const DateTime& day, const DateTime& now) {
    AppointmentDraft draft;
    PimRecord& r = draft.record_;
    r.itemKind = 1;
    const bool today =
        day.GetYear() == now.GetYear() && day.GetMonth() == now.GetMonth() && day.GetDay() == now.GetDay();
    const int hour = std::min(23, today ? now.GetHour() + 1 : now.GetHour());
    DateTime start(day.GetYear(), day.GetMonth(), day.GetDay(), hour, 0, 0);
    if (!start.IsValid())
        start = DateTime(day.GetYear(), day.GetMonth(), day.GetDay(), kDefaultHour, 0, 0);
    r.start = start.ToDate();
    r.end = r.start + Minutes(Settings::GetDefaultSpan());
    r.reminderSet = Settings::GetDefaultReminderEnable();
    r.reminderMinutes = r.reminderSet ? static_cast<int>(Settings::GetDefaultReminder()) : 0;
    r.busyStatus = kBusy;
    draft.original_ = r;
    return draft;
}

AppointmentDraft AppointmentDraft::ForRecord(const PimRecord& record, Mode mode, double occurrenceStart,
                                             double occurrenceEnd) {
    AppointmentDraft draft;
    draft.mode_ = mode;
    draft.record_ = record;
    if (mode == Mode::Occurrence) {
        draft.occurrenceStart_ = occurrenceStart;
        draft.record_.start = occurrenceStart;
        draft.record_.end = occurrenceEnd;
    }
    draft.original_ = draft.record_;
    return draft;
}

bool AppointmentDraft::InRange(const DateTime& moment) {
    return moment.IsValid() && moment.GetYear() >= kFirstYear && moment.GetYear() <= kLastYear;
}

void AppointmentDraft::SetSubject(const std::u16string& text) {
    record_.subject = Cut(text, kMaxLineText);
}
void AppointmentDraft::SetLocation(const std::u16string& text) {
    record_.location = Cut(text, kMaxLineText);
}
void AppointmentDraft::SetNotes(const std::u16string& text) {
    record_.body = Cut(text, kMaxNotes);
}

bool AppointmentDraft::SetStart(const DateTime& start) {
    if (!InRange(start))
        return false;
    const double length = record_.end - record_.start;
    double value = start.ToDate();
    if (record_.allDay)
        value = Midnight(value).ToDate();
    record_.start = value;
    record_.end = value + std::max(0.0, length);
    return true;
}

bool AppointmentDraft::SetEnd(const DateTime& end) {
    if (!InRange(end))
        return false;
    // An all-day item's end is shown as its last day and kept as the
    // midnight after it.
    record_.end = record_.allDay ? Midnight(end.ToDate()).ToDate() + 1.0 : end.ToDate();
    return true;
}

void AppointmentDraft::SetAllDay(bool allDay) {
    if (allDay == record_.allDay)
        return;
    if (allDay) {
        timedSpan_ = record_.end - record_.start;
        const double first = Midnight(record_.start).ToDate();
        // The days it touches; an end at midnight does not touch that day.
        double last = Midnight(record_.end).ToDate();
        if (last == record_.end && last > first)
            last -= 1.0;
        record_.start = first;
        record_.end = std::max(first, last) + 1.0;
    } else {
        const DateTime day(record_.start);
        record_.start = DateTime(day.GetYear(), day.GetMonth(), day.GetDay(), kDefaultHour, 0, 0).ToDate();
        record_.end =
            record_.start +
            (timedSpan_ > 0.0 && timedSpan_ < 1.0 ? timedSpan_ : Minutes(Settings::GetDefaultSpan()));
    }
    record_.allDay = allDay;
}

void AppointmentDraft::SetRecurrence(const RecurrencePattern& pattern) {
    RecordEdits::SetRecurrence(record_, pattern);
}
void AppointmentDraft::SetRecurrenceEnd(int count, double date) {
    RecordEdits::SetRecurrenceEnd(record_, count, date);
}
void AppointmentDraft::SetReminder(bool set, std::int64_t leadMinutes) {
    RecordEdits::SetReminder(record_, set, leadMinutes);
}

bool AppointmentDraft::SetReminderMoment(const DateTime& moment) {
    std::int64_t lead = 0;
    if (!moment.IsValid() || !EditorTexts::LeadTimeForMoment(record_.start, moment.ToDate(), lead))
        return false;
    SetReminder(true, lead);
    return true;
}

DateTime AppointmentDraft::ReminderMoment() const {
    const int lead = record_.reminderSet ? record_.reminderMinutes : 0;
    return DateTime(record_.start) - DateTimeSpan(0, 0, lead, 0);
}

void AppointmentDraft::SetCategories(const std::u16string& commaSeparated) {
    record_.categories = commaSeparated;
}
void AppointmentDraft::SetBusyStatus(int value) {
    record_.busyStatus = std::clamp(value, 0, 3);
}
void AppointmentDraft::SetSensitivity(int value) {
    record_.sensitivity = std::clamp(value, 0, 3);
}
void AppointmentDraft::SetAttendees(const std::u16string& people) {
    record_.attendees = people;
}
void AppointmentDraft::SetAttachments(std::vector<std::u16string> attachments) {
    record_.attachments = std::move(attachments);
}

bool AppointmentDraft::RuleNotEditable() const {
    return RecordEdits::RuleNotEditable(record_);
}

std::string AppointmentDraft::Problem() const {
    if (!InRange(DateTime(record_.start)) || !InRange(DateTime(record_.end)))
        return "editor.DateOutOfRange";
    if (record_.end < record_.start)
        return "editor.EndBeforeStart";
    return {};
}

std::u16string AppointmentDraft::Label(Row row, const PimRecord& record) {
    switch (row) {
    case Row::Subject:
        return Lang("addmodify.Subject");
    case Row::Location:
        return Lang("addmodify.Location");
    case Row::Start:
        return Lang("addmodify.Start");
    case Row::End:
        return Lang("addmodify.End");
    case Row::AllDay:
        return Lang(record.isRecurring ? "AlldayRecurring" : "AlldayEvent");
    case Row::Recurrence:
        return Lang("addmodify.EditPattern");
    case Row::Reminder:
        return Lang("addmodify.Reminder");
    case Row::Categories:
        return Lang("addmodify.Categories");
    case Row::BusyStatus:
        return Lang("addmodify.BusyStatus");
    case Row::Sensitivity:
        return Lang("addmodify.Sensitivity");
    case Row::Attendees:
        return Lang("addmodify.Attendees");
    case Row::Attachments:
        return Lang("addmodify.Attachments");
    case Row::Notes:
        return Lang("addmodify.Notes");
    }
    return {};
}

std::u16string AppointmentDraft::DateTimeText(double date, bool endOfAllDay) const {
    DateTime moment(date);
    if (endOfAllDay)
        moment = DateTime(date - 1.0);
    const SYSTEMTIME st = moment.ToSystemTime();
    std::u16string text = Locale::DayName(moment.GetDayOfWeek(), true) + u" " + Locale::FormatShortDate(st);
    if (!record_.allDay)
        text += u" " + Locale::FormatShortTime(st);
    return text;
}

std::u16string AppointmentDraft::Value(Row row) const {
    switch (row) {
    case Row::Subject:
        return record_.subject;
    case Row::Location:
        return record_.location;
    case Row::Start:
        return DateTimeText(record_.start, false);
    case Row::End:
        return DateTimeText(record_.end, record_.allDay && record_.end > record_.start);
    case Row::AllDay:
        return record_.allDay ? u"\u2611" : u"\u2610";
    case Row::Recurrence: {
        if (mode_ == Mode::Occurrence)
            return Lang("editor.SingleOccurrence");
        return RecordEdits::RecurrenceText(record_);
    }
    case Row::Reminder:
        return EditorTexts::ReminderText(record_.reminderSet, record_.reminderMinutes);
    case Row::Categories:
        return record_.categories.empty() ? u"-" : record_.categories;
    case Row::BusyStatus:
        return EditorTexts::BusyStatusLabel(record_.busyStatus);
    case Row::Sensitivity:
        return EditorTexts::SensitivityLabel(record_.sensitivity);
    case Row::Attendees: {
        std::u16string text;
        for (const Person& p : SplitPeople(record_.attendees))
            text += (text.empty() ? u"" : u", ") + (p.name.empty() ? p.address : p.name);
        return text.empty() ? u"-" : text;
    }
    case Row::Attachments: {
        std::u16string text;
        for (const std::u16string& a : record_.attachments)
            text += (text.empty() ? u"" : u", ") + std::u16string(u"[FILE] ") + AttachmentUri::DisplayName(a);
        return text.empty() ? u"-" : text;
    }
    case Row::Notes:
        return record_.body.empty() ? u"-" : record_.body;
    }
    return {};
}

std::vector<AppointmentDraft::Person> AppointmentDraft::SplitPeople(const std::u16string& text) {
    std::vector<Person> people;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find(kPersonSeparator, start);
        if (end == std::u16string::npos)
            end = text.size();
        const std::u16string entry = text.substr(start, end - start);
        if (!entry.empty()) {
            const std::size_t bar = entry.find(kFieldSeparator);
            Person person{entry.substr(0, bar), {}};
            if (bar != std::u16string::npos)
                person.address = entry.substr(bar + 1);
            people.push_back(std::move(person));
        }
        start = end + 1;
    }
    return people;
}

std::u16string AppointmentDraft::JoinPeople(const std::vector<Person>& people) {
    std::u16string text;
    for (const Person& p : people) {
        if (!text.empty())
            text += kPersonSeparator;
        text += CleanField(p.name) + kFieldSeparator + CleanField(p.address);
    }
    return text;
}

} // namespace mirodate
