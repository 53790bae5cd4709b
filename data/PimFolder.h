#pragma once
// One of the source's three folders.
#include "data/PimItems.h"

#include <memory>

namespace mirodate {

// Folder numbers of the handheld's PIM object model.
constexpr int kFolderCalendar = 9;
constexpr int kFolderContacts = 10;
constexpr int kFolderTasks = 13;

class PimFolder {
public:
    virtual ~PimFolder() = default;
    virtual int GetId() const = 0;
    virtual std::unique_ptr<PimItems> GetItems() = 0;
    // Asks the source to report changes of the given origins
    // (kNotifyLocal | kNotifyRemote) for this folder; 0 stops them.
    virtual void AddItemsNotifications(int origins) = 0;
};

} // namespace mirodate
