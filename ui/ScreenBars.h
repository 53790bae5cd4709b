#pragma once
// The heights of the bars around every page: the top bar (status bar) and the
// menu bar along the bottom. The main window keeps them current; pop-ups
// (the context menu) fit themselves between them.
namespace mirodate {

class ScreenBars {
public:
    // The top bar; until the main window sets it, the shell's usual 26 pixels (scaled).
    static int TopBarHeight();
    static void SetTopBarHeight(int height);
    // The menu bar; until set, the skin's menu-bar height.
    static int MenuBarHeight();
    static void SetMenuBarHeight(int height);
    // Back to the defaults.
    static void Reset();
};

} // namespace mirodate
