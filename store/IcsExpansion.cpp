#include "store/IcsExpansion.h"

#include "data/DateTime.h"
#include "platform/Log.h"
#include "store/IcalHandle.h"
#include "store/IcalTime.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>

namespace mirodate {

namespace {

constexpr double kSecondsPerDay = 86400.0;
// Iterator start is moved this much before a window, for rules finer than a day.
constexpr double kIteratorMarginDays = 1.0;

bool Has(const short* array) {
    return array[0] != ICAL_RECURRENCE_ARRAY_MAX;
}

bool HasByParts(const icalrecurrencetype& rule) {
    return Has(rule.by_second) || Has(rule.by_minute) || Has(rule.by_hour) || Has(rule.by_day) ||
           Has(rule.by_month_day) || Has(rule.by_year_day) || Has(rule.by_week_no) || Has(rule.by_month) ||
           Has(rule.by_set_pos);
}

bool IsSubDaily(const icalrecurrencetype& rule) {
    return rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE ||
           rule.freq == ICAL_HOURLY_RECURRENCE;
}

// Days of the month no month of the rule has (the 30th of February): the
// rule never matches, and libical would search for a match until its last
// year.
bool NeverMatches(const icalrecurrencetype& rule) {
    if (!Has(rule.by_month_day))
        return false;
    int longest = 0;
    for (int i = 0; i < ICAL_BY_MONTH_SIZE && rule.by_month[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i)
        if (rule.by_month[i] >= 1 && rule.by_month[i] <= 12)
            longest = std::max(longest, DaysInMonth(2024, rule.by_month[i]));
    if (!Has(rule.by_month))
        longest = 31;
    for (int i = 0; i < ICAL_BY_MONTHDAY_SIZE && rule.by_month_day[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i)
        if (std::abs(rule.by_month_day[i]) <= longest)
            return false;
    return true;
}

// Weekdays counted past the end of their month or year ("-9SU" in a month).
bool NoSuchWeekday(const icalrecurrencetype& rule) {
    if (!Has(rule.by_day))
        return false;
    const bool inMonth = rule.freq == ICAL_MONTHLY_RECURRENCE || Has(rule.by_month);
    const int most = inMonth ? 5 : 53;
    for (int i = 0; i < ICAL_BY_DAY_SIZE && rule.by_day[i] != ICAL_RECURRENCE_ARRAY_MAX; ++i)
        if (std::abs(icalrecurrencetype_day_position(rule.by_day[i])) <= most)
            return false;
    return true;
}

// Seconds of a fixed step of a rule without BY parts finer than a day.
// Daily and weekly rules without BY parts step the wall clock by a fixed
// amount too; a weekly rule whose only BY part is DTSTART's own weekday (as
// many programs write it) is the same rule.
bool IsPlainDailyOrWeekly(const icalrecurrencetype& rule, const icaltimetype& start) {
    if (rule.freq == ICAL_DAILY_RECURRENCE)
        return !HasByParts(rule);
    if (rule.freq != ICAL_WEEKLY_RECURRENCE)
        return false;
    if (!Has(rule.by_day))
        return !HasByParts(rule);
    const bool onlyStartDay =
        rule.by_day[1] == ICAL_RECURRENCE_ARRAY_MAX && icalrecurrencetype_day_position(rule.by_day[0]) == 0 &&
        static_cast<int>(icalrecurrencetype_day_day_of_week(rule.by_day[0])) == icaltime_day_of_week(start);
    return onlyStartDay && !Has(rule.by_second) && !Has(rule.by_minute) && !Has(rule.by_hour) &&
           !Has(rule.by_month_day) && !Has(rule.by_year_day) && !Has(rule.by_week_no) &&
           !Has(rule.by_month) && !Has(rule.by_set_pos);
}

long FixedStepSeconds(const icalrecurrencetype& rule) {
    constexpr long kDaySeconds = 24 * 3600;
    const long unit = rule.freq == ICAL_SECONDLY_RECURRENCE   ? 1
                      : rule.freq == ICAL_MINUTELY_RECURRENCE ? 60
                      : rule.freq == ICAL_HOURLY_RECURRENCE   ? 3600
                      : rule.freq == ICAL_DAILY_RECURRENCE    ? kDaySeconds
                                                              : 7 * kDaySeconds;
    return unit * std::max<long>(1, rule.interval);
}

// A floating wall time's fields read as UTC seconds, for wall-clock arithmetic.
std::time_t WallSeconds(const icaltimetype& t) {
    std::tm tm{};
    tm.tm_year = t.year - 1900;
    tm.tm_mon = t.month - 1;
    tm.tm_mday = t.day;
    tm.tm_hour = t.hour;
    tm.tm_min = t.minute;
    tm.tm_sec = t.second;
    return timegm(&tm);
}

icaltimetype WallTime(std::time_t seconds, const icaltimezone* zone) {
    std::tm tm{};
    if (!gmtime_r(&seconds, &tm))
        return icaltime_null_time();
    return IcalTime::FromTm(tm, zone);
}

int DayNumber(const icaltimetype& t) {
    return t.year * 10000 + t.month * 100 + t.day;
}

} // namespace

// Rules not expanded. libical steps a rule finer than hourly one second or
// minute at a time and tests its BY parts at each step without returning:
// BYMONTH=2 on a secondly rule is 30 million steps to the next match. No
// calendar writes such rules.
bool IcsExpansion::TooCostlyToExpand(const icalrecurrencetype& rule) {
    if (NeverMatches(rule) || NoSuchWeekday(rule))
        return true;
    return (rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE) &&
           HasByParts(rule);
}

void IcsExpansion::Exclusions::Add(const icaltimetype& time) {
    if (icaltime_is_null_time(time))
        return;
    days.push_back(DayNumber(time));
    if (time.is_date) {
        wholeDays.push_back(DayNumber(time));
    } else if (std::time_t instant = 0; IcalTime::ToUnix(time, instant)) {
        instants.push_back(instant);
    }
}

void IcsExpansion::Exclusions::Sort() {
    std::sort(wholeDays.begin(), wholeDays.end());
    std::sort(days.begin(), days.end());
    std::sort(instants.begin(), instants.end());
}

bool IcsExpansion::Exclusions::Contains(const icaltimetype& occurrence) const {
    // A DATE on either side takes out the whole day; times match as instants.
    if (occurrence.is_date)
        return std::binary_search(days.begin(), days.end(), DayNumber(occurrence));
    if (std::binary_search(wholeDays.begin(), wholeDays.end(), DayNumber(occurrence)))
        return true;
    std::time_t instant = 0;
    return IcalTime::ToUnix(occurrence, instant) &&
           std::binary_search(instants.begin(), instants.end(), instant);
}

void IcsExpansion::Prepare(icalcomponent* master, const std::vector<icalcomponent*>& overrides,
                           std::vector<PimRecord> moved, bool wholeDays, bool ruleUsable, std::string uid) {
    master_ = master;
    wholeDays_ = wholeDays;
    ruleUsable_ = ruleUsable;
    uid_ = std::move(uid);
    excluded_ = Exclusions();
    extraDates_.clear();
    for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master_, ICAL_EXDATE_PROPERTY))
        excluded_.Add(icalproperty_get_datetime_with_component(p, master_));
    for (icalcomponent* o : overrides) {
        icalproperty* rid = icalcomponent_get_first_property(o, ICAL_RECURRENCEID_PROPERTY);
        excluded_.Add(icalproperty_get_datetime_with_component(rid, o));
    }
    excluded_.Sort();

    for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_RDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master_, ICAL_RDATE_PROPERTY)) {
        icaltimetype t = icalproperty_get_datetime_with_component(p, master_);
        if (wholeDays_ && !icaltime_is_null_time(t))
            t = IcalTime::WallDate(t);
        double local = 0.0;
        if (!icaltime_is_null_time(t) && IcalTime::ToLocalDate(t, local))
            extraDates_.emplace_back(local, t);
    }
    std::stable_sort(extraDates_.begin(), extraDates_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });

    moved_ = std::move(moved);
    std::stable_sort(moved_.begin(), moved_.end(),
                     [](const PimRecord& a, const PimRecord& b) { return a.start < b.start; });
}

void IcsExpansion::Expand(const PimRecord& series, double longest, double from, double before,
                          std::vector<PimRecord>& occurrences, bool* complete) const {
    const std::size_t firstNew = occurrences.size();
    const icaltimetype zonedStart = IcalTime::PropertyTime(master_, ICAL_DTSTART_PROPERTY);
    // The series' own zone: its rule runs on that zone's wall clock.
    const icaltimezone* zone = icaltime_get_timezone(zonedStart);
    const icaltimetype dtstart = wholeDays_ ? IcalTime::WallDate(zonedStart) : zonedStart;
    std::time_t startUnix = 0;
    IcalTime::ToUnix(dtstart, startUnix);
    const icaltimetype dtend = IcalTime::PropertyTime(master_, ICAL_DTEND_PROPERTY);
    std::time_t endUnix = 0;
    const double durationDays = series.end - series.start;
    long durationSeconds = std::lround(durationDays * kSecondsPerDay);
    if (!series.allDay && !icaltime_is_null_time(dtend) && IcalTime::ToUnix(dtend, endUnix) &&
        endUnix >= startUnix)
        durationSeconds = static_cast<long>(endUnix - startUnix);

    auto add = [&](icaltimetype occurrence) {
        if (wholeDays_ && !occurrence.is_date)
            occurrence = IcalTime::WallDate(occurrence);
        if (excluded_.Contains(occurrence))
            return;
        PimRecord record = series;
        if (!IcalTime::ToLocalDate(occurrence, record.start))
            return;
        if (record.start < from || record.start >= before)
            return;
        if (series.allDay || occurrence.is_date) {
            record.end = (DateTime(record.start) + DateTimeSpan(durationDays)).ToDate();
        } else {
            // The end as wall time after the real duration, across DST changes.
            std::time_t begin = 0;
            IcalTime::ToUnix(occurrence, begin);
            const std::time_t finish = begin + durationSeconds;
            std::tm tm{};
            localtime_r(&finish, &tm);
            const DateTime end(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min,
                               std::min(tm.tm_sec, 59));
            record.end = end.IsValid() ? end.ToDate() : record.start;
        }
        record.isRecurring = true;
        occurrences.push_back(std::move(record));
    };

    icalproperty* rrule =
        ruleUsable_ ? icalcomponent_get_first_property(master_, ICAL_RRULE_PROPERTY) : nullptr;
    if (rrule) {
        struct icalrecurrencetype rule = icalproperty_get_rrule(rrule);
        // The rule counts in wall times of the series' zone: it is iterated on
        // floating times that get their zone back one by one, so that an
        // occurrence that falls into a daylight-saving gap moves alone and
        // does not carry the later ones with it.
        icaltimetype wallStart = dtstart;
        wallStart.zone = nullptr;
        // INTERVAL=0 is not a valid rule; read it as the default, every time.
        if (rule.interval < 1)
            rule.interval = 1;
        if (!icaltime_is_null_time(rule.until) && !rule.until.is_date) {
            icaltimezone* wallZone = zone ? const_cast<icaltimezone*>(zone) : IcalTime::LocalZone();
            const icaltimezone* untilZone = icaltime_get_timezone(rule.until);
            std::time_t untilInstant = 0;
            if (untilZone && wallZone && untilZone != wallZone && IcalTime::ToUnix(rule.until, untilInstant))
                rule.until = IcalTime::WallTimeIn(untilInstant, wallZone);
            rule.until.zone = nullptr;
            if (wallStart.is_date)
                rule.until = IcalTime::WallDate(rule.until);
        }
        // Nothing past the window is wanted, and a rule whose BY parts never
        // match (the 30th of February) would be stepped through to libical's
        // last year.
        icaltimetype windowEnd =
            IcalTime::FromLocalDate(before + kIteratorMarginDays, wallStart.is_date, zone);
        windowEnd.zone = nullptr;
        if (!icaltime_is_null_time(windowEnd) &&
            (icaltime_is_null_time(rule.until) || icaltime_compare(windowEnd, rule.until) < 0))
            rule.until = windowEnd;
        int iterations = 0, produced = 0;
        double previous = kNoDate;
        // Takes one occurrence of the rule; false ends the walk.
        auto consider = [&](icaltimetype occurrence) {
            if (++iterations > kMaxIterations || produced >= kMaxOccurrences) {
                Log::Warning("store: series %s has too many occurrences; the rest is left out", uid_.c_str());
                if (complete)
                    *complete = false;
                return false;
            }
            occurrence.zone = wallStart.is_date ? nullptr : zone;
            double local = 0.0;
            if (!IcalTime::ToLocalDate(occurrence, local) || local >= before)
                return false;
            // A time moved out of a gap can meet the next one (hourly rules).
            if (local == previous)
                return true;
            previous = local;
            const std::size_t size = occurrences.size();
            add(occurrence);
            if (occurrences.size() != size)
                ++produced;
            return true;
        };
        // Rules without COUNT can start near the window instead of at DTSTART.
        const double jumpTo = from - longest - kIteratorMarginDays;
        if (((IsSubDaily(rule) && !HasByParts(rule)) || IsPlainDailyOrWeekly(rule, wallStart)) &&
            !wallStart.is_date) {
            // A fixed step of the wall clock: the first occurrence near the
            // window is found by arithmetic, COUNT or not, instead of by
            // libical's stepping, which costs microseconds a step (its
            // calendar arithmetic) and walks a counted rule from DTSTART.
            const long step = FixedStepSeconds(rule);
            const std::time_t first = WallSeconds(wallStart);
            const std::time_t last = icaltime_is_null_time(rule.until)
                                         ? std::numeric_limits<std::time_t>::max()
                                         : WallSeconds(rule.until);
            const long long count = rule.count > 0 ? rule.count : std::numeric_limits<long long>::max();
            long long k = 0;
            if (jumpTo > series.start) {
                const icaltimetype start = IcalTime::FromLocalDate(jumpTo, false, zone);
                if (!icaltime_is_null_time(start))
                    k = std::max<long long>(0, (WallSeconds(start) - first) / step);
            }
            for (; k < count; ++k) {
                const std::time_t wall = first + static_cast<std::time_t>(k) * step;
                if (wall > last || !consider(WallTime(wall, nullptr)))
                    break;
            }
        } else if (IcalRecurIteratorPtr iterator{icalrecur_iterator_new(rule, wallStart)}) {
            if (rule.count <= 0 && jumpTo > series.start) {
                icaltimetype start = IcalTime::FromLocalDate(jumpTo, wallStart.is_date, zone);
                start.zone = nullptr;
                if (!icaltime_is_null_time(start))
                    icalrecur_iterator_set_start(iterator.get(), start);
            }
            for (;;) {
                const icaltimetype occurrence = icalrecur_iterator_next(iterator.get());
                if (icaltime_is_null_time(occurrence) || !consider(occurrence))
                    break;
            }
        }
    }
    auto firstExtra = std::lower_bound(extraDates_.begin(), extraDates_.end(), from,
                                       [](const auto& extra, double start) { return extra.first < start; });
    for (auto it = firstExtra; it != extraDates_.end() && it->first < before; ++it)
        add(it->second);
    // A plain DTSTART counts as an occurrence even when the rule skips it.
    bool startListed = false;
    for (std::size_t i = firstNew; i < occurrences.size(); ++i)
        if (occurrences[i].start == series.start)
            startListed = true;
    if (!startListed)
        add(dtstart);

    auto firstMoved =
        std::lower_bound(moved_.begin(), moved_.end(), from,
                         [](const PimRecord& moved, double start) { return moved.start < start; });
    for (auto it = firstMoved; it != moved_.end() && it->start < before; ++it)
        occurrences.push_back(*it);
    std::stable_sort(occurrences.begin() + static_cast<std::ptrdiff_t>(firstNew), occurrences.end(),
                     [](const PimRecord& a, const PimRecord& b) { return a.start < b.start; });
}

} // namespace mirodate
