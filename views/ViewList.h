#pragma once
// The touch list of a view page: it hands long taps and horizontal swipes to
// the page that owns it (taps reach the page through the rows).
#include "ui/TouchListCtrlWnd.h"

namespace mirodate {

class ViewListListener {
public:
    virtual ~ViewListListener() = default;
    virtual void OnListHold(int index) = 0;
    // `toLeft`: the finger moved to the left (the next period).
    virtual void OnListSwipe(bool toLeft) = 0;
};

class ViewList : public TouchListCtrlWnd {
public:
    explicit ViewList(ViewListListener& listener) : listener_(listener) {}

    void OnLongTap(int index) override { listener_.OnListHold(index); }
    void OnSwipeLeft() override { listener_.OnListSwipe(true); }
    void OnSwipeRight() override { listener_.OnListSwipe(false); }

private:
    ViewListListener& listener_;
};

} // namespace mirodate
