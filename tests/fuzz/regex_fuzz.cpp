// libFuzzer target for the regex engine: the input is split at the first
// NUL byte into a pattern and a text (both read as UTF-16 code units, two
// bytes each, so every code unit value is reachable). Every pattern that
// compiles is searched from every tenth start and scanned through to the
// end; nothing may crash, and the step budget must end every search.
#include "regex/RegexPattern.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

std::u16string ToUtf16(const std::uint8_t* data, std::size_t size) {
    std::u16string out;
    for (std::size_t i = 0; i + 1 < size; i += 2)
        out.push_back(static_cast<char16_t>(data[i] | (data[i + 1] << 8)));
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::size_t split = 0;
    while (split < size && data[split] != 0)
        ++split;
    // Patterns as bytes (ASCII syntax is what matters), texts as UTF-16.
    std::u16string pattern(data, data + split);
    std::u16string text = split < size ? ToUtf16(data + split + 1, size - split - 1) : std::u16string();

    for (int flags : {0, mirodate::RegexPattern::kIgnoreCase | mirodate::RegexPattern::kMultiLine,
                      mirodate::RegexPattern::kSingleLine | mirodate::RegexPattern::kGlobal}) {
        mirodate::RegexPattern regex;
        if (!regex.Compile(pattern, flags))
            continue;
        int length = static_cast<int>(text.size());
        for (int start = -1;;) {
            mirodate::RegexMatch match = regex.Search(text, start);
            if (match.Steps() > mirodate::RegexPattern::StepBudget(length) + 2)
                std::abort(); // the budget did not stop the search
            if (!match.IsMatched())
                break;
            int begin = match.GroupStart(0);
            int end = match.GroupEnd(0);
            if (begin < 0 || end < begin || end > length)
                std::abort();
            for (int group = 1; group <= regex.GroupCount(); ++group) {
                int groupStart = match.GroupStart(group);
                int groupEnd = match.GroupEnd(group);
                if ((groupStart < 0) != (groupEnd < 0) || groupEnd > length || groupStart > groupEnd + length)
                    std::abort();
            }
            start = end > begin ? end : end + 1;
            if (start > length)
                break;
        }
    }
    return 0;
}
