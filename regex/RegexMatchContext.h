#pragma once
// The state of one search while it runs. Elements are immutable after
// compilation; everything that changes during matching lives here, so one
// compiled pattern can be searched from several places at once.
//
// Backtracking uses an explicit stack (`stack`): an element that succeeds
// pushes what it needs to resume or undo itself, and its MatchNext pops it.
// Frames are strictly last-in-first-out. Capture writes go through a trail of
// (index, old value) pairs so that groups, atomic groups and look-arounds can
// restore captures when they are backtracked or abandoned.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace mirodate {

class RegexElement;

class RegexMatchContext {
public:
    // Backtracking entries (stack plus trail) one search may hold: 8 M ints,
    // 32 MB. Ordinary patterns need a few entries per repetition of a group;
    // beyond this the search is abandoned instead of exhausting memory.
    static constexpr std::size_t kMaxBacktrackEntries = std::size_t{8} << 20;

    static constexpr std::int64_t kMemoryCheckInterval = 1024;

    void Reset(const char16_t* text, int length, int groupCount, std::int64_t budget);

    // One unit of work. Returns false once the budget is spent, and from then on.
    // An element pushes at most a few entries per step, so looking at the
    // memory held every kMemoryCheckInterval steps is enough.
    bool Step() {
        if (++steps > budget)
            aborted = true;
        else if ((steps & (kMemoryCheckInterval - 1)) == 0 &&
                 stack.size() + trail.size() > kMaxBacktrackEntries)
            aborted = true;
        return !aborted;
    }
    // Work proportional to a scan of `units` characters.
    void Charge(std::int64_t units) { steps += units; }

    void Push(int value) { stack.push_back(value); }
    int Pop() {
        int value = stack.back();
        stack.pop_back();
        return value;
    }

    void SetCapture(int index, int value) {
        trail.push_back(index);
        trail.push_back(captures[index]);
        captures[index] = value;
    }
    void Unwind(std::size_t mark) {
        while (trail.size() > mark) {
            int old = trail.back();
            trail.pop_back();
            captures[trail.back()] = old;
            trail.pop_back();
        }
    }
    // Drops the frames above `mark` (an atomic step: no way back into them).
    void Cut(std::size_t mark) { stack.resize(mark); }

    const char16_t* text = nullptr;
    int length = 0;
    int pos = 0;
    int searchStart = 0; // where this search began: the "\G" position
    std::vector<int> stack;
    std::vector<int> trail;
    std::vector<int> captures; // start and end per group, group 0 first; -1 when unset
    std::int64_t steps = 0;
    std::int64_t budget = 0;
    bool aborted = false;
    const RegexElement* root = nullptr;
    int recursionDepth = 0;
    int recursionLimit = 0;
};

} // namespace mirodate
