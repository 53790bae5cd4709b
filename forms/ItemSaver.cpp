#include "forms/ItemSaver.h"

#include "data/PimNotification.h"
#include "data/PimStore.h"
#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/WinApi.h"

namespace mirodate {

namespace {
// Buttons of the question about a file deleted meanwhile.
constexpr int kSaveAsNew = 1;
constexpr int kDiscard = 2;

HWND& MainWindow() {
    static HWND main = nullptr;
    return main;
}
} // namespace

void ItemSaver::SetMainWindow(HWND main) {
    MainWindow() = main;
}

void ItemSaver::Tell(HWND owner, const char* key) {
    MessagePage::Tell(owner, Lang(key));
}

void ItemSaver::Announce(std::int32_t oid, bool deleted, int folder) {
    const UINT message = deleted ? kMsgItemDeletedLocal : kMsgItemChangedLocal;
    if (HWND main = MainWindow(); main && IsWindow(main)) {
        SendMessage(main, message, static_cast<WPARAM>(oid), folder);
        return;
    }
    PimNotification notification;
    notification.message = message;
    notification.oid = oid;
    notification.folder = folder;
    PimStore::Instance().ApplyNotification(notification);
    SendNotifyMessage(HWND_BROADCAST, RegisterWindowMessage(kPoomDataChangedName), 0, -1);
}

void ItemSaver::RemoveCopy(std::int32_t oid, int folder) {
    PimSource* source = PimStore::Instance().Source();
    if (!source || oid <= 0)
        return;
    if (source->Delete(oid))
        Announce(oid, true, folder);
}

ItemSaver::Outcome ItemSaver::ChangedOnDisk(HWND owner, std::int32_t oid, int folder,
                                            const char* questionKey) {
    Log::Info("editor: item %d changed on disk; not written", static_cast<int>(oid));
    Announce(oid, false, folder);
    return MessagePage::YesNo(owner, Lang(questionKey)) ? Outcome::Reload : Outcome::Stay;
}

ItemSaver::DeletedChoice ItemSaver::Deleted(HWND owner, std::int32_t oid, int folder,
                                            const char* questionKey) {
    Log::Info("editor: item %d deleted meanwhile", static_cast<int>(oid));
    Announce(oid, true, folder);
    switch (MessagePage::Ask(owner, Lang(questionKey),
                             {Lang("editor.SaveAsNew"), Lang("editor.DiscardChanges"), Lang("Cancel")})) {
    case kSaveAsNew:
        return DeletedChoice::SaveAsNew;
    case kDiscard:
        return DeletedChoice::Discard;
    default:
        return DeletedChoice::Stay;
    }
}

} // namespace mirodate
