#include "forms/AttendeeDialog.h"

#include "data/PimFolder.h"
#include "data/PimStore.h"
#include "data/TextMatcher.h"
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
constexpr int kSectionHeight = 22;

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

// The band over the contacts' addresses.
class SectionRow : public TouchListItem {
public:
    SectionRow(const std::u16string& text, const Font& bold, int width)
        : text_(text, bold, std::max(1, width - Scale(2 * kIndent)), false) {}
    void Draw(Dc& dc, const RECT& rect) override {
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        dc.FillRect(rect, style.colorHeaderBg);
        text_.Draw(dc, rect.left + Scale(kIndent), rect.top + (rect.Height() - text_.Height()) / 2,
                   style.colorHeaderText);
    }
    int Height() const override { return std::max(Scale(kSectionHeight), text_.Height() + Scale(kIndent)); }

private:
    TextLayout text_;
};

// A contact's address to add, with a "+" on the right. Laid out when first
// drawn: a long address book costs only the rows the user scrolls to.
class ContactRow : public TouchListItem {
public:
    ContactRow(UINT command, const AppointmentDraft::Person& person, const Font& font, const Font& bold, int width,
               int height)
        : command_(command), person_(person), font_(font), bold_(bold), width_(width), height_(height) {}
    void Draw(Dc& dc, const RECT& rect) override {
        if (plus_.IsEmpty()) {
            plus_ = TextLayout(u"+", bold_, width_, false);
            const int room = std::max(1, width_ - Scale(3 * kIndent) - plus_.Width());
            name_ = TextLayout(person_.name.empty() ? person_.address : person_.name, bold_, room, false);
            address_ = TextLayout(person_.name.empty() ? std::u16string() : person_.address, font_, room, false);
        }
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        dc.FillRect(rect, highlighted_ ? style.colorSelectionMark : style.colorBg2);
        dc.FillRect(RECT{rect.left, rect.bottom - 1, rect.right, rect.bottom}, style.colorLineSeparator);
        const COLORREF ink = highlighted_ ? style.colorTextSel : style.colorText;
        const int top = rect.top + (rect.Height() - name_.Height() - address_.Height()) / 2;
        name_.Draw(dc, rect.left + Scale(kIndent), top, ink);
        address_.Draw(dc, rect.left + Scale(kIndent), top + name_.Height(), ink);
        plus_.Draw(dc, rect.right - Scale(kIndent) - plus_.Width(), rect.top + (rect.Height() - plus_.Height()) / 2,
                   ink);
    }
    int Height() const override { return height_; }
    void Click(HWND list, int, int) override { PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0); }

private:
    UINT command_;
    AppointmentDraft::Person person_;
    const Font& font_;
    const Font& bold_;
    int width_;
    int height_;
    TextLayout plus_;
    TextLayout name_;
    TextLayout address_;
};

// Names in an order a reader expects: case does not matter.
std::u16string SortKey(const AppointmentDraft::Person& person) {
    std::u16string key = person.name.empty() ? person.address : person.name;
    for (char16_t& c : key)
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    return key;
}
} // namespace

AttendeeDialog::AttendeeDialog(const std::u16string& people)
    : SmallFormPage(u""), people_(AppointmentDraft::SplitPeople(people)), contacts_(ContactAddresses()) {
    UpdateChoices();
}

std::vector<AppointmentDraft::Person> AttendeeDialog::ContactAddresses() {
    std::vector<AppointmentDraft::Person> found;
    PimSource* source = PimStore::Instance().Source();
    std::unique_ptr<PimFolder> folder = source ? source->GetDefaultFolder(kFolderContacts) : nullptr;
    std::unique_ptr<PimItems> items = folder ? folder->GetItems() : nullptr;
    if (!items) return found;
    PimRecord record;
    const int count = items->GetCount();
    for (int i = 0; i < count; ++i) {
        if (!items->Item(i, record)) continue;
        for (const std::u16string& address : record.emails) {
            AppointmentDraft::Person person;
            // What a card holds is checked as a typed address is.
            if (!ParseEntry(address, person)) continue;
            person.name = record.subject.substr(0, kMaxEntry);
            // The separators of the people text cannot stand in a name.
            for (char16_t& c : person.name)
                if (c == u'|' || c == u'~') c = u' ';
            found.push_back(std::move(person));
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return SortKey(a) < SortKey(b); });
    return found;
}

void AttendeeDialog::UpdateChoices() {
    choices_.clear();
    const std::u16string typed = field_.GetHwnd() ? field_.GetText() : std::u16string();
    TextMatcher matcher(typed.substr(0, kMaxEntry));
    for (const AppointmentDraft::Person& contact : contacts_) {
        if (choices_.size() >= kMaxContactRows) break;
        const bool invited = std::any_of(people_.begin(), people_.end(), [&](const AppointmentDraft::Person& p) {
            return p.address == contact.address;
        });
        if (invited) continue;
        if (!matcher.IsEmpty() && !matcher.Contains(contact.name) && !matcher.Contains(contact.address)) continue;
        choices_.push_back(contact);
    }
}

void AttendeeDialog::AddContact(int index) {
    if (index < 0 || index >= static_cast<int>(choices_.size()) || people_.size() >= kMaxPeople) return;
    people_.push_back(choices_[static_cast<size_t>(index)]);
    // The typed text only looked for this contact.
    if (field_.GetHwnd()) field_.SetText(u"");
    Fill();
}
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
    UpdateChoices();
    if (!choices_.empty()) {
        list_.AddItem(std::make_unique<SectionRow>(Lang("editor.FromContacts"), *bold_, client.Width()));
        const int lines = TextLayout(u"Ag", *bold_, client.Width(), false).Height() +
                          TextLayout(u"Ag", *font_, client.Width(), false).Height();
        const int height = std::max(Scale(kRowHeight), lines + Scale(kIndent));
        for (size_t i = 0; i < choices_.size(); ++i)
            list_.AddItem(std::make_unique<ContactRow>(kCmdContactBase + static_cast<UINT>(i), choices_[i], *font_,
                                                       *bold_, client.Width(), height));
    }
    list_.Relayout();
    list_.RefreshViewport();
}

void AttendeeDialog::OnControl(HWND control, UINT code) {
    if (control == add_.GetHwnd() || (control == field_.GetHwnd() && code == EN_ENTER)) {
        if (Add(field_.GetText())) {
            field_.SetText(u"");
            Fill();
        }
    } else if (control == field_.GetHwnd() && code == EN_CHANGE && !contacts_.empty()) {
        // The contacts narrow to what is typed.
        Fill();
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
    else if (id >= kCmdContactBase && id < kCmdContactBase + choices_.size())
        AddContact(static_cast<int>(id - kCmdContactBase));
}

void AttendeeDialog::OnDialogReady() {
    SmallFormPage::OnDialogReady();
    if (OpenObserver()) OpenObserver()(*this);
}

} // namespace mirodate
