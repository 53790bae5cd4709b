#include "ui/TouchListCtrlWnd.h"

#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cairo.h>

namespace mirodate {

namespace {
constexpr int kHeaderHeight = 32; // default header band
constexpr int kStripWidth = 32;   // the scroll strip along the right edge
constexpr int kStripMargin = 6;   // the thumb keeps this far from the strip's ends and edge
constexpr int kThumbWidth = 3;
constexpr int kMinThumbHeight = 12;
constexpr int kHeaderFontHeight = 14;
// One wheel notch scrolls this far.
constexpr int kWheelStep = 40;
constexpr int kWheelNotch = 120;
} // namespace

TouchListColors TouchListColors::FromSkin() {
    const ListViewStyle& s = SkinStyles::Current().listViews;
    TouchListColors c;
    c.background = s.colorBg;
    c.border = s.colorBorder;
    c.headerBackground = s.colorHeaderBg;
    c.headerText = s.colorHeaderText;
    c.strip = s.colorLineSeparator;
    return c;
}

TouchListCtrlWnd::TouchListCtrlWnd() : colors_(TouchListColors::FromSkin()) {}

TouchListCtrlWnd::~TouchListCtrlWnd() {
    // The window goes first, so that no message reaches a half-destroyed list;
    // a list that is going away closes no pop-up.
    popupBody_ = false;
    if (window && IsWindow(window))
        DestroyWindow(window);
    window = nullptr;
}

HWND TouchListCtrlWnd::Create(HWND parent, int x, int y, int width, int height, bool withBorder,
                              bool headerTaps) {
    GestureTuning::Set();
    headerHeight_ = Scale(kHeaderHeight);
    headerTaps_ = headerTaps;
    withBorder_ = withBorder;
    DWORD style = WS_CHILD | WS_VISIBLE;
    if (withBorder)
        style |= WS_BORDER;
    BaseWnd::Create(parent, kTouchListCtrlClass, style, u"", x, y, width, height);
    if (!window)
        return nullptr;
    scroller_ = std::make_unique<TouchScroller>(window, *this, 1);
    scroller_->SetStripWidth(Scale(kStripWidth));
    UpdateViewport();
    return window;
}

void TouchListCtrlWnd::UpdateViewport() {
    if (!scroller_)
        return;
    RECT client;
    GetClientRect(window, &client);
    const int inset = withBorder_ ? 1 : 0;
    const int top = std::min(client.bottom, headerHeight_ + inset);
    scroller_->SetViewport(RECT{inset, top, client.right - inset, std::max(top, client.bottom - inset)});
    scroller_->SetHeaderBand(headerHeight_, headerTaps_);
}

void TouchListCtrlWnd::SetHeaderHeight(int height) {
    headerHeight_ = std::max(0, height);
    UpdateViewport();
    Redraw(false);
}

void TouchListCtrlWnd::SetHeaderText(const std::u16string& text) {
    headerText_ = text;
    if (window) {
        RECT header{0, 0, placementWidth, headerHeight_};
        InvalidateRect(window, &header, false);
    }
}

void TouchListCtrlWnd::SetHeaderFont(const Font* font) {
    customHeaderFont_ = font;
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TouchListCtrlWnd::SetColors(const TouchListColors& colors) {
    colors_ = colors;
    if (window)
        InvalidateRect(window, nullptr, false);
}

void TouchListCtrlWnd::SetPopupBody(bool popup) {
    popupBody_ = popup;
}

// ---- items -----------------------------------------------------------------

void TouchListCtrlWnd::AddItem(std::unique_ptr<TouchListItem> item) {
    scroller_->Add(std::move(item));
    InvalidateViewport();
}

void TouchListCtrlWnd::InsertItem(int index, std::unique_ptr<TouchListItem> item) {
    scroller_->Insert(index, std::move(item));
    InvalidateViewport();
}

void TouchListCtrlWnd::RemoveItem(int index) {
    scroller_->Remove(index);
    InvalidateViewport();
}

void TouchListCtrlWnd::ClearItems() {
    scroller_->Clear();
    InvalidateViewport();
}

void TouchListCtrlWnd::Relayout() {
    scroller_->Layout();
    RefreshViewport();
}

// ---- operations views override ---------------------------------------------

void TouchListCtrlWnd::OnClickEmpty(int, int) {}
void TouchListCtrlWnd::OnSwipeLeft() {}
void TouchListCtrlWnd::OnSwipeRight() {}
void TouchListCtrlWnd::OnLongTap(int) {}
void TouchListCtrlWnd::OnScrolled(int, int) {}

void TouchListCtrlWnd::InvalidateViewport() {
    if (window && scroller_)
        InvalidateRect(window, &scroller_->Viewport(), false);
}

void TouchListCtrlWnd::RefreshViewport() {
    if (!window || !scroller_)
        return;
    const RECT& viewport = scroller_->Viewport();
    InvalidateRect(window, &viewport, false);
    UpdateWindow(window);
}

// ---- painting --------------------------------------------------------------

void TouchListCtrlWnd::OnPaint(HDC dc) {
    if (!dc || !scroller_)
        return;
    RECT client;
    GetClientRect(window, &client);
    const RECT& viewport = scroller_->Viewport();
    // Only what the update region touches is drawn: a scroll repaints the rows, not the header.
    cairo_t* cr = dc->Cairo();
    double clipLeft, clipTop, clipRight, clipBottom;
    cairo_clip_extents(cr, &clipLeft, &clipTop, &clipRight, &clipBottom);
    if (headerHeight_ > 0 && clipTop < headerHeight_)
        DrawHeader(*dc, RECT{0, 0, client.right, std::min(headerHeight_, client.bottom)});

    cairo_save(cr);
    dc->IntersectClip(viewport);
    dc->FillRect(viewport, colors_.background);
    const int count = scroller_->Count();
    int index = std::max(0, scroller_->HitTest(0));
    if (scroller_->Position() < 0)
        index = 0;
    for (; index < count; ++index) {
        const int top = viewport.top + scroller_->ItemTop(index);
        if (top >= viewport.bottom || top >= clipBottom)
            break;
        TouchListItem* item = scroller_->Item(index);
        const int bottom = top + item->Height();
        if (bottom <= viewport.top || bottom <= clipTop)
            continue;
        item->Draw(*dc, RECT{viewport.left, top, viewport.right, bottom});
    }
    DrawStrip(*dc);
    cairo_restore(cr);
    if (withBorder_)
        dc->FrameRect(client, colors_.border);
}

void TouchListCtrlWnd::DrawHeader(Dc& dc, const RECT& rect) {
    dc.FillRect(rect, colors_.headerBackground);
    if (headerText_.empty())
        return;
    if (!headerFont_) {
        LOGFONT lf;
        DefaultFont(lf);
        lf.lfHeight = -(Scale(kHeaderFontHeight) + FontSizeDelta());
        lf.lfWeight = FW_BOLD;
        headerFont_ = std::make_unique<Font>(lf);
    }
    dc.SelectFont(customHeaderFont_ ? customHeaderFont_ : headerFont_.get());
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(colors_.headerText);
    RECT text = rect;
    dc.DrawText(headerText_, text, DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc.SelectFont(nullptr);
}

void TouchListCtrlWnd::DrawStrip(Dc& dc) {
    const RECT& viewport = scroller_->Viewport();
    const int height = viewport.Height() - 2 * Scale(kStripMargin);
    const int total = scroller_->TotalHeight();
    if (total <= viewport.Height() || height <= 0)
        return;
    const int thumb = std::max(Scale(kMinThumbHeight),
                               static_cast<int>(static_cast<long long>(height) * viewport.Height() / total));
    const int range = std::max(0, height - thumb);
    const int position = std::clamp(scroller_->Position(), 0, scroller_->MaxPosition());
    const int top =
        viewport.top + Scale(kStripMargin) +
        (scroller_->MaxPosition()
             ? static_cast<int>(static_cast<long long>(range) * position / scroller_->MaxPosition())
             : 0);
    const int right = viewport.right - Scale(kStripMargin) / 2;
    dc.FillSolidRect(right - Scale(kThumbWidth), top, Scale(kThumbWidth), thumb, colors_.strip);
}

// ---- input -----------------------------------------------------------------

LRESULT TouchListCtrlWnd::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0 || !scroller_ || !IsWindowEnabled(window))
        return 0;
    RECT client;
    GetClientRect(window, &client);
    if (popupBody_ && !client.Contains(x, y)) {
        SendMessage(GetParent(window), WM_CLOSE_POPUP, 0, 0);
        return 0;
    }
    scroller_->OnPress(x, y);
    return 0;
}

void TouchListCtrlWnd::OnPointerMove(int x, int y, WPARAM) {
    if (!scroller_ || !IsWindowEnabled(window))
        return;
    scroller_->OnMove(x, y);
}

LRESULT TouchListCtrlWnd::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0 || !scroller_)
        return 0;
    const HWND self = window;
    ownRelease_ = true;
    scroller_->OnRelease(x, y);
    if (!IsWindow(self))
        return 0; // a click closed the page
    ownRelease_ = false;
    if (popupBody_ && GetCapture() != window)
        SetCapture(window);
    if (scroller_->TakeHeaderTap())
        NotifyParent(NM_LIST_HEADER_TAP);
    return 0;
}

LRESULT TouchListCtrlWnd::OnMouseWheel(UINT, short delta, int, int) {
    if (!scroller_)
        return 0;
    scroller_->SetPosition(scroller_->Position() - delta * Scale(kWheelStep) / kWheelNotch);
    return 0;
}

void TouchListCtrlWnd::OnCaptureChanged(HWND newCapture) {
    if (!scroller_ || newCapture == window)
        return;
    if (ownRelease_)
        return;
    scroller_->OnCaptureLost();
    if (popupBody_)
        SendMessage(GetParent(window), WM_CLOSE_POPUP, 0, 0);
}

void TouchListCtrlWnd::OnTimer(UINT_PTR id) {
    if (scroller_)
        scroller_->OnTimer(id);
}

void TouchListCtrlWnd::OnSize(UINT, UINT) {
    UpdateViewport();
    if (window)
        InvalidateRect(window, nullptr, false);
}

} // namespace mirodate
