#include "views/ViewPage.h"

#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/WinApi.h"
#include "views/ItemCommands.h"
#include "views/ItemRow.h"
#include "views/PlatformHandoff.h"
#include "views/ViewNavigator.h"

namespace mirodate {

namespace {
// Private command: the row tapped last is opened once the list has let go
// of the pointer (a row can be rebuilt by what its tap does).
constexpr UINT kCmdOpenTappedRow = 0x7F000001;
// The title bar's height when no main window has set one (240-pixel screen).
constexpr int kTitleHeight = 26;
} // namespace

ViewPage::ViewPage(const TimeViewStyle& style) : look_(style, this), list_(*this) {}

ViewPage::~ViewPage() = default;

HWND ViewPage::Open(HWND owner) {
    if (!CreateModeless(owner))
        return nullptr;
    if (!filledDay_.IsValid())
        Reload();
    SetForegroundWindow(window);
    return window;
}

BOOL ViewPage::OnInitDialog() {
    colorize_ = Settings::GetColorizeText();
    const int width = GetScreenWidth();
    const int height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    SetWindowText(window, Title());
    title_.Create(window, Title(), 0, 0, width, Scale(kTitleHeight));
    title_.SetColors(look_.headerBackground, look_.headerText, look_.selection, look_.textSelected);
    title_.SetGradient(look_.headerGradient, look_.selection);
    title_.SetLongPress(true);
    list_.Create(window, 0, 0, width, 1, false, false);
    TouchListColors colors = list_.Colors();
    colors.background = look_.background;
    colors.headerBackground = look_.headerBackground;
    colors.headerText = look_.headerText;
    colors.strip = look_.separator;
    list_.SetColors(colors);
    list_.SetHeaderHeight(0);
    menuBar_.Create(window, MenuEntries(), 0, height - 1, width);
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void ViewPage::Layout() {
    if (!window)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int top = ScreenBars::TopBarHeight() > 0 ? ScreenBars::TopBarHeight() : Scale(kTitleHeight);
    const int menu = menuBar_.Height();
    MoveWindow(title_.GetHwnd(), 0, 0, client.Width(), top, true);
    menuBar_.MoveTo(0, client.Height() - menu, client.Width(), menu);
    LayoutLists(RECT{0, top, client.Width(), std::max(top, client.Height() - menu)});
}

void ViewPage::LayoutLists(const RECT& area) {
    MoveWindow(list_.GetHwnd(), area.left, area.top, area.Width(), area.Height(), true);
}

void ViewPage::OnScreenReset() {
    MoveWindow(window, 0, 0, GetScreenWidth(), GetScreenHeight(), true);
    Layout();
    Reload();
}

void ViewPage::Relabel() {
    menuBar_.Relabel();
    title_.SetLabel(Title());
}

void ViewPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, look_.background);
}

void ViewPage::BeginFill(TouchListCtrlWnd& list) {
    RECT client;
    GetClientRect(list.GetHwnd(), &client);
    look_.BeginFill(client.Width(), colorize_, Settings::GetStrikeThroughPastEvents());
    list.ClearItems();
    if (&list == &list_)
        selected_ = -1;
}

void ViewPage::EndFill(TouchListCtrlWnd& list) {
    filledDay_ = DateTime::Today();
    refresh_ = false;
    list.Relayout();
}

bool ViewPage::PassTapGuard() {
    const DWORD now = GetTickCount();
    if (tapSeen_ && now - lastTap_ < kTapGuard)
        return false;
    tapSeen_ = true;
    lastTap_ = now;
    return true;
}

// ---- rows ------------------------------------------------------------------

void ViewPage::OnRowTap(ViewRow& row, int x, int) {
    if (!PassTapGuard())
        return;
    const PimItem* item = row.Item();
    selectedItem_.reset();
    if (item)
        selectedItem_ = *item;
    selectedDate_ = row.DayDate() > 0 ? DateTime(row.DayDate()) : CurrentDate();
    // What the tap does is decided now and done once the list has let go.
    pendingRowType_ = row.RowType();
    pendingInCheckZone_ = row.RowType() == ViewRow::kTypeItem && static_cast<ItemRow&>(row).InCheckZone(x);
    PostMessage(window, WM_DEFERRED_COMMAND, kCmdOpenTappedRow, 0);
}

void ViewPage::OpenTappedRow() {
    if (pendingRowType_ == ViewRow::kTypeItem && selectedItem_) {
        const PimItem& item = *selectedItem_;
        if (item.IsTask() && pendingInCheckZone_) {
            RunCommand(ItemCommands::kToggleComplete);
            return;
        }
        if (item.kind == PimItem::kBirthday || item.kind == PimItem::kAnniversary) {
            PlatformHandoff::OpenContact(window, item);
            return;
        }
        if (item.oid == -1 || item.oid == -2)
            return;
        if (ViewNavigator* navigator = ViewNavigator::Current())
            navigator->OpenItemDetail(item.oid, item.IsTask(), selectedDate_);
        return;
    }
    if (pendingRowType_ == ViewRow::kTypeHeader) {
        OnHeaderTap(selectedDate_);
        return;
    }
    // A row without an item ("NoAppointments"): something new on its day.
    OpenContextMenu(ItemCommands::NewMenu());
}

void ViewPage::OnHeaderTap(const DateTime& date) {
    if (ViewNavigator* navigator = ViewNavigator::Current())
        navigator->OpenDayView(date);
}

void ViewPage::OnListHold(int index) {
    if (!PassTapGuard())
        return;
    list_.Scroller().EndDrag();
    list_.Redraw(false);
    auto* row = dynamic_cast<ViewRow*>(list_.Item(index));
    if (!row || !row->Item())
        return;
    OpenItemPopup(*row->Item(), row->DayDate());
}

void ViewPage::OpenItemPopup(const PimItem& item, double dayDate) {
    // Only items of the store have actions; birthdays and anniversaries none.
    if (item.oid <= 0 || item.kind == PimItem::kBirthday || item.kind == PimItem::kAnniversary)
        return;
    selectedItem_ = item;
    selectedDate_ = dayDate > 0 ? DateTime(dayDate) : CurrentDate();
    OpenContextMenu(ItemCommands::ItemMenu());
}

void ViewPage::OpenContextMenu(std::vector<ContextMenuItem> items) {
    auto* menu = new ContextMenu(this, std::move(items)); // owned by our deferred command, or by itself
    menu->Open();
}

void ViewPage::OnListSwipe(bool) {}

void ViewPage::SelectRowItem(int index) {
    auto* row = dynamic_cast<ViewRow*>(list_.Item(index));
    if (!row)
        return;
    selectedItem_.reset();
    if (row->Item())
        selectedItem_ = *row->Item();
    selectedDate_ = row->DayDate() > 0 ? DateTime(row->DayDate()) : CurrentDate();
}

void ViewPage::SelectRow(int index) {
    const int count = list_.ItemCount();
    if (count == 0)
        return;
    if (TouchListItem* old = list_.Item(selected_))
        old->RemoveHighlight();
    selected_ = ((index % count) + count) % count;
    if (TouchListItem* row = list_.Item(selected_))
        row->Highlight(0, 0);
    list_.Reveal(selected_, true);
    list_.RefreshViewport();
}

// ---- commands --------------------------------------------------------------

void ViewPage::OnDeferredCommand(UINT id) {
    if (id == kCmdOpenTappedRow) {
        OpenTappedRow();
        return;
    }
    RunCommand(id);
}

void ViewPage::RunCommand(UINT command) {
    if (OnViewCommand(command))
        return;
    if (command == ItemCommands::kToday) {
        ScrollToToday();
        return;
    }
    if (command == ItemCommands::kTomorrow) {
        ScrollToTomorrow();
        return;
    }
    const PimItem* item = selectedItem_ ? &*selectedItem_ : nullptr;
    const HWND self = window;
    switch (
        ItemCommands::Run(window, command, item, selectedDate_.IsValid() ? selectedDate_ : CurrentDate())) {
    case ItemCommands::Outcome::Changed:
        if (!IsWindow(self))
            return;
        refresh_ = true;
        if (IsWindowVisible(window))
            Reload();
        break;
    case ItemCommands::Outcome::Unknown:
        CloseView();
        break;
    case ItemCommands::Outcome::Done:
        break;
    }
}

void ViewPage::ScrollToToday() {
    list_.Scroller().SetPosition(0);
    list_.RefreshViewport();
}

void ViewPage::ScrollToTomorrow() {
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    list_.Scroller().SetPosition(tomorrowPosition_ <= client.Height() ? 0 : tomorrowPosition_);
    list_.RefreshViewport();
}

void ViewPage::CloseView() {
    if (window)
        ShowWindow(window, SW_HIDE);
    if (closeHandler_)
        closeHandler_(*this);
}

void ViewPage::OnMenuButton(const std::string&) {}

void ViewPage::OnCommand(UINT, UINT, HWND control) {
    if (control == title_.GetHwnd()) {
        OnTitleTap();
        return;
    }
    const int index = menuBar_.IndexOf(control);
    const std::vector<MenuBarEntry> entries = MenuEntries();
    if (index < 0 || index >= static_cast<int>(entries.size()))
        return;
    const std::string& key = entries[static_cast<size_t>(index)].langKey;
    ViewNavigator* navigator = ViewNavigator::Current();
    const DateTime date = CurrentDate();
    if (key == "Menu") {
        OpenContextMenu(ItemCommands::AppMenu());
    } else if (key == "Filter") {
        if (navigator && navigator->OpenFilter(window))
            Reload();
    } else if (key == "Tasks") {
        if (navigator)
            navigator->OpenTasksView(date);
    } else if (key == "New") {
        selectedDate_ = date;
        OpenContextMenu(ItemCommands::NewMenu());
    } else if (key == "NewTask") {
        selectedDate_ = date;
        RunCommand(ItemCommands::kNewTask);
    } else if (key == "Back" || key == "MonthView") {
        if (key == "MonthView" && navigator)
            navigator->HideWeekAndAgenda();
        CloseView();
    } else if (key == "WeekView" || key == "AgendaView") {
        CloseView();
        if (navigator)
            (key == "WeekView") ? navigator->ShowWeekView(date) : navigator->ShowAgendaView(date);
    } else {
        OnMenuButton(key);
    }
}

LRESULT ViewPage::OnNotify(UINT_PTR, NMHDR* header) {
    if (header && header->hwndFrom == title_.GetHwnd() && header->code == NM_LONG_PRESS)
        OnTitleHold();
    return 0;
}

void ViewPage::OnTitleTap() {
    // The title takes the user back to the month.
    if (ViewNavigator* navigator = ViewNavigator::Current())
        navigator->HideWeekAndAgenda();
    CloseView();
}

void ViewPage::OnTitleHold() {
    OpenContextMenu({{Lang("Today"), ItemCommands::kToday}, {Lang("Tomorrow"), ItemCommands::kTomorrow}});
}

bool ViewPage::OnViewCommand(UINT) {
    return false;
}

bool ViewPage::OnViewKey(UINT) {
    return false;
}

void ViewPage::OnKeyDown(UINT key, UINT) {
    if (OnViewKey(key))
        return;
    switch (key) {
    case VK_UP:
        SelectRow(selected_ < 0 ? list_.ItemCount() - 1 : selected_ - 1);
        break;
    case VK_DOWN:
        SelectRow(selected_ + 1);
        break;
    case VK_RETURN:
        if (auto* row = dynamic_cast<ViewRow*>(list_.Item(selected_))) {
            SelectRowItem(selected_);
            pendingRowType_ = row->RowType();
            pendingInCheckZone_ = false;
            OpenTappedRow();
        }
        break;
    case VK_ESCAPE:
        CloseView();
        break;
    default:
        break;
    }
}

LRESULT ViewPage::OnActivate(UINT state, BOOL minimized, HWND other) {
    DialogWnd::OnActivate(state, minimized, other);
    if (state == WA_ACTIVE || state == WA_CLICKACTIVE) {
        // After midnight the rows' "Today" is yesterday: fill again.
        if (refresh_ || filledDay_ != DateTime::Today())
            Reload();
        SetFocus(window);
    }
    return 0;
}

void ViewPage::OnShowWindow(BOOL shown) {
    if (shown && (refresh_ || filledDay_ != DateTime::Today()))
        Reload();
}

void ViewPage::OnStoreChanged(const StoreChange&) {
    if (IsWindowVisible(window))
        Reload();
    else
        refresh_ = true;
}

void ViewPage::OnCloseAll() {
    CloseView();
}

} // namespace mirodate
