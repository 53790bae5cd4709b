#pragma once
// A range of whole days, from the first day at 00:00:00 to the last at
// 23:59:59, as the store's date-range queries take it. Built from dates or
// from year, month and day numbers; an impossible date makes it invalid
// (the queries then find nothing) rather than being corrected.
#include "data/DateTime.h"

namespace mirodate {

class DayRange {
public:
    DayRange() = default; // invalid
    DayRange(int firstYear, int firstMonth, int firstDay, int lastYear, int lastMonth, int lastDay)
        : start_(firstYear, firstMonth, firstDay),
          end_(lastYear, lastMonth, lastDay, kLastHour, kLastMinute, kLastSecond) {}
    // The days of the two dates (their times are ignored).
    static DayRange Days(const DateTime& first, const DateTime& last);
    static DayRange OneDay(const DateTime& day) { return Days(day, day); }
    // Every day of a month.
    static DayRange Month(int year, int month);

    bool IsValid() const { return start_.IsValid() && end_.IsValid(); }
    // The first day at 00:00:00 and the last at 23:59:59.
    const DateTime& Start() const { return start_; }
    const DateTime& End() const { return end_; }
    bool Contains(const DateTime& time) const { return IsValid() && start_ <= time && time <= end_; }

private:
    static constexpr int kLastHour = 23;
    static constexpr int kLastMinute = 59;
    static constexpr int kLastSecond = 59;

    DateTime start_;
    DateTime end_;
};

} // namespace mirodate
