#include "app/ReminderService.h"

#include "data/PimStore.h"
#include "forms/ReminderPage.h"
#include "lang/LanguageTable.h"
#include "platform/Clock.h"
#include "platform/DesktopNotifier.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace mirodate {

namespace {
constexpr const char* kClassName = "MIRODATE::REMINDERS";
// Posted to ourselves: the emptied page is deleted.
constexpr UINT kMsgClosePage = WM_APP + 0x2F1;
constexpr double kMsPerDay = 86400000.0;
constexpr double kMinutesPerDay = 1440.0;
// Two moments closer than this are one.
constexpr double kSameMoment = 0.5 / 86400.0;

std::u16string MomentText(double moment) {
    // Milliseconds since 1899-12-30 00:00 local, as a plain number.
    return Utf8ToUtf16(std::to_string(std::llround(moment * kMsPerDay)));
}

bool ParseMoment(const std::u16string& text, double& moment) {
    const std::string digits = Utf16ToUtf8(text);
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string::npos || digits.size() > 15)
        return false;
    moment = static_cast<double>(std::strtoll(digits.c_str(), nullptr, 10)) / kMsPerDay;
    return true;
}
} // namespace

ReminderService::ReminderService() = default;

ReminderService::~ReminderService() {
    // The handled moment is written only when reminders fire: a run without
    // reminders leaves the settings file as it was.
    delete page_; // tells us through its gone handler
}

double ReminderService::Now() {
    const SYSTEMTIME now = Clock::Current().GetLocalTime();
    return DateTime::FromSystemTime(now).ToDate() + now.wMilliseconds / kMsPerDay;
}

bool ReminderService::Start(HWND owner, Hooks hooks) {
    owner_ = owner;
    hooks_ = std::move(hooks);
    dataChangedMessage_ = RegisterWindowMessage(kPoomDataChangedName);
    if (!Create(nullptr, kClassName, WS_POPUP, u"", 0, 0, 0, 0))
        return false;
    const double now = Now();
    double saved = 0.0;
    // A saved moment is whole milliseconds: one that rounded up past now is not in the future.
    if (!ParseMoment(Settings::GetText(kCheckedSetting, u""), saved) || saved > now + kSameMoment) {
        // The first start: what was due earlier today counts as missed.
        saved = std::floor(now);
    }
    checked_ = std::max(saved, now - kMissedLookBackDays);
    // The first schedule reads the alarms of every file that may remind:
    // it waits for the timer, which comes after the first frame is shown.
    SetTimer(window, kFireTimer, 0);
    return true;
}

void ReminderService::Reschedule() {
    PimSource* source = PimStore::Instance().Source();
    const double now = Now();
    const double from = std::floor(checked_);
    const double before = std::floor(now) + kLookAheadDays;
    upcoming_ = source ? source->GetReminders(from, before) : std::vector<Reminder>{};
    // Reminders answered elsewhere (or whose item went away or moved) leave
    // the page.
    const size_t dueBefore = due_.size();
    std::erase_if(due_, [&](const Reminder& reminder) {
        if (reminder.moment < from)
            return false;
        return std::none_of(upcoming_.begin(), upcoming_.end(), [&](const Reminder& u) {
            return u.SameAlarm(reminder) && std::fabs(u.moment - reminder.moment) < kSameMoment;
        });
    });
    if (due_.size() != dueBefore)
        UpdatePage();
    FireDue();
}

void ReminderService::FireDue() {
    const double now = Now();

    bool fired = false;
    for (const Reminder& reminder : upcoming_) {
        // Moments are whole seconds; the clock's may differ in the last bit.
        if (reminder.moment <= checked_ + kSameMoment || reminder.moment > now + kSameMoment)
            continue;
        const bool known = std::any_of(due_.begin(), due_.end(), [&](const Reminder& d) {
            return d.SameAlarm(reminder) && std::fabs(d.moment - reminder.moment) < kSameMoment;
        });
        if (known)
            continue;
        due_.push_back(reminder);
        Log::Info("reminder: %s", Utf16ToUtf8(reminder.subject).c_str());
        Notify(reminder);
        fired = true;
    }
    if (fired) {
        SetChecked(now);
        if (!hooks_.inFront || hooks_.inFront())
            ShowPage();
        else
            UpdatePage();
    }
    // One timer, to the next moment (or to a look at the store later on).
    next_ = kNoDate;
    for (const Reminder& reminder : upcoming_)
        if (reminder.moment > now + kSameMoment) {
            next_ = reminder.moment;
            break;
        }
    UINT delay = kMaxTimerMs;
    if (next_ != kNoDate)
        // To the millisecond (the moment is a whole second; FireDue allows
        // for the last bit of the arithmetic).
        delay =
            static_cast<UINT>(std::clamp(std::round((next_ - now) * kMsPerDay), 1.0, double(kMaxTimerMs)));
    if (window)
        SetTimer(window, kFireTimer, delay);
}

void ReminderService::BroughtToFront() {
    if (!due_.empty())
        ShowPage();
}

void ReminderService::SetChecked(double moment) {
    checked_ = std::max(checked_, moment);
    Settings::SetText(kCheckedSetting, MomentText(checked_));
}

void ReminderService::Notify(const Reminder& reminder) {
    const std::u16string subject = reminder.subject.empty() ? Lang("reminder.Title") : reminder.subject;
    DesktopNotifier::Instance().Show(Utf16ToUtf8(subject), Utf16ToUtf8(ReminderPage::WhenText(reminder)));
}

void ReminderService::ShowPage() {
    if (page_ && !IsWindowVisible(page_->GetHwnd()))
        ShowWindow(page_->GetHwnd(), SW_SHOW);
    if (!page_) {
        ReminderPage::Actions actions;
        actions.snooze = [this](const Reminder& r, int minutes) { Snooze(r, minutes); };
        actions.dismiss = [this](const Reminder& r) { Dismiss(r); };
        actions.open = [this](const Reminder& r) { Open(r); };
        page_ = new ReminderPage(std::move(actions), [this] { page_ = nullptr; });
        if (!page_->Open(owner_)) {
            delete page_;
            return;
        }
    } else {
        SetForegroundWindow(page_->GetHwnd());
    }
    page_->SetReminders(due_);
}

void ReminderService::UpdatePage() {
    if (!page_)
        return;
    page_->SetReminders(due_);
    if (due_.empty()) {
        // The page may be in the middle of its own message (the answer that
        // emptied it): hidden now, deleted from the queue.
        ShowWindow(page_->GetHwnd(), SW_HIDE);
        PostMessage(window, kMsgClosePage, 0, 0);
    }
}

void ReminderService::Forget(const Reminder& reminder) {
    std::erase_if(due_, [&](const Reminder& d) { return d.SameAlarm(reminder); });
}

void ReminderService::Snooze(const Reminder& reminder, int minutes) {
    PimSource* source = PimStore::Instance().Source();
    const double now = Now();
    const SaveResult result =
        source ? source->SnoozeReminder(reminder, now, now + minutes / kMinutesPerDay) : SaveResult::Failed;
    Forget(reminder);
    UpdatePage();
    if (result != SaveResult::Saved) {
        Log::Warning("reminder of item %d not snoozed", static_cast<int>(reminder.oid));
        MessagePage::Tell(owner_, Lang("reminder.NotSaved"));
    }
    Reschedule();
}

void ReminderService::Dismiss(const Reminder& reminder) {
    PimSource* source = PimStore::Instance().Source();
    const SaveResult result = source ? source->DismissReminder(reminder, Now()) : SaveResult::Failed;
    Forget(reminder);
    UpdatePage();
    if (result != SaveResult::Saved) {
        Log::Warning("reminder of item %d not dismissed", static_cast<int>(reminder.oid));
        MessagePage::Tell(owner_, Lang("reminder.NotSaved"));
    }
    Reschedule();
}

void ReminderService::Open(const Reminder& reminder) {
    if (hooks_.open)
        hooks_.open(reminder);
}

void ReminderService::OnTimer(UINT_PTR id) {

    if (id != kFireTimer)
        return;
    KillTimer(window, kFireTimer);
    // The window may have moved on to a new day.
    Reschedule();
}

LRESULT ReminderService::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kMsgClosePage) {
        if (page_ && due_.empty())
            delete page_;
        return 0;
    }
    if (dataChangedMessage_ && message == dataChangedMessage_) {
        Reschedule();
        return 0;
    }
    return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
}

} // namespace mirodate
