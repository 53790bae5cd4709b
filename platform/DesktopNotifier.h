#pragma once
// Desktop notifications through the freedesktop.org notification service
// (org.freedesktop.Notifications on the session bus). Show() never waits:
// the notification is handed to a worker that talks to the bus, with a time
// limit, so that a bus whose notification server does not answer cannot
// stall the program. Tests install a recorder instead of the real one.
#include <string>

namespace mirodate {

class DesktopNotifier {
public:
    virtual ~DesktopNotifier() = default;
    // Queues a notification; false when there is no session bus to send it on.
    virtual bool Show(const std::string& summary, const std::string& body) = 0;

    // The instance the program notifies through (the libnotify one unless a
    // test installed another).
    static DesktopNotifier& Instance();
    // Replaces it (not owned; must outlive its use); null restores the real one.
    static void SetInstance(DesktopNotifier* notifier);
};

} // namespace mirodate
