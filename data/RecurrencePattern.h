#pragma once
// A recurrence as the program keeps it: the pattern record that the store
// fills from an item's RRULE and the editors write back.
#include <cstdint>

namespace mirodate {

struct RecurrencePattern {
    enum Type : std::int32_t {
        kNotRecurring = -1,
        kDaily = 0,
        kWeekly = 1,
        kMonthly = 2,  // on a day of the month
        kMonthNth = 3, // on the n-th weekday of the month
        kYearly = 5,   // on a day of a month
        kYearNth = 6,  // on the n-th weekday of a month
    };
    // Bits of DayOfWeekMask.
    enum DayBits : std::int32_t {
        kSunday = 1,
        kMonday = 2,
        kTuesday = 4,
        kWednesday = 8,
        kThursday = 16,
        kFriday = 32,
        kSaturday = 64,
    };

    std::int32_t RecurrenceType = kNotRecurring;
    std::int32_t Interval = 1;
    std::int32_t Instance = 0;      // 1..5: first, second, third, fourth, last
    std::int32_t DayOfMonth = 0;    // 1..31
    std::int32_t MonthOfYear = 0;   // 1..12
    std::int32_t DayOfWeekMask = 0; // DayBits
    std::int32_t Occurrences = 0;   // 0: not limited by a count
    double PatternStartDate = 0.0;  // DATE
    double PatternEndDate = 0.0;    // DATE; 0.0 when there is none
    bool NoEndDate = true;

    // How closely the fields above say what the item's rule says. Rules from
    // other programs (BYSETPOS, several BYMONTHDAY values, FREQ=HOURLY, BYHOUR)
    // do not all fit: the store keeps the nearest record and marks it, so that
    // a description never claims more than the rule does.
    enum Fit : std::int32_t {
        kExact = 0,
        kNearest = 1, // the record is a faithful but less specific reading
        kNoFit = 2,   // no record says it; describe it generically
    };
    std::int32_t RuleFit = kExact;

    friend bool operator==(const RecurrencePattern&, const RecurrencePattern&) = default;
};

} // namespace mirodate
