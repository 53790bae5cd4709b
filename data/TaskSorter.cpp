#include "data/TaskSorter.h"

#include <algorithm>
#include <utility>

namespace mirodate {

namespace {
int Sign(double difference) {
    return difference < 0 ? -1 : (difference > 0 ? 1 : 0);
}

int CompareDates(bool aHas, double aDate, bool bHas, double bDate) {
    if (aHas != bHas)
        return aHas ? -1 : 1;
    return Sign(aDate - bDate);
}

// Higher priority first: the larger importance sorts earlier.
int HigherPriorityFirst(const PimItem& a, const PimItem& b) {
    return Sign(b.importance - a.importance);
}

// Code unit by code unit, case-sensitive; a prefix sorts before the longer text.
int CompareSubjects(const PimItem& a, const PimItem& b) {
    const int result = a.subject.compare(b.subject);
    return result < 0 ? -1 : (result > 0 ? 1 : 0);
}

int NotCompletedFirst(const PimItem& a, const PimItem& b) {
    if (a.isComplete == b.isComplete)
        return 0;
    return a.isComplete ? 1 : -1;
}

const PimItem& Row(const PimItem& row) {
    return row;
}
const PimItem& Row(const PimItem* row) {
    return *row;
}

// Hoare partitioning around a copy of the middle row; both parts of more
// than one row are sorted the same way.
template <typename T> void QuickSort(std::vector<T>& rows, int first, int last, int order) {
    while (first < last) {
        const T pivot = rows[static_cast<size_t>((first + last) / 2)];
        int left = first, right = last;
        while (left <= right) {
            while (left < last && TaskSorter::Compare(Row(rows[left]), Row(pivot), order) < 0)
                ++left;
            while (right > first && TaskSorter::Compare(Row(rows[right]), Row(pivot), order) > 0)
                --right;
            if (left <= right) {
                std::swap(rows[left], rows[right]);
                ++left;
                --right;
            }
        }
        // Recursing into the smaller part and looping on the larger keeps the
        // stack shallow whatever the data.
        if (right - first < last - left) {
            if (first < right)
                QuickSort(rows, first, right, order);
            first = left;
        } else {
            if (left < last)
                QuickSort(rows, left, last, order);
            last = right;
        }
    }
}
} // namespace

int TaskSorter::ClampOrder(int order) {
    return std::clamp(order, 0, kLastOrder);
}

int TaskSorter::Choose(int currentOrder, int key) {
    currentOrder = ClampOrder(currentOrder);
    key = std::clamp(key, kByDueDate, kByStartDate);
    if (currentOrder % kDescending != key)
        return key;
    return currentOrder < kDescending ? key + kDescending : key;
}

int TaskSorter::CompareDueDate(const PimItem& a, const PimItem& b) {
    return CompareDates(!a.noDueDate, a.dueDateValue, !b.noDueDate, b.dueDateValue);
}

int TaskSorter::CompareStartDate(const PimItem& a, const PimItem& b) {
    return CompareDates(!a.noStartDate, a.startDateValue, !b.noStartDate, b.startDateValue);
}

int TaskSorter::Compare(const PimItem& a, const PimItem& b, int order) {
    order = ClampOrder(order);
    int result = 0;
    switch (order) {
    case kByDueDate:
    case kByStartDate:
        result = order == kByDueDate ? CompareDueDate(a, b) : CompareStartDate(a, b);
        if (!result)
            result = HigherPriorityFirst(a, b);
        if (!result)
            result = CompareSubjects(a, b);
        return result;
    case kByDueDate + kDescending:
    case kByStartDate + kDescending:
        result = order == kByDueDate + kDescending ? -CompareDueDate(a, b) : -CompareStartDate(a, b);
        if (!result)
            result = -HigherPriorityFirst(a, b);
        if (!result)
            result = -CompareSubjects(a, b);
        return result;
    case kByPriority:
        result = HigherPriorityFirst(a, b);
        return result ? result : CompareDueDate(a, b);
    case kByPriority + kDescending:
        result = -HigherPriorityFirst(a, b);
        return result ? result : -CompareDueDate(a, b);
    case kBySubject:
        result = CompareSubjects(a, b);
        return result ? result : CompareDueDate(a, b);
    case kBySubject + kDescending:
        result = -CompareSubjects(a, b);
        return result ? result : -CompareDueDate(a, b);
    case kByStatus:
        result = NotCompletedFirst(a, b);
        return result ? result : CompareDueDate(a, b);
    default: // kByStatus + kDescending
        result = -NotCompletedFirst(a, b);
        return result ? result : -CompareDueDate(a, b);
    }
}

void TaskSorter::Sort(std::vector<PimItem>& rows, int order) {
    if (rows.size() > 1)
        QuickSort(rows, 0, static_cast<int>(rows.size()) - 1, ClampOrder(order));
}

void TaskSorter::Sort(std::vector<const PimItem*>& rows, int order) {
    if (rows.size() > 1)
        QuickSort(rows, 0, static_cast<int>(rows.size()) - 1, ClampOrder(order));
}

} // namespace mirodate
