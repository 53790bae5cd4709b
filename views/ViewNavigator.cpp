#include "views/ViewNavigator.h"

namespace mirodate {

namespace {
ViewNavigator* g_navigator = nullptr;
}

ViewNavigator* ViewNavigator::Current() {
    return g_navigator;
}
void ViewNavigator::SetCurrent(ViewNavigator* navigator) {
    g_navigator = navigator;
}

} // namespace mirodate
