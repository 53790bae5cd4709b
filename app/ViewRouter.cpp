#include "app/ViewRouter.h"

#include "data/PimStore.h"
#include "forms/AboutPage.h"
#include "forms/CategoryFilterDialog.h"
#include "forms/ConfigDialog.h"
#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/WinApi.h"
#include "views/AgendaView.h"
#include "views/DayView.h"
#include "views/QuickView.h"
#include "views/YearView.h"

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
    year_.reset();
    quick_.reset();
    day_.reset();
    agenda_.reset();
}

void ViewRouter::Relabel() {
    if (agenda_) agenda_->Relabel();
    if (day_) day_->Relabel();
    if (quick_) quick_->Relabel();
    if (year_) year_->Relabel();
}

namespace {
// Written only when it changes: a start that shows the month leaves the settings file alone.
void SetLastViewMode(int mode) {
    if (Settings::GetLastViewMode() != mode) Settings::SetNumber("LastViewMode", mode);
}
} // namespace

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
    if (&page == quick_.get()) main_.PostDeferredCommand(kCmdPageClosed, quick_.release());
    if (&page == agenda_.get()) SetLastViewMode(0);
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

void ViewRouter::ShowMonth(const DateTime& date) {
    HideWeekAndAgenda();
    if (showInMonth_) showInMonth_(date);
    if (HWND main = main_.GetHwnd()) SetForegroundWindow(main);
}

HWND ViewRouter::OpenYearView(const DateTime& date) {
    const int year = date.IsValid() ? date.GetYear() : DateTime::Today().GetYear();
    if (year_) {
        year_->SetYear(year);
        ShowWindow(year_->GetHwnd(), SW_SHOW);
        SetForegroundWindow(year_->GetHwnd());
        return year_->GetHwnd();
    }
    year_ = std::make_unique<YearView>(year);
    year_->SetCloseHandler([this](YearView&) {
        // Deleted from the loop, where no caller of the page is on the stack.
        main_.PostDeferredCommand(kCmdPageClosed, year_.release());
        if (HWND main = main_.GetHwnd(); main && IsWindowVisible(main)) SetForegroundWindow(main);
    });
    if (!year_->Open(main_.GetHwnd())) {
        year_.reset();
        return nullptr;
    }
    return year_->GetHwnd();
}

HWND ViewRouter::OpenQuickView() {
    if (quick_) {
        quick_->Reload();
        ShowWindow(quick_->GetHwnd(), SW_SHOW);
        SetForegroundWindow(quick_->GetHwnd());
        return quick_->GetHwnd();
    }
    quick_ = std::make_unique<QuickView>();
    quick_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
    if (!quick_->Open(main_.GetHwnd())) {
        quick_.reset();
        return nullptr;
    }
    return quick_->GetHwnd();
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
    SetLastViewMode(2);
    return agenda_->GetHwnd();
}

void ViewRouter::HideWeekAndAgenda() {
    if (agenda_ && IsWindowVisible(agenda_->GetHwnd())) ShowWindow(agenda_->GetHwnd(), SW_HIDE);
    SetLastViewMode(0);
}

HWND ViewRouter::OpenTasksView(const DateTime& date) { return InMonth("Tasks", date); }

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

void ViewRouter::OpenSearch(const DateTime& date) { InMonth("Search", date); }
std::function<void(const std::string&)> ViewRouter::ConfigChangeHandler() {
    return [this](const std::string& setting) {
        if (setting == "Language") Relabel();
        if (onSettingChanged_) onSettingChanged_(setting);
    };
}

void ViewRouter::OpenConfig(HWND owner) {
    ConfigDialog dialog(ConfigChangeHandler());
    dialog.DoModal(owner ? owner : main_.GetHwnd());
}

void ViewRouter::OpenAbout(HWND owner) {
    AboutPage page;
    page.DoModal(owner ? owner : main_.GetHwnd());
}

} // namespace mirodate
