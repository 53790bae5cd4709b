#include "forms/AttachmentUri.h"

#include "platform/TextUtil.h"

#include <cstdlib>
#include <sys/stat.h>

namespace mirodate {

namespace {
constexpr char16_t kFileScheme[] = u"file://";
constexpr std::size_t kFileSchemeLength = 7;
constexpr char kHex[] = "0123456789ABCDEF";

std::u16string Trim(const std::u16string& text) {
    const auto first = text.find_first_not_of(u" \t\r\n");
    if (first == std::u16string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(u" \t\r\n") - first + 1);
}

bool StartsWithFileScheme(const std::u16string& text) {
    if (text.size() < kFileSchemeLength)
        return false;
    for (std::size_t i = 0; i < kFileSchemeLength; ++i) {
        char16_t c = text[i];
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c - u'A' + u'a');
        if (c != kFileScheme[i])
            return false;
    }
    return true;
}

int HexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::string PercentDecode(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '%' && i + 2 < text.size();
        const int high = escape ? HexValue(text[i + 1]) : -1;
        const int low = escape ? HexValue(text[i + 2]) : -1;
        if (high >= 0 && low >= 0) {
            out += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

// Characters a path keeps as they are in a URI; the rest is escaped.
bool Unreserved(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~' || c == '/';
}

bool IsRegularFile(const std::string& path) {
    struct stat st {};
    return !path.empty() && stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}
} // namespace

bool AttachmentUri::IsWebAddress(const std::u16string& text) {
    const std::size_t colon = text.find(u"://");
    if (colon == std::u16string::npos || colon == 0 || StartsWithFileScheme(text))
        return false;
    // A scheme: a letter, then letters, digits, "+", "-" or ".".
    for (std::size_t i = 0; i < colon; ++i) {
        const char16_t c = text[i];
        const bool letter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
        const bool other = (c >= u'0' && c <= u'9') || c == u'+' || c == u'-' || c == u'.';
        if (!letter && !(i > 0 && other))
            return false;
    }
    // Something after "://", and no blank inside.
    return text.size() > colon + 3 && text.find_first_of(u" \t\r\n") == std::u16string::npos;
}

std::string AttachmentUri::LocalPath(const std::u16string& uri) {
    if (!StartsWithFileScheme(uri))
        return {};
    std::string rest = Utf16ToUtf8(uri.substr(kFileSchemeLength));
    // file:///path, or file://localhost/path.
    if (rest.rfind("localhost/", 0) == 0)
        rest.erase(0, 9);
    if (rest.empty() || rest[0] != '/')
        return {};
    const std::string path = PercentDecode(rest);
    // A NUL in a path would cut it short where the system reads it.
    return path.find('\0') == std::string::npos ? path : std::string();
}

std::u16string AttachmentUri::FromPath(const std::string& path) {
    std::string uri = "file://";
    for (unsigned char c : path) {
        if (Unreserved(c)) {
            uri += static_cast<char>(c);
        } else {
            uri += '%';
            uri += kHex[c >> 4];
            uri += kHex[c & 0xF];
        }
    }
    return Utf8ToUtf16(uri);
}

std::u16string AttachmentUri::FromTyped(const std::u16string& typed) {
    const std::u16string text = Trim(typed);
    if (text.empty() || text.size() > kMaxTyped)
        return {};
    if (IsWebAddress(text))
        return text;
    std::string path;
    if (StartsWithFileScheme(text)) {
        path = LocalPath(text);
    } else if (text[0] == u'/') {
        path = Utf16ToUtf8(text);
    } else if (text == u"~" || text.rfind(u"~/", 0) == 0) {
        const char* home = std::getenv("HOME");
        if (!home || home[0] != '/')
            return {};
        path = std::string(home) + Utf16ToUtf8(text.substr(1));
    }
    // Only a file that is there now; a relative path has no folder to start from.
    if (!IsRegularFile(path))
        return {};
    return FromPath(path);
}

std::u16string AttachmentUri::DisplayName(const std::u16string& uri) {
    const std::string path = LocalPath(uri);
    if (path.empty())
        return uri;
    const std::size_t slash = path.find_last_of('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    return Utf8ToUtf16(name.empty() ? path : name);
}

} // namespace mirodate
