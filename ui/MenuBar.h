#pragma once
// The row of icon buttons along the bottom of the main window and of every
// view. Each button shows one icon of the skin's menu-bar strip and carries
// its language text as label (shown in the tooltip while held). Clicks reach
// the parent as WM_COMMAND with the button's window; IndexOf tells which.
#include "skin/MenuBarIcons.h"
#include "ui/Bitmap.h"
#include "ui/ButtonWnd.h"

#include <memory>
#include <string>
#include <vector>

namespace mirodate {

struct MenuBarEntry {
    std::string langKey; // caption, from the language table
    MenuBarIcon icon;
    bool longPress = false;
};

class MenuBar {
public:
    MenuBar();
    ~MenuBar();
    MenuBar(const MenuBar&) = delete;
    MenuBar& operator=(const MenuBar&) = delete;

    // One button per entry, left to right, sharing `width` (the last one
    // takes what the division leaves). A height of 0 takes the skin's.
    bool Create(HWND parent, const std::vector<MenuBarEntry>& entries, int x, int y, int width,
                int height = 0);
    // Places the bar again (screen rotation).
    void MoveTo(int x, int y, int width, int height);
    // Reads the captions again from the language table.
    void Relabel();

    int Count() const { return static_cast<int>(buttons_.size()); }
    ButtonWnd* Button(int index) const;
    // Index of the button with this window, or -1.
    int IndexOf(HWND button) const;
    int Height() const { return height_; }

    // The skin's icon strip for the current resolution, as a bitmap.
    static const Bitmap& IconStrip();

private:
    std::vector<MenuBarEntry> entries_;
    std::vector<std::unique_ptr<ButtonWnd>> buttons_;
    int height_ = 0;
};

} // namespace mirodate
