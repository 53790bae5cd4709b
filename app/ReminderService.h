#pragma once
// The reminder service of the running program: it keeps the next reminder
// moments of the whole store, asks the store again on every change
// (MIRODATE_WM_NOTIFY_POOMDATA_CHANGED), and fires each reminder on time with
// one timer of the window system set to the next moment. A fired reminder
// goes to the desktop as a notification and, when the program is in front,
// onto the reminder page, where the user snoozes, dismisses or opens it;
// dismissals and snoozes are written into the item. Reminders whose moment
// passed while the program was not running are shown at the next start,
// once: the moment up to which reminders were handled is kept in the
// settings.
#include "data/Reminder.h"
#include "ui/BaseWnd.h"

#include <functional>
#include <vector>

namespace mirodate {

class ReminderPage;

class ReminderService : public BaseWnd {
public:
    static constexpr UINT_PTR kFireTimer = 1;
    // The store is asked for the reminders of whole days, from the day of
    // the last handled moment to this many days after today; the window
    // stays the same all day, so that the store answers a change from what
    // it kept for the unchanged items.
    static constexpr double kLookAheadDays = 3.0;
    // Reminders missed longer ago than this are not shown at a start.
    static constexpr double kMissedLookBackDays = 7.0;
    // The timer is set no further ahead than this, so that the window moves
    // on and a changed system clock is noticed.
    static constexpr UINT kMaxTimerMs = 60 * 60 * 1000;
    // The handled moment in the settings.
    static constexpr const char* kCheckedSetting = "RemindersCheckedUntil";

    // What the service does besides its own work (the program wires the
    // real ones; tests watch them).
    struct Hooks {
        // Whether the program is in front (the reminder page may be shown).
        std::function<bool()> inFront;
        // "Open": the item's detail view.
        std::function<void(const Reminder&)> open;
    };

    ReminderService();
    ~ReminderService() override;

    // Creates the service's hidden window, shows what was missed and sets
    // the timer. `owner` is the window the reminder page opens over.
    bool Start(HWND owner, Hooks hooks);
    // Asks the store again and sets the timer.
    void Reschedule();
    // Fires what is due now.
    void FireDue();
    // The program came to the front: the page shows what is still due.
    void BroughtToFront();

    // Reminders fired and not yet answered, oldest first.
    const std::vector<Reminder>& Due() const { return due_; }
    // The next moment the timer is set for (kNoDate: none in the window).
    double NextMoment() const { return next_; }
    ReminderPage* Page() const { return page_; }
    // The current local time as a DATE, to the millisecond.
    static double Now();

    // The page's answers.
    void Snooze(const Reminder& reminder, int minutes);
    void Dismiss(const Reminder& reminder);
    void Open(const Reminder& reminder);

    void OnTimer(UINT_PTR id) override;
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void Notify(const Reminder& reminder);
    void ShowPage();
    void UpdatePage();
    void SetChecked(double moment);
    void Forget(const Reminder& reminder);

    HWND owner_ = nullptr;
    Hooks hooks_;
    UINT dataChangedMessage_ = 0;
    double checked_ = 0.0; // reminders up to this moment have been handled
    double next_ = kNoDate;
    std::vector<Reminder> upcoming_; // the store's answer for the window
    std::vector<Reminder> due_;
    ReminderPage* page_ = nullptr; // deletes itself on the close-all broadcast
};

} // namespace mirodate
