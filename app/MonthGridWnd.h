#pragma once
// The month grid child of the main window: the year/month bar, the row of
// day names and six rows of days with the selected day, today's frame, week
// numbers and the day markers. A finger swipe steps the month (or the year),
// a tap selects a day or switches to a neighbouring month; what happened is
// told to the parent with WM_NOTIFY.
#include "app/MarkerWorker.h"
#include "app/MonthGesture.h"
#include "app/MonthGridModel.h"
#include "ui/BaseWnd.h"
#include "ui/Bitmap.h"

#include <memory>

namespace mirodate {

class Dc;
class Font;
struct SkinPicture;

constexpr const char* kMonthGridClass = "MIRODATE::MONTHGRID";

// Notify codes the grid sends to its parent.
constexpr UINT NM_DAY_SELECTED = 0x8193;  // a day of the shown month was tapped
constexpr UINT NM_MONTH_CHANGED = 0x8194; // the shown month changed by a swipe or a tap
constexpr UINT NM_YEAR_BAR_TAP = 0x8197;  // the year in the top bar was tapped
constexpr UINT NM_MONTH_BAR_TAP = 0x8198; // the month name in the top bar was tapped

// The month view's colours: the skin's "styles.calendar" over these defaults.
struct MonthGridColors {
    COLORREF grid = RGB(0xA0, 0xA0, 0xA0);
    COLORREF yearMonthBarBg = RGB(0x30, 0x30, 0x30);
    COLORREF yearMonthBarText = RGB(0xFF, 0xFF, 0xFF);
    COLORREF dayBarBg = RGB(0x50, 0x50, 0x50);
    COLORREF dayBarText = RGB(0xFF, 0xFF, 0xFF);
    COLORREF dayGridText = RGB(0, 0, 0);
    COLORREF dayGridTextNextPrevMonth = RGB(0x90, 0x90, 0x90);
    COLORREF weekNumber = RGB(0x70, 0x70, 0xB0);
    COLORREF dayGridBg = RGB(0xFF, 0xFF, 0xFF);
    COLORREF dayGridBgSelected = RGB(0xB8, 0xD0, 0xF8);
    COLORREF dayGridBorderToday = RGB(0xE0, 0x20, 0x20);
    COLORREF dayGridTextSelected = RGB(0, 0, 0);
    COLORREF appointmentIndicator = RGB(0x20, 0x60, 0xE0);
    COLORREF taskIndicator = RGB(0x20, 0xA0, 0x20);

    static MonthGridColors FromSkin();
};

class MonthGridWnd : public BaseWnd {
public:
    // The Sunday column's day name when the skin gives no colour for it.
    static constexpr COLORREF kSundayRed = RGB(255, 0, 0);
    // Side of a marker triangle as a share of the smaller cell side.
    static constexpr double kMarkerShare = 0.4166666666666667;

    MonthGridWnd();
    ~MonthGridWnd() override;

    HWND Create(HWND parent, int x, int y, int width, int height);

    MonthGridModel& Model() { return model_; }
    const MonthGridModel& Model() const { return model_; }
    // Shows the month of the date with the date selected; markers follow.
    void ShowDate(int year, int month, int day);
    void StepMonths(int months);
    // Recomputes the markers of the shown month (after a data change).
    void RefreshMarkers(bool immediate = false);
    void SetMarkersEnabled(bool on) { markersEnabled_ = on; }
    const MonthGridColors& Colors() const { return colors_; }

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void Notify(UINT code);
    void Changed(bool monthChanged);
    void DrawBars(Dc& dc, const MonthGridModel::Geometry& g);
    void DrawCell(Dc& dc, const MonthGridModel::Geometry& g, int index, const SYSTEMTIME& today);
    void DrawGridLines(Dc& dc, const MonthGridModel::Geometry& g);
    void EnsureFonts(int barHeight, int rowHeight);

    MonthGridModel model_;
    MonthGesture gesture_;
    MonthGridColors colors_;
    MarkerWorker worker_;
    bool markersEnabled_ = true;
    bool firstLineStyle_ = false;
    bool secondLineStyle_ = true;
    bool showWeekNumbers_ = false;
    const SkinPicture* backgroundSource_ = nullptr; // the picture background_ was made from
    Bitmap background_;
    std::unique_ptr<Font> barFont_;
    std::unique_ptr<Font> dayFont_;
    std::unique_ptr<Font> weekFont_;
    int fontBarHeight_ = 0;
    int fontRowHeight_ = 0;
};

} // namespace mirodate
