#include "app/MainWnd.h"

#include "app/CommandRequest.h"
#include "data/PimNotification.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Clock.h"
#include "platform/DefaultApps.h"
#include "platform/Locale.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "skin/SkinLoader.h"
#include "skin/SkinStyles.h"
#include "store/VdirSource.h"
#include "ui/ContextMenu.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/Shell.h"
#include "ui/WinApi.h"
#include "ui/WindowClasses.h"
#include "views/ImportView.h"
#include "views/ItemCommands.h"
#include "views/PlatformHandoff.h"
#include "views/ViewPage.h"

namespace mirodate {

namespace {
// The top bar's height for a 240-pixel-wide screen.
constexpr int kTopBarHeight = 26;

} // namespace

MainWnd::MainWnd()
    : router_(
          *this, [this](const DateTime& date) { ShowDate(date); }, [this] { Refresh(true, 0, 0); }),
      splitView_(Settings::GetSplitMonthView()) {
    router_.SetSettingChangedHandler([this](const std::string& setting) { OnSettingChanged(setting); });
}

MainWnd::~MainWnd() = default;

HWND MainWnd::Create(const std::u16string& commandLine) {
    SkinLoader::Load(SkinStyles::Current(), IsHighResolution());
    LanguageTable::Instance().LoadFromSettings();
    bulkChangeMessage_ = RegisterWindowMessage(kBulkChangeMessageName);
    Shell::SetHideTaskBar(!Settings::GetShowWindowsTaskBar());
    ScreenBars::SetTopBarHeight(Scale(kTopBarHeight));
    ScreenBars::SetMenuBarHeight(SkinStyles::Current().menuBar.height);

    const int width = GetScreenWidth();
    const int height = GetScreenHeight();
    if (!BaseWnd::Create(nullptr, kMainWndClass, WS_POPUP | WS_VISIBLE, Utf8ToUtf16(kMainWndTitle), 0, 0,
                         width, height))
        return nullptr;
    OnInitDialog();
    if (!statusBar_.Create(window, 0, 0, width, 1) || !grid_.Create(window, 0, 0, width, 1) ||
        !dayList_.Create(window, 0, 0, width, 1))
        return nullptr;
    dayList_.SetCallbacks(
        [this](const PimItem& item, double day, bool inCheckZone) { OnDayListTap(item, day, inCheckZone); },
        [this](const PimItem& item, double day) { OnDayListHold(item, day); });
    const std::vector<MenuBarEntry> entries = {{"Menu", MenuBarIcon::Menu},
                                               {"Filter", MenuBarIcon::Filter},
                                               {"Tasks", MenuBarIcon::Tasks},
                                               {"WeekView", MenuBarIcon::Week},
                                               {"AgendaView", MenuBarIcon::Agenda}};
    if (!menuBar_.Create(window, entries, 0, 0, width))
        return nullptr;
    built_ = true;
    Layout();

    const SYSTEMTIME now = Clock::Current().GetLocalTime();
    grid_.ShowDate(now.wYear, now.wMonth, now.wDay);
    if (splitView_)
        dayList_.ShowDay(now.wYear, now.wMonth, now.wDay);
    SetForegroundWindow(window);
    ProcessCommand(commandLine);
    StartReminders();
    return window;
}

void MainWnd::StartReminders() {
    ReminderService::Hooks hooks;
    hooks.inFront = [this] { return IsWindowVisible(window); };
    hooks.open = [this](const Reminder& reminder) {
        router_.OpenItemDetail(reminder.oid, reminder.itemKind == kItemTask, DateTime(reminder.start));
    };
    if (!reminders_.Start(window, std::move(hooks)))
        Log::Warning("reminders: the service did not start");
}

void MainWnd::Layout() {
    if (!built_ || !window)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int width = client.Width();
    const int height = client.Height();
    const int top = ScreenBars::TopBarHeight();
    const int menu = menuBar_.Height();
    const int middle = std::max(height - top - menu, 0);
    const int gridHeight = splitView_ ? middle * kSplitGridPercent / 100 : middle;
    MoveWindow(statusBar_.GetHwnd(), 0, 0, width, top, true);
    MoveWindow(grid_.GetHwnd(), 0, top, width, gridHeight, true);
    if (splitView_) {
        MoveWindow(dayList_.GetHwnd(), 0, top + gridHeight, width, middle - gridHeight, true);
        ShowWindow(dayList_.GetHwnd(), SW_SHOW);
    } else {
        ShowWindow(dayList_.GetHwnd(), SW_HIDE);
    }
    menuBar_.MoveTo(0, height - menu, width, menu);
    InvalidateRect(window, nullptr, false);
}

void MainWnd::OnSize(UINT, UINT) {
    Layout();
}

void MainWnd::OnScreenReset() {
    MoveWindow(window, 0, 0, GetScreenWidth(), GetScreenHeight(), true);
    Layout();
}

DateTime MainWnd::SelectedDate() const {
    const MonthGridModel& model = grid_.Model();
    return DateTime(model.Year(), model.Month(), model.SelectedDay());
}

void MainWnd::ShowDate(const DateTime& date) {
    grid_.ShowDate(date.GetYear(), date.GetMonth(), date.GetDay());
    if (splitView_)
        dayList_.ShowDay(date.GetYear(), date.GetMonth(), date.GetDay());
}

void MainWnd::SetSplitView(bool on) {
    splitView_ = on;
    if (on) {
        const DateTime date = SelectedDate();
        if (!dayList_.IsShowing(date.GetYear(), date.GetMonth(), date.GetDay()))
            dayList_.ShowDay(date.GetYear(), date.GetMonth(), date.GetDay(), true);
    }
    Layout();
    Settings::SetBool("SplitMonthView", on);
}

void MainWnd::Relabel() {
    menuBar_.Relabel();
    router_.Relabel();
}

void MainWnd::OnSettingChanged(const std::string& setting) {
    if (setting == "Language") {
        Relabel();
        grid_.Redraw(false);
        statusBar_.Refresh();
    } else if (setting == "SplitMonthView") {
        if (Settings::GetSplitMonthView() != splitView_)
            SetSplitView(!splitView_);
    } else if (setting == "Skin" || setting == "FontSizeDelta" || setting == "FontFamily") {
        // Taken at the next start.
    } else {
        // Filters, task placement, colours and the like: everything is read again.
        Refresh(true, 0, 0);
    }
}

void MainWnd::Refresh(bool reload, int year, int month) {
    statusBar_.Refresh();
    const MonthGridModel& model = grid_.Model();
    if (reload) {
        PimStore::Instance().FillMonth(model.Year(), model.Month(), true, true);
        grid_.RefreshMarkers();
        const DateTime date = SelectedDate();
        dayList_.ShowDay(date.GetYear(), date.GetMonth(), date.GetDay(), true);
    }
    if (year < 1 || month < 1) {
        grid_.Redraw(false);
        BroadcastStoreChanged(StoreChange{reload, year, month});
    } else if (year == model.Year() && month == model.Month()) {
        grid_.Redraw(false);
    }
    dayList_.Refresh();
}

bool MainWnd::IsSynchronizing() {
    if (sync_.IsRunning() || syncSettling_)
        return true;
    PimSource* source = PimStore::Instance().Source();
    return source && source->IsSynchronizing();
}

namespace {
std::string StoreRoot() {
    auto* vdir = dynamic_cast<VdirSource*>(PimStore::Instance().Source());
    return vdir ? vdir->Root() : std::string();
}
} // namespace

bool MainWnd::CanSync() {
    const std::string root = StoreRoot();
    return !root.empty() && SyncRunner::IsAvailable(root);
}

bool MainWnd::StartSync() {
    if (sync_.IsRunning() || syncSettling_)
        return false;
    if (!sync_.Start(GetTickCount())) {
        MessagePage::Tell(window, Lang("SyncCannotStart"));
        return false;
    }
    // Our own run ends in one reload: the process-list watch is not needed.
    KillTimer(window, kSyncWatchTimer);
    syncSeen_ = false;
    statusBar_.SetActivity(Lang("Syncing"));
    SetTimer(window, kSyncPollTimer, kSyncPollPeriod);
    return true;
}

void MainWnd::PollSync() {
    const SyncRunner::State state = sync_.Poll(GetTickCount());
    if (state == SyncRunner::State::Running)
        return;
    KillTimer(window, kSyncPollTimer);
    OnSyncEnded(state);
}

void MainWnd::OnSyncEnded(SyncRunner::State state) {
    statusBar_.SetActivity(u"");
    // Change reports still on their way are covered by the one reload.
    KillTimer(window, kSyncReloadTimer);
    syncSettling_ = true;
    SetTimer(window, kSyncSettleTimer, kSyncSettleDelay);
    if (state == SyncRunner::State::Succeeded)
        return;
    std::u16string message;
    if (state == SyncRunner::State::TimedOut) {
        message = Lang("SyncTimedOut");
        const size_t at = message.find(u"%s");
        const std::u16string seconds = Utf8ToUtf16(std::to_string(sync_.TimeLimit() / 1000));
        if (at != std::u16string::npos)
            message.replace(at, 2, seconds);
    } else {
        message = Lang("SyncFailed");
        for (const std::string& line : sync_.LastLines())
            message += u"\n" + Utf8ToUtf16(line);
    }
    MessagePage::Tell(window, message);
}

void MainWnd::OnItemNotification(const PimNotification& notification) {
    // Our own synchroniser run or an import: its end reads everything again, once.
    if (sync_.IsRunning() || syncSettling_ || bulkChange_)
        return;
    if (IsSynchronizing()) {
        // A burst of changes during a synchronisation ends in one reload.
        SetTimer(window, kSyncReloadTimer, kSyncReloadDelay);
        if (!syncSeen_) {
            syncSeen_ = true;
            SetTimer(window, kSyncWatchTimer, kSyncWatchPeriod);
        }
        return;
    }
    const int folder = notification.folder;
    if (folder != kFolderCalendar && folder != kFolderTasks && folder != kFolderContacts)
        return;
    PimStore::Instance().ApplyNotification(notification);
    statusBar_.Refresh();
    grid_.RefreshMarkers(true);
    grid_.Redraw(false);
    BroadcastStoreChanged(StoreChange{});
    dayList_.Refresh();
}

void MainWnd::ReloadAfterSync() {
    PimStore::Instance().ClearCache();
    Refresh(true, 0, 0);
}

void MainWnd::OnTimer(UINT_PTR id) {
    if (id == kSyncPollTimer) {
        PollSync();
        return;
    }
    if (id == kSyncSettleTimer) {
        KillTimer(window, kSyncSettleTimer);
        syncSettling_ = false;
        ReloadAfterSync();
        return;
    }
    if (id == kSyncReloadTimer) {
        KillTimer(window, kSyncReloadTimer);
        ReloadAfterSync();
        return;
    }
    if (id == kSyncWatchTimer) {
        if (IsSynchronizing())
            return;
        // The synchronisation has ended: everything is read again.
        KillTimer(window, kSyncWatchTimer);
        syncSeen_ = false;
        ReloadAfterSync();
        return;
    }
    DialogWnd::OnTimer(id);
}

bool MainWnd::OnCommandText(const std::u16string& text) {
    BroadcastCloseAll(true);
    if (!text.empty())
        ProcessCommand(text);
    // Reminders that came while the program was in the background.
    reminders_.BroughtToFront();
    return true;
}

LRESULT MainWnd::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == bulkChangeMessage_ && bulkChangeMessage_ != 0) {
        bulkChange_ = wParam != 0;
        if (!bulkChange_) {
            // The last change reports arrive within the settling time.
            syncSettling_ = true;
            SetTimer(window, kSyncSettleTimer, kSyncSettleDelay);
        }
        return 0;
    }
    return DialogWnd::WindowProc(hwnd, message, wParam, lParam);
}

void MainWnd::OnClose() {
    router_.CloseAll();
    DestroyWindow(window);
    PostQuitMessage(0);
}

LRESULT MainWnd::OnNotify(UINT_PTR, NMHDR* header) {
    if (!header)
        return 0;
    const MonthGridModel& model = grid_.Model();
    switch (header->code) {
    case NM_DAY_SELECTED:
    case NM_MONTH_CHANGED:
        PimStore::Instance().FillMonth(model.Year(), model.Month(), true, true);
        if (splitView_)
            dayList_.ShowDay(model.Year(), model.Month(), model.SelectedDay());
        return 0;
    case NM_MONTH_BAR_TAP:
        OpenMonthPicker();
        return 0;
    case NM_YEAR_BAR_TAP:
        OpenYearPicker();
        return 0;
    case NM_TOP_BAR_TAP:
        MinimizeFromTopBar();
        return 0;
    default:
        return 0;
    }
}

void MainWnd::MinimizeFromTopBar() {
    ShowWindow(window, SW_MINIMIZE);
    if (Settings::GetCloseOnMinimize())
        PostQuitMessage(0);
}

void MainWnd::OnCommand(UINT, UINT, HWND control) {
    const DateTime date = SelectedDate();
    switch (menuBar_.IndexOf(control)) {
    case 0:
        OpenMainMenu();
        break;
    case 1:
        router_.OpenFilter(window);
        break;
    case 2:
        router_.OpenTasksView(date);
        break;
    case 3:
        router_.ShowWeekView(date);
        break;
    case 4:
        router_.ShowAgendaView(DateTime::Today());
        break;
    default:
        break;
    }
}

void MainWnd::OpenMainMenu() {
    std::vector<ContextMenuItem> items = {
        {Lang("Today"), kCmdToday},       {Lang("config.SplitMonthView"), kCmdToggleSplit, splitView_},
        {Lang("YearView"), kCmdYearView}, {Lang("QuickView"), kCmdQuickView},
        {Lang("Config"), kCmdConfig},     {Lang("About"), kCmdAbout},
        {Lang("Exit"), kCmdExit}};
    if (CanSync())
        items.insert(items.begin() + 4, {Lang("Sync"), kCmdSync});
    auto* menu = new ContextMenu(this, std::move(items), -1); // owns itself until chosen or closed
    menu->Open();
}

void MainWnd::OpenMonthPicker() {
    std::vector<ContextMenuItem> items;
    for (int month = 1; month <= 12; ++month)
        items.push_back(
            {Locale::MonthName(month, false, true), kCmdMonthBase + month, month == grid_.Model().Month()});
    auto* menu = new ContextMenu(this, std::move(items), -1);
    menu->SetPreselected(grid_.Model().Month() - 1);
    menu->Open();
}

void MainWnd::OpenYearPicker() {
    std::vector<ContextMenuItem> items;
    const int shown = grid_.Model().Year();
    for (int year = shown - kYearPickerSpan; year <= shown + kYearPickerSpan; ++year) {
        const std::string text = std::to_string(year);
        items.push_back({std::u16string(text.begin(), text.end()), kCmdYearBase + static_cast<UINT>(year),
                         year == shown});
    }
    auto* menu = new ContextMenu(this, std::move(items), 1);
    menu->SetPreselected(kYearPickerSpan);
    menu->Open();
}

void MainWnd::OnDayListTap(const PimItem& item, double dayDate, bool inCheckZone) {
    const DWORD now = GetTickCount();
    if (tapSeen_ && now - lastTap_ < ViewPage::kTapGuard)
        return;
    tapSeen_ = true;
    lastTap_ = now;
    selectedItem_ = item;
    selectedDay_ = dayDate;
    tappedInCheckZone_ = inCheckZone;
    // Acted on once the list has let go of the pointer.
    PostMessage(window, WM_DEFERRED_COMMAND, kCmdOpenTappedItem, 0);
}

void MainWnd::OnDayListHold(const PimItem& item, double dayDate) {
    const DWORD now = GetTickCount();
    if (tapSeen_ && now - lastTap_ < ViewPage::kTapGuard)
        return;
    tapSeen_ = true;
    lastTap_ = now;
    if (item.oid <= 0 || item.kind == PimItem::kBirthday || item.kind == PimItem::kAnniversary)
        return;
    selectedItem_ = item;
    selectedDay_ = dayDate;
    auto* menu = new ContextMenu(this, ItemCommands::ItemMenu()); // owns itself until chosen or closed
    menu->Open();
}

void MainWnd::OpenTappedItem() {
    if (!selectedItem_)
        return;
    const PimItem item = *selectedItem_;
    if (item.IsTask() && tappedInCheckZone_) {
        if (ItemCommands::ToggleComplete(window, item) == ItemCommands::Outcome::Changed)
            AfterItemChange();
    } else if (item.kind == PimItem::kBirthday || item.kind == PimItem::kAnniversary) {
        PlatformHandoff::OpenContact(window, item);
    } else if (item.oid != -1 && item.oid != -2) {
        router_.OpenItemDetail(item.oid, item.IsTask(), DateTime(selectedDay_));
    }
}

void MainWnd::AfterItemChange() {
    statusBar_.Refresh();
    grid_.RefreshMarkers(true);
    grid_.Redraw(false);
    dayList_.Refresh();
    BroadcastStoreChanged(StoreChange{});
}

void MainWnd::OnDeferredCommand(UINT id) {
    const MonthGridModel& model = grid_.Model();
    if (id == kCmdOpenTappedItem) {
        OpenTappedItem();
        return;
    }
    if (id <= kCmdMonthBase || (id > kCmdMonthBase + 12 && id < kCmdYearBase)) {
        // The day list's pop-ups and the "New" menu: the commands every view runs.
        const PimItem* item = selectedItem_ ? &*selectedItem_ : nullptr;
        const DateTime day = selectedDay_ > 0 ? DateTime(selectedDay_) : SelectedDate();
        if (ItemCommands::Run(window, id, item, day) == ItemCommands::Outcome::Changed)
            AfterItemChange();
        return;
    }
    if (id == kCmdToday) {
        ShowDate(DateTime::FromSystemTime(Clock::Current().GetLocalTime()));
    } else if (id == kCmdToggleSplit) {
        SetSplitView(!splitView_);
    } else if (id == kCmdYearView) {
        router_.OpenYearView(SelectedDate());
    } else if (id == kCmdQuickView) {
        router_.OpenQuickView();
    } else if (id == kCmdSync) {
        StartSync();
    } else if (id == kCmdConfig) {
        router_.OpenConfig(window);
    } else if (id == kCmdAbout) {
        router_.OpenAbout(window);
    } else if (id == kCmdExit) {
        SendMessage(window, WM_CLOSE, 0, 0);
    } else if (id > kCmdMonthBase && id <= kCmdMonthBase + 12) {
        const int month = static_cast<int>(id - kCmdMonthBase);
        ShowDate(
            DateTime(model.Year(), month, std::min(model.SelectedDay(), DaysInMonth(model.Year(), month))));
    } else if (id >= kCmdYearBase + 100 && id <= kCmdYearBase + 9999) {
        const int year = static_cast<int>(id - kCmdYearBase);
        ShowDate(
            DateTime(year, model.Month(), std::min(model.SelectedDay(), DaysInMonth(year, model.Month()))));
    }
}

HWND MainWnd::ProcessCommand(const std::u16string& text) {
    if (commandObserver_)
        commandObserver_(text);
    // A calendar file to import (from the command line or the desktop's handler).
    if (text.rfind(kImportCommand, 0) == 0) {
        const std::u16string path = text.substr(std::char_traits<char16_t>::length(kImportCommand));
        HWND page = path.empty() ? nullptr : router_.OpenImport(Utf16ToUtf8(path));
        return page ? page : window;
    }
    const CommandRequest request = CommandRequest::Parse(text);
    if (request.kind == CommandRequest::Kind::FirstRun) {
        std::string error;
        if (!DefaultApps::Replace(DefaultApps::Role::Calendar, error) ||
            !DefaultApps::Replace(DefaultApps::Role::Tasks, error))
            Log::Warning("firstrun: %s", error.c_str());
        return window;
    }
    if (request.kind == CommandRequest::Kind::Restore) {
        ShowWindow(window, SW_SHOWNORMAL);
        SetForegroundWindow(window);
        const DateTime date = SelectedDate();
        switch (Settings::GetLastViewMode()) {
        case 1:
            return router_.ShowWeekView(date) ? GetActiveWindow() : window;
        case 2:
            return router_.ShowAgendaView(date) ? GetActiveWindow() : window;
        default:
            router_.HideWeekAndAgenda();
            return window;
        }
    }

    int mode = request.mode;
    int view = request.view;
    if (request.oid != 0 && request.oidGiven) {
        const int kind = PimStore::Instance().GetItemKind(static_cast<std::int32_t>(request.oid));
        if (kind == kItemAppointment) {
            view = CommandRequest::kDetail;
            mode = CommandRequest::kCalendar;
        } else if (kind == kItemTask) {
            view = CommandRequest::kDetail;
            mode = CommandRequest::kTasks;
        }
    }
    // Commands without a mode are ignored.
    if (mode == CommandRequest::kNoMode)
        return nullptr;

    DateTime target = DateTime::FromSystemTime(Clock::Current().GetLocalTime());
    target = DateTime(target.GetYear(), target.GetMonth(), target.GetDay());
    if (request.hasDate) {
        const DateTime given(request.date.year, request.date.month, request.date.day);
        if (given.IsValid() && request.date.year >= 100)
            target = given;
        else
            Log::Warning("command date %04d%02d%02d is no date; using today", request.date.year,
                         request.date.month, request.date.day);
    } else if (request.dayOffset != 0) {
        // Far offsets are clamped to the calendar's years.
        const long offset = std::clamp(request.dayOffset, -3000000L, 3000000L);
        const DateTime moved = target + DateTimeSpan(static_cast<int>(offset), 0, 0, 0);
        if (moved.IsValid() && moved.GetYear() >= 100 && moved.GetYear() <= 9999)
            target = moved;
    }

    ShowDate(target);
    HWND opened = nullptr;
    const auto oid = static_cast<std::int32_t>(request.oid);
    if (mode == CommandRequest::kCalendar) {
        if (request.noParam)
            Refresh(true, 0, 0);
        switch (view) {
        case CommandRequest::kDetail:
            opened = router_.OpenItemDetail(oid, false, DateTime());
            break;
        case CommandRequest::kDay:
            opened = router_.OpenDayView(target);
            break;
        case CommandRequest::kAgenda:
            opened = router_.ShowAgendaView(target);
            break;
        case CommandRequest::kMonth:
            router_.HideWeekAndAgenda();
            break;
        case CommandRequest::kWeek:
            opened = router_.ShowWeekView(target);
            break;
        default:
            break;
        }
        if (request.newItem)
            opened = router_.NewAppointment(target, opened ? opened : window);
        return opened ? opened : window;
    }
    // Tasks.
    if (view == CommandRequest::kDetail)
        opened = router_.OpenItemDetail(oid, true, DateTime());
    else if (view == CommandRequest::kDay && router_.DayViewCount() == 0)
        opened = router_.OpenDayView(target);
    if (request.newItem)
        return router_.NewTask(target, window);
    if (opened)
        return opened;
    if (router_.TasksViewCount() > 0)
        return nullptr;
    opened = router_.OpenTasksView(target);
    return opened ? opened : window;
}

} // namespace mirodate
