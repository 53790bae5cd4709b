#pragma once
// The order of the tasks list. The setting "TaskSort" holds one of ten
// values: five keys ascending (0-4) and the same keys descending (5-9). The
// rows are sorted in place with a middle-pivot quicksort whose comparisons
// are fixed per value, so that equal keys fall back to the same second and
// third keys every time.
#include "data/PimItem.h"

#include <vector>

namespace mirodate {

class TaskSorter {
public:
    // Keys of the ascending values; add kDescending for the reverse order.
    static constexpr int kByDueDate = 0;
    static constexpr int kByPriority = 1;
    static constexpr int kBySubject = 2;
    static constexpr int kByStatus = 3;
    static constexpr int kByStartDate = 4;
    static constexpr int kDescending = 5;
    static constexpr int kLastOrder = 9;

    // A stored value outside 0..9 counts as the nearest end.
    static int ClampOrder(int order);
    // The order after the user chose `key` in the sort menu: the key in use
    // flips its direction, another key starts ascending.
    static int Choose(int currentOrder, int key);
    // Negative when `a` belongs before `b` under `order`, 0 when equal.
    static int Compare(const PimItem& a, const PimItem& b, int order);

    static void Sort(std::vector<PimItem>& rows, int order);
    // The same order on rows held elsewhere; only the pointers move.
    static void Sort(std::vector<const PimItem*>& rows, int order);

    // The two date comparisons: a dated task before an undated one, then
    // the earlier date first.
    static int CompareDueDate(const PimItem& a, const PimItem& b);
    static int CompareStartDate(const PimItem& a, const PimItem& b);
};

} // namespace mirodate
