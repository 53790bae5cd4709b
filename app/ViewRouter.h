#pragma once
// The one way into each view the main window opens: day, week, agenda,
// tasks, item detail and the editors. Views that this build does not have
// yet show the month view on the requested date instead, so that the command
// handler and the menu bar already take the user to the right day.
#include "data/DateTime.h"
#include "ui/WinTypes.h"

#include <cstdint>
#include <functional>

namespace mirodate {

class ViewRouter {
public:
    // Moves the month view to a date (the main window's).
    using ShowInMonth = std::function<void(const DateTime& date)>;

    explicit ViewRouter(ShowInMonth showInMonth) : showInMonth_(std::move(showInMonth)) {}

    // Each returns the window brought to the front, or null when none.
    HWND OpenDayView(const DateTime& date);
    HWND ShowWeekView(const DateTime& date);
    HWND ShowAgendaView(const DateTime& date);
    void HideWeekAndAgenda();
    HWND OpenTasksView(const DateTime& date);
    HWND OpenItemDetail(std::int32_t oid, bool task);
    HWND NewAppointment(const DateTime& date, HWND owner);
    HWND NewTask(const DateTime& date);
    void OpenFilter();

    // Open Day and Tasks views (none exist yet).
    int DayViewCount() const { return 0; }
    int TasksViewCount() const { return 0; }
    // Kept week and agenda views, when created.
    bool HasWeekView() const { return false; }
    bool HasAgendaView() const { return false; }

private:
    HWND InMonth(const char* view, const DateTime& date);

    ShowInMonth showInMonth_;
};

} // namespace mirodate
