#include "views/WeekView.h"

#include "data/DateTimeSpan.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"
#include "views/ViewNavigator.h"

#include <mutex>

namespace mirodate {

namespace {
// Label texts as shares of a day row's height, bounded by the label width.
constexpr int kLabelFontHeight = 10;
// Entries are smaller than list rows, so that a busy day fits its box.
constexpr int kEntryFontHeight = 9;
// Swipes closer together than this change the week once.
constexpr DWORD kSwipeGuard = 50;

std::unique_ptr<Font> LabelFont(int weight) {
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::max(Scale(kLabelFontHeight) + FontSizeDelta(), 6);
    logFont.lfWeight = weight;
    return std::make_unique<Font>(logFont);
}
} // namespace

WeekView::WeekView() : ViewPage(SkinStyles::Current().weekView) {
    SetDate(DateTime::Today());
}

WeekView::~WeekView() = default;

std::vector<MenuBarEntry> WeekView::MenuEntries() const {
    return {{"Menu", MenuBarIcon::Menu},
            {"Filter", MenuBarIcon::Filter},
            {"Tasks", MenuBarIcon::Tasks},
            {"MonthView", MenuBarIcon::Month},
            {"AgendaView", MenuBarIcon::Agenda}};
}

std::u16string WeekView::Title() const {
    return WeekMarkup::Title(first_);
}

void WeekView::SetDate(const DateTime& date) {
    first_ = WeekMarkup::WeekStart(date.IsValid() ? date : DateTime::Today(), Locale::FirstDayOfWeek());
    if (!window)
        return;
    title_.SetLabel(Title());
    SetWindowText(window, Title());
    Reload();
}

void WeekView::LayoutLists(const RECT& area) {
    ShowWindow(list_.GetHwnd(), SW_HIDE);
    if (!labelFont_) {
        labelFont_ = LabelFont(400);
        labelBoldFont_ = LabelFont(700);
    }
    const TimeViewStyle& style = SkinStyles::Current().weekView;
    const int label = Scale(kLabelWidth);
    for (int i = 0; i < WeekMarkup::kDaysPerWeek; ++i) {
        // Rows share the height; the last takes what the division leaves.
        const int top = area.top + area.Height() * i / WeekMarkup::kDaysPerWeek;
        const int bottom = area.top + area.Height() * (i + 1) / WeekMarkup::kDaysPerWeek;
        rows_[static_cast<std::size_t>(i)] = RECT{area.left, top, area.right, bottom};
        auto& box = boxes_[static_cast<std::size_t>(i)];
        const int boxTop = top + 1; // a line between the days
        if (!box) {
            box = std::make_unique<TextBoxWnd>();
            box->Create(window, area.left + label, boxTop, area.Width() - label, bottom - boxTop);
            TextBoxColors colors = box->Colors();
            colors.background = i % 2 == 0 ? style.colorBg : style.colorBg2;
            colors.text = style.colorText;
            colors.linkPressed = style.colorSelectionMark;
            box->SetColors(colors);
            LOGFONT entryFont;
            DefaultFont(entryFont);
            entryFont.lfHeight = -std::max(Scale(kEntryFontHeight) + FontSizeDelta(), 6);
            box->SetFont(entryFont);
            box->Links().confirm = [this](const std::u16string& text) {
                return MessagePage::YesNo(window, text);
            };
            box->Links().inform = [this](const std::u16string& text, const std::u16string&) {
                MessagePage::Tell(window, text);
            };
            box->Links().action = [this](const std::u16string& argument) { OpenEntry(argument); };
            box->onTapOutsideLink = [this, i](int, int) { OpenDay(i); };
            box->onSwipe = [this](bool left) { OnSwipe(left); };
        } else {
            MoveWindow(box->GetHwnd(), area.left + label, boxTop, area.Width() - label, bottom - boxTop,
                       true);
        }
    }
}

RECT WeekView::LabelRect(int index) const {
    const RECT& row = rows_[static_cast<std::size_t>(index)];
    return RECT{row.left, row.top + 1, row.left + Scale(kLabelWidth), row.bottom};
}

void WeekView::Reload() {
    if (!window || !boxes_[0])
        return;
    PimStore& store = PimStore::Instance();
    // A fill that finds the cache taken leaves the boxes as they are.
    std::unique_lock lock(store.CacheLock(), std::try_to_lock);
    if (!lock.owns_lock() || store.IsBusy())
        return;
    const WeekMarkupOptions options = WeekMarkupOptions::FromSettings();
    for (int i = 0; i < WeekMarkup::kDaysPerWeek; ++i) {
        const DateTime day = first_ + DateTimeSpan(i, 0, 0, 0);
        appointments_.clear();
        tasks_.clear();
        store.GetDayAppointments(day.GetYear(), day.GetMonth(), day.GetDay(), appointments_);
        if (options.tasks)
            store.GetDayTasks(day.GetYear(), day.GetMonth(), day.GetDay(), tasks_);
        auto& box = *boxes_[static_cast<std::size_t>(i)];
        const std::u16string markup =
            WeekMarkup::DayBox(day, appointments_, tasks_, options, &counts_[static_cast<std::size_t>(i)]);
        if (markup != box.GetText())
            box.SetText(markup);
    }
    filledDay_ = DateTime::Today();
    refresh_ = false;
    InvalidateRect(window, nullptr, false);
}

void WeekView::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, look_.separator);
    const TimeViewStyle& style = SkinStyles::Current().weekView;
    const DateTime today = DateTime::Today();
    dc->SetBkMode(TRANSPARENT);
    for (int i = 0; i < WeekMarkup::kDaysPerWeek; ++i) {
        const DateTime day = first_ + DateTimeSpan(i, 0, 0, 0);
        const RECT label = LabelRect(i);
        dc->GradientFillVertical(label, style.colorHeaderBg, style.colorHeaderGradient);
        const bool isToday = day == today;
        if (isToday)
            dc->FillRect(RECT{label.left, label.top, label.left + Scale(kTodayMarkWidth), label.bottom},
                         style.colorTimeScale);
        // The weekday above the day of the month, both centred in the label.
        const DateTime noon(day.GetYear(), day.GetMonth(), day.GetDay(), 12, 0, 0);
        const int middle = (label.top + label.bottom) / 2;
        dc->SetTextColor(style.colorHeaderText);
        dc->SelectFont(labelFont_.get());
        RECT upper{label.left, label.top, label.right, middle};
        dc->DrawText(Locale::DayName(day.GetDayOfWeek(), true), upper, DT_CENTER | DT_BOTTOM | DT_SINGLELINE);
        dc->SelectFont(labelBoldFont_.get());
        RECT lower{label.left, middle, label.right, label.bottom};
        dc->DrawText(Locale::FormatDatePicture(noon.ToSystemTime(), u"d"), lower, DT_CENTER | DT_SINGLELINE);
    }
}

LRESULT WeekView::OnPointerUp(int button, int x, int y, WPARAM keys) {
    for (int i = 0; i < WeekMarkup::kDaysPerWeek; ++i) {
        const RECT label = LabelRect(i);
        if (x >= label.left && x < label.right && y >= label.top && y < label.bottom) {
            OpenDay(i);
            return 0;
        }
    }
    return ViewPage::OnPointerUp(button, x, y, keys);
}

void WeekView::OpenDay(int index) {
    if (!PassTapGuard())
        return;
    if (ViewNavigator* navigator = ViewNavigator::Current())
        navigator->OpenDayView(first_ + DateTimeSpan(index, 0, 0, 0));
}

void WeekView::OpenEntry(const std::u16string& argument) {
    const std::optional<WeekEntryLink> link = WeekEntryLink::Parse(argument);
    if (!link || link->oid <= 0 || !PassTapGuard())
        return;
    if (ViewNavigator* navigator = ViewNavigator::Current())
        navigator->OpenItemDetail(link->oid, link->task, link->day);
}

void WeekView::ChangeWeek(int weeks) {
    SetDate(first_ + DateTimeSpan(weeks * WeekMarkup::kDaysPerWeek, 0, 0, 0));
}

void WeekView::OnSwipe(bool toLeft) {
    const DWORD now = GetTickCount();
    if (swipeSeen_ && now - lastSwipe_ <= kSwipeGuard)
        return;
    swipeSeen_ = true;
    lastSwipe_ = now;
    ChangeWeek(toLeft ? 1 : -1);
}

bool WeekView::OnViewKey(UINT key) {
    if (key == VK_LEFT)
        PreviousWeek();
    else if (key == VK_RIGHT)
        NextWeek();
    else if (key == VK_UP || key == VK_DOWN || key == VK_RETURN)
        return true; // no rows to select
    else
        return false;
    return true;
}

} // namespace mirodate
