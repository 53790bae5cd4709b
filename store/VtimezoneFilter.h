#pragma once
// Keeps the time zone definitions of a parsed file within what a real zone
// needs before libical expands them: libical turns a zone's rules into a list
// of changes from its first DTSTART on, and a rule that changes every second
// or day, or thousands of observances or dates, would take hours and
// gigabytes. Real zones change at most a few times a year, so anything finer
// than yearly is dropped, and a zone with more observances or dates than any
// real one is removed (its TZID then reads as a built-in zone or local time).
#include <libical/ical.h>

namespace mirodate {

class VtimezoneFilter {
public:
    // Observances (STANDARD/DAYLIGHT) of one VTIMEZONE; tzdata's longest
    // history has a few hundred.
    static constexpr int kMaxObservances = 1000;
    // RDATEs over all observances of one VTIMEZONE.
    static constexpr int kMaxDates = 2000;
    // Years of yearly rules libical may have to walk for one zone, counted
    // from each rule's start to kHorizonYear: Outlook's zones start in 1601
    // and need about 900; each year costs some 20 microseconds.
    static constexpr int kMaxRuleYears = 5000;
    static constexpr int kHorizonYear = 2100;

    // Applies the limits to every VTIMEZONE under `root`; returns how many
    // rules and zones were dropped.
    static int Apply(icalcomponent* root);
};

} // namespace mirodate
