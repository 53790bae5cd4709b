#pragma once
// The PIM store behind PimStore: three folders of appointments, tasks and
// contacts, look-up by item identifier (OID), writes and change reports.
// The program and the tests create a concrete source (the vdir store) and
// hand it to PimStore; nothing in this folder knows how items are kept.
#include "data/PimFolder.h"
#include "data/PimNotification.h"
#include "data/PimRecord.h"
#include "data/Reminder.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

// Item kinds of GetItemKind; 0 means not found.
constexpr int kItemAppointment = 1;
constexpr int kItemContact = 2;
constexpr int kItemTask = 3;

enum class SaveResult {
    Saved,
    ChangedOnDisk, // the file is no longer the one that was read: not written, reloaded
    NotFound,
    Failed,
};

// What the about box tells of a store.
struct StoreSummary {
    struct Skipped {
        std::string path;
        std::string reason;
        friend bool operator<(const Skipped& a, const Skipped& b) { return a.path < b.path; }
    };
    std::string location;
    int appointments = 0;
    int tasks = 0;
    int contacts = 0;
    std::vector<Skipped> skipped; // by path
};

class PimSource {
public:
    using NotificationSink = std::function<void(const PimNotification&)>;

    virtual ~PimSource() = default;

    // Opens the store; false when it cannot be read.
    virtual bool Logon() = 0;
    virtual std::unique_ptr<PimFolder> GetDefaultFolder(int folderId) = 0;
    virtual int GetItemKind(std::int32_t oid) = 0;
    // The item itself (a series as its first occurrence with its pattern).
    virtual bool GetItemFromOid(std::int32_t oid, PimRecord& item) = 0;

    // Writes an item: a record without an OID (or with one not in the store)
    // is created with a new identifier, set into `item`.
    virtual SaveResult Save(PimRecord& item, int folderId) = 0;
    // Changes one occurrence of a series: moved to `occurrence`'s times and
    // texts, or cancelled when `occurrence` is null. `originalStart` is the
    // occurrence's start as the series gives it.
    virtual SaveResult SaveOccurrence(std::int32_t oid, double originalStart,
                                      const PimRecord* occurrence) = 0;
    virtual bool Delete(std::int32_t oid) = 0;
    // A new item with the same content; its OID, or -1.
    virtual std::int32_t Copy(std::int32_t oid) = 0;

    // Where change reports go; called on a background thread.
    virtual void SetNotificationSink(NotificationSink sink) = 0;
    // True while a synchroniser works on the store.
    virtual bool IsSynchronizing() = 0;

    // Every category name used by an item, as written.
    virtual std::vector<std::u16string> GetCategoryNames() = 0;
    // Files that could not be read (never rewritten).
    virtual int GetSkippedCount() = 0;

    virtual StoreSummary Summarize() { return {}; }

    // The file that holds an item, for handing it to other programs; empty
    // when the source keeps no files or does not know the item.
    virtual std::string ItemFilePath(std::int32_t oid) {
        (void)oid;
        return {};
    }
    // The item as a standalone calendar (or card) text that another program
    // can import on its own, with the time zones it uses; false when unknown.
    virtual bool ExportItem(std::int32_t oid, std::string& text) {
        (void)oid, (void)text;
        return false;
    }

    // Reminders of every appointment and task due in [from, before), sorted
    // by moment; acknowledged, cancelled and completed ones left out.
    virtual std::vector<Reminder> GetReminders(double from, double before) {
        (void)from, (void)before;
        return {};
    }
    // Records in the item that the user has seen `reminder` at `now`: it,
    // and every earlier reminder of the item, do not come again, here or in
    // other programs that read the file.
    virtual SaveResult DismissReminder(const Reminder& reminder, double now) {
        (void)reminder, (void)now;
        return SaveResult::Failed;
    }
    // Dismisses `reminder` and makes it come back at `until`.
    virtual SaveResult SnoozeReminder(const Reminder& reminder, double now, double until) {
        (void)reminder, (void)now, (void)until;
        return SaveResult::Failed;
    }
};

} // namespace mirodate
