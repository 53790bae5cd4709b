#include "data/RecurrenceLimits.h"

#include <algorithm>

namespace mirodate {

namespace {

constexpr int kDaysPerWeek = 7;
constexpr int kLastFullInstance = 4;

bool UsesDays(int type) {
    return type == RecurrencePattern::kWeekly || type == RecurrencePattern::kMonthNth ||
           type == RecurrencePattern::kYearNth;
}
bool UsesDayOfMonth(int type) {
    return type == RecurrencePattern::kMonthly || type == RecurrencePattern::kYearly;
}
bool UsesInstance(int type) {
    return type == RecurrencePattern::kMonthNth || type == RecurrencePattern::kYearNth;
}
bool UsesMonth(int type) {
    return type == RecurrencePattern::kYearly || type == RecurrencePattern::kYearNth;
}

bool KnownType(int type) {
    return type == RecurrencePattern::kDaily || type == RecurrencePattern::kWeekly ||
           type == RecurrencePattern::kMonthly || type == RecurrencePattern::kMonthNth ||
           type == RecurrencePattern::kYearly || type == RecurrencePattern::kYearNth;
}

} // namespace

int RecurrenceLimits::InstanceOf(const DateTime& day) {
    // The fifth weekday of a month is always its last one.
    const int instance = (day.GetDay() - 1) / kDaysPerWeek + 1;
    if (day.GetDay() + kDaysPerWeek > DaysInMonth(day.GetYear(), day.GetMonth()))
        return kLastInstance;
    return std::min(instance, kLastFullInstance);
}

bool RecurrenceLimits::EndsBeforeStart(const RecurrencePattern& pattern, const DateTime& start) {
    if (pattern.RecurrenceType == RecurrencePattern::kNotRecurring || pattern.Occurrences > 0)
        return false;
    if (pattern.NoEndDate || pattern.PatternEndDate == 0.0 || !start.IsValid())
        return false;
    return DateTime(pattern.PatternEndDate).StartOfDay() < start.StartOfDay();
}

RecurrencePattern RecurrenceLimits::Normalise(const RecurrencePattern& pattern, const DateTime& start) {
    RecurrencePattern p = pattern;
    if (p.RecurrenceType == RecurrencePattern::kNotRecurring)
        return p;
    const DateTime first = start.IsValid() ? start : DateTime(p.PatternStartDate);
    if (!KnownType(p.RecurrenceType))
        p.RecurrenceType = RecurrencePattern::kDaily;
    p.Interval = std::clamp(p.Interval, 1, kMaxInterval);
    p.Occurrences = std::clamp(p.Occurrences, 0, kMaxOccurrences);
    p.DayOfWeekMask &= kAllDays;
    const int type = p.RecurrenceType;
    if (UsesDays(type) && p.DayOfWeekMask == 0)
        p.DayOfWeekMask = 1 << first.GetDayOfWeek();
    if (UsesDayOfMonth(type) && (p.DayOfMonth < 1 || p.DayOfMonth > 31))
        p.DayOfMonth = first.GetDay();
    if (UsesMonth(type) && (p.MonthOfYear < 1 || p.MonthOfYear > 12))
        p.MonthOfYear = first.GetMonth();
    if (UsesInstance(type) && (p.Instance < 1 || p.Instance > kLastInstance))
        p.Instance = InstanceOf(first);
    // A day the month never has (30 February) would never happen.
    if (type == RecurrencePattern::kYearly)
        p.DayOfMonth = std::min(p.DayOfMonth, DaysInMonth(2024, p.MonthOfYear));
    if (p.Occurrences > 0) {
        p.NoEndDate = false;
    } else if (!p.NoEndDate && p.PatternEndDate != 0.0) {
        if (!DateTime(p.PatternEndDate).IsValid()) {
            p.NoEndDate = true;
            p.PatternEndDate = 0.0;
        } else if (EndsBeforeStart(p, first)) {
            p.PatternEndDate = first.StartOfDay().ToDate();
        }
    } else {
        p.NoEndDate = true;
        p.PatternEndDate = 0.0;
    }
    return p;
}

RecurrencePattern RecurrenceLimits::ForType(int type, const RecurrencePattern& current,
                                            const DateTime& start) {
    RecurrencePattern p;
    p.RecurrenceType = type;
    p.PatternStartDate = start.StartOfDay().ToDate();
    if (type == RecurrencePattern::kNotRecurring)
        return p;
    const bool wasRecurring = current.RecurrenceType != RecurrencePattern::kNotRecurring;
    // The end and interval carry over from another type; a rule we could not
    // read gives nothing worth keeping.
    if (wasRecurring && current.RuleFit != RecurrencePattern::kNoFit) {
        p.Interval = current.Interval;
        p.Occurrences = current.Occurrences;
        p.PatternEndDate = current.PatternEndDate;
        p.NoEndDate = current.NoEndDate;
    }
    const int startBit = 1 << start.GetDayOfWeek();
    if (type == RecurrencePattern::kWeekly)
        p.DayOfWeekMask = current.RecurrenceType == RecurrencePattern::kWeekly && current.DayOfWeekMask
                              ? current.DayOfWeekMask
                              : startBit;
    if (UsesInstance(type)) {
        p.DayOfWeekMask = startBit;
        p.Instance = InstanceOf(start);
    }
    if (UsesDayOfMonth(type))
        p.DayOfMonth = start.GetDay();
    if (UsesMonth(type))
        p.MonthOfYear = start.GetMonth();
    return Normalise(p, start);
}

} // namespace mirodate
