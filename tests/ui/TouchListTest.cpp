// The touch list on the real window system, driven by synthetic pointer
// input on the virtual clock: taps, long taps, swipes, drags with the rubber
// band, the bounce back and the fling with its friction.
#include "ControlTestKit.h"
#include "ui/Scale.h"
#include "ui/TouchListCtrlWnd.h"

#include <memory>

namespace mirodate::test {
namespace {

class GestureList : public TouchListCtrlWnd {
public:
    int swipesLeft = 0;
    int swipesRight = 0;
    std::vector<int> longTaps;
    std::vector<POINT> emptyClicks;

    void OnSwipeLeft() override { ++swipesLeft; }
    void OnSwipeRight() override { ++swipesRight; }
    void OnLongTap(int index) override { longTaps.push_back(index); }
    void OnClickEmpty(int x, int y) override { emptyClicks.push_back(POINT{x, y}); }
};

class TouchListTest : public UiTest {
protected:
    void OpenList(int width, int height, int rows, int rowHeight, bool longTaps = false) {
        Open(width, height);
        SetHighResolution(width >= kHighResolutionWidth);
        parent_.Open(width, height);
        list_.Create(parent_.GetHwnd(), 0, 0, width, height, false, true);
        for (int i = 0; i < rows; ++i)
            list_.AddItem(std::make_unique<ColourRow>(rowHeight, RowColour(i), &clicks_, i, longTaps));
        windows_->RunUntilIdle();
    }
    void Press(int x, int y) { Pointer(DisplayEvent::Type::PointerDown, x, y); }
    void Move(int x, int y) { Pointer(DisplayEvent::Type::PointerMove, x, y); }
    void Release(int x, int y) { Pointer(DisplayEvent::Type::PointerUp, x, y); }
    void Wait(std::uint32_t ms) { windows_->RunFor(ms); }
    // A quick upward flick: 100 pixels in 50 ms, released where it stopped.
    void FlickUp() {
        Press(200, 500);
        Wait(25);
        Move(200, 450);
        Wait(25);
        Move(200, 400);
        Release(200, 400);
    }
    const TouchScroller& Scroller() const { return list_.Scroller(); }

    RecordingParent parent_;
    GestureList list_;
    std::vector<int> clicks_;
};

TEST_F(TouchListTest, LayoutHitTestAndVisibilityFollowVariableHeights) {
    OpenList(480, 640, 0, 0);
    const int heights[] = {30, 70, 10, 200, 45};
    for (int i = 0; i < 5; ++i)
        list_.AddItem(std::make_unique<ColourRow>(heights[i], RowColour(i), nullptr, i));
    EXPECT_EQ(Scroller().TotalHeight(), 355);
    EXPECT_EQ(Scroller().AverageHeight(), 71);
    EXPECT_EQ(list_.HitTest(0), 0);
    EXPECT_EQ(list_.HitTest(29), 0);
    EXPECT_EQ(list_.HitTest(30), 1);
    EXPECT_EQ(list_.HitTest(109), 2);
    EXPECT_EQ(list_.HitTest(110), 3);
    EXPECT_EQ(list_.HitTest(354), 4);
    EXPECT_EQ(list_.HitTest(355), -1);
    EXPECT_EQ(list_.HitTest(-1), -1);
    EXPECT_EQ(Scroller().MaxPosition(), 0); // all of it fits under the 64-pixel header

    list_.RemoveItem(3);
    EXPECT_EQ(list_.HitTest(110), 3);
    EXPECT_EQ(Scroller().TotalHeight(), 155);
    list_.ClearItems();
    EXPECT_EQ(Scroller().TotalHeight(), 0);
    EXPECT_EQ(Scroller().AverageHeight(), 1);
    EXPECT_EQ(list_.HitTest(0), -1);

    for (int i = 0; i < 40; ++i)
        list_.AddItem(std::make_unique<ColourRow>(50, RowColour(i), nullptr, i));
    EXPECT_EQ(Scroller().MaxPosition(), 40 * 50 - (640 - 64));
    EXPECT_TRUE(list_.IsVisible(11));
    EXPECT_FALSE(list_.IsVisible(12));
    list_.Reveal(20, true);
    Wait(50);
    EXPECT_EQ(Scroller().Position(), 1000);
    EXPECT_TRUE(list_.IsVisible(20));
    EXPECT_FALSE(list_.IsVisible(19));
}

TEST_F(TouchListTest, TapClicksTheRowUnderTheFingerAndHighlightsItWhilePressed) {
    OpenList(480, 640, 20, 60);
    Press(100, 64 + 130); // row 2
    EXPECT_EQ(Scroller().Highlighted(), 2);
    EXPECT_EQ(FramePixel(100, 64 + 130), RGB(255, 255, 0));
    EXPECT_EQ(FramePixel(100, 64 + 70), RowColour(1));
    Release(100, 64 + 130);
    EXPECT_EQ(clicks_, std::vector<int>{2});
    EXPECT_EQ(Scroller().Highlighted(), -1);
    EXPECT_EQ(FramePixel(100, 64 + 130), RowColour(2));
}

TEST_F(TouchListTest, EmptyListTapClicksTheEmptyArea) {
    OpenList(480, 640, 0, 0);
    Tap(100, 300);
    ASSERT_EQ(list_.emptyClicks.size(), 1u);
    EXPECT_EQ(list_.emptyClicks[0].x, 100);
    EXPECT_EQ(list_.emptyClicks[0].y, 300);
    EXPECT_EQ(FramePixel(100, 300), TouchListColors::FromSkin().background);
}

TEST_F(TouchListTest, HeaderTapNotifiesTheParent) {
    OpenList(480, 640, 20, 60);
    Tap(100, 20);
    ASSERT_EQ(parent_.notices.size(), 1u);
    EXPECT_EQ(parent_.notices[0].from, list_.GetHwnd());
    EXPECT_EQ(parent_.notices[0].code, NM_LIST_HEADER_TAP);
    EXPECT_TRUE(clicks_.empty());
    // Pressed in the header but let go below it: no header tap, no click.
    Press(100, 20);
    Release(100, 300);
    EXPECT_EQ(parent_.notices.size(), 1u);
    EXPECT_TRUE(clicks_.empty());
}

TEST_F(TouchListTest, FlingLosesTwoFifteenthsPerTickAndStops) {
    OpenList(480, 640, 200, 60);
    FlickUp();
    EXPECT_EQ(Scroller().Position(), 100);
    ASSERT_TRUE(Scroller().IsFlinging());
    EXPECT_DOUBLE_EQ(Scroller().Velocity(), -60.0);
    EXPECT_TRUE(clicks_.empty());

    Wait(25);
    EXPECT_DOUBLE_EQ(Scroller().Velocity(), -52.0);
    EXPECT_EQ(Scroller().Position(), 152);
    Wait(25);
    EXPECT_NEAR(Scroller().Velocity(), -60.0 * 13 / 15 * 13 / 15, 1e-9);

    // 60 x (13/15)^28 is still above 1 pixel per tick, the 29th power is not:
    // the 30th tick stops the fling, 750 ms after the release.
    Wait(725 - 50);
    EXPECT_TRUE(Scroller().IsFlinging());
    Wait(25);
    EXPECT_FALSE(Scroller().IsFlinging());
    EXPECT_EQ(Scroller().Velocity(), 0.0);
    // The sum of 60 x (13/15)^k for k = 1..29 is 383.8 pixels.
    EXPECT_NEAR(Scroller().Position(), 100 + 383, 1);

    // The frame shows the rows where the scroll position puts them.
    const int position = Scroller().Position();
    const int firstRow = position / 60;
    const int rowBottom = 64 + (firstRow + 1) * 60 - position;
    EXPECT_EQ(FramePixel(100, rowBottom - 1), RowColour(firstRow));
    EXPECT_EQ(FramePixel(100, rowBottom), RowColour(firstRow + 1));
}

TEST_F(TouchListTest, StillFingerBeforeReleaseGivesNoFling) {
    OpenList(480, 640, 200, 60);
    Press(200, 500);
    Wait(25);
    Move(200, 450);
    Wait(25);
    Move(200, 400);
    Wait(101);
    Release(200, 400);
    EXPECT_FALSE(Scroller().IsFlinging());
    EXPECT_EQ(Scroller().Velocity(), 0.0);
    Wait(500);
    EXPECT_EQ(Scroller().Position(), 100);

    // The same drag, let go 60 ms after the last movement, flings.
    Press(200, 500);
    Wait(25);
    Move(200, 450);
    Wait(25);
    Move(200, 400);
    Wait(60);
    Release(200, 400);
    EXPECT_TRUE(Scroller().IsFlinging());
}

TEST_F(TouchListTest, DragPastTheTopMovesAThirdAndBouncesBackIn300Ms) {
    OpenList(480, 640, 200, 60);
    Press(200, 300);
    Move(200, 360);
    EXPECT_EQ(Scroller().Position(), -20);
    Move(200, 420);
    EXPECT_EQ(Scroller().Position(), -40);
    // The gap above the first row shows the list's background.
    EXPECT_EQ(FramePixel(100, 64 + 30), TouchListColors::FromSkin().background);
    EXPECT_EQ(FramePixel(100, 64 + 45), RowColour(0));

    Release(200, 420);
    EXPECT_TRUE(Scroller().IsAnimating());
    EXPECT_FALSE(Scroller().IsFlinging());
    Wait(150);
    EXPECT_LT(Scroller().Position(), 0);
    EXPECT_GT(Scroller().Position(), -40);
    Wait(140);
    EXPECT_TRUE(Scroller().IsAnimating());
    Wait(10);
    EXPECT_EQ(Scroller().Position(), 0);
    EXPECT_FALSE(Scroller().IsAnimating());
    EXPECT_EQ(FramePixel(100, 64), RowColour(0));
    EXPECT_TRUE(clicks_.empty());
}

TEST_F(TouchListTest, FlingIntoTheEndSpringsBack) {
    OpenList(480, 640, 12, 60); // 720 pixels of rows: 144 to scroll
    FlickUp();
    Wait(2000);
    EXPECT_EQ(Scroller().Position(), Scroller().MaxPosition());
    EXPECT_FALSE(Scroller().IsFlinging());
    EXPECT_FALSE(Scroller().IsAnimating());
}

TEST_F(TouchListTest, PressOnAFlingingListStopsItWithoutAClick) {
    OpenList(480, 640, 200, 60);
    FlickUp();
    Wait(100);
    ASSERT_TRUE(Scroller().IsFlinging());
    const int stoppedAt = Scroller().Position();
    Press(100, 300);
    EXPECT_FALSE(Scroller().IsFlinging());
    Release(100, 300);
    Wait(500);
    EXPECT_TRUE(clicks_.empty());
    EXPECT_EQ(Scroller().Position(), stoppedAt);
    EXPECT_EQ(Scroller().Highlighted(), -1);
    // The next tap clicks again.
    Tap(100, 300);
    EXPECT_EQ(clicks_.size(), 1u);
}

TEST_F(TouchListTest, SwipeNeedsMoreThanFortyPixelsAtLowResolution) {
    OpenList(240, 320, 20, 30);
    Press(100, 150);
    Move(140, 155); // 40 across: not a swipe, and too little to drag
    EXPECT_EQ(list_.swipesRight, 0);
    Release(140, 155);
    EXPECT_EQ(clicks_.size(), 1u);

    Press(100, 150);
    Move(141, 155);
    EXPECT_EQ(list_.swipesRight, 1);
    Move(200, 155); // the rest of the same gesture is no second swipe
    Release(200, 155);
    EXPECT_EQ(list_.swipesRight, 1);
    EXPECT_EQ(clicks_.size(), 1u);

    Press(150, 150);
    Move(109, 140);
    EXPECT_EQ(list_.swipesLeft, 1);
    Release(109, 140);
    EXPECT_EQ(Scroller().Position(), 0);
}

TEST_F(TouchListTest, LongTapFiresAfter700MsAndSuppressesTheClick) {
    OpenList(480, 640, 20, 60, true);
    Press(100, 64 + 70); // row 1
    Wait(699);
    EXPECT_TRUE(list_.longTaps.empty());
    Wait(1);
    EXPECT_EQ(list_.longTaps, std::vector<int>{1});
    Release(100, 64 + 70);
    EXPECT_TRUE(clicks_.empty());

    // A drag before the delay cancels it.
    Press(100, 64 + 70);
    Wait(300);
    Move(100, 64 + 170);
    Wait(1000);
    Release(100, 64 + 170);
    EXPECT_EQ(list_.longTaps.size(), 1u);
}

TEST_F(TouchListTest, ItemsWithoutLongTapClickAfterAHold) {
    OpenList(480, 640, 20, 60, false);
    Press(100, 64 + 70);
    Wait(1500);
    Release(100, 64 + 70);
    EXPECT_TRUE(list_.longTaps.empty());
    EXPECT_EQ(clicks_, std::vector<int>{1});
}

TEST_F(TouchListTest, DisabledListIgnoresPresses) {
    OpenList(480, 640, 20, 60);
    EnableWindow(list_.GetHwnd(), false);
    Tap(100, 200);
    EXPECT_TRUE(clicks_.empty());
}

} // namespace
} // namespace mirodate::test
