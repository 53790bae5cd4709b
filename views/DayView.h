#pragma once
// One day as a list: the header with the full date, the day's appointments
// and the tasks due that day. Left and Right (keys or a horizontal flick)
// slide to the previous or next day: the new day comes in beside the old one
// and both move across in 16 steps, unless animations are off.
#include "views/ViewPage.h"

#include <functional>

namespace mirodate {

class DayView : public ViewPage {
public:
    // Steps of the slide, and the pause after each.
    static constexpr int kSlideSteps = 16;
    static constexpr double kSlideStepShare = 0.0625;
    static constexpr std::uint32_t kSlidePauseMs = 5;
    // Flicks closer together than this change the day once.
    static constexpr DWORD kFlickGuard = 50;

    explicit DayView(const DateTime& date);

    void SetDate(const DateTime& date);
    DateTime CurrentDate() const override { return date_; }
    void Reload() override;

    void NextDay() { ChangeDay(1); }
    void PreviousDay() { ChangeDay(-1); }
    // The header text of a day: "dddd',' dd MMMM yyyy".
    static std::u16string HeaderText(const DateTime& date);

    ViewList& IncomingList() { return incoming_; }
    // Called after each slide step (benchmarks and tests watch the slide).
    void SetSlideObserver(std::function<void(int step)> observer) { slideObserver_ = std::move(observer); }

    void OnListSwipe(bool toLeft) override;

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;
    bool OnViewKey(UINT key) override;
    void LayoutLists(const RECT& area) override;
    void OnHeaderTap(const DateTime& date) override;

private:
    void ChangeDay(int direction);
    void Fill(ViewList& list);

    DateTime date_;
    ViewList incoming_;
    RECT area_{};
    DWORD lastFlick_ = 0;
    bool flickSeen_ = false;
    std::vector<PimItem> appointments_;
    std::vector<PimItem> tasks_;
    std::function<void(int)> slideObserver_;
};

} // namespace mirodate
