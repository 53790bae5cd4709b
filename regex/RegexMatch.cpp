#include "regex/RegexMatch.h"

namespace mirodate {

namespace {
constexpr int kMinimumSize = 8; // first allocation, then doubling
}

int RegexMatch::Get(int index) const {
    if (index < 0 || index >= Size())
        return -1;
    return values_[index];
}

void RegexMatch::Set(int index, int value) {
    if (index < 0)
        return;
    if (index >= Size()) {
        int needed = index + 1;
        int grown = Size() < kMinimumSize ? kMinimumSize : Size() * 2;
        if (grown < needed)
            grown = (needed + 11) / 8 * 8;
        values_.resize(grown, -1);
    }
    values_[index] = value;
}

void RegexMatch::SetWork(std::int64_t steps, bool budgetExceeded) {
    steps_ = steps;
    budgetExceeded_ = budgetExceeded;
}

} // namespace mirodate
