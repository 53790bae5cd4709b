#include "app/SplitDayList.h"

#include "data/PimStore.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <cstdio>

namespace mirodate {

namespace {
// Unscaled sizes of a row.
constexpr int kRowHeight = 22;
constexpr int kHeaderHeight = 16;
constexpr int kTimeWidth = 62;
constexpr int kColorBarWidth = 4;
constexpr int kTextHeight = 11;

std::u16string TimeText(const PimItem& item) {
    if (item.IsTask()) return item.isComplete ? u"\u2611" : u"\u2610";
    if (item.kind != PimItem::kAppointment || item.isAllDay) return u"";
    return Locale::FormatShortTime(item.start);
}

class DayRow : public TouchListItem {
public:
    DayRow(const PimItem& item, const Font& font, const Font& timeFont, int width, COLORREF text,
           COLORREF selected, SplitDayList::ChooseCallback* onChoose)
        : item_(item), text_(text), selected_(selected), onChoose_(onChoose) {
        const int textWidth = std::max(width - Scale(kTimeWidth) - Scale(kColorBarWidth) - Scale(6), 1);
        subject_ = TextLayout(item.subject, font, textWidth, false);
        time_ = TextLayout(TimeText(item), timeFont, Scale(kTimeWidth), false);
        color_ = item.colors.empty() ? text : item.colors.front();
    }
    void Draw(Dc& dc, const RECT& rect) override {
        if (highlighted_) dc.FillRect(rect, selected_);
        dc.FillRect({rect.left + Scale(1), rect.top + Scale(2), rect.left + Scale(1 + kColorBarWidth),
                     rect.bottom - Scale(2)},
                    color_);
        const int left = rect.left + Scale(kColorBarWidth + 3);
        time_.Draw(dc, left, rect.top + (rect.Height() - time_.Height()) / 2, text_);
        subject_.Draw(dc, left + Scale(kTimeWidth), rect.top + (rect.Height() - subject_.Height()) / 2, text_);
    }
    int Height() const override { return Scale(kRowHeight); }
    void Click(HWND, int, int) override {
        if (onChoose_ && *onChoose_) (*onChoose_)(item_);
    }

private:
    PimItem item_;
    COLORREF text_;
    COLORREF selected_;
    COLORREF color_;
    SplitDayList::ChooseCallback* onChoose_;
    TextLayout subject_;
    TextLayout time_;
};
} // namespace

SplitDayList::SplitDayList() = default;
SplitDayList::~SplitDayList() = default;

HWND SplitDayList::Create(HWND parent, int x, int y, int width, int height) {
    const TimeViewStyle& style = SkinStyles::Current().dayView;
    TouchListColors colors = Colors();
    colors.background = style.colorBg;
    colors.headerBackground = style.colorHeaderBg;
    colors.headerText = style.colorHeaderText;
    SetColors(colors);
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -(Scale(kTextHeight) + FontSizeDelta());
    font_ = std::make_unique<Font>(logFont);
    timeFont_ = std::make_unique<Font>(logFont);
    if (!TouchListCtrlWnd::Create(parent, x, y, width, height, false, false)) return nullptr;
    SetHeaderHeight(Scale(kHeaderHeight));
    layoutWidth_ = width;
    return window;
}

void SplitDayList::ShowDay(int year, int month, int day, bool reload) {
    if (!reload && IsShowing(year, month, day)) return;
    year_ = year;
    month_ = month;
    day_ = day;
    SYSTEMTIME date{};
    date.wYear = static_cast<WORD>(year);
    date.wMonth = static_cast<WORD>(month);
    date.wDay = static_cast<WORD>(day);
    SetHeaderText(Locale::DayName(DateTime(year, month, day).GetDayOfWeek()) + u", " +
                  Locale::FormatShortDate(date));
    Fill();
}

void SplitDayList::Refresh() {
    if (year_ != 0) Fill();
}

void SplitDayList::Fill() {
    items_.clear();
    PimStore& store = PimStore::Instance();
    store.GetDayAppointments(year_, month_, day_, items_);
    if (Settings::IsTaskViewEnabled(u"Month")) store.GetDayTasks(year_, month_, day_, items_);
    ClearItems();
    if (!window) return;
    const TimeViewStyle& style = SkinStyles::Current().dayView;
    RECT client;
    GetClientRect(window, &client);
    for (const PimItem& item : items_)
        AddItem(std::make_unique<DayRow>(item, *font_, *timeFont_, client.Width(), style.colorText,
                                         style.colorSelectionMark, &onChoose_));
}

void SplitDayList::OnSize(UINT sizeParam, UINT type) {
    TouchListCtrlWnd::OnSize(sizeParam, type);
    RECT client;
    GetClientRect(window, &client);
    // Rows keep their layout for one width; a new width lays them out again.
    if (client.Width() != layoutWidth_) {
        layoutWidth_ = client.Width();
        Refresh();
    }
}

} // namespace mirodate
