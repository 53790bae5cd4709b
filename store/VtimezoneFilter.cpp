#include "store/VtimezoneFilter.h"

#include <algorithm>
#include <vector>

namespace mirodate {

namespace {

bool IsObservance(icalcomponent* c) {
    const icalcomponent_kind kind = icalcomponent_isa(c);
    return kind == ICAL_XSTANDARD_COMPONENT || kind == ICAL_XDAYLIGHT_COMPONENT;
}

// Drops the rules of one zone that no real zone has; false when the zone
// is beyond saving and has to go.
bool TameZone(icalcomponent* zone, int& dropped) {
    int observances = 0, dates = 0, ruleYears = 0;
    for (icalcomponent* o = icalcomponent_get_first_component(zone, ICAL_ANY_COMPONENT); o;
         o = icalcomponent_get_next_component(zone, ICAL_ANY_COMPONENT)) {
        if (!IsObservance(o))
            continue;
        if (++observances > VtimezoneFilter::kMaxObservances)
            return false;
        dates += icalcomponent_count_properties(o, ICAL_RDATE_PROPERTY);
        if (dates > VtimezoneFilter::kMaxDates)
            return false;
        // One yearly rule per observance is all a real zone uses. (Asking for
        // DTSTART inside the walk over the rules would restart the walk.)
        const int from = icalcomponent_get_dtstart(o).year;
        bool keptYearly = false;
        std::vector<icalproperty*> rules;
        for (icalproperty* p = icalcomponent_get_first_property(o, ICAL_RRULE_PROPERTY); p;
             p = icalcomponent_get_next_property(o, ICAL_RRULE_PROPERTY)) {
            const icalrecurrencetype rule = icalproperty_get_rrule(p);
            if (!keptYearly && rule.freq == ICAL_YEARLY_RECURRENCE && rule.interval >= 1) {
                keptYearly = true;
                ruleYears += std::max(0, VtimezoneFilter::kHorizonYear - from) / rule.interval;
                if (ruleYears > VtimezoneFilter::kMaxRuleYears)
                    return false;
                continue;
            }
            rules.push_back(p);
        }
        for (icalproperty* p : rules) {
            icalcomponent_remove_property(o, p);
            icalproperty_free(p);
            ++dropped;
        }
    }
    return true;
}

} // namespace

int VtimezoneFilter::Apply(icalcomponent* root) {
    if (!root)
        return 0;
    int dropped = 0;
    std::vector<icalcomponent*> zones, doomed;
    if (icalcomponent_isa(root) == ICAL_VTIMEZONE_COMPONENT)
        zones.push_back(root);
    for (icalcomponent* c = icalcomponent_get_first_component(root, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(root, ICAL_ANY_COMPONENT)) {
        const icalcomponent_kind kind = icalcomponent_isa(c);
        if (kind == ICAL_VTIMEZONE_COMPONENT) {
            zones.push_back(c);
        } else if (kind == ICAL_VCALENDAR_COMPONENT) {
            // Several calendars in one file parse into one root holding them.
            for (icalcomponent* z = icalcomponent_get_first_component(c, ICAL_VTIMEZONE_COMPONENT); z;
                 z = icalcomponent_get_next_component(c, ICAL_VTIMEZONE_COMPONENT))
                zones.push_back(z);
        }
    }
    for (icalcomponent* zone : zones)
        if (!TameZone(zone, dropped) && zone != root)
            doomed.push_back(zone);
    for (icalcomponent* zone : doomed) {
        icalcomponent_remove_component(icalcomponent_get_parent(zone), zone);
        icalcomponent_free(zone);
        ++dropped;
    }
    return dropped;
}

} // namespace mirodate
