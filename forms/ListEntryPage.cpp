#include "forms/ListEntryPage.h"

#include "lang/LanguageTable.h"
#include "skin/SkinStyles.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled width of the "+" button, for a 240-pixel-wide screen.
constexpr int kAddWidth = 30;
} // namespace

ListEntryPage::ListEntryPage(const char* titleKey, int fieldId, std::size_t fieldLimit, FieldPlace place)
    : SmallFormPage(u""), titleKey_(titleKey), fieldId_(fieldId), fieldLimit_(fieldLimit), place_(place) {}

ListEntryPage::~ListEntryPage() = default;

void ListEntryPage::CreateControls() {
    // The title is looked up once the page opens, in the language then chosen.
    title_ = Lang(titleKey_);
    SetWindowText(window, title_);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().addModifyForm.colorBg;
    list_.SetColors(colors);
    field_.Create(window, fieldId_, 0, 0, 1, 1, false);
    field_.SetFont(logFont_);
    field_.SetLimit(fieldLimit_);
    add_.Create(window, u"+", 0, 0, 1, 1);
    Style(add_);
    if (place_ == FieldPlace::AboveList)
        SetFocus(field_.GetHwnd());
}

void ListEntryPage::LayoutControls(const RECT& area) {
    const int margin = Scale(kMargin);
    const int field = Scale(kFieldHeight);
    const int add = Scale(kAddWidth);
    const int fieldTop = place_ == FieldPlace::AboveList ? area.top + margin : area.bottom - field;
    MoveWindow(field_.GetHwnd(), margin, fieldTop, std::max(1, area.Width() - 3 * margin - add), field, true);
    MoveWindow(add_.GetHwnd(), area.Width() - margin - add, fieldTop, add, field, true);
    if (place_ == FieldPlace::AboveList) {
        const int listTop = fieldTop + field + margin;
        MoveWindow(list_.GetHwnd(), 0, listTop, area.Width(), std::max(1, area.bottom - listTop), true);
    } else {
        MoveWindow(list_.GetHwnd(), 0, area.top, area.Width(), std::max(1, fieldTop - margin - area.top),
                   true);
    }
    Fill();
}

void ListEntryPage::FillList(const std::function<void(int width)>& addRows, bool keepScroll) {
    if (!list_.GetHwnd() || !font_)
        return;
    const int position = list_.Scroller().Position();
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    addRows(client.Width());
    list_.Relayout();
    if (keepScroll)
        list_.Scroller().SetPosition(position);
    list_.RefreshViewport();
}

bool ListEntryPage::IsAddCommand(HWND control, UINT code) const {
    return control == add_.GetHwnd() || (control == field_.GetHwnd() && code == EN_ENTER);
}

bool ListEntryPage::AddTyped() {
    if (!Add(field_.GetText()))
        return false;
    field_.SetText(u"");
    return true;
}

void ListEntryPage::OnControl(HWND control, UINT code) {
    if (IsAddCommand(control, code))
        AddTyped();
}

bool ListEntryPage::OnAccept() {
    // Text typed and not yet added is added; text that cannot be keeps the page open.
    if (field_.GetText().find_first_not_of(u" \t") == std::u16string::npos)
        return true;
    return AddTyped();
}

} // namespace mirodate
