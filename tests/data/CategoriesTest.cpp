#include "data/Categories.h"
#include "data/FilterList.h"
#include "data/ItemFilter.h"
#include "platform/Settings.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace mirodate {
namespace {

class CategoriesTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = std::filesystem::temp_directory_path() / ("mirodate-cat-" + std::to_string(getpid()));
        std::filesystem::create_directories(dir_);
        Settings::UseFile((dir_ / "settings.conf").string());
        Categories::Reset();
        Categories::SetNameProvider({});
    }
    void TearDown() override {
        Categories::SetNameProvider({});
        Categories::Reset();
        std::filesystem::remove_all(dir_);
    }
    std::filesystem::path dir_;
};

TEST(ParseColor, SixOrSevenCharactersElseBlack) {
    EXPECT_EQ(Categories::ParseColor(u"ff0000"), 0x000000FFu);
    EXPECT_EQ(Categories::ParseColor(u"#ff0000"), 0x000000FFu);
    EXPECT_EQ(Categories::ParseColor(u"#00FF00"), 0x0000FF00u);
    EXPECT_EQ(Categories::ParseColor(u"x0000ff"), 0x00FF0000u);
    EXPECT_EQ(Categories::ParseColor(u"f00"), 0u);
    EXPECT_EQ(Categories::ParseColor(u""), 0u);
    EXPECT_EQ(Categories::ParseColor(u"#ff00001"), 0u);
    EXPECT_EQ(Categories::ParseColor(u"123456789"), 0u); // only 8 are kept: still not 6 or 7
}

TEST_F(CategoriesTest, ColoursFollowTheItemsCategoryOrder) {
    Settings::SetText("CatColor[Work]", u"#ff0000");
    Settings::SetText("CatColor[Home]", u"0000ff");
    Settings::SetText("CatColor[Empty]", u"");
    Categories::SetNameProvider([] { return std::vector<std::u16string>{u"Work, Home", u" Sport "}; });
    Categories::LoadCategoryColors();
    std::vector<COLORREF> colors;
    Categories::GetItemColors(u"Work, Home", colors);
    EXPECT_EQ(colors, (std::vector<COLORREF>{RGB(255, 0, 0), RGB(0, 0, 255)}));
    colors.clear();
    Categories::GetItemColors(u"Home,Unknown,Work", colors);
    EXPECT_EQ(colors, (std::vector<COLORREF>{RGB(0, 0, 255), RGB(255, 0, 0)}));
    colors.clear();
    Categories::GetItemColors(u"", colors);
    EXPECT_TRUE(colors.empty());
}

TEST_F(CategoriesTest, ListIsSortedUnionOfItemNamesAndColouredNames) {
    Settings::SetText("CatColor[Zoo]", u"#123456");
    Categories::SetNameProvider([] {
        return std::vector<std::u16string>{u"Work, Home", u"Home", u" ,", u"Alpha"};
    });
    std::vector<std::u16string> names;
    Categories::LoadCategories(names);
    EXPECT_EQ(names, (std::vector<std::u16string>{u"Alpha", u"Home", u"Work", u"Zoo"}));
}

TEST_F(CategoriesTest, BirthdayAndAnniversaryColours) {
    Categories::LoadCategoryColors();
    EXPECT_EQ(Categories::GetBirthdayColor(), RGB(204, 204, 0));
    EXPECT_EQ(Categories::GetAnniversaryColor(), RGB(0, 204, 204));
    Settings::SetText("Color[ContBirthday]", u"#010203");
    Categories::LoadCategoryColors();
    EXPECT_EQ(Categories::GetBirthdayColor(), RGB(1, 2, 3));
    EXPECT_EQ(Categories::GetAnniversaryColor(), RGB(0, 204, 204));
}

TEST(FilterList, SubstringMatchIsDeliberatelyLoose) {
    const FilterList list(u"Work, Sport");
    EXPECT_TRUE(MatchesFilterList(u"HomeWork", list));
    EXPECT_FALSE(MatchesFilterList(u"Homework", list)); // case-sensitive
    EXPECT_TRUE(MatchesFilterList(u"Home,Sports", list));
    EXPECT_FALSE(MatchesFilterList(u"work", list)); // case-sensitive
    EXPECT_FALSE(MatchesFilterList(u"", list));
    EXPECT_TRUE(FilterList(u" , ").IsEmpty());
}

PimItem Appointment(const std::u16string& categories) {
    PimItem item;
    item.categories = categories;
    return item;
}

TEST(ItemFilter, AppliesCompleteExcludeIncludeInOrder) {
    PimItem doneTask = Appointment(u"Work");
    doneTask.type = PimItem::kTypeTask;
    doneTask.isComplete = true;

    ItemFilter none;
    EXPECT_TRUE(none.Keep(doneTask));
    EXPECT_TRUE(none.Keep(Appointment(u"")));

    ItemFilter hide(FilterConfig{u"", u"", true, false, false});
    EXPECT_FALSE(hide.Keep(doneTask));
    doneTask.isComplete = false;
    EXPECT_TRUE(hide.Keep(doneTask));

    // Exclusion wins over inclusion.
    ItemFilter both(FilterConfig{u"Private", u"Work", false, false, false});
    EXPECT_TRUE(both.Keep(Appointment(u"Work")));
    EXPECT_FALSE(both.Keep(Appointment(u"Work, Private")));
    EXPECT_FALSE(both.Keep(Appointment(u"Home")));
    EXPECT_FALSE(both.Keep(Appointment(u""))); // no categories: gone while an include filter is set

    ItemFilter excludeOnly(FilterConfig{u"Private", u"", false, false, false});
    EXPECT_TRUE(excludeOnly.Keep(Appointment(u"")));
    EXPECT_FALSE(excludeOnly.Keep(Appointment(u"Private")));

    PimItem birthday = Appointment(u"");
    birthday.kind = PimItem::kBirthday;
    EXPECT_TRUE(both.Keep(birthday));
}

} // namespace
} // namespace mirodate
