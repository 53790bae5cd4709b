#pragma once
// Turns an item's calendar file into one that stands on its own: every time
// zone its times name (TZID=Europe/Berlin) gets its VTIMEZONE from the
// system's zone data, so that a program on another device reads the same
// times. What the file already holds is kept as it is.
#include <string>

namespace mirodate {

class IcsExport {
public:
    // False when `calendarText` is no calendar.
    static bool Standalone(const std::string& calendarText, std::string& out);
};

} // namespace mirodate
