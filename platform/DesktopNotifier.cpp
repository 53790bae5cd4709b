#include "platform/DesktopNotifier.h"

#include "platform/LibnotifyNotifier.h"

namespace mirodate {

namespace {
DesktopNotifier* g_installed = nullptr;
}

DesktopNotifier& DesktopNotifier::Instance() {
    if (g_installed)
        return *g_installed;
    static LibnotifyNotifier real;
    return real;
}

void DesktopNotifier::SetInstance(DesktopNotifier* notifier) {
    g_installed = notifier;
}

} // namespace mirodate
