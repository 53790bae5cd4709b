#pragma once
// Shared pieces of the control tests: a plain top-level page that records
// what its children tell it, and list rows of given heights and colours that
// record taps.
#include "UiTestFixture.h"
#include "ui/BaseWnd.h"
#include "ui/Dc.h"
#include "ui/TouchListItem.h"

#include <vector>

namespace mirodate::test {

// A top-level window that keeps every command and notification it receives.
class RecordingParent : public BaseWnd {
public:
    struct Notice {
        HWND from;
        UINT code;
    };
    std::vector<HWND> commands;
    std::vector<Notice> notices;
    int closePopups = 0;

    HWND Open(int width, int height) {
        return Create(nullptr, "MIRODATE::TESTPARENT", WS_POPUP | WS_VISIBLE, u"parent", 0, 0, width, height);
    }
    void OnPaint(HDC dc) override { dc->FillSolidRect(0, 0, dc->Width(), dc->Height(), RGB(10, 20, 30)); }
    void OnCommand(UINT, UINT, HWND control) override { commands.push_back(control); }
    LRESULT OnNotify(UINT_PTR, NMHDR* header) override {
        notices.push_back(Notice{header->hwndFrom, header->code});
        return 0;
    }
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_CLOSE_POPUP)
            ++closePopups;
        return BaseWnd::WindowProc(hwnd, message, wParam, lParam);
    }
};

// A row painted in one colour, counting its taps.
class ColourRow : public TouchListItem {
public:
    ColourRow(int height, COLORREF colour, std::vector<int>* clicks, int index, bool longTaps = false)
        : height_(height), colour_(colour), clicks_(clicks), index_(index), longTaps_(longTaps) {}
    void Click(HWND, int, int) override {
        if (clicks_)
            clicks_->push_back(index_);
    }
    bool AcceptsLongTap(HWND) override { return longTaps_; }
    void Draw(Dc& dc, const RECT& rect) override {
        dc.FillRect(rect, highlighted_ ? RGB(255, 255, 0) : colour_);
    }
    int Height() const override { return height_; }

private:
    int height_;
    COLORREF colour_;
    std::vector<int>* clicks_;
    int index_;
    bool longTaps_;
};

// Row colours that tell neighbours apart.
inline COLORREF RowColour(int index) {
    return index % 2 ? RGB(200, 0, 0) : RGB(0, 0, 200);
}

} // namespace mirodate::test
