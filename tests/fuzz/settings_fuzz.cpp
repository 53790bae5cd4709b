// Writes arbitrary bytes as the settings file and reads every setting from
// it, then stores a value and reads it back.
#include "platform/Settings.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {
std::string g_path;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // tmpfs when there is one: every input is written and synced.
    const char* dir = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    g_path = std::string(dir) + "/mirodate-settings-fuzz-" + std::to_string(getpid()) + ".conf";
    mirodate::Settings::UseFile(g_path);
    std::atexit([] {
        std::remove(g_path.c_str());
        std::remove((g_path + ".lock").c_str());
    });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using mirodate::Settings;
    if (FILE* file = std::fopen(g_path.c_str(), "wb")) {
        std::fwrite(data, 1, size, file);
        std::fclose(file);
    }
    Settings::UseFile(g_path);
    Settings::GetLastViewMode();
    Settings::GetMarkerMode();
    Settings::GetLastFilter();
    Settings::GetExcludeFilter();
    Settings::GetDefaultSpan();
    Settings::GetDefaultReminder();
    Settings::GetDefaultReminderEnable();
    Settings::GetAgendaMode();
    Settings::GetAgendaSize();
    Settings::GetMonthScrollMode();
    Settings::GetHideCompleteTasks();
    Settings::GetFontFamily();
    Settings::GetFontSizeDelta();
    Settings::GetSkin();
    Settings::GetLanguage();
    Settings::GetTaskSort();
    Settings::GetWeekMaxEvents(5);
    Settings::GetShowTasksInViews();
    Settings::IsTaskViewEnabled(u"Agenda");
    Settings::GetSearchStartDelay();
    Settings::GetSignedNumber("LastViewMode", -1);
    // A value with every character that needs escaping survives a round trip.
    const std::u16string value = u"a\\b\r\nc=d\u00e9";
    Settings::SetText("FuzzValue", value);
    if (Settings::GetText("FuzzValue", u"") != value)
        abort();
    return 0;
}
