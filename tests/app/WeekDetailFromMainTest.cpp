// The week view and the detail view as the user reaches them: the week from
// "calendar -vw" and from the main window's button (one instance), its boxes
// filled from the store and moved by a week with the arrow keys, a tap on an
// entry opening its item, "calendar oid N" opening the detail view, its
// "Delete" deleting the file and closing the page, Escape closing it, and the
// week's fill leaving the boxes alone while another fill holds the cache.
#include "app/MainWnd.h"
#include "data/PimStore.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/MessagePage.h"
#include "ui/ScreenBars.h"
#include "ui/WinApi.h"
#include "views/ItemCommands.h"
#include "views/ItemDetailView.h"
#include "views/WeekView.h"

#include <deque>
#include <filesystem>
#include <fstream>
#include <future>
#include <thread>

namespace mirodate::test {
namespace {

class WeekDetailFromMainTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScreenBars::Reset();
        setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        for (const char* folder : {"calendar", "tasks", "contacts"})
            std::filesystem::create_directories(dir_ + "/vdir/" + folder);
        Event("work1", "Budget review", "20240315T090000", "20240315T100000",
              "LOCATION:Room 4\r\nDESCRIPTION:Slides on http://wiki.example.org\\nCall 030 1234 5678\r\n"
              "ORGANIZER;CN=Ann Boss:mailto:ann@example.org\r\nATTENDEE;CN=Jo:mailto:jo@example.org\r\n");
        Event("work2", "Planning", "20240316T090000", "20240316T100000");
        Event("next1", "Retro", "20240319T090000", "20240319T100000");
        MessagePage::SetOpenObserver([this](MessagePage& page) {
            questions.push_back(page.Text());
            const int answer = answers.empty() ? static_cast<int>(page.Buttons().size()) : answers.front();
            if (!answers.empty())
                answers.pop_front();
            page.Answer(answer);
        });
    }
    void TearDown() override {
        MessagePage::SetOpenObserver(nullptr);
        main_.reset();
        PimStore::Instance().Close();
        UiTest::TearDown();
    }
    void Event(const std::string& uid, const std::string& subject, const std::string& start,
               const std::string& end, const std::string& more = "") {
        std::ofstream(Path(uid))
            << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VEVENT\r\nUID:" << uid
            << "\r\nSUMMARY:" << subject << "\r\nDTSTART:" << start << "\r\nDTEND:" << end << "\r\n"
            << more << "END:VEVENT\r\nEND:VCALENDAR\r\n";
    }
    std::string Path(const std::string& uid) const { return dir_ + "/vdir/calendar/" + uid + ".ics"; }
    void Start(const std::u16string& command) {
        VdirSource::Options options;
        options.useIndex = false;
        ASSERT_TRUE(PimStore::Instance().Open(std::make_unique<VdirSource>(dir_ + "/vdir", options)));
        main_ = std::make_unique<MainWnd>();
        ASSERT_TRUE(main_->Create(command));
        windows_->RunUntilIdle();
    }
    void Key(std::uint32_t key) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::KeyDown;
        event.key = key;
        display_->Inject(event);
        event.type = DisplayEvent::Type::KeyUp;
        display_->Inject(event);
        windows_->RunUntilIdle();
    }
    void Wait(std::uint32_t milliseconds) {
        Clock::Current().Advance(milliseconds);
        windows_->RunUntilIdle();
    }
    POINT Centre(HWND window) {
        RECT rect;
        GetWindowRect(window, &rect);
        return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    }
    static std::string Text(TextBoxWnd& box) { return Utf16ToUtf8(box.GetText()); }

    std::unique_ptr<MainWnd> main_;
    std::deque<int> answers;
    std::vector<std::u16string> questions;
};

// 15 March 2024 is a Friday; with the C locale weeks start on Sunday 10 March.
constexpr int kFriday = 5;
constexpr int kSaturday = 6;

TEST_F(WeekDetailFromMainTest, WeekFromCommandAndButtonIsKeptOnceAndMovesByWeeks) {
    Start(u"calendar -vw");
    WeekView* week = main_->Router().Week();
    ASSERT_TRUE(week);
    EXPECT_TRUE(IsWindowVisible(week->GetHwnd()));
    EXPECT_EQ(week->CurrentDate(), DateTime(2024, 3, 10));
    EXPECT_NE(Text(week->DayBox(kFriday)).find("Budget review"), std::string::npos);
    EXPECT_NE(Text(week->DayBox(kSaturday)).find("Planning"), std::string::npos);
    EXPECT_EQ(week->Counts(kFriday).appointments, 1);

    // "MonthView" hides it; the main window's "WeekView" shows the same one.
    const POINT monthButton = Centre(week->Menu().Button(3)->GetHwnd());
    Tap(monthButton.x, monthButton.y);
    EXPECT_FALSE(IsWindowVisible(week->GetHwnd()));
    const POINT weekButton = Centre(main_->Menu().Button(3)->GetHwnd());
    Tap(weekButton.x, weekButton.y);
    EXPECT_EQ(main_->Router().Week(), week);
    EXPECT_TRUE(IsWindowVisible(week->GetHwnd()));

    Key(VK_RIGHT);
    EXPECT_EQ(week->CurrentDate(), DateTime(2024, 3, 17));
    EXPECT_NE(Text(week->DayBox(2)).find("Retro"), std::string::npos);
    EXPECT_EQ(Text(week->DayBox(kFriday)).find("Budget"), std::string::npos);
    Key(VK_LEFT);
    Key(VK_LEFT);
    EXPECT_EQ(week->CurrentDate(), DateTime(2024, 3, 3));
}

TEST_F(WeekDetailFromMainTest, TapOnAWeekEntryOpensItsItemAndEscapeGoesBack) {
    Start(u"calendar -vw");
    WeekView* week = main_->Router().Week();
    ASSERT_TRUE(week);
    TextBoxWnd& box = week->DayBox(kFriday);
    const RECT link = box.LinkRect(0);
    ASSERT_GT(link.Width(), 0);
    RECT boxRect;
    GetWindowRect(box.GetHwnd(), &boxRect);
    Tap(boxRect.left + (link.left + link.right) / 2, boxRect.top + (link.top + link.bottom) / 2);
    Wait(10);
    ItemDetailView* detail = main_->Router().Detail();
    ASSERT_TRUE(detail);
    EXPECT_TRUE(IsWindowVisible(detail->GetHwnd()));
    const std::string markup = Utf16ToUtf8(detail->Markup());
    EXPECT_NE(markup.find("<b>Budget review</b><br>Room 4<br>"), std::string::npos);
    EXPECT_NE(markup.find("Ann Boss (<a href='mailto:ann@example.org'>"), std::string::npos);
    EXPECT_NE(markup.find("<a href='Tel:030 1234 5678'>"), std::string::npos);
    EXPECT_TRUE(questions.empty()); // an entry of our own asks nothing

    Key(VK_ESCAPE);
    Wait(10);
    EXPECT_EQ(main_->Router().Detail(), nullptr);
    EXPECT_TRUE(IsWindowVisible(week->GetHwnd()));
    EXPECT_EQ(GetActiveWindow(), week->GetHwnd());
}

TEST_F(WeekDetailFromMainTest, OidCommandOpensTheDetailWhoseDeleteRemovesTheFile) {
    Start(u"calendar oid " + Utf8ToUtf16(std::to_string(VdirSource::HashUid("work1"))));
    ItemDetailView* detail = main_->Router().Detail();
    ASSERT_TRUE(detail);
    EXPECT_NE(Utf16ToUtf8(detail->Markup()).find("Budget review"), std::string::npos);
    // "Cancel" of the menu leaves everything as it is; "No" to the question too.
    detail->OnDeferredCommand(ItemDetailView::kCancel);
    answers = {2};
    detail->RunCommand(ItemCommands::kDelete);
    EXPECT_TRUE(std::filesystem::exists(Path("work1")));
    ASSERT_EQ(main_->Router().Detail(), detail);
    // "Yes" deletes the file, and the page with nothing left to show closes.
    answers = {1};
    detail->RunCommand(ItemCommands::kDelete);
    Wait(10);
    EXPECT_FALSE(std::filesystem::exists(Path("work1")));
    EXPECT_EQ(main_->Router().Detail(), nullptr);
    ASSERT_EQ(questions.size(), 2u);

    // An identifier nobody knows says so and opens nothing.
    questions.clear();
    EXPECT_EQ(main_->Router().OpenItemDetail(12345, false, DateTime()), nullptr);
    Wait(10);
    EXPECT_EQ(questions.size(), 1u);
    EXPECT_EQ(main_->Router().Detail(), nullptr);
}

TEST_F(WeekDetailFromMainTest, WeekFillSkipsItselfWhileTheCacheIsTaken) {
    Start(u"calendar -vw");
    WeekView* week = main_->Router().Week();
    ASSERT_TRUE(week);
    const std::string before = Text(week->DayBox(kFriday));
    // Every day box that holds anything becomes a summary on the next fill.
    Settings::SetNumber("WeekMaxEvents", 0);
    std::promise<void> locked;
    std::promise<void> release;
    std::thread holder([&] {
        std::lock_guard lock(PimStore::Instance().CacheLock());
        locked.set_value();
        release.get_future().wait();
    });
    locked.get_future().wait();
    week->Reload();
    EXPECT_EQ(Text(week->DayBox(kFriday)), before);
    release.set_value();
    holder.join();
    week->Reload();
    EXPECT_EQ(Text(week->DayBox(kFriday)).find("Budget review"), std::string::npos);
    EXPECT_NE(Text(week->DayBox(kFriday)).find(": 1, "), std::string::npos);
}

} // namespace
} // namespace mirodate::test
