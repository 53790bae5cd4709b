#pragma once
// Simple per-character case mapping for case-insensitive matching. It covers
// ASCII, Latin-1, Latin Extended-A pairs, basic Greek and Cyrillic: enough for
// the texts a calendar holds, without pulling a Unicode library into the
// matcher's inner loop.
namespace mirodate {

char16_t RegexToLower(char16_t c);
char16_t RegexToUpper(char16_t c);

} // namespace mirodate
