// The main window on the real window system, headless, with the virtual
// clock at 15 March 2024 10:00 and a real vdir store on a temporary folder.
#include "app/MainWnd.h"
#include "app/Application.h"
#include "app/SplashScreen.h"
#include "data/PimStore.h"
#include "platform/InstanceServer.h"
#include "platform/PowerStatus.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/RegisteredMessages.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/WindowClasses.h"

#include <chrono>
#include <csignal>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace mirodate::test {
namespace {

// Counts the broadcasts that tell open views to reload.
class ReloadCounter : public BaseWnd {
public:
    int reloads = 0;
    HWND Open() {
        message_ = RegisterWindowMessage(kPoomDataChangedName);
        return Create(nullptr, "MIRODATE::TESTCOUNTER", WS_POPUP, u"counter", 0, 0, 1, 1);
    }
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == message_)
            ++reloads;
        return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
    }

private:
    UINT message_ = 0;
};

class MainWndTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScreenBars::Reset();
        Settings::SetBool("ShowWeekNumber", false);
        VdirSource::Options options;
        options.createIfMissing = true;
        options.useIndex = false;
        auto source = std::make_unique<VdirSource>(dir_ + "/store", options);
        source_ = source.get();
        WindowManager* windows = windows_.get();
        ASSERT_TRUE(PimStore::Instance().Open(std::move(source), [this, windows](const PimNotification& n) {
            if (HWND main = mainHwnd_.load())
                windows->PostMessage(main, n.message, n.oid, n.folder);
        }));
    }
    void TearDown() override {
        mainHwnd_ = nullptr;
        main_.reset();
        PimStore::Instance().Close();
        UiTest::TearDown();
    }
    void StartMain(const std::u16string& command = u"") {
        main_ = std::make_unique<MainWnd>();
        ASSERT_TRUE(main_->Create(command));
        mainHwnd_ = main_->GetHwnd();
        WaitForMarkers();
    }
    std::int32_t AddAppointment(int year, int month, int day, const std::u16string& subject) {
        PimRecord record;
        record.itemKind = kItemAppointment;
        record.subject = subject;
        record.start = DateTime(year, month, day, 9, 0, 0).ToDate();
        record.end = DateTime(year, month, day, 10, 0, 0).ToDate();
        EXPECT_EQ(source_->Save(record, kFolderCalendar), SaveResult::Saved);
        return record.oid;
    }
    // Runs the loop until the marker workers are done and their results are in.
    void WaitForMarkers() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        do {
            windows_->RunUntilIdle();
            if (MarkerWorker::RunningJobs() == 0 && !windows_->TimeUntilNextTimer().has_value())
                break;
            windows_->WaitOnDisplay(20);
            windows_->RunUntilIdle();
        } while (MarkerWorker::RunningJobs() > 0 && std::chrono::steady_clock::now() < deadline);
        windows_->RunUntilIdle();
    }
    // A point of the grid's cell for a day of the shown month, in screen coordinates.
    POINT CellPoint(int day, int dx = 0, int dy = 0) {
        return CellIndexPoint(Model().CellOfDay(day), dx, dy);
    }
    POINT CellIndexPoint(int index, int dx, int dy) {
        RECT grid;
        GetWindowRect(main_->Grid().GetHwnd(), &grid);
        const auto g = MonthGridModel::Layout(grid.Width(), grid.Height());
        const RECT cell = g.Cell(index);
        return {grid.left + (dx >= 0 ? cell.left + dx : cell.right + dx),
                grid.top + (dy >= 0 ? cell.top + dy : cell.bottom + dy)};
    }
    const MonthGridModel& Model() { return main_->Grid().Model(); }

    VdirSource* source_ = nullptr;
    std::unique_ptr<MainWnd> main_;
    std::atomic<HWND> mainHwnd_{nullptr};
};

TEST_F(MainWndTest, GridShowsMonthsWithTheirLengthsAndFirstDays) {
    StartMain(u"calendar -d20240901"); // 1 September 2024 is a Sunday, the first day in this locale
    EXPECT_EQ(Model().LeadingDays(), 0);
    EXPECT_EQ(Model().Cells()[0].day, 1);
    // The first cell's number is drawn in the month's colour, not the neighbours'.
    const POINT first = CellPoint(1);
    const COLORREF neighbour = main_->Grid().Colors().dayGridTextNextPrevMonth;
    bool monthText = false;
    for (int y = first.y; y < first.y + 40; ++y)
        for (int x = first.x; x < first.x + 60; ++x) {
            EXPECT_NE(FramePixel(x, y), neighbour) << x << "," << y;
            if (FramePixel(x, y) == main_->Grid().Colors().dayGridText)
                monthText = true;
        }
    EXPECT_TRUE(monthText);

    main_->ProcessCommand(u"calendar -d20000229");
    EXPECT_EQ(Model().SelectedDay(), 29);
    EXPECT_EQ(Model().Cells()[Model().CellOfDay(29) + 1].day, 1);
    main_->ProcessCommand(u"calendar -d21000215");
    EXPECT_EQ(Model().Cells()[Model().CellOfDay(28) + 1].month, 3);
    // 29 February 1900 is no date: the command shows today.
    main_->ProcessCommand(u"calendar -d19000229");
    EXPECT_EQ(Model().Year(), 2024);
    EXPECT_EQ(Model().Month(), 3);
    EXPECT_EQ(Model().SelectedDay(), 15);
}

TEST_F(MainWndTest, DaysWithItemsGetMarkers) {
    AddAppointment(2024, 3, 20, u"Dentist");
    StartMain();
    const COLORREF marker = main_->Grid().Colors().appointmentIndicator;
    // The triangle sits in the cell's top right corner.
    const POINT marked = CellPoint(20, -4, 3);
    const POINT plain = CellPoint(21, -4, 3);
    EXPECT_EQ(FramePixel(marked.x, marked.y), marker);
    EXPECT_NE(FramePixel(plain.x, plain.y), marker);

    // An item written later reaches the grid through the store's change report.
    AddAppointment(2024, 3, 21, u"Haircut");
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (FramePixel(plain.x, plain.y) != marker && std::chrono::steady_clock::now() < deadline) {
        windows_->WaitOnDisplay(20);
        WaitForMarkers();
    }
    EXPECT_EQ(FramePixel(plain.x, plain.y), marker);
}

TEST_F(MainWndTest, SwipesStepMonthsAndTapsSelectDays) {
    AddAppointment(2024, 3, 20, u"Dentist");
    StartMain();
    const int step = MonthGesture::kStepDistance * 2; // high resolution
    Pointer(DisplayEvent::Type::PointerDown, 240, 300);
    Pointer(DisplayEvent::Type::PointerMove, 240, 300 - step + 1);
    EXPECT_EQ(Model().Month(), 3);
    Pointer(DisplayEvent::Type::PointerMove, 240, 300 - step);
    EXPECT_EQ(Model().Month(), 4);
    Pointer(DisplayEvent::Type::PointerMove, 240, 300 - 2 * step); // one step per gesture
    Pointer(DisplayEvent::Type::PointerUp, 240, 300 - 2 * step);
    EXPECT_EQ(Model().Month(), 4);
    // A horizontal swipe to the right goes back a year.
    Pointer(DisplayEvent::Type::PointerDown, 100, 300);
    Pointer(DisplayEvent::Type::PointerMove, 100 + step, 300);
    Pointer(DisplayEvent::Type::PointerUp, 100 + step, 300);
    EXPECT_EQ(Model().Year(), 2023);
    EXPECT_EQ(Model().Month(), 4);

    main_->ProcessCommand(u"calendar -d20240301");
    WaitForMarkers();
    windows_->RunFor(300);
    const POINT day20 = CellPoint(20, 20, 20);
    Tap(day20.x, day20.y);
    EXPECT_EQ(Model().SelectedDay(), 20);
    ASSERT_EQ(main_->DayList().Items().size(), 1u);
    EXPECT_EQ(main_->DayList().Items()[0].subject, u"Dentist");
    EXPECT_EQ(main_->DayList().ItemCount(), 1);
    EXPECT_TRUE(IsWindowVisible(main_->DayList().GetHwnd()));

    // A tap on a day of the next month switches to it.
    windows_->RunFor(300);
    const POINT nextMonth = CellIndexPoint(Model().CellOfDay(31) + 1, 20, 20); // the cell after 31 March
    Tap(nextMonth.x, nextMonth.y);
    EXPECT_EQ(Model().Month(), 4);
    EXPECT_EQ(Model().SelectedDay(), 1);
}

TEST_F(MainWndTest, BurstDuringSynchronisationEndsInOneReload) {
    StartMain();
    ReloadCounter counter;
    ASSERT_TRUE(counter.Open());
    const std::string fake = dir_ + "/vdirsyncer";
    ASSERT_EQ(symlink("/bin/sleep", fake.c_str()), 0);
    const pid_t sync = fork();
    if (sync == 0) {
        execl(fake.c_str(), fake.c_str(), "60", static_cast<char*>(nullptr));
        _exit(127);
    }
    ASSERT_GT(sync, 0);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!source_->IsSynchronizing() && std::chrono::steady_clock::now() < deadline)
        windows_->WaitOnDisplay(10);
    ASSERT_TRUE(source_->IsSynchronizing());

    for (int i = 0; i < 50; ++i) {
        PostMessage(main_->GetHwnd(), kMsgItemChangedRemote, static_cast<WPARAM>(1000 + i), kFolderCalendar);
        windows_->RunFor(100);
    }
    EXPECT_EQ(counter.reloads, 0);
    windows_->RunFor(MainWnd::kSyncReloadDelay - 100 - 1);
    EXPECT_EQ(counter.reloads, 0);
    windows_->RunFor(1);
    EXPECT_EQ(counter.reloads, 1);
    windows_->RunFor(3000);
    EXPECT_EQ(counter.reloads, 1);

    // The end of the synchronisation reads everything again.
    kill(sync, SIGTERM);
    waitpid(sync, nullptr, 0);
    windows_->RunFor(MainWnd::kSyncWatchPeriod);
    EXPECT_EQ(counter.reloads, 2);
    // Without a synchronisation every report is answered at once.
    PostMessage(main_->GetHwnd(), kMsgItemChangedRemote, 5, kFolderCalendar);
    windows_->RunUntilIdle();
    EXPECT_EQ(counter.reloads, 3);
    WaitForMarkers();
}

TEST_F(MainWndTest, TopBarTapMinimisesOnlyWhenItStartsThere) {
    StartMain();
    const int bar = ScreenBars::TopBarHeight();
    Pointer(DisplayEvent::Type::PointerDown, 240, 300);
    Pointer(DisplayEvent::Type::PointerUp, 240, bar / 2);
    EXPECT_TRUE(IsWindowVisible(main_->GetHwnd()));
    windows_->RunFor(300);
    Tap(240, bar / 2);
    EXPECT_FALSE(IsWindowVisible(main_->GetHwnd()));
    EXPECT_FALSE(windows_->IsQuitPending());
    // A later start brings it back.
    main_->ProcessCommand(u"reactivate");
    EXPECT_TRUE(IsWindowVisible(main_->GetHwnd()));
    Settings::SetBool("CloseOnMinimize", true);
    Tap(240, bar / 2);
    EXPECT_TRUE(windows_->IsQuitPending());
}

TEST_F(MainWndTest, CommandsMoveTheMonthView) {
    StartMain();
    main_->ProcessCommand(u"calendar -vd -d20091231");
    EXPECT_EQ(Model().Year(), 2009);
    EXPECT_EQ(Model().Month(), 12);
    EXPECT_EQ(Model().SelectedDay(), 31);
    EXPECT_EQ(main_->ProcessCommand(u"-d20100101"), nullptr); // no mode: ignored
    EXPECT_EQ(Model().Year(), 2009);
    main_->ProcessCommand(u"calendar -d-3 -vw");
    EXPECT_EQ(Model().Month(), 3);
    EXPECT_EQ(Model().SelectedDay(), 12);
    main_->ProcessCommand(u"tasks -d5");
    EXPECT_EQ(Model().SelectedDay(), 20);
    EXPECT_EQ(main_->DayList().Items().size(), 0u);
    // An item's command opens its detail view over its day.
    const std::int32_t oid = AddAppointment(2024, 7, 4, u"Fireworks");
    const std::string number = std::to_string(oid);
    main_->ProcessCommand(u"oid " + std::u16string(number.begin(), number.end()));
    EXPECT_EQ(Model().Month(), 7);
    EXPECT_EQ(Model().SelectedDay(), 4);
    EXPECT_NE(main_->Router().Detail(), nullptr);
    WaitForMarkers();
}

TEST_F(MainWndTest, SecondProcessHandsItsCommandOver) {
    StartMain();
    const std::string socketPath = dir_ + "/link.sock";
    InstanceServer server;
    InstanceServer::Handler handler;
    handler.hasWindow = [](const std::string& c, const std::string&) { return c == kMainWndClass; };
    handler.broadcast = [](const std::string&) {};
    handler.bringToFront = [](const std::string&, const std::string&) {};
    handler.close = [](const std::string&, const std::string&) {};
    HWND main = main_->GetHwnd();
    WindowManager* windows = windows_.get();
    handler.copyData = [windows, main](std::uint32_t, const std::string& bytes) -> std::int32_t {
        windows->PostTask([windows, main, bytes] {
            COPYDATASTRUCT data;
            data.cbData = static_cast<DWORD>(bytes.size());
            data.lpData = bytes.data();
            windows->SendMessage(main, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
        });
        return 1;
    };
    ASSERT_TRUE(server.Start(socketPath, handler));
    const char* program = std::getenv("MIRODATE_BIN");
    if (program && access(program, X_OK) == 0) {
        const std::string command = std::string(program) + " --socket " + socketPath + " calendar -d20100101";
        EXPECT_EQ(std::system(command.c_str()), 0);
    } else {
        EXPECT_EQ(Application::HandOver(socketPath, u"calendar -d20100101"),
                  Application::HandOverResult::HandedOver);
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (Model().Year() != 2010 && std::chrono::steady_clock::now() < deadline) {
        windows_->WaitOnDisplay(20);
        windows_->RunUntilIdle();
    }
    server.Stop();
    EXPECT_EQ(Model().Year(), 2010);
    EXPECT_EQ(Model().Month(), 1);
    EXPECT_EQ(Model().SelectedDay(), 1);
    WaitForMarkers();
}

TEST_F(MainWndTest, ScreenResetLaysThePageOutAgain) {
    StartMain();
    DisplayEvent resize;
    resize.type = DisplayEvent::Type::Resize;
    resize.width = 640;
    resize.height = 480;
    display_->Inject(resize);
    windows_->RunUntilIdle();
    RECT grid, menu;
    GetWindowRect(main_->Grid().GetHwnd(), &grid);
    GetWindowRect(main_->Menu().Button(4)->GetHwnd(), &menu);
    EXPECT_EQ(grid.Width(), 640);
    EXPECT_EQ(menu.right, 640);
    EXPECT_EQ(menu.bottom, 480);
    main_->SetSplitView(false);
    GetWindowRect(main_->Grid().GetHwnd(), &grid);
    EXPECT_EQ(grid.bottom, menu.top);
    EXPECT_FALSE(IsWindowVisible(main_->DayList().GetHwnd()));
    EXPECT_FALSE(Settings::GetSplitMonthView());
    WaitForMarkers();
}

TEST_F(MainWndTest, SplashShowsItsProgressBar) {
    int loads = 0;
    SplashScreen splash(u"", [&loads](SplashScreen&) { ++loads; });
    ASSERT_TRUE(splash.CreateCentered());
    RECT window;
    GetWindowRect(splash.GetHwnd(), &window);
    EXPECT_EQ(window.Width(), 220);
    EXPECT_EQ(window.left, 240 - 110);
    const RECT bar = SplashScreen::ProgressBarRect(window.Width(), window.Height(), true);
    const int y = window.top + (bar.top + bar.bottom) / 2;
    EXPECT_EQ(FramePixel(window.left + bar.left + 4, y), SplashScreen::kBarFill);
    EXPECT_EQ(FramePixel(window.left + bar.right - 4, y), SplashScreen::kBarBackground);
    splash.SetProgress(100);
    EXPECT_EQ(FramePixel(window.left + bar.right - 4, y), SplashScreen::kBarFill);
    windows_->RunFor(SplashScreen::kLoadTimerPeriod * 3);
    EXPECT_EQ(loads, 1); // the load step runs once
}

TEST(PowerStatus, ReadsTheFirstBattery) {
    char pattern[] = "/tmp/mirodate-power-XXXXXX";
    const std::string root = mkdtemp(pattern);
    auto write = [&](const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
        std::ofstream(root + path) << text;
    };
    EXPECT_FALSE(PowerStatus::BatteryPercent(root).has_value());
    write("/AC/type", "Mains\n");
    write("/AC/capacity", "100\n");
    EXPECT_FALSE(PowerStatus::BatteryPercent(root).has_value());
    write("/BAT1/type", "Battery\n");
    write("/BAT1/capacity", "garbage\n");
    write("/BAT1/energy_now", "30000\n");
    write("/BAT1/energy_full", "40000\n");
    EXPECT_EQ(PowerStatus::BatteryPercent(root), 75);
    write("/BAT0/type", "Battery\n");
    write("/BAT0/capacity", "57\n");
    EXPECT_EQ(PowerStatus::BatteryPercent(root), 57);
    write("/BAT0/capacity", "250\n");
    EXPECT_EQ(PowerStatus::BatteryPercent(root), 100);
    std::filesystem::remove_all(root);
}

} // namespace
} // namespace mirodate::test
