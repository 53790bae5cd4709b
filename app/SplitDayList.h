#pragma once
// The list of one day's items under the month grid (the split month view):
// appointments, birthdays and anniversaries and, when the month view shows
// tasks, the day's tasks. The header band names the day. A tapped row is
// handed to the owner's callback.
#include "data/PimItem.h"
#include "ui/TouchListCtrlWnd.h"

#include <functional>
#include <memory>

namespace mirodate {

class SplitDayList : public TouchListCtrlWnd {
public:
    using ChooseCallback = std::function<void(const PimItem& item)>;

    SplitDayList();
    ~SplitDayList() override;

    HWND Create(HWND parent, int x, int y, int width, int height);
    void SetChooseCallback(ChooseCallback callback) { onChoose_ = std::move(callback); }

    // Shows the day's items (only when it is another day than the one shown,
    // or `reload`).
    void ShowDay(int year, int month, int day, bool reload = false);
    // Reads the shown day again from the cache.
    void Refresh();
    bool IsShowing(int year, int month, int day) const {
        return year == year_ && month == month_ && day == day_;
    }
    const std::vector<PimItem>& Items() const { return items_; }

    void OnSize(UINT sizeParam, UINT type) override;

private:
    void Fill();

    int year_ = 0;
    int month_ = 0;
    int day_ = 0;
    std::vector<PimItem> items_;
    ChooseCallback onChoose_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> timeFont_;
    int layoutWidth_ = 0;
};

} // namespace mirodate
