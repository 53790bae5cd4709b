// Feeds arbitrary text to the INI reader and looks up the keys a skin uses.
#include "lang/IniFile.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    mirodate::IniFile ini(text);
    ini.ApplyVariables();
    for (const char* section : {"styles.calendar", "variables", "info", "", "["})
        for (const char* key : {"colorBg", "$a", "", " key", "author"})
            ini.GetValue(section, key, "default");
    // Also look up the names the text itself uses.
    for (const auto& line : ini.Lines()) {
        const std::string_view name = std::string_view(line.text).substr(0, line.text.find('='));
        ini.GetValue(name, name, "d");
        mirodate::IniFile::LookupResult result;
        ini.Find("variables", name, result);
    }
    return 0;
}
