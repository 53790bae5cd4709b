// Feeds arbitrary text, as UTF-16LE, to the command text reader and to the
// "/name=value" look-up of a command line.
#include "app/CmdLineArg.h"
#include "app/CommandRequest.h"
#include "platform/TextUtil.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mirodate;
    const std::u16string text =
        DecodeUtf16Le(std::string(reinterpret_cast<const char*>(data), size & ~std::size_t{1}));
    CommandRequest::Parse(text);
    std::u16string value;
    for (const char16_t* name : {u"p", u"d", u"oid", u"", u"/", u" "})
        GetCmdLineArg(name, value, text);
    // The text's own first word as the name.
    GetCmdLineArg(text.substr(0, text.find(u' ')), value, text);
    return 0;
}
