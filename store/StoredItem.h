#pragma once
// What the vdir store knows of one file: where it is, the stamp it had when
// read, and the item it holds. Published entries are never changed; a new
// reading replaces the entry.
#include "data/PimRecord.h"
#include "data/Reminder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class IcsAlarms;
class IcsItem;

// The occurrences a series has in a window, as its expansion gave them, so
// that a later query inside the window (the month of today, at every start)
// needs neither the file nor the rule.
struct StoredExpansion {
    double from = 0.0; // occurrences starting in [from, before), by start
    double before = 0.0;
    std::vector<PimRecord> occurrences;
};

struct StoredItem {
    int directory = 0; // index into the store's folder names
    std::string fileName;
    std::int64_t size = 0;
    std::int64_t mtimeNs = 0;
    bool readable = false; // false: skipped, never rewritten
    std::string problem;   // why it was skipped
    int folder = 0;        // kFolderCalendar, kFolderTasks or kFolderContacts
    std::string uid;
    PimRecord record; // the item; a series as its first occurrence
    bool series = false;
    double seriesEnd = 0.0; // kNoDate when open
    double longest = 0.0;   // longest occurrence in days
    // The parsed file of a series, read when first expanded.
    std::shared_ptr<const IcsItem> parsed;
    // Its last kept expansion (null: none), also kept in the index.
    std::shared_ptr<const StoredExpansion> expansion;
    // Its alarms, read when reminders are first asked for (null: none), and
    // the reminders of the last window asked for, kept until the file
    // changes (a change publishes a new entry).
    bool alarmsRead = false;
    std::shared_ptr<const IcsAlarms> alarms;
    double remindersFrom = 0.0;
    double remindersBefore = 0.0;
    std::vector<Reminder> reminders;
};

} // namespace mirodate
