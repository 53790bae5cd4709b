#pragma once
// One moment at which an item asks to be reminded of: which alarm of which
// item (and of which occurrence of a series), when it is due, and what the
// reminder shows. Times are local DATE values.
#include "data/DateTime.h"

#include <cstdint>
#include <string>

namespace mirodate {

struct Reminder {
    std::int32_t oid = -1;
    int itemKind = 0;            // kItemAppointment or kItemTask (PimSource.h)
    std::string alarm;           // the alarm's UID, or "#N" for the Nth alarm without one
    double occurrence = kNoDate; // the original start of a series' occurrence; kNoDate for a plain item
    double moment = 0.0;         // when it is due
    bool snoozed = false;        // a snoozed alarm coming back
    bool audio = false;          // an AUDIO alarm (a sound, where there is one)
    std::u16string subject;
    std::u16string location;
    double start = kNoDate; // the occurrence's start (a task's due date)
    double end = kNoDate;
    bool allDay = false;

    // Two reminders of the same alarm of the same occurrence.
    bool SameAlarm(const Reminder& other) const {
        return oid == other.oid && alarm == other.alarm && occurrence == other.occurrence;
    }
    friend bool operator==(const Reminder&, const Reminder&) = default;
};

} // namespace mirodate
