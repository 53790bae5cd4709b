#pragma once
// Hand-offs from the views to other programs of the desktop: the calendar
// program that handled calendar files before this one, the desktop's
// handler for a contact's card, and "beaming" an item as a standalone
// calendar file into the download folder.
#include "data/PimItem.h"
#include "ui/WinTypes.h"

namespace mirodate {

class PlatformHandoff {
public:
    // The previous calendar program, or a message page saying there is none.
    static void OpenPlatformCalendar(HWND owner);
    // The same program, on the item's file.
    static void OpenInPlatformCalendar(HWND owner, const PimItem& item);
    // The contact behind a birthday or anniversary, with the desktop's
    // handler for its card.
    static void OpenContact(HWND owner, const PimItem& item);
    // Writes the item as a standalone .ics file into the download folder and
    // says where.
    static void Beam(HWND owner, const PimItem& item);
};

} // namespace mirodate
