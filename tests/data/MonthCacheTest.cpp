#include "data/MonthCache.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

PimItem Appointment(const DateTime& start, const DateTime& end) {
    PimItem item;
    item.SetTimes(start, end);
    return item;
}

std::vector<int> DaysOf(const MonthCache::Entry& entry, std::uint32_t index) {
    std::vector<int> days;
    for (int d = 0; d < MonthCache::kMaxDays; ++d)
        for (auto i : entry.days[d])
            if (i == index)
                days.push_back(d + 1);
    return days;
}

TEST(MonthCache, AppointmentsBelongToTheDaysTheyOverlap) {
    MonthCache::Entry entry;
    entry.items.push_back(Appointment(DateTime(2026, 3, 10), DateTime(2026, 3, 11))); // all-day
    entry.items.push_back(Appointment(DateTime(2026, 3, 12, 22, 0, 0), DateTime(2026, 3, 14, 1, 0, 0)));
    entry.items.push_back(Appointment(DateTime(2026, 2, 27), DateTime(2026, 3, 3))); // from February
    entry.items.push_back(Appointment(DateTime(2026, 3, 30, 23, 0, 0), DateTime(2026, 4, 2))); // into April
    entry.items.push_back(Appointment(DateTime(2026, 3, 20, 9, 0, 0), DateTime(2026, 3, 20, 9, 0, 0)));
    entry.items.push_back(
        Appointment(DateTime(2026, 3, 21, 23, 0, 0), DateTime(2026, 3, 22)));        // ends at midnight
    entry.items.push_back(Appointment(DateTime(2026, 2, 28), DateTime(2026, 3, 1))); // ends as March starts
    MonthCache::IndexAppointments(entry, 2026, 3);
    EXPECT_EQ(DaysOf(entry, 0), (std::vector<int>{10}));
    EXPECT_EQ(DaysOf(entry, 1), (std::vector<int>{12, 13, 14}));
    EXPECT_EQ(DaysOf(entry, 2), (std::vector<int>{1, 2}));
    EXPECT_EQ(DaysOf(entry, 3), (std::vector<int>{30, 31}));
    EXPECT_EQ(DaysOf(entry, 4), (std::vector<int>{20}));
    EXPECT_EQ(DaysOf(entry, 5), (std::vector<int>{21}));
    EXPECT_TRUE(DaysOf(entry, 6).empty());
}

TEST(MonthCache, TasksByTheirDatesAndOverdueOnToday) {
    auto task = [](double start, double due, bool complete) {
        PimItem item;
        item.type = PimItem::kTypeTask;
        item.SetTaskDates(start, due);
        item.isComplete = complete;
        return item;
    };
    const double today = DateTime(2026, 3, 15).ToDate();
    MonthCache::Entry entry;
    entry.items.push_back(task(DateTime(2026, 3, 2).ToDate(), DateTime(2026, 3, 20).ToDate(), false));
    entry.items.push_back(task(kNoDate, DateTime(2026, 3, 14).ToDate(), false)); // overdue
    entry.items.push_back(task(kNoDate, DateTime(2026, 3, 14).ToDate(), true));  // done: not carried
    entry.items.push_back(task(kNoDate, DateTime(2026, 2, 1).ToDate(), false));  // overdue from February
    entry.items.push_back(task(kNoDate, kNoDate, false));                        // no dates: no day

    MonthCache::IndexTasks(entry, 2026, 3, TaskPlacement{true, false, today});
    EXPECT_EQ(DaysOf(entry, 0), (std::vector<int>{20}));
    EXPECT_EQ(DaysOf(entry, 1), (std::vector<int>{14, 15}));
    EXPECT_EQ(DaysOf(entry, 2), (std::vector<int>{14}));
    EXPECT_EQ(DaysOf(entry, 3), (std::vector<int>{15}));
    EXPECT_TRUE(DaysOf(entry, 4).empty());

    MonthCache::IndexTasks(entry, 2026, 3, TaskPlacement{true, true, today});
    EXPECT_EQ(DaysOf(entry, 0), (std::vector<int>{2, 20}));
    MonthCache::IndexTasks(entry, 2026, 3, TaskPlacement{false, true, today});
    EXPECT_EQ(DaysOf(entry, 0), (std::vector<int>{2}));
}

} // namespace
} // namespace mirodate
