#include "data/DateTime.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

TEST(DateTime, KnownDatesAndFields) {
    EXPECT_DOUBLE_EQ(DateTime(1899, 12, 30).ToDate(), 0.0);
    EXPECT_DOUBLE_EQ(DateTime(1900, 1, 1).ToDate(), 2.0);
    EXPECT_DOUBLE_EQ(DateTime(4501, 1, 1).ToDate(), kNoDate);
    const DateTime t(2026, 3, 15, 18, 30, 45);
    EXPECT_DOUBLE_EQ(t.ToDate(), 46096.0 + (18 * 3600 + 30 * 60 + 45) / 86400.0);
    EXPECT_EQ(t.GetYear(), 2026);
    EXPECT_EQ(t.GetMonth(), 3);
    EXPECT_EQ(t.GetDay(), 15);
    EXPECT_EQ(t.GetHour(), 18);
    EXPECT_EQ(t.GetMinute(), 30);
    EXPECT_EQ(t.GetSecond(), 45);
    EXPECT_EQ(t.GetDayOfWeek(), 0); // a Sunday
    EXPECT_EQ(t.DayNumber(), 46096);
}

TEST(DateTime, ImpossibleDatesAreInvalid) {
    EXPECT_FALSE(DateTime(2026, 2, 30).IsValid());
    EXPECT_FALSE(DateTime(2026, 0, 1).IsValid());
    EXPECT_FALSE(DateTime(2026, 1, 0).IsValid());
    EXPECT_FALSE(DateTime(2026, 4, 31).IsValid());
    EXPECT_FALSE(DateTime(2026, 1, 1, 24, 0, 0).IsValid());
    EXPECT_FALSE(DateTime(1900, 2, 29).IsValid());
    EXPECT_TRUE(DateTime(2000, 2, 29).IsValid());
    EXPECT_TRUE(DateTime(2024, 2, 29).IsValid());
    EXPECT_FALSE(DateTime().IsValid());
    DateTime t(2026, 1, 1);
    EXPECT_FALSE(t.SetDateTime(2026, 2, 30, 0, 0, 0));
    EXPECT_FALSE(t.IsValid());
}

TEST(DateTime, MonthLengths) {
    EXPECT_EQ(DaysInMonth(2026, 2), 28);
    EXPECT_EQ(DaysInMonth(2024, 2), 29);
    EXPECT_EQ(DaysInMonth(1900, 2), 28);
    EXPECT_EQ(DaysInMonth(2000, 2), 29);
    EXPECT_EQ(DaysInMonth(2026, 4), 30);
    EXPECT_EQ(DaysInMonth(2026, 12), 31);
    EXPECT_EQ(DaysInMonth(2026, 13), 0);
}

TEST(DateTime, SpansAcrossMonthsYearsAndTheEpoch) {
    const DateTime t(2026, 12, 31, 23, 0, 0);
    const DateTime later = t + DateTimeSpan(0, 2, 0, 0);
    EXPECT_EQ(later, DateTime(2027, 1, 1, 1, 0, 0));
    EXPECT_EQ(later - DateTimeSpan(0, 2, 0, 0), t);
    EXPECT_EQ((later - t).GetTotalSeconds(), 7200);
    EXPECT_EQ((t - later).GetTotalSeconds(), -7200);
    // Before 30 December 1899 the DATE counts days back but time forward.
    const DateTime before(1899, 12, 29, 6, 0, 0);
    EXPECT_DOUBLE_EQ(before.ToDate(), -1.25);
    EXPECT_EQ(before + DateTimeSpan(0, 18, 0, 0), DateTime(1899, 12, 30));
    EXPECT_EQ((DateTime(1899, 12, 30) - before).GetTotalSeconds(), 18 * 3600);
    EXPECT_LT(before, DateTime(1899, 12, 29, 7, 0, 0));
}

TEST(DateTime, SystemTimeRoundTripRoundsToTheSecond) {
    SYSTEMTIME st;
    ASSERT_TRUE(VariantTimeToSystemTime(46096.0 + 0.4999999 / 86400.0 + 59.0 / 86400.0, &st));
    EXPECT_EQ(st.wSecond, 59);
    ASSERT_TRUE(VariantTimeToSystemTime(46096.0 + 86399.7 / 86400.0, &st));
    EXPECT_EQ(st.wDay, 16);
    EXPECT_EQ(st.wHour, 0);
    double date = 0;
    SYSTEMTIME bad;
    bad.wYear = 2026;
    bad.wMonth = 2;
    bad.wDay = 29;
    EXPECT_FALSE(SystemTimeToVariantTime(bad, &date));
    EXPECT_EQ(DateTime::FromSystemTime(DateTime(2026, 7, 4, 12, 0, 0).ToSystemTime()),
              DateTime(2026, 7, 4, 12, 0, 0));
}

} // namespace
} // namespace mirodate
