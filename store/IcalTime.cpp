#include "store/IcalTime.h"

#include "data/DateTime.h"
#include "store/ZoneCache.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <unistd.h>

namespace mirodate {

namespace {

constexpr int kMinYear = 100;
constexpr int kMaxYear = 9999;

bool FieldsOk(const icaltimetype& t) {
    if (icaltime_is_null_time(t) || t.year < kMinYear || t.year > kMaxYear || t.month < 1 || t.month > 12 ||
        t.day < 1 || t.day > DaysInMonth(t.year, t.month))
        return false;
    return t.is_date ||
           (t.hour >= 0 && t.hour < 24 && t.minute >= 0 && t.minute < 60 && t.second >= 0 && t.second <= 60);
}

constexpr std::time_t kSecondsPerDay = 86400;
// libical works out a zone's changes from its first year up to the year
// asked for, afresh for every file's own zone: a date in the year 9000 costs
// seconds. Past this instant (2200-01-01) the offset is read as many 400-year
// cycles earlier, which have the same weekdays and leap days, so the same
// rule gives the same change dates.
constexpr std::time_t kZoneHorizon = 7258118400;
constexpr std::time_t kGregorianCycle = 146097 * kSecondsPerDay;

// Offset from UTC (seconds east) at an instant, in `zone` or, when null, in
// the local zone.
long OffsetAt(std::time_t instant, const icaltimezone* zone) {
    if (!zone) {
        std::tm tm{};
        if (!localtime_r(&instant, &tm))
            return 0;
        return tm.tm_gmtoff;
    }
    if (instant > kZoneHorizon)
        instant -= ((instant - kZoneHorizon) / kGregorianCycle + 1) * kGregorianCycle;
    icaltimetype utc = icaltime_from_timet_with_zone(instant, 0, icaltimezone_get_utc_timezone());
    // A file's own zone reads through the shared copy of its definition.
    if (long shared = 0; ZoneCache::OffsetOf(zone, utc, shared))
        return shared;
    return icaltimezone_get_utc_offset_of_utc_time(const_cast<icaltimezone*>(zone), &utc, nullptr);
}

// The instant of a wall time in `zone` (null: the local zone), read as
// iCalendar reads it: a time that falls into the gap of a change to summer
// time takes the offset from before the gap, so it moves forward by the gap;
// a time that occurs twice is the first of the two. (libical's own lookup and
// mktime both answer otherwise around the change.)
std::time_t WallToUnix(int year, int month, int day, int hour, int minute, int second,
                       const icaltimezone* zone) {
    std::tm tm{};
    tm.tm_year = year - 1900;
    tm.tm_mon = month - 1;
    tm.tm_mday = day;
    tm.tm_hour = hour;
    tm.tm_min = minute;
    tm.tm_sec = second;
    const std::time_t wall = timegm(&tm); // the wall time's fields read as UTC
    if (zone == icaltimezone_get_utc_timezone())
        return wall;
    // A day on either side lies clear of the change, if any.
    const long before = OffsetAt(wall - kSecondsPerDay, zone);
    const long after = OffsetAt(wall + kSecondsPerDay, zone);
    if (before == after)
        return wall - before;
    const std::time_t early = wall - before, late = wall - after;
    const bool earlyExists = OffsetAt(early, zone) == before;
    const bool lateExists = OffsetAt(late, zone) == after;
    if (earlyExists && lateExists)
        return std::min(early, late);
    if (lateExists)
        return late;
    return early; // in the gap, or a zone whose data we cannot follow
}

} // namespace

namespace {

// The local zone's name, read again only when TZ changes.
struct LocalZoneCache {
    std::mutex mutex;
    std::string tz = "\x01"; // never a real TZ value
    std::string name;
};

LocalZoneCache& TheLocalZoneCache() {
    static LocalZoneCache cache;
    return cache;
}

} // namespace

bool IcalTime::IsLocalZone(const icaltimezone* zone) {
    if (!zone)
        return false;
    const char* tz = std::getenv("TZ");
    std::string name;
    {
        LocalZoneCache& cache = TheLocalZoneCache();
        std::lock_guard lock(cache.mutex);
        const std::string current = tz ? tz : "";
        if (current != cache.tz) {
            cache.tz = current;
            cache.name = LocalZoneName();
        }
        name = cache.name;
    }
    if (name.empty())
        return false;
    icaltimezone* z = const_cast<icaltimezone*>(zone);
    // Asking for the TZID loads a built-in zone, which replaces its other
    // strings: copy each before asking for the next.
    const char* tzid = icaltimezone_get_tzid(z);
    const std::string id = tzid ? tzid : "";
    const char* location = icaltimezone_get_location(z);
    if (location && name == location)
        return true;
    if (id.empty())
        return false;
    return id == name ||
           (id.size() > name.size() && id.compare(id.size() - name.size(), name.size(), name) == 0 &&
            id[id.size() - name.size() - 1] == '/');
}

bool IcalTime::ToUnix(const icaltimetype& time, std::time_t& seconds) {
    if (!FieldsOk(time))
        return false;
    const icaltimezone* zone = icaltime_get_timezone(time);
    // Wall times of the local zone need no zone data of libical.
    if (time.is_date || IsLocalZone(zone))
        zone = nullptr;
    seconds = time.is_date ? WallToUnix(time.year, time.month, time.day, 0, 0, 0, nullptr)
                           : WallToUnix(time.year, time.month, time.day, time.hour, time.minute,
                                        std::min(time.second, 59), zone);
    return true;
}

bool IcalTime::ToLocalDate(const icaltimetype& time, double& date) {
    if (!FieldsOk(time))
        return false;
    const icaltimezone* zone = icaltime_get_timezone(time);
    if (IsLocalZone(zone))
        zone = nullptr;
    if (time.is_date) {
        date = DateTime(time.year, time.month, time.day).ToDate();
        return true;
    }
    const int second = std::min(time.second, 59);
    if (!zone) {
        // A local wall time stands as it is unless a change of the clock is
        // near, which it might fall into.
        std::tm fields{};
        fields.tm_year = time.year - 1900;
        fields.tm_mon = time.month - 1;
        fields.tm_mday = time.day;
        fields.tm_hour = time.hour;
        fields.tm_min = time.minute;
        fields.tm_sec = second;
        const std::time_t wall = timegm(&fields);
        if (OffsetAt(wall - kSecondsPerDay, nullptr) == OffsetAt(wall + kSecondsPerDay, nullptr)) {
            date = DateTime(time.year, time.month, time.day, time.hour, time.minute, second).ToDate();
            return true;
        }
    }
    const std::time_t seconds =
        WallToUnix(time.year, time.month, time.day, time.hour, time.minute, second, zone);
    std::tm tm{};
    if (!localtime_r(&seconds, &tm))
        return false;
    const DateTime local(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min,
                         std::min(tm.tm_sec, 59));
    if (!local.IsValid())
        return false;
    date = local.ToDate();
    return true;
}

icaltimetype IcalTime::FromLocalDate(double date, bool isDate, const icaltimezone* zone) {
    const DateTime local(date);
    icaltimetype t = icaltime_null_time();
    if (!local.IsValid())
        return t;
    const SYSTEMTIME st = local.ToSystemTime();
    t.year = st.wYear;
    t.month = st.wMonth;
    t.day = st.wDay;
    t.is_date = isDate ? 1 : 0;
    if (isDate)
        return t;
    t.hour = st.wHour;
    t.minute = st.wMinute;
    t.second = st.wSecond;
    if (!zone)
        return t;
    // The local wall time, moved into the wanted zone.
    const std::time_t seconds =
        WallToUnix(st.wYear, st.wMonth, st.wDay, st.wHour, st.wMinute, st.wSecond, nullptr);
    return WallTimeIn(seconds, zone);
}

icaltimetype IcalTime::WallTimeIn(std::time_t seconds, const icaltimezone* zone) {
    std::tm tm{};
    const std::time_t wall = seconds + (zone ? OffsetAt(seconds, zone) : 0);
    if (zone ? !gmtime_r(&wall, &tm) : !localtime_r(&seconds, &tm))
        return icaltime_null_time();
    return FromTm(tm, zone);
}

icaltimetype IcalTime::FromTm(const std::tm& tm, const icaltimezone* zone) {
    icaltimetype t = icaltime_null_time();
    t.year = tm.tm_year + 1900;
    t.month = tm.tm_mon + 1;
    t.day = tm.tm_mday;
    t.hour = tm.tm_hour;
    t.minute = tm.tm_min;
    t.second = tm.tm_sec;
    t.zone = zone;
    return t;
}

std::string IcalTime::LocalZoneName() {
    std::string name;
    if (const char* tz = std::getenv("TZ"); tz && *tz) {
        name = tz[0] == ':' ? tz + 1 : tz;
        const std::string prefix = "/usr/share/zoneinfo/";
        if (name.rfind(prefix, 0) == 0)
            name = name.substr(prefix.size());
    } else {
        char target[PATH_MAX];
        const ssize_t length = readlink("/etc/localtime", target, sizeof target - 1);
        if (length > 0) {
            target[length] = '\0';
            name = target;
            const std::size_t at = name.find("zoneinfo/");
            name = at == std::string::npos ? std::string() : name.substr(at + 9);
        }
    }
    if (name == "UTC" || name == "Etc/UTC" || name == "UTC0" || name == "GMT" || name == "Etc/GMT")
        return "UTC";
    return name;
}

icaltimezone* IcalTime::LocalZone() {
    const std::string name = LocalZoneName();
    if (name.empty())
        return nullptr;
    if (name == "UTC")
        return icaltimezone_get_utc_timezone();
    return icaltimezone_get_builtin_timezone(name.c_str());
}

std::string IcalTime::LocalDateToUtcText(double date) {
    const icaltimetype utc = FromLocalDate(date, false, icaltimezone_get_utc_timezone());
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02dZ", utc.year, utc.month, utc.day, utc.hour,
                  utc.minute, utc.second);
    return text;
}

icaltimetype IcalTime::PropertyTime(icalcomponent* component, icalproperty_kind kind) {
    icalproperty* p = icalcomponent_get_first_property(component, kind);
    if (!p)
        return icaltime_null_time();
    return icalproperty_get_datetime_with_component(p, component);
}

icaltimetype IcalTime::WallDate(icaltimetype time) {
    time.is_date = 1;
    time.hour = time.minute = time.second = 0;
    time.zone = nullptr;
    return time;
}

} // namespace mirodate
