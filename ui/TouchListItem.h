#pragma once
// One row of a touch list. Each view brings its own item classes: they keep
// their own layout (measured once, when the row is made or its width
// changes), so that drawing a row during a scroll only paints.
// Item-local coordinates are the pointer position minus the row's left edge
// and its top on the screen.
#include "ui/WinTypes.h"

namespace mirodate {

class Dc;

class TouchListItem {
public:
    virtual ~TouchListItem() = default;
    virtual void Highlight(int x, int y) {
        (void)x, (void)y;
        highlighted_ = true;
    }
    virtual void RemoveHighlight() { highlighted_ = false; }
    virtual void Click(HWND list, int x, int y) { (void)list, (void)x, (void)y; }
    virtual bool AcceptsLongTap(HWND list) {
        (void)list;
        return false;
    }
    // Paints the row into `rect` (the row's place in the list window); the
    // context is clipped to the visible part of the list.
    virtual void Draw(Dc& dc, const RECT& rect) = 0;
    virtual int Height() const = 0;

    bool IsHighlighted() const { return highlighted_; }

protected:
    bool highlighted_ = false;
};

} // namespace mirodate
