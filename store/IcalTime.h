#pragma once
// Between libical times and the program's local DATE values. Times with a
// TZID or in UTC are converted to the local zone (TZ, /etc/localtime);
// floating times and dates are local already.
#include <libical/ical.h>

#include <ctime>
#include <string>

namespace mirodate {

class IcalTime {
public:
    // The local DATE of a time; false when it is null or not a real date.
    static bool ToLocalDate(const icaltimetype& time, double& date);
    // Seconds since 1970 (UTC) of a time; floating times count as local.
    static bool ToUnix(const icaltimetype& time, std::time_t& seconds);
    // A time in `zone` (floating when null) for a local DATE.
    static icaltimetype FromLocalDate(double date, bool isDate, const icaltimezone* zone);
    // The wall time of an instant in `zone` (the local zone when null).
    static icaltimetype WallTimeIn(std::time_t seconds, const icaltimezone* zone);
    // The broken-down time `tm` as a time of `zone` (null: floating).
    static icaltimetype FromTm(const std::tm& tm, const icaltimezone* zone);
    // The Olson name of the local zone ("Europe/Berlin"), empty when unknown;
    // "UTC" for UTC.
    static std::string LocalZoneName();
    // Whether times in `zone` are local wall times already.
    static bool IsLocalZone(const icaltimezone* zone);
    // The libical zone of that name (null for floating).
    static icaltimezone* LocalZone();
    // A local DATE as UTC text "YYYYMMDDTHHMMSSZ".
    static std::string LocalDateToUtcText(double date);
    // The time of a component's property with its TZID resolved (from the
    // file's VTIMEZONEs or the system's zones); unknown zones read as
    // floating local time. Null when the component has no such property.
    static icaltimetype PropertyTime(icalcomponent* component, icalproperty_kind kind);
    // The day of a wall time in its own zone, as a DATE value.
    static icaltimetype WallDate(icaltimetype time);
};

} // namespace mirodate
