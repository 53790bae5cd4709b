#include "views/QuickView.h"

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
// The skin's quick-view colours; the section has no header of its own, so
// the day headers and the title take the agenda's.
const TimeViewStyle& QuickViewStyle() {
    static TimeViewStyle style;
    const SkinStyles& skin = SkinStyles::Current();
    style = skin.quickView;
    style.colorHeaderBg = skin.agendaView.colorHeaderBg;
    style.colorHeaderGradient = skin.agendaView.colorHeaderGradient;
    style.colorHeaderText = skin.agendaView.colorHeaderText;
    return style;
}
} // namespace

QuickView::QuickView() : ViewPage(QuickViewStyle()) {}

std::vector<MenuBarEntry> QuickView::MenuEntries() const {
    return {{"Menu", MenuBarIcon::Menu},
            {"New", MenuBarIcon::New},
            {"AgendaView", MenuBarIcon::Agenda},
            {"MonthView", MenuBarIcon::Month}};
}

std::u16string QuickView::Title() const {
    return Lang("QuickView");
}

void QuickView::Reload() {
    if (!window)
        return;
    BeginFill(list_);
    shown_.clear();
    const DateTime today = DateTime::Today();
    const double now = DateTime::Now().ToDate();
    const bool withTasks = Settings::IsTaskViewEnabled(u"Agenda");
    PimStore& store = PimStore::Instance();
    for (int index = 0; index < kDaysAhead && static_cast<int>(shown_.size()) < kMaxItems; ++index) {
        const DateTime day = today + DateTimeSpan(index, 0, 0, 0);
        const double dayDate = day.ToDate();
        appointments_.clear();
        tasks_.clear();
        store.GetDayAppointments(day.GetYear(), day.GetMonth(), day.GetDay(), appointments_);
        if (withTasks)
            store.GetDayTasks(day.GetYear(), day.GetMonth(), day.GetDay(), tasks_);
        bool header = false;
        auto add = [&](const PimItem& item) {
            if (static_cast<int>(shown_.size()) >= kMaxItems)
                return;
            if (!header) {
                const std::u16string caption = index == 0   ? Lang("Today")
                                               : index == 1 ? Lang("Tomorrow")
                                                            : u"";
                list_.AddItem(std::make_unique<DayHeaderRow>(look_, dayDate, caption));
                header = true;
            }
            list_.AddItem(std::make_unique<ItemRow>(look_, item, dayDate));
            shown_.push_back(item);
        };
        for (const PimItem& item : appointments_) {
            // What is over already is not next; what runs now is.
            if (index == 0 && !item.IsTask() && item.kind == PimItem::kAppointment && item.endValue <= now)
                continue;
            add(item);
        }
        for (const PimItem& task : tasks_)
            add(task);
    }
    if (shown_.empty())
        list_.AddItem(std::make_unique<MessageRow>(look_, Lang("NoAppointments"), today.ToDate()));
    EndFill(list_);
}

} // namespace mirodate
