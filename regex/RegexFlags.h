#pragma once

namespace mirodate {

// Compile flags of a pattern; the first four can also be set inline ("(?i)").
enum RegexFlags : int {
    kRegexSingleLine = 0x01,  // "." also matches a line end              (s)
    kRegexMultiLine = 0x02,   // "^" and "$" at line starts and ends       (m)
    kRegexGlobal = 0x04,      // enables "\G"                              (g)
    kRegexIgnoreCase = 0x08,  // simple per-character case folding         (i)
    kRegexRightToLeft = 0x10, // match from the end towards the start; not supported
};

} // namespace mirodate
