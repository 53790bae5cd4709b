#pragma once
// The window tree: registered classes, the record of every window, the
// parent/child links and the z-order of children and of top-level windows.
// It only keeps and answers; sending messages about changes is the window
// manager's part.
#include "ui/Bitmap.h"
#include "ui/Messages.h"
#include "ui/WinTypes.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace mirodate {

class Dc;

// One window as the window system keeps it.
struct WindowRecord {
    HWND handle = nullptr;
    std::string className;
    UINT classStyle = 0;
    std::u16string title;
    DWORD style = 0;
    DWORD exStyle = 0;
    HWND parent = nullptr;
    HWND owner = nullptr;
    UINT_PTR id = 0;
    RECT rect;                  // in the parent's client coordinates; on the screen for top-level windows
    std::vector<HWND> children; // back to front
    WNDPROC proc = nullptr;
    LONG_PTR userData = 0;
    bool isDialog = false;
    DLGPROC dialogProc = nullptr;
    LONG_PTR dialogUser = 0;
    LONG_PTR dialogMessageResult = 0;
    bool dialogEnded = false;
    INT_PTR dialogResult = 0;
    bool minimized = false;
    bool invalid = false;
    bool erase = false;
    RECT update;
    Bitmap surface;
    std::vector<std::unique_ptr<Dc>> paintDcs;
    bool destroying = false;

    RECT ClientRect() const { return RECT{0, 0, rect.Width(), rect.Height()}; }
    bool IsVisibleStyle() const { return (style & WS_VISIBLE) != 0; }
    // The words of GetWindowLongPtr (GWL_, and DWL_ for a dialog); 0 for
    // any other index. SetLong returns the old value.
    LONG_PTR GetLong(int index) const;
    LONG_PTR SetLong(int index, LONG_PTR value);
};

class WindowTree {
public:
    WindowTree();
    ~WindowTree();
    WindowTree(const WindowTree&) = delete;
    WindowTree& operator=(const WindowTree&) = delete;

    bool RegisterClass(const WNDCLASS& windowClass); // false when the name is taken
    const WNDCLASS* FindClass(const std::string& name) const;

    WindowRecord* Get(HWND window) const;
    // Gives the record a new handle and links it under its parent (a child)
    // or on top of the top-level windows; returns the handle.
    HWND Add(std::unique_ptr<WindowRecord> window);
    // Unlinks the window from its parent or the top-level list and forgets it.
    void Remove(HWND window);

    const std::vector<HWND>& TopLevel() const { return topLevel_; } // back to front
    HWND TopLevelOf(HWND window) const;
    bool IsShown(const WindowRecord* window) const; // visible and every ancestor visible
    RECT ScreenRectOf(const WindowRecord* window) const;
    // The deepest visible window under a screen point (nullptr: none).
    HWND WindowFromPoint(int x, int y) const;
    // The topmost top-level window with this class and title (null: any).
    HWND FindTopLevel(const char* className, const char16_t* title) const;
    // Moves the window to the front among its siblings; false when it was there.
    bool Raise(HWND window);

private:
    HWND ChildFromPoint(HWND parent, int x, int y) const; // screen point

    std::map<std::string, WNDCLASS> classes_;
    std::unordered_map<std::uintptr_t, std::unique_ptr<WindowRecord>> windows_;
    std::uintptr_t nextHandle_ = 0x10000;
    std::vector<HWND> topLevel_; // back to front
};

} // namespace mirodate
