#pragma once
// The agenda: the coming days one under another, each with a header and its
// appointments and due tasks. One instance serves the whole program; it is
// refilled from a start date (today when opened from the month view).
#include "views/ViewPage.h"

namespace mirodate {

class AgendaView : public ViewPage {
public:
    AgendaView();

    // The first day of the agenda; fills again when the page exists.
    void SetStartDate(const DateTime& date);
    DateTime CurrentDate() const override { return start_; }
    void Reload() override;

    // Where the fill put tomorrow's header (0: none).
    int TomorrowPosition() const { return tomorrowPosition_; }
    // The number of days the agenda covers: AgendaSize x 7 + 1.
    static int DayCount();

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;

private:
    DateTime start_;
    bool followsToday_ = true;          // started on today: after midnight it starts on the new today
    std::vector<PimItem> appointments_; // reused by every fill
    std::vector<PimItem> tasks_;
};

} // namespace mirodate
