#include "views/YearMarkers.h"

#include "data/DateTime.h"
#include "data/ItemFilter.h"
#include "data/PimStore.h"
#include "platform/Settings.h"

#include <algorithm>
#include <cmath>

namespace mirodate {

namespace {
constexpr int kMaxDaysInYear = 366;
// An end at midnight belongs to the day before (all-day items end so).
constexpr double kEndSlack = 1.0 / (24 * 60 * 60);
} // namespace

void YearMarkers::Load(int year) {
    year_ = year;
    yearStart_ = DateTime(year, 1, 1).ToDate();
    days_.assign(kMaxDaysInYear, false);
    PimStore& store = PimStore::Instance();
    items_.clear();
    // The range queries do not filter; the days should show what the month view shows.
    const ItemFilter filter(store.GetFilters());
    store.QueryAppointments(year, 1, 1, year, 12, 31, items_);
    for (const PimItem& item : items_)
        if (filter.Keep(item)) MarkSpan(item.startValue, std::max(item.startValue, item.endValue - kEndSlack));
    if (Settings::IsTaskViewEnabled(u"Month")) {
        items_.clear();
        store.QueryTasks(year, 1, 1, year, 12, 31, items_);
        const bool byDue = Settings::GetShowTasksByDueDate();
        const bool byStart = Settings::GetShowTasksByStartDate();
        for (const PimItem& task : items_) {
            if (!filter.Keep(task)) continue;
            if (byDue && task.dueDateValue != kNoDate) MarkSpan(task.dueDateValue, task.dueDateValue);
            if (byStart && task.startDateValue != kNoDate) MarkSpan(task.startDateValue, task.startDateValue);
        }
    }
}

void YearMarkers::MarkSpan(double first, double last) {
    const double firstDay = std::floor(first) - yearStart_;
    const double lastDay = std::floor(last) - yearStart_;
    if (lastDay < 0 || firstDay >= kMaxDaysInYear) return;
    const int from = static_cast<int>(std::max(0.0, firstDay));
    const int to = static_cast<int>(std::min<double>(kMaxDaysInYear - 1, lastDay));
    for (int day = from; day <= to; ++day) days_[static_cast<size_t>(day)] = true;
}

bool YearMarkers::HasItems(int month, int day) const {
    if (days_.empty() || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year_, month)) return false;
    const auto index = static_cast<long>(DateTime(year_, month, day).ToDate() - yearStart_);
    return index >= 0 && index < kMaxDaysInYear && days_[static_cast<size_t>(index)];
}

int YearMarkers::MarkedDays() const { return static_cast<int>(std::count(days_.begin(), days_.end(), true)); }

} // namespace mirodate
