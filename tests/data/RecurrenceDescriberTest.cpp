#include "data/RecurrenceDescriber.h"
#include "data/DateTime.h"
#include "tests/data/LanguageFixture.h"

#include <gtest/gtest.h>

using namespace mirodate;
using R = RecurrencePattern;

namespace {
R Pattern(std::int32_t type, std::int32_t interval = 1) {
    R p;
    p.RecurrenceType = type;
    p.Interval = interval;
    return p;
}

class DescriberEnglish : public ::testing::Test {
protected:
    void SetUp() override { test::UseLanguage("en", "en_US.UTF-8"); }
    static std::u16string Text(const char* key) { return Lang(key); }
};
} // namespace

TEST_F(DescriberEnglish, NotRecurringIsOnceAlone) {
    R p;
    p.Occurrences = 5; // no end text, whatever the record holds
    EXPECT_EQ(RecurrenceDescriber::Describe(p), Text("Once"));
}

TEST_F(DescriberEnglish, WeeklyDecisionTable) {
    R p = Pattern(R::kWeekly, 3);
    p.DayOfWeekMask = 62;
    // Every third week on weekdays still reads as every weekday: the interval is dropped.
    EXPECT_EQ(RecurrenceDescriber::Describe(p), Text("EveryWeekDay") + u" (" + Text("infinitely") + u")");
    p.DayOfWeekMask = 65;
    EXPECT_EQ(RecurrenceDescriber::Describe(p), Text("EveryWeekEndDay") + u" (" + Text("infinitely") + u")");
    p = Pattern(R::kWeekly, 1);
    p.DayOfWeekMask = 127;
    std::u16string expected = Text("EveryWeekOnX");
    expected.replace(expected.find(u"$DaysOfWeek"), 11, Text("day"));
    EXPECT_EQ(RecurrenceDescriber::Describe(p), expected + u" (" + Text("infinitely") + u")");
    p = Pattern(R::kWeekly, 2);
    p.DayOfWeekMask = R::kMonday | R::kThursday | R::kSunday;
    p.Occurrences = 10;
    EXPECT_EQ(RecurrenceDescriber::Describe(p),
              u"Every 2 weeks on Sunday, Monday, Thursday for 10 occurrences");
}

TEST_F(DescriberEnglish, DaysAndOrdinals) {
    EXPECT_EQ(RecurrenceDescriber::DaysText(0), u"");
    EXPECT_EQ(RecurrenceDescriber::DaysText(R::kSaturday | R::kTuesday), u"Tuesday, Saturday");
    EXPECT_EQ(RecurrenceDescriber::InstanceText(0), u"---");
    EXPECT_EQ(RecurrenceDescriber::InstanceText(6), u"---");
    EXPECT_EQ(RecurrenceDescriber::InstanceText(5), Text("last"));
    for (int day : {1, 21, 31})
        EXPECT_EQ(RecurrenceDescriber::SuffixText(day), Text("Suffix_st")) << day;
    for (int day : {2, 22})
        EXPECT_EQ(RecurrenceDescriber::SuffixText(day), Text("Suffix_nd")) << day;
    for (int day : {3, 23})
        EXPECT_EQ(RecurrenceDescriber::SuffixText(day), Text("Suffix_rd")) << day;
    for (int day : {4, 11, 12, 13, 20, 30})
        EXPECT_EQ(RecurrenceDescriber::SuffixText(day), Text("Suffix_th")) << day;
}

TEST_F(DescriberEnglish, MonthlyAndYearly) {
    R p = Pattern(R::kMonthly, 1);
    p.DayOfMonth = 22;
    EXPECT_EQ(RecurrenceDescriber::Describe(p), u"On the 22nd of every month (no end date)");
    p = Pattern(R::kMonthNth, 2);
    p.Instance = 0;
    p.DayOfWeekMask = R::kFriday;
    const std::u16string nth = RecurrenceDescriber::Describe(p);
    EXPECT_NE(nth.find(u"---"), std::u16string::npos);
    EXPECT_NE(nth.find(u"Friday"), std::u16string::npos);
    EXPECT_EQ(nth.find(u"$"), std::u16string::npos);
    p = Pattern(R::kYearly, 1);
    p.DayOfMonth = 3;
    p.MonthOfYear = 3;
    const std::u16string yearly = RecurrenceDescriber::Describe(p);
    EXPECT_NE(yearly.find(u"3rd"), std::u16string::npos);
    EXPECT_NE(yearly.find(u"March"), std::u16string::npos);
    p = Pattern(R::kYearNth, 1);
    p.Instance = 4;
    p.DayOfWeekMask = R::kThursday;
    p.MonthOfYear = 11;
    const std::u16string thanksgiving = RecurrenceDescriber::Describe(p);
    EXPECT_NE(thanksgiving.find(Text("fourth")), std::u16string::npos);
    EXPECT_NE(thanksgiving.find(u"Thursday"), std::u16string::npos);
    EXPECT_NE(thanksgiving.find(u"November"), std::u16string::npos);
    // A type without a rule leaves only the blank and the end text.
    EXPECT_EQ(RecurrenceDescriber::Describe(Pattern(4)), u" (" + Text("infinitely") + u")");
}

TEST_F(DescriberEnglish, EndTexts) {
    EXPECT_EQ(RecurrenceDescriber::EndText(0, 0.0), u"(" + Text("infinitely") + u")");
    const double end = DateTime(2010, 3, 31).ToDate();
    EXPECT_EQ(RecurrenceDescriber::EndText(0, end), u"until 3/31/10");
    // A count wins over an end date.
    EXPECT_EQ(RecurrenceDescriber::EndText(10, end), u"for 10 occurrences");
    R p = Pattern(R::kDaily, 1);
    p.PatternEndDate = end;
    EXPECT_EQ(RecurrenceDescriber::Describe(p), Text("Daily") + u" until 3/31/10");
    p.Interval = 4;
    EXPECT_EQ(RecurrenceDescriber::Describe(p), u"Every 4 days until 3/31/10");
}

TEST_F(DescriberEnglish, RulesWithoutARecordAreDescribedGenerically) {
    R p = Pattern(R::kMonthly, 1);
    p.DayOfMonth = 1;
    p.RuleFit = R::kNoFit; // e.g. BYMONTHDAY=1,15
    EXPECT_EQ(RecurrenceDescriber::Describe(p), Text("RepeatsCustom") + u" (" + Text("infinitely") + u")");
    EXPECT_EQ(p.RuleFit, R::kNoFit);
}

TEST(DescriberGerman, UsesTheLanguageAndKeepsEnglishComparisons) {
    test::UseLanguage("de", "de_DE.UTF-8");
    R p = Pattern(R::kWeekly, 2);
    p.DayOfWeekMask = 62;
    const std::u16string weekdays = RecurrenceDescriber::Describe(p);
    // The German word for "weekday" is not the English one, so the special
    // key is not reached and the interval is kept.
    EXPECT_EQ(weekdays.find(Lang("EveryWeekDay")), std::u16string::npos);
    EXPECT_NE(weekdays.find(u"2"), std::u16string::npos);
    EXPECT_NE(weekdays.find(Lang("weekday")), std::u16string::npos);
    R m = Pattern(R::kYearly, 1);
    m.DayOfMonth = 31;
    m.MonthOfYear = 12;
    m.PatternEndDate = DateTime(2012, 12, 31).ToDate();
    const std::u16string yearly = RecurrenceDescriber::Describe(m);
    EXPECT_NE(yearly.find(u"Dezember"), std::u16string::npos);
    EXPECT_NE(yearly.find(u"31.12.12"), std::u16string::npos);
    EXPECT_EQ(yearly.find(u"$"), std::u16string::npos);
}
