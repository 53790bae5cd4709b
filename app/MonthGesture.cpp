#include "app/MonthGesture.h"

#include <cstdlib>

namespace mirodate {

void MonthGesture::Down(int x, int y, std::uint32_t tick) {
    tracking_ = true;
    drag_ = false;
    ended_ = false;
    downX_ = x;
    downY_ = y;
    downTick_ = tick;
}

int MonthGesture::Move(int x, int y) {
    if (!tracking_ || ended_)
        return 0;
    const int dx = x - downX_;
    const int dy = y - downY_;
    if (std::abs(dx) > kDragThreshold * scale_ || std::abs(dy) > kDragThreshold * scale_)
        drag_ = true;
    const bool vertical = std::abs(dy) >= std::abs(dx);
    const int distance = vertical ? dy : dx;
    if (std::abs(distance) < kStepDistance * scale_)
        return 0;
    ended_ = true; // one step per gesture
    const int size = vertical != yearsOnVertical_ ? 1 : 12;
    return distance < 0 ? size : -size;
}

bool MonthGesture::Up(std::uint32_t tick) {
    if (!tracking_)
        return false;
    tracking_ = false;
    if (drag_ || ended_)
        return false;
    if (tick - downTick_ >= kHoldMs)
        return false;
    if (hadTap_ && tick - lastTapTick_ < kTapGapMs)
        return false;
    hadTap_ = true;
    lastTapTick_ = tick;
    return true;
}

} // namespace mirodate
