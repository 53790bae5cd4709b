#include "data/Categories.h"

#include "platform/Settings.h"
#include "platform/SettingsStore.h"
#include "platform/TextUtil.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>

namespace mirodate {

namespace {

constexpr const char* kCategoryColorPrefix = "CatColor[";
constexpr std::size_t kMaxColorTextLength = 8;
constexpr std::size_t kBareColorLength = 6;     // rrggbb
constexpr std::size_t kPrefixedColorLength = 7; // #rrggbb

struct ColorState {
    std::mutex mutex;
    Categories::NameProvider provider;
    std::map<std::u16string, COLORREF> colors;
    COLORREF birthday = Categories::kDefaultBirthdayColor;
    COLORREF anniversary = Categories::kDefaultAnniversaryColor;
};

ColorState& State() {
    static ColorState state;
    return state;
}

// Category names that have a stored colour. The settings offer no listing
// of names, so the settings file is read for "CatColor[...]=" lines.
std::vector<std::u16string> NamesWithStoredColor() {
    std::vector<std::u16string> names;
    std::ifstream file(Settings::Store().Path());
    std::string line;
    const std::string prefix = kCategoryColorPrefix;
    while (std::getline(file, line)) {
        if (line.compare(0, prefix.size(), prefix) != 0)
            continue;
        const std::size_t close = line.find("]=", prefix.size());
        if (close == std::string::npos)
            continue;
        names.push_back(Utf8ToUtf16(line.substr(prefix.size(), close - prefix.size())));
    }
    return names;
}

std::string ColorSettingName(const std::u16string& category) {
    return kCategoryColorPrefix + Utf16ToUtf8(category) + "]";
}

} // namespace

void Categories::SetNameProvider(NameProvider provider) {
    std::lock_guard lock(State().mutex);
    State().provider = std::move(provider);
}

std::vector<std::u16string> Categories::Split(std::u16string_view categories) {
    std::vector<std::u16string> names;
    std::size_t begin = 0;
    while (begin <= categories.size()) {
        std::size_t comma = categories.find(u',', begin);
        if (comma == std::u16string_view::npos)
            comma = categories.size();
        std::u16string name = Trim(categories.substr(begin, comma - begin));
        if (!name.empty())
            names.push_back(std::move(name));
        begin = comma + 1;
    }
    return names;
}

void Categories::LoadCategories(std::vector<std::u16string>& list) {
    list.clear();
    NameProvider provider;
    {
        std::lock_guard lock(State().mutex);
        provider = State().provider;
    }
    std::vector<std::u16string> found = provider ? provider() : std::vector<std::u16string>{};
    for (auto& name : NamesWithStoredColor())
        found.push_back(std::move(name));
    for (const auto& text : found)
        for (auto& name : Split(text))
            list.push_back(std::move(name));
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
}

void Categories::LoadCategoryColors() {
    std::vector<std::u16string> names;
    LoadCategories(names);
    std::map<std::u16string, COLORREF> colors;
    for (const auto& name : names) {
        const std::u16string text = Settings::GetText(ColorSettingName(name).c_str(), u"");
        if (!text.empty())
            colors[name] = ParseColor(text);
    }
    const auto birthday = Settings::Store().Get("Color[ContBirthday]");
    const auto anniversary = Settings::Store().Get("Color[ContAnniversary]");
    std::lock_guard lock(State().mutex);
    State().colors = std::move(colors);
    if (birthday)
        State().birthday = ParseColor(*birthday);
    if (anniversary)
        State().anniversary = ParseColor(*anniversary);
}

COLORREF Categories::ParseColor(std::u16string_view text) {
    std::string narrow;
    for (char16_t c : text.substr(0, kMaxColorTextLength))
        narrow.push_back(c < 0x80 ? static_cast<char>(c) : '?');
    narrow = ToLowerAscii(narrow);
    std::string digits;
    if (narrow.size() == kBareColorLength)
        digits = narrow;
    else if (narrow.size() == kPrefixedColorLength)
        digits = narrow.substr(1);
    else
        return 0;
    const unsigned long rgb = std::strtoul(digits.c_str(), nullptr, 16);
    return RGB(static_cast<int>((rgb >> 16) & 0xFF), static_cast<int>((rgb >> 8) & 0xFF),
               static_cast<int>(rgb & 0xFF));
}

void Categories::GetItemColors(std::u16string_view categories, std::vector<COLORREF>& colors) {
    if (categories.empty())
        return;
    std::lock_guard lock(State().mutex);
    for (const auto& name : Split(categories)) {
        auto it = State().colors.find(name);
        if (it != State().colors.end())
            colors.push_back(it->second);
    }
}

bool Categories::GetCategoryColor(const std::u16string& name, COLORREF& color) {
    std::lock_guard lock(State().mutex);
    auto it = State().colors.find(name);
    if (it == State().colors.end())
        return false;
    color = it->second;
    return true;
}

COLORREF Categories::GetBirthdayColor() {
    std::lock_guard lock(State().mutex);
    return State().birthday;
}

COLORREF Categories::GetAnniversaryColor() {
    std::lock_guard lock(State().mutex);
    return State().anniversary;
}

void Categories::Reset() {
    std::lock_guard lock(State().mutex);
    State().colors.clear();
    State().birthday = kDefaultBirthdayColor;
    State().anniversary = kDefaultAnniversaryColor;
}

} // namespace mirodate
