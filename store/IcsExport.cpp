#include "store/IcsExport.h"

#include "store/IcalHandle.h"

#include <set>
#include <vector>

namespace mirodate {

namespace {
void CollectZoneIds(icalcomponent* component, std::set<std::string>& used, std::set<std::string>& defined) {
    if (icalcomponent_isa(component) == ICAL_VTIMEZONE_COMPONENT) {
        if (icalproperty* id = icalcomponent_get_first_property(component, ICAL_TZID_PROPERTY))
            if (const char* text = icalproperty_get_tzid(id)) defined.insert(text);
        return;
    }
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_ANY_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_ANY_PROPERTY))
        if (icalparameter* tz = icalproperty_get_first_parameter(p, ICAL_TZID_PARAMETER))
            if (const char* text = icalparameter_get_tzid(tz)) used.insert(text);
    for (icalcomponent* c = icalcomponent_get_first_component(component, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(component, ICAL_ANY_COMPONENT))
        CollectZoneIds(c, used, defined);
}
} // namespace

bool IcsExport::Standalone(const std::string& calendarText, std::string& out) {
    IcalComponentPtr calendar(icalparser_parse_string(calendarText.c_str()));
    if (!calendar || icalcomponent_isa(calendar.get()) != ICAL_VCALENDAR_COMPONENT) return false;
    std::set<std::string> used, defined;
    CollectZoneIds(calendar.get(), used, defined);
    bool added = false;
    for (const std::string& id : used) {
        if (defined.count(id)) continue;
        icaltimezone* zone = icaltimezone_get_builtin_timezone(id.c_str());
        if (!zone) zone = icaltimezone_get_builtin_timezone_from_tzid(id.c_str());
        icalcomponent* definition = zone ? icaltimezone_get_component(zone) : nullptr;
        if (!definition) continue; // a zone nobody knows stays a name
        icalcomponent* copy = icalcomponent_new_clone(definition);
        // The zone keeps the plain name the times use, not libical's prefixed one.
        if (icalproperty* tzid = icalcomponent_get_first_property(copy, ICAL_TZID_PROPERTY))
            icalproperty_set_tzid(tzid, id.c_str());
        icalcomponent_add_component(calendar.get(), copy);
        added = true;
    }
    if (!added) {
        out = calendarText;
        return true;
    }
    char* text = icalcomponent_as_ical_string_r(calendar.get());
    if (!text) return false;
    out = text;
    icalmemory_free_buffer(text);
    return true;
}

} // namespace mirodate
