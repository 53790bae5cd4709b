#include "platform/Settings.h"
#include "platform/SettingsStore.h"
#include "tests/platform/TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace mirodate;
using mirodate::test::TempDir;

namespace {
class SettingsTest : public ::testing::Test {
protected:
    void SetUp() override { Settings::UseFile(dir_.File("settings.conf")); }
    void Store(const char* name, const std::u16string& text) { Settings::SetText(name, text); }
    TempDir dir_;
};

// Sets an environment variable for one scope.
class EnvScope {
public:
    EnvScope(const char* name, const char* value) : name_(name) {
        const char* old = std::getenv(name);
        if (old)
            old_ = old, hadOld_ = true;
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~EnvScope() {
        if (hadOld_)
            setenv(name_, old_.c_str(), 1);
        else
            unsetenv(name_);
    }

private:
    const char* name_;
    std::string old_;
    bool hadOld_ = false;
};
} // namespace

TEST_F(SettingsTest, DefaultsWhenNothingIsStored) {
    EXPECT_EQ(Settings::GetLastViewMode(), 0);
    EXPECT_EQ(Settings::GetDefaultSpan(), 15u);
    EXPECT_EQ(Settings::GetDefaultReminder(), 0u);
    EXPECT_EQ(Settings::GetAgendaSize(), 4);
    EXPECT_TRUE(Settings::GetShowWeekNumber());
    EXPECT_TRUE(Settings::GetShowWindowsTaskBar());
    EXPECT_TRUE(Settings::GetSplitMonthView());
    EXPECT_TRUE(Settings::GetShowTimeOnWeek());
    EXPECT_TRUE(Settings::GetShowTasksByDueDate());
    EXPECT_FALSE(Settings::GetShowTasksByStartDate());
    EXPECT_FALSE(Settings::GetHideCompleteTasks());
    EXPECT_EQ(Settings::GetSkin(), u"Mirodate Black");
    EXPECT_EQ(Settings::GetFontFamily(), u"*auto*");
    EXPECT_EQ(Settings::GetShowTasksInViews(), u"Month|Week|Agenda|Day");
    EXPECT_EQ(Settings::GetSearchStartDelay(), 750u);
    EXPECT_EQ(Settings::GetWeekMaxEvents(5), 5);
    EXPECT_EQ(Settings::GetLastFilter(), u"");
}

TEST_F(SettingsTest, ClampsAndSignedValues) {
    Store("LastViewMode", u"-1");
    EXPECT_EQ(Settings::GetLastViewMode(), 0);
    Store("LastViewMode", u"7");
    EXPECT_EQ(Settings::GetLastViewMode(), 2);
    Store("AgendaSize", u"0");
    EXPECT_EQ(Settings::GetAgendaSize(), 1);
    Store("AgendaSize", u"9");
    EXPECT_EQ(Settings::GetAgendaSize(), 4);
    Store("TaskSort", u"-3");
    EXPECT_EQ(Settings::GetTaskSort(), 0);
    Store("TaskSort", u"3");
    EXPECT_EQ(Settings::GetTaskSort(), 3);
    Store("WeekMaxEvents", u"-1");
    EXPECT_EQ(Settings::GetWeekMaxEvents(5), -1);
    Store("MarkerMode", u"-2");
    EXPECT_EQ(Settings::GetMarkerMode(), -2);
}

TEST_F(SettingsTest, NumbersReadLikeTheCRuntime) {
    // Not empty, so not the default: the conversion stops at the first non-digit.
    Store("DefaultSpan", u"abc");
    EXPECT_EQ(Settings::GetDefaultSpan(), 0u);
    Store("DefaultSpan", u"");
    EXPECT_EQ(Settings::GetDefaultSpan(), 15u);
    Store("DefaultSpan", u"  45min");
    EXPECT_EQ(Settings::GetDefaultSpan(), 45u);
    Store("ShowWeekNumber", u"0");
    EXPECT_FALSE(Settings::GetShowWeekNumber());
    Store("ShowWeekNumber", u"x");
    EXPECT_FALSE(Settings::GetShowWeekNumber());
    // Only the first 31 characters are looked at, as a 64-byte read would.
    Store("SearchStartDelay", std::u16string(31, u'0') + u"9");
    EXPECT_EQ(Settings::GetSearchStartDelay(), 0u);
    Settings::SetNumber("SearchStartDelay", 1200);
    EXPECT_EQ(Settings::GetSearchStartDelay(), 1200u);
}

TEST_F(SettingsTest, TextValuesAndTaskViews) {
    Settings::SetSkin(u"Paper");
    EXPECT_EQ(Settings::GetSkin(), u"Paper");
    Store("Skin", u"");
    EXPECT_EQ(Settings::GetSkin(), u""); // stored text is taken as it is
    EXPECT_TRUE(Settings::IsTaskViewEnabled(u"Week"));
    Settings::SetShowTasksInViews(u"Month|Agenda");
    EXPECT_TRUE(Settings::IsTaskViewEnabled(u"Month"));
    EXPECT_TRUE(Settings::IsTaskViewEnabled(u"Agenda"));
    EXPECT_FALSE(Settings::IsTaskViewEnabled(u"Week"));
    EXPECT_FALSE(Settings::IsTaskViewEnabled(u"Day"));
    EXPECT_FALSE(Settings::IsTaskViewEnabled(u"Mon"));
}

TEST_F(SettingsTest, LanguageFollowsTheLocaleUntilOneIsStored) {
    EnvScope all("LC_ALL", nullptr);
    EnvScope time("LC_TIME", nullptr);
    {
        EnvScope lang("LANG", "fr_FR.UTF-8");
        EXPECT_EQ(Settings::GetLanguage(), u"lang.fr.txt");
    }
    {
        EnvScope lang("LANG", "sv_SE.UTF-8");
        EXPECT_EQ(Settings::GetLanguage(), u"lang.se.txt");
    }
    {
        EnvScope lang("LANG", "de_AT");
        EXPECT_EQ(Settings::GetLanguage(), u"lang.de.txt");
    }
    {
        EnvScope lang("LANG", "C");
        EXPECT_EQ(Settings::GetLanguage(), u"lang.en.txt");
    }
    {
        EnvScope lang("LANG", "ja_JP.UTF-8");
        EXPECT_EQ(Settings::GetLanguage(), u"lang.en.txt");
    }
    {
        EnvScope lang("LANG", "en_US.UTF-8");
        EnvScope override("LC_ALL", "ru_RU.UTF-8");
        EXPECT_EQ(Settings::GetLanguage(), u"lang.ru.txt");
        Settings::SetLanguage(u"lang.nl.txt");
        EXPECT_EQ(Settings::GetLanguage(), u"lang.nl.txt");
    }
}
