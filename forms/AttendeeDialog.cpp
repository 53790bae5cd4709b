#include "forms/AttendeeDialog.h"

#include "lang/LanguageTable.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kFieldId = 203;
constexpr int kRowHeight = 34;
constexpr int kAddWidth = 30;
constexpr int kIndent = 6;

std::function<void(AttendeeDialog&)>& OpenObserver() {
    static std::function<void(AttendeeDialog&)> observer;
    return observer;
}

std::u16string Trim(const std::u16string& text) {
    const auto first = text.find_first_not_of(u" \t\"");
    if (first == std::u16string::npos) return {};
    return text.substr(first, text.find_last_not_of(u" \t\"") - first + 1);
}

// A person: the name in bold over the address.
class PersonRow : public TouchListItem {
public:
    PersonRow(UINT command, const AppointmentDraft::Person& person, const Font& font, const Font& bold, int width)
        : command_(command) {
        const int room = std::max(1, width - Scale(2 * kIndent));
        name_ = TextLayout(person.name.empty() ? person.address : person.name, bold, room, false);
        address_ = TextLayout(person.name.empty() ? std::u16string() : person.address, font, room, false);
        height_ = std::max(Scale(kRowHeight), name_.Height() + address_.Height() + Scale(kIndent));
    }
    void Draw(Dc& dc, const RECT& rect) override {
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        dc.FillRect(rect, highlighted_ ? style.colorSelectionMark : style.colorBg);
        dc.FillRect(RECT{rect.left, rect.bottom - 1, rect.right, rect.bottom}, style.colorLineSeparator);
        const COLORREF ink = highlighted_ ? style.colorTextSel : style.colorText;
        const int top = rect.top + (rect.Height() - name_.Height() - address_.Height()) / 2;
        name_.Draw(dc, rect.left + Scale(kIndent), top, ink);
        address_.Draw(dc, rect.left + Scale(kIndent), top + name_.Height(), ink);
    }
    int Height() const override { return height_; }
    void Click(HWND list, int, int) override { PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0); }

private:
    UINT command_;
    TextLayout name_;
    TextLayout address_;
    int height_ = 0;
};
} // namespace

AttendeeDialog::AttendeeDialog(const std::u16string& people)
    : SmallFormPage(u""), people_(AppointmentDraft::SplitPeople(people)) {}
AttendeeDialog::~AttendeeDialog() = default;

void AttendeeDialog::SetOpenObserver(std::function<void(AttendeeDialog&)> observer) {
    OpenObserver() = std::move(observer);
}

std::optional<std::u16string> AttendeeDialog::Edit(HWND owner, const std::u16string& people) {
    AttendeeDialog page(people);
    if (page.DoModal(owner) != IDOK) return std::nullopt;
    return page.Value();
}

bool AttendeeDialog::ParseEntry(const std::u16string& raw, AppointmentDraft::Person& person) {
    const std::u16string text = Trim(raw.substr(0, kMaxEntry));
    const auto open = text.rfind(u'<');
    const auto close = text.rfind(u'>');
    std::u16string address = text;
    std::u16string name;
    if (open != std::u16string::npos && close != std::u16string::npos && close > open) {
        address = Trim(text.substr(open + 1, close - open - 1));
        name = Trim(text.substr(0, open));
    }
    if (address.size() >= 7 && (address.compare(0, 7, u"mailto:") == 0 || address.compare(0, 7, u"MAILTO:") == 0))
        address.erase(0, 7);
    const auto at = address.find(u'@');
    // One "@" with something on both sides, and no blank inside.
    if (at == std::u16string::npos || at == 0 || at + 1 >= address.size() ||
        address.find(u'@', at + 1) != std::u16string::npos || address.find_first_of(u" \t,;") != std::u16string::npos)
        return false;
    person.name = name;
    person.address = address;
    return true;
}

bool AttendeeDialog::Add(const std::u16string& text) {
    AppointmentDraft::Person person;
    if (!ParseEntry(text, person)) {
        MessagePage::Tell(window, Lang("editor.BadAddress"));
        return false;
    }
    const bool known = std::any_of(people_.begin(), people_.end(),
                                   [&](const AppointmentDraft::Person& p) { return p.address == person.address; });
    if (!known && people_.size() < kMaxPeople) people_.push_back(person);
    Fill();
    return true;
}

void AttendeeDialog::Remove(int index) {
    if (index < 0 || index >= static_cast<int>(people_.size())) return;
    const AppointmentDraft::Person& person = people_[static_cast<size_t>(index)];
    std::u16string question = Lang("editor.RemoveAttendee");
    question += u"\n" + (person.name.empty() ? person.address : person.name + u" <" + person.address + u">");
    if (!MessagePage::YesNo(window, question)) return;
    people_.erase(people_.begin() + index);
    Fill();
}

void AttendeeDialog::CreateControls() {
    title_ = Lang("addmodify.Attendees");
    SetWindowText(window, title_);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().addModifyForm.colorBg;
    list_.SetColors(colors);
    field_.Create(window, kFieldId, 0, 0, 1, 1, false);
    field_.SetFont(logFont_);
    field_.SetLimit(kMaxEntry);
    add_.Create(window, u"+", 0, 0, 1, 1);
    Style(add_);
    SetFocus(field_.GetHwnd());
}

void AttendeeDialog::LayoutControls(const RECT& area) {
    const int margin = Scale(kMargin);
    const int field = Scale(kFieldHeight);
    const int add = Scale(kAddWidth);
    const int fieldTop = area.top + margin;
    MoveWindow(field_.GetHwnd(), margin, fieldTop, std::max(1, area.Width() - 3 * margin - add), field, true);
    MoveWindow(add_.GetHwnd(), area.Width() - margin - add, fieldTop, add, field, true);
    const int listTop = fieldTop + field + margin;
    MoveWindow(list_.GetHwnd(), 0, listTop, area.Width(), std::max(1, area.bottom - listTop), true);
    Fill();
}

void AttendeeDialog::Fill() {
    if (!list_.GetHwnd() || !font_) return;
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    for (size_t i = 0; i < people_.size(); ++i)
        list_.AddItem(std::make_unique<PersonRow>(kCmdRowBase + static_cast<UINT>(i), people_[i], *font_, *bold_,
                                                  client.Width()));
    list_.Relayout();
    list_.RefreshViewport();
}

void AttendeeDialog::OnControl(HWND control, UINT code) {
    if (control == add_.GetHwnd() || (control == field_.GetHwnd() && code == EN_ENTER)) {
        if (Add(field_.GetText())) field_.SetText(u"");
    }
}

bool AttendeeDialog::OnAccept() {
    // A typed address not yet added is added; a bad one keeps the page open.
    if (field_.GetText().find_first_not_of(u" \t") == std::u16string::npos) return true;
    if (!Add(field_.GetText())) return false;
    field_.SetText(u"");
    return true;
}

void AttendeeDialog::OnDeferredCommand(UINT id) {
    if (id >= kCmdRowBase && id < kCmdRowBase + people_.size()) Remove(static_cast<int>(id - kCmdRowBase));
}

void AttendeeDialog::OnDialogReady() {
    SmallFormPage::OnDialogReady();
    if (OpenObserver()) OpenObserver()(*this);
}

} // namespace mirodate
