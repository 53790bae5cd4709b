#pragma once
// Writes what the appointment editor holds through the PIM source: a new
// file, the changed properties of the item's file, or one occurrence as an
// override in the series' file. Nothing the store did not hand us is
// overwritten: a file another program changed since the editor read it is
// left alone (the user is told and may reload it), and a file deleted
// meanwhile is written again only when the user chooses so. Afterwards the
// cache, the month markers and every open view follow at once.
#include "forms/AppointmentDraft.h"
#include "forms/ItemSaver.h"
#include "ui/WinTypes.h"

#include <cstdint>

namespace mirodate {

class AppointmentSaver {
public:
    using Outcome = ItemSaver::Outcome;

    // See ItemSaver::SetMainWindow.
    static void SetMainWindow(HWND main) { ItemSaver::SetMainWindow(main); }

    static Outcome Save(HWND owner, AppointmentDraft& draft);

    // Removes the fresh copy of a duplicate the user cancelled.
    static void RemoveCopy(std::int32_t oid);

    static void Announce(std::int32_t oid, bool deleted);

private:
    // What the store holds now differs from what the editor read.
    static bool ChangedSinceRead(const AppointmentDraft& draft, const PimRecord& current);
    static Outcome OnChangedOnDisk(HWND owner, AppointmentDraft& draft);
    static Outcome OnDeleted(HWND owner, AppointmentDraft& draft);
    static Outcome WriteNew(HWND owner, AppointmentDraft& draft);
    static void AfterSave(HWND owner, const AppointmentDraft& draft, std::int32_t oid);
    static void NotifyAttendees(HWND owner, const PimRecord& record);
};

} // namespace mirodate
