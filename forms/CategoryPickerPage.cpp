#include "forms/CategoryPickerPage.h"

#include "data/Categories.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kFieldId = 202;
constexpr int kRowHeight = 28;
constexpr int kSwatch = 12;
constexpr int kAddWidth = 30;

std::function<void(CategoryPickerPage&)>& OpenObserver() {
    static std::function<void(CategoryPickerPage&)> observer;
    return observer;
}

std::u16string Trim(const std::u16string& text) {
    const auto first = text.find_first_not_of(u" \t");
    if (first == std::u16string::npos) return {};
    return text.substr(first, text.find_last_not_of(u" \t") - first + 1);
}

std::vector<std::u16string> SplitNames(const std::u16string& text) {
    std::vector<std::u16string> names;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(u',', start);
        if (end == std::u16string::npos) end = text.size();
        const std::u16string name = Trim(text.substr(start, end - start));
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
        start = end + 1;
    }
    return names;
}

// A category: its colour, its name and a check mark when chosen.
class CategoryRow : public TouchListItem {
public:
    CategoryRow(UINT command, const std::u16string& name, bool chosen, const Font& font, int width)
        : command_(command), chosen_(chosen) {
        COLORREF color = 0;
        hasColor_ = Categories::GetCategoryColor(name, color);
        color_ = color;
        text_ = TextLayout((chosen ? u"\u2611 " : u"\u2610 ") + name, font,
                           std::max(1, width - Scale(3 * kSwatch)), false);
    }
    void Draw(Dc& dc, const RECT& rect) override {
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        dc.FillRect(rect, highlighted_ ? style.colorSelectionMark : style.colorBg);
        dc.FillRect(RECT{rect.left, rect.bottom - 1, rect.right, rect.bottom}, style.colorLineSeparator);
        const COLORREF ink = highlighted_ ? style.colorTextSel : style.colorText;
        const int swatchTop = rect.top + (rect.Height() - Scale(kSwatch)) / 2;
        const RECT box{rect.left + Scale(4), swatchTop, rect.left + Scale(4 + kSwatch), swatchTop + Scale(kSwatch)};
        if (hasColor_) dc.FillRect(box, color_);
        dc.FrameRect(box, ink);
        text_.Draw(dc, box.right + Scale(6), rect.top + (rect.Height() - text_.Height()) / 2, ink);
    }
    int Height() const override { return Scale(kRowHeight); }
    void Click(HWND list, int, int) override { PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0); }

private:
    UINT command_;
    bool chosen_;
    bool hasColor_ = false;
    COLORREF color_ = 0;
    TextLayout text_;
};
} // namespace

CategoryPickerPage::CategoryPickerPage(const std::u16string& current)
    : SmallFormPage(u"") {
    std::vector<std::u16string> known;
    Categories::LoadCategories(known);
    if (PimSource* source = PimStore::Instance().Source())
        for (const std::u16string& name : source->GetCategoryNames())
            for (const std::u16string& part : SplitNames(name)) known.push_back(part);
    std::sort(known.begin(), known.end());
    known.erase(std::unique(known.begin(), known.end()), known.end());
    names_ = known;
    chosen_.assign(names_.size(), false);
    for (const std::u16string& name : SplitNames(current)) Toggle(name);
}

CategoryPickerPage::~CategoryPickerPage() = default;

void CategoryPickerPage::SetOpenObserver(std::function<void(CategoryPickerPage&)> observer) {
    OpenObserver() = std::move(observer);
}

std::optional<std::u16string> CategoryPickerPage::Pick(HWND owner, const std::u16string& current) {
    CategoryPickerPage page(current);
    if (page.DoModal(owner) != IDOK) return std::nullopt;
    return page.Value();
}

bool CategoryPickerPage::IsChosen(const std::u16string& name) const {
    const auto found = std::find(names_.begin(), names_.end(), name);
    return found != names_.end() && chosen_[static_cast<size_t>(found - names_.begin())];
}

void CategoryPickerPage::Toggle(const std::u16string& raw) {
    std::u16string name = Trim(raw).substr(0, kMaxName);
    // A comma would split the name in the item's category list.
    std::replace(name.begin(), name.end(), u',', u' ');
    if (name.empty()) return;
    const auto found = std::find(names_.begin(), names_.end(), name);
    if (found == names_.end()) {
        names_.push_back(name);
        chosen_.push_back(true);
    } else {
        const size_t index = static_cast<size_t>(found - names_.begin());
        chosen_[index] = !chosen_[index];
    }
    Fill();
}

std::u16string CategoryPickerPage::Value() const {
    std::u16string text;
    for (size_t i = 0; i < names_.size(); ++i)
        if (chosen_[i]) text += (text.empty() ? u"" : u",") + names_[i];
    return text;
}

void CategoryPickerPage::CreateControls() {
    title_ = Lang("addmodify.Categories");
    SetWindowText(window, title_);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().addModifyForm.colorBg;
    list_.SetColors(colors);
    field_.Create(window, kFieldId, 0, 0, 1, 1, false);
    field_.SetFont(logFont_);
    field_.SetLimit(kMaxName);
    add_.Create(window, u"+", 0, 0, 1, 1);
    Style(add_);
}

void CategoryPickerPage::LayoutControls(const RECT& area) {
    const int margin = Scale(kMargin);
    const int field = Scale(kFieldHeight);
    const int add = Scale(kAddWidth);
    const int fieldTop = area.bottom - field;
    MoveWindow(list_.GetHwnd(), 0, area.top, area.Width(), std::max(1, fieldTop - margin - area.top), true);
    MoveWindow(field_.GetHwnd(), margin, fieldTop, std::max(1, area.Width() - 3 * margin - add), field, true);
    MoveWindow(add_.GetHwnd(), area.Width() - margin - add, fieldTop, add, field, true);
    Fill();
}

void CategoryPickerPage::Fill() {
    if (!list_.GetHwnd() || !font_) return;
    const int position = list_.Scroller().Position();
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    for (size_t i = 0; i < names_.size(); ++i)
        list_.AddItem(std::make_unique<CategoryRow>(kCmdRowBase + static_cast<UINT>(i), names_[i], chosen_[i], *font_,
                                                    client.Width()));
    list_.Relayout();
    list_.Scroller().SetPosition(position);
    list_.RefreshViewport();
}

void CategoryPickerPage::AddTyped() {
    const std::u16string name = Trim(field_.GetText());
    if (name.empty()) return;
    if (!IsChosen(name)) Toggle(name);
    field_.SetText(u"");
}

void CategoryPickerPage::OnControl(HWND control, UINT code) {
    if (control == add_.GetHwnd() || (control == field_.GetHwnd() && code == EN_ENTER)) AddTyped();
}

bool CategoryPickerPage::OnAccept() {
    // A name typed and not yet added counts as chosen.
    AddTyped();
    return true;
}

void CategoryPickerPage::OnDeferredCommand(UINT id) {
    if (id >= kCmdRowBase && id < kCmdRowBase + names_.size()) Toggle(names_[id - kCmdRowBase]);
}

void CategoryPickerPage::OnDialogReady() {
    SmallFormPage::OnDialogReady();
    if (OpenObserver()) OpenObserver()(*this);
}

} // namespace mirodate
