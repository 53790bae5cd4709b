#pragma once
// The font families the text renderer can use, for choosing the program's font.
#include <string>
#include <vector>

namespace mirodate {

// Family names, sorted, each once.
std::vector<std::u16string> ListFontFamilies();

} // namespace mirodate
