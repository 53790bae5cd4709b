#include "regex/RegexMatchContext.h"

namespace mirodate {

void RegexMatchContext::Reset(const char16_t* newText, int newLength, int groupCount,
                              std::int64_t newBudget) {
    text = newText;
    length = newLength;
    pos = 0;
    stack.clear();
    trail.clear();
    captures.assign(2 * (groupCount + 1), -1);
    steps = 0;
    budget = newBudget;
    aborted = false;
    recursionDepth = 0;
}

} // namespace mirodate
