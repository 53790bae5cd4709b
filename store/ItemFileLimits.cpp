#include "store/ItemFileLimits.h"

namespace mirodate {

std::string ItemFileLimits::CheckSize(std::int64_t bytes) {
    if (bytes <= kMaxFileBytes)
        return {};
    return std::to_string(bytes) + " bytes, more than the " + std::to_string(kMaxFileBytes / (1024 * 1024)) +
           " MB an item file may have";
}

std::string ItemFileLimits::CheckText(std::string_view text) {
    // One pass: a line break followed by a blank continues the line before it
    // (folding); in a line's head, up to its first ":" outside quotes, each
    // ";" outside quotes starts a parameter.
    std::size_t properties = 1;
    std::size_t parameters = 0;
    bool inHead = true;
    bool inQuotes = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\n') {
            const bool last = i + 1 == text.size();
            const bool folded = !last && (text[i + 1] == ' ' || text[i + 1] == '\t');
            if (!last && !folded) {
                ++properties;
                inHead = true;
                inQuotes = false;
            }
        } else if (inHead) {
            if (c == '"')
                inQuotes = !inQuotes;
            else if (!inQuotes && c == ';')
                ++parameters;
            else if (!inQuotes && c == ':')
                inHead = false;
        }
    }
    if (properties > kMaxProperties)
        return std::to_string(properties) + " content lines, more than the " +
               std::to_string(kMaxProperties) + " an item file may have";
    if (parameters > kMaxParameters)
        return std::to_string(parameters) + " parameters, more than the " + std::to_string(kMaxParameters) +
               " an item file may have";
    return {};
}

} // namespace mirodate
