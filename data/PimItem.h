#pragma once
// One calendar entry as the views draw it: an appointment occurrence, a
// birthday or anniversary made from a contact, or a task. A plain record with
// value semantics, filled by PimStore and owned by its cache.
#include "data/DateTime.h"
#include "data/RecurrencePattern.h"
#include "platform/Types.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

struct PimItem {
    // kind of an appointment-form record
    static constexpr int kAppointment = 1;
    static constexpr int kBirthday = 2;
    static constexpr int kAnniversary = 3;
    // type texts that tell the two forms apart
    static constexpr const char* kTypeAppointment = "appt";
    static constexpr const char* kTypeTask = "task";
    // importance of a task
    static constexpr int kImportanceLow = 0;
    static constexpr int kImportanceNormal = 1;
    static constexpr int kImportanceHigh = 2;

    std::string type = kTypeAppointment;
    std::int32_t oid = -1;
    std::vector<COLORREF> colors;
    std::u16string subject;
    std::u16string categories;

    // Appointment form.
    int kind = kAppointment;
    SYSTEMTIME start{};
    SYSTEMTIME end{};
    double startValue = 0.0; // the same times as DATE values, for range tests
    double endValue = 0.0;
    bool isAllDay = false;
    bool isRecurring = false;
    bool isCancelled = false; // drawn struck through; no reminder
    std::u16string location;

    // Task form.
    SYSTEMTIME startDate{};
    SYSTEMTIME dueDate{};
    double startDateValue = kNoDate;
    double dueDateValue = kNoDate;
    bool noStartDate = true;
    bool noDueDate = true;
    bool isComplete = false;
    int importance = kImportanceLow;
    RecurrencePattern recurrence;
    std::u16string body;

    bool IsTask() const { return type == kTypeTask; }
    // Sets start/end (appointments) with their DATE values.
    void SetTimes(const DateTime& startTime, const DateTime& endTime);
    // Sets a task date; kNoDate or an invalid DATE marks it absent.
    void SetTaskDates(double startDateDate, double dueDateDate);

    friend bool operator==(const PimItem&, const PimItem&);
};

bool operator==(const SYSTEMTIME& a, const SYSTEMTIME& b);

} // namespace mirodate
