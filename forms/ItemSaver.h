#pragma once
// What the appointment and task savers share: the outcome an editor acts
// on, the questions asked when the file under an editor changed or vanished
// since it was read, the removal of a duplicate's copy, and telling the
// cache, the month markers and every open view of a change at once.
#include "ui/WinTypes.h"

#include <cstdint>

namespace mirodate {

class ItemSaver {
public:
    enum class Outcome {
        Saved,   // written; the editor closes
        Stay,    // refused or failed; the editor stays as it is
        Reload,  // the user wants the item as it is now on disk
        Discard, // the user gave up the changes; the editor closes
    };
    // The answer to "deleted meanwhile".
    enum class DeletedChoice { SaveAsNew, Discard, Stay };

    // The window told of every change (the main window, which updates the
    // cache and its markers and tells every view); null: the cache is
    // updated here and every view told by broadcast.
    static void SetMainWindow(HWND main);

    // The item `oid` of `folder` changed (or is gone).
    static void Announce(std::int32_t oid, bool deleted, int folder);
    // Removes the fresh copy of a duplicate the user cancelled.
    static void RemoveCopy(std::int32_t oid, int folder);

    // The file was changed by another program since the editor read it:
    // nothing is written; the user is told (`questionKey`) and may reload.
    static Outcome ChangedOnDisk(HWND owner, std::int32_t oid, int folder, const char* questionKey);
    // The file was deleted meanwhile: the user chooses (`questionKey`).
    static DeletedChoice Deleted(HWND owner, std::int32_t oid, int folder, const char* questionKey);

    // A message page with the text of `key`.
    static void Tell(HWND owner, const char* key);
};

} // namespace mirodate
