#pragma once
// The program's one top-level window, which is also the month view: the
// status bar, the month grid, the split list of the selected day's items and
// the menu bar. It takes the command texts of later starts, keeps the item
// cache current on the store's change reports (one deferred reload while a
// synchroniser runs) and tells every other window to reload.
#include "app/MonthGridWnd.h"
#include "app/ReminderService.h"
#include "app/SplitDayList.h"
#include "app/StatusBar.h"
#include "app/SyncRunner.h"
#include "app/ViewRouter.h"
#include "ui/DialogWnd.h"
#include "ui/MenuBar.h"

#include <functional>
#include <optional>
#include <string>

namespace mirodate {

class MainWnd : public DialogWnd {
public:
    // The command text that opens a calendar file for import: this, then the path.
    static constexpr const char16_t* kImportCommand = u"--import ";
    // Timer of the deferred reload while a synchroniser runs, and its delay.
    static constexpr UINT_PTR kSyncReloadTimer = 44;
    static constexpr UINT kSyncReloadDelay = 2000;
    // Looks for the end of a synchronisation while one was seen running.
    static constexpr UINT_PTR kSyncWatchTimer = 45;
    static constexpr UINT kSyncWatchPeriod = 1000;
    // Looks at our own synchroniser run, and how long after its end the
    // store's last change reports are left to arrive before the one reload.
    static constexpr UINT_PTR kSyncPollTimer = 46;
    static constexpr UINT kSyncPollPeriod = 200;
    static constexpr UINT_PTR kSyncSettleTimer = 47;
    static constexpr UINT kSyncSettleDelay = 300;
    // Share of the space between the bars that the grid takes in the split view.
    static constexpr int kSplitGridPercent = 58;

    // Menu commands (deferred through the context menus).
    // (Numbers clear of the item commands the day list's pop-ups send.)
    static constexpr UINT kCmdToday = 0x7E01;
    static constexpr UINT kCmdToggleSplit = 0x7E02;
    static constexpr UINT kCmdExit = 0x7E03;
    static constexpr UINT kCmdOpenTappedItem = 0x7E04;
    static constexpr UINT kCmdConfig = 0x7E05;
    static constexpr UINT kCmdAbout = 0x7E06;
    static constexpr UINT kCmdYearView = 0x7E07;
    static constexpr UINT kCmdQuickView = 0x7E08;
    static constexpr UINT kCmdSync = 0x7E09;
    static constexpr UINT kCmdMonthBase = 100;  // + month 1..12
    static constexpr UINT kCmdYearBase = 10000; // + year
    // Years the year picker offers on each side of the shown one.
    static constexpr int kYearPickerSpan = 5;

    MainWnd();
    ~MainWnd() override;

    // Loads skin and language, creates the full-screen window with its
    // children and runs the command text. Null on failure.
    HWND Create(const std::u16string& commandLine);

    // Acts on a command text; returns the window brought to the front.
    HWND ProcessCommand(const std::u16string& text);
    // Called with every command text before it is acted on.
    void SetCommandObserver(std::function<void(const std::u16string&)> observer) {
        commandObserver_ = std::move(observer);
    }

    // Refreshes the status bar; with `reload`, reloads the shown month and
    // moves the split list to the grid's date. Year or month below 1: every
    // window is told to reload.
    void Refresh(bool reload, int year, int month);
    void SetSplitView(bool on);
    bool IsSplitView() const { return splitView_; }
    void Relabel();
    // A setting changed in the configuration dialog: relabel, relayout or reload.
    void OnSettingChanged(const std::string& setting);
    // The month view on a date (and the split list under it).
    void ShowDate(const DateTime& date);

    MonthGridWnd& Grid() { return grid_; }
    SplitDayList& DayList() { return dayList_; }
    StatusBar& Status() { return statusBar_; }
    MenuBar& Menu() { return menuBar_; }
    ViewRouter& Router() { return router_; }
    ReminderService& Reminders() { return reminders_; }
    SyncRunner& Sync() { return sync_; }
    // Runs the synchroniser in the background ("Sync" in the menu).
    bool StartSync();
    // Whether "Sync" is offered: vdirsyncer and a configuration for the store.
    static bool CanSync();

    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnClose() override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    LRESULT OnNotify(UINT_PTR id, NMHDR* header) override;
    void OnTimer(UINT_PTR id) override;
    void OnSize(UINT sizeParam, UINT type) override;
    void OnDeferredCommand(UINT id) override;
    void OnScreenReset() override;
    // Store changes: applied to the cache, then markers, lists and every view.
    void OnItemNotification(const PimNotification& notification) override;
    // Another instance handed a command over: the pages close and it runs.
    bool OnCommandText(const std::u16string& text) override;

private:
    void Layout();
    void StartReminders();
    void ReloadAfterSync();
    bool IsSynchronizing();
    void PollSync();
    void OnSyncEnded(SyncRunner::State state);
    void OpenMainMenu();
    void OpenMonthPicker();
    void OpenYearPicker();
    void MinimizeFromTopBar();
    void OnDayListTap(const PimItem& item, double dayDate, bool inCheckZone);
    void OnDayListHold(const PimItem& item, double dayDate);
    void OpenTappedItem();
    // After the user changed an item here: markers, list and every view.
    void AfterItemChange();
    DateTime SelectedDate() const;

    StatusBar statusBar_;
    MonthGridWnd grid_;
    SplitDayList dayList_;
    MenuBar menuBar_;
    ViewRouter router_;
    ReminderService reminders_;
    bool splitView_;
    bool built_ = false;
    bool syncSeen_ = false;
    SyncRunner sync_;
    bool syncSettling_ = false;
    bool bulkChange_ = false; // an import writes many items
    UINT bulkChangeMessage_ = 0;
    // The day list's last tapped or held item, and its guard.
    std::optional<PimItem> selectedItem_;
    double selectedDay_ = 0.0;
    bool tappedInCheckZone_ = false;
    DWORD lastTap_ = 0;
    bool tapSeen_ = false;
    std::function<void(const std::u16string&)> commandObserver_;
};

} // namespace mirodate
