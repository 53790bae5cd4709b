#pragma once
// The people of an event as one text: the organizer first, then every other
// attendee, each written "name|address" and joined by "~" (the form the
// detail view lists). Read from ORGANIZER and ATTENDEE (CN and the mailto:
// address); written back only when the text differs from what the component
// holds, so that an unchanged list keeps its roles and replies.
#include <libical/ical.h>

#include <string>

namespace mirodate {

class IcsAttendees {
public:
    static constexpr char16_t kPersonSeparator = u'~';
    static constexpr char16_t kFieldSeparator = u'|';

    static std::u16string Read(icalcomponent* component);
    // Replaces the component's ORGANIZER and ATTENDEE properties by `text`
    // unless it already says the same; the first person stays organizer
    // when the organizer was first before.
    static void Write(icalcomponent* component, const std::u16string& text);
};

} // namespace mirodate
