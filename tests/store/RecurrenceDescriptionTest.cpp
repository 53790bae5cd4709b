// Recurrence rules as other calendar programs write them, read into the
// record and described: each sentence must be true of its rule, and a rule
// the record cannot say gets the plain generic text.
#include "data/DateTime.h"
#include "data/RecurrenceDescriber.h"
#include "store/RecurrenceRule.h"
#include "tests/data/LanguageFixture.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

using namespace mirodate;

namespace {
struct Case {
    const char* source; // who writes rules like this
    const char* rrule;
    std::u16string expected;
};

class RealRules : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "Europe/Berlin", 1);
        tzset();
        test::UseLanguage("en", "en_US.UTF-8");
    }
    static std::u16string Describe(const char* rrule, double until = 0.0) {
        // A series starting on Tuesday 10 March 2026 at 09:00.
        const double start = DateTime(2026, 3, 10, 9, 0, 0).ToDate();
        RecurrencePattern pattern;
        EXPECT_TRUE(RecurrenceRule::ToPattern(rrule, start, until, pattern)) << rrule;
        return RecurrenceDescriber::Describe(pattern);
    }
};
} // namespace

TEST_F(RealRules, RulesThatFitTheRecord) {
    const Case cases[] = {
        {"Google", "FREQ=WEEKLY;BYDAY=MO,WE,FR", u"Every week on Monday, Wednesday, Friday (no end date)"},
        {"Google", "FREQ=WEEKLY;WKST=SU;INTERVAL=2;BYDAY=TU,TH",
         u"Every 2 weeks on Tuesday, Thursday (no end date)"},
        {"Google", "FREQ=MONTHLY;BYDAY=2TU", u"On the second Tuesday of every month (no end date)"},
        {"Google", "FREQ=MONTHLY;BYDAY=-1FR", u"On the last Friday of every month (no end date)"},
        {"Google", "FREQ=YEARLY", u"Every 1 year(s) on March 10th (no end date)"},
        {"Outlook", "FREQ=MONTHLY;BYSETPOS=1;BYDAY=MO,TU,WE,TH,FR",
         u"On the first weekday of every month (no end date)"},
        {"Outlook", "FREQ=YEARLY;BYMONTHDAY=15;BYMONTH=3", u"Every 1 year(s) on March 15th (no end date)"},
        {"Outlook", "FREQ=WEEKLY;INTERVAL=1;BYDAY=MO,TU,WE,TH,FR;WKST=SU", u"Every weekday (no end date)"},
        {"Thunderbird", "FREQ=WEEKLY;COUNT=10;BYDAY=MO,TU,WE,TH,FR", u"Every weekday for 10 occurrences"},
        {"Thunderbird", "FREQ=DAILY;COUNT=5", u"Every day for 5 occurrences"},
        {"Thunderbird", "FREQ=MONTHLY;INTERVAL=3", u"Every 3 months on the 10th (no end date)"},
        {"Apple", "FREQ=YEARLY;INTERVAL=1;BYMONTH=11;BYDAY=4TH",
         u"Every 1 year(s) on the fourth Thursday of November (no end date)"},
        {"Apple", "FREQ=DAILY;INTERVAL=2", u"Every 2 days (no end date)"},
        // Times of day are left out, but what is said stays true.
        {"Apple", "FREQ=DAILY;BYHOUR=9,17", u"Every day (no end date)"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Describe(c.rrule), c.expected) << c.source << ": " << c.rrule;
}

TEST_F(RealRules, UntilInUtcIsShownAsTheLocalEndDate) {
    // Outlook writes UNTIL as the last occurrence's start in UTC.
    const double until = DateTime(2026, 12, 31, 9, 0, 0).ToDate();
    EXPECT_EQ(Describe("FREQ=WEEKLY;UNTIL=20261231T080000Z;INTERVAL=1;BYDAY=TH;WKST=SU", until),
              u"Every week on Thursday until 12/31/26");
}

TEST_F(RealRules, RulesWithoutARecordAreNotMisdescribed) {
    const std::u16string generic = Lang("RepeatsCustom");
    const char* const rules[] = {
        "FREQ=MONTHLY;INTERVAL=1;BYMONTHDAY=1,15",         // Apple: twice a month
        "FREQ=MONTHLY;BYMONTHDAY=-1",                      // Thunderbird: the last day of the month
        "FREQ=HOURLY;INTERVAL=2;COUNT=4",                  // every two hours
        "FREQ=YEARLY;BYMONTH=1,7;BYMONTHDAY=1",            // twice a year
        "FREQ=MONTHLY;BYDAY=1MO,3MO",                      // first and third Monday
        "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=1,-1", // first and last weekday
        "FREQ=MONTHLY;BYDAY=-2FR",                         // the second-to-last Friday
        "FREQ=DAILY;INTERVAL=3;BYDAY=MO,TU",               // every third day, weekdays only
        "FREQ=YEARLY;BYWEEKNO=20",
    };
    for (const char* rule : rules) {
        const std::u16string text = Describe(rule);
        EXPECT_EQ(text.substr(0, generic.size()), generic) << rule;
    }
    // The end condition is still told as it is.
    EXPECT_EQ(Describe("FREQ=HOURLY;INTERVAL=2;COUNT=4"), generic + u" for 4 occurrences");
}
