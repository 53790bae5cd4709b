#include "views/ItemTexts.h"

#include "lang/LanguageTable.h"
#include "platform/Locale.h"

#include <cmath>

namespace mirodate {

namespace {
bool SameDay(const SYSTEMTIME& a, const SYSTEMTIME& b) {
    return a.wYear == b.wYear && a.wMonth == b.wMonth && a.wDay == b.wDay;
}
bool SameTime(const SYSTEMTIME& a, const SYSTEMTIME& b) {
    return a.wHour == b.wHour && a.wMinute == b.wMinute && a.wSecond == b.wSecond;
}
// The last day an all-day item covers: its end is 00:00 of the day after.
SYSTEMTIME LastAllDayDate(const PimItem& item) {
    if (item.endValue <= item.startValue)
        return item.start;
    return DateTime(item.endValue - 1.0 / 86400.0).ToSystemTime();
}
} // namespace

std::u16string ItemTexts::TimeRange(const PimItem& item) {
    if (item.kind == PimItem::kBirthday)
        return Lang("Birthday");
    if (item.kind == PimItem::kAnniversary)
        return Lang("Anniversary");
    if (item.isAllDay) {
        const SYSTEMTIME last = LastAllDayDate(item);
        if (SameDay(item.start, last))
            return Lang("Allday");
        return Locale::FormatShortDate(item.start) + u" - " + Locale::FormatShortDate(last) + u" " +
               Lang("Allday");
    }
    const std::u16string startTime = Locale::FormatShortTime(item.start);
    if (SameDay(item.start, item.end)) {
        if (SameTime(item.start, item.end))
            return startTime;
        return startTime + u" - " + Locale::FormatShortTime(item.end);
    }
    return Locale::FormatShortDate(item.start) + u" " + startTime + u" - " +
           Locale::FormatShortDate(item.end) + u" " + Locale::FormatShortTime(item.end);
}

int ItemTexts::DaysBetween(const DateTime& from, const DateTime& to) {
    return static_cast<int>(std::floor(to.StartOfDay().ToDate()) - std::floor(from.StartOfDay().ToDate()));
}

std::u16string ItemTexts::DueText(const PimItem& task, const DateTime& today) {
    if (task.noDueDate)
        return {};
    const DateTime due = DateTime::FromSystemTime(task.dueDate);
    const int days = DaysBetween(today, due);
    const std::u16string label = Lang("Due");
    if (days < 0)
        return label + u": " + Locale::FormatShortDate(task.dueDate);
    if (days == 0)
        return label + u": " + Lang("Today");
    if (days == 1)
        return label + u": " + Lang("Tomorrow");
    const std::string count = std::to_string(days);
    return label + u": " + std::u16string(count.begin(), count.end()) + u" " + Lang("Days") + u" (" +
           Locale::FormatShortDate(task.dueDate) + u")";
}

COLORREF ItemTexts::RowColor(const PimItem& item, COLORREF plain, bool colorize) {
    if (!colorize || item.colors.empty())
        return plain;
    return item.colors.front();
}

bool ItemTexts::IsStruckThrough(const PimItem& item, bool strikePast, const DateTime& now) {
    // A cancelled appointment or occurrence stays listed, struck through.
    if (item.isCancelled)
        return true;
    if (item.IsTask())
        return item.isComplete;
    if (!strikePast || item.kind != PimItem::kAppointment)
        return false;
    return item.endValue < now.ToDate();
}

} // namespace mirodate
