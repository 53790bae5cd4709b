#pragma once
// Taking over as the desktop's calendar and tasks program. "Replace" writes
// a desktop entry for the launcher into $XDG_DATA_HOME/applications and makes
// it the default handler in $XDG_CONFIG_HOME/mimeapps.list, keeping the
// handler it displaces in the settings; "Restore" gives that handler back and
// removes the entry. The state lives in mimeapps.list alone: the program
// keeps no copy of it.
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

class DefaultApps {
public:
    enum class Role { Calendar, Tasks };

    static constexpr const char* kCalendarDesktopId = "mirodate.desktop";
    static constexpr const char* kTasksDesktopId = "mirodate-tasks.desktop";
    static constexpr const char* kCalendarMimeType = "text/calendar";
    // Task lists have no registered type of their own; this one is what
    // task programs on the desktop answer to.
    static constexpr const char* kTasksMimeType = "text/x-vtodo";

    static bool IsReplaced(Role role);
    static bool IsCalendarReplaced() { return IsReplaced(Role::Calendar); }
    static bool IsTasksReplaced() { return IsReplaced(Role::Tasks); }

    // Each returns false with a reason when mimeapps.list cannot be read or
    // written; the file is then left exactly as it was.
    static bool Replace(Role role, std::string& error);
    static bool Restore(Role role, std::string& error);

    // The handler that was the default before Replace ("" when none was).
    static std::string PreviousHandler(Role role);
    static std::string MimeApps();
    static std::string DesktopFile(Role role);
    static const char* MimeType(Role role);
    static const char* DesktopId(Role role);

    // The "-f" start: takes both replacements away, runs the desktop's other
    // program for the request (`arguments`: an optional "calendar"/"tasks"
    // and the files), waits for it and installs again what was installed.
    static void RunPreviousHandler(const std::vector<std::string>& arguments);
    // The other program's command line for a role and files, if there is one.
    static std::optional<std::vector<std::string>> OtherHandlerCommand(Role role, const std::string& file);
};

} // namespace mirodate
