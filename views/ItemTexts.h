#pragma once
// The texts and colours every view gives an item: the time range of an
// appointment, the due state of a task, the row colour and whether the item
// is drawn struck through. Dates and times are written in the locale's short
// formats.
#include "data/DateTime.h"
#include "data/PimItem.h"
#include "platform/Types.h"

#include <string>

namespace mirodate {

class ItemTexts {
public:
    // "Allday", "Birthday", "Anniversary", a start time alone, "%s - %s",
    // "%s %s - %s %s" or "%s - %s %s" (an all-day item over several days).
    static std::u16string TimeRange(const PimItem& item);
    // "Due: <date>" overdue, "Due: Today", "Due: Tomorrow", or
    // "Due: <n> Days (<date>)"; empty for a task without a due date.
    static std::u16string DueText(const PimItem& task, const DateTime& today);
    // The text colour of `item`'s row: `plain` unless colouring is on and the
    // item has a colour (its first category's, or the birthday or
    // anniversary colour).
    static COLORREF RowColor(const PimItem& item, COLORREF plain, bool colorize);
    // Whether an item is drawn struck through: a past appointment when the
    // setting asks for it, a completed task or a cancelled item always.
    static bool IsStruckThrough(const PimItem& item, bool strikePast, const DateTime& now);
    // The whole days from `from` to `to` (both taken at midnight).
    static int DaysBetween(const DateTime& from, const DateTime& to);
};

} // namespace mirodate
