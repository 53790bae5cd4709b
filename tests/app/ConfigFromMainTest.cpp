// The configuration dialog and the about box as the main window uses them:
// a new language relabels the menu bar at once, the split switch relayouts
// the month view, and the "Menu" pop-up reaches both pages.
#include "app/MainWnd.h"
#include "data/PimStore.h"
#include "forms/ConfigDialog.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "ui/ScreenBars.h"
#include "views/YearView.h"

#include <filesystem>

namespace mirodate::test {
namespace {

class ConfigFromMainTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScreenBars::Reset();
        setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        for (const char* folder : {"calendar", "tasks", "contacts"})
            std::filesystem::create_directories(dir_ + "/vdir/" + folder);
        VdirSource::Options options;
        options.useIndex = false;
        ASSERT_TRUE(PimStore::Instance().Open(std::make_unique<VdirSource>(dir_ + "/vdir", options)));
        main_ = std::make_unique<MainWnd>();
        ASSERT_TRUE(main_->Create(u""));
        LanguageTable::Instance().Load(std::string(MIRODATE_BINARY_DIR) + "/lang.en.txt");
        main_->Relabel();
        windows_->RunUntilIdle();
    }
    void TearDown() override {
        dialog_.reset();
        main_.reset();
        PimStore::Instance().Close();
        UiTest::TearDown();
    }
    ConfigDialog& OpenDialog() {
        ConfigFolders folders;
        folders.languages = {MIRODATE_BINARY_DIR};
        dialog_ = std::make_unique<ConfigDialog>(main_->Router().ConfigChangeHandler(), folders);
        EXPECT_TRUE(dialog_->CreateModeless(main_->GetHwnd()));
        windows_->RunUntilIdle();
        return *dialog_;
    }
    std::unique_ptr<MainWnd> main_;
    std::unique_ptr<ConfigDialog> dialog_;
};

TEST_F(ConfigFromMainTest, ANewLanguageRelabelsTheMenuBarAtOnce) {
    ASSERT_EQ(main_->Menu().Button(0)->Label(), u"Menu");
    ConfigDialog& dialog = OpenDialog();
    const int row = dialog.FindRow("Language");
    ASSERT_EQ(row, 0);
    const auto& options = dialog.Tabs()[0].entries[0].options;
    int french = -1;
    for (size_t i = 0; i < options.size(); ++i)
        if (options[i].value == u"lang.fr.txt")
            french = static_cast<int>(i);
    ASSERT_GE(french, 0);
    dialog.ChooseOption(row, french);
    EXPECT_EQ(main_->Menu().Button(0)->Label(), Lang("Menu"));
    EXPECT_EQ(main_->Menu().Button(1)->Label(), u"Filtre");
    EXPECT_EQ(Settings::GetLanguage(), u"lang.fr.txt");
}

TEST_F(ConfigFromMainTest, TheSplitSwitchRelayoutsTheMonthView) {
    ASSERT_TRUE(main_->IsSplitView());
    ConfigDialog& dialog = OpenDialog();
    dialog.SelectTab(1);
    dialog.ActivateRow(dialog.FindRow("SplitMonthView"));
    EXPECT_FALSE(main_->IsSplitView());
    EXPECT_FALSE(IsWindowVisible(main_->DayList().GetHwnd()));
}

TEST_F(ConfigFromMainTest, ATapOnAMonthOfTheYearViewShowsThatMonth) {
    const HWND page = main_->Router().OpenYearView(DateTime(2026, 5, 1));
    ASSERT_TRUE(page);
    windows_->RunUntilIdle();
    YearView* year = main_->Router().Year();
    ASSERT_TRUE(year);
    EXPECT_EQ(year->Year(), 2026);
    const RECT day = year->DayRect(9, 17);
    Tap((day.left + day.right) / 2, (day.top + day.bottom) / 2);
    EXPECT_EQ(main_->Grid().Model().Year(), 2026);
    EXPECT_EQ(main_->Grid().Model().Month(), 9);
    EXPECT_EQ(main_->Grid().Model().SelectedDay(), 17);
    // The page is gone (deleted from the loop) and the month is in front.
    EXPECT_EQ(main_->Router().Year(), nullptr);
    EXPECT_TRUE(IsWindowVisible(main_->GetHwnd()));
}

} // namespace
} // namespace mirodate::test
