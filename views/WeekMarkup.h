#pragma once
// The mark-up of the week view: one day box with its appointments and tasks
// written as a comma-separated run (bold timed entries with or without their
// start time, plain all-day entries, italic tasks, overdue tasks in red, the
// summary when a day holds more entries than allowed), and the week's title.
// Each entry is wrapped in an "action:\\\" link that names its item, so that
// a tap on it opens the item.
#include "data/DateTime.h"
#include "data/PimItem.h"
#include "platform/Types.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

struct WeekMarkupOptions {
    // Entries written out in one box when "WeekMaxEvents" is not set: more
    // than a box shows without scrolling; beyond it the counts say more.
    static constexpr int kDefaultMaxEvents = 15;

    bool showTime = true;         // "ShowTimeOnWeek"
    int maxEvents = -1;           // "WeekMaxEvents"; negative: no limit
    bool tasks = true;            // "ShowTasksByDueDate" or "ShowTasksByStartDate"
    bool strikePast = false;      // "StrikeThroughPastEvents"
    bool colorize = false;        // "ColorizeText"
    COLORREF text = RGB(0, 0, 0); // "colorText" of the week view
    DateTime now;

    // Read from the settings and the week view's skin section.
    static WeekMarkupOptions FromSettings();
};

// What an entry's link names: the item, its kind and the day of the box.
struct WeekEntryLink {
    std::int32_t oid = -1;
    bool task = false;
    DateTime day;

    // "item:<oid>:<a|t>:<yyyymmdd>", the argument after "action:\\\".
    std::u16string ToArgument() const;
    static std::optional<WeekEntryLink> Parse(const std::u16string& argument);
};

class WeekMarkup {
public:
    static constexpr int kDaysPerWeek = 7;

    // The numbers a day box wrote (or summarised).
    struct DayCounts {
        int appointments = 0;
        int tasks = 0;
    };

    // The box of `day` from its appointments and tasks in store order.
    static std::u16string DayBox(const DateTime& day, const std::vector<PimItem>& appointments,
                                 const std::vector<PimItem>& tasks, const WeekMarkupOptions& options,
                                 DayCounts* counts = nullptr);
    // "%02x%02x%02x" of red, green and blue.
    static std::u16string HexColor(COLORREF color);
    // "%s  %i" (month, year), or "%s/%s  %i" when the week runs into the next
    // month, followed by the week number.
    static std::u16string Title(const DateTime& firstDay);
    // The first day of the week that holds `date`; `firstDayOfWeek` 0 is Sunday.
    static DateTime WeekStart(const DateTime& date, int firstDayOfWeek);
    // ISO 8601 week number of a date.
    static int IsoWeek(const DateTime& date);
    // A subject as mark-up text: '<' and '&' written as entities.
    static std::u16string Escape(const std::u16string& text);
};

} // namespace mirodate
