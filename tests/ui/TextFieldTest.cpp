// The text field on the real window system, headless: typing and keys as
// the script's `text` and `key` lines give them, input-method composition,
// selection by finger and keys, the clipboard, the long-press pop-up, the
// length limit and what bad input (a huge or broken clipboard, control
// characters) does to it.
#include "UiTestFixture.h"
#include "platform/VirtualKeys.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/HeadlessScript.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/TextFieldWnd.h"

#include <chrono>

namespace mirodate::test {
namespace {

constexpr int kFieldId = 42;

// The page the fields live on; it keeps what they tell it.
class FieldPage : public BaseWnd {
public:
    struct Notice {
        int id;
        WORD code;
    };
    std::vector<Notice> notices;
    std::vector<UINT> inserts;

    HWND Open(int width, int height) {
        return Create(nullptr, "MIRODATE::FIELDPAGE", WS_POPUP | WS_VISIBLE, u"page", 0, 0, width, height);
    }
    void OnPaint(HDC dc) override { dc->FillSolidRect(0, 0, dc->Width(), dc->Height(), RGB(200, 200, 200)); }
    void OnCommand(UINT id, UINT code, HWND) override {
        notices.push_back(Notice{static_cast<int>(id), static_cast<WORD>(code)});
    }
    LRESULT OnNotify(UINT_PTR, NMHDR* header) override {
        if (header->code == NM_TEXTFIELD_INSERT)
            inserts.push_back(reinterpret_cast<NMTEXTFIELDINSERT*>(header)->command);
        return 0;
    }
    std::vector<UINT> keys;
    void OnKeyDown(UINT key, UINT) override { keys.push_back(key); }
    int Count(WORD code) const {
        int n = 0;
        for (const Notice& notice : notices)
            n += notice.code == code;
        return n;
    }
};

class TextFieldTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        SetHighResolution(true);
        ScreenBars::SetTopBarHeight(52);
        ScreenBars::SetMenuBarHeight(60);
        Settings::SetBool("DisableAnimations", true);
        page_.Open(480, 640);
        field_.Create(page_.GetHwnd(), kFieldId, kLeft, kTop, kWidth, kHeight, false);
        windows_->RunUntilIdle();
    }
    void TearDown() override {
        ScreenBars::Reset();
        UiTest::TearDown();
    }
    // Plays script lines as a headless run would.
    void Play(const std::string& script) {
        std::vector<ScriptAction> actions;
        std::string error;
        ASSERT_TRUE(HeadlessScript::Parse(script, actions, error)) << error;
        for (const ScriptAction& action : actions) {
            if (action.kind == ScriptAction::Kind::Wait) {
                windows_->RunFor(action.milliseconds);
            } else if (action.kind == ScriptAction::Kind::Input) {
                display_->Inject(action.event);
                windows_->RunUntilIdle();
            }
        }
    }
    void TypeText(const std::string& utf8) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::Text;
        event.text = utf8;
        display_->Inject(event);
        windows_->RunUntilIdle();
    }
    void Focus(TextFieldWnd& field) {
        RECT rect;
        GetWindowRect(field.GetHwnd(), &rect);
        Tap(rect.left + 4, rect.top + rect.Height() / 2);
        windows_->RunFor(600); // no double tap with what follows
    }
    // Dark pixels inside a screen rectangle: text, caret and underlines.
    int DarkPixels(const RECT& rect) {
        windows_->ComposeIfNeeded();
        int count = 0;
        for (int y = rect.top; y < rect.bottom; ++y)
            for (int x = rect.left; x < rect.right; ++x) {
                const COLORREF c = FramePixel(x, y);
                count += GetRValue(c) + GetGValue(c) + GetBValue(c) < 3 * 100;
            }
        return count;
    }
    // The x just right of the rightmost text pixel in the field.
    int TextRight() {
        int right = kLeft;
        for (int x = kLeft + 8; x < kLeft + kWidth - 8; ++x)
            for (int y = kTop + 8; y < kTop + kHeight - 8; ++y) {
                const COLORREF c = FramePixel(x, y);
                if (GetRValue(c) < 100 && GetGValue(c) < 100)
                    right = x + 1;
            }
        return right;
    }

    static constexpr int kLeft = 20, kTop = 100, kWidth = 400, kHeight = 50;
    FieldPage page_;
    TextFieldWnd field_;
};

TEST_F(TextFieldTest, ScriptTextAndKeyLinesTypeAndEditAtTheCaret) {
    EXPECT_FALSE(display_->IsTextInputActive());
    Play("tap 30 125\nwait 600\n");
    EXPECT_EQ(GetFocus(), field_.GetHwnd());
    EXPECT_TRUE(display_->IsTextInputActive()); // the on-screen keyboard comes with the focus
    Play("text Hello wörld\n"
         "key left\nkey left\nkey left\nkey left\nkey left\n"
         "key back\n"   // the blank before the w
         "key delete\n" // the w
         "key home\ntext >\nkey end\ntext <\n");
    EXPECT_EQ(field_.GetText(), u">Helloörld<");
    EXPECT_EQ(field_.Caret(), 11);
    // One notification for every change: 11 typed, 2 deleted, 2 typed.
    EXPECT_EQ(page_.Count(EN_CHANGE), 15);
    for (const auto& notice : page_.notices)
        EXPECT_EQ(notice.id, kFieldId);
    // The text is on the screen, and a letter key line types its letter.
    EXPECT_GT(DarkPixels(RECT{kLeft, kTop, kLeft + kWidth, kTop + kHeight}), 100);
    Play("key x\nkey shift+y\n");
    EXPECT_EQ(field_.GetText(), u">Helloörld<xY");

    // Focus elsewhere ends text input, and so does a focused field going away.
    SetFocus(page_.GetHwnd());
    EXPECT_FALSE(display_->IsTextInputActive());
    Focus(field_);
    EXPECT_TRUE(display_->IsTextInputActive());
    DestroyWindow(page_.GetHwnd());
    EXPECT_FALSE(display_->IsTextInputActive());
}

TEST_F(TextFieldTest, EnterTellsTheParentAndBreaksTheLineOnlyWhenMultiLine) {
    Focus(field_);
    Play("text one\nkey return\n");
    EXPECT_EQ(field_.GetText(), u"one");
    EXPECT_EQ(page_.Count(EN_ENTER), 1);
    EXPECT_EQ(page_.Count(EN_CHANGE), 3);

    TextFieldWnd notes;
    notes.Create(page_.GetHwnd(), 7, 20, 200, 400, 200, true);
    Focus(notes);
    Play("text one\nkey enter\ntext two\n");
    EXPECT_EQ(notes.GetText(), u"one\ntwo");
    EXPECT_EQ(page_.Count(EN_ENTER), 2);
}

TEST_F(TextFieldTest, EscapeGoesToThePageAndLeavesTheTextAlone) {
    Focus(field_);
    Play("text keep\nkey escape\n");
    EXPECT_EQ(field_.GetText(), u"keep");
    EXPECT_EQ(page_.keys, std::vector<UINT>{VK_ESCAPE});
}

TEST_F(TextFieldTest, CompositionIsUnderlinedAtTheCaretUntilCommitted) {
    Focus(field_);
    Play("text ab\nkey left\n");
    const int changes = page_.Count(EN_CHANGE);
    Play("compose xy\n");
    EXPECT_EQ(field_.Composition(), u"xy");
    EXPECT_EQ(field_.GetText(), u"ab"); // not part of the text yet
    EXPECT_EQ(page_.Count(EN_CHANGE), changes);
    const RECT area{kLeft, kTop, kLeft + kWidth, kTop + kHeight};
    const int composing = DarkPixels(area);

    Play("compose\ntext xy\n");
    EXPECT_EQ(field_.Composition(), u"");
    EXPECT_EQ(field_.GetText(), u"axyb");
    EXPECT_EQ(field_.Caret(), 3);
    EXPECT_EQ(page_.Count(EN_CHANGE), changes + 2);
    // The same letters and caret, without the underline.
    EXPECT_GT(composing, DarkPixels(area) + 10);

    // A commit that arrives while the composition is still shown replaces it.
    Play("compose 漢\ntext 漢字\n");
    EXPECT_EQ(field_.Composition(), u"");
    EXPECT_EQ(field_.GetText(), u"axy漢字b");
}

TEST_F(TextFieldTest, DragDoubleTapAndKeysSelect) {
    field_.SetText(u"xxxx yyyy zzzz");
    Focus(field_);
    windows_->RunUntilIdle();
    const int right = TextRight();
    ASSERT_GT(right, kLeft + 50);
    const int textLeft = kLeft + Scale(3);
    const int y = kTop + kHeight / 2;

    // A drag from the start to past the end selects everything it passed.
    Pointer(DisplayEvent::Type::PointerDown, textLeft, y);
    for (int x = textLeft; x <= right + 40; x += 20)
        Pointer(DisplayEvent::Type::PointerMove, x, y);
    Pointer(DisplayEvent::Type::PointerUp, right + 40, y);
    EXPECT_EQ(field_.SelectionStart(), 0);
    EXPECT_EQ(field_.SelectionEnd(), 14);
    windows_->RunFor(600);

    // Two quick taps on the middle word select it.
    const int middle = textLeft + (right - textLeft) * 7 / 14;
    Tap(middle, y);
    Tap(middle, y);
    EXPECT_EQ(field_.SelectionStart(), 5);
    EXPECT_EQ(field_.SelectionEnd(), 9);
    windows_->RunFor(600);

    Play("key left\n"); // collapses to the start
    EXPECT_EQ(field_.SelectionStart(), 5);
    EXPECT_EQ(field_.SelectionEnd(), 5);
    Play("key shift+right\nkey shift+right\n");
    EXPECT_EQ(field_.SelectionEnd(), 7);
    Play("key ctrl+shift+end\n");
    EXPECT_EQ(field_.SelectionEnd(), 14);
    Play("key ctrl+a\n");
    EXPECT_EQ(field_.SelectionStart(), 0);
    EXPECT_EQ(field_.SelectionEnd(), 14);
    EXPECT_EQ(field_.GetText(), u"xxxx yyyy zzzz"); // ctrl+a typed nothing
    // The selection shows: its background fills the text's cells.
    auto selectionPixels = [&] {
        int count = 0;
        for (int x = kLeft; x < kLeft + kWidth; ++x)
            count += FramePixel(x, y) == RGB(0x33, 0x66, 0xCC);
        return count;
    };
    EXPECT_GT(selectionPixels(), (right - textLeft) / 2);
    // Typing replaces the selection.
    Play("text new\n");
    EXPECT_EQ(field_.GetText(), u"new");
    EXPECT_EQ(selectionPixels(), 0);
}

TEST_F(TextFieldTest, TheCaretStepsOverSurrogatePairsAndTapsLandBesideThem) {
    field_.SetText(u"a😀b");
    Focus(field_);
    Play("key home\nkey right\nkey right\n");
    EXPECT_EQ(field_.Caret(), 3); // after the pair, never inside it
    Play("key back\n");
    EXPECT_EQ(field_.GetText(), u"ab");
    field_.SetText(u"😀😀😀😀");
    windows_->RunUntilIdle();
    // A tap past the end puts the caret after the last pair.
    Tap(kLeft + kWidth - 10, kTop + kHeight / 2);
    EXPECT_EQ(field_.Caret(), 8);
    windows_->RunFor(600);
    // Taps anywhere over the text land between pairs.
    for (int x = kLeft + 6; x < TextRight(); x += 7) {
        Tap(x, kTop + kHeight / 2);
        windows_->RunFor(600);
        EXPECT_EQ(field_.Caret() % 2, 0) << "tap at " << x;
    }
}

TEST_F(TextFieldTest, ClipboardCarriesTextBetweenFields) {
    TextFieldWnd other;
    other.Create(page_.GetHwnd(), 8, 20, 300, 400, 50, false);
    field_.SetText(u"copy me ☃");
    Focus(field_);
    Play("key ctrl+a\nkey ctrl+c\n");
    EXPECT_EQ(display_->GetClipboardText(), "copy me ☃");
    Focus(other);
    Play("text >\nkey ctrl+v\n");
    EXPECT_EQ(other.GetText(), u">copy me ☃");
    Focus(field_);
    Play("key ctrl+a\nkey ctrl+x\n");
    EXPECT_EQ(field_.GetText(), u"");
    EXPECT_EQ(display_->GetClipboardText(), "copy me ☃");
}

TEST_F(TextFieldTest, PopUpEntriesAndTheirEnabledStates) {
    auto states = [&] {
        std::vector<std::pair<UINT, bool>> entries;
        for (const ContextMenuItem& item : field_.MenuItems())
            entries.emplace_back(item.command, item.enabled);
        return entries;
    };
    using Entries = std::vector<std::pair<UINT, bool>>;
    // No selection, empty clipboard: only nothing is enabled.
    EXPECT_EQ(
        states(),
        (Entries{{768, false}, {769, false}, {770, false}, {3, false}, {1, false}, {2, false}, {4, false}}));
    field_.SetText(u"some text");
    field_.SetSelection(0, 4);
    display_->SetClipboardText("x");
    EXPECT_EQ(
        states(),
        (Entries{{768, true}, {769, true}, {770, true}, {3, true}, {1, false}, {2, false}, {4, false}}));
    // Select all asks for a selection just as cut does.
    field_.SetSelection(9, 9);
    EXPECT_EQ(states()[3], (std::pair<UINT, bool>{3, false}));
    field_.SetNoInsert(true);
    EXPECT_EQ(states(), (Entries{{768, false}, {769, false}, {770, true}, {3, false}}));
}

TEST_F(TextFieldTest, LongPressOpensThePopUpAndTheChosenCommandActsOnTheField) {
    field_.SetText(u"some text");
    Focus(field_);
    field_.SetSelection(0, 4);
    const int menusBefore = ContextMenu::OpenCount(); // a count over the process
    Pointer(DisplayEvent::Type::PointerDown, kLeft + 30, kTop + 25);
    windows_->RunFor(800);
    Pointer(DisplayEvent::Type::PointerUp, kLeft + 30, kTop + 25);
    windows_->RunFor(200);
    const HWND menu = FindWindow(nullptr, kContextMenuTitle);
    ASSERT_TRUE(menu);
    EXPECT_EQ(field_.SelectionEnd(), 4); // the press moved nothing
    RECT rect;
    GetWindowRect(menu, &rect);
    const int row = Scale(34);
    // A greyed row (Paste with an empty clipboard, the third) does nothing.
    Tap(rect.left + 40, rect.top + 3 * row + row / 2);
    windows_->RunUntilIdle();
    EXPECT_TRUE(IsWindowVisible(menu));
    // "Copy", the second row under the header.
    Tap(rect.left + 40, rect.top + 2 * row + row / 2);
    windows_->RunUntilIdle();
    EXPECT_EQ(display_->GetClipboardText(), "some");
    EXPECT_EQ(ContextMenu::OpenCount(), menusBefore);
    EXPECT_FALSE(FindWindow(nullptr, kContextMenuTitle));
    EXPECT_EQ(GetFocus(), field_.GetHwnd());

    // "Cut" from the menu changes the text and tells the parent.
    windows_->RunFor(1100);
    const int changes = page_.Count(EN_CHANGE);
    Pointer(DisplayEvent::Type::PointerDown, kLeft + 30, kTop + 25);
    windows_->RunFor(800);
    Pointer(DisplayEvent::Type::PointerUp, kLeft + 30, kTop + 25);
    windows_->RunFor(200);
    GetWindowRect(FindWindow(nullptr, kContextMenuTitle), &rect);
    Tap(rect.left + 40, rect.top + row + row / 2);
    windows_->RunUntilIdle();
    EXPECT_EQ(field_.GetText(), u" text");
    EXPECT_EQ(page_.Count(EN_CHANGE), changes + 1);
}

TEST_F(TextFieldTest, TheRightMouseButtonOpensThePopUpAtOnce) {
    field_.SetText(u"text");
    DisplayEvent press;
    press.type = DisplayEvent::Type::PointerDown;
    press.button = 1;
    press.x = kLeft + 20;
    press.y = kTop + 20;
    display_->Inject(press);
    press.type = DisplayEvent::Type::PointerUp;
    display_->Inject(press);
    windows_->RunFor(200);
    const HWND menu = FindWindow(nullptr, kContextMenuTitle);
    ASSERT_TRUE(menu);
    EXPECT_TRUE(IsWindowVisible(menu));
    SendMessage(menu, WM_CLOSE_POPUP, 0, 0);
    windows_->RunUntilIdle();
    EXPECT_FALSE(FindWindow(nullptr, kContextMenuTitle));
}

TEST_F(TextFieldTest, InsertCommandsGoToTheParentOnlyWhenEnabled) {
    SendMessage(field_.GetHwnd(), WM_COMMAND, TextFieldWnd::kCommandInsertDate, 0);
    EXPECT_TRUE(page_.inserts.empty()); // greyed entries never act
    field_.SetInsertCommandsEnabled(true);
    SendMessage(field_.GetHwnd(), WM_COMMAND, TextFieldWnd::kCommandInsertContact, 0);
    SendMessage(field_.GetHwnd(), WM_COMMAND, TextFieldWnd::kCommandInsertDate, 0);
    EXPECT_EQ(page_.inserts, (std::vector<UINT>{1, 4}));
    EXPECT_TRUE(page_.notices.empty()); // and never as the dialog's OK or Cancel
}

TEST_F(TextFieldTest, AMegabytePasteIsCutToTheLimitAtOnce) {
    Focus(field_);
    display_->SetClipboardText(std::string(1 << 20, 'x'));
    const auto start = std::chrono::steady_clock::now();
    Play("key ctrl+v\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start,
              std::chrono::seconds(5)); // no hang, however slow the machine
    EXPECT_EQ(field_.GetText().size(), TextEditBuffer::kDefaultLimit);
    EXPECT_EQ(page_.Count(EN_MAXTEXT), 1);
    // At a limit that falls inside a pair, the pair stays whole or out.
    field_.SetText(u"");
    field_.SetLimit(255);
    std::string faces;
    for (int i = 0; i < (1 << 20) / 4; ++i)
        faces += "😀";
    display_->SetClipboardText(faces);
    Play("key ctrl+v\n");
    EXPECT_EQ(field_.GetText().size(), 254u);
    EXPECT_EQ(field_.GetText().back(), u"😀"[1]);
    EXPECT_EQ(field_.Caret(), 254);
    // One more unit fits; typing at the limit changes nothing and says so.
    const int changes = page_.Count(EN_CHANGE);
    Play("text ab\n");
    EXPECT_EQ(field_.GetText().size(), 255u);
    EXPECT_EQ(page_.Count(EN_CHANGE), changes + 1);
    EXPECT_EQ(page_.Count(EN_MAXTEXT), 3);
}

TEST_F(TextFieldTest, BrokenClipboardTextBecomesReplacementCharacters) {
    Focus(field_);
    display_->SetClipboardText(std::string("ab\xff\xc3(cd\0ef", 10));
    Play("key ctrl+v\n");
    EXPECT_EQ(field_.GetText(), u"ab\uFFFD\uFFFD(cd"); // the NUL ends it
    // Line breaks and tabs from the clipboard become blanks on one line.
    field_.SetText(u"");
    display_->SetClipboardText("one\r\ntwo\tthree\x07");
    Play("key ctrl+v\n");
    EXPECT_EQ(field_.GetText(), u"one two three");
}

TEST_F(TextFieldTest, ControlCharactersFromTheInputMethodAreCleaned) {
    Focus(field_);
    TypeText("a\x01"
             "b\tc\r\nd\x7f\x1b");
    EXPECT_EQ(field_.GetText(), u"ab c d");
    EXPECT_EQ(page_.Count(EN_ENTER), 0); // a typed CR is no Enter key
    TextFieldWnd notes;
    notes.Create(page_.GetHwnd(), 7, 20, 200, 400, 200, true);
    Focus(notes);
    TypeText("a\r\nb\nc\x08");
    EXPECT_EQ(notes.GetText(), u"a\nb\nc");
}

TEST_F(TextFieldTest, OneLineFieldScrollsSidewaysToKeepTheCaretInView) {
    std::u16string words;
    for (int i = 0; i < 40; ++i)
        words += u"word ";
    field_.SetText(words);
    Focus(field_);
    Play("key end\n");
    EXPECT_GT(field_.ScrollX(), 0);
    Play("key home\n");
    EXPECT_EQ(field_.ScrollX(), 0);
    // A drag past the right edge selects on and scrolls along.
    Pointer(DisplayEvent::Type::PointerDown, kLeft + 20, kTop + 25);
    for (int x = kLeft + 40; x <= kLeft + kWidth + 60; x += 30)
        Pointer(DisplayEvent::Type::PointerMove, x, kTop + 25);
    Pointer(DisplayEvent::Type::PointerUp, kLeft + kWidth + 60, kTop + 25);
    EXPECT_GT(field_.SelectionEnd(), field_.SelectionStart());
    EXPECT_GT(field_.ScrollX(), 0);
}

TEST_F(TextFieldTest, MultiLineTextWrapsAndScrollsByFinger) {
    TextFieldWnd notes;
    notes.Create(page_.GetHwnd(), 7, 20, 200, 300, 150, true);
    std::u16string words;
    for (int i = 0; i < 60; ++i)
        words += u"word ";
    notes.SetText(words);
    Focus(notes);
    Play("key ctrl+home\n");
    EXPECT_EQ(notes.ScrollY(), 0);
    EXPECT_EQ(notes.Caret(), 0);
    // Up and down move the caret a line at a time.
    Play("key down\n");
    EXPECT_GT(notes.Caret(), 5);
    const int secondLine = notes.Caret();
    Play("key up\n");
    EXPECT_EQ(notes.Caret(), 0);
    (void)secondLine;
    // A finger drag upwards scrolls the wrapped lines and selects nothing.
    Pointer(DisplayEvent::Type::PointerDown, 150, 330);
    for (int y = 320; y >= 220; y -= 10) {
        windows_->RunFor(16);
        Pointer(DisplayEvent::Type::PointerMove, 150, y);
    }
    windows_->RunFor(200);
    Pointer(DisplayEvent::Type::PointerUp, 150, 220);
    windows_->RunFor(1000);
    EXPECT_GT(notes.ScrollY(), 40);
    EXPECT_EQ(notes.SelectionStart(), notes.SelectionEnd());
    EXPECT_EQ(notes.Caret(), 0);
    // A sideways drag selects instead.
    Pointer(DisplayEvent::Type::PointerDown, 40, 260);
    for (int x = 60; x <= 200; x += 20)
        Pointer(DisplayEvent::Type::PointerMove, x, 262);
    Pointer(DisplayEvent::Type::PointerUp, 200, 262);
    EXPECT_GT(notes.SelectionEnd(), notes.SelectionStart());
}

TEST_F(TextFieldTest, ScriptKeyLinesWithModifiersAndCompositionParse) {
    std::vector<ScriptAction> actions;
    std::string error;
    ASSERT_TRUE(HeadlessScript::Parse("key ctrl+a\ncompose ab😀\ncompose\n", actions, error)) << error;
    ASSERT_EQ(actions.size(), 6u);
    EXPECT_EQ(actions[0].event.key, VK_CONTROL);
    EXPECT_EQ(actions[1].event.key, static_cast<std::uint32_t>('A'));
    EXPECT_EQ(actions[1].event.type, DisplayEvent::Type::KeyDown);
    EXPECT_EQ(actions[3].event.key, VK_CONTROL);
    EXPECT_EQ(actions[3].event.type, DisplayEvent::Type::KeyUp);
    EXPECT_EQ(actions[4].event.type, DisplayEvent::Type::Composition);
    EXPECT_EQ(actions[4].event.compositionCursor, 3); // code points, the emoji counted once
    EXPECT_EQ(actions[5].event.text, "");
    EXPECT_FALSE(HeadlessScript::Parse("key alt+a\n", actions, error));
}

} // namespace
} // namespace mirodate::test
