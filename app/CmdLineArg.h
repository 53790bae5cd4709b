#pragma once
#include <string>

namespace mirodate {

// Looks up "/name=value" in a command line. The name is matched without
// regard to case; the value keeps its case, runs to the next " /" or the end,
// and is trimmed of spaces. True when the value found is not empty.
bool GetCmdLineArg(const std::u16string& name, std::u16string& value, const std::u16string& commandLine);

} // namespace mirodate
