#include "forms/ConfigEntries.h"

#include "data/Categories.h"
#include "data/TemplateLists.h"
#include "lang/LanguageTable.h"
#include "platform/Paths.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "skin/SkinLoader.h"
#include "ui/FontFamilies.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace mirodate {

namespace {
using Kind = ConfigEntry::Kind;

std::u16string Number(long value) {
    return Utf8ToUtf16(std::to_string(value));
}

ConfigEntry Switch(const char* labelKey, const char* setting, bool fallback) {
    ConfigEntry entry;
    entry.kind = Kind::Switch;
    entry.labelKey = labelKey;
    entry.setting = setting;
    entry.fallback = fallback ? u"1" : u"0";
    return entry;
}

ConfigEntry Choice(const char* labelKey, const char* setting, std::u16string fallback,
                   std::vector<ConfigOption> options, bool numeric) {
    ConfigEntry entry;
    entry.kind = Kind::Choice;
    entry.labelKey = labelKey;
    entry.setting = setting;
    entry.fallback = std::move(fallback);
    entry.options = std::move(options);
    entry.numeric = numeric;
    return entry;
}

// Numbers with their own texts ("%i" in the language text stands for the number).
std::vector<ConfigOption> Numbers(const std::vector<long>& values, const char* formatKey) {
    std::vector<ConfigOption> options;
    for (long value : values) {
        std::u16string label = formatKey ? Lang(formatKey) : u"%i";
        const size_t at = label.find(u"%i");
        if (at != std::u16string::npos)
            label.replace(at, 2, Number(value));
        options.push_back({Number(value), label});
    }
    return options;
}

std::vector<ConfigOption> Labelled(const std::vector<std::pair<long, const char*>>& values) {
    std::vector<ConfigOption> options;
    for (const auto& [value, key] : values)
        options.push_back({Number(value), Lang(key)});
    return options;
}

// Durations in minutes, as "15 min", "2 h" or "1 day".
std::vector<ConfigOption> Durations(const std::vector<long>& minutes, bool withNone) {
    std::vector<ConfigOption> options;
    for (long value : minutes) {
        std::u16string label;
        if (value == 0 && withNone)
            label = Lang("config.None");
        else if (value % 1440 == 0)
            label = Number(value / 1440) + u" " + Lang(value == 1440 ? "config.Day" : "config.Days");
        else if (value % 60 == 0)
            label = Number(value / 60) + u" " + Lang("config.Hours");
        else
            label = Number(value) + u" " + Lang("config.Minutes");
        options.push_back({Number(value), label});
    }
    return options;
}

ConfigEntry Colour(const char* labelKey, std::u16string label, std::string setting, COLORREF fallback) {
    ConfigEntry entry;
    entry.kind = Kind::Colour;
    entry.labelKey = labelKey;
    entry.label = std::move(label);
    entry.setting = std::move(setting);
    entry.fallback = ConfigEntries::ColourText(fallback);
    return entry;
}

ConfigEntry TaskView(const char* labelKey, const char* view) {
    ConfigEntry entry;
    entry.kind = Kind::TaskView;
    entry.labelKey = labelKey;
    entry.setting = view;
    return entry;
}

ConfigEntry TextList(const char* labelKey, const char* list) {
    ConfigEntry entry;
    entry.kind = Kind::TextList;
    entry.labelKey = labelKey;
    entry.setting = list;
    return entry;
}

ConfigEntry Replacement(Kind kind, const char* labelKey) {
    ConfigEntry entry;
    entry.kind = kind;
    entry.labelKey = labelKey;
    return entry;
}

std::vector<ConfigOption> FontFamilyOptions() {
    std::vector<ConfigOption> options{{u"*auto*", Lang("config.SystemFont")}};
    for (const std::u16string& family : ListFontFamilies())
        options.push_back({family, family});
    return options;
}
} // namespace

std::u16string ConfigEntries::ColourText(COLORREF color) {
    char text[8];
    std::snprintf(text, sizeof text, "%02x%02x%02x", static_cast<unsigned>(color & 0xFF),
                  static_cast<unsigned>((color >> 8) & 0xFF), static_cast<unsigned>((color >> 16) & 0xFF));
    return Utf8ToUtf16(text);
}

std::vector<ConfigOption> ConfigEntries::ListLanguages(const std::vector<std::string>& folders) {
    std::vector<ConfigOption> options;
    for (const std::string& folder : folders) {
        std::error_code error;
        for (const auto& file : std::filesystem::directory_iterator(folder, error)) {
            const std::string name = file.path().filename().string();
            if (name.size() <= 9 || !name.starts_with("lang.") || !name.ends_with(".txt"))
                continue;
            const std::u16string value = Utf8ToUtf16(name);
            if (std::any_of(options.begin(), options.end(),
                            [&](const ConfigOption& o) { return o.value == value; }))
                continue;
            LanguageTable table;
            std::u16string label;
            if (table.Load(file.path().string()))
                label = table.Get(std::u16string_view(u"LANGUAGE"));
            // A file without a name is listed by its code.
            if (label.empty() || label == u"LANGUAGE")
                label = Utf8ToUtf16(name.substr(5, name.size() - 9));
            options.push_back({value, label, file.path().string()});
        }
    }
    std::sort(options.begin(), options.end(),
              [](const ConfigOption& a, const ConfigOption& b) { return a.label < b.label; });
    return options;
}

std::vector<ConfigOption> ConfigEntries::ListSkins(const std::vector<std::string>& folders) {
    std::vector<ConfigOption> options;
    for (const std::string& folder : folders) {
        for (const std::u16string& name : SkinLoader::ListIn({folder})) {
            if (std::any_of(options.begin(), options.end(),
                            [&](const ConfigOption& o) { return o.value == name; }))
                continue;
            options.push_back({name, name, folder + "/skin." + Utf16ToUtf8(name) + ".zip"});
        }
    }
    std::sort(options.begin(), options.end(),
              [](const ConfigOption& a, const ConfigOption& b) { return a.label < b.label; });
    return options;
}

ConfigFolders ConfigFolders::Installed() {
    ConfigFolders folders;
    folders.languages = {Paths::ProgramDir()};
    const std::string languages = Paths::FindResourceDir("lang.en.txt");
    if (languages != folders.languages.front())
        folders.languages.push_back(languages);
    folders.skins = {Paths::ProgramDir()};
    const std::string skins = Paths::FindResourceDir("skin.Mirodate Black.zip");
    if (skins != folders.skins.front())
        folders.skins.push_back(skins);
    return folders;
}

std::vector<ConfigTab> ConfigEntries::Build(const ConfigFolders& folders) {
    std::vector<ConfigTab> tabs;

    ConfigTab general{"config.General", {}};
    general.entries.push_back(Choice("config.Language", "Language", Settings::GetLanguage(),
                                     ListLanguages(folders.languages), false));
    general.entries.push_back(
        Choice("config.Skin", "Skin", SkinLoader::kDefaultSkin, ListSkins(folders.skins), false));
    general.entries.push_back(
        Choice("config.FontFamily", "FontFamily", u"*auto*", FontFamilyOptions(), false));
    general.entries.push_back(Choice("config.FontSizeDelta", "FontSizeDelta", u"1",
                                     Numbers({-2, -1, 0, 1, 2, 3, 4, 5, 6}, nullptr), true));
    general.entries.push_back(Switch("config.DisableAnimations", "DisableAnimations", false));
    general.entries.push_back(Switch("config.CloseOnMinimize", "CloseOnMinimize", false));
    general.entries.push_back(Switch("config.ShowWindowsTaskBar", "ShowWindowsTaskBar", true));
    general.entries.push_back(Switch("config.TimePickerWheel", "TimePickerWheel", false));
    general.entries.push_back(Choice("config.SearchStartDelay", "SearchStartDelay", u"750",
                                     Numbers({250, 500, 750, 1000, 1500, 2000, 3000}, nullptr), true));
    general.entries.push_back(Replacement(Kind::ReplaceCalendar, "config.ReplaceCalendar"));
    general.entries.push_back(Replacement(Kind::ReplaceTasks, "config.ReplaceTasks"));
    tabs.push_back(std::move(general));

    ConfigTab views{"config.Views", {}};
    views.entries.push_back(Switch("config.SplitMonthView", "SplitMonthView", true));
    views.entries.push_back(Switch("config.ShowWeekNumber", "ShowWeekNumber", true));
    views.entries.push_back(
        Choice("config.MonthScrollMode", "MonthScrollMode", u"0",
               Labelled({{0, "config.MonthScrollMode.0"}, {1, "config.MonthScrollMode.1"}}), true));
    views.entries.push_back(Choice("config.MarkerMode", "MarkerMode", u"0",
                                   Labelled({{0, "config.MarkerMode.0"}, {1, "config.MarkerMode.1"}}), true));
    views.entries.push_back(Switch("config.StrikeThroughPastEvents", "StrikeThroughPastEvents", false));
    views.entries.push_back(Switch("config.ColorizeText", "ColorizeText", false));
    views.entries.push_back(Switch("config.AgendaMode", "AgendaMode", false));
    views.entries.push_back(
        Choice("config.AgendaSize", "AgendaSize", u"4", Numbers({1, 2, 3, 4}, nullptr), true));
    views.entries.push_back(Switch("config.ShowTimeOnWeek", "ShowTimeOnWeek", true));
    std::vector<ConfigOption> most = Numbers({2, 3, 4, 5, 6, 8, 10}, nullptr);
    most.insert(most.begin(), {u"-1", Lang("config.NoLimit")});
    views.entries.push_back(Choice("config.WeekMaxEvents", "WeekMaxEvents", u"-1", most, true));
    tabs.push_back(std::move(views));

    ConfigTab items{"config.Items", {}};
    items.entries.push_back(Switch("config.ShowTasksByDueDate", "ShowTasksByDueDate", true));
    items.entries.push_back(Switch("config.ShowTasksByStartDate", "ShowTasksByStartDate", false));
    items.entries.push_back(TaskView("config.TasksInMonth", "Month"));
    items.entries.push_back(TaskView("config.TasksInWeek", "Week"));
    items.entries.push_back(TaskView("config.TasksInAgenda", "Agenda"));
    items.entries.push_back(TaskView("config.TasksInDay", "Day"));
    items.entries.push_back(Switch("config.HideCompleteTasks", "HideCompleteTasks", false));
    items.entries.push_back(Choice("config.TaskSort", "TaskSort", u"0",
                                   Labelled({{0, "DueDate"},
                                             {1, "Priority"},
                                             {2, "Subject"},
                                             {3, "Status"},
                                             {4, "StartDate"},
                                             {5, "config.DueDateDown"},
                                             {6, "config.PriorityDown"},
                                             {7, "config.SubjectDown"},
                                             {8, "config.StatusDown"},
                                             {9, "config.StartDateDown"}}),
                                   true));
    items.entries.push_back(Choice("config.DefaultSpan", "DefaultSpan", u"15",
                                   Durations({15, 30, 45, 60, 90, 120, 180, 240, 480, 1440}, false), true));
    items.entries.push_back(Switch("config.DefaultReminderEnable", "DefaultReminderEnable", false));
    items.entries.push_back(Choice("config.DefaultReminder", "DefaultReminder", u"0",
                                   Durations({0, 5, 10, 15, 30, 60, 120, 1440, 2880, 10080}, true), true));
    items.entries.push_back(TextList("config.Subjects", kSubjectsList));
    items.entries.push_back(TextList("config.Locations", kLocationsList));
    tabs.push_back(std::move(items));

    ConfigTab colours{"config.Colors", {}};
    colours.entries.push_back(Switch("config.ShowContactsBirthdays", "ShowContactsBirthdays", false));
    colours.entries.push_back(
        Colour("config.BirthdayColor", u"", "Color[ContBirthday]", Categories::kDefaultBirthdayColor));
    colours.entries.push_back(Switch("config.ShowContactsAnniversaries", "ShowContactsAnniversaries", false));
    colours.entries.push_back(Colour("config.AnniversaryColor", u"", "Color[ContAnniversary]",
                                     Categories::kDefaultAnniversaryColor));
    std::vector<std::u16string> categories;
    Categories::LoadCategories(categories);
    for (const std::u16string& name : categories)
        colours.entries.push_back(
            Colour("", name, "CatColor[" + Utf16ToUtf8(name) + "]", RGB(0x80, 0x80, 0x80)));
    tabs.push_back(std::move(colours));
    return tabs;
}

int ConfigEntries::CurrentOption(const ConfigEntry& entry) {
    if (entry.options.empty())
        return -1;
    auto indexOf = [&](const std::u16string& value) {
        for (size_t i = 0; i < entry.options.size(); ++i)
            if (entry.options[i].value == value)
                return static_cast<int>(i);
        return -1;
    };
    if (entry.numeric) {
        // As the readers see it: decimal up to the first non-digit, clamped to
        // the offered range and rounded up to the next offered value.
        auto number = [](const std::u16string& text) {
            return std::strtol(Utf16ToUtf8(text).c_str(), nullptr, 10);
        };
        const long value = Settings::GetSignedNumber(entry.setting.c_str(),
                                                     static_cast<std::int32_t>(number(entry.fallback)));
        for (size_t i = 0; i < entry.options.size(); ++i)
            if (number(entry.options[i].value) >= value)
                return static_cast<int>(i);
        return static_cast<int>(entry.options.size()) - 1;
    }
    // A name no option offers (a font or skin since removed) matches none.
    return indexOf(Settings::GetText(entry.setting.c_str(), entry.fallback));
}

bool ConfigEntries::SwitchValue(const ConfigEntry& entry) {
    if (entry.kind == ConfigEntry::Kind::TaskView)
        return Settings::IsTaskViewEnabled(Utf8ToUtf16(entry.setting));
    return Settings::GetBool(entry.setting.c_str(), entry.fallback == u"1");
}

COLORREF ConfigEntries::ColourValue(const ConfigEntry& entry) {
    const std::u16string text = Settings::GetText(entry.setting.c_str(), u"");
    return Categories::ParseColor(text.empty() ? entry.fallback : text);
}

std::u16string ConfigEntries::ValueText(const ConfigEntry& entry) {
    if (entry.kind == ConfigEntry::Kind::TextList) {
        // How many entries the list holds.
        std::vector<std::u16string> list;
        if (entry.setting == kSubjectsList)
            TemplateLists::LoadSubjects(list);
        else
            TemplateLists::LoadLocations(list);
        return ToU16(static_cast<long>(list.size()));
    }
    if (entry.kind != ConfigEntry::Kind::Choice)
        return {};
    const int at = CurrentOption(entry);
    if (at >= 0)
        return entry.options[static_cast<size_t>(at)].label;
    // A value no option offers (a skin or font since removed): shown as it is.
    return Settings::GetText(entry.setting.c_str(), entry.fallback);
}

} // namespace mirodate
