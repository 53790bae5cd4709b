#pragma once
// Which days of one year have items: the appointments (every day a span
// covers) and, where the month view shows tasks, the tasks, both through the
// store's filters. Read in one query per kind for the whole year.
#include "data/PimItem.h"

#include <vector>

namespace mirodate {

class YearMarkers {
public:
    // Reads the year's items from the store.
    void Load(int year);
    int Year() const { return year_; }
    // Whether the day (month 1..12, day 1..31) has an item.
    bool HasItems(int month, int day) const;
    int MarkedDays() const;

private:
    void MarkSpan(double first, double last);

    int year_ = 0;
    double yearStart_ = 0.0;
    std::vector<bool> days_; // by day of the year, from 0
    std::vector<PimItem> items_; // reused by every load
};

} // namespace mirodate
