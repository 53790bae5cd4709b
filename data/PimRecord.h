#pragma once
// One item as the PIM source hands it over: the properties of an
// appointment (or one occurrence of it), a task or a contact. Times are
// local DATE values.
#include "data/DateTime.h"
#include "data/RecurrencePattern.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

struct PimRecord {
    static constexpr int kNoYear = 1604;

    std::int32_t oid = -1;
    int itemKind = 0; // kItemAppointment, kItemContact or kItemTask (PimSource.h)
    std::string uid;

    std::u16string subject; // the contact's display name for contacts
    std::u16string location;
    std::u16string categories; // comma-separated
    std::u16string body;
    // The people of a meeting: "name|address" each, joined by "~"; the
    // organizer first.
    std::u16string attendees;

    // Appointments: the occurrence's times; all-day items run from 00:00 to
    // 00:00 of the day after their last day.
    double start = 0.0;
    double end = 0.0;
    bool allDay = false;
    bool isRecurring = false; // an occurrence of a series (or a recurring task)
    bool cancelled = false;   // STATUS:CANCELLED: shown struck through, never reminded of
    RecurrencePattern recurrence;
    // Appointments: the reminder the editor sets (lead time in minutes
    // before the start), the busy status (0 free, 1 tentative, 2 busy,
    // 3 out of office), the sensitivity (0 normal, 1 personal, 2 private,
    // 3 confidential) and the files or addresses attached by reference.
    bool reminderSet = false;
    int reminderMinutes = 0;
    int busyStatus = 2;
    int sensitivity = 0;
    std::vector<std::u16string> attachments;

    // Tasks.
    double startDate = kNoDate;
    double dueDate = kNoDate;
    bool complete = false;
    int importance = 1; // 0 low, 1 normal, 2 high

    // Contacts: dates at 00:00; a date given without a year carries
    // kNoYear (a leap year, so that 29 February survives) and hasYear false.
    double birthday = kNoDate;
    bool birthdayHasYear = true;
    double anniversary = kNoDate;
    bool anniversaryHasYear = true;
    // Contacts: the e-mail addresses, in the card's order.
    std::vector<std::u16string> emails;

    friend bool operator==(const PimRecord&, const PimRecord&) = default;
};

} // namespace mirodate
