#include "data/DateTimeSpan.h"

#include <cmath>

namespace mirodate {

long long DateTimeSpan::GetTotalSeconds() const {
    return std::llround(days_ * kSecondsPerDay);
}

} // namespace mirodate
