#pragma once
// The year view: the twelve months of one year as small grids in the
// locale's week layout, the days with items marked and today framed. A
// swipe to the left or right moves to the next or previous year; a tap on a
// month shows the month view there; the title and "Back" return to the
// month view as it was.
#include "data/DateTime.h"
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"
#include "ui/MenuBar.h"
#include "views/YearMarkers.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace mirodate {

class YearView : public DialogWnd {
public:
    // Unscaled swipe distance (240-pixel screen) that changes the year.
    static constexpr int kSwipeDistance = 40;

    explicit YearView(int year);
    ~YearView() override;

    // Creates the page (modeless, over `owner`) and shows it.
    HWND Open(HWND owner);
    void SetYear(int year);
    int Year() const { return year_; }
    const YearMarkers& Markers() const { return markers_; }
    // Whether the marks of the shown year are still being read.
    bool MarkersPending() const { return reading_ != nullptr; }
    // The month's rectangle on the page.
    RECT MonthRect(int month) const;
    // The rectangle of a day's number within its month.
    RECT DayRect(int month, int day) const;
    // Called when the page hides itself; the owner deletes it later.
    void SetCloseHandler(std::function<void(YearView&)> handler) { closeHandler_ = std::move(handler); }
    void Relabel();

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnScreenReset() override;
    void OnDeferredCommand(UINT id) override;
    void OnStoreChanged(const StoreChange& change) override;
    // Closes itself; its owner deletes it.
    void OnCloseAll() override;

private:
    void Layout();
    void MakeFonts();
    void DrawMonth(Dc& dc, int month);
    void Close();
    std::u16string Title() const;
    // Reads the marks now when the months are cached, else on a worker
    // thread, so that the page shows at once.
    void LoadMarkers();
    void JoinReader();

    // One reading of a year's marks on the worker thread.
    struct Reading {
        int year = 0;
        std::vector<bool> days;
        std::thread thread;
    };

    int year_;
    YearMarkers markers_;
    ButtonWnd title_;
    MenuBar menuBar_;
    RECT grid_{};
    int columns_ = 3;
    std::unique_ptr<Font> headerFont_;
    std::unique_ptr<Font> dayFont_;
    int downX_ = 0, downY_ = 0;
    bool down_ = false;
    bool mondayFirst_ = false;
    std::function<void(YearView&)> closeHandler_;
    std::unique_ptr<Reading> reading_;
};

} // namespace mirodate
