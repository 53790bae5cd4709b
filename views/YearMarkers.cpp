#include "views/YearMarkers.h"

#include "data/DateTime.h"
#include "data/PimStore.h"
#include "platform/Settings.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kMaxDaysInYear = 366;
} // namespace

void YearMarkers::Load(int year) {
    Set(year, Compute(year, WithTasks()));
}

bool YearMarkers::WithTasks() {
    return Settings::IsTaskViewEnabled(u"Month");
}

bool YearMarkers::IsCached(int year, bool withTasks) {
    const PimStore& store = PimStore::Instance();
    for (int month = 1; month <= 12; ++month)
        if (!store.IsMonthLoaded(year, month, false) ||
            (withTasks && !store.IsMonthLoaded(year, month, true)))
            return false;
    return true;
}

std::vector<bool> YearMarkers::Compute(int year, bool withTasks) {
    std::vector<bool> days(kMaxDaysInYear, false);
    PimStore& store = PimStore::Instance();
    std::vector<PimItem> items;
    // Through the month cache, as the month grid reads its days: filtered,
    // spans split into days, and the months kept for the month view after.
    int index = 0;
    for (int month = 1; month <= 12; ++month) {
        store.FillMonth(year, month, true, withTasks);
        for (int day = 1; day <= DaysInMonth(year, month); ++day, ++index) {
            items.clear();
            store.GetDayAppointments(year, month, day, items);
            if (items.empty() && withTasks)
                store.GetDayTasks(year, month, day, items);
            days[static_cast<size_t>(index)] = !items.empty();
        }
    }
    return days;
}

void YearMarkers::Set(int year, std::vector<bool> days) {
    year_ = year;
    yearStart_ = DateTime(year, 1, 1).ToDate();
    days_ = std::move(days);
    days_.resize(kMaxDaysInYear, false);
}

void YearMarkers::Clear(int year) {
    Set(year, {});
}

bool YearMarkers::HasItems(int month, int day) const {
    if (days_.empty() || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year_, month))
        return false;
    const auto index = static_cast<long>(DateTime(year_, month, day).ToDate() - yearStart_);
    return index >= 0 && index < kMaxDaysInYear && days_[static_cast<size_t>(index)];
}

int YearMarkers::MarkedDays() const {
    return static_cast<int>(std::count(days_.begin(), days_.end(), true));
}

} // namespace mirodate
