#pragma once
// What a TouchScroller tells the window it scrolls: repaint requests and the
// gestures it recognised. TouchListCtrlWnd implements it and turns each into
// an operation that views override.
namespace mirodate {

class TouchScrollerHost {
public:
    virtual ~TouchScrollerHost() = default;
    // The item area changed (scroll, highlight); repaint it now.
    virtual void RefreshViewport() = 0;
    virtual void OnClickEmpty(int x, int y) = 0;
    virtual void OnSwipeLeft() = 0;
    virtual void OnSwipeRight() = 0;
    virtual void OnLongTap(int index) = 0;
    virtual void OnScrolled(int oldPosition, int newPosition) = 0;
};

} // namespace mirodate
