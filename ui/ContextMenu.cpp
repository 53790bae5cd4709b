#include "ui/ContextMenu.h"

#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "skin/MenuBarIcons.h"
#include "skin/SkinStyles.h"
#include "ui/MenuBar.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kRowHeight = 34;
constexpr int kWidth = 180;
constexpr int kExtraHeight = 2;
constexpr int kHeaderFontHeight = 18;
constexpr int kCentreShift = 1; // a centred menu sits this far right of the middle
constexpr int kRightShift = 2;  // a right-aligned menu reaches this far past the edge
// The slide covers this share of the remaining way per step.
constexpr double kSlideShare = 0.75;
int g_openMenus = 0;
} // namespace

ContextMenu::ContextMenu(DialogWnd* owner_, std::vector<ContextMenuItem> items_, int alignment)
    : owner(owner_), items(std::move(items_)), horizontalAlignment(alignment) {}

ContextMenu::~ContextMenu() {
    list.SetMenuOpen(false);
    if (window && IsWindow(window))
        DestroyWindow(window);
    window = nullptr;
}

int ContextMenu::OpenCount() {
    return g_openMenus;
}

void ContextMenu::SetFixedTop(int top) {
    fixedTop = top;
    hasFixedTop = true;
}

HWND ContextMenu::Open() {
    return CreateModeless(owner ? owner->GetHwnd() : nullptr);
}

BOOL ContextMenu::OnInitDialog() {
    ++g_openMenus;
    const int screenWidth = GetScreenWidth(), screenHeight = GetScreenHeight();
    const int rowHeight = Scale(kRowHeight);
    const int width = Scale(kWidth);
    int height = Scale(kExtraHeight) + static_cast<int>(items.size()) * rowHeight;
    height = std::min(height, screenHeight - ScreenBars::TopBarHeight() - ScreenBars::MenuBarHeight());
    height -= height % rowHeight; // only whole rows
    height = std::max(0, height);
    height_ = height;

    int x = screenWidth / 2 - width / 2 + Scale(kCentreShift);
    if (horizontalAlignment < 0)
        x = 0;
    if (horizontalAlignment > 0)
        x = screenWidth - width + Scale(kRightShift);
    SetWindowText(window, kContextMenuTitle);
    MoveWindow(window, x, screenHeight, width, height, false);

    list.Create(window, 0, 0, width, height, rowHeight);
    LOGFONT lf;
    DefaultFont(lf);
    lf.lfHeight = -Scale(kHeaderFontHeight);
    lf.lfWeight = FW_BOLD;
    headerFont_ = std::make_unique<Font>(lf);
    list.SetHeader(headerText.empty() ? Lang("Action") : headerText, headerFont_.get());
    const ContextMenuStyle& style = SkinStyles::Current().contextMenu;
    ListColors colors;
    colors.border = style.colorBorder;
    colors.background = style.colorBg;
    colors.backgroundGradient = style.colorBgGradient;
    colors.text = style.colorText;
    colors.textSelected = style.colorTextSelected;
    colors.selectionMark = style.colorSelectionMark;
    list.SetColors(colors);
    const Bitmap& strip = MenuBar::IconStrip();
    list.SetIconStrip(&strip, strip.Height());

    ShowWindow(window, SW_SHOW);
    return DialogWnd::OnInitDialog();
}

void ContextMenu::OnDialogReady() {
    std::vector<ListRow> rows;
    rows.reserve(items.size());
    for (const ContextMenuItem& item : items)
        rows.push_back(ListRow{item.text, item.icon, item.checked, item.enabled, item.mark});
    list.SetRows(std::move(rows));
    if (preselected != -1) {
        list.SetFirstVisibleRow(preselected - list.VisibleRows() / 2 + 1);
        list.SetSelected(preselected);
    }
    Redraw(false);

    if (Settings::GetDisableAnimations()) {
        RECT rect;
        GetWindowRect(window, &rect);
        MoveWindow(window, rect.left, TargetTop(), rect.Width(), rect.Height(), true);
        FinishOpening();
        return;
    }
    sliding_ = true;
    SetTimer(window, kSlideTimer, kSlidePeriod);
}

int ContextMenu::TargetTop() const {
    if (hasFixedTop)
        return fixedTop;
    return GetScreenHeight() - ScreenBars::MenuBarHeight() - height_;
}

void ContextMenu::OnTimer(UINT_PTR id) {
    if (id != kSlideTimer) {
        DialogWnd::OnTimer(id);
        return;
    }
    RECT rect;
    GetWindowRect(window, &rect);
    const int target = TargetTop();
    const int remaining = rect.top - target;
    if (remaining > 0) {
        const int travel = std::max(1, GetScreenHeight() - target);
        int step = RoundToInt(kSlideShare * (100 * remaining / travel));
        step = std::clamp(step, Scale(1), remaining);
        MoveWindow(window, rect.left, rect.top - step, rect.Width(), rect.Height(), true);
        UpdateWindow(window);
        if (rect.top - step > target)
            return;
    } else if (remaining < 0) {
        MoveWindow(window, rect.left, target, rect.Width(), rect.Height(), true);
    }
    KillTimer(window, kSlideTimer);
    FinishOpening();
}

void ContextMenu::FinishOpening() {
    sliding_ = false;
    list.SetMenuOpen(true);
    OnMenuOpened();
}

void ContextMenu::OnMenuOpened() {}

LRESULT ContextMenu::OnNotify(UINT_PTR, NMHDR* header) {
    if (!header || header->hwndFrom != list.GetHwnd() || header->code != NM_LIST_ROW_CHOSEN)
        return 0;
    const DWORD now = GetTickCount();
    if (now - lastChoiceTime < kChoiceGuard) {
        // A repeated tap: answered 1 (through the dialog's result word) and dropped.
        SetWindowLongPtr(window, DWL_MSGRESULT, 1);
        return 1;
    }
    if (chosen_ || closing_ || items.empty() || list.Selected() < 0)
        return 0;
    Choose();
    return 0;
}

void ContextMenu::Choose() {
    const int index = list.Selected();
    if (index < 0 || index >= static_cast<int>(items.size()) || !items[index].enabled)
        return;
    lastChoiceTime = GetTickCount();
    chosenCommand = items[index].command;
    chosen_ = true;
    --g_openMenus;
    KillTimer(window, kSlideTimer);
    list.SetMenuOpen(false);
    ShowWindow(window, SW_HIDE);
    DeliverChoice(chosenCommand);
}

void ContextMenu::DeliverChoice(UINT command) {
    if (owner)
        owner->PostDeferredCommand(command, this);
    else
        PostMessage(window, WM_CLOSE, 0, 0); // nobody to hand the command to
}

void ContextMenu::OnKeyDown(UINT key, UINT flags) {
    if (flags == kIgnoredKeyFlags || chosen_ || closing_)
        return;
    const int count = static_cast<int>(items.size());
    switch (key) {
    case VK_UP:
        if (count == 0)
            return;
        list.SetSelected(list.Selected() <= 0 ? count - 1 : list.Selected() - 1);
        break;
    case VK_DOWN:
        if (count == 0)
            return;
        list.SetSelected(list.Selected() < 0 || list.Selected() >= count - 1 ? 0 : list.Selected() + 1);
        break;
    case VK_RETURN:
        if (count > 0 && list.Selected() >= 0 && GetTickCount() - lastChoiceTime > kChoiceGuard)
            Choose();
        break;
    case VK_LEFT:
    case VK_RIGHT:
        CloseWithoutChoice();
        break;
    default:
        break;
    }
}

// The dialog's OK and Cancel do not end the menu.
void ContextMenu::OnCommand(UINT, UINT, HWND) {}

void ContextMenu::OnClose() {
    if (chosen_ && owner)
        return; // the owner deletes a menu that was chosen from
    delete this;
}

void ContextMenu::OnScreenReset() {
    CloseWithoutChoice();
}

void ContextMenu::CloseWithoutChoice() {
    if (closing_ || chosen_)
        return;
    closing_ = true;
    KillTimer(window, kSlideTimer);
    list.SetMenuOpen(false);
    ShowWindow(window, SW_HIDE);
    PostMessage(window, WM_CLOSE, 0, 0);
}

INT_PTR ContextMenu::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CLOSE_POPUP) {
        CloseWithoutChoice();
        return 1;
    }
    return DialogWnd::DialogProc(hwnd, message, wParam, lParam);
}

} // namespace mirodate
