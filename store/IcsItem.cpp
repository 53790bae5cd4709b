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
#include <strings.h>

namespace mirodate {

namespace {

constexpr double kSecondsPerDay = 86400.0;

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
    const icaltimetype start = IcalTime::PropertyTime(component, ICAL_DTSTART_PROPERTY);
    const icaltimetype end = IcalTime::PropertyTime(component, ICAL_DTEND_PROPERTY);
    return IsMidnight(start) && (icaltime_is_null_time(end) || IsMidnight(end));
}

} // namespace

void IcsItem::PrepareSeries() {
    std::vector<PimRecord> moved;
    for (icalcomponent* o : overrides_) {
        // A cancelled occurrence stays, marked, for the views to strike through.
        PimRecord record = record_;
        std::string ignored;
        if (!ReadComponent(o, record, ignored))
            continue;
        // An override says only what changed; the rest comes from the series.
        if (record.subject.empty())
            record.subject = record_.subject;
        if (record.location.empty())
            record.location = record_.location;
        if (record.categories.empty())
            record.categories = record_.categories;
        if (record.attendees.empty())
            record.attendees = record_.attendees;
        record.isRecurring = true;
        moved.push_back(std::move(record));
    }
    expansion_.Prepare(master_, overrides_, std::move(moved), wholeDays_, ruleUsable_, uid_);
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
    icaltimetype start = IcalTime::PropertyTime(component, ICAL_DTSTART_PROPERTY);
    if (wholeDays)
        start = IcalTime::WallDate(start);
    if (kind_ == Kind::Task) {
        record.itemKind = 3;
        double date = kNoDate;
        if (!icaltime_is_null_time(start) && IcalTime::ToLocalDate(start, date))
            record.startDate = date;
        const icaltimetype due = IcalTime::PropertyTime(component, ICAL_DUE_PROPERTY);
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
    icaltimetype end = IcalTime::PropertyTime(component, ICAL_DTEND_PROPERTY);
    if (wholeDays && !icaltime_is_null_time(end))
        end = IcalTime::WallDate(end);
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
        if (series_ && IcsExpansion::TooCostlyToExpand(rule)) {
            ruleUsable_ = false;
            Log::Warning("store: series %s: a rule finer than hourly with BY parts is not expanded",
                         uid_.c_str());
        }
        if (!icaltime_is_null_time(rule.until)) {
            icaltimetype u = rule.until;
            if (!u.is_date && !icaltime_get_timezone(u)) {
                // A floating UNTIL is read in the start's zone.
                u.zone = icaltime_get_timezone(IcalTime::PropertyTime(master_, ICAL_DTSTART_PROPERTY));
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
    for (const PimRecord& moved : expansion_.Moved()) {
        longest_ = std::max(longest_, moved.end - moved.start);
        if (seriesEnd_ != kNoDate)
            seriesEnd_ = std::max(seriesEnd_, moved.end);
    }
    // A series of RDATEs alone ends with its last date.
    if (series_ && !rrule && !expansion_.ExtraDates().empty())
        seriesEnd_ = std::max(seriesEnd_, expansion_.ExtraDates().back().first + longest_ + 1.0);
    return true;
}

void IcsItem::Expand(double from, double before, std::vector<PimRecord>& occurrences, bool* complete) const {
    if (complete)
        *complete = true;
    if (kind_ != Kind::Event)
        return;
    if (!series_) {
        if (record_.start >= from && record_.start < before)
            occurrences.push_back(record_);
        return;
    }
    expansion_.Expand(record_, longest_, from, before, occurrences, complete);
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
