#pragma once
// What the appointment editor edits: a copy of the item's record with the
// rules that keep it consistent (the end moves with the start, all-day items
// run midnight to midnight, the reminder chosen as a moment) and the texts
// of the editor's rows. Knows nothing of windows; the page draws it and the
// saver writes it.
#include "data/DateTime.h"
#include "data/PimRecord.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

class AppointmentDraft {
public:
    // How the editor was opened.
    enum class Mode {
        New,        // a new appointment, nothing in the store yet
        Item,       // the item itself (a series: every occurrence)
        Occurrence, // one occurrence of a series, saved as an override
        Duplicate,  // a copy made just before; Cancel removes it
    };
    // The rows, top to bottom.
    enum class Row {
        Subject,
        Location,
        Start,
        End,
        AllDay,
        Recurrence,
        Reminder,
        Categories,
        BusyStatus,
        Sensitivity,
        Attendees,
        Attachments,
        Notes,
    };
    static constexpr Row kRows[] = {Row::Subject,    Row::Location,    Row::Start,     Row::End,
                                    Row::AllDay,     Row::Recurrence,  Row::Reminder,  Row::Categories,
                                    Row::BusyStatus, Row::Sensitivity, Row::Attendees, Row::Attachments,
                                    Row::Notes};

    // Subjects and locations longer than this are cut: a pasted page of text
    // must not become a subject line nobody can show.
    static constexpr std::size_t kMaxLineText = 255;
    static constexpr std::size_t kMaxNotes = 32768;
    // Years the pickers and typed dates may reach.
    static constexpr int kFirstYear = 1900;
    static constexpr int kLastYear = 2100;

    // A new appointment on `day`: at the next full hour after `now` when the
    // day is today, else at the same hour of that day; `DefaultSpan`
    // minutes long; a reminder of `DefaultReminder` minutes when
    // `DefaultReminderEnable` is set.
    static AppointmentDraft NewOn(const DateTime& day, const DateTime& now);
    // An item of the store. For `Occurrence`, `occurrenceStart` and
    // `occurrenceEnd` are the chosen occurrence's times.
    static AppointmentDraft ForRecord(const PimRecord& record, Mode mode, double occurrenceStart = 0.0,
                                      double occurrenceEnd = 0.0);

    Mode GetMode() const { return mode_; }
    const PimRecord& Record() const { return record_; }
    // The record as it was read (for `New`, as made).
    const PimRecord& Original() const { return original_; }
    // The occurrence's start as the series gives it (mode Occurrence).
    double OccurrenceStart() const { return occurrenceStart_; }
    bool IsChanged() const { return !(record_ == original_); }

    void SetSubject(const std::u16string& text);
    void SetLocation(const std::u16string& text);
    void SetNotes(const std::u16string& text);
    // False (nothing changed) for a moment outside kFirstYear..kLastYear.
    // The end keeps its distance to the start.
    bool SetStart(const DateTime& start);
    // The end as given; an end before the start is refused only on save, so
    // that the user can set the end first and then the start.
    bool SetEnd(const DateTime& end);
    void SetAllDay(bool allDay);
    void SetRecurrence(const RecurrencePattern& pattern);
    // The end-of-recurrence menu: after `count` times, on `date`, or never.
    void SetRecurrenceEnd(int count, double date);
    void SetReminder(bool set, std::int64_t leadMinutes);
    // The reminder chosen as a moment; false (the reminder as it was) when
    // the moment lies after the start.
    bool SetReminderMoment(const DateTime& moment);
    // The moment the reminder picker opens with: start minus lead time.
    DateTime ReminderMoment() const;
    void SetCategories(const std::u16string& commaSeparated);
    void SetBusyStatus(int value);
    void SetSensitivity(int value);
    // "name|address" joined by "~", as PimRecord keeps them.
    void SetAttendees(const std::u16string& people);
    void SetAttachments(std::vector<std::u16string> attachments);
    bool AttendeesChanged() const { return record_.attendees != original_.attendees; }

    // The series' rule says more than the pattern record can: the rule is
    // kept as written while its other fields are edited.
    bool RuleNotEditable() const;
    // The language key of what forbids saving, or empty when it may be saved.
    std::string Problem() const;

    // Row texts.
    static std::u16string Label(Row row, const PimRecord& record);
    std::u16string Label(Row row) const { return Label(row, record_); }
    std::u16string Value(Row row) const;
    // Whether a row shows its label over a value of several lines (the
    // reminder and the recurrence rows).
    static bool IsTwoLine(Row row) { return row == Row::Reminder || row == Row::Recurrence; }

    // Splits the record's people text.
    struct Person {
        std::u16string name;
        std::u16string address;
        friend bool operator==(const Person&, const Person&) = default;
    };
    static std::vector<Person> SplitPeople(const std::u16string& text);
    static std::u16string JoinPeople(const std::vector<Person>& people);

private:
    static bool InRange(const DateTime& moment);
    std::u16string DateTimeText(double date, bool endOfAllDay) const;

    Mode mode_ = Mode::New;
    PimRecord record_;
    PimRecord original_;
    double occurrenceStart_ = 0.0;
    double timedSpan_ = 0.0; // the length the item had before it became all-day
};

} // namespace mirodate
