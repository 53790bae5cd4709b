#include "views/DayView.h"

#include "data/DateTimeSpan.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Clock.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"
#include "views/ItemRow.h"

#include <chrono>
#include <cmath>
#include <thread>

namespace mirodate {

DayView::DayView(const DateTime& date)
    : ViewPage(SkinStyles::Current().dayView), date_(date.IsValid() ? date.StartOfDay() : DateTime::Today()),
      incoming_(*this) {}

std::vector<MenuBarEntry> DayView::MenuEntries() const {
    return {{"Menu", MenuBarIcon::Menu},
            {"Filter", MenuBarIcon::Filter},
            {"New", MenuBarIcon::New},
            {"Back", MenuBarIcon::Back}};
}

std::u16string DayView::Title() const {
    return Lang("DayView");
}

std::u16string DayView::HeaderText(const DateTime& date) {
    // Noon keeps the date clear of any change of clocks.
    const DateTime noon(date.GetYear(), date.GetMonth(), date.GetDay(), 12, 0, 0);
    return Locale::FormatDatePicture(noon.ToSystemTime(), u"dddd',' dd MMMM yyyy");
}

void DayView::LayoutLists(const RECT& area) {
    area_ = area;
    if (!incoming_.GetHwnd()) {
        incoming_.Create(window, area.left, area.top, area.Width(), area.Height(), false, false);
        incoming_.SetColors(list_.Colors());
        ShowWindow(incoming_.GetHwnd(), SW_HIDE);
    }
    for (ViewList* list : {&list_, &incoming_}) {
        MoveWindow(list->GetHwnd(), area.left, area.top, area.Width(), area.Height(), true);
        list->SetHeaderHeight(look_.HeaderHeight());
        list->SetHeaderFont(&look_.SubjectFont());
    }
    ShowWindow(incoming_.GetHwnd(), SW_HIDE);
}

void DayView::SetDate(const DateTime& date) {
    if (!date.IsValid())
        return;
    date_ = date.StartOfDay();
    if (window)
        Reload();
}

void DayView::Reload() {
    if (!window)
        return;
    Fill(list_);
}

void DayView::Fill(ViewList& list) {
    BeginFill(list);
    const double dayDate = date_.ToDate();
    list.SetHeaderText(HeaderText(date_));
    appointments_.clear();
    tasks_.clear();
    PimStore& store = PimStore::Instance();
    store.GetDayAppointments(date_.GetYear(), date_.GetMonth(), date_.GetDay(), appointments_);
    if (Settings::IsTaskViewEnabled(u"Day"))
        store.GetDayTasks(date_.GetYear(), date_.GetMonth(), date_.GetDay(), tasks_);
    for (const PimItem& item : appointments_)
        list.AddItem(std::make_unique<ItemRow>(look_, item, dayDate));
    for (const PimItem& task : tasks_)
        list.AddItem(std::make_unique<ItemRow>(look_, task, dayDate));
    EndFill(list);
}

void DayView::ChangeDay(int direction) {
    date_ = date_ + DateTimeSpan(direction, 0, 0, 0);
    if (Settings::GetDisableAnimations()) {
        Fill(list_);
        list_.Redraw(false);
        return;
    }
    // The new day comes in beside the old one, a view's width away.
    Fill(incoming_);
    const int width = area_.Width();
    MoveWindow(incoming_.GetHwnd(), area_.left + direction * width, area_.top, width, area_.Height(), false);
    ShowWindow(incoming_.GetHwnd(), SW_SHOW);
    const int step = static_cast<int>(std::lround(width * kSlideStepShare));
    Clock& clock = Clock::Current();
    for (int i = 1; i <= kSlideSteps; ++i) {
        const int shift = -direction * step * i;
        MoveWindow(list_.GetHwnd(), area_.left + shift, area_.top, width, area_.Height(), false);
        MoveWindow(incoming_.GetHwnd(), area_.left + direction * width + shift, area_.top, width,
                   area_.Height(), false);
        list_.Redraw(false);
        incoming_.Redraw(false);
        Wm().ComposeIfNeeded();
        if (slideObserver_)
            slideObserver_(i);
        if (clock.IsVirtual())
            clock.Advance(kSlidePauseMs);
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(kSlidePauseMs));
    }
    // The visible list takes the new day; the incoming one goes away again.
    Fill(list_);
    MoveWindow(list_.GetHwnd(), area_.left, area_.top, width, area_.Height(), true);
    ShowWindow(incoming_.GetHwnd(), SW_HIDE);
    incoming_.ClearItems();
    MoveWindow(incoming_.GetHwnd(), area_.left, area_.top, width, area_.Height(), false);
}

void DayView::OnListSwipe(bool toLeft) {
    const DWORD now = GetTickCount();
    if (flickSeen_ && now - lastFlick_ <= kFlickGuard)
        return;
    flickSeen_ = true;
    lastFlick_ = now;
    ChangeDay(toLeft ? 1 : -1);
}

bool DayView::OnViewKey(UINT key) {
    if (key == VK_LEFT)
        PreviousDay();
    else if (key == VK_RIGHT)
        NextDay();
    else
        return false;
    return true;
}

void DayView::OnHeaderTap(const DateTime&) {}

} // namespace mirodate
