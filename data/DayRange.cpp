#include "data/DayRange.h"

namespace mirodate {

DayRange DayRange::Days(const DateTime& first, const DateTime& last) {
    if (!first.IsValid() || !last.IsValid())
        return DayRange();
    return DayRange(first.GetYear(), first.GetMonth(), first.GetDay(), last.GetYear(), last.GetMonth(),
                    last.GetDay());
}

DayRange DayRange::Month(int year, int month) {
    // DaysInMonth answers 0 outside 1..12, which makes the range invalid.
    return DayRange(year, month, 1, year, month, DaysInMonth(year, month));
}

} // namespace mirodate
