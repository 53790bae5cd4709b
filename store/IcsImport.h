#pragma once
// Splits a calendar file from elsewhere (an export of another program, a
// mail attachment) into the store's items: one VCALENDAR per UID holding
// the event or task with its RECURRENCE-ID overrides and a copy of every
// VTIMEZONE its times name, so that the times stay as they were given.
// Events go to the calendar folder, tasks to the tasks folder; a component
// without a UID gets a new one.
#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

struct ImportItem {
    std::string uid;
    int folder = 0; // kFolderCalendar or kFolderTasks
    std::u16string subject;
    double start = 0.0; // local DATE of DTSTART (DUE for a task), 0 when none
    bool allDay = false;
    bool recurring = false;
    std::string text; // the item's own calendar file
};

class IcsImport {
public:
    // An import file larger than this is refused.
    static constexpr std::int64_t kMaxFileBytes = 64 * 1024 * 1024;
    // Reminders beyond this many on one component are left out.
    static constexpr int kMaxAlarmsPerComponent = 20;

    enum class Result { Ok, NotCalendar, TooLarge, Unreadable, Empty };

    struct Parsed {
        std::vector<ImportItem> items;
        int droppedAlarms = 0; // reminders left out (see kMaxAlarmsPerComponent)
    };

    static Result Parse(const std::string& text, Parsed& parsed);
    static Result ReadFile(const std::string& path, Parsed& parsed);
};

} // namespace mirodate
