#include "views/PlatformHandoff.h"

#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "ui/MessagePage.h"

namespace mirodate {

void PlatformHandoff::OpenPlatformCalendar(HWND owner) { MessagePage::Tell(owner, Lang("NoPlatformCalendar")); }

void PlatformHandoff::OpenInPlatformCalendar(HWND owner, const PimItem&) { OpenPlatformCalendar(owner); }

void PlatformHandoff::OpenContact(HWND, const PimItem& item) {
    Log::Info("contact %d: no handler yet", static_cast<int>(item.oid));
}

void PlatformHandoff::Beam(HWND, const PimItem& item) {
    Log::Info("beam %d: not yet", static_cast<int>(item.oid));
}

} // namespace mirodate
