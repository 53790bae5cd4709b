#pragma once
// The quick view: a compact look at what comes next. From now on, the
// appointments still ahead today and those of the coming days (and the tasks
// due, where tasks are shown in the agenda), at most kMaxItems of them, each
// day under its header, in the skin's "styles.quickview" colours.
#include "views/ViewPage.h"

namespace mirodate {

class QuickView : public ViewPage {
public:
    // How far ahead it looks, and how many items it shows at most.
    static constexpr int kDaysAhead = 14;
    static constexpr int kMaxItems = 12;

    QuickView();

    DateTime CurrentDate() const override { return DateTime::Today(); }
    void Reload() override;
    // The items of the last fill, in order.
    const std::vector<PimItem>& Shown() const { return shown_; }

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;

private:
    std::vector<PimItem> appointments_; // reused by every fill
    std::vector<PimItem> tasks_;
    std::vector<PimItem> shown_;
};

} // namespace mirodate
