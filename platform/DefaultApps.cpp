#include "platform/DefaultApps.h"

#include "platform/DesktopHandlers.h"
#include "platform/Log.h"
#include "platform/MimeAppsList.h"
#include "platform/Paths.h"
#include "platform/PlatformServices.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

namespace {
// How the displaced handler was written, so that Restore puts back the very
// same text: its value, no line for the type, or not even the section.
enum PreviousKind { kNoRecord = 0, kHadValue = 1, kHadNoLine = 2, kHadNoSection = 3 };
// Marks the desktop entries this program wrote, so that Restore removes no other.
constexpr const char* kOwnMarker = "X-Mirodate-Replacement=true";

std::string Env(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? std::string(value) : fallback;
}
std::string Home() {
    return Env("HOME", "/tmp");
}

const char* PreviousValueSetting(DefaultApps::Role role) {
    return role == DefaultApps::Role::Calendar ? "PreviousCalendarHandler" : "PreviousTasksHandler";
}
const char* PreviousKindSetting(DefaultApps::Role role) {
    return role == DefaultApps::Role::Calendar ? "PreviousCalendarHandlerKind" : "PreviousTasksHandlerKind";
}

std::string LauncherPath() {
    const std::string beside = Paths::ProgramDir() + "/mirodate-launcher";
    if (access(beside.c_str(), X_OK) == 0)
        return beside;
    return "mirodate-launcher";
}

std::string QuoteExecArgument(const std::string& text) {
    if (text.find_first_of(" \t\"'\\$`") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"' || c == '`' || c == '$' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

std::string DesktopEntryText(DefaultApps::Role role) {
    const bool calendar = role == DefaultApps::Role::Calendar;
    std::string text = "[Desktop Entry]\nType=Application\n";
    text += calendar ? "Name=Mirodate\nComment=Calendar\n" : "Name=Mirodate Tasks\nComment=Tasks\n";
    text += "Exec=" + QuoteExecArgument(LauncherPath()) + (calendar ? " calendar %f\n" : " tasks %f\n");
    text += std::string("MimeType=") + DefaultApps::MimeType(role) + ";\n";
    text += calendar ? "Categories=Office;Calendar;\n" : "Categories=Office;ProjectManagement;\n";
    text += "Terminal=false\nNoDisplay=" + std::string(calendar ? "false" : "true") + "\n";
    text += std::string(kOwnMarker) + "\n";
    return text;
}

bool WriteFileAtomically(const std::string& path, const std::string& text) {
    std::string temp = path + ".XXXXXX";
    const int fd = mkstemp(temp.data());
    if (fd < 0)
        return false;
    bool ok = static_cast<size_t>(write(fd, text.data(), text.size())) == text.size();
    ok = fchmod(fd, 0644) == 0 && ok;
    close(fd);
    if (!ok || rename(temp.c_str(), path.c_str()) != 0) {
        unlink(temp.c_str());
        return false;
    }
    return true;
}

bool IsOwnDesktopFile(const std::string& path) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        if (line == kOwnMarker)
            return true;
    return false;
}

bool NamesUs(const std::optional<std::string>& value, DefaultApps::Role role) {
    if (!value)
        return false;
    // The first id of the list is the default.
    const std::string first = value->substr(0, value->find(';'));
    return first == DefaultApps::DesktopId(role);
}
} // namespace

const char* DefaultApps::MimeType(Role role) {
    return role == Role::Calendar ? kCalendarMimeType : kTasksMimeType;
}
const char* DefaultApps::DesktopId(Role role) {
    return role == Role::Calendar ? kCalendarDesktopId : kTasksDesktopId;
}

std::string DefaultApps::MimeApps() {
    return Env("XDG_CONFIG_HOME", Home() + "/.config") + "/mimeapps.list";
}

std::string DefaultApps::DesktopFile(Role role) {
    return Env("XDG_DATA_HOME", Home() + "/.local/share") + "/applications/" + DesktopId(role);
}

bool DefaultApps::IsReplaced(Role role) {
    MimeAppsList list;
    std::string error;
    if (!list.Load(MimeApps(), error))
        return false;
    return NamesUs(list.Get(MimeAppsList::kDefaultsSection, MimeType(role)), role);
}

std::string DefaultApps::PreviousHandler(Role role) {
    return Utf16ToUtf8(Settings::GetText(PreviousValueSetting(role), u""));
}

bool DefaultApps::Replace(Role role, std::string& error) {
    MimeAppsList list;
    if (!list.Load(MimeApps(), error))
        return false;
    const auto current = list.Get(MimeAppsList::kDefaultsSection, MimeType(role));
    if (NamesUs(current, role))
        return true;

    const std::string desktop = DesktopFile(role);
    const std::string folder = desktop.substr(0, desktop.rfind('/'));
    if (!Paths::MakeDirs(folder) || !WriteFileAtomically(desktop, DesktopEntryText(role))) {
        error = desktop + ": " + std::strerror(errno);
        return false;
    }
    const int kind = current                                           ? kHadValue
                     : list.HasSection(MimeAppsList::kDefaultsSection) ? kHadNoLine
                                                                       : kHadNoSection;
    list.Set(MimeAppsList::kDefaultsSection, MimeType(role), std::string(DesktopId(role)) + ";");
    const std::string configFolder = MimeApps().substr(0, MimeApps().rfind('/'));
    Paths::MakeDirs(configFolder);
    if (!list.Save(MimeApps(), error)) {
        unlink(desktop.c_str());
        return false;
    }
    Settings::SetText(PreviousValueSetting(role), Utf8ToUtf16(current.value_or("")));
    Settings::SetNumber(PreviousKindSetting(role), kind);
    Log::Info("%s: %s is the default for %s now", MimeApps().c_str(), DesktopId(role), MimeType(role));
    return true;
}

bool DefaultApps::Restore(Role role, std::string& error) {
    MimeAppsList list;
    if (!list.Load(MimeApps(), error))
        return false;
    if (NamesUs(list.Get(MimeAppsList::kDefaultsSection, MimeType(role)), role)) {
        const std::string previous = PreviousHandler(role);
        switch (Settings::GetNumber(PreviousKindSetting(role), kNoRecord)) {
        case kHadValue:
            list.Set(MimeAppsList::kDefaultsSection, MimeType(role), previous);
            break;
        case kHadNoSection:
            list.Remove(MimeAppsList::kDefaultsSection, MimeType(role), true);
            break;
        default:
            list.Remove(MimeAppsList::kDefaultsSection, MimeType(role), false);
            break;
        }
        if (!list.Save(MimeApps(), error))
            return false;
    }
    const std::string desktop = DesktopFile(role);
    if (IsOwnDesktopFile(desktop))
        unlink(desktop.c_str());
    Settings::SetText(PreviousValueSetting(role), u"");
    Settings::SetNumber(PreviousKindSetting(role), kNoRecord);
    return true;
}

std::optional<std::vector<std::string>> DefaultApps::OtherHandlerCommand(Role role, const std::string& file) {
    std::vector<std::string> ids;
    // The recorded one first: it is the user's own choice.
    const std::string previous = PreviousHandler(role);
    for (size_t start = 0; start < previous.size();) {
        const size_t end = std::min(previous.find(';', start), previous.size());
        if (end > start)
            ids.push_back(previous.substr(start, end - start));
        start = end + 1;
    }
    for (const std::string& id : DesktopHandlers::HandlersFor(MimeType(role)))
        ids.push_back(id);
    for (const std::string& id : ids) {
        if (id == kCalendarDesktopId || id == kTasksDesktopId)
            continue;
        if (auto command = DesktopHandlers::CommandOf(id, file))
            return command;
    }
    return std::nullopt;
}

void DefaultApps::RunPreviousHandler(const std::vector<std::string>& arguments) {
    const bool calendar = IsCalendarReplaced();
    const bool tasks = IsTasksReplaced();
    // Remember the displaced handlers: Restore forgets them.
    const std::u16string previousCalendar = Settings::GetText(PreviousValueSetting(Role::Calendar), u"");
    const std::u16string previousTasks = Settings::GetText(PreviousValueSetting(Role::Tasks), u"");
    Role role = Role::Calendar;
    std::string file;
    for (const std::string& argument : arguments) {
        if (argument == "tasks")
            role = Role::Tasks;
        else if (argument == "calendar")
            role = Role::Calendar;
        else if (file.empty())
            file = argument;
    }
    std::string error;
    if (calendar || tasks) {
        if (!Restore(Role::Calendar, error) || !Restore(Role::Tasks, error))
            Log::Warning("cannot give the defaults back: %s", error.c_str());
    }
    const std::u16string& recorded = role == Role::Calendar ? previousCalendar : previousTasks;
    Settings::SetText(PreviousValueSetting(role), recorded);
    const auto command = OtherHandlerCommand(role, file);
    Settings::SetText(PreviousValueSetting(role), u"");
    if (command)
        PlatformServices::Instance().RunProgramAndWait(*command);
    else
        std::fprintf(stderr, "mirodate: no other %s program is set up on this desktop\n",
                     role == Role::Calendar ? "calendar" : "tasks");
    if (calendar && !Replace(Role::Calendar, error))
        Log::Warning("cannot take the calendar back: %s", error.c_str());
    if (tasks && !Replace(Role::Tasks, error))
        Log::Warning("cannot take the tasks back: %s", error.c_str());
}

} // namespace mirodate
