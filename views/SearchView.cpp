#include "views/SearchView.h"

#include "data/DateTimeSpan.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "skin/SkinStyles.h"
#include "ui/Scale.h"
#include "ui/WaitCursor.h"
#include "ui/WinApi.h"
#include "views/DayHeaderRow.h"
#include "views/ItemRow.h"
#include "views/MessageRow.h"

#include <algorithm>
#include <memory>

namespace mirodate {

namespace {
// The field's height and the margin around it (240-pixel screen).
constexpr int kFieldHeight = 24;
constexpr int kFieldMargin = 3;

bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
} // namespace

SearchView::SearchView() : ViewPage(SkinStyles::Current().agendaView), date_(DateTime::Today()) {}

std::vector<MenuBarEntry> SearchView::MenuEntries() const {
    return {{"OK", MenuBarIcon::Search}, {"Cancel", MenuBarIcon::Back}};
}

std::u16string SearchView::Title() const {
    return Lang("Search");
}

void SearchView::SetDate(const DateTime& date) {
    if (date.IsValid())
        date_ = date.StartOfDay();
}

BOOL SearchView::OnInitDialog() {
    startDelay_ = Settings::GetSearchStartDelay();
    field_.Create(window, kFieldId, 0, 0, 1, Scale(kFieldHeight), false);
    field_.SetLimit(kFieldLimit);
    // The insert entries of the pop-up are listed, greyed: nothing to insert here.
    field_.SetNoInsert(false);
    field_.SetInsertCommandsEnabled(false);
    const BOOL result = ViewPage::OnInitDialog();
    SetFocus(field_.GetHwnd());
    return result;
}

void SearchView::LayoutLists(const RECT& area) {
    const int margin = Scale(kFieldMargin);
    const int fieldHeight = Scale(kFieldHeight);
    MoveWindow(field_.GetHwnd(), area.left + margin, area.top + margin,
               std::max(area.Width() - 2 * margin, 1), fieldHeight, true);
    const int listTop = std::min(area.bottom, area.top + fieldHeight + 2 * margin);
    MoveWindow(list_.GetHwnd(), area.left, listTop, area.Width(), std::max(area.bottom - listTop, 1), true);
}

LRESULT SearchView::OnActivate(UINT state, BOOL minimized, HWND other) {
    ViewPage::OnActivate(state, minimized, other);
    // Typing goes to the field whenever the page comes to the front.
    if ((state == WA_ACTIVE || state == WA_CLICKACTIVE) && field_.GetHwnd())
        SetFocus(field_.GetHwnd());
    return 0;
}

void SearchView::OnCommand(UINT id, UINT code, HWND control) {
    if (control && control == field_.GetHwnd()) {
        if (code == EN_CHANGE) {
            KillTimer(window, kSearchTimer);
            // With no delay only Enter searches.
            if (startDelay_ >= 1)
                SetTimer(window, kSearchTimer, startDelay_);
        } else if (code == EN_ENTER) {
            KillTimer(window, kSearchTimer);
            SearchNow();
        }
        return;
    }
    ViewPage::OnCommand(id, code, control);
}

void SearchView::OnTimer(UINT_PTR id) {
    if (id != kSearchTimer) {
        ViewPage::OnTimer(id);
        return;
    }
    KillTimer(window, kSearchTimer);
    SearchNow();
}

void SearchView::OnMenuButton(const std::string& key) {
    if (key == "OK" || key == "Cancel") {
        KillTimer(window, kSearchTimer);
        CloseView();
    }
}

void SearchView::Reload() {
    if (!window)
        return;
    Fill();
}

void SearchView::SearchNow() {
    if (!window)
        return;
    Fill();
    list_.Scroller().SetPosition(0);
    list_.RefreshViewport();
}

void SearchView::Fill() {
    const std::u16string& text = field_.GetText();
    std::size_t length = std::min(text.size(), kMaxSearchLength);
    // A character is not split in two at the cut.
    if (length == kMaxSearchLength && length < text.size() && IsHighSurrogate(text[length - 1]))
        --length;
    searched_.assign(text, 0, length);
    BeginFill(list_);
    appointments_.clear();
    tasks_.clear();
    if (!searched_.empty()) {
        ++searchCount_;
        {
            WaitCursor wait;
            PimStore::Instance().Search(searched_, PimStore::SearchOptions{}, appointments_, tasks_);
        }
        const DateTime today = DateTime::Today();
        const double todayDate = today.ToDate();
        const double tomorrowDate = (today + DateTimeSpan(1, 0, 0, 0)).ToDate();
        double lastDay = -1;
        for (const PimItem& item : appointments_) {
            // One header per day; an item that began earlier stands under its first day.
            const double dayDate = DateTime(item.startValue).StartOfDay().ToDate();
            if (dayDate != lastDay) {
                const std::u16string caption = dayDate == todayDate      ? Lang("Today")
                                               : dayDate == tomorrowDate ? Lang("Tomorrow")
                                                                         : u"";
                list_.AddItem(std::make_unique<DayHeaderRow>(look_, dayDate, caption));
                lastDay = dayDate;
            }
            list_.AddItem(std::make_unique<ItemRow>(look_, item, dayDate));
        }
        for (const PimItem& task : tasks_)
            list_.AddItem(std::make_unique<ItemRow>(look_, task, 0.0));
        if (appointments_.empty() && tasks_.empty())
            list_.AddItem(std::make_unique<MessageRow>(look_, Lang("NoSearchResult"), todayDate));
    }
    EndFill(list_);
    if (searchObserver_)
        searchObserver_();
}

} // namespace mirodate
