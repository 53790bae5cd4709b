#include "store/IcsAlarms.h"

#include "data/PimSource.h"
#include "platform/Log.h"
#include "store/IcalHandle.h"
#include "store/IcalText.h"
#include "store/IcalTime.h"
#include "store/IcsItem.h"
#include "store/IcsWriter.h"
#include "store/VtimezoneFilter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace mirodate {

namespace {

constexpr double kSecondsPerDay = 86400.0;
// Two moments closer than this are the same (times are written to the second).
constexpr double kSameMoment = 0.5 / kSecondsPerDay;
// How far after a fixed alarm the occurrence it speaks of is looked for.
constexpr double kAbsoluteLookAheadDays = 31.0;
constexpr const char* kLastAck = "X-MOZ-LASTACK";
constexpr const char* kSnoozeTime = "X-MOZ-SNOOZE-TIME";
constexpr std::size_t kSnoozeTimeLength = 17; // strlen(kSnoozeTime)
constexpr const char* kMozSnoozeKey = "moz-snooze";

bool IsItemComponent(icalcomponent* c) {
    const auto kind = icalcomponent_isa(c);
    return kind == ICAL_VEVENT_COMPONENT || kind == ICAL_VTODO_COMPONENT;
}

double DurationDays(const icaldurationtype& d) {
    // Field by field, so that absurd durations do not overflow an int.
    const double days =
        7.0 * d.weeks + d.days + d.hours / 24.0 + d.minutes / 1440.0 + d.seconds / kSecondsPerDay;
    return d.is_neg ? -days : days;
}

bool UtcTextToLocal(const char* text, double& date) {
    if (!text || !*text)
        return false;
    const icaltimetype t = icaltime_from_string(text);
    return !icaltime_is_null_time(t) && IcalTime::ToLocalDate(t, date);
}

icaltimetype UtcOf(double localDate) {
    return IcalTime::FromLocalDate(localDate, false, icaltimezone_get_utc_timezone());
}

// Thunderbird names the snooze of a series' occurrence after the
// occurrence's start in microseconds since 1970.
std::string SnoozePropertyName(double occurrence) {
    if (occurrence == kNoDate)
        return kSnoozeTime;
    std::time_t seconds = 0;
    IcalTime::ToUnix(UtcOf(occurrence), seconds);
    return std::string(kSnoozeTime) + "-" + std::to_string(static_cast<long long>(seconds) * 1000000);
}

double OccurrenceOfSnoozeName(const char* name) {
    if (std::strlen(name) <= kSnoozeTimeLength + 1 || name[kSnoozeTimeLength] != '-')
        return kNoDate;
    char* end = nullptr;
    const long long micro = std::strtoll(name + kSnoozeTimeLength + 1, &end, 10);
    if (!end || *end)
        return kNoDate;
    double date = kNoDate;
    const icaltimetype wall = IcalTime::WallTimeIn(static_cast<std::time_t>(micro / 1000000), nullptr);
    return IcalTime::ToLocalDate(wall, date) ? date : kNoDate;
}

const char* XName(icalproperty* p) {
    const char* name = icalproperty_get_x_name(p);
    return name ? name : "";
}

bool IsSnoozeProperty(icalproperty* p) {
    return strncasecmp(XName(p), kSnoozeTime, kSnoozeTimeLength) == 0;
}

std::string RelatedSnooze(icalcomponent* alarm) {
    for (icalproperty* p = icalcomponent_get_first_property(alarm, ICAL_RELATEDTO_PROPERTY); p;
         p = icalcomponent_get_next_property(alarm, ICAL_RELATEDTO_PROPERTY)) {
        const char* type = icalproperty_get_parameter_as_string(p, "RELTYPE");
        if (type && strcasecmp(type, "SNOOZE") == 0) {
            const char* value = icalproperty_get_relatedto(p);
            return value ? value : "";
        }
    }
    return {};
}

bool HasRelatedSnooze(icalcomponent* alarm) {
    for (icalproperty* p = icalcomponent_get_first_property(alarm, ICAL_RELATEDTO_PROPERTY); p;
         p = icalcomponent_get_next_property(alarm, ICAL_RELATEDTO_PROPERTY)) {
        const char* type = icalproperty_get_parameter_as_string(p, "RELTYPE");
        if (type && strcasecmp(type, "SNOOZE") == 0)
            return true;
    }
    return false;
}

void RemoveAll(icalcomponent* component, icalproperty_kind kind) {
    while (icalproperty* p = icalcomponent_get_first_property(component, kind)) {
        icalcomponent_remove_property(component, p);
        icalproperty_free(p);
    }
}

void RemoveX(icalcomponent* component, const std::string& name) {
    std::vector<icalproperty*> gone;
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_X_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_X_PROPERTY))
        if (strcasecmp(XName(p), name.c_str()) == 0)
            gone.push_back(p);
    for (icalproperty* p : gone) {
        icalcomponent_remove_property(component, p);
        icalproperty_free(p);
    }
}

void SetX(icalcomponent* component, const std::string& name, const std::string& value) {
    RemoveX(component, name);
    icalproperty* p = icalproperty_new_x(value.c_str());
    icalproperty_set_x_name(p, name.c_str());
    icalcomponent_add_property(component, p);
}

std::string UtcText(double localDate) {
    return IcalTime::LocalDateToUtcText(localDate);
}

// The calendar of a file we may write back: one VCALENDAR, its zones
// checked as when reading.
IcalComponentPtr ParseCalendar(std::string_view text) {
    IcalComponentPtr calendar = IcalText::Parse(text);
    if (calendar && icalcomponent_isa(calendar.get()) != ICAL_VCALENDAR_COMPONENT)
        calendar.reset();
    VtimezoneFilter::Apply(calendar.get());
    return calendar;
}

// Where the alarm of a reminder lives: the occurrence's own component when
// it has that alarm, else the main component.
struct AlarmPlace {
    icalcomponent* item = nullptr;
    icalcomponent* alarm = nullptr; // null for the item's X-MOZ-SNOOZE-TIME
};

icalcomponent* FindAlarm(icalcomponent* item, const std::string& key) {
    int index = 0;
    for (icalcomponent* a = icalcomponent_get_first_component(item, ICAL_VALARM_COMPONENT); a;
         a = icalcomponent_get_next_component(item, ICAL_VALARM_COMPONENT), ++index) {
        if (key[0] == '#') {
            if (key == "#" + std::to_string(index))
                return a;
        } else {
            icalproperty* uid = icalcomponent_get_first_property(a, ICAL_UID_PROPERTY);
            const char* value = uid ? icalproperty_get_uid(uid) : nullptr;
            if (value && key == value)
                return a;
        }
    }
    return nullptr;
}

bool Locate(icalcomponent* calendar, const Reminder& reminder, AlarmPlace& place) {
    if (reminder.alarm.empty())
        return false;
    icalcomponent* master = nullptr;
    icalcomponent* own = nullptr;
    for (icalcomponent* c = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT)) {
        if (!IsItemComponent(c))
            continue;
        icalproperty* rid = icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY);
        if (!rid) {
            if (!master)
                master = c;
            continue;
        }
        double date = kNoDate;
        if (reminder.occurrence != kNoDate &&
            IcalTime::ToLocalDate(icalproperty_get_datetime_with_component(rid, c), date) &&
            std::fabs(date - reminder.occurrence) < kSameMoment)
            own = c;
    }
    for (icalcomponent* item : {own, master}) {
        if (!item)
            continue;
        if (reminder.alarm == kMozSnoozeKey) {
            place = {item, nullptr};
            return true;
        }
        if (icalcomponent* alarm = FindAlarm(item, reminder.alarm)) {
            place = {item, alarm};
            return true;
        }
    }
    return false;
}

std::string Serialise(icalcomponent* calendar) {
    char* text = icalcomponent_as_ical_string_r(calendar);
    std::string out = text ? text : "";
    std::free(text);
    return out;
}

void Acknowledge(const AlarmPlace& place, const Reminder& reminder, double now) {
    if (place.alarm) {
        RemoveAll(place.alarm, ICAL_ACKNOWLEDGED_PROPERTY);
        icalcomponent_add_property(place.alarm, icalproperty_new_acknowledged(UtcOf(now)));
    }
    SetX(place.item, kLastAck, UtcText(now));
    RemoveX(place.item, SnoozePropertyName(reminder.occurrence));
}

void RemoveAlarm(icalcomponent* item, icalcomponent* alarm) {
    icalcomponent_remove_component(item, alarm);
    icalcomponent_free(alarm);
}

} // namespace

bool IcsAlarms::MayHaveAlarms(std::string_view text) {
    static constexpr std::string_view kNeedle = "VALARM";
    static constexpr std::string_view kSnooze = "X-MOZ-SNOOZE";
    auto contains = [text](std::string_view needle) {
        return std::search(text.begin(), text.end(), needle.begin(), needle.end(), [](char a, char b) {
                   return (a >= 'a' && a <= 'z' ? a - 32 : a) == b;
               }) != text.end();
    };
    return contains(kNeedle) || contains(kSnooze);
}

bool IcsAlarms::Parse(std::string_view text) {
    parts_.clear();
    minOffset_ = maxOffset_ = 0.0;
    anyAbsolute_ = false;
    IcalComponentPtr root = IcalText::Parse(text);
    if (!root)
        return false;
    VtimezoneFilter::Apply(root.get());
    icalcomponent* calendar = root.get();
    if (icalcomponent_isa(calendar) != ICAL_VCALENDAR_COMPONENT)
        calendar = icalcomponent_get_first_component(calendar, ICAL_VCALENDAR_COMPONENT);
    if (!calendar)
        return false;
    int read = 0;
    bool warned = false;
    std::string uid;
    bool masterSeen = false;
    for (icalcomponent* c = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT)) {
        if (!IsItemComponent(c))
            continue;
        const char* cuid = icalcomponent_get_uid(c);
        if (uid.empty() && cuid)
            uid = cuid;
        else if (cuid && uid != cuid)
            continue; // another item: not read, as by the store
        Part part;
        icalproperty* rid = icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY);
        if (rid) {
            if (!IcalTime::ToLocalDate(icalproperty_get_datetime_with_component(rid, c), part.recurrenceId))
                continue;
            icalproperty* start = icalcomponent_get_first_property(c, ICAL_DTSTART_PROPERTY);
            if (!start ||
                !IcalTime::ToLocalDate(icalproperty_get_datetime_with_component(start, c), part.start))
                part.start = part.recurrenceId;
        } else if (masterSeen) {
            continue;
        }
        for (icalproperty* p = icalcomponent_get_first_property(c, ICAL_X_PROPERTY); p;
             p = icalcomponent_get_next_property(c, ICAL_X_PROPERTY)) {
            double date = 0.0;
            if (strcasecmp(XName(p), kLastAck) == 0 && UtcTextToLocal(icalproperty_get_x(p), date))
                part.lastAck = std::max(part.lastAck, date);
        }
        int index = -1;
        for (icalcomponent* a = icalcomponent_get_first_component(c, ICAL_VALARM_COMPONENT); a;
             a = icalcomponent_get_next_component(c, ICAL_VALARM_COMPONENT)) {
            ++index;
            if (read >= kMaxAlarms) {
                if (!warned)
                    Log::Warning("store: item %s has more than %d alarms; the rest are ignored", uid.c_str(),
                                 kMaxAlarms);
                warned = true;
                break;
            }
            Alarm alarm;
            icalproperty* action = icalcomponent_get_first_property(a, ICAL_ACTION_PROPERTY);
            const icalproperty_action kind = action ? icalproperty_get_action(action) : ICAL_ACTION_DISPLAY;
            if (kind != ICAL_ACTION_DISPLAY && kind != ICAL_ACTION_AUDIO)
                continue;
            alarm.audio = kind == ICAL_ACTION_AUDIO;
            icalproperty* trigger = icalcomponent_get_first_property(a, ICAL_TRIGGER_PROPERTY);
            if (!trigger)
                continue;
            const icaltriggertype t = icalproperty_get_trigger(trigger);
            if (!icaltime_is_null_time(t.time)) {
                alarm.absolute = true;
                if (!IcalTime::ToLocalDate(t.time, alarm.at))
                    continue;
            } else {
                alarm.offset = DurationDays(t.duration);
                if (!(std::fabs(alarm.offset) <= kMaxOffsetDays)) {
                    Log::Warning("store: item %s: an alarm %g days from its item is ignored", uid.c_str(),
                                 alarm.offset);
                    continue;
                }
                icalparameter* related = icalproperty_get_first_parameter(trigger, ICAL_RELATED_PARAMETER);
                alarm.relatedEnd = related && icalparameter_get_related(related) == ICAL_RELATED_END;
            }
            icalproperty* auid = icalcomponent_get_first_property(a, ICAL_UID_PROPERTY);
            const char* auidText = auid ? icalproperty_get_uid(auid) : nullptr;
            alarm.key = auidText && *auidText ? std::string(auidText) : "#" + std::to_string(index);
            if (icalproperty* ack = icalcomponent_get_first_property(a, ICAL_ACKNOWLEDGED_PROPERTY)) {
                double date = 0.0;
                if (IcalTime::ToLocalDate(icalproperty_get_acknowledged(ack), date))
                    alarm.acknowledged = date;
            }
            alarm.snooze = HasRelatedSnooze(a);
            part.alarms.push_back(std::move(alarm));
            ++read;
        }
        // Snoozes kept on the item: the occurrence they belong to comes
        // from the name; the ones our own snooze alarms repeat are skipped.
        for (icalproperty* p = icalcomponent_get_first_property(c, ICAL_X_PROPERTY); p;
             p = icalcomponent_get_next_property(c, ICAL_X_PROPERTY)) {
            double at = 0.0;
            if (!IsSnoozeProperty(p) || !UtcTextToLocal(icalproperty_get_x(p), at))
                continue;
            const double occurrence = OccurrenceOfSnoozeName(XName(p));
            bool repeated = false;
            for (Alarm& alarm : part.alarms)
                if (alarm.snooze && alarm.absolute && std::fabs(alarm.at - at) < kSameMoment) {
                    alarm.snoozedOccurrence = occurrence;
                    repeated = true;
                }
            if (repeated || read >= kMaxAlarms)
                continue;
            Alarm alarm;
            alarm.key = kMozSnoozeKey;
            alarm.absolute = true;
            alarm.snooze = true;
            alarm.at = at;
            alarm.snoozedOccurrence = occurrence;
            part.alarms.push_back(std::move(alarm));
            ++read;
        }
        if (!rid) {
            masterSeen = true;
            parts_.insert(parts_.begin(), std::move(part));
        } else {
            parts_.push_back(std::move(part));
        }
    }
    if (!masterSeen)
        parts_.clear();
    bool any = false;
    for (const Part& part : parts_)
        for (const Alarm& alarm : part.alarms) {
            any = true;
            if (alarm.absolute) {
                anyAbsolute_ = true;
            } else {
                minOffset_ = std::min(minOffset_, alarm.offset);
                maxOffset_ = std::max(maxOffset_, alarm.offset);
            }
        }
    if (!any)
        parts_.clear();
    return any;
}

const IcsAlarms::Part* IcsAlarms::OverrideAt(double occurrenceStart, double originalStart) const {
    for (std::size_t i = 1; i < parts_.size(); ++i)
        if (std::fabs(parts_[i].start - occurrenceStart) < kSameMoment ||
            std::fabs(parts_[i].recurrenceId - originalStart) < kSameMoment)
            return &parts_[i];
    return nullptr;
}

void IcsAlarms::AddReminder(const Alarm& alarm, double lastAck, const PimRecord& occurrence,
                            double occurrenceId, double from, double before,
                            std::vector<Reminder>& out) const {
    double moment = alarm.at;
    if (!alarm.absolute) {
        double base = occurrence.start;
        if (occurrence.itemKind == kItemTask) {
            const double start = occurrence.startDate != kNoDate ? occurrence.startDate : occurrence.dueDate;
            const double due = occurrence.dueDate != kNoDate ? occurrence.dueDate : occurrence.startDate;
            base = alarm.relatedEnd ? due : start;
            if (base == kNoDate)
                return;
        } else if (alarm.relatedEnd) {
            base = occurrence.end;
        }
        // To the second, as the times in the file are.
        moment = std::round((base + alarm.offset) * kSecondsPerDay) / kSecondsPerDay;
    }
    if (moment < from || moment >= before)
        return;
    if (moment <= std::max(lastAck, alarm.acknowledged) + kSameMoment / 2)
        return;
    Reminder reminder;
    reminder.oid = occurrence.oid;
    reminder.itemKind = occurrence.itemKind == kItemTask ? kItemTask : kItemAppointment;
    reminder.alarm = alarm.key;
    reminder.occurrence = occurrenceId;
    reminder.moment = moment;
    reminder.snoozed = alarm.snooze;
    reminder.audio = alarm.audio;
    reminder.subject = occurrence.subject;
    reminder.location = occurrence.location;
    if (occurrence.itemKind == kItemTask) {
        reminder.start = occurrence.dueDate != kNoDate ? occurrence.dueDate : occurrence.startDate;
        reminder.end = reminder.start;
    } else {
        reminder.start = occurrence.start;
        reminder.end = occurrence.end;
        reminder.allDay = occurrence.allDay;
    }
    out.push_back(std::move(reminder));
}

void IcsAlarms::Collect(const PimRecord& record, const IcsItem* series, double from, double before,
                        std::vector<Reminder>& out) const {
    if (parts_.empty())
        return;
    const Part& master = parts_.front();
    if (!series || !series->IsSeries() || record.itemKind == kItemTask) {
        if (record.cancelled || (record.itemKind == kItemTask && record.complete))
            return;
        for (const Alarm& alarm : master.alarms)
            AddReminder(alarm, master.lastAck, record, kNoDate, from, before, out);
        return;
    }
    // Every occurrence whose relative alarms can fall into the window.
    const double longest = series->GetLongestDuration();
    std::vector<PimRecord> occurrences;
    series->Expand(from - maxOffset_ - longest, before - minOffset_, occurrences);
    for (PimRecord& occurrence : occurrences) {
        occurrence.oid = record.oid;
        if (occurrence.cancelled)
            continue;
        const Part* own = OverrideAt(occurrence.start, occurrence.start);
        const double id = own ? own->recurrenceId : occurrence.start;
        const Part& holder = own && !own->alarms.empty() ? *own : master;
        const double lastAck = std::max(holder.lastAck, own ? own->lastAck : 0.0);
        for (const Alarm& alarm : holder.alarms)
            if (!alarm.absolute)
                AddReminder(alarm, lastAck, occurrence, id, from, before, out);
    }
    if (!anyAbsolute_)
        return;
    // A fixed moment is one reminder of the occurrence it was set for (a
    // snooze), or of the next occurrence after it.
    for (const Part& part : parts_)
        for (const Alarm& alarm : part.alarms) {
            if (!alarm.absolute || alarm.at < from || alarm.at >= before)
                continue;
            const double occurrenceStart =
                alarm.snoozedOccurrence != kNoDate ? alarm.snoozedOccurrence : part.recurrenceId;
            std::vector<PimRecord> found;
            if (occurrenceStart != kNoDate)
                series->Expand(occurrenceStart - kSameMoment, occurrenceStart + kSameMoment, found);
            if (found.empty())
                series->Expand(alarm.at - longest, alarm.at + kAbsoluteLookAheadDays, found);
            PimRecord occurrence = found.empty() ? record : found.front();
            occurrence.oid = record.oid;
            if (occurrence.cancelled)
                continue;
            const double id = found.empty()                ? kNoDate
                              : occurrenceStart != kNoDate ? occurrenceStart
                                                           : occurrence.start;
            AddReminder(alarm, part.lastAck, occurrence, id, from, before, out);
        }
}

bool IcsAlarms::Dismiss(std::string_view existing, const Reminder& reminder, double now, std::string& out) {
    IcalComponentPtr calendar = ParseCalendar(existing);
    AlarmPlace place;
    if (!calendar || !Locate(calendar.get(), reminder, place))
        return false;
    Acknowledge(place, reminder, now);
    // A snooze that has come back has done its work.
    if (place.alarm && HasRelatedSnooze(place.alarm))
        RemoveAlarm(place.item, place.alarm);
    out = Serialise(calendar.get());
    return true;
}

bool IcsAlarms::Snooze(std::string_view existing, const Reminder& reminder, double now, double until,
                       std::string& out) {
    IcalComponentPtr calendar = ParseCalendar(existing);
    AlarmPlace place;
    if (!calendar || !Locate(calendar.get(), reminder, place))
        return false;
    Acknowledge(place, reminder, now);
    std::string snoozedUid;
    icalcomponent* model = place.alarm;
    if (place.alarm && HasRelatedSnooze(place.alarm)) {
        // Snoozed again: the new snooze stands for the same original alarm.
        snoozedUid = RelatedSnooze(place.alarm);
    } else if (place.alarm) {
        icalproperty* uid = icalcomponent_get_first_property(place.alarm, ICAL_UID_PROPERTY);
        const char* value = uid ? icalproperty_get_uid(uid) : nullptr;
        if (value && *value) {
            snoozedUid = value;
        } else {
            snoozedUid = IcsWriter::MakeUid();
            icalcomponent_add_property(place.alarm, icalproperty_new_uid(snoozedUid.c_str()));
        }
    }
    icalcomponent* snooze = icalcomponent_new(ICAL_VALARM_COMPONENT);
    icalcomponent_add_property(snooze, icalproperty_new_uid(IcsWriter::MakeUid().c_str()));
    const bool audio =
        model && icalcomponent_get_first_property(model, ICAL_ACTION_PROPERTY) &&
        icalproperty_get_action(icalcomponent_get_first_property(model, ICAL_ACTION_PROPERTY)) ==
            ICAL_ACTION_AUDIO;
    icalcomponent_add_property(snooze,
                               icalproperty_new_action(audio ? ICAL_ACTION_AUDIO : ICAL_ACTION_DISPLAY));
    if (!audio) {
        const char* description = model ? icalcomponent_get_description(model) : nullptr;
        const char* summary = icalcomponent_get_summary(place.item);
        icalcomponent_add_property(snooze,
                                   icalproperty_new_description(description && *description ? description
                                                                : summary                   ? summary
                                                                                            : "Reminder"));
    }
    icaltriggertype trigger{};
    trigger.time = UtcOf(until);
    trigger.duration = icaldurationtype_null_duration();
    icalproperty* triggerProperty = icalproperty_new_trigger(trigger);
    icalproperty_add_parameter(triggerProperty, icalparameter_new_value(ICAL_VALUE_DATETIME));
    icalcomponent_add_property(snooze, triggerProperty);
    if (!snoozedUid.empty()) {
        icalproperty* related = icalproperty_new_relatedto(snoozedUid.c_str());
        icalproperty_set_parameter_from_string(related, "RELTYPE", "SNOOZE");
        icalcomponent_add_property(snooze, related);
    }
    if (place.alarm && HasRelatedSnooze(place.alarm))
        RemoveAlarm(place.item, place.alarm);
    icalcomponent_add_component(place.item, snooze);
    SetX(place.item, SnoozePropertyName(reminder.occurrence), UtcText(until));
    out = Serialise(calendar.get());
    return true;
}

} // namespace mirodate
