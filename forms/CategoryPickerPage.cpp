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

std::function<void(CategoryPickerPage&)>& OpenObserver() {
    static std::function<void(CategoryPickerPage&)> observer;
    return observer;
}

std::u16string Trim(const std::u16string& text) {
    const auto first = text.find_first_not_of(u" \t");
    if (first == std::u16string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(u" \t") - first + 1);
}

std::vector<std::u16string> SplitNames(const std::u16string& text) {
    std::vector<std::u16string> names;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(u',', start);
        if (end == std::u16string::npos)
            end = text.size();
        const std::u16string name = Trim(text.substr(start, end - start));
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
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
        const RECT box{rect.left + Scale(4), swatchTop, rect.left + Scale(4 + kSwatch),
                       swatchTop + Scale(kSwatch)};
        if (hasColor_)
            dc.FillRect(box, color_);
        dc.FrameRect(box, ink);
        text_.Draw(dc, box.right + Scale(6), rect.top + (rect.Height() - text_.Height()) / 2, ink);
    }
    int Height() const override { return Scale(kRowHeight); }
    void Click(HWND list, int, int) override {
        PostMessage(GetParent(list), WM_DEFERRED_COMMAND, command_, 0);
    }

private:
    UINT command_;
    bool chosen_;
    bool hasColor_ = false;
    COLORREF color_ = 0;
    TextLayout text_;
};
} // namespace

CategoryPickerPage::CategoryPickerPage(const std::u16string& current)
    : ListEntryPage("addmodify.Categories", kFieldId, kMaxName, FieldPlace::BelowList) {
    std::vector<std::u16string> known;
    Categories::LoadCategories(known);
    if (PimSource* source = PimStore::Instance().Source())
        for (const std::u16string& name : source->GetCategoryNames())
            for (const std::u16string& part : SplitNames(name))
                known.push_back(part);
    std::sort(known.begin(), known.end());
    known.erase(std::unique(known.begin(), known.end()), known.end());
    names_ = known;
    chosen_.assign(names_.size(), false);
    for (const std::u16string& name : SplitNames(current))
        Toggle(name);
}

CategoryPickerPage::~CategoryPickerPage() = default;

void CategoryPickerPage::SetOpenObserver(std::function<void(CategoryPickerPage&)> observer) {
    OpenObserver() = std::move(observer);
}

std::optional<std::u16string> CategoryPickerPage::Pick(HWND owner, const std::u16string& current) {
    CategoryPickerPage page(current);
    if (page.DoModal(owner) != IDOK)
        return std::nullopt;
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
    if (name.empty())
        return;
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
        if (chosen_[i])
            text += (text.empty() ? u"" : u",") + names_[i];
    return text;
}

void CategoryPickerPage::Fill() {
    FillList(
        [this](int width) {
            for (size_t i = 0; i < names_.size(); ++i)
                List().AddItem(std::make_unique<CategoryRow>(kCmdRowBase + static_cast<UINT>(i), names_[i],
                                                             chosen_[i], *font_, width));
        },
        true);
}

bool CategoryPickerPage::Add(const std::u16string& typed) {
    const std::u16string name = Trim(typed);
    if (name.empty())
        return false;
    if (!IsChosen(name))
        Toggle(name);
    return true;
}

void CategoryPickerPage::OnDeferredCommand(UINT id) {
    if (id >= kCmdRowBase && id < kCmdRowBase + names_.size())
        Toggle(names_[id - kCmdRowBase]);
}

void CategoryPickerPage::OnDialogReady() {
    ListEntryPage::OnDialogReady();
    if (OpenObserver())
        OpenObserver()(*this);
}

} // namespace mirodate
