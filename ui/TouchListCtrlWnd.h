#pragma once
// The finger-scrolled list the agenda, tasks, search and settings pages are
// built on: a header band, the rows of a TouchScroller below it and a scroll
// strip along the right edge. Views derive from it (or own one), supply
// their own TouchListItem classes and override the gesture operations.
#include "ui/BaseWnd.h"
#include "ui/Font.h"
#include "ui/TouchScroller.h"
#include "ui/TouchScrollerHost.h"

#include <memory>
#include <string>

namespace mirodate {

class Dc;

constexpr const char* kTouchListCtrlClass = "KESTRELIA::TOUCHLISTCTRLWND";

struct TouchListColors {
    COLORREF background = RGB(255, 255, 255);
    COLORREF border = RGB(0, 0, 0);
    COLORREF headerBackground = RGB(0, 0, 0);
    COLORREF headerText = RGB(255, 255, 255);
    COLORREF strip = RGB(0xC0, 0xC0, 0xC0);

    // The list-view colours of the current skin.
    static TouchListColors FromSkin();
};

class TouchListCtrlWnd : public BaseWnd, public TouchScrollerHost {
public:
    TouchListCtrlWnd();
    ~TouchListCtrlWnd() override;

    // Sets the gesture tuning for the screen, creates the child window (with a
    // border when asked) and its scroller. With `headerTaps`, a tap in the
    // header band notifies the parent (NM_LIST_HEADER_TAP).
    HWND Create(HWND parent, int x, int y, int width, int height, bool withBorder, bool headerTaps);

    TouchScroller& Scroller() { return *scroller_; }
    const TouchScroller& Scroller() const { return *scroller_; }

    // Items. Each change lays the list out; the rows are repainted when the
    // loop is next idle, so that filling a long list paints once.
    void AddItem(std::unique_ptr<TouchListItem> item);
    void InsertItem(int index, std::unique_ptr<TouchListItem> item);
    void RemoveItem(int index);
    void ClearItems();
    int ItemCount() const { return scroller_ ? scroller_->Count() : 0; }
    TouchListItem* Item(int index) const { return scroller_ ? scroller_->Item(index) : nullptr; }
    // After item heights changed.
    void Relayout();

    int HitTest(int y) const { return scroller_->HitTest(y); }
    bool IsVisible(int index) const { return scroller_->IsVisible(index); }
    void Reveal(int index, bool fast) { scroller_->Reveal(index, fast); }
    void AnimateTo(int position, UINT durationMs) { scroller_->AnimateTo(position, durationMs); }

    // The header band at the top (0 = none) and its text.
    void SetHeaderHeight(int height);
    int HeaderHeight() const { return headerHeight_; }
    void SetHeaderText(const std::u16string& text);
    // The header text's font (must outlive the list); null is the list's own bold one.
    void SetHeaderFont(const Font* font);
    void SetColors(const TouchListColors& colors);
    const TouchListColors& Colors() const { return colors_; }
    // As the body of a pop-up the list keeps the pointer; losing it, or a press
    // outside the list, sends WM_CLOSE_POPUP to the parent.
    void SetPopupBody(bool popup);

    // Gesture operations for views.
    void OnClickEmpty(int x, int y) override;
    void OnSwipeLeft() override;
    void OnSwipeRight() override;
    void OnLongTap(int index) override;
    void OnScrolled(int oldPosition, int newPosition) override;
    void RefreshViewport() override;

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnMouseWheel(UINT keys, short delta, int x, int y) override;
    void OnCaptureChanged(HWND newCapture) override;
    void OnTimer(UINT_PTR id) override;
    void OnSize(UINT sizeParam, UINT type) override;

protected:
    // The header band; the default fills it and centres the header text.
    virtual void DrawHeader(Dc& dc, const RECT& rect);
    // The scroll strip's thumb, over the rows.
    virtual void DrawStrip(Dc& dc);
    void UpdateViewport();
    void InvalidateViewport();

private:
    std::unique_ptr<TouchScroller> scroller_;
    TouchListColors colors_;
    std::u16string headerText_;
    std::unique_ptr<Font> headerFont_;
    const Font* customHeaderFont_ = nullptr;
    int headerHeight_ = 0;
    bool headerTaps_ = false;
    bool withBorder_ = false;
    bool popupBody_ = false;
    bool ownRelease_ = false; // the scroller is letting go of the pointer itself
};

} // namespace mirodate
