#pragma once
// What the configuration dialog offers: its tabs and, on each, the rows of
// settings with their choices, defaults and clamps. A row is a switch, a
// choice among values, a colour, one of the two default-program switches or
// a "show tasks in" view switch, or a list edited as a whole text (the
// subject templates and the locations); every value is written through
// Settings as text, the lists through TemplateLists. Kept apart from the page so that the page only draws and
// reacts.
#include "platform/Types.h"

#include <string>
#include <vector>

namespace mirodate {

struct ConfigOption {
    std::u16string value; // as stored
    std::u16string label; // as shown
    std::string path;     // the file behind a language or skin
};

// Where the languages and skins are looked for.
struct ConfigFolders {
    std::vector<std::string> languages;
    std::vector<std::string> skins;
    // The program's folder and the installed share folder.
    static ConfigFolders Installed();
};

struct ConfigEntry {
    enum class Kind { Switch, Choice, Colour, ReplaceCalendar, ReplaceTasks, TaskView, TextList };
    Kind kind = Kind::Switch;
    std::string labelKey;    // language key
    std::u16string label;    // shown instead of the key when not empty (category names)
    std::string setting;     // settings name; the view name for TaskView; the list for TextList
    std::u16string fallback; // default value as text
    std::vector<ConfigOption> options;
    bool numeric = false; // a Choice of numbers: garbage and outliers read clamped
};

// The `setting` of the two TextList rows.
constexpr const char* kSubjectsList = "MDSubjects";
constexpr const char* kLocationsList = "MDLocations";

struct ConfigTab {
    std::string labelKey;
    std::vector<ConfigEntry> entries;
};

class ConfigEntries {
public:
    // The tabs and rows, with the installed languages and skins and the known categories.
    static std::vector<ConfigTab> Build(const ConfigFolders& folders);

    // Language files (file name and "LANGUAGE" name; the code when a file has
    // none), sorted by name; the first folder wins for a file in several.
    static std::vector<ConfigOption> ListLanguages(const std::vector<std::string>& folders);
    // Skin archives "skin.<name>.zip" by name, whether they open or not.
    static std::vector<ConfigOption> ListSkins(const std::vector<std::string>& folders);

    // The option shown for a Choice: the stored value, clamped and rounded up
    // for numbers; -1 for a text no option offers.
    static int CurrentOption(const ConfigEntry& entry);
    // The text a row shows on its right.
    static std::u16string ValueText(const ConfigEntry& entry);
    static bool SwitchValue(const ConfigEntry& entry);
    static COLORREF ColourValue(const ConfigEntry& entry);
    // Stores a colour as "rrggbb".
    static std::u16string ColourText(COLORREF color);
};

} // namespace mirodate
