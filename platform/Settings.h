#pragma once
// The program's configuration: named values kept as text in the settings
// file. Nothing is cached: every reader asks at the moment it needs a value
// and gets the stored value or the default. FontSizeDelta alone is read once
// per process.
#include <cstdint>
#include <string>

namespace mirodate {

class SettingsStore;

class Settings {
public:
    // The store used by every call; by default the file under
    // $XDG_CONFIG_HOME/mirodate/settings.conf. Tests point it elsewhere.
    static SettingsStore& Store();
    static void UseFile(const std::string& path);

    // A missing or empty value gives the default; any other text is read as a
    // decimal number up to its first non-digit ("abc" reads as 0).
    static std::uint32_t GetNumber(const char* name, std::uint32_t defaultValue);
    static std::int32_t GetSignedNumber(const char* name, std::int32_t defaultValue);
    static void SetNumber(const char* name, std::int64_t value);
    static std::u16string GetText(const char* name, const std::u16string& defaultValue);
    static void SetText(const char* name, const std::u16string& text);
    static bool GetBool(const char* name, bool defaultValue);
    static void SetBool(const char* name, bool value);

    // Named values with their defaults and clamps.
    static int GetLastViewMode(); // 0 month, 1 week, 2 agenda; clamped to 0..2
    static void SetLastViewMode(int mode);
    static int GetMarkerMode();
    static void SetMarkerMode(int mode);
    static std::u16string GetLastFilter();
    static void SetLastFilter(const std::u16string& filter);
    static std::u16string GetExcludeFilter();
    static void SetExcludeFilter(const std::u16string& filter);
    static std::uint32_t GetDefaultSpan(); // minutes, 15
    static void SetDefaultSpan(std::uint32_t minutes);
    static std::uint32_t GetDefaultReminder(); // minutes, 0
    static void SetDefaultReminder(std::uint32_t minutes);
    static bool GetDefaultReminderEnable();
    static std::uint32_t GetAgendaMode();
    static int GetAgendaSize(); // clamped to 1..4, default 4
    static bool GetCloseOnMinimize();
    static std::uint32_t GetMonthScrollMode();
    static bool GetHideCompleteTasks();
    static bool GetShowContactsBirthdays();
    static bool GetShowContactsAnniversaries();
    static bool GetDisableAnimations();
    static std::u16string GetFontFamily(); // "*auto*" means the system font
    static void SetFontFamily(const std::u16string& family);
    // Default 1; read once per process and clamped to the range below, in
    // which every font of the program keeps a height a screen can show.
    static int GetFontSizeDelta();
    static constexpr int kMinFontSizeDelta = -8;
    static constexpr int kMaxFontSizeDelta = 24;
    static bool GetShowWeekNumber();
    static bool GetShowWindowsTaskBar();
    static std::u16string GetSkin(); // default "Mirodate Black"
    static void SetSkin(const std::u16string& skin);
    static std::u16string GetLanguage(); // default chosen from the locale
    static void SetLanguage(const std::u16string& fileName);
    static bool GetSplitMonthView();
    static bool GetColorizeText();
    static bool GetShowTimeOnWeek();
    static int GetTaskSort();                      // negative reads as 0
    static int GetWeekMaxEvents(int defaultValue); // negative means no limit
    static bool GetShowTasksByDueDate();
    static bool GetShowTasksByStartDate();
    static std::u16string GetShowTasksInViews(); // default "Month|Week|Agenda|Day"
    static void SetShowTasksInViews(const std::u16string& views);
    static bool GetTimePickerWheel();
    static bool GetStrikeThroughPastEvents();
    static std::uint32_t GetSearchStartDelay(); // milliseconds, 750
    static std::u16string GetInstallDir();

    // Whether `viewName` ("Month", "Week", "Agenda", "Day") is one of the
    // "|"-separated names of ShowTasksInViews.
    static bool IsTaskViewEnabled(const std::u16string& viewName);

    // The language file for an English language name ("German" gives
    // "lang.de.txt"; anything unknown "lang.en.txt").
    static std::u16string LanguageFileForLanguageName(const std::string& englishName);
};

} // namespace mirodate
