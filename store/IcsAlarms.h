#pragma once
// The alarms (VALARM) of one .ics item and the reminders they make: DISPLAY
// and AUDIO alarms with triggers relative to the start or the end (a task's
// due date) or at a fixed time, on every occurrence of a series, an
// occurrence that carries alarms of its own using those. An alarm that was
// acknowledged (ACKNOWLEDGED on the alarm, X-MOZ-LASTACK on its item) at or
// after its moment is done; snoozed alarms come back as alarms related to
// the snoozed one (RELTYPE=SNOOZE), with X-MOZ-SNOOZE-TIME for readers that
// keep the snooze on the item. Writing back changes only those properties.
#include "data/PimRecord.h"
#include "data/Reminder.h"

#include <string>
#include <string_view>
#include <vector>

namespace mirodate {

class IcsItem;

class IcsAlarms {
public:
    // Alarms read from one item; the rest are ignored (and logged), so that
    // a file of a hundred thousand alarms costs no more than a busy one.
    static constexpr int kMaxAlarms = 100;
    // A trigger further than this from its item is a mistake, not a
    // reminder: ignored. (Calendars offer four weeks at most.) Fixed-time
    // alarms count from the item's start the same way.
    static constexpr double kMaxOffsetDays = 31.0;

    // Whether the text may hold an alarm at all: a cheap test that spares
    // parsing the files that hold none.
    static bool MayHaveAlarms(std::string_view text);

    // Reads the alarms; false when the text holds none that could fire.
    bool Parse(std::string_view text);

    // Appends the reminders of the item due in [from, before). `record` is
    // the item as the store holds it; `series` its parsed file when it is a
    // series (null otherwise).
    void Collect(const PimRecord& record, const IcsItem* series, double from, double before,
                 std::vector<Reminder>& out) const;

    // `existing` with `reminder` acknowledged at `now`; false when the file
    // does not parse or does not hold that alarm.
    static bool Dismiss(std::string_view existing, const Reminder& reminder, double now, std::string& out);
    // `existing` with `reminder` acknowledged at `now` and a snooze alarm at
    // `until`.
    static bool Snooze(std::string_view existing, const Reminder& reminder, double now, double until,
                       std::string& out);

private:
    struct Alarm {
        std::string key;         // UID or "#N"
        bool absolute = false;   // fixed time, in `at`
        bool relatedEnd = false; // relative to the end (due)
        bool snooze = false;     // a snooze alarm
        bool audio = false;
        double offset = 0.0;                // days from start or end
        double at = 0.0;                    // the fixed moment
        double acknowledged = 0.0;          // local DATE; 0 when never
        double snoozedOccurrence = kNoDate; // a series' occurrence a snooze belongs to
    };
    // The item's main component (first) and its overrides.
    struct Part {
        double recurrenceId = kNoDate; // an override's original start
        double start = kNoDate;        // an override's own start
        double lastAck = 0.0;
        std::vector<Alarm> alarms;
    };

    void AddReminder(const Alarm& alarm, double lastAck, const PimRecord& occurrence, double occurrenceId,
                     double from, double before, std::vector<Reminder>& out) const;
    const Part* OverrideAt(double occurrenceStart, double originalStart) const;

    std::vector<Part> parts_;
    double minOffset_ = 0.0; // over the relative alarms
    double maxOffset_ = 0.0;
    bool anyAbsolute_ = false;
};

} // namespace mirodate
