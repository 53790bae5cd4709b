#pragma once
// Writes what the task editor holds through the PIM source as a VTODO: a
// new file, or the changed properties of the task's file (what other
// programs wrote into it stays). A file another program changed since the
// editor read it is left alone (the user is told and may reload it), and a
// file deleted meanwhile is written again only when the user chooses so.
#include "data/PimFolder.h"
#include "forms/ItemSaver.h"
#include "forms/TaskDraft.h"
#include "ui/WinTypes.h"

namespace mirodate {

class TaskSaver {
public:
    using Outcome = ItemSaver::Outcome;

    static Outcome Save(HWND owner, TaskDraft& draft);
    // Removes the fresh copy of a duplicate the user cancelled.
    static void RemoveCopy(std::int32_t oid) { ItemSaver::RemoveCopy(oid, kFolderTasks); }

private:
    static Outcome WriteNew(HWND owner, TaskDraft& draft);
    static Outcome OnChangedOnDisk(HWND owner, const TaskDraft& draft);
    static Outcome OnDeleted(HWND owner, TaskDraft& draft);
};

} // namespace mirodate
