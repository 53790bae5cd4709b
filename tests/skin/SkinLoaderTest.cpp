#include "skin/SkinLoader.h"
#include "SkinTestFiles.h"
#include "platform/Settings.h"
#include "skin/MenuBarIcons.h"
#include "skin/PictureCache.h"
#include "skin/SkinStyles.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

// Premultiplied ARGB of the opaque key colour RGB(0,128,128).
constexpr std::uint32_t kKeyPixel = 0xFF008080;

class SkinLoaderTest : public ::testing::Test {
protected:
    void SetUp() override { PictureCache::Instance().Clear(); }
    void TearDown() override { PictureCache::Instance().Clear(); }

    static std::string ShippedSkin(const std::string& name) {
        return std::string(MIRODATE_BINARY_DIR) + "/skin." + name + ".zip";
    }
};

TEST_F(SkinLoaderTest, ShippedSkinsSetEverySectionAndBringTheirPictures) {
    for (const char* name : {"Mirodate Black", "Mirodate Daylight"}) {
        for (bool highResolution : {true, false}) {
            SCOPED_TRACE(std::string(name) + (highResolution ? " hires" : " lores"));
            PictureCache::Instance().Clear();
            SkinStyles styles;
            ASSERT_TRUE(SkinLoader::LoadArchive(ShippedSkin(name), styles, highResolution));
            EXPECT_TRUE(styles.calendar.colorDayGridBg.has_value());
            EXPECT_TRUE(styles.calendar.colorDayName[0].has_value());
            EXPECT_TRUE(styles.statusBar.colorBg.has_value());
            EXPECT_TRUE(styles.statusBar.textShadowOff);
            EXPECT_FALSE(styles.info.author.empty());
            EXPECT_FALSE(styles.itemDetailView.colorText.empty());
            EXPECT_NE(styles.addModifyForm.colorBg, SkinStyles().addModifyForm.colorBg);
            EXPECT_NE(styles.inputForms.colorItemBg, SkinStyles().inputForms.colorItemBg);
            ASSERT_TRUE(styles.calendar.pictures.portrait);
            ASSERT_TRUE(styles.calendar.pictures.landscape);
            EXPECT_LT(styles.calendar.pictures.portrait->width, styles.calendar.pictures.portrait->height);
            EXPECT_GT(styles.calendar.pictures.landscape->width, styles.calendar.pictures.landscape->height);

            const int iconSize =
                highResolution ? MenuBarIcons::kHighResolutionSize : MenuBarIcons::kLowResolutionSize;
            EXPECT_TRUE(styles.menuBar.iconsFromSkin);
            ASSERT_TRUE(styles.menuBar.icons);
            EXPECT_EQ(styles.menuBar.icons->height, iconSize);
            EXPECT_EQ(styles.menuBar.icons->width, iconSize * static_cast<int>(MenuBarIcon::Count));
            EXPECT_EQ(styles.menuBar.icons->At(0, 0), kKeyPixel);
            EXPECT_EQ(styles.menuBar.height, highResolution ? 60 : 30);
        }
    }
}

TEST_F(SkinLoaderTest, TheDarkSkinIsDarkAndTheLightSkinLight) {
    auto brightness = [](COLORREF c) { return GetRValue(c) + GetGValue(c) + GetBValue(c); };
    SkinStyles black, daylight;
    ASSERT_TRUE(SkinLoader::LoadArchive(ShippedSkin("Mirodate Black"), black, true));
    ASSERT_TRUE(SkinLoader::LoadArchive(ShippedSkin("Mirodate Daylight"), daylight, true));
    EXPECT_LT(brightness(*black.calendar.colorDayGridBg), 3 * 64);
    EXPECT_GT(brightness(*black.calendar.colorDayGridText), 3 * 192);
    EXPECT_GT(brightness(*daylight.calendar.colorDayGridBg), 3 * 192);
    EXPECT_LT(brightness(*daylight.calendar.colorDayGridText), 3 * 64);
    for (const SkinStyles* styles : {&black, &daylight}) {
        EXPECT_GT(std::abs(brightness(styles->dayView.colorBg) - brightness(styles->dayView.colorText)), 300);
        EXPECT_GT(std::abs(brightness(styles->weekView.colorHeaderBg) -
                           brightness(styles->weekView.colorHeaderText)),
                  300);
    }
}

TEST_F(SkinLoaderTest, WithoutAUsableSkinTheBuiltInIconsAreUsed) {
    test::TempFolder folder;
    SkinStyles styles;
    EXPECT_FALSE(SkinLoader::LoadArchive((folder.Path() / "skin.none.zip").string(), styles, true));
    ASSERT_TRUE(styles.menuBar.icons);
    EXPECT_FALSE(styles.menuBar.iconsFromSkin);
    EXPECT_EQ(styles.menuBar.icons, MenuBarIcons::Builtin(true));

    // A skin whose strip does not decode also gets the built-in strip.
    const std::string path = folder.Write(
        "skin.odd.zip", test::MakeZip({{"skin.ini", "[styles.menubar.lores]\nmenuBarIcons=icons.png\n"},
                                       {"icons.png", "not a picture"}}));
    SkinStyles odd;
    EXPECT_TRUE(SkinLoader::LoadArchive(path, odd, false));
    EXPECT_EQ(odd.menuBar.icons, MenuBarIcons::Builtin(false));

    // An archive without skin.ini changes nothing but the icons.
    SkinStyles noIni;
    EXPECT_FALSE(
        SkinLoader::LoadArchive(folder.Write("skin.x.zip", test::MakeZip({{"a.txt", "a"}})), noIni, true));
}

TEST_F(SkinLoaderTest, BuiltInStripsHoldNineIconsPerResolution) {
    for (bool highResolution : {false, true}) {
        SkinPictureRef strip = MenuBarIcons::Builtin(highResolution);
        ASSERT_TRUE(strip);
        const int size = highResolution ? 40 : 20;
        EXPECT_EQ(strip->height, size);
        EXPECT_EQ(MenuBarIcons::IconRect(*strip, MenuBarIcon::Search), (RECT{8 * size, 0, 9 * size, size}));
        // Every icon draws something and leaves its corners transparent.
        for (int icon = 0; icon < static_cast<int>(MenuBarIcon::Count); ++icon) {
            const RECT cell = MenuBarIcons::IconRect(*strip, static_cast<MenuBarIcon>(icon));
            EXPECT_EQ(strip->At(cell.left, cell.top), kKeyPixel);
            int inked = 0;
            for (int y = cell.top; y < cell.bottom; ++y)
                for (int x = cell.left; x < cell.right; ++x)
                    inked += strip->At(x, y) != kKeyPixel;
            EXPECT_GT(inked, size * size / 10) << "icon " << icon;
        }
    }
    SkinPicture narrow;
    narrow.width = 40;
    narrow.height = 20;
    EXPECT_TRUE(MenuBarIcons::IconRect(narrow, MenuBarIcon::Week).IsEmpty());
}

TEST_F(SkinLoaderTest, MissingSkinSwitchesTheSettingToTheDefault) {
    test::TempFolder folder;
    Settings::UseFile((folder.Path() / "settings.conf").string());
    Settings::SetSkin(u"No Such Skin");
    SkinStyles styles;
    SkinLoader::Load(styles, true);
    EXPECT_EQ(Settings::GetSkin(), u"Mirodate Black");
    EXPECT_TRUE(styles.menuBar.icons);
}

TEST_F(SkinLoaderTest, ListsSkinArchivesByName) {
    test::TempFolder first, second;
    for (const char* file : {"skin.Alpha.zip", "skin.With Blanks.zip", "skin..zip", "other.zip", "skin.txt"})
        first.Write(file, "x");
    second.Write("skin.Alpha.zip", "x");
    second.Write("skin.Beta.zip", "x");
    EXPECT_EQ(SkinLoader::ListIn({first.Path().string(), second.Path().string(), "/nonexistent"}),
              (std::vector<std::u16string>{u"Alpha", u"Beta", u"With Blanks"}));
}

} // namespace
} // namespace mirodate
