#include "data/TaskSorter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace mirodate {
namespace {

PimItem Task(int oid, double start, double due, int importance, bool complete,
             const std::u16string& subject) {
    PimItem task;
    task.type = PimItem::kTypeTask;
    task.oid = oid;
    task.SetTaskDates(start, due);
    task.importance = importance;
    task.isComplete = complete;
    task.subject = subject;
    return task;
}

// Seven tasks with ties on every key: 1 and 7 are equal in everything, 2
// differs from 1 only in the case of its subject, 3 and 5 have no start
// date, 4 and 5 no due date.
std::vector<PimItem> FixedTasks() {
    return {Task(1, 100, 110, 2, false, u"b report"),     Task(2, 100, 110, 2, false, u"B report"),
            Task(3, kNoDate, 120, 1, true, u"alpha"),     Task(4, 90, kNoDate, 0, false, u"zeta"),
            Task(5, kNoDate, kNoDate, 2, true, u"alpha"), Task(6, 100, 110, 1, false, u"b report"),
            Task(7, 100, 110, 2, false, u"b report")};
}

// The sorted oids must run through the groups in order; inside a group
// (rows that compare equal) any order is right.
void ExpectGroups(const std::vector<PimItem>& sorted, const std::vector<std::set<int>>& groups) {
    size_t at = 0;
    for (const auto& group : groups) {
        std::set<int> seen;
        for (size_t i = 0; i < group.size(); ++i, ++at) {
            ASSERT_LT(at, sorted.size());
            seen.insert(sorted[at].oid);
        }
        EXPECT_EQ(seen, group) << "at row " << at;
    }
    EXPECT_EQ(at, sorted.size());
}

struct OrderCase {
    int order;
    std::vector<std::set<int>> groups;
};

TEST(TaskSorter, EveryOrderOnTasksWithTiesAndMissingDates) {
    const std::vector<OrderCase> cases = {
        // Due date, higher priority, subject by code unit ("B" before "b").
        {0, {{2}, {1, 7}, {6}, {3}, {5}, {4}}},
        {5, {{4}, {5}, {3}, {6}, {1, 7}, {2}}},
        // Priority, highest first, then due date; undated after dated.
        {1, {{1, 2, 7}, {5}, {6}, {3}, {4}}},
        {6, {{4}, {3}, {6}, {5}, {1, 2, 7}}},
        // Subject: the capital B before the lower-case a.
        {2, {{2}, {3}, {5}, {1, 6, 7}, {4}}},
        {7, {{4}, {1, 6, 7}, {5}, {3}, {2}}},
        // Status: open tasks first.
        {3, {{1, 2, 6, 7}, {4}, {3}, {5}}},
        {8, {{5}, {3}, {4}, {1, 2, 6, 7}}},
        // Start date, then priority and subject as for the due date.
        {4, {{4}, {2}, {1, 7}, {6}, {5}, {3}}},
        {9, {{3}, {5}, {6}, {1, 7}, {2}, {4}}},
    };
    for (const OrderCase& c : cases) {
        SCOPED_TRACE("order " + std::to_string(c.order));
        // Every starting arrangement must end in the same groups.
        std::vector<PimItem> tasks = FixedTasks();
        for (int rotation = 0; rotation < 7; ++rotation) {
            std::rotate(tasks.begin(), tasks.begin() + 1, tasks.end());
            std::vector<PimItem> sorted = tasks;
            TaskSorter::Sort(sorted, c.order);
            ExpectGroups(sorted, c.groups);
            std::vector<const PimItem*> pointers;
            for (const PimItem& task : tasks)
                pointers.push_back(&task);
            TaskSorter::Sort(pointers, c.order);
            std::vector<PimItem> fromPointers;
            for (const PimItem* task : pointers)
                fromPointers.push_back(*task);
            ExpectGroups(fromPointers, c.groups);
        }
    }
}

TEST(TaskSorter, UndatedTasksSortAfterDatedAscendingAndBeforeDescending) {
    const PimItem dated = Task(1, kNoDate, 50000, 0, false, u"x");
    const PimItem undated = Task(2, kNoDate, kNoDate, 0, false, u"x");
    EXPECT_LT(TaskSorter::Compare(dated, undated, 0), 0);
    EXPECT_GT(TaskSorter::Compare(dated, undated, 5), 0);
    EXPECT_EQ(TaskSorter::Compare(undated, undated, 0), 0);
    EXPECT_EQ(TaskSorter::CompareStartDate(dated, undated), 0); // neither has a start date
}

TEST(TaskSorter, StoredValuesOutsideTheRangeCountAsTheNearestEnd) {
    EXPECT_EQ(TaskSorter::ClampOrder(-4), 0);
    EXPECT_EQ(TaskSorter::ClampOrder(42), 9);
    std::vector<PimItem> low = FixedTasks(), high = FixedTasks();
    TaskSorter::Sort(low, -1);
    TaskSorter::Sort(high, 10);
    ExpectGroups(low, {{2}, {1, 7}, {6}, {3}, {5}, {4}});
    ExpectGroups(high, {{3}, {5}, {6}, {1, 7}, {2}, {4}});
}

TEST(TaskSorter, ChoosingAKeyFlipsOrSelectsIt) {
    EXPECT_EQ(TaskSorter::Choose(1, TaskSorter::kByPriority), 6);
    EXPECT_EQ(TaskSorter::Choose(1, TaskSorter::kByDueDate), 0);
    EXPECT_EQ(TaskSorter::Choose(6, TaskSorter::kByPriority), 1);
    EXPECT_EQ(TaskSorter::Choose(7, TaskSorter::kByStatus), 3);
    int order = 0;
    order = TaskSorter::Choose(order, TaskSorter::kByStartDate);
    EXPECT_EQ(order, 4);
    order = TaskSorter::Choose(order, TaskSorter::kByStartDate);
    EXPECT_EQ(order, 9);
    order = TaskSorter::Choose(order, TaskSorter::kByStartDate);
    EXPECT_EQ(order, 4);
}

TEST(TaskSorter, LargeListsWithManyEqualKeysComeOutOrdered) {
    // Few distinct values make long runs of equal rows, the case where a
    // careless partition loops or runs off the range.
    std::mt19937 random(7);
    std::vector<PimItem> tasks;
    for (int i = 0; i < 3000; ++i) {
        const int due = static_cast<int>(random() % 4);
        const int start = static_cast<int>(random() % 3);
        tasks.push_back(Task(i, start ? 100.0 + start : kNoDate, due ? 200.0 + due : kNoDate,
                             static_cast<int>(random() % 3), random() % 2 == 0,
                             std::u16string(1, static_cast<char16_t>(u'a' + random() % 3))));
    }
    for (int order = 0; order <= 9; ++order) {
        std::vector<PimItem> sorted = tasks;
        TaskSorter::Sort(sorted, order);
        ASSERT_EQ(sorted.size(), tasks.size());
        for (size_t i = 1; i < sorted.size(); ++i)
            ASSERT_LE(TaskSorter::Compare(sorted[i - 1], sorted[i], order), 0)
                << "order " << order << " row " << i;
    }
    std::vector<PimItem> none;
    TaskSorter::Sort(none, 3);
    EXPECT_TRUE(none.empty());
}

} // namespace
} // namespace mirodate
