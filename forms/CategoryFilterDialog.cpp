#include "forms/CategoryFilterDialog.h"

#include "data/Categories.h"
#include "data/FilterList.h"
#include "data/PimStore.h"
#include "forms/FormPainter.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kRowHeight = 26;
constexpr int kButtonHeight = 26;
constexpr int kTitleHeight = 24;
constexpr int kSwatch = 10;
constexpr int kTextHeight = 11;
constexpr int kMargin = 4;

// One row of the list: a category with its state, a switch, or "Show all".
class FilterRow : public TouchListItem {
public:
    FilterRow(CategoryFilterDialog& dialog, int index, std::u16string label, std::u16string value,
              std::optional<COLORREF> swatch, const Font& font, int width)
        : dialog_(dialog), index_(index), swatch_(swatch) {
        const ListViewStyle& style = SkinStyles::Current().listViews;
        text_ = style.colorText;
        background_ = index % 2 ? style.colorBg2 : style.colorBg;
        selection_ = style.colorSelectionMark;
        // The value keeps its natural width (at most a third); the label takes the rest.
        value_ = TextLayout(value, font, 0, false);
        if (value_.Width() > width / 3)
            value_ = TextLayout(value, font, width / 3, false);
        label_ = TextLayout(label, font, std::max(1, width - value_.Width() - Scale(kSwatch + 5 * kMargin)),
                            false);
    }
    void Draw(Dc& dc, const RECT& rect) override {
        dc.FillRect(rect, highlighted_ ? selection_ : background_);
        const COLORREF ink = highlighted_ ? RGB(255, 255, 255) : text_;
        int left = rect.left + Scale(kMargin);
        if (swatch_) {
            const int top = rect.top + (rect.Height() - Scale(kSwatch)) / 2;
            dc.FillSolidRect(left, top, Scale(kSwatch), Scale(kSwatch), *swatch_);
            dc.FrameRect(RECT{left, top, left + Scale(kSwatch), top + Scale(kSwatch)}, ink);
        }
        left += Scale(kSwatch + kMargin);
        label_.Draw(dc, left, rect.top + (rect.Height() - label_.Height()) / 2, ink);
        value_.Draw(dc, rect.right - Scale(kMargin) - value_.Width(),
                    rect.top + (rect.Height() - value_.Height()) / 2, ink);
    }
    int Height() const override { return Scale(kRowHeight); }
    void Click(HWND, int, int) override { dialog_.ToggleRow(index_); }

private:
    CategoryFilterDialog& dialog_;
    int index_;
    std::optional<COLORREF> swatch_;
    COLORREF text_, background_, selection_;
    TextLayout label_;
    TextLayout value_;
};

std::u16string StateText(CategoryFilterDialog::State state) {
    switch (state) {
    case CategoryFilterDialog::State::Shown:
        return Lang("filter.Show");
    case CategoryFilterDialog::State::Hidden:
        return Lang("filter.Hide");
    default:
        return u"\u2013";
    }
}
std::u16string SwitchText(bool on) {
    return on ? u"\u2611" : u"\u2610";
}
} // namespace

CategoryFilterDialog::CategoryFilterDialog() {
    PimStore& store = PimStore::Instance();
    config_ = store.GetFilters();
    std::vector<std::u16string> names;
    Categories::LoadCategories(names);
    const FilterList shown(config_.categoryFilter);
    const FilterList hidden(config_.excludeFilter);
    auto listed = [](const FilterList& list, const std::u16string& name) {
        return std::find(list.Entries().begin(), list.Entries().end(), name) != list.Entries().end();
    };
    for (const std::u16string& name : names) {
        Entry entry;
        entry.name = name;
        entry.hasColor = Categories::GetCategoryColor(name, entry.color);
        if (listed(hidden, name))
            entry.state = State::Hidden;
        else if (listed(shown, name))
            entry.state = State::Shown;
        entries_.push_back(std::move(entry));
    }
}

CategoryFilterDialog::~CategoryFilterDialog() = default;

std::u16string CategoryFilterDialog::JoinNames(const std::vector<Entry>& entries, State state) {
    std::u16string text;
    for (const Entry& entry : entries) {
        if (entry.state != state)
            continue;
        if (!text.empty())
            text += u',';
        text += entry.name;
    }
    return text;
}

BOOL CategoryFilterDialog::OnInitDialog() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    SetWindowText(window, Lang("filter.Title"));
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    const int top = Scale(kTitleHeight);
    const int buttons = Scale(kButtonHeight) + 2 * Scale(kMargin);
    list_.Create(window, 0, top, width, std::max(1, height - top - buttons), false, false);
    list_.SetHeaderHeight(0);
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    const int buttonWidth = (width - 3 * Scale(kMargin)) / 2;
    const int buttonTop = height - Scale(kMargin) - Scale(kButtonHeight);
    ok_.Create(window, Lang("OK"), Scale(kMargin), buttonTop, buttonWidth, Scale(kButtonHeight), IDOK);
    cancel_.Create(window, Lang("Cancel"), 2 * Scale(kMargin) + buttonWidth, buttonTop, buttonWidth,
                   Scale(kButtonHeight), IDCANCEL);
    for (ButtonWnd* button : {&ok_, &cancel_}) {
        button->SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText,
                          form.buttons.colorButtonBgPressed, form.buttons.colorButtonTextPressed);
        button->SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
    }
    Fill();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void CategoryFilterDialog::Fill() {
    if (!list_.GetHwnd())
        return;
    const int position = list_.Scroller().Position();
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    const int width = client.Width();
    int index = 0;
    auto add = [&](std::u16string label, std::u16string value, std::optional<COLORREF> swatch) {
        list_.AddItem(std::make_unique<FilterRow>(*this, index++, std::move(label), std::move(value), swatch,
                                                  *font_, width));
    };
    add(Lang("config.HideCompleteTasks"), SwitchText(config_.hideCompleteTasks), std::nullopt);
    add(Lang("config.ShowContactsBirthdays"), SwitchText(config_.showBirthdays),
        Categories::GetBirthdayColor());
    add(Lang("config.ShowContactsAnniversaries"), SwitchText(config_.showAnniversaries),
        Categories::GetAnniversaryColor());
    if (entries_.empty()) {
        add(Lang("filter.NoCategories"), u"", std::nullopt);
    } else {
        add(Lang("filter.ShowAll"), u"", std::nullopt);
        for (const Entry& entry : entries_)
            add(entry.name, StateText(entry.state),
                entry.hasColor ? std::optional<COLORREF>(entry.color) : std::nullopt);
    }
    list_.Relayout();
    list_.Scroller().SetPosition(position);
    list_.RefreshViewport();
}

void CategoryFilterDialog::ToggleRow(int index) {
    switch (index) {
    case 0:
        config_.hideCompleteTasks = !config_.hideCompleteTasks;
        break;
    case 1:
        config_.showBirthdays = !config_.showBirthdays;
        break;
    case 2:
        config_.showAnniversaries = !config_.showAnniversaries;
        break;
    case 3:
        for (Entry& entry : entries_)
            entry.state = State::Neutral;
        break;
    default: {
        const size_t at = static_cast<size_t>(index - SwitchRowCount() - 1);
        if (at >= entries_.size())
            return;
        State& state = entries_[at].state;
        state = state == State::Neutral ? State::Shown
                : state == State::Shown ? State::Hidden
                                        : State::Neutral;
        break;
    }
    }
    // Rebuilt after the list has let go of the tap.
    PostMessage(window, WM_COMMAND, 0, 0);
}

void CategoryFilterDialog::Apply() {
    // The switches are settings of their own; the store keeps the category texts.
    Settings::SetBool("HideCompleteTasks", config_.hideCompleteTasks);
    Settings::SetBool("ShowContactsBirthdays", config_.showBirthdays);
    Settings::SetBool("ShowContactsAnniversaries", config_.showAnniversaries);
    PimStore::Instance().SetFilters(JoinNames(entries_, State::Hidden), JoinNames(entries_, State::Shown),
                                    config_.hideCompleteTasks, config_.showBirthdays,
                                    config_.showAnniversaries);
    EndDialog(window, IDOK);
}

void CategoryFilterDialog::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), font_.get(), Lang("filter.Title"));
}

void CategoryFilterDialog::OnCommand(UINT, UINT, HWND control) {
    if (control == ok_.GetHwnd())
        Apply();
    else if (control == cancel_.GetHwnd())
        EndDialog(window, IDCANCEL);
    else if (!control)
        Fill();
}

void CategoryFilterDialog::OnKeyDown(UINT key, UINT) {
    if (key == VK_RETURN)
        Apply();
    else if (key == VK_ESCAPE)
        EndDialog(window, IDCANCEL);
}

} // namespace mirodate
