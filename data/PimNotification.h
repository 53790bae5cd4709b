#pragma once
// What the PIM source reports when an item changes, and the message numbers
// under which the main window receives it (wParam the OID, lParam the
// folder number).
#include <cstdint>

namespace mirodate {

// Changes made by this program.
constexpr std::uint32_t kMsgItemCreatedLocal = 0x8100;
constexpr std::uint32_t kMsgItemDeletedLocal = 0x8101;
constexpr std::uint32_t kMsgItemChangedLocal = 0x8102;
// Changes made by another program (a sync, an editor, another calendar).
constexpr std::uint32_t kMsgItemCreatedRemote = 0x8105;
constexpr std::uint32_t kMsgItemDeletedRemote = 0x8106;
constexpr std::uint32_t kMsgItemChangedRemote = 0x8107;

// Origins a folder reports changes of (combinable).
constexpr int kNotifyLocal = 1;
constexpr int kNotifyRemote = 2;

struct PimNotification {
    std::uint32_t message = 0; // one of kMsgItem...
    std::int32_t oid = -1;
    int folder = 0; // kFolderCalendar, kFolderTasks or kFolderContacts

    bool IsRemote() const { return message >= kMsgItemCreatedRemote; }
    bool IsDeletion() const { return message == kMsgItemDeletedLocal || message == kMsgItemDeletedRemote; }
};

} // namespace mirodate
