#include "store/IcsItem.h"

#include "data/DateTime.h"
#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "store/IcalTime.h"
#include "store/IcsAttendees.h"
#include "store/RecurrenceRule.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace mirodate {

namespace {

constexpr double kSecondsPerDay = 86400.0;
// Iterator start is moved this much before a window, for rules finer than a day.
constexpr double kIteratorMarginDays = 1.0;

// PRIORITY 1-4 is high, 5 (or none) normal, 6-9 low.
int ImportanceOfPriority(int priority) {
    if (priority >= 1 && priority <= 4) return 2;
    if (priority >= 6 && priority <= 9) return 0;
    return 1;
}

std::u16string Text(const char* utf8) { return utf8 ? Utf8ToUtf16(utf8) : std::u16string(); }

std::u16string JoinCategories(icalcomponent* component) {
    std::u16string text;
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_CATEGORIES_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_CATEGORIES_PROPERTY)) {
        const char* value = icalproperty_get_categories(p);
        if (!value || !*value) continue;
        if (!text.empty()) text += u", ";
        text += Utf8ToUtf16(value);
    }
    return text;
}

// A time of a property with its TZID resolved (from the file's VTIMEZONEs or
// the system's zones); unknown zones read as floating local time.
icaltimetype PropertyTime(icalcomponent* component, icalproperty_kind kind) {
    icalproperty* p = icalcomponent_get_first_property(component, kind);
    if (!p) return icaltime_null_time();
    return icalproperty_get_datetime_with_component(p, component);
}

struct InstantKey {
    bool isDate = false;
    int ymd = 0;
    std::time_t utc = 0;
};

InstantKey KeyOf(const icaltimetype& t) {
    InstantKey key;
    key.isDate = t.is_date;
    key.ymd = t.year * 10000 + t.month * 100 + t.day;
    IcalTime::ToUnix(t, key.utc);
    return key;
}

bool Same(const InstantKey& excluded, const InstantKey& occurrence) {
    if (excluded.isDate || occurrence.isDate) return excluded.ymd == occurrence.ymd;
    return excluded.utc == occurrence.utc;
}

bool Listed(const std::vector<InstantKey>& keys, const InstantKey& key) {
    return std::any_of(keys.begin(), keys.end(), [&](const InstantKey& k) { return Same(k, key); });
}

} // namespace

bool IcsItem::ReadComponent(icalcomponent* component, PimRecord& record, std::string& problem) const {
    record.subject = Text(icalcomponent_get_summary(component));
    record.location = Text(icalcomponent_get_location(component));
    record.body = Text(icalcomponent_get_description(component));
    record.categories = JoinCategories(component);
    record.attendees = IcsAttendees::Read(component);
    const icaltimetype start = PropertyTime(component, ICAL_DTSTART_PROPERTY);
    if (kind_ == Kind::Task) {
        record.itemKind = 3;
        double date = kNoDate;
        if (!icaltime_is_null_time(start) && IcalTime::ToLocalDate(start, date)) record.startDate = date;
        const icaltimetype due = PropertyTime(component, ICAL_DUE_PROPERTY);
        date = kNoDate;
        if (!icaltime_is_null_time(due) && IcalTime::ToLocalDate(due, date)) record.dueDate = date;
        record.complete = icalcomponent_get_status(component) == ICAL_STATUS_COMPLETED ||
                          icalcomponent_get_first_property(component, ICAL_COMPLETED_PROPERTY) != nullptr;
        icalproperty* priority = icalcomponent_get_first_property(component, ICAL_PRIORITY_PROPERTY);
        record.importance = ImportanceOfPriority(priority ? icalproperty_get_priority(priority) : 0);
        return true;
    }
    record.itemKind = 1;
    if (!IcalTime::ToLocalDate(start, record.start)) {
        problem = "no valid DTSTART";
        return false;
    }
    record.allDay = start.is_date;
    const icaltimetype end = PropertyTime(component, ICAL_DTEND_PROPERTY);
    double endDate = 0.0;
    if (!icaltime_is_null_time(end) && IcalTime::ToLocalDate(end, endDate) && endDate >= record.start) {
        record.end = endDate;
    } else if (icalproperty* duration = icalcomponent_get_first_property(component, ICAL_DURATION_PROPERTY)) {
        const int seconds = icaldurationtype_as_int(icalproperty_get_duration(duration));
        record.end = (DateTime(record.start) + DateTimeSpan(std::max(0, seconds) / kSecondsPerDay)).ToDate();
    } else {
        record.end = record.allDay ? (DateTime(record.start) + DateTimeSpan(1.0)).ToDate() : record.start;
    }
    if (!DateTime(record.end).IsValid()) record.end = record.start;
    return true;
}

bool IcsItem::Parse(std::string_view text, std::string& problem) {
    if (text.find("BEGIN:VCALENDAR") == std::string_view::npos) {
        problem = "not iCalendar";
        return false;
    }
    const std::string copy(text); // libical wants a terminated string
    calendar_.reset(icalparser_parse_string(copy.c_str()));
    icalerror_clear_errno();
    if (!calendar_) {
        problem = "iCalendar text does not parse";
        return false;
    }
    icalcomponent* root = calendar_.get();
    if (icalcomponent_isa(root) != ICAL_VCALENDAR_COMPONENT) {
        // Some files hold a bare VEVENT; a parse of several roots gives an XROOT.
        icalcomponent* inner = icalcomponent_get_first_component(root, ICAL_VCALENDAR_COMPONENT);
        if (inner) root = inner;
    }
    // The main component: the first VEVENT or VTODO without RECURRENCE-ID,
    // else the first one at all.
    std::vector<icalcomponent*> candidates;
    for (icalcomponent* c = icalcomponent_get_first_component(root, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(root, ICAL_ANY_COMPONENT)) {
        const icalcomponent_kind k = icalcomponent_isa(c);
        if (k == ICAL_VEVENT_COMPONENT || k == ICAL_VTODO_COMPONENT) candidates.push_back(c);
    }
    if (candidates.empty() && (icalcomponent_isa(root) == ICAL_VEVENT_COMPONENT || icalcomponent_isa(root) == ICAL_VTODO_COMPONENT))
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
    if (!master_) master_ = candidates.front();
    kind_ = icalcomponent_isa(master_) == ICAL_VTODO_COMPONENT ? Kind::Task : Kind::Event;
    const char* uid = icalcomponent_get_uid(master_);
    uid_ = uid ? uid : "";
    for (icalcomponent* c : candidates) {
        if (c == master_) continue;
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
    if (!ReadComponent(master_, record_, problem)) return false;

    icalproperty* rrule = icalcomponent_get_first_property(master_, ICAL_RRULE_PROPERTY);
    const bool hasRdate = icalcomponent_get_first_property(master_, ICAL_RDATE_PROPERTY) != nullptr;
    series_ = kind_ == Kind::Event && (rrule || hasRdate);
    double until = 0.0;
    if (rrule) {
        struct icalrecurrencetype rule = icalproperty_get_rrule(rrule);
        if (!icaltime_is_null_time(rule.until)) {
            icaltimetype u = rule.until;
            if (!u.is_date && !icaltime_get_timezone(u)) {
                // A floating UNTIL is read in the start's zone.
                u.zone = icaltime_get_timezone(PropertyTime(master_, ICAL_DTSTART_PROPERTY));
            }
            if (!IcalTime::ToLocalDate(u, until)) until = 0.0;
        }
        const char* ruleText = icalproperty_get_value_as_string(rrule);
        RecurrencePattern pattern;
        const double start = kind_ == Kind::Task ? (record_.startDate != kNoDate ? record_.startDate : record_.dueDate)
                                                 : record_.start;
        if (ruleText && start != kNoDate && RecurrenceRule::ToPattern(ruleText, start, until, pattern)) {
            record_.isRecurring = true;
            record_.recurrence = pattern;
        }
    }
    if (kind_ == Kind::Event) record_.isRecurring = series_;
    longest_ = std::max(0.0, record_.end - record_.start);
    seriesEnd_ = record_.end;
    if (series_) {
        // Open unless the rule ends on a date and nothing is added beyond it.
        seriesEnd_ = rrule && until != 0.0 ? until + longest_ + 1.0 : kNoDate;
        if (rrule) {
            struct icalrecurrencetype rule = icalproperty_get_rrule(rrule);
            if (rule.count <= 0 && until == 0.0) seriesEnd_ = kNoDate;
            if (rule.count > 0) seriesEnd_ = kNoDate;
        }
        for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_RDATE_PROPERTY); p;
             p = icalcomponent_get_next_property(master_, ICAL_RDATE_PROPERTY)) {
            double date = 0.0;
            if (seriesEnd_ != kNoDate && IcalTime::ToLocalDate(icalproperty_get_datetime_with_component(p, master_), date))
                seriesEnd_ = std::max(seriesEnd_, date + longest_ + 1.0);
        }
        if (!rrule && seriesEnd_ == kNoDate) seriesEnd_ = record_.end;
    }
    for (icalcomponent* o : overrides_) {
        PimRecord moved;
        std::string ignored;
        if (ReadComponent(o, moved, ignored)) {
            longest_ = std::max(longest_, moved.end - moved.start);
            if (seriesEnd_ != kNoDate) seriesEnd_ = std::max(seriesEnd_, moved.end);
        }
    }
    return true;
}

void IcsItem::Expand(double from, double before, std::vector<PimRecord>& occurrences) const {
    if (kind_ != Kind::Event) return;
    const std::size_t firstNew = occurrences.size();
    if (!series_) {
        if (record_.start >= from && record_.start < before) occurrences.push_back(record_);
        return;
    }
    const icaltimetype dtstart = PropertyTime(master_, ICAL_DTSTART_PROPERTY);
    const icaltimezone* zone = icaltime_get_timezone(dtstart);
    std::time_t startUnix = 0;
    IcalTime::ToUnix(dtstart, startUnix);
    const icaltimetype dtend = PropertyTime(master_, ICAL_DTEND_PROPERTY);
    std::time_t endUnix = 0;
    const double durationDays = record_.end - record_.start;
    long durationSeconds = std::lround(durationDays * kSecondsPerDay);
    if (!record_.allDay && !icaltime_is_null_time(dtend) && IcalTime::ToUnix(dtend, endUnix) && endUnix >= startUnix)
        durationSeconds = static_cast<long>(endUnix - startUnix);

    std::vector<InstantKey> excluded;
    for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master_, ICAL_EXDATE_PROPERTY))
        excluded.push_back(KeyOf(icalproperty_get_datetime_with_component(p, master_)));
    for (icalcomponent* o : overrides_) {
        icalproperty* rid = icalcomponent_get_first_property(o, ICAL_RECURRENCEID_PROPERTY);
        excluded.push_back(KeyOf(icalproperty_get_datetime_with_component(rid, o)));
    }

    auto add = [&](const icaltimetype& occurrence) {
        if (Listed(excluded, KeyOf(occurrence))) return;
        PimRecord record = record_;
        if (!IcalTime::ToLocalDate(occurrence, record.start)) return;
        if (record.start < from || record.start >= before) return;
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

    if (icalproperty* rrule = icalcomponent_get_first_property(master_, ICAL_RRULE_PROPERTY)) {
        struct icalrecurrencetype rule = icalproperty_get_rrule(rrule);
        IcalRecurIteratorPtr iterator(icalrecur_iterator_new(rule, dtstart));
        if (iterator) {
            // Rules without COUNT can start near the window instead of at DTSTART.
            const double jumpTo = from - longest_ - kIteratorMarginDays;
            if (rule.count <= 0 && jumpTo > record_.start) {
                const icaltimetype start = IcalTime::FromLocalDate(jumpTo, dtstart.is_date, zone);
                if (!icaltime_is_null_time(start)) icalrecur_iterator_set_start(iterator.get(), start);
            }
            int iterations = 0, produced = 0;
            for (;;) {
                icaltimetype occurrence = icalrecur_iterator_next(iterator.get());
                if (icaltime_is_null_time(occurrence)) break;
                if (++iterations > kMaxIterations || produced >= kMaxOccurrences) {
                    Log::Warning("store: series %s has too many occurrences; the rest is left out", uid_.c_str());
                    break;
                }
                occurrence.zone = dtstart.zone;
                double local = 0.0;
                if (!IcalTime::ToLocalDate(occurrence, local)) break;
                if (local >= before) break;
                const std::size_t size = occurrences.size();
                add(occurrence);
                if (occurrences.size() != size) ++produced;
            }
        }
    }
    for (icalproperty* p = icalcomponent_get_first_property(master_, ICAL_RDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(master_, ICAL_RDATE_PROPERTY)) {
        icaltimetype t = icalproperty_get_datetime_with_component(p, master_);
        if (!icaltime_is_null_time(t)) add(t);
    }
    // A plain DTSTART counts as an occurrence even when the rule skips it.
    bool startListed = false;
    for (std::size_t i = firstNew; i < occurrences.size(); ++i)
        if (occurrences[i].start == record_.start) startListed = true;
    if (!startListed) add(dtstart);

    for (icalcomponent* o : overrides_) {
        if (icalcomponent_get_status(o) == ICAL_STATUS_CANCELLED) continue;
        PimRecord moved = record_;
        std::string ignored;
        if (!ReadComponent(o, moved, ignored)) continue;
        // An override says only what changed; the rest comes from the series.
        if (moved.subject.empty()) moved.subject = record_.subject;
        if (moved.location.empty()) moved.location = record_.location;
        if (moved.categories.empty()) moved.categories = record_.categories;
        if (moved.attendees.empty()) moved.attendees = record_.attendees;
        if (moved.start < from || moved.start >= before) continue;
        moved.isRecurring = true;
        occurrences.push_back(std::move(moved));
    }
    std::stable_sort(occurrences.begin() + static_cast<std::ptrdiff_t>(firstNew), occurrences.end(),
                     [](const PimRecord& a, const PimRecord& b) { return a.start < b.start; });
}

} // namespace mirodate
