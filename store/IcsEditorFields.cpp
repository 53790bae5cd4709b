#include "store/IcsEditorFields.h"

#include "platform/TextUtil.h"

#include <cstring>
#include <string>

namespace mirodate {

namespace {

constexpr const char* kBusyProperty = "X-MICROSOFT-CDO-BUSYSTATUS";
constexpr const char* kPersonalProperty = "X-MIRODATE-SENSITIVITY";
constexpr const char* kPersonalValue = "PERSONAL";
// Busy-status values in the order of the record's numbers 0..3.
constexpr const char* kBusyNames[] = {"FREE", "TENTATIVE", "BUSY", "OOF"};
constexpr int kBusy = 2;
constexpr int kFree = 0;
constexpr int kSecondsPerMinute = 60;
// Lead times beyond a year are not a reminder anyone sets; such a trigger is
// left to the program that wrote it.
constexpr int kMaxLeadMinutes = 366 * 24 * 60;

icalproperty* FindX(icalcomponent* component, const char* name) {
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_X_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_X_PROPERTY)) {
        const char* x = icalproperty_get_x_name(p);
        if (x && strcasecmp(x, name) == 0)
            return p;
    }
    return nullptr;
}

std::string XValue(icalcomponent* component, const char* name) {
    icalproperty* p = FindX(component, name);
    const char* value = p ? icalproperty_get_x(p) : nullptr;
    return value ? value : "";
}

void SetX(icalcomponent* component, const char* name, const char* value) {
    while (icalproperty* p = FindX(component, name)) {
        icalcomponent_remove_property(component, p);
        icalproperty_free(p);
    }
    if (!value)
        return;
    icalproperty* p = icalproperty_new_x(value);
    icalproperty_set_x_name(p, name);
    icalcomponent_add_property(component, p);
}

void RemoveAll(icalcomponent* component, icalproperty_kind kind) {
    while (icalproperty* p = icalcomponent_get_first_property(component, kind)) {
        icalcomponent_remove_property(component, p);
        icalproperty_free(p);
    }
}

bool IsTask(icalcomponent* component) {
    return icalcomponent_isa(component) == ICAL_VTODO_COMPONENT;
}

// The editor's alarm and its lead time in minutes: the first DISPLAY or
// AUDIO alarm whose trigger is a duration at or before the start of an
// event, or at or before the due date of a task (RELATED=END, which a task
// relates to DUE). Alarms related to the other end are left to whoever
// wrote them.
icalcomponent* EditorAlarm(icalcomponent* component, int& leadMinutes) {
    const icalparameter_related wanted = IsTask(component) ? ICAL_RELATED_END : ICAL_RELATED_START;
    for (icalcomponent* a = icalcomponent_get_first_component(component, ICAL_VALARM_COMPONENT); a;
         a = icalcomponent_get_next_component(component, ICAL_VALARM_COMPONENT)) {
        icalproperty* action = icalcomponent_get_first_property(a, ICAL_ACTION_PROPERTY);
        if (!action)
            continue;
        const icalproperty_action kind = icalproperty_get_action(action);
        if (kind != ICAL_ACTION_DISPLAY && kind != ICAL_ACTION_AUDIO)
            continue;
        icalproperty* trigger = icalcomponent_get_first_property(a, ICAL_TRIGGER_PROPERTY);
        if (!trigger)
            continue;
        icalparameter* related = icalproperty_get_first_parameter(trigger, ICAL_RELATED_PARAMETER);
        if ((related ? icalparameter_get_related(related) : ICAL_RELATED_START) != wanted)
            continue;
        const icaltriggertype value = icalproperty_get_trigger(trigger);
        if (!icaltime_is_null_time(value.time))
            continue; // an absolute moment
        const int seconds = icaldurationtype_as_int(value.duration);
        if (seconds > 0 || -seconds / kSecondsPerMinute > kMaxLeadMinutes)
            continue;
        leadMinutes = -seconds / kSecondsPerMinute;
        return a;
    }
    return nullptr;
}

icalproperty* NewTrigger(icalcomponent* component, int leadMinutes) {
    icaltriggertype trigger{};
    trigger.time = icaltime_null_time();
    trigger.duration = icaldurationtype_from_int(-leadMinutes * kSecondsPerMinute);
    icalproperty* p = icalproperty_new_trigger(trigger);
    if (IsTask(component))
        icalproperty_add_parameter(p, icalparameter_new_related(ICAL_RELATED_END));
    return p;
}

void WriteReminder(icalcomponent* component, const PimRecord& record) {
    int lead = 0;
    icalcomponent* alarm = EditorAlarm(component, lead);
    if (!record.reminderSet) {
        if (alarm) {
            icalcomponent_remove_component(component, alarm);
            icalcomponent_free(alarm);
        }
        return;
    }
    if (alarm && lead == record.reminderMinutes)
        return;
    if (alarm) {
        RemoveAll(alarm, ICAL_TRIGGER_PROPERTY);
        icalcomponent_add_property(alarm, NewTrigger(component, record.reminderMinutes));
        return;
    }
    alarm = icalcomponent_new(ICAL_VALARM_COMPONENT);
    icalcomponent_add_property(alarm, icalproperty_new_action(ICAL_ACTION_DISPLAY));
    // DISPLAY alarms need a text; the subject is what a reminder shows.
    const std::string text = record.subject.empty() ? std::string("Reminder") : Utf16ToUtf8(record.subject);
    icalcomponent_add_property(alarm, icalproperty_new_description(text.c_str()));
    icalcomponent_add_property(alarm, NewTrigger(component, record.reminderMinutes));
    icalcomponent_add_component(component, alarm);
}

int ReadBusy(icalcomponent* component) {
    const std::string busy = XValue(component, kBusyProperty);
    for (int i = 0; i < 4; ++i)
        if (strcasecmp(busy.c_str(), kBusyNames[i]) == 0)
            return i;
    if (icalproperty* transp = icalcomponent_get_first_property(component, ICAL_TRANSP_PROPERTY)) {
        const icalproperty_transp value = icalproperty_get_transp(transp);
        if (value == ICAL_TRANSP_TRANSPARENT || value == ICAL_TRANSP_TRANSPARENTNOCONFLICT)
            return kFree;
    }
    return kBusy;
}

int ReadSensitivity(icalcomponent* component) {
    icalproperty* p = icalcomponent_get_first_property(component, ICAL_CLASS_PROPERTY);
    if (!p)
        return 0;
    switch (icalproperty_get_class(p)) {
    case ICAL_CLASS_PRIVATE:
        return strcasecmp(XValue(component, kPersonalProperty).c_str(), kPersonalValue) == 0 ? 1 : 2;
    case ICAL_CLASS_CONFIDENTIAL:
        return 3;
    default:
        return 0;
    }
}

std::vector<std::u16string> ReadAttachments(icalcomponent* component) {
    std::vector<std::u16string> list;
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_ATTACH_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_ATTACH_PROPERTY)) {
        icalattach* attach = icalproperty_get_attach(p);
        // Inline data has no name to list; it stays in the file untouched.
        if (attach && icalattach_get_is_url(attach)) {
            const char* url = icalattach_get_url(attach);
            if (url && *url)
                list.push_back(Utf8ToUtf16(url));
        }
    }
    return list;
}

void WriteAttachments(icalcomponent* component, const std::vector<std::u16string>& list) {
    if (ReadAttachments(component) == list)
        return;
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_ATTACH_PROPERTY); p;) {
        icalproperty* next = icalcomponent_get_next_property(component, ICAL_ATTACH_PROPERTY);
        icalattach* attach = icalproperty_get_attach(p);
        if (attach && icalattach_get_is_url(attach)) {
            icalcomponent_remove_property(component, p);
            icalproperty_free(p);
        }
        p = next;
    }
    for (const std::u16string& url : list) {
        icalattach* attach = icalattach_new_from_url(Utf16ToUtf8(url).c_str());
        icalcomponent_add_property(component, icalproperty_new_attach(attach));
        icalattach_unref(attach);
    }
}

void WriteSensitivity(icalcomponent* component, const PimRecord& record) {
    const int sensitivity = record.sensitivity >= 0 && record.sensitivity <= 3 ? record.sensitivity : 0;
    if (ReadSensitivity(component) == sensitivity)
        return;
    RemoveAll(component, ICAL_CLASS_PROPERTY);
    static constexpr icalproperty_class kClasses[] = {ICAL_CLASS_PUBLIC, ICAL_CLASS_PRIVATE,
                                                      ICAL_CLASS_PRIVATE, ICAL_CLASS_CONFIDENTIAL};
    icalcomponent_add_property(component, icalproperty_new_class(kClasses[sensitivity]));
    SetX(component, kPersonalProperty, sensitivity == 1 ? kPersonalValue : nullptr);
}

} // namespace

void IcsEditorFields::Read(icalcomponent* component, PimRecord& record) {
    int lead = 0;
    record.reminderSet = EditorAlarm(component, lead) != nullptr;
    record.reminderMinutes = record.reminderSet ? lead : 0;
    if (!IsTask(component))
        record.busyStatus = ReadBusy(component);
    record.sensitivity = ReadSensitivity(component);
    record.attachments = ReadAttachments(component);
}

void IcsEditorFields::Write(icalcomponent* component, const PimRecord& record) {
    WriteReminder(component, record);
    if (IsTask(component)) {
        // A task has no busy status: nothing of it is written.
        WriteSensitivity(component, record);
        WriteAttachments(component, record.attachments);
        return;
    }
    const int busy = record.busyStatus >= 0 && record.busyStatus <= 3 ? record.busyStatus : kBusy;
    if (ReadBusy(component) != busy || !FindX(component, kBusyProperty)) {
        RemoveAll(component, ICAL_TRANSP_PROPERTY);
        icalcomponent_add_property(
            component, icalproperty_new_transp(busy == kFree ? ICAL_TRANSP_TRANSPARENT : ICAL_TRANSP_OPAQUE));
        SetX(component, kBusyProperty, kBusyNames[busy]);
    }
    WriteSensitivity(component, record);
    WriteAttachments(component, record.attachments);
}

} // namespace mirodate
