#include "app/SplitDayList.h"

#include "data/PimStore.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "skin/SkinStyles.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"
#include "views/ItemRow.h"

namespace mirodate {

namespace {
// The header band's height for a 240-pixel-wide screen.
constexpr int kHeaderHeight = 16;
} // namespace

SplitDayList::SplitDayList() = default;
SplitDayList::~SplitDayList() = default;

HWND SplitDayList::Create(HWND parent, int x, int y, int width, int height) {
    const TimeViewStyle& style = SkinStyles::Current().dayView;
    look_ = std::make_unique<RowLook>(style, this);
    TouchListColors colors = Colors();
    colors.background = style.colorBg;
    colors.headerBackground = style.colorHeaderBg;
    colors.headerText = style.colorHeaderText;
    SetColors(colors);
    if (!TouchListCtrlWnd::Create(parent, x, y, width, height, false, false))
        return nullptr;
    SetHeaderHeight(Scale(kHeaderHeight));
    layoutWidth_ = width;
    return window;
}

void SplitDayList::ShowDay(int year, int month, int day, bool reload) {
    if (!reload && IsShowing(year, month, day))
        return;
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
    if (year_ != 0)
        Fill();
}

void SplitDayList::Fill() {
    items_.clear();
    PimStore& store = PimStore::Instance();
    store.GetDayAppointments(year_, month_, day_, items_);
    if (Settings::IsTaskViewEnabled(u"Month"))
        store.GetDayTasks(year_, month_, day_, items_);
    ClearItems();
    if (!window)
        return;
    RECT client;
    GetClientRect(window, &client);
    look_->BeginFill(client.Width(), Settings::GetColorizeText(), Settings::GetStrikeThroughPastEvents());
    const double dayDate = DateTime(year_, month_, day_).ToDate();
    for (const PimItem& item : items_)
        AddItem(std::make_unique<ItemRow>(*look_, item, dayDate));
}

void SplitDayList::OnRowTap(ViewRow& row, int x, int) {
    const PimItem* item = row.Item();
    if (!item || !onTap_)
        return;
    const bool inCheck = row.RowType() == ViewRow::kTypeItem && static_cast<ItemRow&>(row).InCheckZone(x);
    onTap_(*item, row.DayDate(), inCheck);
}

void SplitDayList::OnLongTap(int index) {
    auto* row = dynamic_cast<ViewRow*>(Item(index));
    if (!row || !row->Item() || !onHold_)
        return;
    Scroller().EndDrag();
    onHold_(*row->Item(), row->DayDate());
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
