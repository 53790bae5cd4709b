#pragma once
// The plain selectable list the context menu shows: rows of one fixed
// height, a bold header line as the first row, item texts with an optional
// icon and check mark, one selected row that keys and taps move. A tap on a
// row that is not greyed selects it and notifies the parent (NM_LIST_ROW_CHOSEN, the header
// carrying the list's window). While its menu is open the list holds the
// pointer: a press outside it, or losing the pointer, sends WM_CLOSE_POPUP
// to the parent.
#include "ui/BaseWnd.h"
#include "ui/Bitmap.h"

#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class Dc;
class Font;

constexpr const char* kListCtrlClass = "KESTRELIA::LISTCTRLWND";

struct ListRow {
    // Mark codes of a row: an arrow up (an ascending order) or down.
    static constexpr int kMarkAscending = 160;
    static constexpr int kMarkDescending = 161;

    std::u16string text;
    int icon = -1; // index into the icon strip; -1 = none
    bool checked = false;
    bool enabled = true; // a greyed row cannot be chosen
    int mark = 0;        // 0, kMarkAscending or kMarkDescending
};

struct ListColors {
    COLORREF border = RGB(0, 0, 0);
    COLORREF background = RGB(255, 255, 255);
    COLORREF backgroundGradient = RGB(0xE4, 0xE4, 0xE4);
    COLORREF text = RGB(0, 0, 0);
    COLORREF textSelected = RGB(255, 255, 255);
    COLORREF selectionMark = RGB(0, 0, 255);
    COLORREF textDisabled = RGB(0x90, 0x90, 0x90);
};

class ListCtrlWnd : public BaseWnd {
public:
    HWND Create(HWND parent, int x, int y, int width, int height, int rowHeight);

    void SetRows(std::vector<ListRow> rows);
    int Count() const { return static_cast<int>(rows_.size()); }
    const ListRow* Row(int index) const;
    // The header line above the rows, in `font` (which must outlive the list).
    void SetHeader(const std::u16string& text, const Font* font);
    void SetColors(const ListColors& colors);
    // Squares of `size` pixels side by side, key colour transparent.
    void SetIconStrip(const Bitmap* strip, int size);

    int Selected() const { return selected_; }
    void SetSelected(int index);
    // Scrolls so that this row (header counted as row 0) is the first visible one.
    void SetFirstVisibleRow(int row);
    int FirstVisibleRow() const { return scrollTop_ / rowHeight_; }
    int VisibleRows() const;
    int RowHeight() const { return rowHeight_; }

    // Open: the list takes the pointer and reports losing it.
    void SetMenuOpen(bool open);
    bool IsMenuOpen() const { return menuOpen_; }

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnCaptureChanged(HWND newCapture) override;
    void OnKeyDown(UINT key, UINT flags) override;

private:
    int ContentHeight() const { return (Count() + 1) * rowHeight_; }
    int MaxScroll() const;
    int RowAt(int y) const; // item index under client y; -1 for the header or nothing
    void DrawCheck(Dc& dc, const RECT& row, COLORREF color);
    void DrawSortMark(Dc& dc, const RECT& row, COLORREF color, bool descending);
    void ClosePopup();

    std::vector<ListRow> rows_;
    std::u16string header_;
    const Font* headerFont_ = nullptr;
    std::unique_ptr<Font> rowFont_; // sized from the row height and the user's size delta
    ListColors colors_;
    const Bitmap* iconStrip_ = nullptr;
    int iconSize_ = 0;
    int rowHeight_ = 1;
    int selected_ = -1;
    int scrollTop_ = 0;
    bool menuOpen_ = false;
    bool tracking_ = false;
    bool dragged_ = false;
    int pressY_ = 0;
    int pressScroll_ = 0;
};

} // namespace mirodate
