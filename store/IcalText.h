#pragma once
// iCalendar text to a libical component tree, in time linear in the length of
// the text. libical's own string parser searches for the end of the line on
// every piece of it that it copies, so a line of megabytes costs minutes;
// here each piece is cut without looking past it.
#include "store/IcalHandle.h"

#include <string_view>

namespace mirodate {

class IcalText {
public:
    // The parsed root component (a VCALENDAR, or an XROOT around several),
    // or nullptr when nothing parses. Malformed properties become X-LIC-ERROR
    // properties, as with icalparser_parse_string.
    static IcalComponentPtr Parse(std::string_view text);
};

} // namespace mirodate
