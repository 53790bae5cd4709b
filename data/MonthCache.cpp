#include "data/MonthCache.h"

#include <algorithm>
#include <cmath>

namespace mirodate {

const MonthCache::Entry* MonthCache::FindAppointments(int year, int month) const {
    auto it = appointments_.find({year, month});
    return it == appointments_.end() ? nullptr : &it->second;
}

const MonthCache::Entry* MonthCache::FindTasks(int year, int month) const {
    auto it = tasks_.find({year, month});
    return it == tasks_.end() ? nullptr : &it->second;
}

bool MonthCache::OverlapsDay(const PimItem& item, double day) {
    const double nextDay = day + 1.0;
    if (item.startValue >= nextDay)
        return false;
    if (item.endValue > item.startValue)
        return item.endValue > day;
    return item.startValue >= day;
}

void MonthCache::IndexAppointments(Entry& entry, int year, int month) {
    for (auto& day : entry.days)
        day.clear();
    const double first = DateTime(year, month, 1).ToDate();
    const int dayCount = DaysInMonth(year, month);
    for (std::uint32_t i = 0; i < entry.items.size(); ++i) {
        const PimItem& item = entry.items[i];
        // Only the days between the item's start and end can hold it.
        const int from = std::max(0, static_cast<int>(std::floor(item.startValue - first)));
        const int to = std::min(
            dayCount - 1, static_cast<int>(std::floor(std::max(item.endValue, item.startValue) - first)));
        for (int d = from; d <= to; ++d)
            if (OverlapsDay(item, first + d))
                entry.days[d].push_back(i);
    }
}

void MonthCache::IndexTasks(Entry& entry, int year, int month, const TaskPlacement& placement) {
    for (auto& day : entry.days)
        day.clear();
    const double first = DateTime(year, month, 1).ToDate();
    const int dayCount = DaysInMonth(year, month);
    auto dayOf = [&](double date) { return static_cast<int>(std::floor(date - first)); };
    const bool byDue = placement.byDueDate || !placement.byStartDate;
    for (std::uint32_t i = 0; i < entry.items.size(); ++i) {
        const PimItem& task = entry.items[i];
        int days[3];
        int count = 0;
        if (byDue && !task.noDueDate)
            days[count++] = dayOf(task.dueDateValue);
        if (placement.byStartDate && !task.noStartDate)
            days[count++] = dayOf(task.startDateValue);
        if (!task.isComplete && !task.noDueDate && std::floor(task.dueDateValue) < placement.today)
            days[count++] = dayOf(placement.today);
        for (int k = 0; k < count; ++k) {
            const int d = days[k];
            if (d < 0 || d >= dayCount)
                continue;
            if (std::find(days, days + k, d) != days + k)
                continue; // once per day
            entry.days[d].push_back(i);
        }
    }
}

bool MonthCache::RemoveOid(std::map<Key, Entry>& months, std::int32_t oid) {
    bool removed = false;
    for (auto& [key, entry] : months) {
        const std::size_t before = entry.items.size();
        std::erase_if(entry.items, [oid](const PimItem& item) { return item.oid == oid; });
        if (entry.items.size() != before)
            removed = true;
    }
    return removed;
}

void MonthCache::Clear() {
    appointments_.clear();
    tasks_.clear();
}

} // namespace mirodate
