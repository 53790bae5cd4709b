#include "regex/RegexCaseFold.h"

namespace mirodate {

char16_t RegexToLower(char16_t c) {
    if (c < 0x80)
        return (c >= u'A' && c <= u'Z') ? c + 0x20 : c;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7)
        return c + 0x20;
    if (c >= 0x100 && c <= 0x17F && c != 0x130 && c != 0x131 && c != 0x138 && c != 0x149 && c != 0x17F) {
        // Latin Extended-A alternates upper/lower; the block shifts parity at 0x139 and 0x14A.
        bool upperEven = (c < 0x139) || (c >= 0x14A && c < 0x179);
        bool isEven = (c % 2) == 0;
        return (isEven == upperEven) ? c + 1 : c;
    }
    if (c >= 0x391 && c <= 0x3A9 && c != 0x3A2)
        return c + 0x20;
    if (c >= 0x410 && c <= 0x42F)
        return c + 0x20;
    if (c >= 0x400 && c <= 0x40F)
        return c + 0x50;
    return c;
}

char16_t RegexToUpper(char16_t c) {
    if (c < 0x80)
        return (c >= u'a' && c <= u'z') ? c - 0x20 : c;
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7)
        return c - 0x20;
    if (c >= 0x100 && c <= 0x17F) {
        char16_t lower = c;
        char16_t upper = c - 1;
        if (upper >= 0x100 && RegexToLower(upper) == lower && upper != lower)
            return upper;
        return c;
    }
    if (c >= 0x3B1 && c <= 0x3C9 && c != 0x3C2)
        return c - 0x20;
    if (c >= 0x430 && c <= 0x44F)
        return c - 0x20;
    if (c >= 0x450 && c <= 0x45F)
        return c - 0x50;
    return c;
}

} // namespace mirodate
