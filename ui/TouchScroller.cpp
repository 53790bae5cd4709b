#include "ui/TouchScroller.h"

#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <cmath>

namespace mirodate {

namespace {
// Moves reported above this y are positions just above the window that
// arrived as unsigned 16-bit values.
constexpr int kWrappedY = 1000;
constexpr int kWrapBase = 65535;
// A finger counts as resting once no real movement came for this long.
constexpr DWORD kRestingAfter = 101;
} // namespace

TouchScroller::TouchScroller(HWND window_, TouchScrollerHost& host_, int minRowHeight_)
    : window(window_), host(host_), minRowHeight(std::max(1, minRowHeight_)) {
    averageHeight = minRowHeight;
}

DWORD TouchScroller::Now() const {
    return GetTickCount();
}

// ---- items and layout ------------------------------------------------------

void TouchScroller::Add(std::unique_ptr<TouchListItem> item) {
    // Appending extends the prefix sums by one entry; filling a long list stays linear.
    const int height = std::max(0, item->Height());
    items.push_back(std::move(item));
    offsets.push_back(offsets.back() + height);
    totalHeight = offsets.back();
    averageHeight = totalHeight / static_cast<int>(items.size());
    maxPosition = std::max(0, totalHeight - viewport.Height());
}

void TouchScroller::Insert(int index, std::unique_ptr<TouchListItem> item) {
    index = std::clamp(index, 0, Count());
    items.insert(items.begin() + index, std::move(item));
    if (highlighted >= index)
        ++highlighted;
    Layout();
}

void TouchScroller::Remove(int index) {
    if (index < 0 || index >= Count())
        return;
    if (highlighted == index)
        highlighted = -1;
    else if (highlighted > index)
        --highlighted;
    if (longTapIndex == index)
        CancelLongTap();
    items.erase(items.begin() + index);
    Layout();
}

void TouchScroller::Clear() {
    CancelLongTap();
    StopMotion();
    highlighted = -1;
    items.clear();
    position = 0;
    Layout();
}

TouchListItem* TouchScroller::Item(int index) const {
    return index >= 0 && index < Count() ? items[index].get() : nullptr;
}

void TouchScroller::Layout() {
    offsets.resize(items.size() + 1);
    offsets[0] = 0;
    for (size_t i = 0; i < items.size(); ++i)
        offsets[i + 1] = offsets[i] + std::max(0, items[i]->Height());
    totalHeight = offsets.back();
    averageHeight = items.empty() ? minRowHeight : totalHeight / static_cast<int>(items.size());
    maxPosition = std::max(0, totalHeight - viewport.Height());
    if (!dragging && !flinging && !animating)
        position = ClampPosition(position);
}

void TouchScroller::SetViewport(const RECT& rect) {
    viewport = rect;
    Layout();
}

int TouchScroller::ClampPosition(int value) const {
    return std::clamp(value, 0, maxPosition);
}

int TouchScroller::HitTest(int y) const {
    const int content = position + y;
    if (items.empty() || content < 0 || content >= totalHeight)
        return -1;
    // offsets is sorted; the item is the last one starting at or above the point.
    auto it = std::upper_bound(offsets.begin(), offsets.end(), content);
    return static_cast<int>(it - offsets.begin()) - 1;
}

bool TouchScroller::IsVisible(int index) const {
    if (index < 0 || index >= Count())
        return false;
    return offsets[index + 1] > position && offsets[index] < position + viewport.Height();
}

int TouchScroller::ItemTop(int index) const {
    if (index < 0 || index > Count())
        return 0;
    return offsets[index] - position;
}

// ---- animated and direct scrolling -----------------------------------------

void TouchScroller::Reveal(int index, bool fast) {
    if (index < 0 || index >= Count())
        return;
    const bool whollyVisible =
        offsets[index] >= position && offsets[index + 1] <= position + viewport.Height();
    const int extra = revealOffset;
    revealOffset = 0;
    if (whollyVisible)
        return;
    const GestureTuning& t = GestureTuning::Current();
    AnimateTo(ClampPosition(offsets[index] + extra), fast ? t.revealFastDuration : t.revealDuration);
}

void TouchScroller::AnimateTo(int target, UINT durationMs) {
    if (flinging) {
        KillTimer(window, kFlingTimer);
        flinging = false;
        velocity = 0;
    }
    if (durationMs == 0 || target == position) {
        KillTimer(window, kAnimationTimer);
        animating = false;
        const int old = position;
        position = target;
        if (old != position)
            host.OnScrolled(old, position);
        host.RefreshViewport();
        return;
    }
    animating = true;
    animationFrom = position;
    animationTo = target;
    animationStart = Now();
    animationDuration = durationMs;
    SetTimer(window, kAnimationTimer, kAnimationTick);
}

void TouchScroller::AnimationTick() {
    const DWORD elapsed = Now() - animationStart;
    const int old = position;
    if (elapsed >= animationDuration) {
        KillTimer(window, kAnimationTimer);
        animating = false;
        position = animationTo;
    } else {
        // Decelerating towards the target: fast at first, settling gently.
        const double t = static_cast<double>(elapsed) / animationDuration;
        const double eased = 1.0 - (1.0 - t) * (1.0 - t);
        position = animationFrom + RoundToInt((animationTo - animationFrom) * eased);
    }
    if (position != old) {
        host.OnScrolled(old, position);
        host.RefreshViewport();
    }
}

void TouchScroller::SetPosition(int newPosition) {
    StopMotion();
    const int old = position;
    position = ClampPosition(newPosition);
    if (old != position)
        host.OnScrolled(old, position);
    host.RefreshViewport();
}

void TouchScroller::StopMotion() {
    KillTimer(window, kFlingTimer);
    KillTimer(window, kAnimationTimer);
    flinging = false;
    animating = false;
    velocity = 0;
    flingRemainder = 0;
}

// ---- highlight and long tap ------------------------------------------------

void TouchScroller::SetHighlight(int index, int viewX, int viewY) {
    if (index == highlighted)
        return;
    ClearHighlight();
    if (TouchListItem* item = Item(index)) {
        highlighted = index;
        item->Highlight(viewX, viewY - ItemTop(index));
    }
}

void TouchScroller::ClearHighlight() {
    if (TouchListItem* item = Item(highlighted))
        item->RemoveHighlight();
    highlighted = -1;
}

void TouchScroller::CancelLongTap() {
    if (longTapPending)
        KillTimer(window, kLongTapTimer);
    longTapPending = false;
    longTapIndex = -1;
}

bool TouchScroller::TakeHeaderTap() {
    const bool tap = headerTap;
    headerTap = false;
    return tap;
}

// ---- pointer ---------------------------------------------------------------

void TouchScroller::OnPress(int x, int y) {
    const GestureTuning& t = GestureTuning::Current();
    headerTap = false;
    if (headerTaps && y < headerHeight) {
        headerPress = true;
        lastX = x;
        lastY = y;
        return;
    }
    headerPress = false;
    if (t.kineticEnabled && flinging) {
        KillTimer(window, kFlingTimer);
        flinging = false;
        carriedVelocity = std::clamp(velocity, -t.carryMax, t.carryMax);
        velocity = 0;
        gestureUsed = true;
    } else {
        carriedVelocity = 0;
        gestureUsed = false;
    }
    if (animating) {
        // A finger on a settling list holds it where it is.
        KillTimer(window, kAnimationTimer);
        animating = false;
    }
    dragging = false;
    swiped = false;
    stripDragging = false;
    stillBeforeRelease = false;
    moveAccumulator = 0;
    flingRemainder = 0;
    pressed = true;

    const int viewX = x - viewport.left, viewY = y - viewport.top;
    pressPoint = viewY;
    lastX = x;
    lastY = y;
    pressTime = lastMoveTime = Now();
    SetCapture(window);

    const int index = HitTest(viewY);
    SetHighlight(index, viewX, viewY);
    if (TouchListItem* item = Item(index); item && item->AcceptsLongTap(window)) {
        host.RefreshViewport();
        longTapPending = true;
        longTapIndex = index;
        longTapStart = Now();
        SetTimer(window, kLongTapTimer, t.longTapDelay);
    }
    if (stripWidth > 0 && x > viewport.right - stripWidth) {
        CancelLongTap();
        ClearHighlight();
        stripDragging = true;
        gestureUsed = true; // the strip scrolls; a tap on it opens nothing
    }
    host.RefreshViewport();
}

void TouchScroller::OnMove(int x, int y) {
    if (!pressed || swiped || headerPress)
        return;
    const GestureTuning& t = GestureTuning::Current();
    if (y > kWrappedY)
        y -= kWrapBase;
    const int dx = x - lastX;
    int dy = y - lastY;

    if (std::abs(dx) > std::abs(dy) && std::abs(dx) > t.swipeThreshold) {
        if (stripDragging) {
            stripDragging = false;
            return;
        }
        gestureUsed = true;
        swiped = true;
        CancelLongTap();
        ClearHighlight();
        ReleaseCapture();
        host.RefreshViewport();
        if (x >= lastX)
            host.OnSwipeRight();
        else
            host.OnSwipeLeft();
        return;
    }

    if (stripDragging) {
        // The strip stands for the whole content: one pixel of strip is
        // totalHeight / viewport height pixels of content, the other way round.
        const int height = std::max(1, viewport.Height());
        dy = static_cast<int>(static_cast<double>(totalHeight) / height * (lastY - y));
    }

    const DWORD now = Now();
    moveAccumulator += dy;
    const bool moving = std::abs(moveAccumulator) > t.flingMinVelocity;
    if (moving)
        lastMoveTime = now;
    if (moving || now - lastMoveTime >= kRestingAfter)
        moveAccumulator = 0;

    if (std::abs(dy) <= t.dragThreshold && !dragging) {
        if (gestureUsed)
            return;
        const int viewY = y - viewport.top;
        const int index = HitTest(viewY);
        if (index != highlighted) {
            if (index != longTapIndex)
                CancelLongTap();
            SetHighlight(index, x - viewport.left, viewY);
            host.RefreshViewport();
        }
        return;
    }
    if (dragging && std::abs(dy) <= t.dragJitter)
        return;

    CancelLongTap();
    ClearHighlight();
    ScrollBy(dy);
    dragging = true;
    gestureUsed = true;
    lastX = x;
    lastY = y;
    host.RefreshViewport();
}

void TouchScroller::ScrollBy(int dy) {
    const int wanted = position - dy;
    if (wanted < 0 || wanted > maxPosition)
        dy /= 3; // rubber band beyond either end
    const int old = position;
    position -= dy;
    if (old != position)
        host.OnScrolled(old, position);
}

void TouchScroller::OnRelease(int x, int y) {
    const GestureTuning& t = GestureTuning::Current();
    if (headerPress) {
        headerPress = false;
        headerTap = headerTaps && y < headerHeight;
        return;
    }
    if (!pressed)
        return;
    pressed = false;
    if (y > kWrappedY)
        y -= kWrapBase;
    CancelLongTap();
    if (GetCapture() == window)
        ReleaseCapture();
    const DWORD now = Now();
    if (now - lastMoveTime > t.stillTime)
        stillBeforeRelease = true;

    const int viewX = x - viewport.left, viewY = y - viewport.top;
    if (!flinging && !dragging && position >= 0 && position <= maxPosition) {
        if (gestureUsed) {
            ClearHighlight();
            host.RefreshViewport();
            return;
        }
        const int index = HitTest(viewY);
        if (index != highlighted)
            SetHighlight(index, viewX, viewY);
        ClearHighlight();
        host.RefreshViewport();
        if (TouchListItem* item = Item(index))
            item->Click(window, viewX, viewY - ItemTop(index));
        else
            host.OnClickEmpty(x, y);
        return;
    }

    ClearHighlight();
    if (now - pressTime > t.carryAge || (carriedVelocity > 0 && viewY < pressPoint) ||
        (carriedVelocity < 0 && viewY > pressPoint))
        carriedVelocity = 0;
    const DWORD elapsed = std::max<DWORD>(1, now - pressTime);
    velocity = (viewY - pressPoint) * t.velocityScale / elapsed + carriedVelocity;
    velocity = std::clamp(velocity, -t.maxVelocity, t.maxVelocity);
    if (stripDragging)
        velocity = 0; // the strip moves the content the other way; it never flings

    if (position < 0 || position > maxPosition) {
        dragging = false;
        velocity = 0;
        AnimateTo(position < 0 ? 0 : maxPosition, t.bounceDuration);
        return;
    }
    dragging = false;
    if (t.kineticEnabled && !stillBeforeRelease && std::abs(velocity) > t.flingMinVelocity) {
        flinging = true;
        flingRemainder = 0;
        SetTimer(window, kFlingTimer, t.flingTick);
    } else {
        velocity = 0;
    }
    host.RefreshViewport();
}

void TouchScroller::OnCaptureLost() {
    if (!pressed || swiped)
        return;
    // Someone else took the pointer (a pop-up opened): the press ends here,
    // without a tap and without a fling.
    pressed = false;
    CancelLongTap();
    ClearHighlight();
    dragging = false;
    if (position < 0 || position > maxPosition)
        AnimateTo(ClampPosition(position), GestureTuning::Current().bounceDuration);
    host.RefreshViewport();
}

void TouchScroller::EndDrag() {
    pressed = false;
    dragging = false;
    CancelLongTap();
    ClearHighlight();
    if (GetCapture() == window)
        ReleaseCapture();
}

// ---- timers ----------------------------------------------------------------

bool TouchScroller::OnTimer(UINT_PTR id) {
    switch (id) {
    case kFlingTimer:
        FlingTick();
        return true;
    case kAnimationTimer:
        AnimationTick();
        return true;
    case kLongTapTimer: {
        const int index = longTapIndex;
        CancelLongTap();
        if (pressed && !dragging && index >= 0 && index == highlighted) {
            gestureUsed = true; // the release after a long tap is no tap
            ClearHighlight();
            host.RefreshViewport();
            host.OnLongTap(index);
        }
        return true;
    }
    default:
        return false;
    }
}

void TouchScroller::FlingTick() {
    const GestureTuning& t = GestureTuning::Current();
    if (std::abs(velocity) <= t.flingStop) {
        KillTimer(window, kFlingTimer);
        flinging = false;
        velocity = 0;
        flingRemainder = 0;
        host.RefreshViewport();
        return;
    }
    velocity -= velocity * t.friction;
    // Whole pixels move; the fraction is carried to the next tick.
    const double step = velocity + flingRemainder;
    const int whole = static_cast<int>(step);
    flingRemainder = step - whole;
    if (whole == 0)
        return;
    ScrollBy(whole);
    if (position < 0 || position > maxPosition) {
        // The fling ran into an end: it springs back from there.
        KillTimer(window, kFlingTimer);
        flinging = false;
        velocity = 0;
        flingRemainder = 0;
        AnimateTo(ClampPosition(position), t.bounceDuration);
        return;
    }
    host.RefreshViewport();
}

} // namespace mirodate
