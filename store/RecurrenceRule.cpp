#include "store/RecurrenceRule.h"

#include "data/DateTime.h"
#include "store/IcalTime.h"

#include <libical/ical.h>

#include <string>

namespace mirodate {

namespace {

constexpr const char* kDayNames[7] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
constexpr int kLastInstance = 5; // the record's "last"

// Bit of DayOfWeekMask for libical's weekday (1 Sunday .. 7 Saturday).
int DayBit(icalrecurrencetype_weekday day) {
    return 1 << (static_cast<int>(day) - 1);
}

bool Has(const short* array, int index = 0) {
    return array[index] != ICAL_RECURRENCE_ARRAY_MAX;
}

int Count(const short* array, int max) {
    int n = 0;
    while (n < max && array[n] != ICAL_RECURRENCE_ARRAY_MAX)
        ++n;
    return n;
}

std::string DaysText(int mask, int position) {
    std::string text;
    for (int d = 0; d < 7; ++d) {
        if (!(mask & (1 << d)))
            continue;
        if (!text.empty())
            text += ",";
        if (position)
            text += std::to_string(position);
        text += kDayNames[d];
    }
    return text;
}

} // namespace

bool RecurrenceRule::ToPattern(const std::string& rrule, double start, double until,
                               RecurrencePattern& pattern) {
    icalerror_clear_errno();
    struct icalrecurrencetype rule = icalrecurrencetype_from_string(rrule.c_str());
    if (rule.freq == ICAL_NO_RECURRENCE || icalerrno != ICAL_NO_ERROR) {
        icalerror_clear_errno();
        return false;
    }
    const DateTime first(start);
    pattern = RecurrencePattern();
    pattern.Interval = rule.interval > 0 ? rule.interval : 1;
    pattern.PatternStartDate = first.StartOfDay().ToDate();
    pattern.Occurrences = rule.count > 0 ? rule.count : 0;
    pattern.NoEndDate = rule.count <= 0 && until == 0.0;
    pattern.PatternEndDate = until != 0.0 ? DateTime(until).StartOfDay().ToDate() : 0.0;
    pattern.RuleFit = RecurrencePattern::kExact;

    // A rule the record cannot say is marked: kNearest when the record's
    // sentence stays true but says less (times of day), kNoFit when it would
    // claim something false (one day of the month where there are several).
    auto lessSpecific = [&] {
        if (pattern.RuleFit == RecurrencePattern::kExact)
            pattern.RuleFit = RecurrencePattern::kNearest;
    };
    auto noFit = [&] { pattern.RuleFit = RecurrencePattern::kNoFit; };

    int mask = 0, position = 0;
    const int dayCount = Count(rule.by_day, ICAL_BY_DAY_SIZE);
    for (int i = 0; i < dayCount; ++i) {
        mask |= DayBit(icalrecurrencetype_day_day_of_week(rule.by_day[i]));
        const int pos = icalrecurrencetype_day_position(rule.by_day[i]);
        if (pos != 0) {
            if (position != 0 && position != pos)
                noFit(); // "1MO,3WE"
            position = pos;
        }
    }
    if (position == 0 && Has(rule.by_set_pos)) {
        position = rule.by_set_pos[0];
        if (Has(rule.by_set_pos, 1))
            noFit(); // several positions
    }
    const int startDayBit = 1 << first.GetDayOfWeek();
    const int monthDay = Has(rule.by_month_day) ? rule.by_month_day[0] : first.GetDay();
    // Several days of the month, or one counted from the end ("-1", the last
    // day) have no record: the 31st is not the last day of April.
    if (Has(rule.by_month_day, 1) || monthDay < 0)
        noFit();
    const int month = Has(rule.by_month) ? rule.by_month[0] : first.GetMonth();
    if (Has(rule.by_month, 1))
        noFit();
    if (Has(rule.by_year_day) || Has(rule.by_week_no))
        noFit();
    if (Has(rule.by_hour) || Has(rule.by_minute) || Has(rule.by_second))
        lessSpecific();
    const int instance = position < 0 ? kLastInstance : position;
    // The record knows the first to fourth and the last; the fifth or the
    // second-to-last are something else.
    if (position < -1 || position > 4)
        noFit();

    switch (rule.freq) {
    case ICAL_DAILY_RECURRENCE:
        if (mask) {
            pattern.RecurrenceType = RecurrencePattern::kWeekly;
            pattern.DayOfWeekMask = mask;
            // Every n days, only on some weekdays, is no weekly rule.
            if (pattern.Interval != 1)
                noFit();
        } else {
            pattern.RecurrenceType = RecurrencePattern::kDaily;
        }
        break;
    case ICAL_WEEKLY_RECURRENCE:
        pattern.RecurrenceType = RecurrencePattern::kWeekly;
        pattern.DayOfWeekMask = mask ? mask : startDayBit;
        break;
    case ICAL_MONTHLY_RECURRENCE:
        if (mask && position != 0) {
            pattern.RecurrenceType = RecurrencePattern::kMonthNth;
            pattern.Instance = instance;
            pattern.DayOfWeekMask = mask;
        } else {
            pattern.RecurrenceType = RecurrencePattern::kMonthly;
            pattern.DayOfMonth = monthDay < 0 ? 31 : monthDay;
            if (mask)
                noFit();
        }
        break;
    case ICAL_YEARLY_RECURRENCE:
        pattern.MonthOfYear = month;
        if (mask && position != 0) {
            pattern.RecurrenceType = RecurrencePattern::kYearNth;
            pattern.Instance = instance;
            pattern.DayOfWeekMask = mask;
        } else {
            pattern.RecurrenceType = RecurrencePattern::kYearly;
            pattern.DayOfMonth = monthDay < 0 ? 31 : monthDay;
            if (mask)
                noFit();
        }
        break;
    default: // hourly and finer have no record
        pattern.RecurrenceType = RecurrencePattern::kDaily;
        noFit();
        break;
    }
    return true;
}

std::string RecurrenceRule::FromPattern(const RecurrencePattern& pattern, bool allDay) {
    std::string text;
    const int interval = pattern.Interval > 0 ? pattern.Interval : 1;
    const int position = pattern.Instance == kLastInstance ? -1 : pattern.Instance;
    auto nthDays = [&] {
        // One weekday as "2TU"; several as a day list picked by BYSETPOS.
        const int mask = pattern.DayOfWeekMask & 0x7F;
        if ((mask & (mask - 1)) == 0)
            return ";BYDAY=" + DaysText(mask, position);
        return ";BYDAY=" + DaysText(mask, 0) + ";BYSETPOS=" + std::to_string(position);
    };
    switch (pattern.RecurrenceType) {
    case RecurrencePattern::kDaily:
        text = "FREQ=DAILY";
        break;
    case RecurrencePattern::kWeekly:
        text = "FREQ=WEEKLY";
        if (pattern.DayOfWeekMask & 0x7F)
            text += ";BYDAY=" + DaysText(pattern.DayOfWeekMask & 0x7F, 0);
        break;
    case RecurrencePattern::kMonthly:
        text = "FREQ=MONTHLY;BYMONTHDAY=" + std::to_string(pattern.DayOfMonth);
        break;
    case RecurrencePattern::kMonthNth:
        text = "FREQ=MONTHLY" + nthDays();
        break;
    case RecurrencePattern::kYearly:
        text = "FREQ=YEARLY;BYMONTH=" + std::to_string(pattern.MonthOfYear) +
               ";BYMONTHDAY=" + std::to_string(pattern.DayOfMonth);
        break;
    case RecurrencePattern::kYearNth:
        text = "FREQ=YEARLY;BYMONTH=" + std::to_string(pattern.MonthOfYear) + nthDays();
        break;
    default:
        return {};
    }
    if (interval != 1)
        text += ";INTERVAL=" + std::to_string(interval);
    if (pattern.Occurrences > 0) {
        text += ";COUNT=" + std::to_string(pattern.Occurrences);
    } else if (!pattern.NoEndDate && pattern.PatternEndDate != 0.0) {
        const DateTime end(pattern.PatternEndDate);
        if (allDay) {
            char date[16];
            std::snprintf(date, sizeof date, "%04d%02d%02d", end.GetYear(), end.GetMonth(), end.GetDay());
            text += ";UNTIL=";
            text += date;
        } else {
            text += ";UNTIL=" + IcalTime::LocalDateToUtcText(end.EndOfDay().ToDate());
        }
    }
    return text;
}

} // namespace mirodate
