#include "views/Linkifier.h"

#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "regex/RegexPattern.h"

#include <sys/stat.h>

#include <cstdio>
#include <map>
#include <vector>

namespace mirodate {

const char16_t* const Linkifier::kFilePathPattern = u"(([\\[]).+([\\]]))";
const char16_t* const Linkifier::kWebAddressPattern =
    u"(https?://)(([0-9]{1,3}\\.){3}[0-9]{1,3}|([0-9a-z_!~*'()-]+\\.)*([0-9a-z][0-9a-z-]{0,61})?[0-9a-z]\\."
    u"[a-z]{2,6})(:[0-9]{1,4})?((/?)|(/[0-9a-z_!~*'().;?:@&=+$,%#-]+)+/?)?";
const char16_t* const Linkifier::kMailAddressPattern =
    u"[0-9a-zA-Z!#$%&'*+/=?^_`{|}~-]+(?:\\.[0-9a-zA-Z!#$%&'*+/=?^_`{|}~-]+)*@(?:[0-9a-zA-Z](?:[0-9a-zA-Z-]*"
    u"[0-9a-zA-Z])?\\.)+[0-9a-zA-Z](?:[0-9a-zA-Z-]*[0-9a-zA-Z])?";
const char16_t* const Linkifier::kPhonePattern =
    u"(((\\+\\d{1,3}(-| )?\\(?\\d\\)?(-| )?\\d{1,5})|(\\(?\\d{2,6}\\)?))(-| )?(\\d{3,4})(-| )?(\\d{4})(( x| "
    u"ext)\\d{1,5}){0,1})";
const char16_t* const Linkifier::kPhonePatternAnchored =
    u"(^(<|>|'))(\\+)?([-\\._\\(\\) ]?[\\d]{3,20}[-\\._\\(\\) ]?){2,10}";

namespace {

using PlaceholderMap = std::map<std::u16string, std::u16string>;

// Link mark-up: every "%s" of the format stands for the link text.
std::u16string Format(std::u16string_view format, std::u16string_view linkText) {
    std::u16string out;
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == u'%' && i + 1 < format.size() && format[i + 1] == u's') {
            out += linkText;
            ++i;
        } else {
            out += format[i];
        }
    }
    return out;
}

void ReplaceAll(std::u16string& text, std::u16string_view what, std::u16string_view with) {
    if (what.empty())
        return;
    std::u16string out;
    std::size_t from = 0;
    for (std::size_t at = text.find(what); at != std::u16string::npos; at = text.find(what, from)) {
        out.append(text, from, at - from);
        out += with;
        from = at + what.size();
    }
    if (from == 0)
        return;
    out.append(text, from, std::u16string::npos);
    text = std::move(out);
}

std::u16string MakePlaceholder(std::size_t number) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "$PLACEHOLDER_%05i$", static_cast<int>(number));
    return Utf8ToUtf16(buffer);
}

// Every match of `pattern` in `text`, each scan continuing at the end of the previous match.
std::vector<std::u16string> CollectMatches(const RegexPattern& pattern, const std::u16string& text) {
    std::vector<std::u16string> found;
    int start = -1;
    for (;;) {
        RegexMatch match = pattern.Search(text, start);
        if (!match.IsMatched())
            break;
        int begin = match.GroupStart(0);
        int end = match.GroupEnd(0);
        found.push_back(text.substr(begin, end - begin));
        // An empty match must not stall the scan.
        start = end > begin ? end : end + 1;
        if (start > static_cast<int>(text.size()))
            break;
    }
    return found;
}

struct Finder {
    const char16_t* pattern;
    const char16_t* markup;
    bool isFilePath;
    bool logMatches;
};

} // namespace

Linkifier::Linkifier() : exists_(&Linkifier::PathExists) {}

Linkifier::Linkifier(ExistsFunction exists) : exists_(std::move(exists)) {}

bool Linkifier::PathExists(const std::u16string& path) {
    struct stat info;
    return !path.empty() && ::stat(Utf16ToUtf8(path).c_str(), &info) == 0;
}

void Linkifier::Run(std::u16string& text) const {
    static const Finder kFinders[] = {
        {kFilePathPattern, u"<a href='file:///%s'>%s</a>", true, false},
        {kWebAddressPattern, u"<a href='%s'>%s</a>", false, true},
        {kMailAddressPattern, u"<a href='mailto:%s'>%s</a>", false, true},
        {kPhonePattern, u"<a href='Tel:%s'>%s</a>", false, false},
        {kPhonePatternAnchored, u"<a href='Tel:%s'>%s</a>", false, false},
    };
    PlaceholderMap placeholders;
    for (const Finder& finder : kFinders) {
        // Compiled per run: the finders are cheap to compile next to the
        // document they mark up, and a run keeps no state between texts.
        RegexPattern pattern;
        if (!pattern.Compile(finder.pattern))
            continue;
        for (const std::u16string& match : CollectMatches(pattern, text)) {
            if (finder.logMatches) {
                std::string utf8 = Utf16ToUtf8(match);
                Log::Debug("%.*s\n", static_cast<int>(utf8.size()), utf8.c_str());
            }
            std::u16string target = match;
            if (finder.isFilePath) {
                target = match.substr(1, match.size() - 2); // the path between the brackets
                if (!exists_(target))
                    continue;
            }
            std::u16string placeholder = MakePlaceholder(placeholders.size());
            ReplaceAll(text, match, placeholder);
            placeholders[placeholder] = Format(finder.markup, target);
        }
    }
    for (const auto& [placeholder, link] : placeholders)
        ReplaceAll(text, placeholder, link);
}

} // namespace mirodate
