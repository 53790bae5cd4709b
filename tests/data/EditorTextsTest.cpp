#include "data/EditorTexts.h"
#include "data/DateTime.h"
#include "tests/data/LanguageFixture.h"

#include <gtest/gtest.h>

using namespace mirodate;

namespace {
const EditorTexts::UnitTexts kUnits = {u"minute", u"minutes", u"hour", u"hours",
                                       u"day",    u"days",    u"week", u"weeks"};
} // namespace

TEST(FormatTimeSpan, WeeksDaysHoursMinutes) {
    EXPECT_EQ(EditorTexts::FormatTimeSpan(10080, kUnits), u"1 week");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(11520, kUnits), u"1 week, 1 day");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(1500, kUnits), u"1 day, 1 hour");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(60, kUnits), u"1 hour");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(6 * 1440, kUnits), u"6 days");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(13 * 1440, kUnits), u"1 week, 6 days");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(14 * 1440 + 61, kUnits), u"2 weeks, 1 hour, 1 minute");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(7 * 1440 + 5, kUnits), u"1 week, 5 minutes");
    EXPECT_EQ(EditorTexts::FormatTimeSpan(0, kUnits), u"");
}

TEST(Reminder, RowTextAndMenus) {
    test::UseLanguage("en", "en_US.UTF-8");
    EXPECT_EQ(EditorTexts::ReminderText(false, 15), u"-");
    EXPECT_EQ(EditorTexts::ReminderText(true, 0), Lang("Immediately"));
    EXPECT_EQ(EditorTexts::ReminderText(true, 10080), u"1 week " + Lang("before"));
    EXPECT_EQ(EditorTexts::ReminderMenuKeys(false).size(), 2u);
    EXPECT_STREQ(EditorTexts::ReminderMenuKeys(true)[2], "unset");
    EXPECT_EQ(EditorTexts::BusyStatusLabel(2), Lang("BusyStatus.2"));
    EXPECT_EQ(EditorTexts::SensitivityLabel(3), Lang("Sensitivity.3"));
    EXPECT_NE(EditorTexts::SensitivityLabel(3), u"Sensitivity.3");
}

TEST(Reminder, MomentBecomesLeadTime) {
    const double start = DateTime(2026, 11, 21, 10, 0, 0).ToDate();
    std::int64_t lead = -1;
    EXPECT_FALSE(EditorTexts::LeadTimeForMoment(start, DateTime(2026, 11, 21, 10, 1, 0).ToDate(), lead));
    EXPECT_EQ(lead, -1); // refused: unchanged
    ASSERT_TRUE(EditorTexts::LeadTimeForMoment(start, start, lead));
    EXPECT_EQ(lead, 0);
    ASSERT_TRUE(EditorTexts::LeadTimeForMoment(start, DateTime(2026, 11, 21, 9, 58, 30).ToDate(), lead));
    EXPECT_EQ(lead, 1); // 90 seconds truncate to one minute
    ASSERT_TRUE(EditorTexts::LeadTimeForMoment(start, DateTime(2026, 11, 20, 9, 0, 0).ToDate(), lead));
    EXPECT_EQ(lead, 1500);
}
