#pragma once
// Which days of one year have items: the appointments (every day a span
// covers) and, where the month view shows tasks, the tasks, both through the
// store's filters, read through the month cache day by day.
#include "data/PimItem.h"

#include <vector>

namespace mirodate {

class YearMarkers {
public:
    // Reads the year's items from the store.
    void Load(int year);
    // Whether every month of the year is in the store's cache already (a
    // load is quick then).
    static bool IsCached(int year, bool withTasks);
    // The marks of a year by day of the year, as Load reads them; safe on a
    // worker thread (the store serialises its queries).
    static std::vector<bool> Compute(int year, bool withTasks);
    // Whether tasks mark days (the month view's setting).
    static bool WithTasks();
    // Takes marks computed elsewhere.
    void Set(int year, std::vector<bool> days);
    // No marks (while they are being read).
    void Clear(int year);
    int Year() const { return year_; }
    // Whether the day (month 1..12, day 1..31) has an item.
    bool HasItems(int month, int day) const;
    int MarkedDays() const;

private:
    int year_ = 0;
    double yearStart_ = 0.0;
    std::vector<bool> days_; // by day of the year, from 0
};

} // namespace mirodate
