#include "forms/ConfigDialog.h"

#include "data/Categories.h"
#include "data/PimStore.h"
#include "data/TemplateLists.h"
#include "forms/ColorPickerPage.h"
#include "forms/FormPainter.h"
#include "forms/TextListPage.h"
#include "lang/LanguageTable.h"
#include "platform/DefaultApps.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinArchive.h"
#include "skin/SkinLoader.h"
#include "skin/SkinStyles.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/ScreenBars.h"
#include "ui/Shell.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 24;
constexpr int kTabHeight = 20;
constexpr int kRowHeight = 28;
constexpr int kButtonHeight = 26;
constexpr int kSwatch = 12;
constexpr int kTextHeight = 11;
constexpr int kMargin = 4;
// Keeps values clear of the list's scroll strip at the right edge.
constexpr int kRightMargin = 9;

using Kind = ConfigEntry::Kind;

// One setting: its label on the left, its value (text, switch or swatch) on the right.
class ConfigRow : public TouchListItem {
public:
    ConfigRow(int index, const std::u16string& label, const std::u16string& value,
              std::optional<COLORREF> swatch, const Font& font, int width)
        : index_(index), swatch_(swatch) {
        const ListViewStyle& style = SkinStyles::Current().listViews;
        text_ = style.colorText;
        background_ = index % 2 ? style.colorBg2 : style.colorBg;
        selection_ = style.colorSelectionMark;
        const int room = width - Scale(2 * kMargin + kRightMargin);
        // The value keeps its natural width up to half the row (wrapping
        // beyond); the label wraps in the rest.
        value_ = TextLayout(value, font, 0, false);
        if (value_.Width() > room / 2)
            value_ = TextLayout(value, font, room / 2, true);
        const int valueWidth = swatch ? Scale(kSwatch * 2) : value_.Width();
        label_ = TextLayout(label, font, std::max(1, room - valueWidth - Scale(kMargin)), true);
        height_ =
            std::max(Scale(kRowHeight), std::max(label_.Height(), value_.Height()) + Scale(2 * kMargin));
    }
    void Draw(Dc& dc, const RECT& rect) override {
        dc.FillRect(rect, highlighted_ ? selection_ : background_);
        const COLORREF ink = highlighted_ ? RGB(255, 255, 255) : text_;
        label_.Draw(dc, rect.left + Scale(kMargin), rect.top + (rect.Height() - label_.Height()) / 2, ink);
        if (swatch_) {
            const RECT box{rect.right - Scale(kRightMargin + 2 * kSwatch),
                           rect.top + (rect.Height() - Scale(kSwatch)) / 2, rect.right - Scale(kRightMargin),
                           rect.top + (rect.Height() + Scale(kSwatch)) / 2};
            dc.FillRect(box, *swatch_);
            dc.FrameRect(box, ink);
            return;
        }
        value_.Draw(dc, rect.right - Scale(kRightMargin) - value_.Width(),
                    rect.top + (rect.Height() - value_.Height()) / 2, ink);
    }
    int Height() const override { return height_; }
    void Click(HWND list, int, int) override {
        // Acted on once the list has let go of the pointer: the row is rebuilt.
        PostMessage(GetParent(list), WM_DEFERRED_COMMAND, ConfigDialog::kCmdOptionBase - 1 - index_, 0);
    }
    void Highlight(int, int) override {}

private:
    int index_;
    std::optional<COLORREF> swatch_;
    COLORREF text_, background_, selection_;
    TextLayout label_;
    TextLayout value_;
    int height_ = 0;
};

std::u16string SwitchText(bool on) {
    return on ? u"\u2611" : u"\u2610";
}

// Whether a skin archive can be used: it opens and has its style file.
bool SkinUsable(const std::string& path) {
    SkinArchive archive;
    if (archive.Open(path) != SkinArchive::kOk)
        return false;
    std::string text;
    return archive.ReadItem("skin.ini", text) == SkinArchive::kOk && !text.empty();
}

// Row taps arrive as commands below the option commands, one per row.
constexpr UINT kRowCommandLimit = 0x200;
} // namespace

ConfigDialog::ConfigDialog(ChangeHandler onChange, ConfigFolders folders)
    : onChange_(std::move(onChange)), folders_(std::move(folders)), tabs_(ConfigEntries::Build(folders_)) {}

ConfigDialog::~ConfigDialog() = default;

const ConfigEntry& ConfigDialog::Entry(int index) const {
    return tabs_[static_cast<size_t>(tab_)].entries.at(static_cast<size_t>(index));
}

std::u16string ConfigDialog::Label(const ConfigEntry& entry) const {
    return entry.label.empty() ? Lang(entry.labelKey) : entry.label;
}

int ConfigDialog::FindRow(const std::string& key) const {
    const auto& entries = tabs_[static_cast<size_t>(tab_)].entries;
    for (size_t i = 0; i < entries.size(); ++i)
        if (entries[i].labelKey == key || entries[i].setting == key)
            return static_cast<int>(i);
    return -1;
}

BOOL ConfigDialog::OnInitDialog() {
    SetWindowText(window, Lang("config.Title"));
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    tabBar_.Create(window, RECT{0, 0, 1, 1});
    for (const ConfigTab& tab : tabs_)
        tabBar_.AddTab(Lang(tab.labelKey));
    tabBar_.SetSelectedTab(tab_);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().listViews.colorBg;
    list_.SetColors(colors);
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    done_.Create(window, Lang("OK"), 0, 0, 1, 1, IDOK);
    done_.SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText,
                    form.buttons.colorButtonBgPressed, form.buttons.colorButtonTextPressed);
    done_.SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
    Layout();
    SetFocus(window);
    return DialogWnd::OnInitDialog();
}

void ConfigDialog::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int tabTop = Scale(kTitleHeight);
    MoveWindow(tabBar_.GetHwnd(), 0, tabTop, width, Scale(kTabHeight), true);
    const int listTop = tabTop + Scale(kTabHeight);
    const int buttons = Scale(kButtonHeight) + 2 * Scale(kMargin);
    MoveWindow(list_.GetHwnd(), 0, listTop, width, std::max(1, height - listTop - buttons), true);
    MoveWindow(done_.GetHwnd(), Scale(kMargin), height - Scale(kMargin) - Scale(kButtonHeight),
               width - 2 * Scale(kMargin), Scale(kButtonHeight), true);
    // The rows are laid out for the list's width.
    Fill();
    InvalidateRect(window, nullptr, false);
}

void ConfigDialog::OnScreenReset() {
    Layout();
}

void ConfigDialog::Fill() {
    if (!list_.GetHwnd())
        return;
    const int position = list_.Scroller().Position();
    list_.ClearItems();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    const auto& entries = tabs_[static_cast<size_t>(tab_)].entries;
    for (size_t i = 0; i < entries.size(); ++i) {
        const ConfigEntry& entry = entries[i];
        std::u16string value;
        std::optional<COLORREF> swatch;
        switch (entry.kind) {
        case Kind::Switch:
        case Kind::TaskView:
            value = SwitchText(ConfigEntries::SwitchValue(entry));
            break;
        case Kind::ReplaceCalendar:
            value = SwitchText(DefaultApps::IsCalendarReplaced());
            break;
        case Kind::ReplaceTasks:
            value = SwitchText(DefaultApps::IsTasksReplaced());
            break;
        case Kind::Choice:
        case Kind::TextList:
            value = ConfigEntries::ValueText(entry);
            break;
        case Kind::Colour:
            swatch = ConfigEntries::ColourValue(entry);
            break;
        }
        list_.AddItem(std::make_unique<ConfigRow>(static_cast<int>(i), Label(entry), value, swatch, *font_,
                                                  client.Width()));
    }
    list_.Relayout();
    list_.Scroller().SetPosition(position);
    list_.RefreshViewport();
}

void ConfigDialog::SelectTab(int index) {
    if (index < 0 || index >= static_cast<int>(tabs_.size()))
        return;
    const bool moved = index != tab_;
    tab_ = index;
    if (tabBar_.GetHwnd())
        tabBar_.SetSelectedTab(index);
    if (moved && list_.GetHwnd())
        list_.Scroller().SetPosition(0);
    Fill();
}

void ConfigDialog::Relabel() {
    SetWindowText(window, Lang("config.Title"));
    for (size_t i = 0; i < tabs_.size() && i < tabBar_.tabs.size(); ++i)
        tabBar_.tabs[i].label = Lang(tabs_[i].labelKey);
    tabBar_.SetSelectedTab(tab_);
    done_.SetLabel(Lang("OK"));
    // Value texts come from the language too.
    const int tab = tab_;
    tabs_ = ConfigEntries::Build(folders_);
    tab_ = std::min(tab, static_cast<int>(tabs_.size()) - 1);
    Fill();
    InvalidateRect(window, nullptr, false);
}

void ConfigDialog::Changed(const std::string& setting) {
    if (onChange_)
        onChange_(setting);
}

void ConfigDialog::ActivateRow(int index) {
    if (index < 0 || index >= static_cast<int>(tabs_[static_cast<size_t>(tab_)].entries.size()))
        return;
    const ConfigEntry& entry = Entry(index);
    switch (entry.kind) {
    case Kind::Switch:
    case Kind::TaskView:
        FlipSwitch(entry);
        break;
    case Kind::ReplaceCalendar:
    case Kind::ReplaceTasks:
        SwitchReplacement(entry);
        break;
    case Kind::Choice:
        OpenChoices(index);
        return;
    case Kind::Colour:
        OpenColourPage(index);
        return;
    case Kind::TextList:
        EditList(entry);
        break;
    }
    Fill();
}

void ConfigDialog::FlipSwitch(const ConfigEntry& entry) {
    const bool on = !ConfigEntries::SwitchValue(entry);
    if (entry.kind == Kind::TaskView) {
        // Rewritten in the fixed order, so that the text stays one a person can read.
        std::u16string views;
        for (const char16_t* view : {u"Month", u"Week", u"Agenda", u"Day"}) {
            const bool enabled = view == Utf8ToUtf16(entry.setting) ? on : Settings::IsTaskViewEnabled(view);
            if (!enabled)
                continue;
            if (!views.empty())
                views += u'|';
            views += view;
        }
        Settings::SetShowTasksInViews(views);
        Changed("ShowTasksInViews");
        return;
    }
    Settings::SetBool(entry.setting.c_str(), on);
    if (entry.setting == "ShowWindowsTaskBar")
        Shell::SetHideTaskBar(!on);
    if (entry.setting == "HideCompleteTasks" || entry.setting == "ShowContactsBirthdays" ||
        entry.setting == "ShowContactsAnniversaries") {
        PimStore::Instance().SetFilters(
            Settings::GetExcludeFilter(), Settings::GetLastFilter(), Settings::GetHideCompleteTasks(),
            Settings::GetShowContactsBirthdays(), Settings::GetShowContactsAnniversaries());
    }
    Changed(entry.setting);
}

void ConfigDialog::SwitchReplacement(const ConfigEntry& entry) {
    const DefaultApps::Role role =
        entry.kind == Kind::ReplaceCalendar ? DefaultApps::Role::Calendar : DefaultApps::Role::Tasks;
    std::string error;
    const bool ok =
        DefaultApps::IsReplaced(role) ? DefaultApps::Restore(role, error) : DefaultApps::Replace(role, error);
    if (!ok) {
        Log::Warning("default program: %s", error.c_str());
        MessagePage::Tell(window, Lang("config.DefaultsNotWritten") + u"\n" + Utf8ToUtf16(error));
    }
}

void ConfigDialog::OpenChoices(int index) {
    const ConfigEntry& entry = Entry(index);
    if (entry.options.empty())
        return;
    pendingRow_ = index;
    const int current = ConfigEntries::CurrentOption(entry);
    std::vector<ContextMenuItem> items;
    for (size_t i = 0; i < entry.options.size(); ++i)
        items.push_back(
            {entry.options[i].label, kCmdOptionBase + static_cast<UINT>(i), static_cast<int>(i) == current});
    auto* menu = new ContextMenu(this, std::move(items), 0); // owned by our deferred command, or by itself
    if (current >= 0)
        menu->SetPreselected(current);
    menu->SetHeaderText(Label(entry));
    menu->Open();
}

void ConfigDialog::ChooseOption(int index, int option) {
    if (index < 0 || index >= static_cast<int>(tabs_[static_cast<size_t>(tab_)].entries.size()))
        return;
    const ConfigEntry entry = Entry(index);
    if (entry.kind != Kind::Choice || option < 0 || option >= static_cast<int>(entry.options.size()))
        return;
    const ConfigOption& chosen = entry.options[static_cast<size_t>(option)];
    const std::u16string& value = chosen.value;
    if (entry.setting == "Skin") {
        if (value == Settings::GetSkin())
            return;
        if (!SkinUsable(chosen.path)) {
            MessagePage::Tell(window, Lang("config.SkinUnusable"));
            return;
        }
    }
    if (entry.setting == "Language") {
        // Read first: a file that cannot be read leaves the texts as they are.
        LanguageTable probe;
        if (!probe.Load(chosen.path)) {
            MessagePage::Tell(window, Lang("config.LanguageUnusable"));
            return;
        }
        Settings::SetText(entry.setting.c_str(), value);
        LanguageTable::Instance().Load(chosen.path);
        Relabel();
    } else {
        Settings::SetText(entry.setting.c_str(), value);
        Fill();
    }
    Changed(entry.setting);
    if (entry.setting == "Skin" || entry.setting == "FontSizeDelta" || entry.setting == "FontFamily")
        MessagePage::Tell(window, Lang("config.RestartNeeded"));
}

void ConfigDialog::OpenColourPage(int index) {
    const ConfigEntry& entry = Entry(index);
    ColorPickerPage page(Label(entry), ConfigEntries::ColourValue(entry));
    if (page.DoModal(window) == IDOK)
        SetColour(index, page.Color());
}

void ConfigDialog::EditList(const ConfigEntry& entry) {
    const bool subjects = entry.setting == kSubjectsList;
    // A file we cannot read is never replaced by what we would show of it.
    if (!(subjects ? TemplateLists::SubjectsReplaceable() : TemplateLists::LocationsReplaceable())) {
        const std::string path = subjects ? TemplateLists::SubjectsPath() : TemplateLists::LocationsPath();
        MessagePage::Tell(window, Lang("config.ListUnreadable") + u"\n" + Utf8ToUtf16(path));
        return;
    }
    std::vector<std::u16string> list;
    if (subjects)
        TemplateLists::LoadSubjects(list);
    else
        TemplateLists::LoadLocations(list);
    TextListPage page(Label(entry), list);
    if (page.DoModal(window) != IDOK)
        return;
    const std::u16string text = TextListPage::FileText(page.Entries());
    if (!(subjects ? TemplateLists::SaveSubjects(text) : TemplateLists::SaveLocations(text))) {
        Log::Warning("could not write %s", entry.setting.c_str());
        MessagePage::Tell(window, Lang("config.ListNotSaved"));
        return;
    }
    Changed(entry.setting);
}

void ConfigDialog::SetColour(int index, COLORREF color) {
    const ConfigEntry& entry = Entry(index);
    if (entry.kind != Kind::Colour)
        return;
    Settings::SetText(entry.setting.c_str(), ConfigEntries::ColourText(color));
    Categories::LoadCategoryColors();
    Fill();
    Changed(entry.setting);
}

void ConfigDialog::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), font_.get(), Lang("config.Title"));
}

void ConfigDialog::OnCommand(UINT, UINT, HWND control) {
    if (control == done_.GetHwnd())
        EndDialog(window, IDOK);
}

LRESULT ConfigDialog::OnNotify(UINT_PTR, NMHDR* header) {
    if (header && header->hwndFrom == tabBar_.GetHwnd()) {
        // A press beside the tabs keeps the tab in use.
        if (tabBar_.SelectedTab() < 0)
            tabBar_.SetSelectedTab(tab_);
        else
            SelectTab(tabBar_.SelectedTab());
    }
    return 0;
}

void ConfigDialog::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE || key == VK_RETURN)
        EndDialog(window, IDOK);
    else if (key == VK_LEFT)
        SelectTab((tab_ + static_cast<int>(tabs_.size()) - 1) % static_cast<int>(tabs_.size()));
    else if (key == VK_RIGHT)
        SelectTab((tab_ + 1) % static_cast<int>(tabs_.size()));
}

void ConfigDialog::OnDeferredCommand(UINT id) {
    if (id >= kCmdOptionBase && id < kCmdOptionBase + kRowCommandLimit) {
        ChooseOption(pendingRow_, static_cast<int>(id - kCmdOptionBase));
        return;
    }
    if (id < kCmdOptionBase && id >= kCmdOptionBase - kRowCommandLimit)
        ActivateRow(static_cast<int>(kCmdOptionBase - 1 - id));
}

} // namespace mirodate
