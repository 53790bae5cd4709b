// The configuration dialog on the real window system, headless: what each
// row writes (read back through Settings), values edited to garbage by hand,
// the language applied at once, the skin list of a folder and a skin
// archive that does not open, the colour page and the tabs.
#include "forms/ConfigDialog.h"
#include "data/Categories.h"
#include "data/TemplateLists.h"
#include "forms/ColorPickerPage.h"
#include "forms/TextListPage.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "tests/skin/SkinTestFiles.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/MessagePage.h"

#include <filesystem>
#include <fstream>

namespace mirodate::test {
namespace {

using Kind = ConfigEntry::Kind;

class ConfigDialogTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        setenv("XDG_CONFIG_HOME", (dir_ + "/config").c_str(), 1);
        setenv("XDG_DATA_HOME", (dir_ + "/data").c_str(), 1);
        folders_.languages = {MIRODATE_BINARY_DIR};
        folders_.skins = {skins_.Path().string()};
        skins_.Write("skin.Good.zip", MakeZip({{"skin.ini", "[info]\nauthor=Someone\nversion=1\n"}}));
        skins_.Write("skin.Broken.zip", "this is no zip archive at all");
        skins_.Write("skin.Empty.zip", MakeZip({{"readme.txt", "no styles here"}}));
        LanguageTable::Instance().Load(std::string(MIRODATE_BINARY_DIR) + "/lang.en.txt");
        MessagePage::SetOpenObserver([this](MessagePage& page) {
            told_.push_back(page.Text());
            page.Answer(1);
        });
    }
    void TearDown() override {
        MessagePage::SetOpenObserver(nullptr);
        TextListPage::SetOpenObserver(nullptr);
        TemplateLists::SetDirectory("");
        dialog_.reset();
        UiTest::TearDown();
    }
    ConfigDialog& Open() {
        dialog_ = std::make_unique<ConfigDialog>(
            [this](const std::string& name) { changed_.push_back(name); }, folders_);
        EXPECT_TRUE(dialog_->CreateModeless(nullptr));
        windows_->RunUntilIdle();
        return *dialog_;
    }
    int Row(const std::string& key) {
        for (int tab = 0; tab < static_cast<int>(dialog_->Tabs().size()); ++tab) {
            dialog_->SelectTab(tab);
            if (const int row = dialog_->FindRow(key); row >= 0)
                return row;
        }
        ADD_FAILURE() << "no row " << key;
        return -1;
    }
    const ConfigEntry& Entry(int row) const {
        return dialog_->Tabs()[static_cast<size_t>(dialog_->CurrentTab())].entries[static_cast<size_t>(row)];
    }
    int OptionOf(int row, const std::u16string& value) const {
        const auto& options = Entry(row).options;
        for (size_t i = 0; i < options.size(); ++i)
            if (options[i].value == value)
                return static_cast<int>(i);
        return -1;
    }

    TempFolder skins_;
    ConfigFolders folders_;
    std::unique_ptr<ConfigDialog> dialog_;
    std::vector<std::string> changed_;
    std::vector<std::u16string> told_;
};

TEST_F(ConfigDialogTest, EverySwitchAndChoiceWritesItsSettingAsText) {
    ConfigDialog& dialog = Open();
    int switches = 0, choices = 0;
    for (int tab = 0; tab < static_cast<int>(dialog.Tabs().size()); ++tab) {
        dialog.SelectTab(tab);
        const auto entries = dialog.Tabs()[static_cast<size_t>(tab)].entries;
        for (int row = 0; row < static_cast<int>(entries.size()); ++row) {
            const ConfigEntry& entry = entries[static_cast<size_t>(row)];
            const char* name = entry.setting.c_str();
            if (entry.kind == Kind::Switch) {
                const bool before = Settings::GetBool(name, entry.fallback == u"1");
                dialog.ActivateRow(row);
                EXPECT_EQ(Settings::GetText(name, u"?"), before ? u"0" : u"1") << entry.setting;
                dialog.ActivateRow(row);
                EXPECT_EQ(Settings::GetText(name, u"?"), before ? u"1" : u"0") << entry.setting;
                ++switches;
            } else if (entry.kind == Kind::Choice && entry.setting != "Language" && entry.setting != "Skin") {
                // The last option, then the first: each lands in the file as its text.
                for (int option : {static_cast<int>(entry.options.size()) - 1, 0}) {
                    dialog.ChooseOption(row, option);
                    EXPECT_EQ(Settings::GetText(name, u"?"), entry.options[static_cast<size_t>(option)].value)
                        << entry.setting;
                    EXPECT_EQ(ConfigEntries::CurrentOption(entry), option) << entry.setting;
                }
                ++choices;
            }
        }
    }
    EXPECT_GE(switches, 16);
    EXPECT_GE(choices, 9);
    // The main window hears of every change by name.
    EXPECT_NE(std::find(changed_.begin(), changed_.end(), "AgendaSize"), changed_.end());
    EXPECT_NE(std::find(changed_.begin(), changed_.end(), "HideCompleteTasks"), changed_.end());
}

TEST_F(ConfigDialogTest, TaskViewSwitchesKeepAReadableList) {
    Open();
    const int week = Row("config.TasksInWeek");
    dialog_->ActivateRow(week);
    EXPECT_EQ(Settings::GetShowTasksInViews(), u"Month|Agenda|Day");
    EXPECT_FALSE(Settings::IsTaskViewEnabled(u"Week"));
    dialog_->ActivateRow(dialog_->FindRow("config.TasksInMonth"));
    dialog_->ActivateRow(week);
    EXPECT_EQ(Settings::GetShowTasksInViews(), u"Week|Agenda|Day");
}

TEST_F(ConfigDialogTest, ValuesEditedByHandShowAsTheProgramReadsThem) {
    Settings::SetText("AgendaSize", u"9");
    Settings::SetText("WeekMaxEvents", u"-7");
    Settings::SetText("SearchStartDelay", u"abc");
    Settings::SetText("DefaultSpan", u"50");
    Settings::SetText("FontFamily", u"No Such Font Anywhere");
    Open();
    int row = Row("AgendaSize");
    EXPECT_EQ(ConfigEntries::ValueText(Entry(row)), u"4");
    row = Row("WeekMaxEvents");
    EXPECT_EQ(ConfigEntries::ValueText(Entry(row)), Lang("config.NoLimit"));
    // "abc" reads as 0: the shortest delay on offer.
    row = Row("SearchStartDelay");
    EXPECT_EQ(ConfigEntries::ValueText(Entry(row)), u"250");
    // A span between the offered ones shows as the next longer one.
    row = Row("DefaultSpan");
    EXPECT_EQ(Entry(row).options[static_cast<size_t>(ConfigEntries::CurrentOption(Entry(row)))].value, u"60");
    // A font no longer installed is shown by its name and can be replaced.
    row = Row("FontFamily");
    EXPECT_EQ(ConfigEntries::ValueText(Entry(row)), u"No Such Font Anywhere");
    dialog_->ChooseOption(row, 0);
    EXPECT_EQ(Settings::GetFontFamily(), u"*auto*");
}

TEST_F(ConfigDialogTest, LanguageIsListedByNameAndAppliedAtOnce) {
    // A file without a "LANGUAGE" line is listed by its code.
    std::ofstream(skins_.Path() / "lang.xx.txt", std::ios::binary) << std::string("\xFF\xFEO\0K\0=\0X\0", 10);
    folders_.languages.push_back(skins_.Path().string());
    Open();
    const int row = Row("Language");
    std::vector<std::u16string> labels;
    for (const ConfigOption& option : Entry(row).options)
        labels.push_back(option.label);
    EXPECT_NE(std::find(labels.begin(), labels.end(), u"Deutsch"), labels.end());
    EXPECT_NE(std::find(labels.begin(), labels.end(), u"xx"), labels.end());
    EXPECT_EQ(labels.size(), 8u);

    dialog_->ChooseOption(row, OptionOf(row, u"lang.de.txt"));
    EXPECT_EQ(Settings::GetLanguage(), u"lang.de.txt");
    EXPECT_EQ(Lang("OK"), u"OK");
    EXPECT_EQ(dialog_->TabBar().TabAt(0).label, Lang("config.General"));
    EXPECT_EQ(Lang("config.General"), u"Allgemein");
    EXPECT_NE(std::find(changed_.begin(), changed_.end(), "Language"), changed_.end());
}

TEST_F(ConfigDialogTest, SkinListOfAFolderAndArchivesThatDoNotOpen) {
    const auto skins = ConfigEntries::ListSkins({skins_.Path().string()});
    ASSERT_EQ(skins.size(), 3u);
    EXPECT_EQ(skins[0].value, u"Broken");
    EXPECT_EQ(skins[1].value, u"Empty");
    EXPECT_EQ(skins[2].value, u"Good");

    Open();
    const int row = Row("Skin");
    for (const char16_t* bad : {u"Broken", u"Empty"}) {
        told_.clear();
        dialog_->ChooseOption(row, OptionOf(row, bad));
        ASSERT_EQ(told_.size(), 1u);
        EXPECT_EQ(told_[0], Lang("config.SkinUnusable"));
        EXPECT_EQ(Settings::GetSkin(), u"Mirodate Black");
    }
    told_.clear();
    dialog_->ChooseOption(row, OptionOf(row, u"Good"));
    EXPECT_EQ(Settings::GetSkin(), u"Good");
    ASSERT_EQ(told_.size(), 1u);
    EXPECT_EQ(told_[0], Lang("config.RestartNeeded"));
}

TEST_F(ConfigDialogTest, ColoursAreStoredAsHexAndUsedAtOnce) {
    Open();
    const int row = Row("Color[ContBirthday]");
    EXPECT_EQ(ConfigEntries::ColourValue(Entry(row)), Categories::kDefaultBirthdayColor);
    dialog_->SetColour(row, RGB(0x12, 0x34, 0x56));
    EXPECT_EQ(Settings::GetText("Color[ContBirthday]", u""), u"123456");
    EXPECT_EQ(Categories::GetBirthdayColor(), RGB(0x12, 0x34, 0x56));
}

TEST_F(ConfigDialogTest, ColourPageChoosesTheTappedSwatch) {
    ColorPickerPage page(u"Work", RGB(0, 0, 0));
    ASSERT_TRUE(page.CreateModeless(nullptr));
    windows_->RunUntilIdle();
    const RECT swatch = page.SwatchRect(2);
    EXPECT_GE(swatch.Width(), 40); // a finger's width at 480 pixels
    EXPECT_EQ(FramePixel((swatch.left + swatch.right) / 2, (swatch.top + swatch.bottom) / 2),
              ColorPickerPage::Palette()[2]);
    Tap((swatch.left + swatch.right) / 2, (swatch.top + swatch.bottom) / 2);
    EXPECT_EQ(page.Color(), ColorPickerPage::Palette()[2]);
}

TEST_F(ConfigDialogTest, TabsAreTappedAndRowsTappedThroughTheList) {
    ConfigDialog& dialog = Open();
    ASSERT_EQ(dialog.Tabs().size(), 4u);
    const RECT tab = dialog.TabBar().TabAt(1).rect;
    RECT bar;
    GetWindowRect(dialog.TabBar().GetHwnd(), &bar);
    Tap(bar.left + (tab.left + tab.right) / 2, bar.top + tab.bottom / 2);
    EXPECT_EQ(dialog.CurrentTab(), 1);
    // The first row of "Views" is the split month view: a tap flips it.
    ASSERT_EQ(dialog.FindRow("SplitMonthView"), 0);
    RECT list;
    GetWindowRect(dialog.List().GetHwnd(), &list);
    Tap(list.left + 40, list.top + 10);
    windows_->RunUntilIdle();
    EXPECT_FALSE(Settings::GetSplitMonthView());
}

// The lists live in a folder of the test's own.
class ConfigListsTest : public ConfigDialogTest {
protected:
    void SetUp() override {
        ConfigDialogTest::SetUp();
        lists_ = dir_ + "/lists";
        std::filesystem::create_directories(lists_);
        TemplateLists::SetDirectory(lists_);
    }
    std::string Bytes(const char* name) const {
        std::ifstream file(lists_ + "/" + name, std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    }
    void Inject(DisplayEvent event) { display_->Inject(std::move(event)); }
    void InjectKey(std::uint32_t key) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::KeyDown;
        event.key = key;
        Inject(event);
        event.type = DisplayEvent::Type::KeyUp;
        Inject(event);
    }
    void InjectText(const std::string& text) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::Text;
        event.text = text;
        Inject(event);
    }
    void InjectTapOn(HWND control) {
        RECT rect;
        GetWindowRect(control, &rect);
        DisplayEvent event;
        event.type = DisplayEvent::Type::PointerDown;
        event.x = (rect.left + rect.right) / 2;
        event.y = (rect.top + rect.bottom) / 2;
        Inject(event);
        event.type = DisplayEvent::Type::PointerUp;
        Inject(event);
    }
    std::string lists_;
};

TEST_F(ConfigListsTest, SubjectsAreEditedAsOneTextAndSavedAsTheEditorsReadThem) {
    ASSERT_TRUE(TemplateLists::SaveSubjects(u"Meeting\r\nLunch\r\n"));
    Open();
    const int row = Row(kSubjectsList);
    EXPECT_EQ(ConfigEntries::ValueText(Entry(row)), u"2");
    std::u16string shown;
    TextListPage::SetOpenObserver([&](TextListPage& page) {
        shown = page.Field().GetText();
        const int end = static_cast<int>(shown.size());
        page.Field().SetSelection(end, end);
        // Typed: a new line with spaces around the entry, and an empty line.
        InjectKey(VK_RETURN);
        InjectText("  Zahnarzt \xC3\xBC ");
        InjectKey(VK_RETURN);
        InjectKey(VK_RETURN);
        InjectTapOn(page.Chrome().Ok().GetHwnd());
    });
    dialog_->ActivateRow(row);
    EXPECT_EQ(shown, u"Meeting\nLunch");
    EXPECT_EQ(Bytes("MDSubjects.txt"),
              std::string("\xFF\xFE", 2) + EncodeUtf16Le(u"Meeting\r\nLunch\r\nZahnarzt \u00FC\r\n"));
    std::vector<std::u16string> subjects;
    TemplateLists::LoadSubjects(subjects);
    EXPECT_EQ(subjects, (std::vector<std::u16string>{u"Meeting", u"Lunch", u"Zahnarzt \u00FC"}));
    EXPECT_NE(std::find(changed_.begin(), changed_.end(), kSubjectsList), changed_.end());
    // The row counts the entries now in the file.
    EXPECT_EQ(ConfigEntries::ValueText(Entry(row)), u"3");
}

TEST_F(ConfigListsTest, LocationsAreWrittenFromScratchAndCancelKeepsTheFile) {
    Open();
    const int row = Row(kLocationsList);
    TextListPage::SetOpenObserver([&](TextListPage& page) {
        InjectText("Office");
        InjectKey(VK_RETURN);
        InjectText("Home");
        InjectTapOn(page.Chrome().Ok().GetHwnd());
    });
    dialog_->ActivateRow(row);
    const std::string written = Bytes("MDLocations.txt");
    EXPECT_EQ(written, std::string("\xFF\xFE", 2) + EncodeUtf16Le(u"Office\r\nHome\r\n"));
    // AddLocation finds an entry the page wrote.
    TemplateLists::AddLocation(u"Home");
    EXPECT_EQ(Bytes("MDLocations.txt"), written);

    TextListPage::SetOpenObserver([&](TextListPage& page) {
        InjectText("Elsewhere");
        InjectTapOn(page.Chrome().Cancel().GetHwnd());
    });
    dialog_->ActivateRow(row);
    EXPECT_EQ(Bytes("MDLocations.txt"), written);
}

TEST_F(ConfigListsTest, AListFileThatCannotBeReadIsLeftAsItIs) {
    // UTF-8 without the mark: not a file of ours to rewrite.
    const std::string foreign = "Office\nHome\n";
    std::ofstream(lists_ + "/MDLocations.txt", std::ios::binary) << foreign;
    Open();
    bool opened = false;
    TextListPage::SetOpenObserver([&](TextListPage& page) {
        opened = true;
        InjectTapOn(page.Chrome().Ok().GetHwnd());
    });
    dialog_->ActivateRow(Row(kLocationsList));
    EXPECT_FALSE(opened);
    ASSERT_FALSE(told_.empty());
    EXPECT_NE(told_.back().find(Lang("config.ListUnreadable")), std::u16string::npos);
    EXPECT_EQ(Bytes("MDLocations.txt"), foreign);
}

} // namespace
} // namespace mirodate::test
