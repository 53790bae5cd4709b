#include "data/PimStore.h"

#include "data/TextMatcher.h"

#include "data/Categories.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace mirodate {

namespace {

constexpr double kYearLength = 365.25;
constexpr int kSecondsPerDay = 86400;

std::u16string Format(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::u16string Format(const char* format, ...) {
    char buffer[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    return Utf8ToUtf16(buffer);
}

PimItem ToAppointment(const PimRecord& record) {
    PimItem item;
    item.type = PimItem::kTypeAppointment;
    item.kind = PimItem::kAppointment;
    item.oid = record.oid;
    item.subject = record.subject;
    item.categories = record.categories;
    if (!item.categories.empty())
        Categories::GetItemColors(item.categories, item.colors);
    item.location = record.location;
    item.SetTimes(DateTime(record.start), DateTime(record.end));
    item.isAllDay = record.allDay;
    item.isRecurring = record.isRecurring;
    item.isCancelled = record.cancelled;
    item.body = record.body;
    return item;
}

PimItem ToTask(const PimRecord& record) {
    PimItem item;
    item.type = PimItem::kTypeTask;
    item.oid = record.oid;
    item.subject = record.subject;
    item.categories = record.categories;
    if (!item.categories.empty())
        Categories::GetItemColors(item.categories, item.colors);
    item.body = record.body;
    item.isComplete = record.complete;
    item.isCancelled = record.cancelled;
    item.importance = record.importance;
    item.SetTaskDates(record.startDate, record.dueDate);
    item.isRecurring = record.isRecurring;
    if (item.isRecurring)
        item.recurrence = record.recurrence;
    return item;
}

// Position after the last appointment starting no later than `start`;
// contact items at the end of a month stay behind the appointments.
std::size_t AppointmentInsertPosition(const std::vector<PimItem>& items, double start) {
    std::size_t i = 0;
    while (i < items.size() && items[i].kind == PimItem::kAppointment && items[i].startValue <= start)
        ++i;
    return i;
}

std::size_t TaskInsertPosition(const std::vector<PimItem>& items, double due) {
    std::size_t i = 0;
    while (i < items.size() && items[i].dueDateValue <= due)
        ++i;
    return i;
}

} // namespace

PimStore::~PimStore() {
    Close();
}

PimStore& PimStore::Instance() {
    static PimStore store;
    return store;
}

bool PimStore::Open(std::unique_ptr<PimSource> source, PimSource::NotificationSink sink) {
    std::lock_guard lock(storeMutex_);
    if (source_)
        return true;
    if (!source || !source->Logon())
        return false;
    source_ = std::move(source);
    source_->SetNotificationSink(std::move(sink));
    for (int folderId : {kFolderCalendar, kFolderTasks, kFolderContacts})
        if (auto folder = source_->GetDefaultFolder(folderId))
            folder->AddItemsNotifications(kNotifyLocal | kNotifyRemote);
    Categories::SetNameProvider([this] {
        std::lock_guard providerLock(storeMutex_);
        return source_ ? source_->GetCategoryNames() : std::vector<std::u16string>{};
    });
    return true;
}

void PimStore::Close() {
    std::lock_guard cacheLock(cacheMutex_);
    std::lock_guard lock(storeMutex_);
    if (!source_)
        return;
    Categories::SetNameProvider({});
    source_->SetNotificationSink({});
    source_.reset();
    cache_.Clear();
    contacts_.clear();
    contactsLoaded_ = false;
    // The next store starts unfiltered until its owner sets the filters.
    filter_ = ItemFilter();
}

void PimStore::SetFilters(const std::u16string& excludeFilter, const std::u16string& categoryFilter,
                          bool hideCompleteTasks, bool showBirthdays, bool showAnniversaries) {
    const FilterConfig config{excludeFilter, categoryFilter, hideCompleteTasks, showBirthdays,
                              showAnniversaries};
    std::lock_guard lock(storeMutex_);
    if (config == filter_.Config())
        return;
    filter_ = ItemFilter(config);
    // Values already stored are not written again (a start-up reads them
    // and hands them back).
    if (Settings::GetLastFilter() != categoryFilter)
        Settings::SetLastFilter(categoryFilter);
    if (Settings::GetExcludeFilter() != excludeFilter)
        Settings::SetExcludeFilter(excludeFilter);
}

FilterConfig PimStore::GetFilters() const {
    std::lock_guard lock(storeMutex_);
    return filter_.Config();
}

bool PimStore::RunQuery(int folderId, const std::u16string& restriction, const std::u16string& sort,
                        std::vector<PimItem>& items, const std::u16string& text) {
    if (!source_)
        return false;
    auto folder = source_->GetDefaultFolder(folderId);
    if (!folder)
        return false;
    auto collection = folder->GetItems();
    if (!collection || !collection->Sort(sort, false))
        return false;
    collection->SetIncludeRecurrences(true);
    collection->SetTextFilter(text);
    PimRecord record;
    FindResult result = collection->Find(restriction, record);
    if (result == FindResult::BadRestriction) {
        Log::Error("store: restriction not understood: %s", Utf16ToUtf8(restriction).c_str());
        return false;
    }
    while (result == FindResult::Found) {
        items.push_back(folderId == kFolderTasks ? ToTask(record) : ToAppointment(record));
        result = collection->FindNext(record);
    }
    return true;
}

// The restriction of appointments overlapping the range.
std::u16string PimStore::OverlapRestriction(const DayRange& range) {
    return Format("[Start]<= <%ld AND [End]>= <%ld", range.End().DayNumber(), range.Start().DayNumber());
}

bool PimStore::QueryAppointments(const DayRange& range, std::vector<PimItem>& items) {
    std::lock_guard lock(storeMutex_);
    if (!range.IsValid())
        return false;
    if (!RunQuery(kFolderCalendar, OverlapRestriction(range), u"[Start]", items))
        return false;
    const FilterConfig& config = filter_.Config();
    if (config.showBirthdays || config.showAnniversaries)
        QueryContactDates(range, config.showBirthdays, config.showAnniversaries, items);
    return true;
}

bool PimStore::QueryTasks(const DayRange& range, std::vector<PimItem>& items) {
    std::lock_guard lock(storeMutex_);
    const bool byDue = Settings::GetShowTasksByDueDate();
    const bool byStart = Settings::GetShowTasksByStartDate();
    if (!range.IsValid())
        return false;
    const DateTime& start = range.Start();
    const DateTime& end = range.End();
    SYSTEMTIME now = Clock::Current().GetLocalTime();
    now.wHour = 23;
    now.wMinute = 59;
    now.wSecond = 0;
    const DateTime today = DateTime::FromSystemTime(now);
    const bool holdsToday = start <= today && today <= end;
    const long s = start.DayNumber(), e = end.DayNumber(), t = today.DayNumber();

    std::u16string restriction;
    if (byDue && byStart) {
        restriction = holdsToday
                          ? Format("([DueDate]>= <%ld AND [DueDate]<= <%ld) OR ([StartDate]>= <%ld AND "
                                   "[StartDate]<= <%ld) OR ([DueDate]<= <%ld AND [Complete]=False)",
                                   s, e, s, e, t)
                          : Format("([DueDate]>= <%ld AND [DueDate]<= <%ld) OR ([StartDate]>= <%ld AND "
                                   "[StartDate]<= <%ld)",
                                   s, e, s, e);
    } else if (byDue) {
        restriction = holdsToday ? Format("([DueDate]>= <%ld AND [DueDate]<= <%ld) OR ([DueDate]<= <%ld AND "
                                          "[Complete]=False)",
                                          s, e, t)
                                 : Format("[DueDate]>= <%ld AND [DueDate]<= <%ld", s, e);
    } else if (byStart) {
        restriction = holdsToday
                          ? Format("([StartDate]>= <%ld AND [StartDate]<= <%ld) OR ([DueDate]<= <%ld AND "
                                   "[Complete]=False)",
                                   s, e, t)
                          : Format("[StartDate]>= <%ld AND [StartDate]<= <%ld", s, e);
    }
    return RunQuery(kFolderTasks, restriction, u"[DueDate]", items);
}

bool PimStore::QueryAllTasks(std::vector<PimItem>& items) {
    std::lock_guard lock(storeMutex_);
    std::vector<PimItem> found;
    if (!RunQuery(kFolderTasks, u"", u"[DueDate]", found))
        return false;
    items.reserve(items.size() + found.size());
    for (auto& item : found)
        if (filter_.Keep(item))
            items.push_back(std::move(item));
    return true;
}

void PimStore::EnsureContacts() {
    if (contactsLoaded_ || !source_)
        return;
    contacts_.clear();
    auto folder = source_->GetDefaultFolder(kFolderContacts);
    if (!folder)
        return;
    auto collection = folder->GetItems();
    if (!collection)
        return;
    const int count = collection->GetCount();
    PimRecord record;
    for (int i = 0; i < count; ++i) {
        if (!collection->Item(i, record))
            continue;
        if (record.birthday == kNoDate && record.anniversary == kNoDate)
            continue;
        contacts_[record.oid] = ContactDates{record.subject, record.birthday, record.birthdayHasYear,
                                             record.anniversary, record.anniversaryHasYear};
    }
    contactsLoaded_ = true;
}

void PimStore::AddContactItems(const ContactDates& contact, std::int32_t oid, double first, double last,
                               int kind, std::vector<PimItem>& items) const {
    const double stored = kind == PimItem::kBirthday ? contact.birthday : contact.anniversary;
    const bool hasYear = kind == PimItem::kBirthday ? contact.birthdayHasYear : contact.anniversaryHasYear;
    const DateTime storedDate(stored);
    if (stored == kNoDate || !storedDate.IsValid())
        return;
    const int month = storedDate.GetMonth();
    const int day = storedDate.GetDay();
    const DateTime firstDate(first), lastDate(last);
    for (int year = firstDate.GetYear(); year <= lastDate.GetYear(); ++year) {
        // 29 February falls on the 28th in other years.
        const DateTime occurrence(year, month, std::min(day, DaysInMonth(year, month)));
        if (occurrence.ToDate() < first || occurrence.ToDate() > last)
            continue;
        if (hasYear && occurrence < storedDate)
            continue;
        PimItem item;
        item.kind = kind;
        item.oid = oid;
        if (hasYear) {
            const long long seconds = (occurrence - storedDate).GetTotalSeconds();
            const long age = std::lround(static_cast<double>(seconds / kSecondsPerDay) * (1.0 / kYearLength));
            item.subject = Format("%s (%ld)", Utf16ToUtf8(contact.name).c_str(), age);
        } else {
            item.subject = contact.name;
        }
        item.SetTimes(occurrence, occurrence + DateTimeSpan(1.0));
        item.isAllDay = true;
        item.colors.push_back(kind == PimItem::kBirthday ? Categories::GetBirthdayColor()
                                                         : Categories::GetAnniversaryColor());
        items.push_back(std::move(item));
    }
}

void PimStore::QueryContactDates(const DayRange& range, bool birthdays, bool anniversaries,
                                 std::vector<PimItem>& items) {
    std::lock_guard lock(storeMutex_);
    if (!range.IsValid() || !(birthdays || anniversaries))
        return;
    const DateTime& start = range.Start();
    const DateTime& end = range.End();
    EnsureContacts();
    std::vector<PimItem> found;
    for (const auto& [oid, contact] : contacts_) {
        if (birthdays)
            AddContactItems(contact, oid, start.ToDate(), end.ToDate(), PimItem::kBirthday, found);
        if (anniversaries)
            AddContactItems(contact, oid, start.ToDate(), end.ToDate(), PimItem::kAnniversary, found);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const PimItem& a, const PimItem& b) { return a.startValue < b.startValue; });
    for (auto& item : found)
        items.push_back(std::move(item));
}

TaskPlacement PimStore::CurrentTaskPlacement() const {
    TaskPlacement placement;
    placement.byDueDate = Settings::GetShowTasksByDueDate();
    placement.byStartDate = Settings::GetShowTasksByStartDate();
    placement.today = DateTime::Today().ToDate();
    return placement;
}

void PimStore::FillAppointmentMonth(int year, int month) {
    MonthCache::Entry& entry = cache_.Appointments(year, month);
    entry.items.clear();
    const DayRange range = DayRange::Month(year, month);
    {
        std::lock_guard lock(storeMutex_);
        if (!RunQuery(kFolderCalendar, OverlapRestriction(range), u"[Start]", entry.items))
            return;
        // Every contact date is kept; the switches choose at hand-out.
        QueryContactDates(range, true, true, entry.items);
    }
    MonthCache::IndexAppointments(entry, year, month);
    entry.loaded = true;
}

void PimStore::FillTaskMonth(int year, int month) {
    MonthCache::Entry& entry = cache_.Tasks(year, month);
    entry.items.clear();
    if (!QueryTasks(DayRange::Month(year, month), entry.items))
        return;
    MonthCache::IndexTasks(entry, year, month, CurrentTaskPlacement());
    entry.loaded = true;
}

bool PimStore::FillMonth(int year, int month, bool withAppointments, bool withTasks,
                         ProgressCallback progress, void* context) {
    if (month < 1 || month > 12)
        return false;
    std::lock_guard lock(cacheMutex_);
    ++busy_;
    bool worked = false;
    if (withAppointments && !cache_.Appointments(year, month).loaded) {
        FillAppointmentMonth(year, month);
        worked = true;
    }
    if (withTasks && !cache_.Tasks(year, month).loaded) {
        FillTaskMonth(year, month);
        worked = true;
    }
    --busy_;
    if (progress)
        progress(kProgressSpan, context);
    return worked;
}

bool PimStore::FillMonths(int year, int month, int count, bool withAppointments, bool withTasks,
                          ProgressCallback progress, void* context) {
    std::lock_guard lock(cacheMutex_);
    bool worked = false;
    for (int i = 0; i < count; ++i) {
        const int index = (month - 1) + i;
        worked |= FillMonth(year + index / 12, index % 12 + 1, withAppointments, withTasks);
        if (progress)
            progress((i + 1) * kProgressSpan / count, context);
    }
    return worked;
}

void PimStore::ClearCache() {
    std::lock_guard lock(cacheMutex_);
    std::lock_guard storeLock(storeMutex_);
    cache_.Clear();
    contacts_.clear();
    contactsLoaded_ = false;
}

bool PimStore::IsMonthLoaded(int year, int month, bool tasks) const {
    std::lock_guard lock(cacheMutex_);
    const MonthCache::Entry* entry =
        tasks ? cache_.FindTasks(year, month) : cache_.FindAppointments(year, month);
    return entry && entry->loaded;
}

void PimStore::GetDayAppointments(int year, int month, int day, std::vector<PimItem>& items) {
    std::lock_guard lock(cacheMutex_);
    if (day < 1 || day > DaysInMonth(year, month))
        return;
    FillMonth(year, month, true, false);
    const MonthCache::Entry& entry = cache_.Appointments(year, month);
    std::lock_guard storeLock(storeMutex_);
    const FilterConfig& config = filter_.Config();
    for (std::uint32_t index : entry.days[day - 1]) {
        const PimItem& item = entry.items[index];
        if (item.kind == PimItem::kBirthday && !config.showBirthdays)
            continue;
        if (item.kind == PimItem::kAnniversary && !config.showAnniversaries)
            continue;
        if (filter_.Keep(item))
            items.push_back(item);
    }
}

void PimStore::GetDayTasks(int year, int month, int day, std::vector<PimItem>& items) {
    std::lock_guard lock(cacheMutex_);
    if (day < 1 || day > DaysInMonth(year, month))
        return;
    FillMonth(year, month, false, true);
    const MonthCache::Entry& entry = cache_.Tasks(year, month);
    std::lock_guard storeLock(storeMutex_);
    for (std::uint32_t index : entry.days[day - 1])
        if (filter_.Keep(entry.items[index]))
            items.push_back(entry.items[index]);
}

PimItem PimStore::ItemFromRecord(const PimRecord& record) {
    return record.itemKind == kItemTask ? ToTask(record) : ToAppointment(record);
}

int PimStore::GetItemKind(std::int32_t oid) {
    std::lock_guard lock(storeMutex_);
    return source_ ? source_->GetItemKind(oid) : 0;
}

void PimStore::RemoveAppointment(std::int32_t oid) {
    std::lock_guard lock(cacheMutex_);
    auto& months = cache_.AppointmentMonths();
    for (auto& [key, entry] : months) {
        const std::size_t before = entry.items.size();
        std::erase_if(entry.items, [oid](const PimItem& item) {
            return item.oid == oid && item.kind == PimItem::kAppointment;
        });
        if (entry.items.size() != before)
            MonthCache::IndexAppointments(entry, key.first, key.second);
    }
}

void PimStore::ReloadAppointment(std::int32_t oid) {
    std::lock_guard lock(cacheMutex_);
    RemoveAppointment(oid);
    std::lock_guard storeLock(storeMutex_);
    PimRecord record;
    if (!source_ || !source_->GetItemFromOid(oid, record))
        return; // gone: removed above
    if (record.itemKind == kItemAppointment && !record.isRecurring) {
        // A single item is itself the one entry of each month it overlaps
        // (by the days of its start and end, as the month's query counts
        // them): no query of the whole folder for one change.
        if (record.start == kNoDate || record.end == kNoDate)
            return;
        const long first = static_cast<long>(std::trunc(record.start));
        const long last = static_cast<long>(std::trunc(record.end));
        for (auto& [key, entry] : cache_.AppointmentMonths()) {
            if (!entry.loaded)
                continue;
            const auto [year, month] = key;
            if (first > DateTime(year, month, DaysInMonth(year, month), 23, 59, 59).DayNumber() ||
                last < DateTime(year, month, 1).DayNumber())
                continue;
            PimItem item = ToAppointment(record);
            const std::size_t at = AppointmentInsertPosition(entry.items, item.startValue);
            entry.items.insert(entry.items.begin() + static_cast<std::ptrdiff_t>(at), std::move(item));
            MonthCache::IndexAppointments(entry, year, month);
        }
        return;
    }
    // A series: its occurrences may fall into any loaded month.
    for (auto& [key, entry] : cache_.AppointmentMonths()) {
        if (!entry.loaded)
            continue;
        const auto [year, month] = key;
        const DateTime start(year, month, 1);
        const DateTime end(year, month, DaysInMonth(year, month), 23, 59, 59);
        std::vector<PimItem> found;
        RunQuery(kFolderCalendar,
                 Format("[Start]<= <%ld AND [End]>= <%ld", end.DayNumber(), start.DayNumber()), u"[Start]",
                 found);
        for (auto& item : found) {
            if (item.oid != oid)
                continue;
            const std::size_t at = AppointmentInsertPosition(entry.items, item.startValue);
            entry.items.insert(entry.items.begin() + static_cast<std::ptrdiff_t>(at), std::move(item));
        }
        MonthCache::IndexAppointments(entry, year, month);
    }
}

void PimStore::RemoveTask(std::int32_t oid) {
    std::lock_guard lock(cacheMutex_);
    const TaskPlacement placement = CurrentTaskPlacement();
    auto& months = cache_.TaskMonths();
    for (auto& [key, entry] : months) {
        const std::size_t before = entry.items.size();
        std::erase_if(entry.items, [oid](const PimItem& item) { return item.oid == oid; });
        if (entry.items.size() != before)
            MonthCache::IndexTasks(entry, key.first, key.second, placement);
    }
}

void PimStore::ReloadTask(std::int32_t oid) {
    std::lock_guard lock(cacheMutex_);
    RemoveTask(oid);
    const TaskPlacement placement = CurrentTaskPlacement();
    for (auto& [key, entry] : cache_.TaskMonths()) {
        if (!entry.loaded)
            continue;
        const auto [year, month] = key;
        std::vector<PimItem> found;
        QueryTasks(DayRange::Month(year, month), found);
        for (auto& item : found) {
            if (item.oid != oid)
                continue;
            const std::size_t at = TaskInsertPosition(entry.items, item.dueDateValue);
            entry.items.insert(entry.items.begin() + static_cast<std::ptrdiff_t>(at), std::move(item));
        }
        MonthCache::IndexTasks(entry, year, month, placement);
    }
}

void PimStore::ReloadContact(std::int32_t oid) {
    std::lock_guard lock(cacheMutex_);
    std::lock_guard storeLock(storeMutex_);
    if (!source_)
        return;
    if (contactsLoaded_) {
        contacts_.erase(oid);
        PimRecord record;
        if (source_->GetItemKind(oid) == kItemContact && source_->GetItemFromOid(oid, record) &&
            (record.birthday != kNoDate || record.anniversary != kNoDate))
            contacts_[oid] = ContactDates{record.subject, record.birthday, record.birthdayHasYear,
                                          record.anniversary, record.anniversaryHasYear};
    }
    for (auto& [key, entry] : cache_.AppointmentMonths()) {
        if (!entry.loaded)
            continue;
        const auto [year, month] = key;
        std::erase_if(entry.items, [oid](const PimItem& item) {
            return item.oid == oid && item.kind != PimItem::kAppointment;
        });
        std::vector<PimItem> dates;
        QueryContactDates(DayRange::Month(year, month), true, true, dates);
        for (auto& item : dates)
            if (item.oid == oid)
                entry.items.push_back(std::move(item));
        MonthCache::IndexAppointments(entry, year, month);
    }
}

void PimStore::ApplyNotification(const PimNotification& notification) {
    switch (notification.folder) {
    case kFolderCalendar:
        if (notification.IsDeletion())
            RemoveAppointment(notification.oid);
        else
            ReloadAppointment(notification.oid);
        break;
    case kFolderTasks:
        if (notification.IsDeletion())
            RemoveTask(notification.oid);
        else
            ReloadTask(notification.oid);
        break;
    case kFolderContacts:
        ReloadContact(notification.oid);
        break;
    default:
        break;
    }
}

void PimStore::Search(const std::u16string& text, const SearchOptions& options,
                      std::vector<PimItem>& appointments, std::vector<PimItem>& tasks) {
    TextMatcher matcher(text);
    if (matcher.IsEmpty())
        return;
    std::lock_guard lock(storeMutex_);
    const DateTime today = DateTime::Today();
    const DateTime last = today + DateTimeSpan(kSearchDays);
    // The store leaves out what does not contain the text before it makes
    // items of the rest: most of a year's occurrences never become items.
    if (options.appointments) {
        std::vector<PimItem> found;
        RunQuery(kFolderCalendar,
                 Format("[Start]>= <%ld AND [Start]<= <%ld", today.DayNumber(), last.DayNumber()), u"[Start]",
                 found, text);
        for (auto& item : found)
            if (filter_.Keep(item))
                appointments.push_back(std::move(item));
    }
    if (options.birthdays || options.anniversaries) {
        std::vector<PimItem> dates;
        QueryContactDates(DayRange::Days(today, last), options.birthdays, options.anniversaries, dates);
        for (auto& item : dates)
            if (matcher.Contains(item.subject))
                appointments.push_back(std::move(item));
    }
    if (options.tasks) {
        std::vector<PimItem> found;
        RunQuery(kFolderTasks, u"", u"[DueDate]", found, text);
        for (auto& item : found)
            if (filter_.Keep(item))
                tasks.push_back(std::move(item));
    }
}

} // namespace mirodate
