#include "ui/WaitCursor.h"

#include "platform/Display.h"
#include "ui/WinApi.h"
#include "ui/WindowManager.h"

namespace mirodate {

WaitCursor::WaitCursor() {
    Wm().GetDisplay().SetBusyCursor(true);
}

WaitCursor::~WaitCursor() {
    Wm().GetDisplay().SetBusyCursor(false);
}

} // namespace mirodate
