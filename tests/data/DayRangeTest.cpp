// DayRange: the whole days it covers, how it is built and when it is invalid.
#include "data/DayRange.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

TEST(DayRangeTest, CoversWholeDaysFromMidnightToTheLastSecond) {
    const DayRange range(2024, 2, 28, 2024, 3, 1);
    ASSERT_TRUE(range.IsValid());
    EXPECT_EQ(range.Start(), DateTime(2024, 2, 28));
    EXPECT_EQ(range.End(), DateTime(2024, 3, 1, 23, 59, 59));
    EXPECT_TRUE(range.Contains(DateTime(2024, 2, 29, 12, 0, 0)));
    EXPECT_TRUE(range.Contains(DateTime(2024, 3, 1, 23, 59, 59)));
    EXPECT_FALSE(range.Contains(DateTime(2024, 3, 2)));
    EXPECT_FALSE(range.Contains(DateTime(2024, 2, 27, 23, 59, 59)));
}

TEST(DayRangeTest, MonthAndDaysBuildTheSameRangesAsTheNumbers) {
    // Leap and common Februaries, a 31-day month.
    EXPECT_EQ(DayRange::Month(2024, 2).End(), DateTime(2024, 2, 29, 23, 59, 59));
    EXPECT_EQ(DayRange::Month(2023, 2).End(), DateTime(2023, 2, 28, 23, 59, 59));
    EXPECT_EQ(DayRange::Month(2026, 12).Start(), DateTime(2026, 12, 1));
    EXPECT_EQ(DayRange::Month(2026, 12).End(), DateTime(2026, 12, 31, 23, 59, 59));
    // Times of the given dates do not matter.
    const DayRange days = DayRange::Days(DateTime(2026, 3, 5, 17, 30, 0), DateTime(2026, 3, 7, 1, 0, 0));
    EXPECT_EQ(days.Start(), DateTime(2026, 3, 5));
    EXPECT_EQ(days.End(), DateTime(2026, 3, 7, 23, 59, 59));
    const DayRange one = DayRange::OneDay(DateTime(2026, 3, 5, 8, 0, 0));
    EXPECT_EQ(one.Start(), DateTime(2026, 3, 5));
    EXPECT_EQ(one.End(), DateTime(2026, 3, 5, 23, 59, 59));
}

TEST(DayRangeTest, ImpossibleDatesMakeItInvalidInsteadOfBeingCorrected) {
    EXPECT_FALSE(DayRange().IsValid());
    EXPECT_FALSE(DayRange(2026, 2, 29, 2026, 3, 1).IsValid());
    EXPECT_FALSE(DayRange(2026, 1, 1, 2026, 1, 32).IsValid());
    EXPECT_FALSE(DayRange::Month(2026, 0).IsValid());
    EXPECT_FALSE(DayRange::Month(2026, 13).IsValid());
    EXPECT_FALSE(DayRange::Days(DateTime(), DateTime(2026, 1, 1)).IsValid());
    EXPECT_FALSE(DayRange().Contains(DateTime(2026, 1, 1)));
}

} // namespace
} // namespace mirodate
