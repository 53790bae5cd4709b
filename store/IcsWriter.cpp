#include "store/IcsWriter.h"

#include "data/DateTime.h"
#include "data/RecurrenceLimits.h"
#include "platform/TextUtil.h"
#include "store/IcalHandle.h"
#include "store/IcalText.h"
#include "store/IcalTime.h"
#include "store/IcsAttendees.h"
#include "store/IcsEditorFields.h"
#include "store/IcsItem.h"
#include "store/RecurrenceRule.h"
#include "store/SeriesExceptions.h"
#include "store/TaskRecurrence.h"
#include "store/VtimezoneFilter.h"

#include <cstdio>
#include <random>

namespace mirodate {

namespace {

constexpr const char* kProductId = "-//Kestrelia//Mirodate//EN";

// PRIORITY for the record's importance (0 low, 1 normal, 2 high).
int PriorityOfImportance(int importance) {
    return importance >= 2 ? 1 : importance <= 0 ? 9 : 5;
}

void RemoveAll(icalcomponent* component, icalproperty_kind kind) {
    while (icalproperty* p = icalcomponent_get_first_property(component, kind)) {
        icalcomponent_remove_property(component, p);
        icalproperty_free(p);
    }
}

// A time property in the local zone, written with its plain zone name so
// that other programs find the zone; UTC as such; floating when the zone
// is unknown.
icalproperty* TimeProperty(icalproperty_kind kind, double date, bool isDate) {
    const std::string zoneName = IcalTime::LocalZoneName();
    icaltimetype t = IcalTime::FromLocalDate(date, isDate, nullptr);
    if (!isDate && zoneName == "UTC")
        t = IcalTime::FromLocalDate(date, false, icaltimezone_get_utc_timezone());
    icalproperty* p = icalproperty_new(kind);
    icalproperty_set_value(p, isDate ? icalvalue_new_date(t) : icalvalue_new_datetime(t));
    if (!isDate && !zoneName.empty() && zoneName != "UTC" && IcalTime::LocalZone())
        icalproperty_add_parameter(p, icalparameter_new_tzid(zoneName.c_str()));
    return p;
}

void SetText(icalcomponent* component, icalproperty_kind kind, const std::u16string& text) {
    RemoveAll(component, kind);
    if (text.empty())
        return;
    icalproperty* p = icalproperty_new(kind);
    icalproperty_set_value(p, icalvalue_new_text(Utf16ToUtf8(text).c_str()));
    icalcomponent_add_property(component, p);
}

void SetStamp(icalcomponent* component) {
    RemoveAll(component, ICAL_DTSTAMP_PROPERTY);
    icalcomponent_add_property(component, icalproperty_new_dtstamp(icaltime_current_time_with_zone(
                                              icaltimezone_get_utc_timezone())));
}

// The first start a series counts from: the appointment's start, the task's
// start or else its due date.
double SeriesStart(const PimRecord& record) {
    if (record.itemKind != 3)
        return record.start;
    return record.startDate != kNoDate ? record.startDate : record.dueDate;
}

// Two records that say the same rule (the day the series starts is the
// item's own, not the rule's).
bool SameRule(const PimRecord& a, const PimRecord& b) {
    // A recurring record without a pattern asks to keep the rule as written.
    if (b.isRecurring && b.recurrence.RecurrenceType == RecurrencePattern::kNotRecurring)
        return a.isRecurring;
    if (a.isRecurring != b.isRecurring)
        return false;
    if (!a.isRecurring)
        return true;
    RecurrencePattern x = a.recurrence, y = b.recurrence;
    x.PatternStartDate = y.PatternStartDate = 0.0;
    return x == y;
}

// A rule kept as the file wrote it: an RRULE line without parameters goes
// back out as the very text that came in, which libical would otherwise
// write in its own order and leave out parts it takes as defaults (WKST=MO).
void KeepRawRule(icalcomponent* component, const std::string& line) {
    constexpr size_t kNameLength = 6; // "RRULE:"
    if (line.size() <= kNameLength || line[kNameLength - 1] != ':')
        return;
    RemoveAll(component, ICAL_RRULE_PROPERTY);
    icalproperty* raw = icalproperty_new_x(line.c_str() + kNameLength);
    icalproperty_set_x_name(raw, "RRULE");
    icalcomponent_add_property(component, raw);
}

void WriteRule(icalcomponent* component, const PimRecord& record) {
    RemoveAll(component, ICAL_RRULE_PROPERTY);
    if (!record.isRecurring || record.recurrence.RecurrenceType == RecurrencePattern::kNotRecurring)
        return;
    const double start = SeriesStart(record);
    if (start == kNoDate)
        return;
    // Out-of-range fields are clamped here too: a record from any caller
    // never reaches the file as a rule other programs cannot expand.
    const RecurrencePattern pattern = RecurrenceLimits::Normalise(record.recurrence, DateTime(start));
    const bool dateOnly = record.allDay || record.itemKind == 3;
    const std::string rule = RecurrenceRule::FromPattern(pattern, dateOnly);
    if (!rule.empty())
        icalcomponent_add_property(component,
                                   icalproperty_new_rrule(icalrecurrencetype_from_string(rule.c_str())));
}

void Fill(icalcomponent* component, const PimRecord& record, bool writeRule = true) {
    SetText(component, ICAL_SUMMARY_PROPERTY, record.subject);
    SetText(component, ICAL_LOCATION_PROPERTY, record.location);
    SetText(component, ICAL_DESCRIPTION_PROPERTY, record.body);
    if (record.itemKind != 3)
        IcsAttendees::Write(component, record.attendees);
    RemoveAll(component, ICAL_CATEGORIES_PROPERTY);
    if (!record.categories.empty())
        icalcomponent_add_property(component,
                                   icalproperty_new_categories(Utf16ToUtf8(record.categories).c_str()));
    for (auto kind : {ICAL_DTSTART_PROPERTY, ICAL_DTEND_PROPERTY, ICAL_DURATION_PROPERTY, ICAL_DUE_PROPERTY})
        RemoveAll(component, kind);
    if (record.itemKind == 3) {
        if (record.startDate != kNoDate)
            icalcomponent_add_property(component,
                                       TimeProperty(ICAL_DTSTART_PROPERTY, record.startDate, true));
        if (record.dueDate != kNoDate)
            icalcomponent_add_property(component, TimeProperty(ICAL_DUE_PROPERTY, record.dueDate, true));
        // A task that was complete already keeps the moment it was completed;
        // an open task keeps the status and progress another program gave it
        // (IN-PROCESS, 40 %) until it is completed or reopened here.
        const bool wasComplete =
            icalcomponent_get_first_property(component, ICAL_COMPLETED_PROPERTY) != nullptr;
        icalproperty* statusProperty = icalcomponent_get_first_property(component, ICAL_STATUS_PROPERTY);
        const icalproperty_status oldStatus =
            statusProperty ? icalproperty_get_status(statusProperty) : ICAL_STATUS_NONE;
        icalproperty* percent = icalcomponent_get_first_property(component, ICAL_PERCENTCOMPLETE_PROPERTY);
        const bool wholePercent = percent && icalproperty_get_percentcomplete(percent) >= 100;
        RemoveAll(component, ICAL_PRIORITY_PROPERTY);
        if (!record.complete || !wasComplete)
            RemoveAll(component, ICAL_COMPLETED_PROPERTY);
        if (record.complete) {
            if (percent)
                icalproperty_set_percentcomplete(percent, 100);
        } else if (wholePercent) {
            RemoveAll(component, ICAL_PERCENTCOMPLETE_PROPERTY);
        }
        icalproperty_status status = record.complete    ? ICAL_STATUS_COMPLETED
                                     : record.cancelled ? ICAL_STATUS_CANCELLED
                                                        : ICAL_STATUS_NEEDSACTION;
        if (!record.complete && !record.cancelled && oldStatus == ICAL_STATUS_INPROCESS)
            status = oldStatus;
        RemoveAll(component, ICAL_STATUS_PROPERTY);
        icalcomponent_add_property(component, icalproperty_new_status(status));
        if (record.complete && !wasComplete)
            icalcomponent_add_property(component, icalproperty_new_completed(icaltime_current_time_with_zone(
                                                      icaltimezone_get_utc_timezone())));
        icalcomponent_add_property(component,
                                   icalproperty_new_priority(PriorityOfImportance(record.importance)));
        IcsEditorFields::Write(component, record);
    } else {
        icalcomponent_add_property(component,
                                   TimeProperty(ICAL_DTSTART_PROPERTY, record.start, record.allDay));
        icalcomponent_add_property(component, TimeProperty(ICAL_DTEND_PROPERTY, record.end, record.allDay));
        IcsEditorFields::Write(component, record);
    }
    if (writeRule)
        WriteRule(component, record);
    SetStamp(component);
}

icalcomponent* MainComponent(icalcomponent* calendar) {
    for (icalcomponent* c = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT)) {
        const auto kind = icalcomponent_isa(c);
        if ((kind == ICAL_VEVENT_COMPONENT || kind == ICAL_VTODO_COMPONENT) &&
            !icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY))
            return c;
    }
    return nullptr;
}

std::string Serialise(icalcomponent* calendar) {
    char* text = icalcomponent_as_ical_string_r(calendar);
    std::string out = text ? text : "";
    std::free(text);
    return out;
}

IcalComponentPtr ParseCalendar(std::string_view text) {
    IcalComponentPtr calendar = IcalText::Parse(text);
    if (calendar && icalcomponent_isa(calendar.get()) != ICAL_VCALENDAR_COMPONENT)
        calendar.reset();
    // The times we write are converted through the file's zones.
    VtimezoneFilter::Apply(calendar.get());
    return calendar;
}

std::string VcardEscape(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '\\' || c == ',' || c == ';')
            out += '\\';
        if (c == '\n') {
            out += "\\n";
            continue;
        }
        out += c;
    }
    return out;
}

std::string VcardDate(double date, bool hasYear) {
    const DateTime d(date);
    char text[16];
    if (hasYear)
        std::snprintf(text, sizeof text, "%04d%02d%02d", d.GetYear(), d.GetMonth(), d.GetDay());
    else
        std::snprintf(text, sizeof text, "--%02d%02d", d.GetMonth(), d.GetDay());
    return text;
}

} // namespace

std::string IcsWriter::MakeUid() {
    std::random_device device;
    std::uniform_int_distribution<unsigned> byte(0, 255);
    unsigned char bytes[16];
    for (auto& b : bytes)
        b = static_cast<unsigned char>(byte(device));
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
    char text[40];
    std::snprintf(text, sizeof text, "%02x%02x%02x%02x-%02x%02x-%02x%02x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                  bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5], bytes[6], bytes[7], bytes[8],
                  bytes[9], bytes[10], bytes[11], bytes[12], bytes[13], bytes[14], bytes[15]);
    return text;
}

std::string IcsWriter::NewItem(const PimRecord& record, const std::string& uid) {
    IcalComponentPtr calendar(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
    icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar.get(), icalproperty_new_prodid(kProductId));
    icalcomponent* item =
        icalcomponent_new(record.itemKind == 3 ? ICAL_VTODO_COMPONENT : ICAL_VEVENT_COMPONENT);
    icalcomponent_add_property(item, icalproperty_new_uid(uid.c_str()));
    Fill(item, record);
    icalcomponent_add_component(calendar.get(), item);
    return Serialise(calendar.get());
}

bool IcsWriter::Update(std::string_view existing, const PimRecord& record, std::string& out) {
    IcalComponentPtr calendar = ParseCalendar(existing);
    if (!calendar)
        return false;
    icalcomponent* item = MainComponent(calendar.get());
    if (!item)
        return false;
    IcsItem before;
    std::string problem;
    const bool known = before.Parse(existing, problem);
    // An unchanged pattern leaves the rule as it was written, also one the
    // record can only approximate.
    const bool sameRule = known && SameRule(before.GetRecord(), record);
    Fill(item, record, !sameRule);
    bool ruleMoved = false;
    if (icalcomponent_isa(item) == ICAL_VTODO_COMPONENT && known && record.complete &&
        !before.GetRecord().complete && sameRule && record.isRecurring)
        ruleMoved = TaskRecurrence::Advance(item);
    if (sameRule && !ruleMoved) {
        KeepRawRule(item, SeriesExceptions::RawRuleLine(existing));
    } else if (!sameRule) {
        // Exceptions that no longer fall on the series' days point at nothing.
        RecurrencePattern pattern = record.recurrence;
        if (!record.isRecurring)
            pattern.RecurrenceType = RecurrencePattern::kNotRecurring;
        const double start = SeriesStart(record);
        if (start != kNoDate || !record.isRecurring)
            SeriesExceptions::Drop(calendar.get(), item, pattern, start);
    }
    out = Serialise(calendar.get());
    return true;
}

bool IcsWriter::ReplaceUid(std::string_view existing, const std::string& uid, std::string& out) {
    IcalComponentPtr calendar = ParseCalendar(existing);
    if (!calendar || !MainComponent(calendar.get()))
        return false;
    for (icalcomponent* c = icalcomponent_get_first_component(calendar.get(), ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(calendar.get(), ICAL_ANY_COMPONENT)) {
        const auto kind = icalcomponent_isa(c);
        if (kind != ICAL_VEVENT_COMPONENT && kind != ICAL_VTODO_COMPONENT)
            continue;
        icalcomponent_set_uid(c, uid.c_str());
        SetStamp(c);
    }
    out = Serialise(calendar.get());
    return true;
}

bool IcsWriter::AddException(std::string_view existing, double originalStart, const PimRecord* occurrence,
                             std::string& out) {
    IcalComponentPtr calendar = ParseCalendar(existing);
    if (!calendar)
        return false;
    icalcomponent* master = MainComponent(calendar.get());
    if (!master || icalcomponent_isa(master) != ICAL_VEVENT_COMPONENT)
        return false;
    icalproperty* startProperty = icalcomponent_get_first_property(master, ICAL_DTSTART_PROPERTY);
    if (!startProperty)
        return false;
    const bool isDate = icalproperty_get_dtstart(startProperty).is_date;
    // The occurrence is named in the series' own zone.
    icalproperty* id = TimeProperty(ICAL_RECURRENCEID_PROPERTY, originalStart, isDate);
    if (!occurrence) {
        icalproperty* exdate = TimeProperty(ICAL_EXDATE_PROPERTY, originalStart, isDate);
        icalproperty_free(id);
        icalcomponent_add_property(master, exdate);
        SetStamp(master);
    } else {
        icalcomponent* moved = icalcomponent_new(ICAL_VEVENT_COMPONENT);
        icalcomponent_add_property(moved, icalproperty_new_uid(icalcomponent_get_uid(master)));
        icalcomponent_add_property(moved, id);
        PimRecord single = *occurrence;
        single.isRecurring = false;
        single.recurrence = RecurrencePattern();
        Fill(moved, single);
        icalcomponent_add_component(calendar.get(), moved);
    }
    out = Serialise(calendar.get());
    return true;
}

std::string IcsWriter::NewContact(const PimRecord& record, const std::string& uid) {
    std::string text = "BEGIN:VCARD\r\nVERSION:3.0\r\nPRODID:";
    text += kProductId;
    text += "\r\nUID:" + uid + "\r\n";
    const std::string name = VcardEscape(Utf16ToUtf8(record.subject));
    text += "FN:" + name + "\r\nN:" + name + ";;;;\r\n";
    if (record.birthday != kNoDate)
        text += "BDAY:" + VcardDate(record.birthday, record.birthdayHasYear) + "\r\n";
    if (record.anniversary != kNoDate)
        text += "X-ANNIVERSARY:" + VcardDate(record.anniversary, record.anniversaryHasYear) + "\r\n";
    text += "END:VCARD\r\n";
    return text;
}

} // namespace mirodate
