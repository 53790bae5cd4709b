#pragma once
// Base of every compiled pattern element. A pattern is a tree of these,
// owned by its RegexPattern; children are referenced, not owned.
//
// Protocol: Match tries the element at ctx.pos; on success it advances pos,
// pushes its backtracking frame and returns true; on failure it leaves pos,
// the stack and the captures as it found them. MatchNext is called only on an
// element whose last Match (or MatchNext) succeeded and whose frame is on top
// of the stack: it pops the frame and produces the next alternative (pushing
// a new frame), or restores pos and captures and returns false.
//
// The C++ call depth of matching follows the nesting of the pattern, never
// the length of the text: repetitions loop and keep their iterations on the
// explicit stack.
#include "regex/RegexCharSet.h"
#include "regex/RegexMatchContext.h"

#include <climits>

namespace mirodate {

class RegexElement {
public:
    static constexpr int kUnbounded = INT_MAX;

    virtual bool Match(RegexMatchContext& ctx) const = 0;
    virtual bool MatchNext(RegexMatchContext& ctx) const = 0;
    virtual ~RegexElement();

    // Static facts used by the compiler and the search's start-position scan.
    virtual int MinWidth() const = 0;
    virtual int MaxWidth() const = 0; // kUnbounded when not limited
    // Adds every code unit a non-empty match can begin with. Elements whose
    // effect cannot be summed up that way (assertions, back-references) add
    // the full set, so the answer is always safe to skip by.
    virtual void AddFirstChars(RegexCharSet& set) const = 0;
    // Compile-time rewrites; `follow` is the set of code units that can come
    // right after this element, or null when that is unknown.
    virtual void Optimize(const RegexCharSet* follow);
    virtual bool IsAnchoredAtStart() const { return false; }
    // Height of the element tree below and including this element.
    virtual int TreeDepth() const { return 1; }
    // For elements that always match exactly one code unit: its set.
    virtual const RegexCharSet* SingleCharSet() const { return nullptr; }
};

} // namespace mirodate
