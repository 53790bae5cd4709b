#include "app/ViewRouter.h"

#include "data/PimStore.h"
#include "platform/Log.h"

namespace mirodate {

HWND ViewRouter::InMonth(const char* view, const DateTime& date) {
    Log::Info("%s view: shown in the month view on %04d-%02d-%02d", view, date.GetYear(), date.GetMonth(),
              date.GetDay());
    if (showInMonth_) showInMonth_(date);
    return nullptr;
}

HWND ViewRouter::OpenDayView(const DateTime& date) { return InMonth("Day", date); }
HWND ViewRouter::ShowWeekView(const DateTime& date) { return InMonth("Week", date); }
HWND ViewRouter::ShowAgendaView(const DateTime& date) { return InMonth("Agenda", date); }
void ViewRouter::HideWeekAndAgenda() {}
HWND ViewRouter::OpenTasksView(const DateTime& date) { return InMonth("Tasks", date); }

HWND ViewRouter::OpenItemDetail(std::int32_t oid, bool task) {
    // Until the detail view exists, the month view goes to the item's day.
    PimRecord record;
    if (PimSource* source = PimStore::Instance().Source(); source && source->GetItemFromOid(oid, record)) {
        const double when = task ? (record.dueDate != kNoDate ? record.dueDate : record.startDate) : record.start;
        if (when != kNoDate && when > 0) return InMonth("Item detail", DateTime(when));
    }
    Log::Info("item %d: no detail view yet", static_cast<int>(oid));
    return nullptr;
}

HWND ViewRouter::NewAppointment(const DateTime& date, HWND) { return InMonth("New appointment", date); }
HWND ViewRouter::NewTask(const DateTime& date) { return InMonth("New task", date); }
void ViewRouter::OpenFilter() { Log::Info("filter dialog: not part of this build"); }

} // namespace mirodate
