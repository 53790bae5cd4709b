#pragma once
// The week: seven day boxes one under another, each labelled with its
// weekday and date and showing the day's entries as rich text (see
// WeekMarkup). A tap on an entry opens its item, a tap beside the entries or
// on the label opens that day; horizontal swipes and Left/Right go to the
// previous or next week. One instance serves the whole program. The fill is
// skipped while another fill holds the store's cache.
#include "ui/TextBoxWnd.h"
#include "views/ViewPage.h"
#include "views/WeekMarkup.h"

#include <array>
#include <memory>

namespace mirodate {

class WeekView : public ViewPage {
public:
    // Width of the day labels on a 240-pixel screen.
    static constexpr int kLabelWidth = 44;
    // Width of the mark that shows today beside its box.
    static constexpr int kTodayMarkWidth = 3;

    WeekView();
    ~WeekView() override;

    // Shows the week that holds `date` (from the locale's first day).
    void SetDate(const DateTime& date);
    DateTime CurrentDate() const override { return first_; }
    // Fills the seven boxes; returns without touching them when the store
    // is busy with another fill.
    void Reload() override;

    void NextWeek() { ChangeWeek(1); }
    void PreviousWeek() { ChangeWeek(-1); }

    TextBoxWnd& DayBox(int index) { return *boxes_[static_cast<std::size_t>(index)]; }
    const WeekMarkup::DayCounts& Counts(int index) const { return counts_[static_cast<std::size_t>(index)]; }
    // The rectangle of a day's label in the page's client coordinates.
    RECT LabelRect(int index) const;

    void OnPaint(HDC dc) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;
    bool OnViewKey(UINT key) override;
    void LayoutLists(const RECT& area) override;

private:
    void ChangeWeek(int weeks);
    void OpenEntry(const std::u16string& argument);
    void OpenDay(int index);
    void OnSwipe(bool toLeft);

    DateTime first_;
    std::array<std::unique_ptr<TextBoxWnd>, WeekMarkup::kDaysPerWeek> boxes_;
    std::array<WeekMarkup::DayCounts, WeekMarkup::kDaysPerWeek> counts_{};
    std::array<RECT, WeekMarkup::kDaysPerWeek> rows_{};
    std::unique_ptr<Font> labelFont_;
    std::unique_ptr<Font> labelBoldFont_;
    std::vector<PimItem> appointments_; // reused by every fill
    std::vector<PimItem> tasks_;
    DWORD lastSwipe_ = 0;
    bool swipeSeen_ = false;
};

} // namespace mirodate
