#pragma once
// The one object between the views and the PIM source: it holds the source,
// runs the date-range queries with the restriction strings of the object
// model, keeps the month cache all views read, applies the category filters
// and keeps the cache current when single items change.
#include "data/DayRange.h"
#include "data/ItemFilter.h"
#include "data/MonthCache.h"
#include "data/PimItem.h"
#include "data/PimSource.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace mirodate {

class PimStore {
public:
    // Progress after each month of a fill (0..kProgressSpan).
    using ProgressCallback = void (*)(int progress, void* context);
    static constexpr int kProgressSpan = 80;
    // Birthday and anniversary items are listed by the search this far ahead.
    static constexpr int kSearchDays = 366;

    struct SearchOptions {
        bool appointments = true;
        bool tasks = true;
        bool birthdays = true;
        bool anniversaries = true;
    };

    PimStore() = default;
    ~PimStore();
    PimStore(const PimStore&) = delete;
    PimStore& operator=(const PimStore&) = delete;

    // The program's store.
    static PimStore& Instance();

    // Takes the source, logs on and asks the calendar, tasks and contacts
    // folders, in this order, for change reports of both origins, which go
    // to `sink`. Returns at once with true when already open.
    bool Open(std::unique_ptr<PimSource> source, PimSource::NotificationSink sink = {});
    bool IsOpen() const { return source_ != nullptr; }
    void Close();
    PimSource* Source() { return source_.get(); }

    // Keeps the filters (and writes LastFilter and ExcludeFilter) unless all
    // equal the ones held.
    void SetFilters(const std::u16string& excludeFilter, const std::u16string& categoryFilter,
                    bool hideCompleteTasks, bool showBirthdays, bool showAnniversaries);
    FilterConfig GetFilters() const;

    // Appointments (one record per occurrence) overlapping the range, sorted
    // by start, followed by the birthdays and anniversaries the switches ask
    // for. False when the store is closed, the range invalid or the query failed.
    bool QueryAppointments(const DayRange& range, std::vector<PimItem>& items);
    // Tasks of the range by the task settings, sorted by due date.
    bool QueryTasks(const DayRange& range, std::vector<PimItem>& items);
    // Every task the category filter keeps (completed ones unless the
    // filter hides them), in the store's due-date order.
    bool QueryAllTasks(std::vector<PimItem>& items);
    // Birthdays and anniversaries of the range, whatever the switches say.
    void QueryContactDates(const DayRange& range, bool birthdays, bool anniversaries,
                           std::vector<PimItem>& items);

    // The same with the range as six numbers, for callers not yet moved over.
    bool QueryAppointments(int firstYear, int firstMonth, int firstDay, int lastYear, int lastMonth,
                           int lastDay, std::vector<PimItem>& items) {
        return QueryAppointments(DayRange(firstYear, firstMonth, firstDay, lastYear, lastMonth, lastDay),
                                 items);
    }
    bool QueryTasks(int firstYear, int firstMonth, int firstDay, int lastYear, int lastMonth, int lastDay,
                    std::vector<PimItem>& items) {
        return QueryTasks(DayRange(firstYear, firstMonth, firstDay, lastYear, lastMonth, lastDay), items);
    }
    void QueryContactDates(int firstYear, int firstMonth, int firstDay, int lastYear, int lastMonth,
                           int lastDay, bool birthdays, bool anniversaries, std::vector<PimItem>& items) {
        QueryContactDates(DayRange(firstYear, firstMonth, firstDay, lastYear, lastMonth, lastDay), birthdays,
                          anniversaries, items);
    }

    // Makes sure the cache holds the month; true when it did any work.
    bool FillMonth(int year, int month, bool withAppointments, bool withTasks,
                   ProgressCallback progress = nullptr, void* context = nullptr);
    // `count` months from (year, month) on, with progress after each.
    bool FillMonths(int year, int month, int count, bool withAppointments, bool withTasks,
                    ProgressCallback progress = nullptr, void* context = nullptr);
    void ClearCache();
    bool IsMonthLoaded(int year, int month, bool tasks) const;

    // The filtered items of one day, from the cache (filled on demand).
    void GetDayAppointments(int year, int month, int day, std::vector<PimItem>& items);
    void GetDayTasks(int year, int month, int day, std::vector<PimItem>& items);

    int GetItemKind(std::int32_t oid);
    // A record of the source as the views' item (an appointment or a task).
    static PimItem ItemFromRecord(const PimRecord& record);
    void ReloadAppointment(std::int32_t oid);
    void RemoveAppointment(std::int32_t oid);
    void ReloadTask(std::int32_t oid);
    void RemoveTask(std::int32_t oid);
    void ReloadContact(std::int32_t oid);
    // Applies a change report to the cache (remove, or remove and reload).
    void ApplyNotification(const PimNotification& notification);

    // Appointments starting from today to a year ahead and tasks whose
    // subject, location, notes or categories contain `text`, with the
    // birthdays and anniversaries of that year whose title ("Name (age)")
    // does. The text is taken literally and compared case folded, so
    // "STRASSE" finds "Straße".
    void Search(const std::u16string& text, const SearchOptions& options, std::vector<PimItem>& appointments,
                std::vector<PimItem>& tasks);

    // The store's lock serialises queries; the cache's lock is held for a
    // whole fill and counts as busy meanwhile.
    std::recursive_mutex& StoreLock() { return storeMutex_; }
    std::recursive_mutex& CacheLock() { return cacheMutex_; }
    bool IsBusy() const { return busy_ > 0; }

private:
    struct ContactDates {
        std::u16string name;
        double birthday = kNoDate;
        bool birthdayHasYear = true;
        double anniversary = kNoDate;
        bool anniversaryHasYear = true;
    };

    static std::u16string OverlapRestriction(const DayRange& range);
    // With `text`, only items whose texts contain it (case folded).
    bool RunQuery(int folderId, const std::u16string& restriction, const std::u16string& sort,
                  std::vector<PimItem>& items, const std::u16string& text = {});
    void EnsureContacts();
    void AddContactItems(const ContactDates& contact, std::int32_t oid, double first, double last, int kind,
                         std::vector<PimItem>& items) const;
    TaskPlacement CurrentTaskPlacement() const;
    void FillAppointmentMonth(int year, int month);
    void FillTaskMonth(int year, int month);
    void ReindexAll();

    std::unique_ptr<PimSource> source_;
    mutable std::recursive_mutex storeMutex_;
    mutable std::recursive_mutex cacheMutex_;
    std::atomic<int> busy_{0};
    ItemFilter filter_;
    MonthCache cache_;
    bool contactsLoaded_ = false;
    std::map<std::int32_t, ContactDates> contacts_;
};

} // namespace mirodate
