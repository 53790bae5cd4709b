#pragma once
// The base of every calendar view page (agenda, day, week, tasks, search).
//
// A view page is a full-screen page with a title button at the top, a touch
// list of rows in the middle and a menu bar at the bottom. The base does what
// all views share: the menu-bar buttons ("Menu", "Filter", "Tasks", "New",
// "Back", "MonthView", "WeekView", "AgendaView"), the row tap with its
// 500 ms guard (check-mark zone, contacts, "New" menu, detail view), the
// item pop-up on a hold, the keys Enter, Up and Down, the command handler,
// reloading when the store changed (OnStoreChanged), on activation after
// midnight and when a command changed the store.
//
// To add a view:
//   1. Derive from ViewPage; pass the view's skin section to the constructor.
//   2. Override MenuEntries() (the buttons, left to right), Title() and
//      CurrentDate().
//   3. Override Reload(): call BeginFill(), then add rows to List() made with
//      Look() (ItemRow, DayHeaderRow, MessageRow), then EndFill().
//   4. Override OnListSwipe() or OnViewKey() for the view's own navigation
//      and OnMenuButton() for buttons the base does not know.
//   5. Open it through the view navigator (app/ViewRouter), which owns it.
#include "data/DateTime.h"
#include "data/PimItem.h"
#include "ui/ButtonWnd.h"
#include "ui/ContextMenu.h"
#include "ui/DialogWnd.h"
#include "ui/MenuBar.h"
#include "views/RowLook.h"
#include "views/ViewList.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

struct TimeViewStyle;

class ViewPage : public DialogWnd, public RowListener, public ViewListListener {
public:
    // Taps on rows closer together than this are one tap.
    static constexpr DWORD kTapGuard = 500;

    explicit ViewPage(const TimeViewStyle& style);
    ~ViewPage() override;

    // Creates the page (modeless, over `owner`), fills and shows it.
    HWND Open(HWND owner);
    // Rebuilds the rows from the store.
    virtual void Reload() = 0;
    // The day the view shows (its first day for a range).
    virtual DateTime CurrentDate() const = 0;
    // Called when the page closes itself (Back, another view, the close-all
    // broadcast); the owner of the page deletes it later.
    void SetCloseHandler(std::function<void(ViewPage&)> handler) { closeHandler_ = std::move(handler); }
    // Hides the page and tells the close handler.
    virtual void CloseView();
    // Runs a command of the menus.
    void RunCommand(UINT command);

    ViewList& List() { return list_; }
    MenuBar& Menu() { return menuBar_; }
    ButtonWnd& TitleButton() { return title_; }
    const RowLook& Look() const { return look_; }
    bool RefreshPending() const { return refresh_; }
    int SelectedIndex() const { return selected_; }
    // The item of the last tap, hold or pop-up.
    const std::optional<PimItem>& SelectedItem() const { return selectedItem_; }
    void Relabel();
    // Makes row `index` the selected one: the item and day the commands act on.
    void SelectRowItem(int index);

    // RowListener, ViewListListener.
    void OnRowTap(ViewRow& row, int x, int y) override;
    void OnListHold(int index) override;
    void OnListSwipe(bool toLeft) override;

    BOOL OnInitDialog() override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    LRESULT OnNotify(UINT_PTR id, NMHDR* header) override;
    void OnKeyDown(UINT key, UINT flags) override;
    LRESULT OnActivate(UINT state, BOOL minimized, HWND other) override;
    void OnShowWindow(BOOL shown) override;
    void OnPaint(HDC dc) override;
    void OnDeferredCommand(UINT id) override;
    void OnScreenReset() override;
    // Reloads now when shown, else on the next showing.
    void OnStoreChanged(const StoreChange& change) override;
    // Closes through CloseView: the page's owner deletes it.
    void OnCloseAll() override;

protected:
    virtual std::vector<MenuBarEntry> MenuEntries() const = 0;
    virtual std::u16string Title() const = 0;
    // Buttons the base does not know.
    virtual void OnMenuButton(const std::string& key);
    // Commands of the view's own menus, before the shared handler; true
    // when handled.
    virtual bool OnViewCommand(UINT command);
    // A tap on the title: back to the month. A hold: "Today", "Tomorrow".
    virtual void OnTitleTap();
    virtual void OnTitleHold();
    // Keys the view handles itself (Left/Right); true when handled.
    virtual bool OnViewKey(UINT key);
    // Places the children in the area between the title and the menu bar.
    virtual void LayoutLists(const RECT& area);
    // "Today": to the top; "Tomorrow": to the recorded position of
    // tomorrow's header when it lies below the first screen.
    virtual void ScrollToToday();
    virtual void ScrollToTomorrow();

    // Starts a fill of `list`: empties it and reads the fill settings.
    void BeginFill(TouchListCtrlWnd& list);
    // Ends a fill: the first row's day is remembered for the midnight check.
    void EndFill(TouchListCtrlWnd& list);
    // Whether the guard lets a list notification through now.
    bool PassTapGuard();
    void OpenItemPopup(const PimItem& item, double dayDate);
    void OpenContextMenu(std::vector<ContextMenuItem> items);
    // Opens the row's item (a tap outside the check-mark zone).
    void OpenTappedRow();
    // A tap on a day header; the default opens the day view of its date.
    virtual void OnHeaderTap(const DateTime& date);
    void SelectRow(int index);

    RowLook look_;
    ViewList list_;
    MenuBar menuBar_;
    ButtonWnd title_;
    bool refresh_ = false;
    int tomorrowPosition_ = 0;
    int selected_ = -1;
    std::optional<PimItem> selectedItem_;
    DateTime selectedDate_;
    DWORD lastTap_ = 0;
    bool tapSeen_ = false;
    DateTime filledDay_;
    bool colorize_ = false;
    int pendingRowType_ = 0;
    bool pendingInCheckZone_ = false;
    std::function<void(ViewPage&)> closeHandler_;

private:
    void Layout();
};

} // namespace mirodate
