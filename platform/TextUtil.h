#pragma once
// The one place where text changes encoding. The program keeps user text as
// UTF-16 (std::u16string); UTF-8 appears only at the edges (files, libraries,
// the terminal).
#include <string>
#include <string_view>

namespace mirodate {

std::u16string Utf8ToUtf16(std::string_view utf8);
std::string Utf16ToUtf8(std::u16string_view utf16);

// UTF-16 little-endian bytes, the form of our language files, list files and
// the command text handed between instances. Decoding pairs the bytes from
// the start; an odd last byte is dropped.
std::string EncodeUtf16Le(std::u16string_view text);
std::u16string DecodeUtf16Le(std::string_view bytes);

// Lower-cases with the root locale's simple case mapping (length preserving).
std::u16string ToLower(std::u16string_view text);
std::string ToLowerAscii(std::string_view text);
// Full Unicode case folding (ICU's default): "STRASSE", "straße" and
// "Straße" all become "strasse". The length may change.
std::u16string FoldCase(std::u16string_view text);
// The same into `out`, reusing its storage (for loops over many texts).
void FoldCaseInto(std::u16string_view text, std::u16string& out);

inline bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
inline bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
// Letters, digits and connecting marks: what a double tap selects as a word.
bool IsWordCharacter(char32_t codePoint);

// Decimal conversions in the manner of wcstol/wcstoul: leading white space and
// a sign are accepted, conversion stops at the first non-digit, no digits give
// 0, out-of-range values saturate.
long ParseLong(std::u16string_view text);
unsigned long ParseUnsignedLong(std::u16string_view text);

std::u16string ToU16(long value);

// Removes blanks (space, tab, CR, LF) at both ends.
std::u16string Trim(std::u16string_view text);

// Bytes from outside (a file name, a line of a file) made safe to print on a
// terminal: valid UTF-8 stays as it is; control characters, backslashes and
// bytes that are not UTF-8 become \xNN.
std::string PrintableText(std::string_view bytes);

} // namespace mirodate
