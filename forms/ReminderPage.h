#pragma once
// The reminder page: every reminder that is due, newest last, one row each
// with the subject, the time and the location. A tap selects a row; the
// buttons act on the selected reminder: "Snooze" offers 5, 10, 15 and 30
// minutes and 1 hour, "Dismiss" ends it, "Open" shows the item. The page
// holds no reminders of its own: its owner hands it the list and is told
// what the user chose, and updates the list (or closes the page) itself.
//
//   auto* page = new ReminderPage(actions, [&] { page = nullptr; });
//   page->Open(owner); page->SetReminders(due);
#include "data/Reminder.h"
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"
#include "ui/TouchListCtrlWnd.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class ReminderPage : public DialogWnd {
public:
    // The snooze choices, in minutes.
    static constexpr int kSnoozeMinutes[] = {5, 10, 15, 30, 60};
    // Commands of the snooze menu: kCmdSnoozeBase + index into kSnoozeMinutes.
    static constexpr UINT kCmdSnoozeBase = 0x7D00;
    // A tap on row N: kCmdSelectBase + N.
    static constexpr UINT kCmdSelectBase = 0x10000;

    struct Actions {
        std::function<void(const Reminder&, int minutes)> snooze;
        std::function<void(const Reminder&)> dismiss;
        std::function<void(const Reminder&)> open;
    };

    // `gone` is called when the page is deleted, whoever deletes it (the
    // close-all broadcast deletes a shown page).
    ReminderPage(Actions actions, std::function<void()> gone);
    ~ReminderPage() override;

    // Creates the page over `owner`, full screen.
    HWND Open(HWND owner);
    // The reminders shown; the selection stays on the same reminder when it
    // is still there.
    void SetReminders(std::vector<Reminder> reminders);
    const std::vector<Reminder>& Reminders() const { return reminders_; }
    int Selected() const { return selected_; }
    void Select(int index);

    // The user's choices, as the buttons and the menu make them.
    void SnoozeSelected(int minutes);
    void DismissSelected();
    void OpenSelected();

    // The texts of a row: the subject, and the time and location line.
    static std::u16string WhenText(const Reminder& reminder);

    // Screen rectangles of the buttons and rows (for taps).
    RECT SnoozeButtonRect() const;
    RECT DismissButtonRect() const;
    RECT OpenButtonRect() const;

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnDeferredCommand(UINT id) override;
    void OnScreenReset() override;

private:
    void Layout();
    void Fill();
    void OpenSnoozeMenu();
    RECT ScreenRect(const ButtonWnd& button) const;

    Actions actions_;
    std::function<void()> gone_;
    std::vector<Reminder> reminders_;
    int selected_ = 0;
    TouchListCtrlWnd list_;
    ButtonWnd snooze_, dismiss_, open_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> bold_;
};

} // namespace mirodate
