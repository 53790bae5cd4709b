#pragma once
// The engine of a finger-scrolled list: the rows and their prefix-sum layout,
// and the reading of presses, drags and releases into highlighting, taps,
// long taps, horizontal swipes, kinetic scrolling with friction and an
// elastic bounce at either end. It drives its window's timers; the window
// forwards pointer messages and timers to it and repaints when asked.
#include "ui/GestureTuning.h"
#include "ui/TouchListItem.h"
#include "ui/TouchScrollerHost.h"
#include "ui/WinTypes.h"

#include <memory>
#include <vector>

namespace mirodate {

class TouchScroller {
public:
    // Timers the scroller runs on its window.
    static constexpr UINT_PTR kFlingTimer = 0x7C01;
    static constexpr UINT_PTR kLongTapTimer = 0x7C02;
    static constexpr UINT_PTR kAnimationTimer = 0x7C03;
    // Period of an animated scroll's steps.
    static constexpr UINT kAnimationTick = 10;

    TouchScroller(HWND window, TouchScrollerHost& host, int minRowHeight);
    TouchScroller(const TouchScroller&) = delete;
    TouchScroller& operator=(const TouchScroller&) = delete;

    // Items. Each change lays the list out again.
    void Add(std::unique_ptr<TouchListItem> item);
    void Insert(int index, std::unique_ptr<TouchListItem> item);
    void Remove(int index);
    void Clear();
    // Call after item heights changed.
    void Layout();
    int Count() const { return static_cast<int>(items.size()); }
    TouchListItem* Item(int index) const;

    // The item area inside the window; the list's layout depends on its height.
    void SetViewport(const RECT& rect);
    const RECT& Viewport() const { return viewport; }
    // Scroll strip: presses whose x lies within this many pixels of the
    // viewport's right edge drag the scroll bar instead of the content.
    void SetStripWidth(int width) { stripWidth = width; }

    // Index of the item under viewport-relative y, or -1.
    int HitTest(int y) const;
    // Whether item i's span overlaps the viewport.
    bool IsVisible(int index) const;
    // Item i's top relative to the viewport's top (may be negative).
    int ItemTop(int index) const;
    // Brings item i wholly into view with an animated scroll.
    void Reveal(int index, bool fast);
    // Added to the target of the next Reveal, then forgotten.
    void SetRevealOffset(int extra) { revealOffset = extra; }
    void AnimateTo(int target, UINT durationMs);
    // Moves at once (clamped to the content), stopping any fling or animation.
    void SetPosition(int newPosition);
    void StopMotion();

    // Pointer input in window client coordinates.
    void OnPress(int x, int y);
    void OnMove(int x, int y);
    void OnRelease(int x, int y);
    // The pointer was taken away (another window captured it).
    void OnCaptureLost();
    // True when the timer was the scroller's.
    bool OnTimer(UINT_PTR id);
    // Ends a drag in progress without a fling (a view that opens a menu on a hold).
    void EndDrag();

    int Position() const { return position; }
    int MaxPosition() const { return maxPosition; }
    int TotalHeight() const { return totalHeight; }
    int AverageHeight() const { return averageHeight; }
    int Highlighted() const { return highlighted; }
    double Velocity() const { return velocity; }
    bool IsFlinging() const { return flinging; }
    bool IsDragging() const { return dragging; }
    bool IsAnimating() const { return animating; }
    bool IsPressed() const { return pressed; }

    // Header band: presses above this y (window coordinates) are header taps
    // when header taps are on; the release decides.
    void SetHeaderBand(int height, bool taps) { headerHeight = height, headerTaps = taps; }
    // Set by a press and release both inside the header band; read and cleared by the window.
    bool TakeHeaderTap();

private:
    void SetHighlight(int index, int viewX, int viewY);
    void ClearHighlight();
    void CancelLongTap();
    void ScrollBy(int dy); // the drag step: moves the content by dy, a third of it beyond the ends
    void FlingTick();
    void AnimationTick();
    int ClampPosition(int value) const;
    DWORD Now() const;

    HWND window;
    TouchScrollerHost& host;
    RECT viewport;
    int position = 0;
    int maxPosition = 0;
    std::vector<std::unique_ptr<TouchListItem>> items;
    std::vector<int> offsets{0};
    int totalHeight = 0;
    int averageHeight = 0;
    int minRowHeight = 1;
    int stripWidth = 0;
    int headerHeight = 0;
    bool headerTaps = false;

    int pressPoint = 0;
    int lastX = 0;
    int lastY = 0;
    int moveAccumulator = 0;
    DWORD pressTime = 0;
    DWORD lastMoveTime = 0;
    bool stillBeforeRelease = false;
    bool flinging = false;
    bool dragging = false;
    bool gestureUsed = false;
    bool pressed = false;
    bool swiped = false;
    bool stripDragging = false;
    bool headerPress = false;
    bool headerTap = false;
    double velocity = 0;
    double carriedVelocity = 0;
    double flingRemainder = 0; // the fraction of a pixel the fling still owes
    int highlighted = -1;
    bool longTapPending = false;
    DWORD longTapStart = 0;
    int longTapIndex = -1;
    bool animating = false;
    int animationFrom = 0;
    int animationTo = 0;
    DWORD animationStart = 0;
    UINT animationDuration = 0;
    int revealOffset = 0;
};

} // namespace mirodate
