#include "skin/ApplySkin.h"
#include "SkinTestFiles.h"
#include "lang/IniFile.h"
#include "skin/PictureCache.h"
#include "skin/SkinArchive.h"
#include "skin/SkinStyles.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

constexpr COLORREF kWhite = RGB(0xFF, 0xFF, 0xFF);

class ApplySkinTest : public ::testing::Test {
protected:
    void SetUp() override { PictureCache::Instance().Clear(); }
    void TearDown() override { PictureCache::Instance().Clear(); }

    SkinStyles Apply(const std::string& ini, bool highResolution = true,
                     std::vector<test::ZipEntry> pictures = {}) {
        pictures.push_back({"skin.ini", ini});
        archive_.OpenMemory(test::MakeZip(pictures));
        SkinStyles styles;
        ApplySkin(IniFile(ini), archive_, highResolution, styles);
        return styles;
    }

    SkinArchive archive_;
};

TEST_F(ApplySkinTest, AnEmptySkinKeepsTheBuiltInLook) {
    const SkinStyles styles = Apply("");
    EXPECT_EQ(styles.contextMenu.colorBgGradient, RGB(0xE4, 0xE4, 0xE4));
    EXPECT_EQ(styles.addModifyForm.colorHeaderBg, RGB(0x5C, 0x5C, 0x5C));
    EXPECT_EQ(styles.weekView.colorTimeScaleAllday, RGB(0, 0xA4, 0));
    EXPECT_EQ(styles.dayView.colorHeaderGradient, RGB(0, 0, 0)); // from the list-view header
    EXPECT_FALSE(styles.calendar.colorGrid.has_value());
    EXPECT_FALSE(styles.statusBar.colorBg.has_value());
    EXPECT_EQ(styles.calendar.showGridLines, 2);
    EXPECT_EQ(styles.menuBar.height, 60);
    EXPECT_FALSE(styles.menuBar.icons);
    // Input forms: absent gradients fall back to the plain button colours.
    EXPECT_EQ(styles.inputForms.buttons.colorButtonGradient, RGB(0x40, 0x40, 0x40));
    EXPECT_EQ(styles.inputForms.buttons.colorButtonGradientPressed, RGB(0x40, 0x40, 0x40));
    EXPECT_EQ(Apply("", false).menuBar.height, 30);
}

TEST_F(ApplySkinTest, ListViewsSeedEveryTimeView) {
    const SkinStyles styles =
        Apply("[styles.listviews]\ncolorBg=#101010\ncolorBg2=#202020\ncolorText=#303030\n"
              "colorSelectionMark=#404040\ncolorHeaderBg=#505050\ncolorHeaderText=#606060\n"
              "[styles.weekview]\ncolorTextSelected=#111111\n");
    for (const TimeViewStyle* view :
         {&styles.weekView, &styles.dayView, &styles.agendaView, &styles.quickView}) {
        EXPECT_EQ(view->colorBg, RGB(0x10, 0x10, 0x10));
        EXPECT_EQ(view->colorText, RGB(0x30, 0x30, 0x30));
        EXPECT_EQ(view->colorSelectionMark, RGB(0x40, 0x40, 0x40));
    }
    for (const TimeViewStyle* view : {&styles.weekView, &styles.dayView, &styles.quickView})
        EXPECT_EQ(view->colorBg2, RGB(0x20, 0x20, 0x20));
    for (const TimeViewStyle* view : {&styles.weekView, &styles.dayView, &styles.agendaView}) {
        EXPECT_EQ(view->colorHeaderBg, RGB(0x50, 0x50, 0x50));
        EXPECT_EQ(view->colorHeaderGradient, RGB(0x50, 0x50, 0x50));
        EXPECT_EQ(view->colorHeaderText, RGB(0x60, 0x60, 0x60));
    }
    EXPECT_EQ(styles.weekView.colorTextSelected, RGB(0x11, 0x11, 0x11));
    EXPECT_EQ(styles.dayView.colorTextSelected, kWhite);
}

TEST_F(ApplySkinTest, DayViewSeedsTheAgendaButNotTheWeek) {
    const SkinStyles styles = Apply("[styles.dayview]\ncolorBg=#0000AA\ncolorHeaderBg=#00AA00\n"
                                    "colorTimeScale=#AA0000\nstyleLineSeparator=7\n");
    EXPECT_EQ(styles.agendaView.colorBg, RGB(0, 0, 0xAA));
    EXPECT_EQ(styles.agendaView.colorTimeScale, RGB(0xAA, 0, 0));
    EXPECT_EQ(styles.agendaView.styleLineSeparator, 7);
    EXPECT_EQ(styles.weekView.colorBg, kWhite);
    EXPECT_EQ(styles.quickView.colorBg, kWhite);
    // The day view's own gradient follows its header colour when not given,
    // and the agenda takes the day view's gradient.
    EXPECT_EQ(styles.dayView.colorHeaderGradient, RGB(0, 0xAA, 0));
    EXPECT_EQ(styles.agendaView.colorHeaderGradient, RGB(0, 0xAA, 0));
}

TEST_F(ApplySkinTest, HeaderGradientFallbacksDifferBetweenViews) {
    const SkinStyles styles = Apply("[styles.weekview]\ncolorHeaderBg=#111111\n"
                                    "[styles.dayview]\ncolorHeaderGradient=#222222\n"
                                    "[styles.agendaview]\ncolorHeaderBg=#333333\n");
    EXPECT_EQ(styles.weekView.colorHeaderGradient, RGB(0x11, 0x11, 0x11));
    EXPECT_EQ(styles.dayView.colorHeaderGradient, RGB(0x22, 0x22, 0x22));
    EXPECT_EQ(styles.agendaView.colorHeaderBg, RGB(0x33, 0x33, 0x33));
    EXPECT_EQ(styles.agendaView.colorHeaderGradient, RGB(0x22, 0x22, 0x22));
}

TEST_F(ApplySkinTest, StatusBarNeedsTwoCharactersAndKnowsTransparent) {
    const SkinStyles styles =
        Apply("[styles.statusbar]\ncolorBg=1\ncolorText=ab\ncolorTextShadow=TRANSPARENT\n"
              "colorMetersShadow=transparent\n[styles.contextmenu]\ncolorBg=1\n");
    EXPECT_FALSE(styles.statusBar.colorBg.has_value());
    EXPECT_EQ(styles.statusBar.colorText, COLORREF{0}); // two characters: parsed, and black
    EXPECT_TRUE(styles.statusBar.textShadowOff);
    EXPECT_FALSE(styles.statusBar.colorTextShadow.has_value());
    EXPECT_FALSE(styles.statusBar.metersShadowOff);
    EXPECT_EQ(styles.statusBar.colorMetersShadow, COLORREF{0});
    EXPECT_EQ(styles.contextMenu.colorBg, COLORREF{0}); // elsewhere one character counts
}

TEST_F(ApplySkinTest, ButtonRulesOfInputFormsAndMenuBar) {
    SkinStyles styles = Apply("[styles.inputforms]\ncolorButtonBg=#010101\ncolorButtonText=#020202\n"
                              "[styles.menubar]\ncolorButtonBg=#0A0A0A\ncolorButtonGradient=#0B0B0B\n"
                              "colorButtonBgPressed=#0C0C0C\n"
                              "[styles.menubar.hires]\ncolorButtonGradient=#0D0D0D\nheight=44\n"
                              "[styles.menubar.lores]\nheight=22\n");
    const ButtonColors& input = styles.inputForms.buttons;
    EXPECT_EQ(input.colorButtonBgPressed, RGB(1, 1, 1));
    EXPECT_EQ(input.colorButtonGradient, RGB(1, 1, 1));
    EXPECT_EQ(input.colorButtonTextPressed, RGB(2, 2, 2));
    const ButtonColors& menu = styles.menuBar.buttons;
    EXPECT_EQ(menu.colorButtonBg, RGB(0x0A, 0x0A, 0x0A));
    EXPECT_EQ(menu.colorButtonGradient, RGB(0x0D, 0x0D, 0x0D)); // the resolution section overrides
    EXPECT_EQ(menu.colorButtonGradientPressed, RGB(0x0C, 0x0C, 0x0C));
    EXPECT_EQ(styles.menuBar.height, 44);

    styles = Apply("[styles.menubar]\ncolorButtonBg=#0A0A0A\ncolorButtonGradient=#0B0B0B\n"
                   "[styles.menubar.lores]\nheight=22\n",
                   false);
    // The low-resolution section gives no gradient, so it resets to the background.
    EXPECT_EQ(styles.menuBar.buttons.colorButtonGradient, RGB(0x0A, 0x0A, 0x0A));
    EXPECT_EQ(styles.menuBar.height, 22);
}

TEST_F(ApplySkinTest, CalendarDayNamesGridLinesAndDetailText) {
    const SkinStyles styles = Apply("[variables]\n$red=#FF0000\n[styles.calendar]\ncolorDayName_0=$red\n"
                                    "colorDayName_6=\ncolorGrid=$nothing\nshowGridLines=5\n"
                                    "[styles.weekview]\ncolorDayName_3=00ff00\n"
                                    "[styles.itemdetailview]\ncolorText=#abcdef\n[info]\nauthor=Zoë\n");
    EXPECT_EQ(styles.calendar.colorDayName[0], RGB(0xFF, 0, 0));
    EXPECT_FALSE(styles.calendar.colorDayName[6].has_value()); // empty means not given
    EXPECT_FALSE(styles.calendar.colorGrid.has_value());       // unknown variable: not given
    EXPECT_FALSE(styles.calendar.colorDayName[3].has_value());
    EXPECT_EQ(styles.weekView.colorDayName[3], RGB(0, 0xFF, 0));
    EXPECT_EQ(styles.itemDetailView.colorText, u"#abcdef");
    EXPECT_EQ(styles.info.author, u"Zoë");

    bool first = true, second = false;
    styles.calendar.ApplyGridLines(first, second);
    EXPECT_TRUE(first); // 5 changes nothing
    EXPECT_FALSE(second);
    CalendarStyle one;
    one.showGridLines = 1;
    one.ApplyGridLines(first, second);
    EXPECT_TRUE(first && !second);
}

TEST_F(ApplySkinTest, PicturesAreFoundRegardlessOfCaseAndDecodedOnce) {
    const std::string ini =
        "[styles.calendar]\nbackgroundImage=images/bg.png\n"
        "[styles.dayview]\nbackgroundImageLandscape=IMAGES/BG.PNG\nbackgroundImage=images/bg.png\n"
        "[styles.weekview]\nbackgroundImage=broken.png\n"
        "[styles.quickview]\nbackgroundImage=missing.png\n";
    const SkinStyles styles =
        Apply(ini, true, {{"Images/Bg.PNG", test::MakePng(6, 4, 0xFF0000)}, {"broken.png", "\x89PNG junk"}});
    ASSERT_TRUE(styles.calendar.pictures.portrait);
    EXPECT_EQ(styles.calendar.pictures.portrait->width, 6);
    EXPECT_EQ(styles.calendar.pictures.portrait, styles.dayView.pictures.portrait); // one decode
    ASSERT_TRUE(styles.dayView.pictures.landscape);
    EXPECT_FALSE(styles.weekView.pictures.portrait);
    EXPECT_FALSE(styles.quickView.pictures.portrait);
    // Either orientation falls back to the other.
    EXPECT_EQ(styles.calendar.pictures.ForScreen(640, 480), styles.calendar.pictures.portrait.get());
    EXPECT_EQ(styles.weekView.pictures.ForScreen(480, 640), nullptr);
}

} // namespace
} // namespace mirodate
