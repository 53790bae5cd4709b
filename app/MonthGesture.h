#pragma once
// The month grid's reading of a finger: a drag past a small threshold is no
// tap; a swipe far enough along one axis steps the month (or the year) at
// once and ends the gesture; a short, still press is a tap unless it follows
// the previous tap too closely.
#include <cstdint>

namespace mirodate {

class MonthGesture {
public:
    // Pixel constants are for a 240-pixel-wide screen; `scale` doubles them.
    explicit MonthGesture(int scale = 1) : scale_(scale) {}
    void SetScale(int scale) { scale_ = scale; }
    // Exchanges the axes: vertical swipes step years, horizontal ones months.
    void SetYearsOnVertical(bool on) { yearsOnVertical_ = on; }

    void Down(int x, int y, std::uint32_t tick);
    // Months to step (0 for none). Forward when the finger moves up or left.
    int Move(int x, int y);
    // True when the release is a tap to hit-test.
    bool Up(std::uint32_t tick);

    bool IsTracking() const { return tracking_; }
    bool IsDrag() const { return drag_; }

    static constexpr int kDragThreshold = 6;        // moved more than this: no tap
    static constexpr int kStepDistance = 60;        // swipe this far: step at once
    static constexpr std::uint32_t kHoldMs = 500;   // held this long: no tap
    static constexpr std::uint32_t kTapGapMs = 201; // taps closer than this are one

private:
    int scale_;
    bool yearsOnVertical_ = false;
    bool tracking_ = false;
    bool drag_ = false;
    bool ended_ = false;
    int downX_ = 0;
    int downY_ = 0;
    std::uint32_t downTick_ = 0;
    bool hadTap_ = false;
    std::uint32_t lastTapTick_ = 0;
};

} // namespace mirodate
