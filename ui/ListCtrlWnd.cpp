#include "ui/ListCtrlWnd.h"

#include "ui/Dc.h"
#include "ui/DrawPrimitives.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cstdlib>

namespace mirodate {

namespace {
constexpr int kTextInset = 6;   // left edge of text and icons
constexpr int kCheckWidth = 16; // room for the check mark at the right
constexpr int kDragStart = 8;   // a press that moves further scrolls instead of choosing
} // namespace

namespace {
// Share of the row height the row text's pixel size takes.
constexpr int kRowTextPercent = 40;
} // namespace

HWND ListCtrlWnd::Create(HWND parent, int x, int y, int width, int height, int rowHeight) {
    rowHeight_ = std::max(1, rowHeight);
    // The text takes about 40 % of the row, as a finger-sized row wants.
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(rowHeight_ * kRowTextPercent / 100 + FontSizeDelta(), 6, rowHeight_);
    rowFont_ = std::make_unique<Font>(logFont);
    return BaseWnd::Create(parent, kListCtrlClass, WS_CHILD | WS_VISIBLE, u"", x, y, width, height);
}

void ListCtrlWnd::SetRows(std::vector<ListRow> rows) {
    rows_ = std::move(rows);
    if (selected_ >= Count())
        selected_ = -1;
    scrollTop_ = std::clamp(scrollTop_, 0, MaxScroll());
    if (window)
        InvalidateRect(window, nullptr, false);
}

const ListRow* ListCtrlWnd::Row(int index) const {
    return index >= 0 && index < Count() ? &rows_[index] : nullptr;
}

void ListCtrlWnd::SetHeader(const std::u16string& text, const Font* font) {
    header_ = text;
    headerFont_ = font;
    if (window)
        InvalidateRect(window, nullptr, false);
}

void ListCtrlWnd::SetColors(const ListColors& colors) {
    colors_ = colors;
    if (window)
        InvalidateRect(window, nullptr, false);
}

void ListCtrlWnd::SetIconStrip(const Bitmap* strip, int size) {
    iconStrip_ = strip;
    iconSize_ = size;
}

int ListCtrlWnd::VisibleRows() const {
    RECT client;
    GetClientRect(window, &client);
    return client.bottom / rowHeight_;
}

int ListCtrlWnd::MaxScroll() const {
    if (!window)
        return 0;
    RECT client;
    GetClientRect(window, &client);
    return std::max(0, ContentHeight() - client.bottom);
}

void ListCtrlWnd::SetSelected(int index) {
    selected_ = index >= 0 && index < Count() ? index : -1;
    if (selected_ >= 0) {
        // Keep the selected row in view.
        RECT client;
        GetClientRect(window, &client);
        const int top = (selected_ + 1) * rowHeight_;
        if (top < scrollTop_)
            scrollTop_ = top;
        if (top + rowHeight_ > scrollTop_ + client.bottom)
            scrollTop_ = top + rowHeight_ - client.bottom;
        scrollTop_ = std::clamp(scrollTop_, 0, MaxScroll());
    }
    if (window)
        Redraw(false);
}

void ListCtrlWnd::SetFirstVisibleRow(int row) {
    scrollTop_ = std::clamp(row * rowHeight_, 0, MaxScroll());
    if (window)
        Redraw(false);
}

int ListCtrlWnd::RowAt(int y) const {
    const int row = (y + scrollTop_) / rowHeight_;
    if (y + scrollTop_ < 0 || row < 1 || row > Count())
        return -1;
    return row - 1;
}

void ListCtrlWnd::SetMenuOpen(bool open) {
    menuOpen_ = open;
    if (open)
        SetCapture(window);
    else if (GetCapture() == window)
        ReleaseCapture();
}

void ListCtrlWnd::ClosePopup() {
    menuOpen_ = false;
    SendMessage(GetParent(window), WM_CLOSE_POPUP, 0, 0);
}

// ---- painting --------------------------------------------------------------

void ListCtrlWnd::OnPaint(HDC dc) {
    if (!dc)
        return;
    RECT client;
    GetClientRect(window, &client);
    dc->FillRect(client, colors_.background);
    dc->SetBkMode(TRANSPARENT);
    const int first = scrollTop_ / rowHeight_;
    for (int row = first; row <= Count(); ++row) {
        const int top = row * rowHeight_ - scrollTop_;
        if (top >= client.bottom)
            break;
        const RECT rect{0, top, client.right, top + rowHeight_};
        const int index = row - 1;
        const bool selected = index >= 0 && index == selected_;
        if (selected)
            dc->FillRect(rect, colors_.selectionMark);
        else
            DrawGradient(*dc, rect, colors_.backgroundGradient, colors_.background, 0);
        COLORREF color = selected ? colors_.textSelected : colors_.text;
        if (index >= 0 && !rows_[index].enabled)
            color = colors_.textDisabled;
        int textLeft = Scale(kTextInset);
        if (row == 0) {
            dc->SelectFont(headerFont_);
        } else {
            dc->SelectFont(rowFont_.get());
            const ListRow& item = rows_[index];
            if (item.icon >= 0 && iconStrip_ && iconSize_ > 0 &&
                (item.icon + 1) * iconSize_ <= iconStrip_->Width()) {
                dc->TransparentImage(textLeft, top + (rowHeight_ - iconSize_) / 2, iconSize_, iconSize_,
                                     *iconStrip_, item.icon * iconSize_, 0, iconSize_, iconSize_, kKeyColor);
                textLeft += iconSize_ + Scale(kTextInset);
            }
            if (item.checked)
                DrawCheck(*dc, rect, color);
            else if (item.mark == ListRow::kMarkAscending || item.mark == ListRow::kMarkDescending)
                DrawSortMark(*dc, rect, color, item.mark == ListRow::kMarkDescending);
        }
        dc->SetTextColor(color);
        RECT text{textLeft, top, client.right - Scale(kCheckWidth), top + rowHeight_};
        const std::u16string& label = row == 0 ? header_ : rows_[index].text;
        dc->DrawText(label, text, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
        dc->SelectFont(nullptr);
    }
    dc->FrameRect(client, colors_.border);
}

void ListCtrlWnd::DrawCheck(Dc& dc, const RECT& row, COLORREF color) {
    const int s = Scale(1);
    const int x = row.right - Scale(kCheckWidth) + 2 * s, y = row.top + row.Height() / 2;
    dc.Line(x, y, x + 3 * s, y + 4 * s, color, Scale(2));
    dc.Line(x + 3 * s, y + 4 * s, x + 10 * s, y - 5 * s, color, Scale(2));
}

void ListCtrlWnd::DrawSortMark(Dc& dc, const RECT& row, COLORREF color, bool descending) {
    // A filled triangle in the check's place: its point shows the direction.
    const int s = Scale(1);
    const int left = row.right - Scale(kCheckWidth) + 2 * s, right = left + 10 * s;
    const int middle = row.top + row.Height() / 2;
    const int tip = descending ? middle + 4 * s : middle - 4 * s;
    const int base = descending ? middle - 3 * s : middle + 3 * s;
    dc.Polygon({{left, base}, {right, base}, {(left + right) / 2, tip}}, color, color);
}

// ---- input -----------------------------------------------------------------

LRESULT ListCtrlWnd::OnPointerDown(int button, int x, int y, WPARAM) {
    if (button != 0)
        return 0;
    RECT client;
    GetClientRect(window, &client);
    if (!client.Contains(x, y)) {
        if (menuOpen_)
            ClosePopup();
        return 0;
    }
    tracking_ = true;
    dragged_ = false;
    pressY_ = y;
    pressScroll_ = scrollTop_;
    if (!menuOpen_)
        SetCapture(window);
    return 0;
}

void ListCtrlWnd::OnPointerMove(int, int y, WPARAM) {
    if (!tracking_)
        return;
    if (!dragged_ && std::abs(y - pressY_) <= Scale(kDragStart))
        return;
    dragged_ = true;
    const int top = std::clamp(pressScroll_ - (y - pressY_), 0, MaxScroll());
    if (top != scrollTop_) {
        scrollTop_ = top;
        Redraw(false);
    }
}

LRESULT ListCtrlWnd::OnPointerUp(int button, int x, int y, WPARAM) {
    if (button != 0 || !tracking_)
        return 0;
    tracking_ = false;
    if (!menuOpen_ && GetCapture() == window)
        ReleaseCapture();
    RECT client;
    GetClientRect(window, &client);
    if (dragged_ || !client.Contains(x, y))
        return 0;
    const int index = RowAt(y);
    if (index < 0 || !rows_[index].enabled)
        return 0;
    SetSelected(index);
    NotifyParent(NM_LIST_ROW_CHOSEN);
    return 0;
}

void ListCtrlWnd::OnCaptureChanged(HWND newCapture) {
    if (newCapture == window)
        return;
    tracking_ = false;
    if (menuOpen_)
        ClosePopup();
}

void ListCtrlWnd::OnKeyDown(UINT key, UINT flags) {
    // The menu that owns the list handles its keys.
    SendMessage(GetParent(window), WM_KEYDOWN, key, flags);
}

} // namespace mirodate
