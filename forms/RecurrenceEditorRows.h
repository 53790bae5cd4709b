#pragma once
// What the recurrence editor shows for a pattern: the rows its type uses,
// their labels and value texts, and the steps of the rows that count up and
// down. Kept apart from the page so that the page only lays out and paints.
#include "data/DateTime.h"
#include "data/RecurrencePattern.h"

#include <string>
#include <vector>

namespace mirodate {

class RecurrenceEditorRows {
public:
    enum class Row { Type, Interval, Days, DayOfMonth, Instance, Month, End, Occurrences, EndDate };
    // How a row is edited: a menu or picker on a tap, a minus and a plus, or
    // seven day toggles.
    enum class Control { Menu, Stepper, DayToggles };

    // The rows of the pattern's type, top to bottom.
    static std::vector<Row> RowsFor(const RecurrencePattern& pattern);
    static Control ControlOf(Row row);
    static std::u16string Label(Row row);
    static std::u16string ValueText(Row row, const RecurrencePattern& pattern);

    // The types in the order the menu lists them, and their names.
    static const std::vector<int>& Types();
    static std::u16string TypeName(int type);
    // The end choices, in the order "SetOccurrences", "SetPatternEndDate", "SetNoEndDate".
    enum End { kEndAfterCount = 0, kEndOnDate = 1, kNoEnd = 2 };
    static int EndOf(const RecurrencePattern& pattern);
    // The weekdays (0 Sunday .. 6 Saturday) from the locale's first day of the week.
    static std::vector<int> DayOrder();

    // One step up (+1) or down (-1) of a stepper row, within its range;
    // false when the value is at its end.
    static bool Step(Row row, RecurrencePattern& pattern, int delta);
    // Flips one weekday of the mask; false (nothing changed) when it is the
    // last one left, since a pattern without days never happens.
    static bool ToggleDay(RecurrencePattern& pattern, int dayOfWeek);
    // Sets how the pattern ends; an end date starts one month after `start`.
    static void SetEnd(RecurrencePattern& pattern, int end, const DateTime& start);

    // Default count when a count is chosen.
    static constexpr int kDefaultOccurrences = 10;
};

} // namespace mirodate
