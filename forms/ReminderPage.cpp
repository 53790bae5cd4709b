#include "forms/ReminderPage.h"

#include "data/DateTime.h"
#include "data/PimSource.h"
#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 24;
constexpr int kButtonHeight = 26;
constexpr int kTextHeight = 11;
constexpr int kMargin = 6;
constexpr int kMarkWidth = 3;

class ReminderRow : public TouchListItem {
public:
    ReminderRow(const Reminder& reminder, const Font& bold, const Font& font, int width, bool selected,
                std::function<void()> tap)
        : subject_(reminder.subject.empty() ? Lang("reminder.NoSubject") : reminder.subject, bold,
                   std::max(1, width - Scale(2 * kMargin)), false),
          when_(ReminderPage::WhenText(reminder), font, std::max(1, width - Scale(2 * kMargin)), true),
          selected_(selected), tap_(std::move(tap)) {}

    void Draw(Dc& dc, const RECT& rect) override {
        const ListViewStyle& style = SkinStyles::Current().listViews;
        dc.FillRect(rect, selected_ || highlighted_ ? style.colorBg2 : style.colorBg);
        if (selected_)
            dc.FillRect(RECT{rect.left, rect.top, rect.left + Scale(kMarkWidth), rect.bottom},
                        style.colorSelectionMark);
        const int x = rect.left + Scale(kMargin);
        int y = rect.top + Scale(kMargin) / 2;
        subject_.Draw(dc, x, y, style.colorText);
        y += subject_.Height();
        when_.Draw(dc, x, y, style.colorText);
        dc.FillRect(RECT{rect.left, rect.bottom - 1, rect.right, rect.bottom}, style.colorLineSeparator);
    }
    int Height() const override { return subject_.Height() + when_.Height() + Scale(kMargin); }
    void Click(HWND, int, int) override {
        if (tap_)
            tap_();
    }

private:
    TextLayout subject_;
    TextLayout when_;
    bool selected_;
    std::function<void()> tap_;
};

std::u16string DayAndTime(double date, bool withTime) {
    const SYSTEMTIME fields = DateTime(date).ToSystemTime();
    std::u16string text = Locale::DayName(fields.wDayOfWeek, true) + u" " + Locale::FormatShortDate(fields);
    if (withTime)
        text += u" " + Locale::FormatShortTime(fields);
    return text;
}
} // namespace

ReminderPage::ReminderPage(Actions actions, std::function<void()> gone)
    : actions_(std::move(actions)), gone_(std::move(gone)) {}

ReminderPage::~ReminderPage() {
    if (gone_)
        gone_();
}

std::u16string ReminderPage::WhenText(const Reminder& reminder) {
    std::u16string text;
    if (reminder.start != kNoDate) {
        if (reminder.itemKind == kItemTask)
            text = Lang("reminder.Due") + u" ";
        text += DayAndTime(reminder.start, !reminder.allDay);
        if (reminder.itemKind != kItemTask && !reminder.allDay && reminder.end > reminder.start)
            text += u" - " + Locale::FormatShortTime(DateTime(reminder.end).ToSystemTime());
    }
    if (!reminder.location.empty())
        text += (text.empty() ? u"" : u"\n") + reminder.location;
    return text;
}

HWND ReminderPage::Open(HWND owner) {
    return CreateModeless(owner);
}

BOOL ReminderPage::OnInitDialog() {
    SetWindowText(window, Lang("reminder.Title"));
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    logFont.lfWeight = FW_BOLD;
    bold_ = std::make_unique<Font>(logFont);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().listViews.colorBg;
    list_.SetColors(colors);
    const ButtonColors& form = SkinStyles::Current().inputForms.buttons;
    for (auto [button, key, id] : {std::tuple{&snooze_, "reminder.Snooze", 101},
                                   {&dismiss_, "reminder.Dismiss", 102},
                                   {&open_, "reminder.Open", 103}}) {
        button->Create(window, Lang(key), 0, 0, 1, 1, id);
        button->SetColors(form.colorButtonBg, form.colorButtonText, form.colorButtonBgPressed,
                          form.colorButtonTextPressed);
        button->SetGradient(form.colorButtonGradient, form.colorButtonGradientPressed);
    }
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void ReminderPage::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int top = Scale(kTitleHeight);
    const int margin = Scale(kMargin);
    const int buttonHeight = Scale(kButtonHeight) + std::max(0, FontSizeDelta());
    const int buttons = buttonHeight + 2 * margin;
    MoveWindow(list_.GetHwnd(), 0, top, width, std::max(1, height - top - buttons), true);
    const int buttonWidth = (width - 4 * margin) / 3;
    int x = margin;
    for (ButtonWnd* button : {&snooze_, &dismiss_, &open_}) {
        MoveWindow(button->GetHwnd(), x, height - margin - buttonHeight, buttonWidth, buttonHeight, true);
        x += buttonWidth + margin;
    }
    Fill();
    InvalidateRect(window, nullptr, false);
}

void ReminderPage::Fill() {
    if (!window)
        return;
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    for (size_t i = 0; i < reminders_.size(); ++i) {
        const int index = static_cast<int>(i);
        list_.AddItem(std::make_unique<ReminderRow>(reminders_[i], *bold_, *font_, client.Width(),
                                                    index == selected_, [this, index] {
                                                        // After the list has finished with the tap.
                                                        PostDeferredCommand(kCmdSelectBase + index, nullptr);
                                                    }));
    }
    list_.Relayout();
    const bool any = !reminders_.empty();
    EnableWindow(snooze_.GetHwnd(), any);
    EnableWindow(dismiss_.GetHwnd(), any);
    EnableWindow(open_.GetHwnd(), any);
    InvalidateRect(list_.GetHwnd(), nullptr, false);
}

void ReminderPage::SetReminders(std::vector<Reminder> reminders) {
    const bool hadSelection = selected_ >= 0 && selected_ < static_cast<int>(reminders_.size());
    const Reminder previous = hadSelection ? reminders_[static_cast<size_t>(selected_)] : Reminder{};
    reminders_ = std::move(reminders);
    selected_ = 0;
    if (hadSelection)
        for (size_t i = 0; i < reminders_.size(); ++i)
            if (reminders_[i].SameAlarm(previous))
                selected_ = static_cast<int>(i);
    Fill();
}

void ReminderPage::Select(int index) {
    if (index < 0 || index >= static_cast<int>(reminders_.size()))
        return;
    selected_ = index;
    Fill();
}

void ReminderPage::SnoozeSelected(int minutes) {
    if (selected_ < 0 || selected_ >= static_cast<int>(reminders_.size()) || !actions_.snooze)
        return;
    const Reminder reminder = reminders_[static_cast<size_t>(selected_)];
    actions_.snooze(reminder, minutes); // may replace the list or delete the page
}

void ReminderPage::DismissSelected() {
    if (selected_ < 0 || selected_ >= static_cast<int>(reminders_.size()) || !actions_.dismiss)
        return;
    const Reminder reminder = reminders_[static_cast<size_t>(selected_)];
    actions_.dismiss(reminder);
}

void ReminderPage::OpenSelected() {
    if (selected_ < 0 || selected_ >= static_cast<int>(reminders_.size()) || !actions_.open)
        return;
    const Reminder reminder = reminders_[static_cast<size_t>(selected_)];
    actions_.open(reminder);
}

void ReminderPage::OpenSnoozeMenu() {
    std::vector<ContextMenuItem> items;
    for (size_t i = 0; i < std::size(kSnoozeMinutes); ++i) {
        const int minutes = kSnoozeMinutes[i];
        const std::u16string label = minutes == 60 ? Lang("reminder.OneHour") : Lang("reminder.Minutes");
        std::u16string text = label;
        const size_t at = text.find(u"$Minutes");
        if (at != std::u16string::npos)
            text.replace(at, 8, Utf8ToUtf16(std::to_string(minutes)));
        items.push_back({text, kCmdSnoozeBase + static_cast<UINT>(i)});
    }
    auto* menu = new ContextMenu(this, std::move(items)); // owned by our deferred command, or by itself
    menu->SetHeaderText(Lang("reminder.Snooze"));
    menu->Open();
}

void ReminderPage::OnDeferredCommand(UINT id) {
    if (id >= kCmdSelectBase) {
        Select(static_cast<int>(id - kCmdSelectBase));
        return;
    }
    if (id >= kCmdSnoozeBase && id < kCmdSnoozeBase + std::size(kSnoozeMinutes))
        SnoozeSelected(kSnoozeMinutes[id - kCmdSnoozeBase]);
}

void ReminderPage::OnCommand(UINT, UINT, HWND control) {
    if (control == snooze_.GetHwnd())
        OpenSnoozeMenu();
    else if (control == dismiss_.GetHwnd())
        DismissSelected();
    else if (control == open_.GetHwnd())
        OpenSelected();
}

void ReminderPage::OnKeyDown(UINT key, UINT) {
    if (key == VK_UP)
        Select(selected_ - 1);
    else if (key == VK_DOWN)
        Select(selected_ + 1);
    else if (key == VK_RETURN)
        OpenSelected();
    else if (key == VK_ESCAPE)
        DismissSelected();
}

void ReminderPage::OnScreenReset() {
    Layout();
}

void ReminderPage::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), bold_.get(), Lang("reminder.Title"));
}

RECT ReminderPage::ScreenRect(const ButtonWnd& button) const {
    RECT rect{};
    GetWindowRect(button.GetHwnd(), &rect);
    return rect;
}
RECT ReminderPage::SnoozeButtonRect() const {
    return ScreenRect(snooze_);
}
RECT ReminderPage::DismissButtonRect() const {
    return ScreenRect(dismiss_);
}
RECT ReminderPage::OpenButtonRect() const {
    return ScreenRect(open_);
}

} // namespace mirodate
