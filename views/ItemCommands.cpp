#include "views/ItemCommands.h"

#include "data/PimFolder.h"
#include "data/PimNotification.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "ui/DialogWnd.h"
#include "ui/MessagePage.h"
#include "ui/WinApi.h"
#include "views/PlatformHandoff.h"
#include "views/ViewNavigator.h"

namespace mirodate {

std::vector<ContextMenuItem> ItemCommands::ItemMenu() {
    return {{Lang("Edit"), kEdit},
            {Lang("OpenInWMCal"), kOpenInPlatform},
            {Lang("Delete"), kDelete},
            {Lang("Duplicate"), kDuplicate},
            {Lang("Beam"), kBeam}};
}

std::vector<ContextMenuItem> ItemCommands::AppMenu() {
    return {
        {Lang("Search"), kSearch}, {Lang("Config"), kConfig}, {Lang("About"), kAbout}, {Lang("Exit"), kExit}};
}

std::vector<ContextMenuItem> ItemCommands::NewMenu() {
    return {{Lang("NewAppointment"), kNewAppointment}, {Lang("NewTask"), kNewTask}};
}

bool ItemCommands::ReportSave(HWND owner, int result, std::int32_t oid) {
    switch (static_cast<SaveResult>(result)) {
    case SaveResult::Saved:
        return true;
    case SaveResult::ChangedOnDisk: {
        // The store read the file again: gone, or changed by someone else.
        PimSource* source = PimStore::Instance().Source();
        const bool gone = source && oid > 0 && source->GetItemKind(oid) == 0;
        MessagePage::Tell(owner, Lang(gone ? "ItemNotFound" : "ItemChangedOnDisk"));
        return false;
    }
    case SaveResult::NotFound:
        MessagePage::Tell(owner, Lang("ItemNotFound"));
        return false;
    case SaveResult::Failed:
        MessagePage::Tell(owner, Lang("ItemNotSaved"));
        return false;
    }
    return false;
}

void ItemCommands::Refresh(std::int32_t oid, bool task, bool deleted) {
    PimNotification notification;
    notification.message = deleted ? kMsgItemDeletedLocal : kMsgItemChangedLocal;
    notification.oid = oid;
    notification.folder = task ? kFolderTasks : kFolderCalendar;
    PimStore::Instance().ApplyNotification(notification);
}

ItemCommands::Outcome ItemCommands::Delete(HWND owner, const PimItem& item) {
    PimSource* source = PimStore::Instance().Source();
    if (!source || item.oid <= 0)
        return Outcome::Done;
    if (item.IsTask() || !item.isRecurring) {
        if (!MessagePage::YesNo(owner, Lang("ConfirmDelItem")))
            return Outcome::Done;
        if (!source->Delete(item.oid)) {
            // Gone already, or the file could not be removed.
            MessagePage::Tell(owner,
                              Lang(source->GetItemKind(item.oid) == 0 ? "ItemNotFound" : "ItemNotSaved"));
            Refresh(item.oid, item.IsTask(), source->GetItemKind(item.oid) == 0);
            return Outcome::Changed;
        }
        Refresh(item.oid, item.IsTask(), true);
        return Outcome::Changed;
    }
    switch (MessagePage::AllSingleCancel(owner, Lang("QuestionDeleteAllSeries"))) {
    case 1:
        if (!source->Delete(item.oid))
            MessagePage::Tell(owner, Lang("ItemNotSaved"));
        Refresh(item.oid, false, source->GetItemKind(item.oid) == 0);
        return Outcome::Changed;
    case 2: {
        // The occurrence becomes an exception of the series file.
        ReportSave(owner, static_cast<int>(source->SaveOccurrence(item.oid, item.startValue, nullptr)),
                   item.oid);
        Refresh(item.oid, false, false);
        return Outcome::Changed;
    }
    default:
        return Outcome::Done;
    }
}

ItemCommands::Outcome ItemCommands::ToggleComplete(HWND owner, const PimItem& task) {
    PimSource* source = PimStore::Instance().Source();
    if (!source || !task.IsTask() || task.oid <= 0)
        return Outcome::Done;
    PimRecord record;
    if (!source->GetItemFromOid(task.oid, record)) {
        MessagePage::Tell(owner, Lang("ItemNotFound"));
        Refresh(task.oid, true, true);
        return Outcome::Changed;
    }
    record.complete = !record.complete;
    ReportSave(owner, static_cast<int>(source->Save(record, kFolderTasks)), task.oid);
    Refresh(task.oid, true, false);
    return Outcome::Changed;
}

ItemCommands::Outcome ItemCommands::Duplicate(HWND owner, const PimItem& item) {
    PimSource* source = PimStore::Instance().Source();
    if (!source || item.oid <= 0)
        return Outcome::Done;
    PimRecord record;
    if (!source->GetItemFromOid(item.oid, record)) {
        MessagePage::Tell(owner, Lang("ItemNotFound"));
        return Outcome::Changed;
    }
    const bool task = item.IsTask();
    if (!task) {
        // The copy is the chosen occurrence alone, on its own date.
        record.start = item.startValue;
        record.end = item.endValue;
        record.isRecurring = false;
        record.recurrence = RecurrencePattern{};
    }
    record.oid = -1;
    record.uid.clear();
    if (!ReportSave(owner, static_cast<int>(source->Save(record, task ? kFolderTasks : kFolderCalendar)), -1))
        return Outcome::Done;
    Refresh(record.oid, task, false);
    PimItem copy = item;
    copy.oid = record.oid;
    copy.isRecurring = false;
    if (ViewNavigator* navigator = ViewNavigator::Current())
        navigator->EditItem(copy, false, true, owner);
    return Outcome::Changed;
}

ItemCommands::Outcome ItemCommands::Edit(HWND owner, const PimItem& item) {
    ViewNavigator* navigator = ViewNavigator::Current();
    if (!navigator || item.oid <= 0)
        return Outcome::Done;
    if (item.IsTask() || !item.isRecurring) {
        navigator->EditItem(item, false, false, owner);
        return Outcome::Changed;
    }
    switch (MessagePage::AllSingleCancel(owner, Lang("QuestionModifyAllSeries"))) {
    case 1:
        navigator->EditItem(item, false, false, owner);
        return Outcome::Changed;
    case 2:
        navigator->EditItem(item, true, false, owner);
        return Outcome::Changed;
    default:
        return Outcome::Done;
    }
}

void ItemCommands::Exit(HWND owner) {
    DialogWnd::BroadcastCloseAll(false);
    ViewNavigator* navigator = ViewNavigator::Current();
    HWND main = navigator ? navigator->MainWindow() : nullptr;
    if (!Settings::GetCloseOnMinimize()) {
        // Keeps running, out of sight (and so still the reminder service).
        if (main)
            ShowWindow(main, SW_MINIMIZE);
        if (owner && IsWindow(owner))
            ShowWindow(owner, SW_MINIMIZE);
        return;
    }
    if (main)
        ShowWindow(main, SW_MINIMIZE);
    PostQuitMessage(0);
}

ItemCommands::Outcome ItemCommands::Run(HWND owner, UINT command, const PimItem* item,
                                        const DateTime& rowDate) {
    ViewNavigator* navigator = ViewNavigator::Current();
    const DateTime date = rowDate.IsValid() ? rowDate : DateTime::Today();
    switch (command) {
    case kNewAppointment:
    case kNewAppointmentHere:
        if (navigator)
            navigator->NewAppointment(date, owner);
        return Outcome::Changed;
    case kNewTask:
    case kNewTaskHere:
        if (navigator)
            navigator->NewTask(date, owner);
        return Outcome::Changed;
    case kExit:
        Exit(owner);
        return Outcome::Done;
    case kConfig:
        if (navigator)
            navigator->OpenConfig(owner);
        return Outcome::Done;
    case kAbout:
        if (navigator)
            navigator->OpenAbout(owner);
        return Outcome::Done;
    case kSearch:
        if (navigator)
            navigator->OpenSearch(date);
        return Outcome::Done;
    case kOpenPlatformCalendar:
        PlatformHandoff::OpenPlatformCalendar(owner);
        return Outcome::Done;
    default:
        break;
    }
    // The rest act on the selected item and do nothing without one.
    switch (command) {
    case kDelete:
        return item ? Delete(owner, *item) : Outcome::Done;
    case kEdit:
        return item ? Edit(owner, *item) : Outcome::Done;
    case kDuplicate:
        return item ? Duplicate(owner, *item) : Outcome::Done;
    case kToggleComplete:
        return item ? ToggleComplete(owner, *item) : Outcome::Done;
    case kBeam:
        if (item)
            PlatformHandoff::Beam(owner, *item);
        return Outcome::Done;
    case kOpenInPlatform:
        if (item)
            PlatformHandoff::OpenInPlatformCalendar(owner, *item);
        return item ? Outcome::Changed : Outcome::Done;
    default:
        return Outcome::Unknown;
    }
}

} // namespace mirodate
