#include "store/IcsExport.h"

#include "store/IcalHandle.h"

#include <set>
#include <vector>

namespace mirodate {

namespace {
void CollectZoneIds(icalcomponent* component, std::set<std::string>& used, std::set<std::string>& defined) {
    if (icalcomponent_isa(component) == ICAL_VTIMEZONE_COMPONENT) {
        if (icalproperty* id = icalcomponent_get_first_property(component, ICAL_TZID_PROPERTY))
            if (const char* text = icalproperty_get_tzid(id))
                defined.insert(text);
        return;
    }
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_ANY_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_ANY_PROPERTY))
        if (icalparameter* tz = icalproperty_get_first_parameter(p, ICAL_TZID_PARAMETER))
            if (const char* text = icalparameter_get_tzid(tz))
                used.insert(text);
    for (icalcomponent* c = icalcomponent_get_first_component(component, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(component, ICAL_ANY_COMPONENT))
        CollectZoneIds(c, used, defined);
}
} // namespace

namespace {
// Adds the system's definition of every zone `calendar` names but lacks.
bool AddMissingZones(icalcomponent* calendar) {
    std::set<std::string> used, defined;
    CollectZoneIds(calendar, used, defined);
    bool added = false;
    for (const std::string& id : used) {
        if (defined.count(id))
            continue;
        icaltimezone* zone = icaltimezone_get_builtin_timezone(id.c_str());
        if (!zone)
            zone = icaltimezone_get_builtin_timezone_from_tzid(id.c_str());
        icalcomponent* definition = zone ? icaltimezone_get_component(zone) : nullptr;
        if (!definition)
            continue; // a zone nobody knows stays a name
        icalcomponent* copy = icalcomponent_new_clone(definition);
        // The zone keeps the plain name the times use, not libical's prefixed one.
        if (icalproperty* tzid = icalcomponent_get_first_property(copy, ICAL_TZID_PROPERTY))
            icalproperty_set_tzid(tzid, id.c_str());
        icalcomponent_add_component(calendar, copy);
        added = true;
    }
    return added;
}

constexpr const char* kProductId = "-//Mirodate//Export//EN";
} // namespace

bool IcsExport::Standalone(const std::string& calendarText, std::string& out) {
    // One item is written as a calendar of one: the same writer as an export.
    return Combine({calendarText}, out);
}

bool IcsExport::Combine(const std::vector<std::string>& calendarTexts, std::string& out) {
    IcalComponentPtr combined(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
    icalcomponent_add_property(combined.get(), icalproperty_new_version("2.0"));
    icalcomponent_add_property(combined.get(), icalproperty_new_prodid(kProductId));
    std::set<std::string> zones;
    bool any = false;
    for (const std::string& text : calendarTexts) {
        IcalComponentPtr calendar(icalparser_parse_string(text.c_str()));
        if (!calendar || icalcomponent_isa(calendar.get()) != ICAL_VCALENDAR_COMPONENT)
            continue;
        any = true;
        // Components are moved over; the emptied calendar is freed.
        std::vector<icalcomponent*> children;
        for (icalcomponent* c = icalcomponent_get_first_component(calendar.get(), ICAL_ANY_COMPONENT); c;
             c = icalcomponent_get_next_component(calendar.get(), ICAL_ANY_COMPONENT))
            children.push_back(c);
        for (icalcomponent* c : children) {
            if (icalcomponent_isa(c) == ICAL_VTIMEZONE_COMPONENT) {
                icalproperty* id = icalcomponent_get_first_property(c, ICAL_TZID_PROPERTY);
                const char* name = id ? icalproperty_get_tzid(id) : nullptr;
                if (!name || !zones.insert(name).second)
                    continue;
            }
            icalcomponent_remove_component(calendar.get(), c);
            icalcomponent_add_component(combined.get(), c);
        }
    }
    if (!any)
        return false;
    AddMissingZones(combined.get());
    char* text = icalcomponent_as_ical_string_r(combined.get());
    if (!text)
        return false;
    out = text;
    icalmemory_free_buffer(text);
    return true;
}

} // namespace mirodate
