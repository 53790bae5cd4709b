// The window manager underneath the framework: timers on the virtual clock,
// the message queue across threads, broadcasts and registered messages,
// focus and activation, and script playback.
#include "UiTestFixture.h"
#include "ui/BaseWnd.h"
#include "ui/HeadlessScript.h"
#include "ui/ScriptPlayer.h"

#include <thread>
#include <vector>

namespace mirodate::test {
namespace {

class TimerWnd : public BaseWnd {
public:
    std::vector<std::pair<UINT_PTR, DWORD>> fired; // id, tick
    std::vector<UINT> messages;
    void OnTimer(UINT_PTR id) override { fired.emplace_back(id, GetTickCount()); }
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message >= WM_APP)
            messages.push_back(message);
        return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
    }
};

using WindowSystemTest = UiTest;

TEST_F(WindowSystemTest, TimersFireAtExactVirtualTimesInDueOrder) {
    TimerWnd wnd;
    HWND hwnd = wnd.Create(nullptr, "TEST::TIMER", WS_POPUP | WS_VISIBLE, u"", 0, 0, 10, 10);
    SetTimer(hwnd, 1, 100);
    SetTimer(hwnd, 2, 250);
    windows_->RunFor(500);
    const std::vector<std::pair<UINT_PTR, DWORD>> expected = {{1, 1100}, {1, 1200}, {2, 1250}, {1, 1300},
                                                              {1, 1400}, {1, 1500}, {2, 1500}};
    EXPECT_EQ(wnd.fired, expected);
    // Setting a timer again restarts it; killing stops it.
    wnd.fired.clear();
    SetTimer(hwnd, 1, 30);
    KillTimer(hwnd, 2);
    windows_->RunFor(60);
    EXPECT_EQ(wnd.fired, (std::vector<std::pair<UINT_PTR, DWORD>>{{1, 1530}, {1, 1560}}));
    KillTimer(hwnd, 1);
    EXPECT_FALSE(windows_->TimeUntilNextTimer());
    // A destroyed window's timers go with it.
    SetTimer(hwnd, 3, 10);
    DestroyWindow(hwnd);
    EXPECT_FALSE(windows_->TimeUntilNextTimer());
}

TEST_F(WindowSystemTest, PostingFromAnotherThreadWakesTheWaitingLoop) {
    TimerWnd wnd;
    HWND hwnd = wnd.Create(nullptr, "TEST::TIMER", WS_POPUP | WS_VISIBLE, u"", 0, 0, 10, 10);
    // Idle: block on the display until something arrives (no timers run).
    windows_->SetIdleHook([this](std::optional<std::uint32_t>) { display_->WaitEvent(-1); });
    std::thread worker([&] {
        for (UINT i = 0; i < 50; ++i)
            windows_->PostMessage(hwnd, WM_APP + i, 0, 0);
        windows_->PostTask([this] { windows_->PostQuitMessage(3); });
    });
    EXPECT_EQ(windows_->Run(), 3);
    worker.join();
    ASSERT_EQ(wnd.messages.size(), 50u);
    for (UINT i = 0; i < 50; ++i)
        EXPECT_EQ(wnd.messages[i], WM_APP + i);
}

TEST_F(WindowSystemTest, BroadcastsReachEveryTopLevelWindowButNoChild) {
    TimerWnd a, b, child;
    a.Create(nullptr, "TEST::TIMER", WS_POPUP | WS_VISIBLE, u"", 0, 0, 10, 10);
    b.Create(nullptr, "TEST::TIMER", WS_POPUP, u"", 0, 0, 10, 10); // hidden windows get it too
    child.Create(a.window, "TEST::TIMER", WS_CHILD | WS_VISIBLE, u"", 0, 0, 5, 5);
    const UINT message = RegisterWindowMessage("TEST_BROADCAST");
    EXPECT_GE(message, 0xC000u);
    EXPECT_EQ(RegisterWindowMessage("TEST_BROADCAST"), message);
    EXPECT_NE(RegisterWindowMessage("TEST_OTHER"), message);
    SendNotifyMessage(HWND_BROADCAST, message, 0, 0);
    EXPECT_EQ(a.messages, std::vector<UINT>{message});
    EXPECT_EQ(b.messages, std::vector<UINT>{message});
    PostMessage(HWND_BROADCAST, message, 0, 0);
    EXPECT_EQ(a.messages.size(), 1u); // posted: not yet
    windows_->RunUntilIdle();
    EXPECT_EQ(a.messages.size(), 2u);
    EXPECT_EQ(b.messages.size(), 2u);
    EXPECT_TRUE(child.messages.empty());
}

class FocusPage : public BaseWnd {
public:
    std::vector<std::string> log;
    LRESULT OnSetFocus(HWND previous) override {
        log.push_back("SetFocus");
        return BaseWnd::OnSetFocus(previous);
    }
    LRESULT OnKillFocus(HWND next) override {
        log.push_back("KillFocus");
        return BaseWnd::OnKillFocus(next);
    }
    LRESULT OnActivate(UINT state, BOOL, HWND) override {
        log.push_back(state == WA_INACTIVE ? "Deactivate" : "Activate");
        return 0;
    }
};

TEST_F(WindowSystemTest, ActivationMovesFocusBetweenPagesAndDestroyingActivatesTheOwner) {
    FocusPage first, second;
    first.CreateModeless(nullptr);
    EXPECT_EQ(first.log, (std::vector<std::string>{"Activate", "SetFocus"}));
    second.CreateModeless(first.window);
    EXPECT_EQ(GetActiveWindow(), second.window);
    EXPECT_EQ(GetFocus(), second.window);
    EXPECT_EQ(first.log, (std::vector<std::string>{"Activate", "SetFocus", "Deactivate", "KillFocus"}));
    DestroyWindow(second.window);
    EXPECT_EQ(GetActiveWindow(), first.window);
    EXPECT_EQ(first.log.back(), "SetFocus");
}

TEST_F(WindowSystemTest, HiddenAndDisabledWindowsGetNoPointerInput) {
    class TapCounter : public BaseWnd {
    public:
        int downs = 0;
        LRESULT OnPointerDown(int, int, int, WPARAM) override { return ++downs, 0; }
    } main, child;
    main.Create(nullptr, "TEST::TAPS", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    child.Create(main.window, "TEST::TAPS", WS_CHILD | WS_VISIBLE, u"", 0, 0, 100, 100);
    Tap(50, 50);
    EXPECT_EQ(child.downs, 1);
    EnableWindow(child.window, false);
    Tap(50, 50);
    EXPECT_EQ(child.downs, 1);
    EXPECT_EQ(main.downs, 0);
    ShowWindow(child.window, SW_HIDE);
    Tap(50, 50);
    EXPECT_EQ(main.downs, 1);
}

// Script parsing and playback ----------------------------------------------

TEST(HeadlessScriptTest, BadLinesAreReportedWithTheirNumber) {
    std::vector<ScriptAction> actions;
    std::string error;
    const char* bad[] = {"wait\n",     "wait -5\n",          "tap 1\n",     "drag 1 2 3 4\n",
                         "key F13\n",  "frobnicate 1 2\n",   "text\n",      "quit now\n",
                         "tap 1 2x\n", "wait 99999999999\n", "screenshot\n"};
    for (const char* line : bad) {
        EXPECT_FALSE(HeadlessScript::Parse(std::string("# comment\n\ntap 1 2\n") + line, actions, error))
            << line;
        EXPECT_EQ(error.rfind("line 4: ", 0), 0u) << error;
        EXPECT_TRUE(actions.empty());
    }
    EXPECT_FALSE(HeadlessScript::Load("/nonexistent/script.txt", actions, error));
}

TEST(HeadlessScriptTest, CommandsBecomeTimedInput) {
    std::vector<ScriptAction> actions;
    std::string error;
    ASSERT_TRUE(
        HeadlessScript::Parse("drag 0 0 100 50 64\r\nkey q\n  text hello world \nscreenshot /tmp/a b.png\n"
                              "Quit\n",
                              actions, error))
        << error;
    using K = ScriptAction::Kind;
    using T = DisplayEvent::Type;
    // Down, four waits of 16 ms each followed by a move, up.
    ASSERT_EQ(actions.size(), 1u + 8u + 1u + 3u + 1u + 1u + 1u);
    EXPECT_EQ(actions[0].event.type, T::PointerDown);
    EXPECT_EQ(actions[1].kind, K::Wait);
    EXPECT_EQ(actions[1].milliseconds, 16u);
    EXPECT_EQ(actions[2].event.x, 25);
    EXPECT_EQ(actions[8].event.x, 100);
    EXPECT_EQ(actions[8].event.y, 50);
    EXPECT_EQ(actions[9].event.type, T::PointerUp);
    EXPECT_EQ(actions[10].event.key, static_cast<std::uint32_t>('Q'));
    EXPECT_EQ(actions[11].event.text, "q");
    EXPECT_EQ(actions[13].event.text, "hello world ");
    EXPECT_EQ(actions[14].path, "/tmp/a b.png");
    EXPECT_EQ(actions[15].kind, K::Quit);
    EXPECT_EQ(actions[15].line, 5);
}

TEST_F(WindowSystemTest, ScriptPlaysIntoWindowsOnTheVirtualClock) {
    class Recorder : public TimerWnd {
    public:
        std::vector<std::string> log;
        LRESULT OnPointerDown(int, int x, int y, WPARAM) override {
            log.push_back("down " + std::to_string(x) + "," + std::to_string(y) + " @" +
                          std::to_string(GetTickCount()));
            return 0;
        }
        LRESULT OnPointerUp(int, int x, int y, WPARAM) override {
            log.push_back("up " + std::to_string(x) + "," + std::to_string(y) + " @" +
                          std::to_string(GetTickCount()));
            return 0;
        }
    } wnd;
    wnd.Create(nullptr, "TEST::RECORDER", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    SetTimer(wnd.window, 9, 1000);
    std::vector<ScriptAction> actions;
    std::string error;
    const std::string shot = dir_ + "/shot.png";
    ASSERT_TRUE(HeadlessScript::Parse("wait 2500\ntap 10 20\ndrag 10 20 30 40 100\nscreenshot " + shot + "\n",
                                      actions, error));
    ScriptPlayer player(*windows_, *display_, actions);
    player.Attach();
    EXPECT_EQ(windows_->Run(), 0);
    EXPECT_TRUE(player.Finished());
    EXPECT_EQ(wnd.log, (std::vector<std::string>{"down 10,20 @3500", "up 10,20 @3500", "down 10,20 @3500",
                                                 "up 30,40 @3600"}));
    // The timer ran twice during the wait and once more is not due.
    ASSERT_EQ(wnd.fired.size(), 2u);
    EXPECT_EQ(wnd.fired[1].second, 3000u);
    EXPECT_TRUE(std::filesystem::exists(shot));
}

} // namespace
} // namespace mirodate::test
