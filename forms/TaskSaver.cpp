#include "forms/TaskSaver.h"

#include "data/PimStore.h"

namespace mirodate {

namespace {
PimSource* Source() {
    return PimStore::Instance().Source();
}
} // namespace

TaskSaver::Outcome TaskSaver::Save(HWND owner, TaskDraft& draft) {
    if (const std::string problem = draft.Problem(); !problem.empty()) {
        ItemSaver::Tell(owner, problem.c_str());
        return Outcome::Stay;
    }
    PimSource* source = Source();
    if (!source) {
        ItemSaver::Tell(owner, "ItemNotSaved");
        return Outcome::Stay;
    }
    if (draft.GetMode() == TaskDraft::Mode::New)
        return WriteNew(owner, draft);

    const std::int32_t oid = draft.Original().oid;
    PimRecord current;
    if (!source->GetItemFromOid(oid, current) || source->GetItemKind(oid) != kItemTask)
        return OnDeleted(owner, draft);
    if (!(current == draft.Original()))
        return OnChangedOnDisk(owner, draft);
    if (!draft.IsChanged())
        return Outcome::Saved;

    PimRecord record = draft.Record();
    if (record.isRecurring && (draft.RuleNotEditable() || record.recurrence == draft.Original().recurrence)) {
        // A pattern the user did not change keeps the rule as written: a
        // recurring record without a pattern leaves RRULE alone.
        record.recurrence.RecurrenceType = RecurrencePattern::kNotRecurring;
    }
    switch (source->Save(record, kFolderTasks)) {
    case SaveResult::Saved:
        ItemSaver::Announce(oid, false, kFolderTasks);
        return Outcome::Saved;
    case SaveResult::ChangedOnDisk:
        if (source->GetItemKind(oid) == 0)
            return OnDeleted(owner, draft);
        return OnChangedOnDisk(owner, draft);
    case SaveResult::NotFound:
        return OnDeleted(owner, draft);
    case SaveResult::Failed:
        break;
    }
    ItemSaver::Tell(owner, "ItemNotSaved");
    return Outcome::Stay;
}

TaskSaver::Outcome TaskSaver::WriteNew(HWND owner, TaskDraft& draft) {
    PimRecord record = draft.Record();
    record.oid = -1;
    record.uid.clear();
    record.itemKind = kItemTask;
    if (Source()->Save(record, kFolderTasks) != SaveResult::Saved) {
        ItemSaver::Tell(owner, "ItemNotSaved");
        return Outcome::Stay;
    }
    ItemSaver::Announce(record.oid, false, kFolderTasks);
    return Outcome::Saved;
}

TaskSaver::Outcome TaskSaver::OnChangedOnDisk(HWND owner, const TaskDraft& draft) {
    return ItemSaver::ChangedOnDisk(owner, draft.Original().oid, kFolderTasks, "editor.TaskChangedOnDisk");
}

TaskSaver::Outcome TaskSaver::OnDeleted(HWND owner, TaskDraft& draft) {
    switch (ItemSaver::Deleted(owner, draft.Original().oid, kFolderTasks, "editor.TaskDeleted")) {
    case ItemSaver::DeletedChoice::SaveAsNew:
        return WriteNew(owner, draft);
    case ItemSaver::DeletedChoice::Discard:
        return Outcome::Discard;
    case ItemSaver::DeletedChoice::Stay:
        break;
    }
    return Outcome::Stay;
}

} // namespace mirodate
