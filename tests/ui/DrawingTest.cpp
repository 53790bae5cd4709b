// What reaches the screen: key-colour holes of the transparent primitives,
// owner-drawn button looks and their fall-backs, gradients, and children
// clipped to their parents in the composed frame.
#include "UiTestFixture.h"
#include "ui/BaseWnd.h"
#include "ui/Dc.h"
#include "ui/DrawPrimitives.h"
#include "ui/Resources.h"
#include "ui/Scale.h"
#include "ui/Surface16.h"

#include <functional>

namespace mirodate::test {
namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr COLORREF kBlue = RGB(0, 0, 255);
constexpr COLORREF kGreen = RGB(0, 200, 0);

// A window that paints whatever the test asks.
class PaintedWnd : public BaseWnd {
public:
    std::function<void(Dc&)> paint;
    void OnPaint(HDC dc) override {
        if (paint)
            paint(*dc);
    }
};

using DrawingTest = UiTest;

// A 4x4 green picture with a key-coloured 2x2 centre.
Bitmap PictureWithHole() {
    Bitmap picture(4, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            picture.SetPixel(x, y, (x == 1 || x == 2) && (y == 1 || y == 2) ? kKeyColor : kGreen);
    return picture;
}

TEST_F(DrawingTest, KeyColourPixelsOfTransparentPicturesShowTheBackground) {
    const Bitmap picture = PictureWithHole();
    PaintedWnd wnd;
    wnd.paint = [&](Dc& dc) {
        dc.FillSolidRect(0, 0, 480, 640, kRed);
        DrawTransparentBitmap(dc, &picture, 10, 10, -1, -1);   // own size
        DrawTransparentBitmap(dc, &picture, 100, 100, 40, 40); // stretched ten times
        DrawBitmap(dc, &picture, 200, 10, -1, -1);             // plain copy keeps the key colour
    };
    wnd.Create(nullptr, "TEST::PAINTED", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    windows_->RunUntilIdle();
    EXPECT_EQ(FramePixel(10, 10), kGreen);
    EXPECT_EQ(FramePixel(11, 11), kRed);
    EXPECT_EQ(FramePixel(12, 12), kRed);
    EXPECT_EQ(FramePixel(13, 13), kGreen);
    EXPECT_EQ(FramePixel(105, 105), kGreen);
    EXPECT_EQ(FramePixel(115, 115), kRed);
    EXPECT_EQ(FramePixel(129, 129), kRed);
    EXPECT_EQ(FramePixel(135, 135), kGreen);
    EXPECT_EQ(FramePixel(201, 11), kKeyColor);
}

TEST_F(DrawingTest, TransparentIconLeavesOutItsBackgroundAndKeyPixels) {
    // An icon with alpha: transparent border, a key-coloured pixel, blue body.
    Bitmap icon(8, 8, Bitmap::Format::Argb);
    for (int y = 2; y < 6; ++y)
        for (int x = 2; x < 6; ++x)
            icon.SetPixel(x, y, kBlue);
    icon.SetPixel(3, 3, kKeyColor);
    PaintedWnd wnd;
    wnd.paint = [&](Dc& dc) {
        dc.FillSolidRect(0, 0, 480, 640, kRed);
        DrawTransparentIcon(dc, &icon, 0, 0, 16, 16, 8, 8);
    };
    wnd.Create(nullptr, "TEST::PAINTED", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    windows_->RunUntilIdle();
    EXPECT_EQ(FramePixel(1, 1), kRed); // transparent border
    EXPECT_EQ(FramePixel(6, 6), kRed); // the key pixel at (3,3), doubled
    EXPECT_EQ(FramePixel(10, 10), kBlue);
    EXPECT_EQ(FramePixel(15, 15), kRed);
}

TEST_F(DrawingTest, RoundGradientKeepsTheBackgroundOutsideItsCorners) {
    PaintedWnd wnd;
    wnd.paint = [&](Dc& dc) {
        dc.FillSolidRect(0, 0, 480, 640, kRed);
        DrawRoundGradient(dc, RECT{20, 20, 120, 80}, 10, RGB(0, 0, 100), RGB(200, 200, 255));
        DrawGradient(dc, RECT{200, 0, 210, 100}, RGB(0, 0, 0), RGB(255, 255, 255), 10);
    };
    wnd.Create(nullptr, "TEST::PAINTED", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    windows_->RunUntilIdle();
    EXPECT_EQ(FramePixel(20, 20), kRed);
    EXPECT_EQ(FramePixel(119, 79), kRed);
    EXPECT_EQ(FramePixel(70, 50), RGB(200, 200, 255)); // the middle line
    EXPECT_NE(FramePixel(70, 21), kRed);
    // Plain gradient: white at the top, black from half-way plus the offset.
    EXPECT_EQ(FramePixel(205, 0), RGB(255, 255, 255));
    EXPECT_EQ(FramePixel(205, 60), RGB(0, 0, 0));
    EXPECT_EQ(FramePixel(205, 99), RGB(0, 0, 0));
    EXPECT_NE(FramePixel(205, 30), RGB(0, 0, 0));
}

TEST_F(DrawingTest, ChildrenAreClippedToTheirParents) {
    PaintedWnd parent, child, sibling;
    parent.paint = [](Dc& dc) { dc.FillSolidRect(0, 0, 100, 100, kBlue); };
    child.paint = [](Dc& dc) { dc.FillSolidRect(0, 0, 50, 50, kRed); };
    sibling.paint = [](Dc& dc) { dc.FillSolidRect(0, 0, 20, 20, kGreen); };
    parent.Create(nullptr, "TEST::PAINTED", WS_POPUP | WS_VISIBLE, u"", 10, 10, 100, 100);
    child.Create(parent.window, "TEST::PAINTED", WS_CHILD | WS_VISIBLE, u"", 80, 80, 50, 50);
    sibling.Create(parent.window, "TEST::PAINTED", WS_CHILD, u"", 0, 0, 20, 20); // hidden
    windows_->RunUntilIdle();
    EXPECT_EQ(FramePixel(15, 15), kBlue);
    EXPECT_EQ(FramePixel(95, 95), kRed);
    EXPECT_EQ(FramePixel(109, 109), kRed);
    EXPECT_EQ(FramePixel(115, 115), RGB(0, 0, 0)); // outside the parent: nothing
    ShowWindow(sibling.window, SW_SHOW);
    windows_->RunUntilIdle();
    EXPECT_EQ(FramePixel(15, 15), kGreen);
    // Moving the child repaints nothing else but shows it at its new place.
    child.MoveTo(0, 50, 50, 50);
    windows_->RunUntilIdle();
    EXPECT_EQ(FramePixel(15, 65), kRed);
}

TEST_F(DrawingTest, Surface16StoresFiveSixFivePixelsAndIgnoresOutsideWrites) {
    Surface16 surface(3, 2);
    ASSERT_TRUE(surface.IsValid());
    EXPECT_EQ(surface.Stride(), 8); // (2 x 3 + 3) rounded down to four bytes
    surface.SetPixel(0, 0, RGB(255, 0, 0));
    surface.SetPixel(1, 0, RGB(0, 255, 0));
    surface.SetPixel(2, 1, RGB(0, 0, 255));
    surface.SetPixel(3, 0, RGB(255, 255, 255));
    surface.SetPixel(-1, 5, RGB(255, 255, 255));
    const std::uint16_t* bits = surface.Bits();
    EXPECT_EQ(bits[0], 0xF800);
    EXPECT_EQ(bits[1], 0x07E0);
    EXPECT_EQ(bits[4 + 2], 0x001F);
    EXPECT_EQ(bits[2], 0);
    Surface16 shade(2, 2);
    shade.GetDc().FillSolidRect(0, 0, 2, 2, RGB(0, 0, 0));
    Bitmap target(2, 2);
    Dc dc(target);
    dc.FillSolidRect(0, 0, 2, 2, RGB(255, 255, 255));
    DrawShaded(dc, 0, 0, 2, 2, shade);
    // 82 of 255 black over white.
    EXPECT_NEAR(GetRValue(target.GetPixel(1, 1)), 255 - 82, 1);
}

// Owner-drawn buttons ------------------------------------------------------

constexpr UINT kBackground = 501;
constexpr UINT kPressedBackground = 502;
constexpr UINT kIcon = 503;
constexpr int kButtonId = 7;

class ButtonPage : public BaseWnd {
public:
    HWND button = nullptr;
    HWND Make(const OwnerButton& record) {
        ownerButtons.push_back(record);
        CreateModeless(nullptr);
        button = CreateWindowEx(0, "BUTTON", u"", WS_CHILD | WS_VISIBLE | BS_OWNERDRAW, 0, 0, 60, 40, window,
                                kButtonId, nullptr, nullptr);
        return button;
    }
};

class OwnerButtonTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        Bitmap background(60, 40);
        Dc(background).FillSolidRect(0, 0, 60, 40, kBlue);
        Resources::SetBitmap(kBackground, std::move(background));
        Bitmap pressed(60, 40);
        Dc(pressed).FillSolidRect(0, 0, 60, 40, kGreen);
        Resources::SetBitmap(kPressedBackground, std::move(pressed));
        Bitmap icon(10, 10, Bitmap::Format::Argb);
        Dc(icon).FillSolidRect(0, 0, 10, 10, kRed);
        Resources::SetIcon(kIcon, std::move(icon));
    }
    void TearDown() override {
        Resources::Clear();
        UiTest::TearDown();
    }
    // The button's pixels in the frame.
    std::vector<COLORREF> ButtonPixels() {
        windows_->RunUntilIdle();
        std::vector<COLORREF> pixels;
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 60; ++x)
                pixels.push_back(FramePixel(x, y));
        return pixels;
    }
    OwnerButton Record() {
        OwnerButton record;
        record.controlId = kButtonId;
        record.bitmapId = kBackground;
        record.pressedBitmapId = kPressedBackground;
        record.iconId = kIcon;
        record.iconX = 2;
        record.iconY = 2;
        record.text = u"OK";
        record.textColor = RGB(255, 255, 255);
        record.pressedTextColor = RGB(255, 255, 255);
        record.fontHeight = -16;
        record.textFormat = 0x25; // centred, vertically centred, single line
        record.stateful = 1;
        return record;
    }
};

TEST_F(OwnerButtonTest, PressedStatefulButtonFallsBackToTheNormalIconAndText) {
    ButtonPage fallback;
    HWND button = fallback.Make(Record());
    SendMessage(button, BM_SETSTATE, 1, 0);
    const std::vector<COLORREF> withFallbacks = ButtonPixels();
    EXPECT_EQ(withFallbacks[5 * 60 + 5], kRed);     // the normal icon
    EXPECT_EQ(withFallbacks[38 * 60 + 58], kGreen); // the pressed background
    fallback.ownerButtons.clear();
    DestroyWindow(fallback.window);

    OwnerButton explicitRecord = Record();
    explicitRecord.pressedIconId = kIcon;
    explicitRecord.pressedText = u"OK";
    ButtonPage spelledOut;
    HWND other = spelledOut.Make(explicitRecord);
    SendMessage(other, BM_SETSTATE, 1, 0);
    EXPECT_EQ(ButtonPixels(), withFallbacks);
}

TEST_F(OwnerButtonTest, TappingShowsThePressedLookAndSendsTheCommand) {
    class CountingPage : public ButtonPage {
    public:
        int clicks = 0;
        void OnCommand(UINT id, UINT code, HWND control) override {
            if (id == kButtonId && code == BN_CLICKED)
                ++clicks;
            ButtonPage::OnCommand(id, code, control);
        }
    } page;
    page.Make(Record());
    EXPECT_EQ(ButtonPixels()[38 * 60 + 58], kBlue);
    Pointer(DisplayEvent::Type::PointerDown, 30, 20);
    EXPECT_EQ(FramePixel(58, 38), kGreen);
    // Sliding off the button releases it without a click.
    Pointer(DisplayEvent::Type::PointerMove, 300, 300);
    EXPECT_NE(FramePixel(58, 38), kGreen);
    Pointer(DisplayEvent::Type::PointerUp, 300, 300);
    EXPECT_EQ(page.clicks, 0);
    Tap(30, 20);
    EXPECT_EQ(page.clicks, 1);
}

TEST_F(OwnerButtonTest, DisabledLabelIsEmbossedAndMissingPicturesAreSkipped) {
    OwnerButton record = Record();
    record.stateful = 0;
    record.bitmapId = 999; // not registered: not drawn
    record.iconId = 0;
    record.text = u"MMMM";
    record.textColor = RGB(0, 0, 0);
    ButtonPage page;
    HWND button = page.Make(record);
    EnableWindow(button, false);
    const std::vector<COLORREF> pixels = ButtonPixels();
    bool light = false, dark = false, black = false;
    for (COLORREF c : pixels) {
        light = light || c == RGB(255, 255, 255);
        dark = dark || c == RGB(152, 152, 152);
        black = black || c == RGB(0, 0, 0);
    }
    EXPECT_TRUE(light);
    EXPECT_TRUE(dark);
    EXPECT_TRUE(black); // the background, left black with no bitmap
    // Not stateful: pressing shows no pressed background.
    EnableWindow(button, true);
    SendMessage(button, BM_SETSTATE, 1, 0);
    EXPECT_NE(ButtonPixels()[38 * 60 + 58], kGreen);
}

TEST_F(DrawingTest, TextIsLaidOutInItsRectangle) {
    Bitmap target(200, 100);
    Dc dc(target);
    LOGFONT lf;
    DefaultFont(lf);
    Font font(lf);
    dc.SelectFont(&font);
    RECT measure{0, 0, 0, 0};
    dc.DrawText(u"Hello", measure, DT_SINGLELINE | DT_CALCRECT);
    EXPECT_GT(measure.right, 20);
    EXPECT_GT(measure.bottom, 10);
    RECT wrapped{0, 0, 60, 0};
    dc.DrawText(u"one two three four five", wrapped, DT_WORDBREAK | DT_CALCRECT);
    EXPECT_EQ(wrapped.right, 60);
    EXPECT_GT(wrapped.bottom, 2 * measure.bottom);
    // A prefix mark is not drawn unless asked for.
    EXPECT_EQ(dc.GetTextExtent(u"Hello").cx, measure.right);
    RECT prefixed{0, 0, 0, 0};
    dc.DrawText(u"&Hello", prefixed, DT_SINGLELINE | DT_CALCRECT);
    EXPECT_EQ(prefixed.right, measure.right);
}

} // namespace
} // namespace mirodate::test
