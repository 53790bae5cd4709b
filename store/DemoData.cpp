#include "store/DemoData.h"

#include "platform/Log.h"

#include <string>

namespace mirodate {

namespace {

class Writer {
public:
    Writer(PimSource& source, const DateTime& today) : source_(source), today_(today.StartOfDay()) {}

    DateTime Day(int offset, int hour = 0, int minute = 0) const {
        return today_ + DateTimeSpan(offset, hour, minute, 0);
    }

    std::int32_t Meeting(int day, int hour, int minute, int minutes, const char16_t* subject,
                         const char16_t* location = u"", const char16_t* categories = u"") {
        PimRecord r = Appointment(subject, location, categories);
        r.start = Day(day, hour, minute).ToDate();
        r.end = (Day(day, hour, minute) + DateTimeSpan(0, 0, minutes, 0)).ToDate();
        return Save(r, kFolderCalendar);
    }

    std::int32_t AllDay(int day, int days, const char16_t* subject, const char16_t* categories = u"") {
        PimRecord r = Appointment(subject, u"", categories);
        r.allDay = true;
        r.start = Day(day).ToDate();
        r.end = Day(day + days).ToDate();
        return Save(r, kFolderCalendar);
    }

    std::int32_t Span(const DateTime& start, const DateTime& end, const char16_t* subject) {
        PimRecord r = Appointment(subject, u"", u"Travel");
        r.start = start.ToDate();
        r.end = end.ToDate();
        return Save(r, kFolderCalendar);
    }

    std::int32_t Weekly(int day, int hour, int minutes, const char16_t* subject, const char16_t* location) {
        PimRecord r = Appointment(subject, location, u"Sport");
        r.start = Day(day, hour).ToDate();
        r.end = (Day(day, hour) + DateTimeSpan(0, 0, minutes, 0)).ToDate();
        r.isRecurring = true;
        r.recurrence.RecurrenceType = RecurrencePattern::kWeekly;
        r.recurrence.Interval = 1;
        r.recurrence.DayOfWeekMask = 1 << Day(day).GetDayOfWeek();
        r.recurrence.Occurrences = 12;
        r.recurrence.NoEndDate = false;
        return Save(r, kFolderCalendar);
    }

    std::int32_t Task(const char16_t* subject, int startDay, int dueDay, bool complete, int importance,
                      const char16_t* categories = u"") {
        PimRecord r;
        r.itemKind = kItemTask;
        r.subject = subject;
        r.categories = categories;
        r.startDate = startDay == kNone ? kNoDate : Day(startDay).ToDate();
        r.dueDate = dueDay == kNone ? kNoDate : Day(dueDay).ToDate();
        r.complete = complete;
        r.importance = importance;
        return Save(r, kFolderTasks);
    }

    std::int32_t Contact(const char16_t* name, double birthday, bool birthdayHasYear, double anniversary) {
        PimRecord r;
        r.itemKind = kItemContact;
        r.subject = name;
        r.birthday = birthday;
        r.birthdayHasYear = birthdayHasYear;
        r.anniversary = anniversary;
        return Save(r, kFolderContacts);
    }

    SaveResult Occurrence(std::int32_t oid, const DateTime& original, const PimRecord* moved) {
        const SaveResult result = source_.SaveOccurrence(oid, original.ToDate(), moved);
        if (result != SaveResult::Saved)
            failed_ = true;
        return result;
    }

    static constexpr int kNone = 100000;
    int count = 0;
    bool Failed() const { return failed_; }

private:
    static PimRecord Appointment(const char16_t* subject, const char16_t* location,
                                 const char16_t* categories) {
        PimRecord r;
        r.itemKind = kItemAppointment;
        r.subject = subject;
        r.location = location;
        r.categories = categories;
        return r;
    }

    std::int32_t Save(PimRecord& r, int folder) {
        if (source_.Save(r, folder) != SaveResult::Saved) {
            failed_ = true;
            return -1;
        }
        ++count;
        return r.oid;
    }

    PimSource& source_;
    DateTime today_;
    bool failed_ = false;
};

// A date `years` before the day `offset` days from today.
double YearsBefore(const Writer& w, int offset, int years) {
    const DateTime d = w.Day(offset);
    const int day = std::min(d.GetDay(), DaysInMonth(d.GetYear() - years, d.GetMonth()));
    return DateTime(d.GetYear() - years, d.GetMonth(), day).ToDate();
}

} // namespace

int DemoData::Fill(PimSource& source, const DateTime& today) {
    Writer w(source, today);
    w.Meeting(-9, 10, 0, 60, u"Quarterly planning", u"Room 4.12", u"Work");
    w.Meeting(-4, 16, 0, 60, u"Budget review", u"Room 2.01", u"Work");
    w.Meeting(-1, 8, 30, 30, u"Stand-up", u"", u"Work");
    w.Meeting(0, 9, 0, 60, u"Team meeting", u"Room 2.01", u"Work");
    w.Meeting(0, 12, 30, 60, u"Lunch with Sam", u"Cafe Linde", u"Private");
    w.Meeting(1, 14, 0, 90, u"Dentist", u"Dr. Weber, Hauptstr. 5", u"Health");
    w.Meeting(3, 11, 0, 45, u"Call with the bank", u"+49 30 1234567", u"Private");
    w.Meeting(6, 10, 0, 120, u"Project kickoff", u"Room 4.12", u"Work");
    w.Meeting(8, 19, 30, 150, u"Concert: Brahms 4", u"Philharmonie", u"Private");
    w.Meeting(13, 15, 0, 60, u"Parents' evening", u"School", u"Family");
    w.Meeting(17, 9, 30, 60, u"Car service", u"Garage Nord", u"Private");
    w.AllDay(5, 1, u"Mum visits", u"Family");
    w.AllDay(10, 3, u"Conference in Lyon", u"Work");
    w.AllDay(-6, 1, u"Public holiday");
    w.Span(w.Day(15, 22, 0), w.Day(16, 7, 15), u"Night train to Vienna");

    // A weekly series with one occurrence moved and one cancelled.
    const std::int32_t yoga = w.Weekly(-12, 18, 60, u"Yoga", u"Studio Ost");
    if (yoga >= 0) {
        PimRecord moved;
        moved.itemKind = kItemAppointment;
        moved.subject = u"Yoga (moved)";
        moved.location = u"Studio Ost";
        moved.categories = u"Sport";
        moved.start = w.Day(-12 + 14 + 1, 19, 0).ToDate();
        moved.end = w.Day(-12 + 14 + 1, 20, 0).ToDate();
        w.Occurrence(yoga, w.Day(-12 + 14, 18, 0), &moved);
        w.Occurrence(yoga, w.Day(-12 + 21, 18, 0), nullptr);
    }

    w.Task(u"Pay the electricity bill", Writer::kNone, -2, false, 2, u"Private");
    w.Task(u"Renew passport", 0, 6, false, 1, u"Private");
    w.Task(u"Prepare kickoff slides", 1, 5, false, 2, u"Work");
    w.Task(u"Buy a present for Anna", Writer::kNone, 3, true, 1, u"Family");
    w.Task(u"File the tax return", 0, 20, false, 1, u"Private");
    w.Task(u"Read \"The Overstory\"", Writer::kNone, Writer::kNone, false, 0);
    w.Task(u"Call the plumber", Writer::kNone, Writer::kNone, false, 2);

    w.Contact(u"Anna Berg", YearsBefore(w, 4, 34), true, kNoDate);
    w.Contact(u"Ben Ortiz", w.Day(11).ToDate(), false, kNoDate);
    w.Contact(u"Clara and Dan Meyer", kNoDate, true, YearsBefore(w, 7, 10));
    w.Contact(u"Grandpa Joe", YearsBefore(w, -3, 81), true, kNoDate);
    if (w.Failed()) {
        Log::Error("demo: some items could not be written");
        return -1;
    }
    return w.count;
}

} // namespace mirodate
