#include "forms/AttendeeDialog.h"

#include "data/PimFolder.h"
#include "data/PimStore.h"
#include "data/TextMatcher.h"
#include "forms/TwoLineRow.h"
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
constexpr int kIndent = 6;
constexpr int kSectionHeight = 22;

std::function<void(AttendeeDialog&)>& OpenObserver() {
    static std::function<void(AttendeeDialog&)> observer;
    return observer;
}

std::u16string Trim(const std::u16string& text) {
    const auto first = text.find_first_not_of(u" \t\"");
    if (first == std::u16string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(u" \t\"") - first + 1);
}

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
    ContactRow(UINT command, const AppointmentDraft::Person& person, const Font& font, const Font& bold,
               int width, int height)
        : command_(command), person_(person), font_(font), bold_(bold), width_(width), height_(height) {}
    void Draw(Dc& dc, const RECT& rect) override {
        if (plus_.IsEmpty()) {
            plus_ = TextLayout(u"+", bold_, width_, false);
            const int room = std::max(1, width_ - Scale(3 * kIndent) - plus_.Width());
            name_ = TextLayout(person_.name.empty() ? person_.address : person_.name, bold_, room, false);
            address_ =
                TextLayout(person_.name.empty() ? std::u16string() : person_.address, font_, room, false);
        }
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        dc.FillRect(rect, highlighted_ ? style.colorSelectionMark : style.colorBg2);
        dc.FillRect(RECT{rect.left, rect.bottom - 1, rect.right, rect.bottom}, style.colorLineSeparator);
        const COLORREF ink = highlighted_ ? style.colorTextSel : style.colorText;
        const int top = rect.top + (rect.Height() - name_.Height() - address_.Height()) / 2;
        name_.Draw(dc, rect.left + Scale(kIndent), top, ink);
        address_.Draw(dc, rect.left + Scale(kIndent), top + name_.Height(), ink);
        plus_.Draw(dc, rect.right - Scale(kIndent) - plus_.Width(),
                   rect.top + (rect.Height() - plus_.Height()) / 2, ink);
    }
    int Height() const override { return height_; }
    void Click(HWND list, int, int) override {
        PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0);
    }

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
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c - u'A' + u'a');
    return key;
}
} // namespace

AttendeeDialog::AttendeeDialog(const std::u16string& people)
    : ListEntryPage("addmodify.Attendees", kFieldId, kMaxEntry, FieldPlace::AboveList),
      people_(AppointmentDraft::SplitPeople(people)), contacts_(ContactAddresses()) {
    UpdateChoices();
}

std::vector<AppointmentDraft::Person> AttendeeDialog::ContactAddresses() {
    std::vector<AppointmentDraft::Person> found;
    PimSource* source = PimStore::Instance().Source();
    std::unique_ptr<PimFolder> folder = source ? source->GetDefaultFolder(kFolderContacts) : nullptr;
    std::unique_ptr<PimItems> items = folder ? folder->GetItems() : nullptr;
    if (!items)
        return found;
    PimRecord record;
    const int count = items->GetCount();
    for (int i = 0; i < count; ++i) {
        if (!items->Item(i, record))
            continue;
        for (const std::u16string& address : record.emails) {
            AppointmentDraft::Person person;
            // What a card holds is checked as a typed address is.
            if (!ParseEntry(address, person))
                continue;
            person.name = record.subject.substr(0, kMaxEntry);
            // The separators of the people text cannot stand in a name.
            for (char16_t& c : person.name)
                if (c == u'|' || c == u'~')
                    c = u' ';
            found.push_back(std::move(person));
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return SortKey(a) < SortKey(b); });
    return found;
}

void AttendeeDialog::UpdateChoices() {
    choices_.clear();
    const std::u16string typed = Field().GetHwnd() ? Field().GetText() : std::u16string();
    TextMatcher matcher(typed.substr(0, kMaxEntry));
    for (const AppointmentDraft::Person& contact : contacts_) {
        if (choices_.size() >= kMaxContactRows)
            break;
        const bool invited =
            std::any_of(people_.begin(), people_.end(),
                        [&](const AppointmentDraft::Person& p) { return p.address == contact.address; });
        if (invited)
            continue;
        if (!matcher.IsEmpty() && !matcher.Contains(contact.name) && !matcher.Contains(contact.address))
            continue;
        choices_.push_back(contact);
    }
}

void AttendeeDialog::AddContact(int index) {
    if (index < 0 || index >= static_cast<int>(choices_.size()) || people_.size() >= kMaxPeople)
        return;
    people_.push_back(choices_[static_cast<size_t>(index)]);
    // The typed text only looked for this contact.
    if (Field().GetHwnd())
        Field().SetText(u"");
    Fill();
}
AttendeeDialog::~AttendeeDialog() = default;

void AttendeeDialog::SetOpenObserver(std::function<void(AttendeeDialog&)> observer) {
    OpenObserver() = std::move(observer);
}

std::optional<std::u16string> AttendeeDialog::Edit(HWND owner, const std::u16string& people) {
    AttendeeDialog page(people);
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
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
    if (address.size() >= 7 &&
        (address.compare(0, 7, u"mailto:") == 0 || address.compare(0, 7, u"MAILTO:") == 0))
        address.erase(0, 7);
    const auto at = address.find(u'@');
    // One "@" with something on both sides, and no blank inside.
    if (at == std::u16string::npos || at == 0 || at + 1 >= address.size() ||
        address.find(u'@', at + 1) != std::u16string::npos ||
        address.find_first_of(u" \t,;") != std::u16string::npos)
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
    const bool known = std::any_of(people_.begin(), people_.end(), [&](const AppointmentDraft::Person& p) {
        return p.address == person.address;
    });
    if (!known && people_.size() < kMaxPeople)
        people_.push_back(person);
    Fill();
    return true;
}

void AttendeeDialog::Remove(int index) {
    if (index < 0 || index >= static_cast<int>(people_.size()))
        return;
    const AppointmentDraft::Person& person = people_[static_cast<size_t>(index)];
    std::u16string question = Lang("editor.RemoveAttendee");
    question += u"\n" + (person.name.empty() ? person.address : person.name + u" <" + person.address + u">");
    if (!MessagePage::YesNo(window, question))
        return;
    people_.erase(people_.begin() + index);
    Fill();
}

void AttendeeDialog::Fill() {
    FillList(
        [this](int width) {
            for (size_t i = 0; i < people_.size(); ++i) {
                const AppointmentDraft::Person& person = people_[i];
                // The name in bold over the address; a bare address stands alone.
                List().AddItem(std::make_unique<TwoLineRow>(
                    kCmdRowBase + static_cast<UINT>(i), person.name.empty() ? person.address : person.name,
                    person.name.empty() ? std::u16string() : person.address, *font_, *bold_, width));
            }
            UpdateChoices();
            if (choices_.empty())
                return;
            List().AddItem(std::make_unique<SectionRow>(Lang("editor.FromContacts"), *bold_, width));
            const int lines = TextLayout(u"Ag", *bold_, width, false).Height() +
                              TextLayout(u"Ag", *font_, width, false).Height();
            const int height = std::max(Scale(kRowHeight), lines + Scale(kIndent));
            for (size_t i = 0; i < choices_.size(); ++i)
                List().AddItem(std::make_unique<ContactRow>(kCmdContactBase + static_cast<UINT>(i),
                                                            choices_[i], *font_, *bold_, width, height));
        },
        false);
}

void AttendeeDialog::OnControl(HWND control, UINT code) {
    if (IsAddCommand(control, code)) {
        if (AddTyped())
            Fill();
    } else if (control == Field().GetHwnd() && code == EN_CHANGE && !contacts_.empty()) {
        // The contacts narrow to what is typed.
        Fill();
    }
}

void AttendeeDialog::OnDeferredCommand(UINT id) {
    if (id >= kCmdRowBase && id < kCmdRowBase + people_.size())
        Remove(static_cast<int>(id - kCmdRowBase));
    else if (id >= kCmdContactBase && id < kCmdContactBase + choices_.size())
        AddContact(static_cast<int>(id - kCmdContactBase));
}

void AttendeeDialog::OnDialogReady() {
    ListEntryPage::OnDialogReady();
    if (OpenObserver())
        OpenObserver()(*this);
}

} // namespace mirodate
