#include "platform/Settings.h"

#include "platform/Locale.h"
#include "platform/Paths.h"
#include "platform/SettingsStore.h"
#include "platform/TextUtil.h"

#include <algorithm>
#include <memory>
#include <mutex>

namespace mirodate {

namespace {
std::mutex g_storeMutex;
std::unique_ptr<SettingsStore> g_store;

// A number is read from at most 64 bytes of the value, terminator included.
constexpr size_t kMaxNumberChars = 64 / sizeof(char16_t) - 1;

std::u16string NumberText(const std::u16string& text) {
    return text.substr(0, kMaxNumberChars);
}
} // namespace

SettingsStore& Settings::Store() {
    std::lock_guard lock(g_storeMutex);
    if (!g_store)
        g_store = std::make_unique<SettingsStore>(Paths::ConfigDir() + "/settings.conf");
    return *g_store;
}

void Settings::UseFile(const std::string& path) {
    std::lock_guard lock(g_storeMutex);
    g_store = std::make_unique<SettingsStore>(path);
}

std::uint32_t Settings::GetNumber(const char* name, std::uint32_t defaultValue) {
    auto value = Store().Get(name);
    if (!value || value->empty())
        return defaultValue;
    return static_cast<std::uint32_t>(ParseUnsignedLong(NumberText(*value)));
}

std::int32_t Settings::GetSignedNumber(const char* name, std::int32_t defaultValue) {
    auto value = Store().Get(name);
    if (!value || value->empty())
        return defaultValue;
    long n = ParseLong(NumberText(*value));
    return static_cast<std::int32_t>(std::clamp<long>(n, INT32_MIN, INT32_MAX));
}

void Settings::SetNumber(const char* name, std::int64_t value) {
    Store().Set(name, ToU16(static_cast<long>(value)));
}

std::u16string Settings::GetText(const char* name, const std::u16string& defaultValue) {
    auto value = Store().Get(name);
    return value ? *value : defaultValue;
}

void Settings::SetText(const char* name, const std::u16string& text) {
    Store().Set(name, text);
}

bool Settings::GetBool(const char* name, bool defaultValue) {
    return GetNumber(name, defaultValue ? 1 : 0) != 0;
}
void Settings::SetBool(const char* name, bool value) {
    SetNumber(name, value ? 1 : 0);
}

int Settings::GetLastViewMode() {
    return std::clamp(GetSignedNumber("LastViewMode", 0), 0, 2);
}
void Settings::SetLastViewMode(int mode) {
    SetNumber("LastViewMode", mode);
}
int Settings::GetMarkerMode() {
    return GetSignedNumber("MarkerMode", 0);
}
void Settings::SetMarkerMode(int mode) {
    SetNumber("MarkerMode", mode);
}
std::u16string Settings::GetLastFilter() {
    return GetText("LastFilter", u"");
}
void Settings::SetLastFilter(const std::u16string& filter) {
    SetText("LastFilter", filter);
}
std::u16string Settings::GetExcludeFilter() {
    return GetText("ExcludeFilter", u"");
}
void Settings::SetExcludeFilter(const std::u16string& filter) {
    SetText("ExcludeFilter", filter);
}
std::uint32_t Settings::GetDefaultSpan() {
    return GetNumber("DefaultSpan", 15);
}
void Settings::SetDefaultSpan(std::uint32_t minutes) {
    SetNumber("DefaultSpan", minutes);
}
std::uint32_t Settings::GetDefaultReminder() {
    return GetNumber("DefaultReminder", 0);
}
void Settings::SetDefaultReminder(std::uint32_t minutes) {
    SetNumber("DefaultReminder", minutes);
}
bool Settings::GetDefaultReminderEnable() {
    return GetBool("DefaultReminderEnable", false);
}
std::uint32_t Settings::GetAgendaMode() {
    return GetNumber("AgendaMode", 0);
}
int Settings::GetAgendaSize() {
    return static_cast<int>(std::clamp<std::uint32_t>(GetNumber("AgendaSize", 4), 1, 4));
}
bool Settings::GetCloseOnMinimize() {
    return GetBool("CloseOnMinimize", false);
}
std::uint32_t Settings::GetMonthScrollMode() {
    return GetNumber("MonthScrollMode", 0);
}
bool Settings::GetHideCompleteTasks() {
    return GetBool("HideCompleteTasks", false);
}
bool Settings::GetShowContactsBirthdays() {
    return GetBool("ShowContactsBirthdays", false);
}
bool Settings::GetShowContactsAnniversaries() {
    return GetBool("ShowContactsAnniversaries", false);
}
bool Settings::GetDisableAnimations() {
    return GetBool("DisableAnimations", false);
}
std::u16string Settings::GetFontFamily() {
    return GetText("FontFamily", u"*auto*");
}
void Settings::SetFontFamily(const std::u16string& family) {
    SetText("FontFamily", family);
}

int Settings::GetFontSizeDelta() {
    static const int delta =
        std::clamp(GetSignedNumber("FontSizeDelta", 1), kMinFontSizeDelta, kMaxFontSizeDelta);
    return delta;
}

bool Settings::GetShowWeekNumber() {
    return GetBool("ShowWeekNumber", true);
}
bool Settings::GetShowWindowsTaskBar() {
    return GetBool("ShowWindowsTaskBar", true);
}
std::u16string Settings::GetSkin() {
    return GetText("Skin", u"Mirodate Black");
}
void Settings::SetSkin(const std::u16string& skin) {
    SetText("Skin", skin);
}

std::u16string Settings::GetLanguage() {
    auto value = Store().Get("Language");
    if (value && !value->empty())
        return *value;
    return LanguageFileForLanguageName(Locale::EnglishLanguageName());
}

void Settings::SetLanguage(const std::u16string& fileName) {
    SetText("Language", fileName);
}
bool Settings::GetSplitMonthView() {
    return GetBool("SplitMonthView", true);
}
bool Settings::GetColorizeText() {
    return GetBool("ColorizeText", false);
}
bool Settings::GetShowTimeOnWeek() {
    return GetBool("ShowTimeOnWeek", true);
}
int Settings::GetTaskSort() {
    return std::max(0, GetSignedNumber("TaskSort", 0));
}
int Settings::GetWeekMaxEvents(int defaultValue) {
    return GetSignedNumber("WeekMaxEvents", defaultValue);
}
bool Settings::GetShowTasksByDueDate() {
    return GetBool("ShowTasksByDueDate", true);
}
bool Settings::GetShowTasksByStartDate() {
    return GetBool("ShowTasksByStartDate", false);
}
std::u16string Settings::GetShowTasksInViews() {
    return GetText("ShowTasksInViews", u"Month|Week|Agenda|Day");
}
void Settings::SetShowTasksInViews(const std::u16string& views) {
    SetText("ShowTasksInViews", views);
}
bool Settings::GetTimePickerWheel() {
    return GetBool("TimePickerWheel", false);
}
bool Settings::GetStrikeThroughPastEvents() {
    return GetBool("StrikeThroughPastEvents", false);
}
std::uint32_t Settings::GetSearchStartDelay() {
    return GetNumber("SearchStartDelay", 750);
}
std::u16string Settings::GetInstallDir() {
    return GetText("InstallDir", u"");
}

bool Settings::IsTaskViewEnabled(const std::u16string& viewName) {
    const std::u16string views = GetShowTasksInViews();
    size_t start = 0;
    while (start <= views.size()) {
        size_t bar = views.find(u'|', start);
        if (bar == std::u16string::npos)
            bar = views.size();
        if (views.compare(start, bar - start, viewName) == 0)
            return true;
        start = bar + 1;
    }
    return false;
}

std::u16string Settings::LanguageFileForLanguageName(const std::string& englishName) {
    static const struct {
        const char* name;
        const char16_t* file;
    } kLanguages[] = {
        {"German", u"lang.de.txt"}, {"French", u"lang.fr.txt"},  {"Dutch", u"lang.nl.txt"},
        {"Polish", u"lang.pl.txt"}, {"Russian", u"lang.ru.txt"}, {"Swedish", u"lang.se.txt"},
    };
    for (const auto& language : kLanguages)
        if (englishName == language.name)
            return language.file;
    return u"lang.en.txt";
}

} // namespace mirodate
