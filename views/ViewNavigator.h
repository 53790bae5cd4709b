#pragma once
// How a view reaches the other pages of the program: the other views, the
// detail view, the editors and dialogs. The application installs the one
// implementation (its view router); views only ever talk to this interface,
// so that they need not know the pages above them.
#include "data/DateTime.h"
#include "data/PimItem.h"
#include "ui/WinTypes.h"

#include <cstdint>

namespace mirodate {

class ViewNavigator {
public:
    virtual ~ViewNavigator() = default;

    // Each returns the page brought to the front, or null when none.
    virtual HWND OpenDayView(const DateTime& date) = 0;
    virtual HWND ShowWeekView(const DateTime& date) = 0;
    virtual HWND ShowAgendaView(const DateTime& date) = 0;
    // Hides the kept week and agenda views: the month view is in front again.
    virtual void HideWeekAndAgenda() = 0;
    virtual HWND OpenTasksView(const DateTime& date) = 0;
    virtual HWND OpenItemDetail(std::int32_t oid, bool task, const DateTime& occurrence) = 0;
    virtual HWND NewAppointment(const DateTime& date, HWND owner) = 0;
    virtual HWND NewTask(const DateTime& date, HWND owner) = 0;
    // Opens the editor on an item: the whole item, one occurrence of a series
    // (`occurrenceOnly`), or a fresh copy (`duplicate`).
    virtual HWND EditItem(const PimItem& item, bool occurrenceOnly, bool duplicate, HWND owner) = 0;
    // The category filter dialog; true when the user applied a new filter.
    virtual bool OpenFilter(HWND owner) = 0;
    virtual void OpenSearch(const DateTime& date) = 0;
    virtual void OpenConfig(HWND owner) = 0;
    virtual void OpenAbout(HWND owner) = 0;
    // The month view on a date, with the week and agenda views out of the way.
    virtual void ShowMonth(const DateTime& date) = 0;
    virtual HWND OpenYearView(const DateTime& date) = 0;
    virtual HWND OpenQuickView() = 0;
    // The main window (the month view).
    virtual HWND MainWindow() = 0;

    // The program's navigator; null until the application installs one.
    static ViewNavigator* Current();
    static void SetCurrent(ViewNavigator* navigator);
};

} // namespace mirodate
