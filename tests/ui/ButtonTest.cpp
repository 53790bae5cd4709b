// Buttons, their tooltips and the menu bar on the real window system:
// clicks with the 500 ms debounce, cancelling by sliding off, the long
// press, the look of the pressed and normal states, and the balloon pushed
// inside the screen at the right edge.
#include "ControlTestKit.h"
#include "skin/SkinStyles.h"
#include "ui/ButtonWnd.h"
#include "ui/MenuBar.h"
#include "ui/Scale.h"

namespace mirodate::test {
namespace {

constexpr COLORREF kBack = RGB(0, 0, 160);
constexpr COLORREF kPressedBack = RGB(160, 0, 0);

class ButtonTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetHighResolution(true);
        parent_.Open(480, 640);
    }
    ButtonWnd& MakeButton(const std::u16string& label, int x, int y, int w, int h) {
        auto& button = buttons_.emplace_back(std::make_unique<ButtonWnd>());
        button->Create(parent_.GetHwnd(), label, x, y, w, h);
        button->SetColors(kBack, RGB(255, 255, 255), kPressedBack, RGB(255, 255, 255));
        windows_->RunUntilIdle();
        return *button;
    }
    void Press(int x, int y) { Pointer(DisplayEvent::Type::PointerDown, x, y); }
    void Move(int x, int y) { Pointer(DisplayEvent::Type::PointerMove, x, y); }
    void Release(int x, int y) { Pointer(DisplayEvent::Type::PointerUp, x, y); }
    void Wait(std::uint32_t ms) { windows_->RunFor(ms); }

    RecordingParent parent_;
    std::vector<std::unique_ptr<ButtonWnd>> buttons_;
};

TEST_F(ButtonTest, TwoTapsWithin500MsGiveOneClick) {
    ButtonWnd& button = MakeButton(u"OK", 100, 100, 80, 40);
    Tap(120, 120);
    ASSERT_EQ(parent_.commands.size(), 1u);
    EXPECT_EQ(parent_.commands[0], button.GetHwnd());
    Wait(400);
    Tap(120, 120);
    EXPECT_EQ(parent_.commands.size(), 1u);
    Wait(101);
    Tap(120, 120);
    EXPECT_EQ(parent_.commands.size(), 2u);
}

TEST_F(ButtonTest, SlidingOffByMoreThanTheSmallerSideCancels) {
    MakeButton(u"OK", 100, 100, 40, 20);
    Press(110, 110);
    EXPECT_EQ(FramePixel(102, 102), kPressedBack);
    Move(130, 110); // |dx| + |dy| = 20: still pressed
    EXPECT_EQ(FramePixel(102, 102), kPressedBack);
    Move(121, 122); // 11 + 12 = 23 > 20
    EXPECT_EQ(FramePixel(102, 102), kBack);
    Release(110, 110); // coming back does not revive the press
    EXPECT_TRUE(parent_.commands.empty());
    EXPECT_EQ(GetCapture(), nullptr);
}

TEST_F(ButtonTest, LongPressNotifiesInsteadOfClicking) {
    ButtonWnd& button = MakeButton(u"Today", 100, 100, 80, 40);
    button.SetLongPress(true);
    Press(120, 120);
    Wait(299);
    EXPECT_TRUE(parent_.notices.empty());
    Wait(1);
    ASSERT_EQ(parent_.notices.size(), 1u);
    EXPECT_EQ(parent_.notices[0].from, button.GetHwnd());
    EXPECT_EQ(parent_.notices[0].code, NM_LONG_PRESS);
    EXPECT_EQ(FramePixel(102, 102), kBack);
    Release(120, 120);
    EXPECT_TRUE(parent_.commands.empty());
    // A short tap on the same button still clicks.
    Tap(120, 120);
    EXPECT_EQ(parent_.commands.size(), 1u);
}

TEST_F(ButtonTest, LookOfGradientLabelAndSeparators) {
    ButtonWnd& button = MakeButton(u"", 100, 100, 80, 40);
    button.SetGradient(RGB(255, 255, 255), RGB(255, 255, 255));
    button.SetSeparators(true, true);
    windows_->RunUntilIdle();
    EXPECT_EQ(FramePixel(140, 100), RGB(255, 255, 255)); // gradient starts at its top colour
    EXPECT_EQ(FramePixel(140, 135), kBack);              // and is flat below half height
    EXPECT_EQ(FramePixel(179, 130), RGB(0, 0, 0));       // right separator
    EXPECT_EQ(FramePixel(100, 130), RGB(96, 96, 96));    // left separator
    EXPECT_EQ(FramePixel(179, 100), RGB(255, 255, 255)); // separators start one pixel down

    ButtonWnd& labelled = MakeButton(u"MMMM", 200, 300, 120, 40);
    int lit = 0;
    for (int x = 200; x < 320; ++x)
        if (FramePixel(x, 320) != kBack)
            ++lit;
    EXPECT_GT(lit, 10);
    (void)labelled;
}

TEST_F(ButtonTest, TooltipAtTheRightEdgeIsPushedInsideAndPointsAtTheButton) {
    Bitmap icon(20, 20);
    ButtonWnd& button = MakeButton(u"Agenda view", 430, 580, 50, 60);
    button.SetIcon(&icon, RECT{}, 0, 0);
    Press(455, 610);
    Wait(10); // the shortest timer period
    TooltipWnd& tip = button.Tooltip();
    ASSERT_TRUE(IsWindowVisible(tip.GetHwnd()));
    RECT balloon;
    GetWindowRect(tip.GetHwnd(), &balloon);
    EXPECT_EQ(balloon.right, 479); // pushed in, one pixel short of the edge
    EXPECT_EQ(balloon.bottom, 580 - Scale(1));
    EXPECT_GT(tip.TipOffset(), 0);
    // The tip's point is the balloon's centre plus the offset: the button's centre.
    EXPECT_EQ(balloon.left + balloon.Width() / 2 + tip.TipOffset(), 455);
    // Inside the tip, and beside it the page shows through.
    EXPECT_EQ(FramePixel(455, balloon.bottom - Scale(3)), RGB(228, 228, 128));
    EXPECT_EQ(FramePixel(455 - Scale(8), balloon.bottom - Scale(3)), RGB(10, 20, 30));
    EXPECT_EQ(FramePixel(balloon.left + 4, balloon.top + 3), RGB(228, 228, 128));
    Release(455, 610);
    EXPECT_FALSE(IsWindowVisible(tip.GetHwnd()));

    // A labelled button shows no tooltip.
    ButtonWnd& plain = MakeButton(u"Plain", 100, 300, 80, 40);
    Press(120, 320);
    Wait(10); // the shortest timer period
    EXPECT_FALSE(IsWindowVisible(plain.Tooltip().GetHwnd()));
    Release(120, 320);
}

TEST_F(ButtonTest, TooltipAtTheLeftEdgeStartsAtZero) {
    Bitmap icon(20, 20);
    ButtonWnd& button = MakeButton(u"Month view and more", 0, 580, 30, 60);
    button.SetIcon(&icon, RECT{}, 0, 0);
    Press(10, 600);
    Wait(10); // the shortest timer period
    RECT balloon;
    GetWindowRect(button.Tooltip().GetHwnd(), &balloon);
    EXPECT_EQ(balloon.left, 0);
    EXPECT_LT(button.Tooltip().TipOffset(), 0);
    EXPECT_EQ(balloon.Width() / 2 + button.Tooltip().TipOffset(), 15);
    Release(10, 600);
}

TEST_F(ButtonTest, MenuBarSharesTheWidthAndReportsWhichButton) {
    MenuBar bar;
    ASSERT_TRUE(
        bar.Create(parent_.GetHwnd(),
                   {{"Menu", MenuBarIcon::Menu}, {"Filter", MenuBarIcon::Filter}, {"New", MenuBarIcon::New}},
                   0, 580, 480));
    EXPECT_EQ(bar.Height(), SkinStyles::Current().menuBar.height);
    ASSERT_EQ(bar.Count(), 3);
    RECT last;
    GetWindowRect(bar.Button(2)->GetHwnd(), &last);
    EXPECT_EQ(last.left, 320);
    EXPECT_EQ(last.right, 480);
    windows_->RunUntilIdle();
    Tap(400, 600);
    ASSERT_EQ(parent_.commands.size(), 1u);
    EXPECT_EQ(bar.IndexOf(parent_.commands[0]), 2);
    EXPECT_EQ(bar.IndexOf(parent_.GetHwnd()), -1);
    // The icon is drawn from the strip: the button is not one flat colour.
    const COLORREF corner = FramePixel(170, 639);
    int differing = 0;
    for (int y = 590; y < 630; ++y)
        for (int x = 220; x < 260; ++x)
            if (FramePixel(x, y) != corner)
                ++differing;
    EXPECT_GT(differing, 20);
}

} // namespace
} // namespace mirodate::test
