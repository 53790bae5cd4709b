#include "ui/GestureTuning.h"

#include "ui/Scale.h"

namespace mirodate {

GestureTuning& GestureTuning::Current() {
    static GestureTuning tuning;
    return tuning;
}

void GestureTuning::Set() {
    GestureTuning& t = Current();
    t = GestureTuning();
    t.dragThreshold = Scale(8);
    t.dragJitter = Scale(3);
    t.swipeThreshold = Scale(40);
    t.flingMinVelocity = Scale(5);
    t.maxVelocity = Scale(60);
}

} // namespace mirodate
