// Treats arbitrary bytes as a UTF-16 LE language file and looks keys up in it.
#include "lang/LanguageTable.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    mirodate::LanguageTable table;
    table.SetBytes(std::string_view(reinterpret_cast<const char*>(data), size));
    for (const char* key : {"LANGUAGE", "Menu", "", "A", "Sensitivity.1", "DayNames.AbbrevDay_0"})
        table.Get(key);
    table.Get(std::u16string_view(u"\n"));
    table.Get(std::u16string_view(u"="));
    return 0;
}
