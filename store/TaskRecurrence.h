#pragma once
// Completing a recurring task. The task itself moves on to its next
// occurrence, as todoman does it, rather than gaining a completed override
// per occurrence as Thunderbird does: the file stays one plain VTODO that
// every task program reads the same way, and the task shows where the user
// expects it next. DTSTART and DUE move by the same number of days, EXDATEs
// are skipped, and a COUNT shrinks by the occurrences passed so that the
// series still ends where it ended. When no occurrence is left the task is
// simply complete.
#include <libical/ical.h>

namespace mirodate {

class TaskRecurrence {
public:
    // Moves `todo` to the occurrence after its current one and marks it not
    // complete; false (nothing changed) when the rule has no later occurrence
    // or the task has no date to count from.
    static bool Advance(icalcomponent* todo);
};

} // namespace mirodate
