#pragma once

namespace mirodate {

// How a repetition chooses its count.
enum class RegexRepeatKind {
    kFixed,      // exactly n times ("{n}")
    kGreedy,     // as many as possible, giving back one at a time
    kLazy,       // as few as possible, taking one more at a time ("?" after the quantifier)
    kPossessive, // as many as possible, never giving back ("+" after the quantifier)
};

} // namespace mirodate
