#include "views/ItemDetailView.h"

#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/WinApi.h"
#include "views/ItemCommands.h"
#include "views/ItemDetailDocument.h"
#include "views/Linkifier.h"
#include "views/ViewNavigator.h"

#include <cmath>

namespace mirodate {

namespace {
// Backgrounds darker than this (0..255 luma) get the light link colour.
constexpr int kDarkBackground = 128;
constexpr COLORREF kLinkOnDark = RGB(0x7A, 0xB8, 0xFF);
} // namespace

ItemDetailView::ItemDetailView(std::int32_t oid, bool task, const DateTime& occurrence)
    : ViewPage(SkinStyles::Current().dayView), oid_(oid), task_(task), occurrence_(occurrence) {}

ItemDetailView::~ItemDetailView() = default;

std::vector<MenuBarEntry> ItemDetailView::MenuEntries() const {
    return {{"Menu", MenuBarIcon::Menu}, {"Back", MenuBarIcon::Back}};
}

std::u16string ItemDetailView::Title() const {
    return Lang(task_ ? "TaskDetail" : "AppointmentDetail");
}

std::vector<ContextMenuItem> ItemDetailView::DetailMenu() {
    return {{Lang("Edit"), ItemCommands::kEdit},
            {Lang("Delete"), ItemCommands::kDelete},
            {Lang("Beam"), ItemCommands::kBeam},
            {Lang("Cancel"), kCancel}};
}

DateTime ItemDetailView::CurrentDate() const {
    if (found_ && !item_.IsTask())
        return DateTime(item_.startValue).StartOfDay();
    if (found_ && !occurrence_.IsValid() && !item_.noDueDate)
        return DateTime(item_.dueDateValue).StartOfDay();
    return occurrence_.IsValid() ? occurrence_.StartOfDay() : DateTime::Today();
}

void ItemDetailView::SetItem(std::int32_t oid, bool task, const DateTime& occurrence) {
    oid_ = oid;
    task_ = task;
    occurrence_ = occurrence;
    if (window) {
        Relabel();
        Reload();
    }
}

void ItemDetailView::LayoutLists(const RECT& area) {
    ShowWindow(list_.GetHwnd(), SW_HIDE);
    if (!box_) {
        box_ = std::make_unique<TextBoxWnd>();
        box_->Create(window, area.left, area.top, area.Width(), area.Height());
        TextBoxColors colors = TextBoxColors::FromSkin();
        colors.background = SkinStyles::Current().itemDetailView.colorBg;
        // Links stay readable on a dark background.
        const int luma = (GetRValue(colors.background) * 299 + GetGValue(colors.background) * 587 +
                          GetBValue(colors.background) * 114) /
                         1000;
        if (luma < kDarkBackground)
            colors.link = kLinkOnDark;
        box_->SetColors(colors);
        box_->Links().confirm = [this](const std::u16string& text) {
            return MessagePage::YesNo(window, text);
        };
        box_->Links().inform = [this](const std::u16string& text, const std::u16string&) {
            MessagePage::Tell(window, text);
        };
        // The document holds no links of the page's own.
        box_->Links().action = [](const std::u16string&) {};
    } else {
        MoveWindow(box_->GetHwnd(), area.left, area.top, area.Width(), area.Height(), true);
    }
}

bool ItemDetailView::ReadItem() {
    PimStore& store = PimStore::Instance();
    PimSource* source = store.Source();
    record_ = PimRecord();
    if (!source || !source->GetItemFromOid(oid_, record_))
        return false;
    task_ = record_.itemKind == kItemTask;
    item_ = PimStore::ItemFromRecord(record_);
    if (task_ || !occurrence_.IsValid())
        return true;
    // A series shows the occurrence of the day it was opened on.
    dayItems_.clear();
    store.GetDayAppointments(occurrence_.GetYear(), occurrence_.GetMonth(), occurrence_.GetDay(), dayItems_);
    for (const PimItem& occurrence : dayItems_)
        if (occurrence.oid == oid_ && occurrence.kind == PimItem::kAppointment) {
            item_ = occurrence;
            break;
        }
    return true;
}

void ItemDetailView::Reload() {
    if (!window || !box_)
        return;
    const bool hadItem = found_;
    found_ = ReadItem();
    refresh_ = false;
    filledDay_ = DateTime::Today();
    if (!found_) {
        if (hadItem) {
            // Deleted here or elsewhere: nothing left to show.
            CloseView();
            return;
        }
        markup_.clear();
    } else {
        selectedItem_ = item_;
        selectedDate_ = CurrentDate();
        markup_ = ItemDetailDocument::Build(record_, item_, ItemDetailColors::FromSkin(), Linkifier());
    }
    if (markup_ != box_->GetText())
        box_->SetText(markup_);
}

void ItemDetailView::OnCommand(UINT id, UINT code, HWND control) {
    if (control == title_.GetHwnd()) {
        CloseView();
        return;
    }
    const int index = menuBar_.IndexOf(control);
    if (index == 0) {
        if (found_) {
            selectedItem_ = item_;
            selectedDate_ = CurrentDate();
            OpenContextMenu(DetailMenu());
        }
        return;
    }
    ViewPage::OnCommand(id, code, control);
}

void ItemDetailView::OnDeferredCommand(UINT id) {
    if (id == kCancel)
        return;
    ViewPage::OnDeferredCommand(id);
}

bool ItemDetailView::OnViewKey(UINT key) {
    // The text box scrolls with the arrow keys; the page has no rows.
    if (key == VK_UP || key == VK_DOWN || key == VK_RETURN) {
        if (box_)
            box_->OnKeyDown(key, 0);
        return true;
    }
    return false;
}

} // namespace mirodate
