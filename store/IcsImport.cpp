#include "store/IcsImport.h"

#include "data/PimFolder.h"
#include "platform/TextUtil.h"
#include "store/IcalHandle.h"
#include "store/IcalTime.h"
#include "store/IcsWriter.h"

#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

namespace mirodate {

namespace {
// The text must open with this (after a byte-order mark and blank lines).
constexpr const char* kCalendarStart = "BEGIN:VCALENDAR";
constexpr const char* kProductId = "-//Mirodate//Import//EN";

bool LooksLikeCalendar(const std::string& text) {
    std::size_t at = text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0;
    at = text.find_first_not_of(" \t\r\n", at);
    if (at == std::string::npos)
        return false;
    // Property names are case-insensitive.
    const std::string head = text.substr(at, std::strlen(kCalendarStart));
    std::string upper;
    for (char c : head)
        upper += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return upper == kCalendarStart;
}

void CollectZoneIds(icalcomponent* component, std::set<std::string>& used) {
    for (icalproperty* p = icalcomponent_get_first_property(component, ICAL_ANY_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_ANY_PROPERTY))
        if (icalparameter* tz = icalproperty_get_first_parameter(p, ICAL_TZID_PARAMETER))
            if (const char* text = icalparameter_get_tzid(tz))
                used.insert(text);
    for (icalcomponent* c = icalcomponent_get_first_component(component, ICAL_ANY_COMPONENT); c;
         c = icalcomponent_get_next_component(component, ICAL_ANY_COMPONENT))
        CollectZoneIds(c, used);
}

// Leaves at most kMaxAlarmsPerComponent reminders on the component.
int TrimAlarms(icalcomponent* component) {
    std::vector<icalcomponent*> alarms;
    for (icalcomponent* c = icalcomponent_get_first_component(component, ICAL_VALARM_COMPONENT); c;
         c = icalcomponent_get_next_component(component, ICAL_VALARM_COMPONENT))
        alarms.push_back(c);
    int dropped = 0;
    for (std::size_t i = IcsImport::kMaxAlarmsPerComponent; i < alarms.size(); ++i) {
        icalcomponent_remove_component(component, alarms[i]);
        icalcomponent_free(alarms[i]);
        ++dropped;
    }
    return dropped;
}

struct Group {
    int folder = 0;
    std::vector<icalcomponent*> components; // master first when there is one
    icalcomponent* master = nullptr;
};
} // namespace

IcsImport::Result IcsImport::Parse(const std::string& text, Parsed& parsed) {
    parsed = {};
    if (static_cast<std::int64_t>(text.size()) > kMaxFileBytes)
        return Result::TooLarge;
    if (!LooksLikeCalendar(text))
        return Result::NotCalendar;
    IcalComponentPtr root(icalparser_parse_string(text.c_str()));
    if (!root)
        return Result::NotCalendar;
    // A file may hold several calendars one after the other; libical puts
    // them under an XROOT.
    std::vector<icalcomponent*> calendars;
    if (icalcomponent_isa(root.get()) == ICAL_VCALENDAR_COMPONENT) {
        calendars.push_back(root.get());
    } else if (icalcomponent_isa(root.get()) == ICAL_XROOT_COMPONENT) {
        for (icalcomponent* c = icalcomponent_get_first_component(root.get(), ICAL_VCALENDAR_COMPONENT); c;
             c = icalcomponent_get_next_component(root.get(), ICAL_VCALENDAR_COMPONENT))
            calendars.push_back(c);
    }
    if (calendars.empty())
        return Result::NotCalendar;

    std::map<std::string, icalcomponent*> zones; // by TZID, the first definition wins
    std::vector<std::string> order;              // UIDs in the order of the file
    std::map<std::string, Group> groups;
    for (icalcomponent* calendar : calendars) {
        for (icalcomponent* c = icalcomponent_get_first_component(calendar, ICAL_ANY_COMPONENT); c;
             c = icalcomponent_get_next_component(calendar, ICAL_ANY_COMPONENT)) {
            const icalcomponent_kind kind = icalcomponent_isa(c);
            if (kind == ICAL_VTIMEZONE_COMPONENT) {
                if (icalproperty* id = icalcomponent_get_first_property(c, ICAL_TZID_PROPERTY))
                    if (const char* name = icalproperty_get_tzid(id))
                        zones.emplace(name, c);
                continue;
            }
            if (kind != ICAL_VEVENT_COMPONENT && kind != ICAL_VTODO_COMPONENT)
                continue;
            const char* uidText = icalcomponent_get_uid(c);
            std::string uid = uidText ? uidText : "";
            if (uid.empty()) {
                uid = IcsWriter::MakeUid();
                icalcomponent_set_uid(c, uid.c_str());
            }
            auto [it, added] = groups.try_emplace(uid);
            Group& group = it->second;
            if (added) {
                order.push_back(uid);
                group.folder = kind == ICAL_VTODO_COMPONENT ? kFolderTasks : kFolderCalendar;
            }
            const bool isOverride =
                icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY) != nullptr;
            if (!isOverride && !group.master) {
                group.master = c;
                group.components.insert(group.components.begin(), c);
            } else {
                group.components.push_back(c);
            }
        }
    }
    if (order.empty())
        return Result::Empty;

    parsed.items.reserve(order.size());
    for (const std::string& uid : order) {
        Group& group = groups[uid];
        IcalComponentPtr out(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
        icalcomponent_add_property(out.get(), icalproperty_new_version("2.0"));
        icalcomponent_add_property(out.get(), icalproperty_new_prodid(kProductId));
        std::set<std::string> used;
        for (icalcomponent* c : group.components)
            CollectZoneIds(c, used);
        for (const std::string& id : used) {
            auto zone = zones.find(id);
            if (zone != zones.end())
                icalcomponent_add_component(out.get(), icalcomponent_new_clone(zone->second));
        }
        for (icalcomponent* c : group.components) {
            icalcomponent* copy = icalcomponent_new_clone(c);
            parsed.droppedAlarms += TrimAlarms(copy);
            icalcomponent_add_component(out.get(), copy);
        }

        ImportItem item;
        item.uid = uid;
        item.folder = group.folder;
        icalcomponent* main = group.master ? group.master : group.components.front();
        if (const char* summary = icalcomponent_get_summary(main))
            item.subject = Utf8ToUtf16(summary);
        // Times are read in the file as given, whose zones are worked out
        // once for all its items.
        icalcomponent* shown = main;
        if (shown) {
            icaltimetype start = icalcomponent_get_dtstart(shown);
            if (icaltime_is_null_time(start) && group.folder == kFolderTasks)
                start = icalcomponent_get_due(shown);
            double date = 0.0;
            if (!icaltime_is_null_time(start) && IcalTime::ToLocalDate(start, date)) {
                item.start = date;
                item.allDay = start.is_date != 0;
            }
        }
        item.recurring = icalcomponent_get_first_property(main, ICAL_RRULE_PROPERTY) != nullptr ||
                         icalcomponent_get_first_property(main, ICAL_RDATE_PROPERTY) != nullptr;
        char* serialised = icalcomponent_as_ical_string_r(out.get());
        if (!serialised)
            continue;
        item.text = serialised;
        icalmemory_free_buffer(serialised);
        parsed.items.push_back(std::move(item));
    }
    return parsed.items.empty() ? Result::Empty : Result::Ok;
}

IcsImport::Result IcsImport::ReadFile(const std::string& path, Parsed& parsed) {
    parsed = {};
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || !std::filesystem::is_regular_file(path, error))
        return Result::Unreadable;
    if (size > static_cast<std::uintmax_t>(kMaxFileBytes))
        return Result::TooLarge;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return Result::Unreadable;
    std::string text(static_cast<std::size_t>(size), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return Parse(text, parsed);
}

} // namespace mirodate
