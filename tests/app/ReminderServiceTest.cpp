// Reminders firing in the running program: the main window with its
// reminder service on the real window system, headless, the virtual clock
// at 15 March 2024 10:00 (UTC) and a real vdir store. The desktop is the
// one outside part: its notifications are recorded.
#include "app/ReminderService.h"
#include "app/MainWnd.h"
#include "app/MarkerWorker.h"
#include "data/PimStore.h"
#include "forms/ReminderPage.h"
#include "platform/DesktopNotifier.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/ContextMenu.h"
#include "ui/ScreenBars.h"
#include "views/ItemDetailView.h"

#include <chrono>
#include <cmath>
#include <fstream>
#include <thread>

namespace mirodate::test {
namespace {

class RecordingNotifier : public DesktopNotifier {
public:
    bool Show(const std::string& summary, const std::string& body) override {
        shown.emplace_back(summary, body);
        return true;
    }
    std::vector<std::pair<std::string, std::string>> shown;
};

constexpr std::uint32_t kSecond = 1000;
constexpr std::uint32_t kMinute = 60 * kSecond;

class ReminderServiceTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScreenBars::Reset();
        DesktopNotifier::SetInstance(&notifier_);
        std::filesystem::create_directories(Root() + "/calendar");
        std::filesystem::create_directories(Root() + "/tasks");
    }
    void TearDown() override {
        Stop();
        DesktopNotifier::SetInstance(nullptr);
        UiTest::TearDown();
    }
    std::string Root() const { return dir_ + "/store"; }
    void WriteFile(const std::string& relative, const std::string& text) const {
        const std::string path = Root() + "/" + relative;
        std::ofstream(path + ".part", std::ios::binary) << text;
        std::filesystem::rename(path + ".part", path);
    }
    std::string ReadFile(const std::string& relative) const {
        std::ifstream file(Root() + "/" + relative, std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    }
    static std::string Event(const std::string& uid, const std::string& subject, const std::string& start,
                             const std::string& extra = "") {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other//EN\r\nBEGIN:VEVENT\r\nUID:" + uid +
               "\r\nSUMMARY:" + subject + "\r\nLOCATION:Room 4\r\nDTSTART:" + start +
               "\r\nDURATION:PT1H\r\n" + extra +
               "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:x\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n"
               "END:VEVENT\r\nEND:VCALENDAR\r\n";
    }

    static constexpr std::uint32_t kFirstScheduleMs = 10;

    // The program's start: a store over the folder, the main window.
    void Start() {
        VdirSource::Options options;
        options.useIndex = false;
        WindowManager* windows = windows_.get();
        ASSERT_TRUE(PimStore::Instance().Open(std::make_unique<VdirSource>(Root(), options),
                                              [this, windows](const PimNotification& n) {
                                                  if (HWND main = mainHwnd_.load())
                                                      windows->PostMessage(main, n.message, n.oid, n.folder);
                                              }));
        main_ = std::make_unique<MainWnd>();
        ASSERT_TRUE(main_->Create(u""));
        mainHwnd_ = main_->GetHwnd();
        Settle();
        // The first schedule follows the first frame, on the shortest timer.
        Advance(kFirstScheduleMs);
    }
    void Stop() {
        mainHwnd_ = nullptr;
        main_.reset();
        PimStore::Instance().Close();
        windows_->RunUntilIdle();
    }
    void Settle() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        windows_->RunUntilIdle();
        while (MarkerWorker::RunningJobs() > 0 && std::chrono::steady_clock::now() < deadline) {
            windows_->WaitOnDisplay(20);
            windows_->RunUntilIdle();
        }
        windows_->RunUntilIdle();
    }
    void Advance(std::uint32_t ms) {
        Clock::Current().Advance(ms);
        windows_->RunUntilIdle();
    }
    // Runs the loop until `done`, for changes that come from the folder watcher.
    template <typename F> bool WaitFor(F done) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        while (!done() && std::chrono::steady_clock::now() < deadline) {
            windows_->WaitOnDisplay(20);
            windows_->RunUntilIdle();
        }
        return done();
    }
    ReminderService& Service() { return main_->Reminders(); }
    ReminderPage* Page() { return Service().Page(); }
    void TapCentre(const RECT& rect) { Tap((rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2); }

    RecordingNotifier notifier_;
    std::unique_ptr<MainWnd> main_;
    std::atomic<HWND> mainHwnd_{nullptr};
};

TEST_F(ReminderServiceTest, FiresOnTheMinuteAndNotAgainAfterDismissalAndRestart) {
    WriteFile("calendar/a.ics", Event("a", "Dentist", "20240315T103000Z"));
    Start();
    EXPECT_TRUE(notifier_.shown.empty());
    EXPECT_EQ(Page(), nullptr);
    EXPECT_NEAR(Service().NextMoment(), DateTime(2024, 3, 15, 10, 15, 0).ToDate(), 1e-7);
    Advance(15 * kMinute - kSecond);
    EXPECT_TRUE(notifier_.shown.empty());
    Advance(kSecond); // 10:15:00
    ASSERT_EQ(notifier_.shown.size(), 1u);
    EXPECT_EQ(notifier_.shown[0].first, "Dentist");
    EXPECT_NE(notifier_.shown[0].second.find("10:30"), std::string::npos) << notifier_.shown[0].second;
    EXPECT_NE(notifier_.shown[0].second.find("Room 4"), std::string::npos);
    ASSERT_NE(Page(), nullptr);
    ASSERT_EQ(Page()->Reminders().size(), 1u);
    EXPECT_TRUE(IsWindowVisible(Page()->GetHwnd()));

    TapCentre(Page()->DismissButtonRect());
    EXPECT_EQ(Page(), nullptr);
    EXPECT_TRUE(Service().Due().empty());
    EXPECT_NE(ReadFile("calendar/a.ics").find("ACKNOWLEDGED:20240315T101500Z"), std::string::npos);
    Advance(30 * kMinute);
    EXPECT_EQ(notifier_.shown.size(), 1u);

    // A new start over the same folder, after the moment.
    Stop();
    Start();
    Advance(kMinute);
    EXPECT_EQ(notifier_.shown.size(), 1u);
    EXPECT_EQ(Page(), nullptr);
}

TEST_F(ReminderServiceTest, SnoozeBringsTheReminderBackAfterFiveMinutes) {
    WriteFile("calendar/a.ics", Event("a", "Standup", "20240315T103000Z"));
    Start();
    Advance(15 * kMinute);
    ASSERT_NE(Page(), nullptr);
    // "Snooze" offers its choices; the page acts on the one chosen.
    TapCentre(Page()->SnoozeButtonRect());
    Advance(kSecond);
    ASSERT_EQ(ContextMenu::OpenCount(), 1);
    const HWND menu = FindWindow(nullptr, kContextMenuTitle);
    ASSERT_TRUE(menu);
    // The first choice, 5 minutes, taken with the menu's keys.
    SendMessage(menu, WM_KEYDOWN, VK_DOWN, 0);
    SendMessage(menu, WM_KEYDOWN, VK_RETURN, 0);
    Advance(kSecond);
    EXPECT_EQ(ContextMenu::OpenCount(), 0);
    EXPECT_EQ(Page(), nullptr);
    EXPECT_NE(ReadFile("calendar/a.ics").find("RELTYPE=SNOOZE"), std::string::npos);
    // Five minutes after the choice (made a second or two after 10:15).
    const double back = Service().NextMoment();
    EXPECT_GT(back, DateTime(2024, 3, 15, 10, 20, 0).ToDate());
    EXPECT_LT(back, DateTime(2024, 3, 15, 10, 20, 3).ToDate());
    const auto untilBack =
        static_cast<std::uint32_t>(std::llround((back - ReminderService::Now()) * 86400000.0));
    Advance(untilBack - kSecond);
    EXPECT_EQ(notifier_.shown.size(), 1u);
    Advance(kSecond);
    ASSERT_EQ(notifier_.shown.size(), 2u);
    ASSERT_NE(Page(), nullptr);
    EXPECT_TRUE(Page()->Reminders()[0].snoozed);
    TapCentre(Page()->DismissButtonRect());
    Advance(60 * kMinute);
    EXPECT_EQ(notifier_.shown.size(), 2u);
}

TEST_F(ReminderServiceTest, OpenShowsTheItemAndTheReminderStays) {
    WriteFile("calendar/a.ics", Event("a", "Planning", "20240315T103000Z"));
    WriteFile("calendar/b.ics", Event("b", "Lunch", "20240315T103000Z"));
    Start();
    Advance(15 * kMinute);
    ASSERT_NE(Page(), nullptr);
    ASSERT_EQ(Page()->Reminders().size(), 2u);
    ASSERT_EQ(notifier_.shown.size(), 2u);
    TapCentre(Page()->OpenButtonRect());
    ItemDetailView* detail = main_->Router().Detail();
    ASSERT_NE(detail, nullptr);
    EXPECT_TRUE(detail->HasItem());
    EXPECT_TRUE(IsWindowVisible(detail->GetHwnd()));
    ASSERT_NE(Page(), nullptr);
    EXPECT_EQ(Page()->Reminders().size(), 2u);
    // Dismissing one (the detail view is over the page) leaves the other.
    Page()->DismissSelected();
    windows_->RunUntilIdle();
    ASSERT_NE(Page(), nullptr);
    EXPECT_EQ(Page()->Reminders().size(), 1u);
}

TEST_F(ReminderServiceTest, WeeklySeriesFiresOnEachOccurrence) {
    WriteFile("calendar/w.ics", Event("w", "Choir", "20240315T190000Z", "RRULE:FREQ=WEEKLY;COUNT=3\r\n"));
    Start();
    std::vector<std::uint32_t> firedAfterHours;
    for (std::uint32_t hour = 1; hour <= 24 * 21; ++hour) {
        const size_t before = notifier_.shown.size();
        Advance(60 * kMinute);
        if (notifier_.shown.size() > before) {
            firedAfterHours.push_back(hour);
            ASSERT_NE(Page(), nullptr);
            TapCentre(Page()->DismissButtonRect());
        }
    }
    // 18:45 on the 15th, 22nd and 29th: 9, 177 and 345 hours after 10:00,
    // the timer going off at 18:45 within the ninth hour.
    EXPECT_EQ(firedAfterHours, (std::vector<std::uint32_t>{9, 177, 345}));
}

TEST_F(ReminderServiceTest, ReminderChangedByAnotherProgramMoves) {
    WriteFile("calendar/a.ics", Event("a", "Review", "20240315T110000Z"));
    Start();
    EXPECT_NEAR(Service().NextMoment(), DateTime(2024, 3, 15, 10, 45, 0).ToDate(), 1e-7);
    WriteFile("calendar/a.ics", Event("a", "Review", "20240315T120000Z"));
    ASSERT_TRUE(WaitFor([&] { return Service().NextMoment() > DateTime(2024, 3, 15, 11, 0, 0).ToDate(); }));
    EXPECT_NEAR(Service().NextMoment(), DateTime(2024, 3, 15, 11, 45, 0).ToDate(), 1e-7);
    Advance(50 * kMinute);
    EXPECT_TRUE(notifier_.shown.empty());
    Advance(55 * kMinute);
    EXPECT_EQ(notifier_.shown.size(), 1u);
}

TEST_F(ReminderServiceTest, MissedReminderIsShownOnceAtTheNextStart) {
    // The last run handled reminders up to 09:00; the one of 09:15 was missed.
    Settings::SetText(
        ReminderService::kCheckedSetting,
        Utf8ToUtf16(std::to_string(std::llround(DateTime(2024, 3, 15, 9, 0, 0).ToDate() * 86400000.0))));
    WriteFile("calendar/a.ics", Event("a", "Early call", "20240315T093000Z"));
    WriteFile("calendar/b.ics", Event("b", "Yesterday", "20240314T093000Z"));
    Start();
    ASSERT_EQ(notifier_.shown.size(), 1u);
    EXPECT_EQ(notifier_.shown[0].first, "Early call");
    ASSERT_NE(Page(), nullptr);
    EXPECT_EQ(Page()->Reminders().size(), 1u);
    Stop();
    Start();
    EXPECT_EQ(notifier_.shown.size(), 1u);
    EXPECT_EQ(Page(), nullptr);
}

} // namespace
} // namespace mirodate::test
