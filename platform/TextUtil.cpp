#include "platform/TextUtil.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <climits>
#include <cstdint>

namespace mirodate {

std::u16string Utf8ToUtf16(std::string_view utf8) {
    std::u16string out;
    out.reserve(utf8.size());
    size_t i = 0;
    const size_t n = utf8.size();
    auto cont = [&](size_t k) { return k < n && (static_cast<unsigned char>(utf8[k]) & 0xC0) == 0x80; };
    while (i < n) {
        unsigned char c = static_cast<unsigned char>(utf8[i]);
        char32_t cp = 0xFFFD;
        size_t len = 1;
        if (c < 0x80) {
            cp = c;
        } else if ((c & 0xE0) == 0xC0 && cont(i + 1)) {
            cp = ((c & 0x1F) << 6) | (utf8[i + 1] & 0x3F);
            len = 2;
            if (cp < 0x80)
                cp = 0xFFFD;
        } else if ((c & 0xF0) == 0xE0 && cont(i + 1) && cont(i + 2)) {
            cp = ((c & 0x0F) << 12) | ((utf8[i + 1] & 0x3F) << 6) | (utf8[i + 2] & 0x3F);
            len = 3;
            if (cp < 0x800 || (cp >= 0xD800 && cp <= 0xDFFF))
                cp = 0xFFFD;
        } else if ((c & 0xF8) == 0xF0 && cont(i + 1) && cont(i + 2) && cont(i + 3)) {
            cp = ((c & 0x07) << 18) | ((utf8[i + 1] & 0x3F) << 12) | ((utf8[i + 2] & 0x3F) << 6) |
                 (utf8[i + 3] & 0x3F);
            len = 4;
            if (cp < 0x10000 || cp > 0x10FFFF)
                cp = 0xFFFD;
        }
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(cp));
        }
        i += len;
    }
    return out;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
    std::string out;
    out.reserve(utf16.size());
    for (size_t i = 0; i < utf16.size(); ++i) {
        char32_t cp = utf16[i];
        if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 &&
            utf16[i + 1] <= 0xDFFF) {
            cp = 0x10000 + ((cp - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
            ++i;
        } else if (cp >= 0xD800 && cp <= 0xDFFF) {
            cp = 0xFFFD; // lone surrogate
        }
        if (cp < 0x80) {
            out.push_back(static_cast<char>(cp));
        } else if (cp < 0x800) {
            out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else if (cp < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
        }
    }
    return out;
}

std::string EncodeUtf16Le(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (char16_t unit : text) {
        bytes.push_back(static_cast<char>(unit & 0xFF));
        bytes.push_back(static_cast<char>(unit >> 8));
    }
    return bytes;
}

std::u16string DecodeUtf16Le(std::string_view bytes) {
    std::u16string text(bytes.size() / 2, u'\0');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                        (static_cast<unsigned char>(bytes[2 * i + 1]) << 8));
    return text;
}

std::u16string ToLower(std::u16string_view text) {
    std::u16string out(text);
    for (auto& ch : out) {
        // Simple per-unit mapping keeps positions stable, which the callers
        // rely on when they search a lower-cased copy and cut from the original.
        if (ch < 0xD800 || ch > 0xDFFF)
            ch = static_cast<char16_t>(u_tolower(ch));
    }
    return out;
}

std::u16string FoldCase(std::u16string_view text) {
    std::u16string out;
    FoldCaseInto(text, out);
    return out;
}

void FoldCaseInto(std::u16string_view text, std::u16string& out) {
    if (text.empty() || text.size() > static_cast<size_t>(INT32_MAX / 4)) {
        out.assign(text);
        return;
    }
    // Folding grows a text by at most three units per unit ("ΐ" becomes three).
    out.resize(text.size() * 3);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length =
        u_strFoldCase(reinterpret_cast<UChar*>(out.data()), static_cast<int32_t>(out.size()),
                      reinterpret_cast<const UChar*>(text.data()), static_cast<int32_t>(text.size()),
                      U_FOLD_CASE_DEFAULT, &status);
    if (U_FAILURE(status)) {
        out = ToLower(text);
        return;
    }
    out.resize(static_cast<size_t>(length));
}

bool IsWordCharacter(char32_t codePoint) {
    return u_isalnum(static_cast<UChar32>(codePoint)) ||
           u_charType(static_cast<UChar32>(codePoint)) == U_CONNECTOR_PUNCTUATION ||
           u_charType(static_cast<UChar32>(codePoint)) == U_NON_SPACING_MARK;
}

std::string ToLowerAscii(std::string_view text) {
    std::string out(text);
    for (auto& ch : out)
        if (ch >= 'A' && ch <= 'Z')
            ch = static_cast<char>(ch - 'A' + 'a');
    return out;
}

namespace {
template <typename T, bool Signed> T ParseDecimal(std::u16string_view text) {
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r'))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    unsigned long long value = 0;
    bool overflow = false;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        if (value > (ULLONG_MAX - 9) / 10) {
            overflow = true;
            continue;
        }
        value = value * 10 + (text[i] - '0');
    }
    if constexpr (Signed) {
        const unsigned long long limit = negative ? static_cast<unsigned long long>(LONG_MAX) + 1 : LONG_MAX;
        if (overflow || value > limit)
            return negative ? LONG_MIN : LONG_MAX;
        return negative ? static_cast<long>(0 - value) : static_cast<long>(value);
    } else {
        if (overflow || value > ULONG_MAX)
            return ULONG_MAX;
        return negative ? static_cast<unsigned long>(0 - value) : static_cast<unsigned long>(value);
    }
}
} // namespace

long ParseLong(std::u16string_view text) {
    return ParseDecimal<long, true>(text);
}
unsigned long ParseUnsignedLong(std::u16string_view text) {
    return ParseDecimal<unsigned long, false>(text);
}

std::u16string ToU16(long value) {
    std::string s = std::to_string(value);
    return std::u16string(s.begin(), s.end());
}

std::u16string Trim(std::u16string_view text) {
    auto blank = [](char16_t c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    size_t b = 0, e = text.size();
    while (b < e && blank(text[b]))
        ++b;
    while (e > b && blank(text[e - 1]))
        --e;
    return std::u16string(text.substr(b, e - b));
}

namespace {
// Length of the valid UTF-8 sequence at `i` (not overlong, no surrogate, at
// most U+10FFFF), or 0.
size_t Utf8SequenceLength(std::string_view text, size_t i) {
    const auto byte = [&](size_t k) { return k < text.size() ? static_cast<unsigned char>(text[k]) : 0u; };
    const auto cont = [&](size_t k) { return (byte(k) & 0xC0) == 0x80; };
    const unsigned c = byte(i);
    if (c >= 0xC2 && c <= 0xDF)
        return cont(i + 1) ? 2 : 0;
    if (c >= 0xE0 && c <= 0xEF) {
        if (!cont(i + 1) || !cont(i + 2))
            return 0;
        if ((c == 0xE0 && byte(i + 1) < 0xA0) || (c == 0xED && byte(i + 1) >= 0xA0))
            return 0;
        return 3;
    }
    if (c >= 0xF0 && c <= 0xF4) {
        if (!cont(i + 1) || !cont(i + 2) || !cont(i + 3))
            return 0;
        if ((c == 0xF0 && byte(i + 1) < 0x90) || (c == 0xF4 && byte(i + 1) >= 0x90))
            return 0;
        return 4;
    }
    return 0;
}
} // namespace

std::string PrintableText(std::string_view bytes) {
    static const char kHex[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size());
    for (size_t i = 0; i < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        if (c >= 0x20 && c < 0x7F && c != '\\') {
            out.push_back(static_cast<char>(c));
            ++i;
            continue;
        }
        const size_t length = c >= 0x80 ? Utf8SequenceLength(bytes, i) : 0;
        if (length > 0) {
            out.append(bytes.substr(i, length));
            i += length;
            continue;
        }
        out += "\\x";
        out.push_back(kHex[c >> 4]);
        out.push_back(kHex[c & 0xF]);
        ++i;
    }
    return out;
}

} // namespace mirodate
