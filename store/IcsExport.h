#pragma once
// Turns an item's calendar file into one that stands on its own: every time
// zone its times name (TZID=Europe/Berlin) gets its VTIMEZONE from the
// system's zone data, so that a program on another device reads the same
// times. Items and the zones a file already holds are kept as they are.
// "Beam" (one item) and --export (the items of a range) write through here.
#include <string>
#include <vector>

namespace mirodate {

class IcsExport {
public:
    // False when `calendarText` is no calendar.
    static bool Standalone(const std::string& calendarText, std::string& out);
    // One calendar of the items of several calendar files, with each time
    // zone defined once (the first definition met, else the system's). Files
    // that are no calendar are left out; false when none was one.
    static bool Combine(const std::vector<std::string>& calendarTexts, std::string& out);
};

} // namespace mirodate
