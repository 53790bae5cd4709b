#include "ui/ScreenBars.h"

#include "skin/SkinStyles.h"
#include "ui/Scale.h"

namespace mirodate {

namespace {
constexpr int kDefaultTopBar = 26;
constexpr int kUnset = -1;
int g_topBar = kUnset;
int g_menuBar = kUnset;
} // namespace

int ScreenBars::TopBarHeight() {
    return g_topBar == kUnset ? Scale(kDefaultTopBar) : g_topBar;
}
void ScreenBars::SetTopBarHeight(int height) {
    g_topBar = height < 0 ? 0 : height;
}
int ScreenBars::MenuBarHeight() {
    return g_menuBar == kUnset ? SkinStyles::Current().menuBar.height : g_menuBar;
}
void ScreenBars::SetMenuBarHeight(int height) {
    g_menuBar = height < 0 ? 0 : height;
}

void ScreenBars::Reset() {
    g_topBar = kUnset;
    g_menuBar = kUnset;
}

} // namespace mirodate
