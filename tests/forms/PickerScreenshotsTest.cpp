// Pictures of every picker page at 480x640 and 240x320 in both shipped
// skins, for a person to look at. Written only when MIRODATE_SCREENSHOT_DIR
// names a folder; each page must still lay out within the screen.
#include "forms/DatePickerPage.h"
#include "forms/DateTimePickerPage.h"
#include "forms/TextListPage.h"
#include "forms/TimePickerPage.h"
#include "forms/TimeSpanPickerPage.h"
#include "skin/SkinLoader.h"
#include "skin/SkinStyles.h"
#include "tests/forms/PickerFixture.h"

#include <functional>
#include <memory>

namespace mirodate::test {
namespace {

class PickerScreenshots : public PickerTest {
protected:
    void TearDown() override {
        SkinStyles::Current() = SkinStyles();
        PickerTest::TearDown();
    }
};

TEST_F(PickerScreenshots, EveryPickerInBothSkinsAndSizes) {
    const char* folder = std::getenv("MIRODATE_SCREENSHOT_DIR");
    if (!folder)
        GTEST_SKIP() << "set MIRODATE_SCREENSHOT_DIR to write the pictures";
    struct Shot {
        const char* name;
        bool wheels;
        std::function<std::unique_ptr<DialogWnd>()> make;
    };
    const DateTime moment(2024, 3, 20, 14, 35);
    const std::vector<Shot> shots = {
        {"date", false, [&] { return std::make_unique<DatePickerPage>(moment); }},
        {"time-wheels", true, [&] { return std::make_unique<TimePickerPage>(moment); }},
        {"time-grid", false, [&] { return std::make_unique<TimePickerPage>(moment); }},
        {"span", false, [] { return std::make_unique<TimeSpanPickerPage>(11520 + 95); }},
        {"datetime-wheels", true, [&] { return std::make_unique<DateTimePickerPage>(moment); }},
        {"datetime-grid", false, [&] { return std::make_unique<DateTimePickerPage>(moment); }},
        {"lists", false,
         [] {
             return std::make_unique<TextListPage>(u"Locations",
                                                   std::vector<std::u16string>{u"Office", u"Home"});
         }},
    };
    for (const char* skin : {"Mirodate Black", "Mirodate Daylight"}) {
        for (const auto& [width, height] : {std::pair{480, 640}, std::pair{240, 320}}) {
            Open(width, height);
            SkinStyles::Current() = SkinStyles();
            ASSERT_TRUE(SkinLoader::LoadArchive(std::string(MIRODATE_BINARY_DIR) + "/skin." + skin + ".zip",
                                                SkinStyles::Current(), width >= 480));
            for (const Shot& shot : shots) {
                Settings::SetBool("TimePickerWheel", shot.wheels);
                std::unique_ptr<DialogWnd> page = shot.make();
                ASSERT_TRUE(page->CreateModeless(nullptr));
                Wait(500);
                const std::string path = std::string(folder) + "/" + shot.name + "-" + std::to_string(width) +
                                         "-" + (skin[9] == 'B' ? "black" : "daylight") + ".png";
                EXPECT_TRUE(windows_->WriteScreenshot(path)) << path;
            }
        }
    }
}

} // namespace
} // namespace mirodate::test
