#pragma once
// The one way into each page the main window and the views open: day,
// week, agenda, tasks, item detail, the editors and dialogs. It owns the
// view pages: the week and the agenda are made once and kept, a day view and
// a detail view live until they are closed. Pages this build does not have yet show the month view on the
// requested date instead, so that commands still take the user to the day.
#include "data/DateTime.h"
#include "ui/WinTypes.h"
#include "views/ViewNavigator.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace mirodate {

class AgendaView;
class AppointmentEditor;
class TaskEditor;
class DayView;
class QuickView;
class ImportView;
class YearView;
class SearchView;
class TasksView;
class DialogWnd;
class ItemDetailView;
class WeekView;
class ViewPage;

class ViewRouter : public ViewNavigator {
public:
    // Moves the month view to a date (the main window's).
    using ShowInMonth = std::function<void(const DateTime& date)>;

    // The deferred command that deletes a closed page (the main window ignores it).
    static constexpr UINT kCmdPageClosed = 0x7DFF;

    ViewRouter(DialogWnd& mainWindow, ShowInMonth showInMonth, std::function<void()> onFilterChanged = {});
    ~ViewRouter() override;

    HWND OpenDayView(const DateTime& date) override;
    HWND ShowWeekView(const DateTime& date) override;
    HWND ShowAgendaView(const DateTime& date) override;
    void HideWeekAndAgenda() override;
    HWND OpenTasksView(const DateTime& date) override;
    HWND OpenItemDetail(std::int32_t oid, bool task, const DateTime& occurrence) override;
    HWND NewAppointment(const DateTime& date, HWND owner) override;
    HWND NewTask(const DateTime& date, HWND owner) override;
    HWND EditItem(const PimItem& item, bool occurrenceOnly, bool duplicate, HWND owner) override;
    bool OpenFilter(HWND owner) override;
    void OpenSearch(const DateTime& date) override;
    void OpenConfig(HWND owner) override;
    void OpenAbout(HWND owner) override;
    void ShowMonth(const DateTime& date) override;
    HWND OpenYearView(const DateTime& date) override;
    HWND OpenQuickView() override;
    HWND MainWindow() override;
    // The page of a calendar file to import (one at a time).
    HWND OpenImport(const std::string& path);
    ImportView* Import() { return import_.get(); }
    YearView* Year() { return year_.get(); }
    QuickView* Quick() { return quick_.get(); }

    // Open day and tasks views.
    int DayViewCount() const { return day_ ? 1 : 0; }
    int TasksViewCount() const { return tasks_ ? 1 : 0; }
    // Kept week and agenda views, when created.
    bool HasWeekView() const { return week_ != nullptr; }
    bool HasAgendaView() const { return agenda_ != nullptr; }
    AgendaView* Agenda() { return agenda_.get(); }
    DayView* Day() { return day_.get(); }
    WeekView* Week() { return week_.get(); }
    ItemDetailView* Detail() { return detail_.get(); }
    // The open appointment editor, if any.
    AppointmentEditor* Editor() { return editor_.get(); }
    // The open task editor, if any.
    TaskEditor* TaskEditorPage() { return taskEditor_.get(); }
    TasksView* Tasks() { return tasks_.get(); }
    SearchView* Search() { return search_.get(); }
    // Closes every page (the main window is going away).
    void CloseAll();
    // New language texts on every open page.
    void Relabel();
    // What the configuration dialog calls for each changed setting.
    std::function<void(const std::string&)> ConfigChangeHandler();
    // Told of every setting the configuration dialog changes.
    void SetSettingChangedHandler(std::function<void(const std::string&)> handler) {
        onSettingChanged_ = std::move(handler);
    }

private:
    HWND InMonth(const char* view, const DateTime& date);
    // A page closed itself: kept pages stay, others are deleted from the loop.
    void OnPageClosed(ViewPage& page);
    HWND OpenEditor(std::unique_ptr<AppointmentEditor> editor, HWND owner);
    HWND OpenTaskEditor(std::unique_ptr<TaskEditor> editor, HWND owner);
    // One editor at a time: an open one is given up unsaved.
    void CancelEditors();
    // A closed editor uncovers the page it was opened over.
    void FrontAfterEditor();

    DialogWnd& main_;
    ShowInMonth showInMonth_;
    std::function<void()> onFilterChanged_; // the main window reloads and tells every view
    std::function<void(const std::string&)> onSettingChanged_;
    std::unique_ptr<AgendaView> agenda_;
    std::unique_ptr<DayView> day_;
    std::unique_ptr<YearView> year_;
    std::unique_ptr<QuickView> quick_;
    std::unique_ptr<WeekView> week_;
    std::unique_ptr<ItemDetailView> detail_;
    std::unique_ptr<TasksView> tasks_;
    std::unique_ptr<SearchView> search_;        // kept once made
    std::unique_ptr<AppointmentEditor> editor_; // deleted from the loop once closed
    std::unique_ptr<TaskEditor> taskEditor_;    // the same
    std::unique_ptr<ImportView> import_;
};

} // namespace mirodate
