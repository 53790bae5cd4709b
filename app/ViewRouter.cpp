#include "app/ViewRouter.h"

#include "data/PimStore.h"
#include "forms/AboutPage.h"
#include "forms/AppointmentEditor.h"
#include "forms/AppointmentSaver.h"
#include "forms/CategoryFilterDialog.h"
#include "forms/ConfigDialog.h"
#include "forms/TaskEditor.h"
#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "ui/DialogWnd.h"
#include "ui/MessagePage.h"
#include "ui/WinApi.h"
#include "views/AgendaView.h"
#include "views/DayView.h"
#include "views/ImportView.h"
#include "views/ItemDetailView.h"
#include "views/QuickView.h"
#include "views/SearchView.h"
#include "views/TasksView.h"
#include "views/WeekView.h"
#include "views/YearView.h"

namespace mirodate {

ViewRouter::ViewRouter(DialogWnd& mainWindow, ShowInMonth showInMonth, std::function<void()> onFilterChanged)
    : main_(mainWindow), showInMonth_(std::move(showInMonth)), onFilterChanged_(std::move(onFilterChanged)) {
    ViewNavigator::SetCurrent(this);
}

namespace {
// A closed editor is deleted from the loop; it owns nothing the main window needs.
class EditorDeleter : public BaseWnd {
public:
    explicit EditorDeleter(std::unique_ptr<BaseWnd> editor) : editor_(std::move(editor)) {}

private:
    std::unique_ptr<BaseWnd> editor_;
};
} // namespace

ViewRouter::~ViewRouter() {
    CloseAll();
    if (ViewNavigator::Current() == this)
        ViewNavigator::SetCurrent(nullptr);
}

void ViewRouter::CloseAll() {
    editor_.reset();
    taskEditor_.reset();
    year_.reset();
    quick_.reset();
    detail_.reset();
    day_.reset();
    week_.reset();
    tasks_.reset();
    search_.reset();
    agenda_.reset();
}

void ViewRouter::Relabel() {
    if (agenda_)
        agenda_->Relabel();
    if (day_)
        day_->Relabel();
    if (quick_)
        quick_->Relabel();
    if (year_)
        year_->Relabel();
    if (week_)
        week_->Relabel();
    if (detail_)
        detail_->Relabel();
    if (tasks_)
        tasks_->Relabel();
    if (search_)
        search_->Relabel();
}

namespace {
// Written only when it changes: a start that shows the month leaves the settings file alone.
void SetLastViewMode(int mode) {
    if (Settings::GetLastViewMode() != mode)
        Settings::SetNumber("LastViewMode", mode);
}
} // namespace

HWND ViewRouter::MainWindow() {
    return main_.GetHwnd();
}

HWND ViewRouter::InMonth(const char* view, const DateTime& date) {
    Log::Info("%s view: shown in the month view on %04d-%02d-%02d", view, date.GetYear(), date.GetMonth(),
              date.GetDay());
    if (showInMonth_)
        showInMonth_(date);
    return nullptr;
}

void ViewRouter::OnPageClosed(ViewPage& page) {
    if (&page == day_.get()) {
        // Deleted from the loop, where no caller of the page is on the stack.
        main_.PostDeferredCommand(kCmdPageClosed, day_.release());
    }
    if (&page == quick_.get())
        main_.PostDeferredCommand(kCmdPageClosed, quick_.release());
    if (&page == import_.get())
        main_.PostDeferredCommand(kCmdPageClosed, import_.release());
    if (&page == tasks_.get())
        main_.PostDeferredCommand(kCmdPageClosed, tasks_.release());
    if (&page == detail_.get())
        main_.PostDeferredCommand(kCmdPageClosed, detail_.release());
    if (&page == agenda_.get() || &page == week_.get())
        SetLastViewMode(0);
    // The page under the closed one comes to the front: an open day view,
    // the week or the agenda, else the month.
    for (ViewPage* under : {static_cast<ViewPage*>(day_.get()), static_cast<ViewPage*>(week_.get()),
                            static_cast<ViewPage*>(agenda_.get())}) {
        if (under && under != &page && IsWindowVisible(under->GetHwnd())) {
            SetForegroundWindow(under->GetHwnd());
            return;
        }
    }
    if (HWND main = main_.GetHwnd(); main && IsWindowVisible(main))
        SetForegroundWindow(main);
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
    if (showInMonth_)
        showInMonth_(date);
    if (HWND main = main_.GetHwnd())
        SetForegroundWindow(main);
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
        if (HWND main = main_.GetHwnd(); main && IsWindowVisible(main))
            SetForegroundWindow(main);
    });
    if (!year_->Open(main_.GetHwnd())) {
        year_.reset();
        return nullptr;
    }
    return year_->GetHwnd();
}

HWND ViewRouter::OpenImport(const std::string& path) {
    if (import_)
        import_->CloseView();
    import_ = std::make_unique<ImportView>(path);
    import_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
    if (!import_->Open(main_.GetHwnd())) {
        import_.reset();
        return nullptr;
    }
    return import_->GetHwnd();
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

HWND ViewRouter::ShowWeekView(const DateTime& date) {
    if (!week_) {
        week_ = std::make_unique<WeekView>();
        week_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
        week_->SetDate(date);
        if (!week_->Open(main_.GetHwnd())) {
            week_.reset();
            return nullptr;
        }
    } else {
        week_->SetDate(date);
        ShowWindow(week_->GetHwnd(), SW_SHOW);
    }
    SetForegroundWindow(week_->GetHwnd());
    SetLastViewMode(1);
    return week_->GetHwnd();
}

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
    if (week_ && IsWindowVisible(week_->GetHwnd()))
        ShowWindow(week_->GetHwnd(), SW_HIDE);
    if (agenda_ && IsWindowVisible(agenda_->GetHwnd()))
        ShowWindow(agenda_->GetHwnd(), SW_HIDE);
    SetLastViewMode(0);
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
    if (detail_) {
        detail_->SetItem(oid, task, occurrence);
        ShowWindow(detail_->GetHwnd(), SW_SHOW);
    } else {
        detail_ = std::make_unique<ItemDetailView>(oid, task, occurrence);
        detail_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
        if (!detail_->Open(main_.GetHwnd())) {
            detail_.reset();
            return nullptr;
        }
    }
    if (!detail_->HasItem()) {
        Log::Info("item %d: not in the store", static_cast<int>(oid));
        MessagePage::Tell(detail_->GetHwnd(), Lang("ItemNotFound"));
        detail_->CloseView();
        return nullptr;
    }
    if (!occurrence.IsValid() && showInMonth_) {
        // Opened by its identifier: back from the detail, the month shows its day.
        const DateTime day = detail_->CurrentDate();
        if (day.IsValid())
            showInMonth_(day);
    }
    SetForegroundWindow(detail_->GetHwnd());
    return detail_->GetHwnd();
}

HWND ViewRouter::OpenEditor(std::unique_ptr<AppointmentEditor> editor, HWND owner) {
    CancelEditors();
    AppointmentSaver::SetMainWindow(main_.GetHwnd());
    editor_ = std::move(editor);
    editor_->SetCloseHandler([this](AppointmentEditor& closed) {
        if (&closed != editor_.get())
            return;
        main_.PostDeferredCommand(kCmdPageClosed, new EditorDeleter(std::move(editor_)));
        FrontAfterEditor();
    });
    const HWND hwnd = editor_->Open(owner ? owner : main_.GetHwnd());
    if (!hwnd)
        editor_.reset();
    return hwnd;
}

void ViewRouter::CancelEditors() {
    if (editor_ && !editor_->IsClosed())
        editor_->Cancel();
    if (taskEditor_ && !taskEditor_->IsClosed())
        taskEditor_->Cancel();
}

void ViewRouter::FrontAfterEditor() {
    for (ViewPage* under : {static_cast<ViewPage*>(detail_.get()), static_cast<ViewPage*>(tasks_.get()),
                            static_cast<ViewPage*>(day_.get()), static_cast<ViewPage*>(week_.get()),
                            static_cast<ViewPage*>(agenda_.get())}) {
        if (under && IsWindowVisible(under->GetHwnd())) {
            SetForegroundWindow(under->GetHwnd());
            return;
        }
    }
    if (HWND main = main_.GetHwnd(); main && IsWindowVisible(main))
        SetForegroundWindow(main);
}

HWND ViewRouter::OpenTaskEditor(std::unique_ptr<TaskEditor> editor, HWND owner) {
    CancelEditors();
    ItemSaver::SetMainWindow(main_.GetHwnd());
    taskEditor_ = std::move(editor);
    taskEditor_->SetCloseHandler([this](TaskEditor& closed) {
        if (&closed != taskEditor_.get())
            return;
        main_.PostDeferredCommand(kCmdPageClosed, new EditorDeleter(std::move(taskEditor_)));
        FrontAfterEditor();
    });
    const HWND hwnd = taskEditor_->Open(owner ? owner : main_.GetHwnd());
    if (!hwnd)
        taskEditor_.reset();
    return hwnd;
}

HWND ViewRouter::NewAppointment(const DateTime& date, HWND owner) {
    const DateTime day = date.IsValid() ? date : DateTime::Today();
    return OpenEditor(std::make_unique<AppointmentEditor>(AppointmentDraft::NewOn(day, DateTime::Now())),
                      owner);
}
HWND ViewRouter::NewTask(const DateTime& date, HWND owner) {
    const DateTime day = date.IsValid() ? date : DateTime::Today();
    return OpenTaskEditor(std::make_unique<TaskEditor>(TaskDraft::NewOn(day)), owner);
}

HWND ViewRouter::EditItem(const PimItem& item, bool occurrenceOnly, bool duplicate, HWND owner) {
    PimSource* source = PimStore::Instance().Source();
    PimRecord record;
    if (!source || item.oid <= 0 || !source->GetItemFromOid(item.oid, record)) {
        MessagePage::Tell(owner ? owner : main_.GetHwnd(), Lang("ItemNotFound"));
        return nullptr;
    }
    if (item.IsTask()) {
        const TaskDraft::Mode mode = duplicate ? TaskDraft::Mode::Duplicate : TaskDraft::Mode::Item;
        return OpenTaskEditor(std::make_unique<TaskEditor>(TaskDraft::ForRecord(record, mode)), owner);
    }
    using Mode = AppointmentDraft::Mode;
    const Mode mode = duplicate                              ? Mode::Duplicate
                      : occurrenceOnly && record.isRecurring ? Mode::Occurrence
                                                             : Mode::Item;
    AppointmentDraft draft = mode == Mode::Occurrence
                                 ? AppointmentDraft::ForRecord(record, mode, item.startValue, item.endValue)
                                 : AppointmentDraft::ForRecord(record, mode);
    return OpenEditor(std::make_unique<AppointmentEditor>(std::move(draft)), owner);
}

bool ViewRouter::OpenFilter(HWND owner) {
    CategoryFilterDialog dialog;
    if (dialog.DoModal(owner ? owner : main_.GetHwnd()) != IDOK)
        return false;
    // The month and every open view reload.
    if (onFilterChanged_)
        onFilterChanged_();
    else
        DialogWnd::BroadcastStoreChanged(DialogWnd::StoreChange{true, 0, 0});
    return true;
}

void ViewRouter::OpenSearch(const DateTime& date) {
    // Made once; a "Search" while it is shown does nothing.
    if (search_) {
        if (IsWindowVisible(search_->GetHwnd()))
            return;
        search_->SetDate(date);
        ShowWindow(search_->GetHwnd(), SW_SHOW);
        SetForegroundWindow(search_->GetHwnd());
        return;
    }
    search_ = std::make_unique<SearchView>();
    search_->SetDate(date);
    search_->SetCloseHandler([this](ViewPage& page) { OnPageClosed(page); });
    if (!search_->Open(main_.GetHwnd()))
        search_.reset();
}

std::function<void(const std::string&)> ViewRouter::ConfigChangeHandler() {
    return [this](const std::string& setting) {
        if (setting == "Language")
            Relabel();
        if (onSettingChanged_)
            onSettingChanged_(setting);
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
