#include "app/CommandRequest.h"

#include "platform/TextUtil.h"

#include <cstdlib>

namespace mirodate {

namespace {
// -dN: magnitudes from this on are dates written yyyymmdd, smaller ones day offsets.
constexpr long kDateThreshold = 1000;

int ParsePart(const std::u16string& text, size_t pos, size_t length) {
    if (pos >= text.size())
        return 0;
    return static_cast<int>(ParseLong(text.substr(pos, length)));
}
} // namespace

CommandRequest CommandRequest::Parse(const std::u16string& original) {
    CommandRequest request;
    const std::u16string text = ToLower(original);
    if (text == u"firstrun") {
        request.kind = Kind::FirstRun;
        return request;
    }
    if (text == u"reactivate" || text.empty() || text == u"calendar") {
        request.kind = Kind::Restore;
        return request;
    }

    size_t start = 0;
    while (start <= text.size()) {
        size_t space = text.find(u' ', start);
        if (space == std::u16string::npos)
            space = text.size();
        const std::u16string token = text.substr(start, space - start);
        start = space + 1;
        const std::u16string prefix = token.substr(0, 2);

        if (token == u"calendar") {
            request.mode = kCalendar;
        } else if (token == u"noparam") {
            request.mode = kCalendar;
            request.noParam = true;
        } else if (token == u"tasks") {
            request.mode = kTasks;
        } else if (token == u"-new") {
            request.newItem = true;
        } else if (token == u"oid") {
            request.expectOid = true;
            request.oidGiven = true;
        } else if (token == u"edit") {
            request.edit = true;
            request.oidGiven = true;
        } else if (request.expectOid && !token.empty()) {
            // The token right after "oid" is the identifier, whatever it looks like.
            request.oid = ParseLong(token);
            request.expectOid = false;
        } else if (prefix == u"-d") {
            const std::u16string rest = token.substr(2);
            const long n = ParseLong(rest);
            if (std::labs(n) >= kDateThreshold) {
                request.hasDate = true;
                request.date.year = ParsePart(rest, 0, 4);
                request.date.month = ParsePart(rest, 4, 2);
                request.date.day = rest.size() >= 2 ? ParsePart(rest, rest.size() - 2, 2) : 0;
            } else {
                request.dayOffset = n;
            }
        } else if (prefix == u"-v") {
            const char16_t letter = token.size() > 2 ? token[2] : 0;
            if (letter == u'd')
                request.view = kDay;
            else if (letter == u'w')
                request.view = kWeek;
            else if (letter == u'm')
                request.view = kMonth;
            else if (letter == u'a')
                request.view = kAgenda;
        } else if (prefix == u"-o") {
            request.view = kDay;
        }
    }
    return request;
}

} // namespace mirodate
