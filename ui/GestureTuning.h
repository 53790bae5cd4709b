#pragma once
// How fingers are read by every touch list: thresholds, the fling's friction
// and the elastic ends. One process-wide record, set from the screen's
// resolution whenever a list is created. Pixel values are already scaled.
#include "ui/WinTypes.h"

namespace mirodate {

struct GestureTuning {
    int kineticEnabled = 1;
    int dragThreshold = 16;       // a single vertical move above this starts a drag
    int dragJitter = 6;           // while dragging, moves of this size or less are ignored
    int swipeThreshold = 80;      // |dx| above this (and above |dy|) is a horizontal swipe
    double flingMinVelocity = 10; // smallest release velocity that flings; also "still moving"
    UINT bounceDuration = 300;
    UINT revealDuration = 400;
    UINT revealFastDuration = 50;
    UINT longTapDelay = 700;
    UINT stillTime = 100; // a finger still for longer than this before lifting gives no fling
    UINT flingTick = 25;
    double friction = 2.0 / 15.0; // share of the velocity lost per fling tick
    double flingStop = 1.0;
    double velocityScale = 30;
    double maxVelocity = 120;
    // Velocity carried over from an interrupted fling; not scaled with the
    // screen, unlike maxVelocity.
    double carryMax = 60;
    UINT carryAge = 700;
    double rubberBand = 1.0 / 3.0; // beyond an end the content follows a third of the finger

    // The record every list reads.
    static GestureTuning& Current();
    // Fills the record for the current screen resolution.
    static void Set();
};

} // namespace mirodate
