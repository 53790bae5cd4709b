#include "app/CmdLineArg.h"

#include "platform/TextUtil.h"

namespace mirodate {

bool GetCmdLineArg(const std::u16string& name, std::u16string& value, const std::u16string& commandLine) {
    value.clear();
    const std::u16string needle = ToLower(u"/" + name + u"=");
    const std::u16string lowered = ToLower(commandLine);
    const size_t found = lowered.find(needle);
    if (found == std::u16string::npos)
        return false;
    const size_t start = found + needle.size();
    if (start >= commandLine.size())
        return false;
    size_t end = commandLine.find(u" /", start);
    if (end == std::u16string::npos)
        end = commandLine.size();
    value = commandLine.substr(start, end - start);
    while (!value.empty() && value.back() == u' ')
        value.pop_back();
    size_t lead = 0;
    while (lead < value.size() && value[lead] == u' ')
        ++lead;
    value.erase(0, lead);
    return !value.empty();
}

} // namespace mirodate
