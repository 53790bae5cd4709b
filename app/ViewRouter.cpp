#include "app/ViewRouter.h"

#include "data/PimStore.h"
#include "forms/CategoryFilterDialog.h"
#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/WinApi.h"
#include "views/AgendaView.h"
#include "views/DayView.h"
#include "views/SearchView.h"
#include "views/TasksView.h"

namespace mirodate {

ViewRouter::ViewRouter(DialogWnd& mainWindow, ShowInMonth showInMonth, std::function<void()> onFilterChanged)
    : main_(mainWindow), showInMonth_(std::move(showInMonth)), onFilterChanged_(std::move(onFilterChanged)) {
    ViewNavigator::SetCurrent(this);
}

ViewRouter::~ViewRouter() {
    CloseAll();
    if (ViewNavigator::Current() == this) ViewNavigator::SetCurrent(nullptr);
}

void ViewRouter::CloseAll() {
    day_.reset();
    tasks_.reset();
    search_.reset();
    agenda_.reset();
}

void ViewRouter::Relabel() {
    if (agenda_) agenda_->Relabel();
    if (day_) day_->Relabel();
    if (tasks_) tasks_->Relabel();
    if (search_) search_->Relabel();
}

HWND ViewRouter::MainWindow() { return main_.GetHwnd(); }

HWND ViewRouter::InMonth(const char* view, const DateTime& date) {
    Log::Info("%s view: shown in the month view on %04d-%02d-%02d", view, date.GetYear(), date.GetMonth(),
              date.GetDay());
    if (showInMonth_) showInMonth_(date);
    return nullptr;
}

void ViewRouter::OnPageClosed(ViewPage& page) {
    if (&page == day_.get()) {
        // Deleted from the loop, where no caller of the page is on the stack.
        main_.PostDeferredCommand(kCmdPageClosed, day_.release());
    }
    if (&page == tasks_.get()) main_.PostDeferredCommand(kCmdPageClosed, tasks_.release());
    if (&page == agenda_.get()) Settings::SetNumber("LastViewMode", 0);
    if (HWND main = main_.GetHwnd(); main && IsWindowVisible(main)) SetForegroundWindow(main);
}

HWND ViewRouter::OpenDayView(const DateTime& date) {
    if (day_) {
        day_->SetDate(date);
        ShowWindow(day_->GetHwnd(), SW_SHOW);
        SetForegroundWindow(day_->GetHwnd());
        return day_->GetHwnd();
    }
    day_ = std::make_unique<DayView>(date);
    day_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
    if (!day_->Open(main_.GetHwnd())) {
        day_.reset();
        return nullptr;
    }
    return day_->GetHwnd();
}

HWND ViewRouter::ShowWeekView(const DateTime& date) { return InMonth("Week", date); }

HWND ViewRouter::ShowAgendaView(const DateTime& date) {
    if (!agenda_) {
        agenda_ = std::make_unique<AgendaView>();
        agenda_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
        agenda_->SetStartDate(date);
        if (!agenda_->Open(main_.GetHwnd())) {
            agenda_.reset();
            return nullptr;
        }
    } else {
        agenda_->SetStartDate(date);
        ShowWindow(agenda_->GetHwnd(), SW_SHOW);
    }
    SetForegroundWindow(agenda_->GetHwnd());
    Settings::SetNumber("LastViewMode", 2);
    return agenda_->GetHwnd();
}

void ViewRouter::HideWeekAndAgenda() {
    if (agenda_ && IsWindowVisible(agenda_->GetHwnd())) ShowWindow(agenda_->GetHwnd(), SW_HIDE);
    Settings::SetNumber("LastViewMode", 0);
}

HWND ViewRouter::OpenTasksView(const DateTime& date) {
    // At most one: a second request brings the open one to the front.
    if (tasks_) {
        tasks_->SetDate(date);
        ShowWindow(tasks_->GetHwnd(), SW_SHOW);
        SetForegroundWindow(tasks_->GetHwnd());
        return tasks_->GetHwnd();
    }
    tasks_ = std::make_unique<TasksView>(date);
    tasks_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
    if (!tasks_->Open(main_.GetHwnd())) {
        tasks_.reset();
        return nullptr;
    }
    return tasks_->GetHwnd();
}

HWND ViewRouter::OpenItemDetail(std::int32_t oid, bool task, const DateTime& occurrence) {
    // Until the detail view exists, the month view goes to the item's day.
    if (occurrence.IsValid()) return InMonth("Item detail", occurrence);
    PimRecord record;
    if (PimSource* source = PimStore::Instance().Source(); source && source->GetItemFromOid(oid, record)) {
        const double when = task ? (record.dueDate != kNoDate ? record.dueDate : record.startDate) : record.start;
        if (when != kNoDate && when > 0) return InMonth("Item detail", DateTime(when));
    }
    Log::Info("item %d: no detail view yet", static_cast<int>(oid));
    return nullptr;
}

HWND ViewRouter::NewAppointment(const DateTime& date, HWND) { return InMonth("New appointment", date); }
HWND ViewRouter::NewTask(const DateTime& date, HWND) { return InMonth("New task", date); }

HWND ViewRouter::EditItem(const PimItem& item, bool, bool, HWND) {
    Log::Info("item %d: no editor yet", static_cast<int>(item.oid));
    return nullptr;
}

bool ViewRouter::OpenFilter(HWND owner) {
    CategoryFilterDialog dialog;
    if (dialog.DoModal(owner ? owner : main_.GetHwnd()) != IDOK) return false;
    // The month and every open view reload.
    if (onFilterChanged_) onFilterChanged_();
    else SendNotifyMessage(HWND_BROADCAST, RegisterWindowMessage(kPoomDataChangedName), 1, -1);
    return true;
}

void ViewRouter::OpenSearch(const DateTime& date) {
    // Made once; a "Search" while it is shown does nothing.
    if (search_) {
        if (IsWindowVisible(search_->GetHwnd())) return;
        search_->SetDate(date);
        ShowWindow(search_->GetHwnd(), SW_SHOW);
        SetForegroundWindow(search_->GetHwnd());
        return;
    }
    search_ = std::make_unique<SearchView>();
    search_->SetDate(date);
    search_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
    if (!search_->Open(main_.GetHwnd())) search_.reset();
}
void ViewRouter::OpenConfig(HWND) { Log::Info("settings page: not part of this build"); }
void ViewRouter::OpenAbout(HWND owner) {
    MessagePage::Tell(owner ? owner : main_.GetHwnd(), u"Mirodate 0.1");
}

} // namespace mirodate
