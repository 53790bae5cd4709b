#pragma once
// The item cache of whole months: one ordered map for appointments and one
// for tasks, keyed by (year, month). Each entry holds a loaded mark, the
// month's records in query order and, for every day of the month, the
// records that belong to that day.
//
// Day rule for appointments: an item belongs to every day its time overlaps,
// its end being exclusive, so an all-day item (00:00 to 00:00 of the next
// day) or a meeting ending at midnight stays on its own day only; an item
// without duration belongs to the day it starts.
// Day rule for tasks: a task belongs to the day of its due date and to the
// day of its start date, as the settings that place tasks say; an overdue
// task that is not complete also appears on today.
#include "data/PimItem.h"

#include <array>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace mirodate {

struct TaskPlacement {
    bool byDueDate = true;
    bool byStartDate = false;
    double today = 0.0; // today at 00:00 (DATE)
};

class MonthCache {
public:
    using Key = std::pair<int, int>; // (year, month)
    static constexpr int kMaxDays = 31;

    struct Entry {
        bool loaded = false;
        std::vector<PimItem> items;
        std::array<std::vector<std::uint32_t>, kMaxDays> days; // indices into items
    };

    Entry& Appointments(int year, int month) { return appointments_[{year, month}]; }
    Entry& Tasks(int year, int month) { return tasks_[{year, month}]; }
    const Entry* FindAppointments(int year, int month) const;
    const Entry* FindTasks(int year, int month) const;
    std::map<Key, Entry>& AppointmentMonths() { return appointments_; }
    std::map<Key, Entry>& TaskMonths() { return tasks_; }

    static void IndexAppointments(Entry& entry, int year, int month);
    static void IndexTasks(Entry& entry, int year, int month, const TaskPlacement& placement);
    // Whether an appointment belongs to the day that starts at `day` (DATE).
    static bool OverlapsDay(const PimItem& item, double day);

    // Removes every record with the OID from every month; true when any went.
    static bool RemoveOid(std::map<Key, Entry>& months, std::int32_t oid);
    void Clear();

private:
    std::map<Key, Entry> appointments_;
    std::map<Key, Entry> tasks_;
};

} // namespace mirodate
