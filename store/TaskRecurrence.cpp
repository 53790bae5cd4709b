#include "store/TaskRecurrence.h"

#include "store/IcalHandle.h"
#include "store/SeriesExceptions.h"

#include <algorithm>
#include <vector>

namespace mirodate {

namespace {

// Whole days between two wall dates.
int DaysBetween(icaltimetype from, icaltimetype to) {
    from.is_date = to.is_date = 1;
    from.zone = to.zone = nullptr;
    const icaltimetype a = icaltime_normalize(from), b = icaltime_normalize(to);
    // icaltime_as_timet of a floating date counts whole days from 1970.
    return static_cast<int>((icaltime_as_timet(b) - icaltime_as_timet(a)) / 86400);
}

int DayKey(const icaltimetype& t) {
    return t.year * 10000 + t.month * 100 + t.day;
}

// The wall time of a property's value without its zone.
icaltimetype Wall(icalproperty* p) {
    icaltimetype t = icalvalue_get_datetime(icalproperty_get_value(p));
    t.zone = nullptr;
    return t;
}

void Shift(icalproperty* p, int days) {
    if (!p)
        return;
    icaltimetype t = icalvalue_get_datetime(icalproperty_get_value(p));
    icaltime_adjust(&t, days, 0, 0, 0);
    // A new value of the same kind; the property's TZID or VALUE=DATE stays.
    icalproperty_set_value(p, t.is_date ? icalvalue_new_date(t) : icalvalue_new_datetime(t));
}

void RemoveAll(icalcomponent* component, icalproperty_kind kind) {
    while (icalproperty* p = icalcomponent_get_first_property(component, kind)) {
        icalcomponent_remove_property(component, p);
        icalproperty_free(p);
    }
}

} // namespace

bool TaskRecurrence::Advance(icalcomponent* todo) {
    icalproperty* rruleProperty = icalcomponent_get_first_property(todo, ICAL_RRULE_PROPERTY);
    icalproperty* start = icalcomponent_get_first_property(todo, ICAL_DTSTART_PROPERTY);
    icalproperty* due = icalcomponent_get_first_property(todo, ICAL_DUE_PROPERTY);
    icalproperty* anchorProperty = start ? start : due;
    if (!rruleProperty || !anchorProperty)
        return false;
    const icalrecurrencetype rule = icalproperty_get_rrule(rruleProperty);
    if (rule.freq == ICAL_NO_RECURRENCE)
        return false;
    const icaltimetype anchor = Wall(anchorProperty);
    if (icaltime_is_null_time(anchor))
        return false;

    std::vector<int> excluded;
    for (icalproperty* p = icalcomponent_get_first_property(todo, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(todo, ICAL_EXDATE_PROPERTY))
        excluded.push_back(DayKey(Wall(p)));
    std::sort(excluded.begin(), excluded.end());

    IcalRecurIteratorPtr iterator{icalrecur_iterator_new(rule, anchor)};
    if (!iterator)
        return false;
    // Occurrences the rule has made so far, the current one included.
    int passed = 0;
    icaltimetype next = icaltime_null_time();
    for (int step = 0; step < SeriesExceptions::kMaxSteps; ++step) {
        const icaltimetype occurrence = icalrecur_iterator_next(iterator.get());
        if (icaltime_is_null_time(occurrence))
            break;
        ++passed;
        if (DayKey(occurrence) <= DayKey(anchor))
            continue;
        if (std::binary_search(excluded.begin(), excluded.end(), DayKey(occurrence)))
            continue;
        next = occurrence;
        break;
    }
    if (icaltime_is_null_time(next))
        return false;
    const int days = DaysBetween(anchor, next);
    if (days <= 0)
        return false;
    Shift(start, days);
    Shift(due, days);
    if (rule.count > 0) {
        // The series now starts at `next`: it has the occurrences left after it.
        icalrecurrencetype shorter = rule;
        shorter.count = std::max(1, rule.count - (passed - 1));
        icalproperty_set_rrule(rruleProperty, shorter);
    }
    RemoveAll(todo, ICAL_COMPLETED_PROPERTY);
    RemoveAll(todo, ICAL_PERCENTCOMPLETE_PROPERTY);
    RemoveAll(todo, ICAL_STATUS_PROPERTY);
    icalcomponent_add_property(todo, icalproperty_new_status(ICAL_STATUS_NEEDSACTION));
    return true;
}

} // namespace mirodate
