#pragma once
// The pop-up action list that slides up from the bottom of the screen to sit
// just above the menu bar. Choosing an item hides the menu and hands the
// item's command to the owner page through PostDeferredCommand together with
// the menu itself, so that the owner deletes the menu and runs the command
// after the screen has been repainted. Closing without a choice (left or
// right key, a screen reset, a press outside) deletes the menu by itself.
//
//   auto* menu = new ContextMenu(this, {{Lang("Edit"), 20}, {Lang("Delete"), 10}});
//   menu->Open(); // owned by the owner's deferred command, or by itself
#include "ui/DialogWnd.h"
#include "ui/Font.h"
#include "ui/ListCtrlWnd.h"

#include <memory>
#include <string>
#include <vector>

namespace mirodate {

constexpr const char16_t* kContextMenuTitle = u"MIRODATE::CONTEXTMENU";

struct ContextMenuItem {
    std::u16string text;
    UINT command = 0;
    bool checked = false;
    int icon = -1; // index in the menu-bar icon strip; -1 = none
    LONG_PTR extra = 0;
    bool enabled = true; // listed greyed and not choosable when false
    int mark = 0;        // ListRow::kMarkAscending or kMarkDescending: a sort arrow
};

class ContextMenu : public DialogWnd {
public:
    static constexpr UINT_PTR kSlideTimer = 11;
    static constexpr UINT kSlidePeriod = 10;
    static constexpr DWORD kChoiceGuard = 1000;
    // Key-down messages with exactly this flags word are not the user's.
    static constexpr UINT kIgnoredKeyFlags = 1000;

    // `alignment` < 0 left edge, 0 centred, > 0 right edge.
    ContextMenu(DialogWnd* owner, std::vector<ContextMenuItem> items, int alignment = 0);
    ~ContextMenu() override;

    void SetFixedTop(int top);
    void SetPreselected(int index) { preselected = index; }
    // The heading over the items; empty gives the generic "Action".
    void SetHeaderText(std::u16string text) { headerText = std::move(text); }
    // Creates the page (modeless, owned by the owner's window) below the screen.
    HWND Open();

    BOOL OnInitDialog() override;
    void OnDialogReady() override;
    void OnTimer(UINT_PTR id) override;
    LRESULT OnNotify(UINT_PTR id, NMHDR* header) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnClose() override;
    void OnScreenReset() override;
    INT_PTR DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;
    // Called once the menu has reached its place and holds the pointer.
    virtual void OnMenuOpened();
    // Hands the chosen command on: to the owner page as a deferred command
    // that also deletes the menu, or, without an owner, nowhere (the menu
    // closes and deletes itself).
    virtual void DeliverChoice(UINT command);

    // Menus opened and not yet chosen from.
    static int OpenCount();

    ListCtrlWnd& List() { return list; }
    bool IsSliding() const { return sliding_; }

    DialogWnd* owner;
    std::vector<ContextMenuItem> items;
    ListCtrlWnd list;
    int horizontalAlignment = 0;
    int fixedTop = 0;
    bool hasFixedTop = false;
    int preselected = -1;
    std::u16string headerText;
    UINT chosenCommand = 0;
    DWORD lastChoiceTime = 0;

private:
    void Choose();
    // Hides the menu now and deletes it from the message loop, where no
    // caller of the menu is left on the stack.
    void CloseWithoutChoice();
    int TargetTop() const;
    void FinishOpening();

    std::unique_ptr<Font> headerFont_;
    int height_ = 0;
    bool sliding_ = false;
    bool closing_ = false;
    bool chosen_ = false;
};

} // namespace mirodate
