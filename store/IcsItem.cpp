#include "store/IcsItem.h"

#include "data/DateTime.h"
#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "store/IcalText.h"
#include "store/IcalTime.h"
#include "store/IcsAttendees.h"
#include "store/IcsEditorFields.h"
#include "store/RecurrenceRule.h"
#include "store/VtimezoneFilter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <strings.h>

namespace mirodate {

namespace {

constexpr double kSecondsPerDay = 86400.0;
// Iterator start is moved this much before a window, for rules finer than a day.
constexpr double kIteratorMarginDays = 1.0;

// PRIORITY 1-4 is high, 5 (or none) normal, 6-9 low.
int ImportanceOfPriority(int priority) {
    if (priority >= 1 && priority <= 4)
        return 2;
    if (priority >= 6 && priority <= 9)
        return 0;
    return 1;
}

std::u16string Text(const char* utf8) {
    return utf8 ? Utf8ToUtf16(utf8) : std::u16string();
}

std::u16string JoinCategories(icalcomponent* component) {
    std::u16string text;
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_CATEGORIES_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_CATEGORIES_PROPERTY)) {
        const char* value = icalproperty_get_categories(p);
        if (!value || !*value)
            continue;
        if (!text.empty())
            text += u", ";
        text += Utf8ToUtf16(value);
    }
    return text;
}

// A time of a property with its TZID resolved (from the file's VTIMEZONEs or
// the system's zones); unknown zones read as floating local time.
icaltimetype PropertyTime(icalcomponent* component, icalproperty_kind kind) {
    icalproperty* p = icalcomponent_get_first_property(component, kind);
    if (!p)
        return icaltime_null_time();
    return icalproperty_get_datetime_with_component(p, component);
}

// Outlook writes an all-day event as midnight to midnight in its own zone,
// marked with this property.
constexpr const char* kOutlookAllDay = "X-MICROSOFT-CDO-ALLDAYEVENT";

bool IsMidnight(const icaltimetype& t) {
    return !t.is_date && t.hour == 0 && t.minute == 0 && t.second == 0;
}

bool IsOutlookAllDay(icalcomponent* component) {
    bool marked = false;
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_X_PROPERTY); p && !marked;
         p = icalcomponent_get_next_property(component, ICAL_X_PROPERTY)) {
        const char* name = icalproperty_get_x_name(p);
        const char* value = icalproperty_get_x(p);
        marked = name && value && strcasecmp(name, kOutlookAllDay) == 0 && strcasecmp(value, "TRUE") == 0;
    }
    if (!marked)
        return false;
    const icaltimetype start = PropertyTime(component, ICAL_DTSTART_PROPERTY);
    const icaltimetype end = PropertyTime(component, ICAL_DTEND_PROPERTY);
    return IsMidnight(start) && (icaltime_is_null_time(end) || IsMidnight(end));
}

// The day of a wall time in its own zone, as a DATE value.
icaltimetype WallDate(icaltimetype t) {
    t.is_date = 1;
    t.hour = t.minute = t.second = 0;
    t.zone = nullptr;
    return t;
}

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

// Rules not expanded. libical steps a rule finer than hourly one second or
// minute at a time and tests its BY parts at each step without returning:
// BYMONTH=2 on a secondly rule is 30 million steps to the next match. No
// calendar writes such rules.
bool TooCostlyToExpand(const icalrecurrencetype& rule) {
    if (NeverMatches(rule) || NoSuchWeekday(rule))
        return true;
    return (rule.freq == ICAL_SECONDLY_RECURRENCE || rule.freq == ICAL_MINUTELY_RECURRENCE) &&
           HasByParts(rule);
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
    icaltimetype t = icaltime_null_time();
    if (!gmtime_r(&seconds, &tm))
        return t;
    t.year = tm.tm_year + 1900;
    t.month = tm.tm_mon + 1;
    t.day = tm.tm_mday;
    t.hour = tm.tm_hour;
    t.minute = tm.tm_min;
    t.second = tm.tm_sec;
    t.zone = zone;
    return t;
}

int DayNumber(const icaltimetype& t) {
    return t.year * 10000 + t.month * 100 + t.day;
}

} // namespace

void IcsItem::Exclusions::Add(const icaltimetype& time) {
    if (icaltime_is_null_time(time))
        return;
    days.push_back(DayNumber(time));
    if (time.is_date) {
        wholeDays.push_back(DayNumber(time));
    } else if (std::time_t instant = 0; IcalTime::ToUnix(time, instant)) {
        instants.push_back(instant);
    }
}

void IcsItem::Exclusions::Sort() {
    std::sort(wholeDays.begin(), wholeDays.end());
    std::sort(days.begin(), days.end());
    std::sort(instants.begin(), instants.end());
}

bool IcsItem::Exclusions::Contains(const icaltimetype& occurrence) const {
    // A DATE on either side takes out the whole day; times match as instants.
    if (occurrence.is_date)
        return std::binary_search(days.begin(), days.end(), DayNumber(occurrence));
    if (std::binary_search(wholeDays.begin(), wholeDays.end(), DayNumber(occurrence)))
        return true;
    std::time_t instant = 0;
    return IcalTime::ToUnix(occurrence, instant) &&
           std::binary_search(instants.begin(), instants.end(), instant);
}

void IcsItem::PrepareSeries() {
    for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master_, ICAL_EXDATE_PROPERTY))
        excluded_.Add(icalproperty_get_datetime_with_component(p, master_));
    for (icalcomponent* o : overrides_) {
        icalproperty* rid = icalcomponent_get_first_property(o, ICAL_RECURRENCEID_PROPERTY);
        excluded_.Add(icalproperty_get_datetime_with_component(rid, o));
    }
    excluded_.Sort();

    for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_RDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master_, ICAL_RDATE_PROPERTY)) {
        icaltimetype t = icalproperty_get_datetime_with_component(p, master_);
        if (wholeDays_ && !icaltime_is_null_time(t))
            t = WallDate(t);
        double local = 0.0;
        if (!icaltime_is_null_time(t) && IcalTime::ToLocalDate(t, local))
            extraDates_.emplace_back(local, t);
    }
    std::stable_sort(extraDates_.begin(), extraDates_.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });

    for (icalcomponent* o : overrides_) {
        // A cancelled occurrence stays, marked, for the views to strike through.
        PimRecord moved = record_;
        std::string ignored;
        if (!ReadComponent(o, moved, ignored))
            continue;
        // An override says only what changed; the rest comes from the series.
        if (moved.subject.empty())
            moved.subject = record_.subject;
        if (moved.location.empty())
            moved.location = record_.location;
        if (moved.categories.empty())
            moved.categories = record_.categories;
        if (moved.attendees.empty())
            moved.attendees = record_.attendees;
        moved.isRecurring = true;
        moved_.push_back(std::move(moved));
    }
    std::stable_sort(moved_.begin(), moved_.end(),
                     [](const PimRecord& a, const PimRecord& b) { return a.start < b.start; });
}

bool IcsItem::ReadComponent(icalcomponent* component, PimRecord& record, std::string& problem) const {
    record.subject = Text(icalcomponent_get_summary(component));
    record.location = Text(icalcomponent_get_location(component));
    record.body = Text(icalcomponent_get_description(component));
    record.categories = JoinCategories(component);
    if (icalcomponent_get_first_property(component, ICAL_STATUS_PROPERTY))
        record.cancelled = icalcomponent_get_status(component) == ICAL_STATUS_CANCELLED;
    record.attendees = IcsAttendees::Read(component);
    const bool wholeDays = kind_ == Kind::Event && IsOutlookAllDay(component);
    icaltimetype start = PropertyTime(component, ICAL_DTSTART_PROPERTY);
    if (wholeDays)
        start = WallDate(start);
    if (kind_ == Kind::Task) {
        record.itemKind = 3;
        double date = kNoDate;
        if (!icaltime_is_null_time(start) && IcalTime::ToLocalDate(start, date))
            record.startDate = date;
        const icaltimetype due = PropertyTime(component, ICAL_DUE_PROPERTY);
        date = kNoDate;
        if (!icaltime_is_null_time(due) && IcalTime::ToLocalDate(due, date))
            record.dueDate = date;
        record.complete = icalcomponent_get_status(component) == ICAL_STATUS_COMPLETED ||
                          icalcomponent_get_first_property(component, ICAL_COMPLETED_PROPERTY) != nullptr;
        icalproperty* priority = icalcomponent_get_first_property(component, ICAL_PRIORITY_PROPERTY);
        record.importance = ImportanceOfPriority(priority ? icalproperty_get_priority(priority) : 0);
        IcsEditorFields::Read(component, record);
        return true;
    }
    record.itemKind = 1;
    IcsEditorFields::Read(component, record);
    if (!IcalTime::ToLocalDate(start, record.start)) {
        problem = "no valid DTSTART";
        return false;
    }
    record.allDay = start.is_date;
    icaltimetype end = PropertyTime(component, ICAL_DTEND_PROPERTY);
    if (wholeDays && !icaltime_is_null_time(end))
        end = WallDate(end);
    double endDate = 0.0;
    if (!icaltime_is_null_time(end) && IcalTime::ToLocalDate(end, endDate) &&
        (endDate > record.start || (endDate == record.start && !record.allDay))) {
        record.end = endDate;
    } else if (icalproperty* duration = icalcomponent_get_first_property(component, ICAL_DURATION_PROPERTY)) {
        const int seconds = icaldurationtype_as_int(icalproperty_get_duration(duration));
        record.end = (DateTime(record.start) + DateTimeSpan(std::max(0, seconds) / kSecondsPerDay)).ToDate();
    } else {
        record.end = record.allDay ? (DateTime(record.start) + DateTimeSpan(1.0)).ToDate() : record.start;
    }
    if (!DateTime(record.end).IsValid())
        record.end = record.start;
    return true;
}

bool IcsItem::Parse(std::string_view text, std::string& problem) {
    if (text.find("BEGIN:VCALENDAR") == std::string_view::npos) {
        problem = "not iCalendar";
        return false;
    }
    zones_ = {};
    calendar_ = IcalText::Parse(text);
    icalerror_clear_errno();
    if (!calendar_) {
        problem = "iCalendar text does not parse";
        return false;
    }
    const int zoneRulesDropped = VtimezoneFilter::Apply(calendar_.get());
    zones_ = ZoneCache::Share(calendar_.get());
    icalcomponent* root = calendar_.get();
    if (icalcomponent_isa(root) != ICAL_VCALENDAR_COMPONENT) {
        // Some files hold a bare VEVENT; a parse of several roots gives an XROOT.
        icalcomponent* inner = icalcomponent_get_first_component(root, ICAL_VCALENDAR_COMPONENT);
        if (inner)
            root = inner;
    }
    // The main component: the first VEVENT or VTODO without RECURRENCE-ID,
    // else the first one at all.
    std::vector<icalcomponent*> candidates;
    for (icalcomponent* c = icalcomponent_get_first_component(root, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(root, ICAL_ANY_COMPONENT)) {
        const icalcomponent_kind k = icalcomponent_isa(c);
        if (k == ICAL_VEVENT_COMPONENT || k == ICAL_VTODO_COMPONENT)
            candidates.push_back(c);
    }
    if (candidates.empty() &&
        (icalcomponent_isa(root) == ICAL_VEVENT_COMPONENT || icalcomponent_isa(root) == ICAL_VTODO_COMPONENT))
        candidates.push_back(root);
    if (candidates.empty()) {
        problem = "no VEVENT or VTODO";
        return false;
    }
    for (icalcomponent* c : candidates)
        if (!icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY)) {
            master_ = c;
            break;
        }
    if (!master_)
        master_ = candidates.front();
    kind_ = icalcomponent_isa(master_) == ICAL_VTODO_COMPONENT ? Kind::Task : Kind::Event;
    wholeDays_ = kind_ == Kind::Event && IsOutlookAllDay(master_);
    const char* uid = icalcomponent_get_uid(master_);
    uid_ = uid ? uid : "";
    if (zoneRulesDropped > 0)
        Log::Warning("store: item %s: %d time zone rules or zones no real zone has are ignored", uid_.c_str(),
                     zoneRulesDropped);
    for (icalcomponent* c : candidates) {
        if (c == master_)
            continue;
        const char* other = icalcomponent_get_uid(c);
        const bool sameUid = (other ? std::string(other) : std::string()) == uid_;
        if (sameUid && icalcomponent_isa(c) == icalcomponent_isa(master_) &&
            icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY))
            overrides_.push_back(c);
        else
            unrelated_ = true;
    }
    record_ = PimRecord();
    record_.uid = uid_;
    if (!ReadComponent(master_, record_, problem))
        return false;

    icalproperty* rrule = icalcomponent_get_first_property(master_, ICAL_RRULE_PROPERTY);
    const bool hasRdate = icalcomponent_get_first_property(master_, ICAL_RDATE_PROPERTY) != nullptr;
    series_ = kind_ == Kind::Event && (rrule || hasRdate);
    double until = 0.0;
    if (rrule) {
        struct icalrecurrencetype rule = icalproperty_get_rrule(rrule);
        if (series_ && TooCostlyToExpand(rule)) {
            ruleUsable_ = false;
            Log::Warning("store: series %s: a rule finer than hourly with BY parts is not expanded",
                         uid_.c_str());
        }
        if (!icaltime_is_null_time(rule.until)) {
            icaltimetype u = rule.until;
            if (!u.is_date && !icaltime_get_timezone(u)) {
                // A floating UNTIL is read in the start's zone.
                u.zone = icaltime_get_timezone(PropertyTime(master_, ICAL_DTSTART_PROPERTY));
            }
            if (!IcalTime::ToLocalDate(u, until))
                until = 0.0;
        }
        const char* ruleText = icalproperty_get_value_as_string(rrule);
        RecurrencePattern pattern;
        const double start = kind_ == Kind::Task
                                 ? (record_.startDate != kNoDate ? record_.startDate : record_.dueDate)
                                 : record_.start;
        if (ruleText && start != kNoDate && RecurrenceRule::ToPattern(ruleText, start, until, pattern)) {
            record_.isRecurring = true;
            record_.recurrence = pattern;
        }
    }
    if (kind_ == Kind::Event)
        record_.isRecurring = series_;
    longest_ = std::max(0.0, record_.end - record_.start);
    seriesEnd_ = record_.end;
    if (series_) {
        // Open unless the rule ends on a date and nothing is added beyond it.
        seriesEnd_ = rrule && until != 0.0 ? until + longest_ + 1.0 : kNoDate;
        if (rrule) {
            struct icalrecurrencetype rule = icalproperty_get_rrule(rrule);
            if (rule.count <= 0 && until == 0.0)
                seriesEnd_ = kNoDate;
            if (rule.count > 0)
                seriesEnd_ = kNoDate;
        }
        for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_RDATE_PROPERTY); p;
             p = icalcomponent_get_next_property(master_, ICAL_RDATE_PROPERTY)) {
            double date = 0.0;
            if (seriesEnd_ != kNoDate &&
                IcalTime::ToLocalDate(icalproperty_get_datetime_with_component(p, master_), date))
                seriesEnd_ = std::max(seriesEnd_, date + longest_ + 1.0);
        }
        if (!rrule && seriesEnd_ == kNoDate)
            seriesEnd_ = record_.end;
    }
    if (series_)
        PrepareSeries();
    for (const PimRecord& moved : moved_) {
        longest_ = std::max(longest_, moved.end - moved.start);
        if (seriesEnd_ != kNoDate)
            seriesEnd_ = std::max(seriesEnd_, moved.end);
    }
    // A series of RDATEs alone ends with its last date.
    if (series_ && !rrule && !extraDates_.empty())
        seriesEnd_ = std::max(seriesEnd_, extraDates_.back().first + longest_ + 1.0);
    return true;
}

void IcsItem::Expand(double from, double before, std::vector<PimRecord>& occurrences) const {
    if (kind_ != Kind::Event)
        return;
    const std::size_t firstNew = occurrences.size();
    if (!series_) {
        if (record_.start >= from && record_.start < before)
            occurrences.push_back(record_);
        return;
    }
    const icaltimetype zonedStart = PropertyTime(master_, ICAL_DTSTART_PROPERTY);
    // The series' own zone: its rule runs on that zone's wall clock.
    const icaltimezone* zone = icaltime_get_timezone(zonedStart);
    const icaltimetype dtstart = wholeDays_ ? WallDate(zonedStart) : zonedStart;
    std::time_t startUnix = 0;
    IcalTime::ToUnix(dtstart, startUnix);
    const icaltimetype dtend = PropertyTime(master_, ICAL_DTEND_PROPERTY);
    std::time_t endUnix = 0;
    const double durationDays = record_.end - record_.start;
    long durationSeconds = std::lround(durationDays * kSecondsPerDay);
    if (!record_.allDay && !icaltime_is_null_time(dtend) && IcalTime::ToUnix(dtend, endUnix) &&
        endUnix >= startUnix)
        durationSeconds = static_cast<long>(endUnix - startUnix);

    auto add = [&](icaltimetype occurrence) {
        if (wholeDays_ && !occurrence.is_date)
            occurrence = WallDate(occurrence);
        if (excluded_.Contains(occurrence))
            return;
        PimRecord record = record_;
        if (!IcalTime::ToLocalDate(occurrence, record.start))
            return;
        if (record.start < from || record.start >= before)
            return;
        if (record_.allDay || occurrence.is_date) {
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
                rule.until = WallDate(rule.until);
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
        const double jumpTo = from - longest_ - kIteratorMarginDays;
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
            if (jumpTo > record_.start) {
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
            if (rule.count <= 0 && jumpTo > record_.start) {
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
        if (occurrences[i].start == record_.start)
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

std::vector<PimRecord> IcsItem::GetOverrideRecords() const {
    std::vector<PimRecord> records;
    records.reserve(overrides_.size());
    std::string ignored;
    for (icalcomponent* component : overrides_) {
        PimRecord record;
        if (ReadComponent(component, record, ignored))
            records.push_back(std::move(record));
    }
    return records;
}

} // namespace mirodate
