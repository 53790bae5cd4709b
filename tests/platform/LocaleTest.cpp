#include "platform/Locale.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace mirodate;

namespace {
// Runs a check under one locale, whatever the machine has set.
class LocaleScope {
public:
    explicit LocaleScope(const char* name) {
        if (const char* old = std::getenv("LC_ALL"))
            old_ = old;
        setenv("LC_ALL", name, 1);
    }
    ~LocaleScope() {
        if (old_.empty())
            unsetenv("LC_ALL");
        else
            setenv("LC_ALL", old_.c_str(), 1);
    }

private:
    std::string old_;
};
} // namespace

TEST(Locale, FirstDayOfWeekAndLanguage) {
    {
        LocaleScope scope("de_DE.UTF-8");
        EXPECT_EQ(Locale::FirstDayOfWeek(), 1);
        EXPECT_EQ(Locale::EnglishLanguageName(), "German");
    }
    {
        LocaleScope scope("en_US.UTF-8");
        EXPECT_EQ(Locale::FirstDayOfWeek(), 0);
    }
    {
        LocaleScope scope("POSIX");
        EXPECT_EQ(Locale::UserLocaleName(), "en_US");
    }
}

TEST(Locale, NamesAndShortFormats) {
    LocaleScope scope("de_DE.UTF-8");
    EXPECT_EQ(Locale::DayName(0), u"Sonntag");
    EXPECT_EQ(Locale::DayName(6), u"Samstag");
    EXPECT_EQ(Locale::DayName(7), u"");
    EXPECT_EQ(Locale::MonthName(3), u"M\u00e4rz");
    EXPECT_EQ(Locale::MonthName(13), u"");
    SYSTEMTIME when;
    when.wYear = 2009;
    when.wMonth = 12;
    when.wDay = 31;
    when.wHour = 18;
    when.wMinute = 5;
    EXPECT_EQ(Locale::FormatShortDate(when), u"31.12.09");
    EXPECT_EQ(Locale::FormatShortTime(when), u"18:05");
    {
        LocaleScope russian("ru_RU.UTF-8");
        // The stand-alone form is for headers; inside a date the genitive is used.
        EXPECT_EQ(Locale::MonthName(1, false, true), u"\u044f\u043d\u0432\u0430\u0440\u044c");
        EXPECT_NE(Locale::MonthName(1), Locale::MonthName(1, false, true));
    }
}
