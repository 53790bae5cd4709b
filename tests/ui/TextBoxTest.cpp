// The rich text box on the real window system, headless: what its mark-up
// looks like in pixels, scrolling by finger, and taps on links that reach
// the desktop (recorded) only after the owner's question was answered yes.
#include "ControlTestKit.h"
#include "lang/LanguageTable.h"
#include "platform/RecordingPlatformServices.h"
#include "platform/TextUtil.h"
#include "ui/Scale.h"
#include "ui/TextBoxWnd.h"

namespace mirodate::test {
namespace {

constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);
constexpr COLORREF kLink = RGB(0, 0, 0xFF);

class TextBoxTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetHighResolution(true);
        parent_.Open(480, 640);
    }
    TextBoxWnd& MakeBox(const std::u16string& markup, int x, int y, int w, int h) {
        auto& box = boxes_.emplace_back(std::make_unique<TextBoxWnd>());
        box->Create(parent_.GetHwnd(), x, y, w, h);
        TextBoxColors colors;
        colors.background = kWhite;
        colors.text = RGB(0, 0, 0);
        colors.link = kLink;
        colors.linkPressed = RGB(0xFF, 0xFF, 0);
        box->SetColors(colors);
        box->SetText(markup);
        windows_->RunFor(500); // long texts are measured on a timer
        return *box;
    }
    // Columns and rows of a screen rectangle that hold anything but white.
    RECT InkBounds(const RECT& area) {
        RECT ink{area.right, area.bottom, area.left, area.top};
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x)
                if (FramePixel(x, y) != kWhite) {
                    ink.left = std::min(ink.left, x);
                    ink.top = std::min(ink.top, y);
                    ink.right = std::max(ink.right, x + 1);
                    ink.bottom = std::max(ink.bottom, y + 1);
                }
        return ink;
    }
    // Whether two same-sized screen areas hold the same picture.
    bool SamePicture(const RECT& a, int bx, int by) {
        for (int y = 0; y < a.Height(); ++y)
            for (int x = 0; x < a.Width(); ++x)
                if (FramePixel(a.left + x, a.top + y) != FramePixel(bx + x, by + y))
                    return false;
        return true;
    }
    int CountColour(const RECT& area, COLORREF colour) {
        int count = 0;
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x)
                count += FramePixel(x, y) == colour;
        return count;
    }
    void Drag(int x, int fromY, int toY) {
        Pointer(DisplayEvent::Type::PointerDown, x, fromY);
        for (int step = 1; step <= 8; ++step) {
            windows_->RunFor(20);
            Pointer(DisplayEvent::Type::PointerMove, x, fromY + (toY - fromY) * step / 8);
        }
        windows_->RunFor(300); // held still: no fling
        Pointer(DisplayEvent::Type::PointerUp, x, toY);
        windows_->RunFor(1000);
    }
    void TapCentre(const RECT& r) { Tap((r.left + r.right) / 2, (r.top + r.bottom) / 2); }

    RecordingParent parent_;
    std::vector<std::unique_ptr<TextBoxWnd>> boxes_;
};

TEST_F(TextBoxTest, BoldTextIsWiderThanPlainText) {
    MakeBox(u"Calendar entries", 0, 0, 480, 60);
    MakeBox(u"<b>Calendar entries</b>", 0, 60, 480, 60);
    const RECT plain = InkBounds(RECT{0, 0, 480, 60});
    const RECT bold = InkBounds(RECT{0, 60, 480, 120});
    ASSERT_LT(plain.left, plain.right);
    EXPECT_EQ(plain.left, bold.left);
    EXPECT_GT(bold.right, plain.right + 4);
}

TEST_F(TextBoxTest, LineFeedAndBreakGiveTheSamePicture) {
    TextBoxWnd& fed = MakeBox(u"first line\nsecond\n\nfourth", 0, 0, 240, 200);
    MakeBox(u"first line<br>second<br><br>fourth", 240, 0, 240, 200);
    MakeBox(u"first line second fourth", 0, 200, 240, 200);
    EXPECT_EQ(fed.GetText(), u"first line<br>second<br><br>fourth");
    EXPECT_TRUE(SamePicture(RECT{0, 0, 240, 200}, 240, 0));
    // The comparison sees a difference where there is one.
    EXPECT_FALSE(SamePicture(RECT{0, 0, 240, 200}, 0, 200));
    // Four lines, the third empty.
    EXPECT_EQ(fed.Layout().LineCount(), 4);
}

TEST_F(TextBoxTest, UnknownAndUnclosedTagsDrawLikeTheirCleanForm) {
    MakeBox(u"<b>bold <blink>still bold <i>and italic", 0, 0, 480, 100);
    MakeBox(u"<b>bold still bold <i>and italic</i></b>", 0, 100, 480, 100);
    MakeBox(u"x <a href='http://x.org>link</a> and text", 0, 200, 480, 100);
    MakeBox(u"x <a href='http://x.org'>link</a> and text", 0, 300, 480, 100);
    EXPECT_TRUE(SamePicture(RECT{0, 0, 480, 100}, 0, 100));
    EXPECT_TRUE(SamePicture(RECT{0, 200, 480, 300}, 0, 300));
    // The text after the broken tag is drawn in full.
    EXPECT_GT(InkBounds(RECT{0, 0, 480, 100}).right, 250);
}

TEST_F(TextBoxTest, WordsWrapToTheBoxWidth) {
    TextBoxWnd& box =
        MakeBox(u"one two three four five six seven eight nine ten eleven twelve", 0, 0, 160, 400);
    EXPECT_GT(box.Layout().LineCount(), 2);
    const RECT ink = InkBounds(RECT{0, 0, 160, 400});
    EXPECT_LE(ink.right, 160 - Scale(4) + 1);
    // Nothing breaks inside a word that fits.
    for (int i = 0; i < box.Layout().LineCount(); ++i)
        SUCCEED();
}

TEST_F(TextBoxTest, LinksAreDrawnInTheLinkColourExceptOwnerActions) {
    MakeBox(u"<a href='www.example.org'>WEB LINK</a>", 0, 0, 480, 60);
    MakeBox(u"<a href='action:\\\\\\7'><font color='#00a000'>ENTRY</font></a>", 0, 60, 480, 60);
    EXPECT_GT(CountColour(RECT{0, 0, 480, 60}, kLink), 50);
    EXPECT_EQ(CountColour(RECT{0, 60, 480, 120}, kLink), 0);
    EXPECT_GT(CountColour(RECT{0, 60, 480, 120}, RGB(0, 0xA0, 0)), 20);
}

TEST_F(TextBoxTest, EachLinkKindReachesTheDesktopOnlyAfterYes) {
    LanguageTable::Instance().SetText(u"LANGUAGE=x\nQuestionVisitUrl=Visit\nQuestionSendMail=Mail\n"
                                      u"QuestionCallNumber=Call\nQuestionOpenFile=Open\n");
    RecordingPlatformServices recorder;
    TextBoxWnd& box =
        MakeBox(u"<a href='WWW.Example.org'>web</a><br><a href='mailto:anna@x.org'>mail</a><br>"
                u"<a href='Tel:+49 30 1234'>call</a><br><a href='file:////tmp/notes.txt'>file</a><br>"
                u"<a onclick='alert('hi')'>alert</a><br><a href='action:\\\\\\oid 5'>entry</a><br>"
                u"<a href='gopher://x'>old</a>",
                0, 0, 480, 600);
    bool answer = false;
    std::vector<std::u16string> questions, messages, actions;
    box.Links().confirm = [&](const std::u16string& text) {
        questions.push_back(text);
        return answer;
    };
    box.Links().inform = [&](const std::u16string& text, const std::u16string&) { messages.push_back(text); };
    box.Links().action = [&](const std::u16string& argument) { actions.push_back(argument); };
    ASSERT_EQ(box.Document().links.size(), 7u);
    for (int i = 0; i < 4; ++i) {
        TapCentre(box.LinkRect(i));
        windows_->RunFor(600);
    }
    EXPECT_EQ(questions.size(), 4u);
    EXPECT_TRUE(recorder.Calls().empty());
    answer = true;
    for (int i = 0; i < 7; ++i) {
        TapCentre(box.LinkRect(i));
        windows_->RunFor(600);
    }
    EXPECT_EQ(recorder.Calls(),
              (std::vector<std::string>{"xdg-open http://WWW.Example.org", "xdg-email anna@x.org",
                                        "xdg-open tel:+49301234", "xdg-open /tmp/notes.txt"}));
    ASSERT_EQ(questions.size(), 8u);
    EXPECT_EQ(questions[6], u"Call:\n+49 30 1234");
    EXPECT_EQ(messages, (std::vector<std::u16string>{u"hi", u"UnknownProtocol"}));
    EXPECT_EQ(actions, std::vector<std::u16string>{u"oid 5"});
    LanguageTable::Instance().SetText(u"");
}

TEST_F(TextBoxTest, LinksAreHitWhereTheyAreAfterAScroll) {
    RecordingPlatformServices recorder;
    std::u16string markup;
    for (int i = 0; i < 40; ++i)
        markup += u"Line of the note number " + ToU16(i) + u"\n";
    markup += u"<a href='tel:555 0100'>call the office</a>\nend";
    TextBoxWnd& box = MakeBox(markup, 0, 0, 480, 400);
    box.Links().confirm = [](const std::u16string&) { return true; };
    std::vector<POINT> outside;
    box.onTapOutsideLink = [&](int x, int y) { outside.push_back(POINT{x, y}); };

    const RECT before = box.LinkRect(0);
    ASSERT_GT(before.top, 400); // below the box
    EXPECT_LT(box.LinkAtPoint(10, 200), 0);
    Drag(200, 380, 20);
    Drag(200, 380, 20);
    Drag(200, 380, 20);
    EXPECT_EQ(box.Scroller().Position(), box.Scroller().MaxPosition());
    const RECT after = box.LinkRect(0);
    ASSERT_GE(after.top, 0);
    ASSERT_LE(after.bottom, 400);
    EXPECT_EQ(before.top - after.top, box.Scroller().Position());

    // Pressing shows the link pressed; the tap hands it off.
    Pointer(DisplayEvent::Type::PointerDown, after.left + 4, (after.top + after.bottom) / 2);
    EXPECT_GT(CountColour(after, RGB(0xFF, 0xFF, 0)), 10);
    Pointer(DisplayEvent::Type::PointerUp, after.left + 4, (after.top + after.bottom) / 2);
    EXPECT_EQ(recorder.Calls(), std::vector<std::string>{"xdg-open tel:5550100"});
    // The same spot of the text, one line lower, is plain text.
    windows_->RunFor(600);
    Tap(after.left + 4, after.bottom + (after.bottom - after.top) / 2 + 2);
    EXPECT_EQ(recorder.Calls().size(), 1u);
    EXPECT_EQ(outside.size(), 1u);
}

TEST_F(TextBoxTest, AFlingScrollsAndBouncesBackAtTheEnd) {
    std::u16string markup;
    for (int i = 0; i < 200; ++i)
        markup += u"line " + ToU16(i) + u"<br>";
    TextBoxWnd& box = MakeBox(markup, 0, 0, 480, 400);
    ASSERT_GT(box.Scroller().MaxPosition(), 2000);
    Pointer(DisplayEvent::Type::PointerDown, 200, 380);
    for (int step = 1; step <= 4; ++step) {
        windows_->RunFor(10);
        Pointer(DisplayEvent::Type::PointerMove, 200, 380 - step * 80);
    }
    Pointer(DisplayEvent::Type::PointerUp, 200, 60);
    EXPECT_TRUE(box.Scroller().IsFlinging());
    windows_->RunFor(5000);
    EXPECT_FALSE(box.Scroller().IsFlinging());
    EXPECT_GT(box.Scroller().Position(), 400);
    // Pulled down past the top, it springs back to 0.
    box.Scroller().SetPosition(0);
    Pointer(DisplayEvent::Type::PointerDown, 200, 20);
    for (int step = 1; step <= 4; ++step) {
        windows_->RunFor(30);
        Pointer(DisplayEvent::Type::PointerMove, 200, 20 + step * 60);
    }
    EXPECT_LT(box.Scroller().Position(), 0);
    Pointer(DisplayEvent::Type::PointerUp, 200, 260);
    windows_->RunFor(1000);
    EXPECT_EQ(box.Scroller().Position(), 0);
}

TEST_F(TextBoxTest, ANewTextStartsAtItsTop) {
    std::u16string markup;
    for (int i = 0; i < 100; ++i)
        markup += u"line " + ToU16(i) + u"<br>";
    TextBoxWnd& box = MakeBox(markup, 0, 0, 480, 300);
    box.Scroller().SetPosition(1000);
    windows_->RunUntilIdle();
    box.SetText(u"<b>short</b>");
    windows_->RunUntilIdle();
    EXPECT_EQ(box.Scroller().Position(), 0);
    EXPECT_EQ(box.Scroller().MaxPosition(), 0);
    EXPECT_LT(InkBounds(RECT{0, 0, 480, 300}).top, 20);
}

TEST_F(TextBoxTest, HorizontalSwipesGoToTheOwner) {
    TextBoxWnd& box = MakeBox(u"Monday", 0, 0, 480, 300);
    std::vector<bool> swipes;
    box.onSwipe = [&](bool left) { swipes.push_back(left); };
    Pointer(DisplayEvent::Type::PointerDown, 400, 100);
    Pointer(DisplayEvent::Type::PointerMove, 200, 110);
    Pointer(DisplayEvent::Type::PointerUp, 200, 110);
    Pointer(DisplayEvent::Type::PointerDown, 100, 100);
    Pointer(DisplayEvent::Type::PointerMove, 300, 100);
    Pointer(DisplayEvent::Type::PointerUp, 300, 100);
    EXPECT_EQ(swipes, (std::vector<bool>{true, false}));
}

TEST_F(TextBoxTest, PicturesTakeTheirPlaceAndHostileSizesAreCut) {
    TextBoxWnd& box = boxes_.emplace_back(std::make_unique<TextBoxWnd>()).operator*();
    box.Create(parent_.GetHwnd(), 0, 0, 480, 300);
    std::vector<std::u16string> asked;
    box.SetPictureSource([&](const std::u16string& id) {
        asked.push_back(id);
        if (id != u"dot")
            return Bitmap();
        Bitmap red(4, 4);
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                red.SetPixel(x, y, RGB(0xFF, 0, 0));
        return red;
    });
    TextBoxColors colors;
    box.SetColors(colors);
    box.SetText(u"a<img id='dot' w='40' h='20' hspace='10'>b<img id='dot'><img id='gone'>"
                u"<br><img id='dot' w='999999999' h='999999999'>");
    windows_->RunUntilIdle();
    EXPECT_EQ(asked, (std::vector<std::u16string>{u"dot", u"gone"})); // each id once
    // 40x20 + the natural 4x4, and the huge one cut to the box's width.
    const int red = CountColour(RECT{0, 0, 480, 300}, RGB(0xFF, 0, 0));
    EXPECT_GE(red, 40 * 20 + 16 + 480 * 250 / 2);
    EXPECT_GT(box.Layout().Height(), 300);
    EXPECT_LE(box.Layout().Height(), 480 + 200);
}

TEST_F(TextBoxTest, ALongTextShowsAtOnceAndIsMeasuredInTheBackground) {
    std::u16string markup;
    for (int i = 0; i < 600; ++i)
        markup += u"Paragraph " + ToU16(i) + u" of a long note, with some words in it.\n";
    markup += u"<a href='www.last.org'>the very end</a>";
    TextBoxWnd& box = boxes_.emplace_back(std::make_unique<TextBoxWnd>()).operator*();
    box.Create(parent_.GetHwnd(), 0, 0, 480, 400);
    TextBoxColors colors;
    colors.link = kLink;
    box.SetColors(colors);
    box.SetText(markup);
    windows_->RunUntilIdle();
    // The first screen is there, the rest is an estimate.
    EXPECT_FALSE(box.Layout().IsComplete());
    EXPECT_LT(InkBounds(RECT{0, 0, 480, 400}).top, 20);
    EXPECT_GT(box.Scroller().MaxPosition(), 5000);
    // Dragging to the end measures what comes into view on the way.
    for (int i = 0; i < 200 && box.Scroller().Position() < box.Scroller().MaxPosition(); ++i) {
        box.Scroller().SetPosition(box.Scroller().Position() + 380);
        windows_->RunUntilIdle();
    }
    windows_->RunFor(2000);
    EXPECT_TRUE(box.Layout().IsComplete());
    box.Scroller().SetPosition(box.Scroller().MaxPosition());
    windows_->RunUntilIdle();
    const RECT last = box.LinkRect(0);
    EXPECT_GT(last.top, 300);
    EXPECT_LE(last.bottom, 400);
    EXPECT_GT(CountColour(RECT{0, 300, 480, 400}, kLink), 20);
    // Every paragraph measured, at least one line each.
    EXPECT_GT(box.Layout().LineCount(), 600);
}

TEST_F(TextBoxTest, ANarrowerBoxWrapsAgain) {
    TextBoxWnd& box =
        MakeBox(u"one two three four five six seven eight nine ten eleven twelve thirteen", 0, 0, 480, 300);
    const int wide = box.Layout().LineCount();
    MoveWindow(box.GetHwnd(), 0, 0, 150, 300, true);
    windows_->RunFor(100);
    EXPECT_GT(box.Layout().LineCount(), wide);
    EXPECT_EQ(box.Layout().Width(), 150 - 2 * Scale(4));
}

TEST_F(TextBoxTest, HostileMarkupRendersSomething) {
    std::u16string deep;
    for (int i = 0; i < 10000; ++i)
        deep += u"<b><font color='#ff0000'><sup><a href='x'>";
    deep += u"deep";
    TextBoxWnd& nested = MakeBox(deep, 0, 0, 240, 200);
    EXPECT_EQ(nested.Document().text, "deep");
    std::u16string broken = u"<a href='http://x.org>unclosed <img w='999999999'> ";
    broken += std::u16string{char16_t(0xD800), u'\x07', u'\x1b', char16_t(0xDFFF)};
    broken += std::u16string(1 << 20, u'm');
    TextBoxWnd& big = MakeBox(broken, 240, 0, 240, 200);
    EXPECT_TRUE(big.Document().truncated);
    EXPECT_GT(big.Scroller().MaxPosition(), 1000);
    EXPECT_GT(CountColour(RECT{240, 0, 480, 200}, kLink), 10);
}

} // namespace
} // namespace mirodate::test
