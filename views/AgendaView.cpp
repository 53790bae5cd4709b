#include "views/AgendaView.h"

#include "data/DateTimeSpan.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "skin/SkinStyles.h"
#include "views/DayHeaderRow.h"
#include "views/ItemRow.h"
#include "views/MessageRow.h"

#include <memory>

namespace mirodate {

namespace {
constexpr int kDaysPerWeek = 7;
}

AgendaView::AgendaView() : ViewPage(SkinStyles::Current().agendaView), start_(DateTime::Today()) {}

int AgendaView::DayCount() {
    return Settings::GetAgendaSize() * kDaysPerWeek + 1;
}

std::vector<MenuBarEntry> AgendaView::MenuEntries() const {
    return {{"Menu", MenuBarIcon::Menu},
            {"Filter", MenuBarIcon::Filter},
            {"Tasks", MenuBarIcon::Tasks},
            {"WeekView", MenuBarIcon::Week},
            {"MonthView", MenuBarIcon::Month}};
}

std::u16string AgendaView::Title() const {
    return Lang("AgendaView");
}

void AgendaView::SetStartDate(const DateTime& date) {
    start_ = date.IsValid() ? date.StartOfDay() : DateTime::Today();
    followsToday_ = start_ == DateTime::Today();
    if (window)
        Reload();
}

void AgendaView::Reload() {
    if (!window)
        return;
    if (followsToday_)
        start_ = DateTime::Today();
    BeginFill(list_);
    tomorrowPosition_ = 0;
    const bool everyDay = Settings::GetAgendaMode() != 0;
    const bool withTasks = Settings::IsTaskViewEnabled(u"Agenda");
    const int days = DayCount();
    PimStore& store = PimStore::Instance();
    int rowsAdded = 0;
    for (int index = 0; index < days; ++index) {
        const DateTime day = start_ + DateTimeSpan(index, 0, 0, 0);
        const double dayDate = day.StartOfDay().ToDate();
        appointments_.clear();
        tasks_.clear();
        store.GetDayAppointments(day.GetYear(), day.GetMonth(), day.GetDay(), appointments_);
        if (withTasks)
            store.GetDayTasks(day.GetYear(), day.GetMonth(), day.GetDay(), tasks_);
        if (appointments_.empty() && tasks_.empty() && !everyDay) {
            // Empty days are left out, except the first, which says so.
            if (index == 0) {
                list_.AddItem(std::make_unique<DayHeaderRow>(look_, dayDate, Lang("Today")));
                list_.AddItem(std::make_unique<MessageRow>(look_, Lang("NoAppointments"), dayDate));
                rowsAdded += 2;
            }
            continue;
        }
        const std::u16string caption = index == 0 ? Lang("Today") : index == 1 ? Lang("Tomorrow") : u"";
        list_.AddItem(std::make_unique<DayHeaderRow>(look_, dayDate, caption));
        ++rowsAdded;
        if (index == 1) {
            // As the fill counts it: the rows before the header, less one,
            // in whole rows, plus one header.
            tomorrowPosition_ = (rowsAdded - 1 - 1) * look_.RowHeight() + look_.HeaderHeight();
        }
        for (const PimItem& item : appointments_)
            list_.AddItem(std::make_unique<ItemRow>(look_, item, dayDate));
        for (const PimItem& task : tasks_)
            list_.AddItem(std::make_unique<ItemRow>(look_, task, dayDate));
        rowsAdded += static_cast<int>(appointments_.size() + tasks_.size());
    }
    EndFill(list_);
}

} // namespace mirodate
