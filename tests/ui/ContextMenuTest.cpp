// The context menu and the tab control on the real window system: the
// menu's geometry with the cap and the whole-row trim, the slide-in on the
// virtual clock or at once without animations, choosing by tap and by key
// with the one-second guard, closing without a choice; the tabs' integer
// widths, their look and the deliberate clear-on-miss.
#include "ui/ContextMenu.h"
#include "ControlTestKit.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/TabCtrl.h"

namespace mirodate::test {
namespace {

class OwnerPage : public DialogWnd {
public:
    std::vector<UINT> commands;
    void OnDeferredCommand(UINT id) override { commands.push_back(id); }
};

std::vector<ContextMenuItem> Items(int count) {
    std::vector<ContextMenuItem> items;
    for (int i = 0; i < count; ++i)
        items.push_back(ContextMenuItem{u"Item " + std::u16string(1, static_cast<char16_t>(u'A' + i)),
                                        static_cast<UINT>(100 + i)});
    return items;
}

class ContextMenuTest : public UiTest {
protected:
    void OpenScreen(int width, int height) {
        Open(width, height);
        SetHighResolution(width >= kHighResolutionWidth);
        ScreenBars::SetTopBarHeight(Scale(26));
        ScreenBars::SetMenuBarHeight(Scale(30));
        owner_.CreateModeless(nullptr);
        ShowWindow(owner_.GetHwnd(), SW_SHOW);
        windows_->RunUntilIdle();
    }
    void TearDown() override {
        ScreenBars::Reset();
        UiTest::TearDown();
    }
    // Opens a menu and lets it slide into place.
    HWND OpenMenu(std::vector<ContextMenuItem> items, int preselected = -1, int alignment = 0) {
        menu_ = new ContextMenu(&owner_, std::move(items), alignment);
        menu_->SetPreselected(preselected);
        const HWND handle = menu_->Open();
        windows_->RunFor(300);
        return handle;
    }
    RECT MenuRect(HWND handle) {
        RECT rect;
        GetWindowRect(handle, &rect);
        return rect;
    }
    void Key(std::uint32_t key) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::KeyDown;
        event.key = key;
        display_->Inject(event);
        windows_->RunUntilIdle();
    }

    OwnerPage owner_;
    ContextMenu* menu_ = nullptr; // owned by the owner's deferred command, or by itself
};

TEST_F(ContextMenuTest, ThreeItemsOnA320PixelScreenAre102PixelsHighAboveTheMenuBar) {
    OpenScreen(240, 320);
    const HWND handle = OpenMenu(Items(3));
    const RECT rect = MenuRect(handle);
    EXPECT_EQ(rect.Height(), 102);
    EXPECT_EQ(rect.Width(), 180);
    EXPECT_EQ(rect.left, 240 / 2 - 180 / 2 + 1);
    EXPECT_EQ(rect.bottom, 320 - 30);
    // The frame shows it: border, header row, the first item's background.
    EXPECT_EQ(FramePixel(rect.left, rect.top + 50), RGB(0, 0, 0));
    EXPECT_EQ(FramePixel(rect.left + 170, rect.top + 34), RGB(255, 255, 255));
    EXPECT_EQ(FramePixel(rect.left - 5, rect.top + 50), RGB(0, 0, 0)); // the owner page around it
    Key(VK_LEFT);
}

TEST_F(ContextMenuTest, MenuPastTheCapShowsOnlyWholeRows) {
    OpenScreen(240, 320);
    const HWND handle = OpenMenu(Items(12));
    const RECT rect = MenuRect(handle);
    // The cap is 320 - 26 - 30 = 264 pixels, 7 whole rows of 34.
    EXPECT_EQ(rect.Height(), 7 * 34);
    EXPECT_EQ(rect.top, 320 - 30 - 7 * 34);
    Key(VK_LEFT);

    Open(480, 640); // the same at high resolution: cap 640 - 52 - 60 = 528, 7 rows of 68
    SetHighResolution(true);
    ScreenBars::SetTopBarHeight(52);
    ScreenBars::SetMenuBarHeight(60);
    OwnerPage owner;
    owner.CreateModeless(nullptr);
    auto* menu = new ContextMenu(&owner, Items(12), 1);
    const HWND high = menu->Open();
    windows_->RunFor(300);
    EXPECT_EQ(MenuRect(high).Height(), 7 * 68);
    EXPECT_EQ(MenuRect(high).left, 480 - 360 + Scale(2));
    delete menu;
}

TEST_F(ContextMenuTest, SlidesUpInShrinkingStepsOrAppearsAtOnceWithoutAnimations) {
    OpenScreen(240, 320);
    menu_ = new ContextMenu(&owner_, Items(3));
    const HWND handle = menu_->Open();
    windows_->RunFor(100); // the page is ready: the slide starts
    EXPECT_EQ(MenuRect(handle).top, 320);
    EXPECT_TRUE(menu_->IsSliding());
    windows_->RunFor(10);
    EXPECT_EQ(MenuRect(handle).top, 320 - 75); // three quarters of the way first
    windows_->RunFor(10);
    EXPECT_EQ(MenuRect(handle).top, 320 - 75 - 32);
    EXPECT_NE(GetCapture(), menu_->List().GetHwnd());
    windows_->RunFor(100);
    EXPECT_EQ(MenuRect(handle).top, 188);
    EXPECT_FALSE(menu_->IsSliding());
    EXPECT_EQ(GetCapture(), menu_->List().GetHwnd());
    Key(VK_RIGHT);

    Settings::SetBool("DisableAnimations", true);
    menu_ = new ContextMenu(&owner_, Items(3));
    const HWND quick = menu_->Open();
    windows_->RunFor(100);
    EXPECT_EQ(MenuRect(quick).top, 188);
    EXPECT_FALSE(menu_->IsSliding());
    EXPECT_EQ(GetCapture(), menu_->List().GetHwnd());
    const RECT rect = MenuRect(quick);
    EXPECT_EQ(FramePixel(rect.left, rect.top + 40), RGB(0, 0, 0));
    Key(VK_RIGHT);
}

TEST_F(ContextMenuTest, TapChoosesAndTheOwnerRunsTheCommandOnce) {
    OpenScreen(240, 320);
    const int openBefore = ContextMenu::OpenCount();
    const HWND handle = OpenMenu(Items(3));
    EXPECT_EQ(ContextMenu::OpenCount(), openBefore + 1);
    const RECT rect = MenuRect(handle);
    // Row 0 is the "Action" header; the items follow.
    Tap(rect.left + 40, rect.top + 34 + 34 + 10);
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(owner_.commands, std::vector<UINT>{101});
    EXPECT_EQ(ContextMenu::OpenCount(), openBefore);
    Tap(rect.left + 40, rect.top + 34 + 10); // lands on the owner now
    EXPECT_EQ(owner_.commands.size(), 1u);
}

TEST_F(ContextMenuTest, TwoChoicesWithinASecondExecuteOneCommand) {
    OpenScreen(240, 320);
    OpenMenu(Items(3));
    ListCtrlWnd& list = menu_->List();
    list.SetSelected(0);
    NMHDR header;
    header.hwndFrom = list.GetHwnd();
    header.code = NM_LIST_ROW_CHOSEN;
    const HWND handle = menu_->GetHwnd();
    EXPECT_EQ(SendMessage(handle, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), 0);
    list.SetSelected(1);
    EXPECT_EQ(SendMessage(handle, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), 1);
    windows_->RunUntilIdle();
    EXPECT_EQ(owner_.commands, std::vector<UINT>{100});
    EXPECT_FALSE(IsWindow(handle));
}

TEST_F(ContextMenuTest, KeysMoveTheSelectionWrapAndChoose) {
    OpenScreen(240, 320);
    OpenMenu(Items(3));
    Key(VK_UP); // nothing selected: up takes the last
    EXPECT_EQ(menu_->List().Selected(), 2);
    Key(VK_DOWN); // after the last, the first
    EXPECT_EQ(menu_->List().Selected(), 0);
    Key(VK_DOWN);
    EXPECT_EQ(menu_->List().Selected(), 1);
    SendMessage(menu_->GetHwnd(), WM_KEYDOWN, VK_DOWN, ContextMenu::kIgnoredKeyFlags);
    EXPECT_EQ(menu_->List().Selected(), 1);
    Key(VK_RETURN);
    EXPECT_EQ(owner_.commands, std::vector<UINT>{101});
}

TEST_F(ContextMenuTest, ClosingWithoutAChoiceDeletesTheMenu) {
    OpenScreen(240, 320);
    HWND handle = OpenMenu(Items(3));
    const int livePages = DialogWnd::LivePageCount();
    Key(VK_LEFT);
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_EQ(DialogWnd::LivePageCount(), livePages - 1);

    handle = OpenMenu(Items(3));
    Tap(10, 10); // outside the menu: the list holds the pointer and lets the menu go
    EXPECT_FALSE(IsWindow(handle));

    handle = OpenMenu(Items(3));
    SendMessage(handle, WM_COMMAND, IDCANCEL, 0); // OK and Cancel do not end it
    windows_->RunUntilIdle();
    EXPECT_TRUE(IsWindow(handle));
    SendMessage(handle, WM_CLOSE_POPUP, 0, 0);
    windows_->RunUntilIdle();
    EXPECT_FALSE(IsWindow(handle));
    EXPECT_TRUE(owner_.commands.empty());
}

TEST_F(ContextMenuTest, PreselectedItemIsSelectedInTheMiddle) {
    OpenScreen(240, 320);
    OpenMenu(Items(12), 6);
    ListCtrlWnd& list = menu_->List();
    EXPECT_EQ(list.Selected(), 6);
    EXPECT_EQ(list.VisibleRows(), 7);
    EXPECT_EQ(list.FirstVisibleRow(), 6 - 7 / 2 + 1);
    // Item 6 is content row 7 (after the header), the middle one of the seven shown.
    const RECT rect = MenuRect(menu_->GetHwnd());
    EXPECT_EQ(FramePixel(rect.left + 170, rect.top + 3 * 34 + 17), RGB(0, 0, 0xFF));
    Key(VK_RETURN);
    EXPECT_EQ(owner_.commands, std::vector<UINT>{106});
}

class TabCtrlTest : public UiTest {};

// A colour as the 5-6-5 surface keeps it.
COLORREF As565(COLORREF c) {
    const int r = GetRValue(c) >> 3, g = GetGValue(c) >> 2, b = GetBValue(c) >> 3;
    return RGB((r << 3) | (r >> 2), (g << 2) | (g >> 4), (b << 3) | (b >> 2));
}

TEST_F(TabCtrlTest, ThreeTabsOn100PixelsAre33WideAndTheLastColumnStaysBackground) {
    SetHighResolution(true);
    RecordingParent parent;
    parent.Open(480, 640);
    TabCtrl tabs;
    tabs.Create(parent.GetHwnd(), RECT{10, 10, 110, 40});
    tabs.AddTab(u"One");
    tabs.AddTab(u"Two");
    tabs.AddTab(u"Three");
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(tabs.TabAt(i).rect.left, 33 * i);
        EXPECT_EQ(tabs.TabAt(i).rect.right, 33 * (i + 1));
    }
    TabColors colors = TabColors::FromSkin();
    colors.background = As565(colors.background); // the picture lives in a 16-bit surface
    colors.selected = As565(colors.selected);
    Tap(10 + 50, 20);
    EXPECT_EQ(tabs.SelectedTab(), 1);
    ASSERT_EQ(parent.notices.size(), 1u);
    EXPECT_EQ(parent.notices[0].from, tabs.GetHwnd());
    EXPECT_EQ(parent.notices[0].code, NM_LONG_PRESS);
    for (int y = 10; y < 40; ++y)
        EXPECT_EQ(FramePixel(10 + 99, y), colors.background) << y;
    EXPECT_EQ(FramePixel(10 + 35, 10 + 3), colors.selected);   // inside the selected tab
    EXPECT_EQ(FramePixel(10 + 34, 10 + 1), colors.background); // its rounded top corner
    EXPECT_EQ(FramePixel(10 + 34, 10 + 29), colors.selected);  // square at the bottom
    EXPECT_EQ(FramePixel(10 + 5, 10 + 3), colors.background);  // an unselected tab

    Tap(10 + 50, 20); // the selected tab again: nothing
    EXPECT_EQ(parent.notices.size(), 1u);
    Tap(10 + 99, 20); // beside every tab: the selection goes, the parent hears of it
    EXPECT_EQ(tabs.SelectedTab(), -1);
    EXPECT_EQ(parent.notices.size(), 2u);
    EXPECT_EQ(FramePixel(10 + 35, 10 + 3), colors.background);
}

} // namespace
} // namespace mirodate::test
