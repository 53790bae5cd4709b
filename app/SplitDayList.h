#pragma once
// The list of one day's items under the month grid (the split month view):
// appointments, birthdays and anniversaries and, when the month view shows
// tasks, the day's tasks, as the rows of every view. The header band names
// the day. Taps and holds on rows go to the owner (the main window), which
// acts on them as the views do.
#include "data/PimItem.h"
#include "ui/TouchListCtrlWnd.h"
#include "views/RowLook.h"

#include <functional>
#include <memory>

namespace mirodate {

class SplitDayList : public TouchListCtrlWnd, public RowListener {
public:
    // A tap on a row: its item, the row's day and whether the tap hit a
    // task's check-mark zone.
    using TapCallback = std::function<void(const PimItem& item, double dayDate, bool inCheckZone)>;
    // A hold on a row with an item.
    using HoldCallback = std::function<void(const PimItem& item, double dayDate)>;

    SplitDayList();
    ~SplitDayList() override;

    HWND Create(HWND parent, int x, int y, int width, int height);
    void SetCallbacks(TapCallback tap, HoldCallback hold) {
        onTap_ = std::move(tap);
        onHold_ = std::move(hold);
    }

    // Shows the day's items (only when it is another day than the one shown,
    // or `reload`).
    void ShowDay(int year, int month, int day, bool reload = false);
    // Reads the shown day again from the cache.
    void Refresh();
    bool IsShowing(int year, int month, int day) const {
        return year == year_ && month == month_ && day == day_;
    }
    const std::vector<PimItem>& Items() const { return items_; }
    const RowLook& Look() const { return *look_; }

    void OnRowTap(ViewRow& row, int x, int y) override;
    void OnLongTap(int index) override;
    void OnSize(UINT sizeParam, UINT type) override;

private:
    void Fill();

    int year_ = 0;
    int month_ = 0;
    int day_ = 0;
    std::vector<PimItem> items_;
    std::unique_ptr<RowLook> look_;
    TapCallback onTap_;
    HoldCallback onHold_;
    int layoutWidth_ = 0;
};

} // namespace mirodate
