// BaseWnd and DialogWnd on the real window system: the order in which
// operations are called, what the two dispatches return, the binding rules,
// the page life cycle (ready call, deferred commands, the close-all
// broadcast, modal results) and the placement rules of MoveTo.
#include "UiTestFixture.h"
#include "ui/DialogWnd.h"
#include "ui/RegisteredMessages.h"
#include "ui/Scale.h"

#include <string>
#include <vector>

namespace mirodate::test {
namespace {

// Records every operation it is called for.
class RecordingWnd : public DialogWnd {
public:
    std::vector<std::string>* log = nullptr;
    LRESULT notifyResult = 7;
    LRESULT pointerResult = 5;
    int readyCount = 0;
    std::vector<UINT> deferred;
    int screenResets = 0;
    bool* destroyed = nullptr;

    ~RecordingWnd() override {
        if (destroyed)
            *destroyed = true;
    }
    void Note(const std::string& what) {
        if (log)
            log->push_back(what);
    }
    void OnPaint(HDC) override { Note("Paint"); }
    void OnAfterPaint() override { Note("AfterPaint"); }
    BOOL OnEraseBackground(HDC dc) override {
        Note("EraseBackground");
        return DialogWnd::OnEraseBackground(dc);
    }
    LRESULT OnCreate(WPARAM w, CREATESTRUCT* cs) override {
        Note("Create");
        return DialogWnd::OnCreate(w, cs);
    }
    BOOL OnInitDialog() override {
        Note("InitDialog");
        return DialogWnd::OnInitDialog();
    }
    void OnSize(UINT, UINT) override { Note("Size"); }
    void OnShowWindow(BOOL shown) override { Note(shown ? "Show" : "Hide"); }
    LRESULT OnActivate(UINT state, BOOL minimized, HWND other) override {
        Note(state == WA_INACTIVE ? "Deactivate" : "Activate");
        return DialogWnd::OnActivate(state, minimized, other);
    }
    LRESULT OnNotify(UINT_PTR, NMHDR*) override { return notifyResult; }
    LRESULT OnPointerDown(int button, int x, int y, WPARAM) override {
        Note("Down " + std::to_string(button) + " " + std::to_string(x) + "," + std::to_string(y));
        return pointerResult;
    }
    LRESULT OnPointerUp(int, int x, int y, WPARAM) override {
        Note("Up " + std::to_string(x) + "," + std::to_string(y));
        return pointerResult;
    }
    void OnPointerMove(int x, int y, WPARAM) override {
        Note("Move " + std::to_string(x) + "," + std::to_string(y));
    }
    LRESULT OnMouseWheel(UINT, short delta, int, int) override {
        Note("Wheel " + std::to_string(delta));
        return 9;
    }
    void OnCaptureChanged(HWND) override { Note("CaptureChanged"); }
    LRESULT OnSetFocus(HWND previous) override {
        Note("SetFocus");
        return DialogWnd::OnSetFocus(previous);
    }
    void OnKeyDown(UINT key, UINT) override { Note("KeyDown " + std::to_string(key)); }
    void OnChar(char16_t ch, UINT) override { Note("Char " + std::to_string(static_cast<int>(ch))); }
    void OnDialogReady() override { ++readyCount; }
    void OnDeferredCommand(UINT id) override { deferred.push_back(id); }
    void OnScreenReset() override { ++screenResets; }
};

using FrameworkTest = UiTest;

TEST_F(FrameworkTest, RegisteredWindowGetsCreationMessagesThenPaintsWhenIdle) {
    std::vector<std::string> log;
    RecordingWnd wnd;
    wnd.log = &log;
    HWND hwnd = wnd.Create(nullptr, "TEST::RECORDING", WS_POPUP | WS_VISIBLE, u"Recording", 0, 0, 200, 100);
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(wnd.window, hwnd);
    EXPECT_EQ(reinterpret_cast<BaseWnd*>(GetWindowLongPtr(hwnd, GWL_USERDATA)), &wnd);
    EXPECT_EQ(wnd.previousWindowProc, &BaseWnd::FrameworkWindowProc);
    windows_->RunUntilIdle();
    const std::vector<std::string> expected = {"Create",          "Size",  "Show",      "Activate",
                                               "EraseBackground", "Paint", "AfterPaint"};
    EXPECT_EQ(log, expected);
    // Registered windows never see the dialog's initialisation.
    EXPECT_EQ(wnd.readyCount, 0);
    EXPECT_EQ(FindWindow("TEST::RECORDING", u"Recording"), hwnd);
    EXPECT_EQ(FindWindow("TEST::RECORDING", u"Other"), nullptr);
}

TEST_F(FrameworkTest, RegisteredDispatchReturnsOnlyTheListedResults) {
    RecordingWnd wnd;
    HWND hwnd = wnd.Create(nullptr, "TEST::RECORDING", WS_POPUP, u"", 0, 0, 100, 100);
    NMHDR header;
    EXPECT_EQ(wnd.WindowProc(hwnd, WM_NOTIFY, 1, reinterpret_cast<LPARAM>(&header)), 7);
    EXPECT_EQ(wnd.WindowProc(hwnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 4)), 5);
    EXPECT_EQ(wnd.WindowProc(hwnd, WM_RBUTTONUP, 0, MAKELPARAM(3, 4)), 5);
    // Handled, but answered 0 whatever the operation returned.
    EXPECT_EQ(wnd.WindowProc(hwnd, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0), 0);
    // Not in the table: the platform default, which stores a title.
    std::u16string title = u"Changed";
    wnd.WindowProc(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(title.c_str()));
    EXPECT_EQ(GetWindowText(hwnd), u"Changed");
    // The close message alone never destroys the window.
    SendMessage(hwnd, WM_CLOSE, 0, 0);
    EXPECT_TRUE(IsWindow(hwnd));
}

TEST_F(FrameworkTest, DialogDispatchAnswersZeroToEverythingOutsideTheTable) {
    std::vector<std::string> log;
    RecordingWnd page;
    page.log = &log;
    HWND hwnd = page.CreateModeless(nullptr);
    ASSERT_TRUE(hwnd);
    EXPECT_EQ(page.templateId, 101u);
    EXPECT_EQ(page.modal, 0u);
    log.clear();
    NMHDR header;
    EXPECT_EQ(page.DialogProc(hwnd, WM_NOTIFY, 1, reinterpret_cast<LPARAM>(&header)), 7);
    EXPECT_EQ(page.DialogProc(hwnd, WM_LBUTTONDOWN, 0, MAKELPARAM(1, 2)), 5);
    EXPECT_EQ(page.DialogProc(hwnd, WM_INITDIALOG, 0, 0), 1);
    // An owner-draw request for a button the page does not own.
    DRAWITEMSTRUCT item;
    item.CtlID = 99;
    EXPECT_EQ(page.DialogProc(hwnd, WM_DRAWITEM, 99, reinterpret_cast<LPARAM>(&item)), 0);
    std::u16string title = u"Changed";
    EXPECT_EQ(page.DialogProc(hwnd, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(title.c_str())), 0);
    EXPECT_NE(GetWindowText(hwnd), u"Changed");
    // Create and capture-changed belong to registered windows only.
    CREATESTRUCT cs;
    EXPECT_EQ(page.DialogProc(hwnd, WM_CREATE, 0, reinterpret_cast<LPARAM>(&cs)), 0);
    page.DialogProc(hwnd, WM_CAPTURECHANGED, 0, 0);
    const std::vector<std::string> expected = {"Down 0 1,2", "InitDialog"};
    EXPECT_EQ(log, expected);
}

TEST_F(FrameworkTest, DialogBindingIgnoresMessagesBeforeInitialisationAndForeignWindows) {
    std::vector<std::string> log;
    RecordingWnd page;
    page.log = &log;
    HWND hwnd = page.CreateModeless(nullptr);
    // WM_CREATE and WM_SIZE came before WM_INITDIALOG bound the page: not dispatched.
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log.front(), "InitDialog");
    EXPECT_EQ(reinterpret_cast<BaseWnd*>(GetWindowLongPtr(hwnd, DWL_USER)), &page);

    RecordingWnd other;
    HWND otherWindow = other.CreateModeless(nullptr);
    log.clear();
    // The page's object registered on another window: the message is answered 0.
    SetWindowLongPtr(otherWindow, DWL_USER, reinterpret_cast<LONG_PTR>(&page));
    EXPECT_EQ(BaseWnd::FrameworkDialogProc(otherWindow, WM_LBUTTONDOWN, 0, 0), 0);
    EXPECT_TRUE(log.empty());
    SetWindowLongPtr(otherWindow, DWL_USER, reinterpret_cast<LONG_PTR>(&other));
}

TEST_F(FrameworkTest, DialogReadyComesOnceAfterTheFirstHundredMilliseconds) {
    RecordingWnd page;
    HWND hwnd = page.CreateModeless(nullptr);
    EXPECT_EQ(page.initTime, 1000u);
    EXPECT_EQ(page.shellActivateInfo.cbSize, 12u);
    windows_->RunFor(99);
    EXPECT_EQ(page.readyCount, 0);
    windows_->RunFor(1);
    EXPECT_EQ(page.readyCount, 1);

    RecordingWnd second;
    HWND secondWindow = second.CreateModeless(nullptr);
    for (int i = 0; i < 5; ++i) {
        SetActiveWindow(hwnd);
        windows_->RunFor(150);
        SetActiveWindow(secondWindow);
        windows_->RunFor(150);
    }
    EXPECT_EQ(page.readyCount, 1);
    EXPECT_EQ(second.readyCount, 1);
}

TEST_F(FrameworkTest, DeferredCommandPaintsFirstThenDeletesItsObjectOnArrival) {
    std::vector<std::string> log;
    RecordingWnd page;
    page.log = &log;
    page.CreateModeless(nullptr);
    windows_->RunUntilIdle();
    log.clear();
    bool objectDestroyed = false;
    auto* object = new RecordingWnd();
    object->destroyed = &objectDestroyed;
    page.PostDeferredCommand(42, object);
    // Painted at once, the command still queued.
    EXPECT_EQ(log, (std::vector<std::string>{"Paint", "AfterPaint"}));
    EXPECT_TRUE(page.deferred.empty());
    EXPECT_FALSE(objectDestroyed);
    windows_->RunUntilIdle();
    EXPECT_TRUE(objectDestroyed);
    EXPECT_EQ(page.deferred, std::vector<UINT>{42});
    page.PostDeferredCommand(43, nullptr);
    windows_->RunUntilIdle();
    EXPECT_EQ(page.deferred, (std::vector<UINT>{42, 43}));
}

TEST_F(FrameworkTest, CloseAllBroadcastDeletesModelessPagesButNotOtherWindows) {
    const int before = DialogWnd::LivePageCount();
    bool destroyed = false;
    auto* page = new RecordingWnd();
    page->destroyed = &destroyed;
    HWND hwnd = page->CreateModeless(nullptr);
    RecordingWnd plain;
    HWND plainWindow = plain.Create(nullptr, "TEST::RECORDING", WS_POPUP | WS_VISIBLE, u"", 0, 0, 10, 10);
    EXPECT_EQ(DialogWnd::LivePageCount(), before + 2);
    PostMessage(HWND_BROADCAST, RegisterWindowMessage(kMinimizedBroadcastName), 0, 0);
    windows_->RunUntilIdle();
    EXPECT_TRUE(destroyed);
    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_TRUE(IsWindow(plainWindow));
    EXPECT_EQ(DialogWnd::LivePageCount(), before + 1);
}

// A modal page that shows a second page, which then broadcasts the close-all
// message once it is ready.
class BroadcastingPage : public RecordingWnd {
public:
    void OnDialogReady() override {
        RecordingWnd::OnDialogReady();
        PostMessage(HWND_BROADCAST, RegisterWindowMessage(kMinimizedBroadcastName), 0, 0);
    }
};

TEST_F(FrameworkTest, ModalPageEndsWithCancelOnTheBroadcastAndWithItsCommandOtherwise) {
    RecordingWnd owner;
    HWND ownerWindow = owner.Create(nullptr, "TEST::RECORDING", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    BroadcastingPage page;
    EXPECT_EQ(page.DoModal(ownerWindow), 2);
    EXPECT_EQ(page.modal, 1u);
    EXPECT_EQ(page.readyCount, 1);
    EXPECT_FALSE(IsWindow(page.window));
    // The owner was disabled while the page ran and is enabled again.
    EXPECT_TRUE(IsWindowEnabled(ownerWindow));
    EXPECT_EQ(GetActiveWindow(), ownerWindow);

    // A confirm command ends the modal page with 1.
    class ConfirmingPage : public RecordingWnd {
        void OnDialogReady() override { PostMessage(window, WM_COMMAND, IDOK, 0); }
    } confirming;
    EXPECT_EQ(confirming.DoModal(ownerWindow), 1);
    // Other command ids leave a modal page alone; a modeless page ignores 1 and 2.
    RecordingWnd modeless;
    HWND modelessWindow = modeless.CreateModeless(nullptr);
    SendMessage(modelessWindow, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(IsWindowVisible(modelessWindow));
}

TEST_F(FrameworkTest, MoveToRememberesPlacementOnlyInTheFourNumberForm) {
    RecordingWnd wnd;
    HWND hwnd = wnd.Create(nullptr, "TEST::RECORDING", WS_POPUP | WS_VISIBLE, u"", 1, 2, 30, 40);
    EXPECT_EQ(wnd.placementX, 1);
    EXPECT_EQ(wnd.placementHeight, 40);
    wnd.MoveTo(RECT{10, 20, 110, 220});
    RECT rect;
    GetWindowRect(hwnd, &rect);
    EXPECT_EQ(rect, (RECT{10, 20, 110, 220}));
    EXPECT_EQ(wnd.placementX, 1);
    EXPECT_EQ(wnd.placementY, 2);
    EXPECT_EQ(wnd.placementWidth, 30);
    EXPECT_EQ(wnd.placementHeight, 40);
    wnd.MoveTo(5, 6, 70, 80);
    GetWindowRect(hwnd, &rect);
    EXPECT_EQ(rect, (RECT{5, 6, 75, 86}));
    EXPECT_EQ(wnd.placementX, 5);
    EXPECT_EQ(wnd.placementY, 6);
    EXPECT_EQ(wnd.placementWidth, 70);
    EXPECT_EQ(wnd.placementHeight, 80);
}

TEST_F(FrameworkTest, DestructorDestroysTheWindowAndClosingDoesNot) {
    HWND hwnd;
    {
        RecordingWnd wnd;
        hwnd = wnd.Create(nullptr, "TEST::RECORDING", WS_POPUP | WS_VISIBLE, u"", 0, 0, 10, 10);
        PostMessage(hwnd, WM_CLOSE, 0, 0);
        windows_->RunUntilIdle();
        EXPECT_TRUE(IsWindow(hwnd));
    }
    EXPECT_FALSE(IsWindow(hwnd));
}

TEST_F(FrameworkTest, PointerAndKeysReachThePageInClientCoordinates) {
    std::vector<std::string> log;
    RecordingWnd main;
    main.Create(nullptr, "TEST::RECORDING", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    RecordingWnd child;
    child.log = &log;
    child.Create(main.window, "TEST::RECORDING", WS_CHILD | WS_VISIBLE, u"", 100, 200, 50, 50);
    windows_->RunUntilIdle();
    SetFocus(child.window);
    log.clear();
    Tap(110, 230);
    DisplayEvent key;
    key.type = DisplayEvent::Type::KeyDown;
    key.key = 0x25;
    display_->Inject(key);
    key.type = DisplayEvent::Type::Text;
    key.text = "\xC3\xA9"; // é
    display_->Inject(key);
    windows_->RunUntilIdle();
    EXPECT_EQ(log, (std::vector<std::string>{"Down 0 10,30", "Up 10,30", "KeyDown 37", "Char 233"}));
}

TEST_F(FrameworkTest, CaptureKeepsThePointerWithItsWindowOutsideItsRectangle) {
    std::vector<std::string> log, otherLog;
    RecordingWnd main;
    main.Create(nullptr, "TEST::RECORDING", WS_POPUP | WS_VISIBLE, u"", 0, 0, 480, 640);
    RecordingWnd child;
    child.log = &log;
    child.Create(main.window, "TEST::RECORDING", WS_CHILD | WS_VISIBLE, u"", 100, 100, 50, 50);
    RecordingWnd other;
    other.log = &otherLog;
    other.Create(main.window, "TEST::RECORDING", WS_CHILD | WS_VISIBLE, u"", 0, 0, 50, 50);
    windows_->RunUntilIdle();
    log.clear();
    otherLog.clear();
    Pointer(DisplayEvent::Type::PointerDown, 120, 120);
    SetCapture(child.window);
    Pointer(DisplayEvent::Type::PointerMove, 10, 10); // over the other child
    Pointer(DisplayEvent::Type::PointerUp, 10, 10);
    EXPECT_EQ(log, (std::vector<std::string>{"Down 0 20,20", "Move -90,-90", "Up -90,-90"}));
    EXPECT_TRUE(otherLog.empty());
    ReleaseCapture();
    EXPECT_EQ(log.back(), "CaptureChanged");
    Tap(10, 10);
    EXPECT_EQ(otherLog, (std::vector<std::string>{"Down 0 10,10", "Up 10,10"}));
}

TEST_F(FrameworkTest, ScreenResetResizesPagesAndSwitchesTheScale) {
    RecordingWnd page;
    HWND hwnd = page.CreateModeless(nullptr);
    EXPECT_TRUE(IsHighResolution());
    EXPECT_EQ(Scale(0), 1);
    EXPECT_EQ(Scale(7), 14);
    DisplayEvent resize;
    resize.type = DisplayEvent::Type::Resize;
    resize.width = 240;
    resize.height = 320;
    display_->Inject(resize);
    windows_->RunUntilIdle();
    EXPECT_EQ(page.screenResets, 1);
    RECT rect;
    GetWindowRect(hwnd, &rect);
    EXPECT_EQ(rect, (RECT{0, 0, 240, 320}));
    EXPECT_EQ(Scale(0), 0);
    EXPECT_EQ(Scale(7), 7);
    EXPECT_EQ(windows_->Frame().Width(), 240);
}

TEST_F(FrameworkTest, RoundToIntRoundsHalvesToEven) {
    EXPECT_EQ(RoundToInt(2.5), 2);
    EXPECT_EQ(RoundToInt(3.5), 4);
    EXPECT_EQ(RoundToInt(-2.5), -2);
    EXPECT_EQ(RoundToInt(1.4999), 1);
    EXPECT_EQ(RoundToInt(-7.6), -8);
    EXPECT_EQ(RoundToInt(123456.5), 123456);
}

TEST_F(FrameworkTest, DefaultFontTakesTheFamilySettingUnlessAuto) {
    LOGFONT font;
    DefaultFont(font);
    EXPECT_EQ(font.lfFaceName, u"Sans");
    Settings::SetFontFamily(u"DejaVu Serif");
    DefaultFont(font);
    EXPECT_EQ(font.lfFaceName, u"DejaVu Serif");
    Settings::SetFontFamily(u"");
    DefaultFont(font);
    EXPECT_EQ(font.lfFaceName, u"Sans");
}

} // namespace
} // namespace mirodate::test
