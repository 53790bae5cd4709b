#include "views/WeekMarkup.h"

#include "data/DateTimeSpan.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "skin/SkinStyles.h"

#include <cmath>
#include <cstdio>

namespace mirodate {

namespace {

// The link prefix of an entry (the owner's own kind of link).
constexpr char16_t kActionPrefix[] = u"action:\\\\\\";
constexpr char16_t kItemTag[] = u"item:";
constexpr char16_t kRed[] = u"ff0000";

std::u16string Ascii(const char* text) {
    return std::u16string(text, text + std::char_traits<char>::length(text));
}

std::u16string Number(long value) {
    return Ascii(std::to_string(value).c_str());
}

// The text up to (not including) the next ':' from `at`, moving past it.
std::u16string Field(const std::u16string& text, std::size_t& at) {
    if (at >= text.size())
        return {};
    const std::size_t end = std::min(text.find(u':', at), text.size());
    std::u16string field = text.substr(at, end - at);
    at = end + 1;
    return field;
}

bool ParseNumber(const std::u16string& text, long long& value, std::size_t maxDigits) {
    if (text.empty() || text.size() > maxDigits)
        return false;
    value = 0;
    for (char16_t c : text) {
        if (c < u'0' || c > u'9')
            return false;
        value = value * 10 + (c - u'0');
    }
    return true;
}

class BoxWriter {
public:
    BoxWriter(const DateTime& day, const WeekMarkupOptions& options) : day_(day), options_(options) {}

    void Appointment(const PimItem& item) {
        const std::u16string color = ColorOf(item);
        std::u16string subject = WeekMarkup::Escape(item.subject);
        if (options_.strikePast && item.endValue < options_.now.ToDate())
            subject = u"<s>" + subject + u"</s>";
        const bool startsToday = std::floor(item.startValue) == std::floor(day_.ToDate());
        const bool timed = !item.isAllDay && item.kind == PimItem::kAppointment;
        std::u16string entry;
        if (timed && startsToday && options_.showTime) {
            const std::u16string time = Locale::FormatShortTime(item.start);
            entry = color.empty()
                        ? u"<b>" + time + u" " + subject + u"</b>"
                        : u"<font color='#" + color + u"'><b>" + time + u" " + subject + u"</b></font>";
        } else if (timed) {
            entry = color.empty() ? u"<b>" + subject + u"</b>"
                                  : u"<font color='#" + color + u"'><b>" + subject + u"</b></font>";
        } else {
            entry = color.empty() ? subject : u"<font color='#" + color + u"'>" + subject + u"</font>";
        }
        Add(entry, item, false);
        ++counts_.appointments;
    }

    // First pass: tasks placed on this day by their dates; second pass
    // (`overdue`): open tasks whose due date has passed, in red on today.
    void Task(const PimItem& task, bool overdue) {
        const std::u16string subject = WeekMarkup::Escape(task.subject);
        if (!subject.empty() && text_.find(subject) != std::u16string::npos)
            return;
        std::u16string entry;
        if (overdue) {
            entry = u"<font color='#" + std::u16string(kRed) + u"'><i>" + subject + u"</i></font>";
        } else {
            const std::u16string color = ColorOf(task);
            entry = color.empty() ? u"<i>" + subject + u"</i>"
                                  : u"<font color='#" + color + u"'><i>" + subject + u"</i></font>";
        }
        Add(entry, task, true);
        ++counts_.tasks;
    }

    std::u16string Finish(WeekMarkup::DayCounts* counts) const {
        if (counts)
            *counts = counts_;
        const std::u16string textColor = WeekMarkup::HexColor(options_.text);
        std::u16string body = text_;
        if (options_.maxEvents >= 0 && counts_.appointments + counts_.tasks > options_.maxEvents) {
            body = u"<font color='#" + textColor + u"'>" + Lang("Appointments") + u": " +
                   Number(counts_.appointments) + u", " + Lang("Tasks") + u": " + Number(counts_.tasks) +
                   u"</font>";
        }
        return u"<font color='#" + textColor + u"'>" + body + u"</font>";
    }

private:
    std::u16string ColorOf(const PimItem& item) const {
        if (!options_.colorize || item.colors.empty())
            return {};
        return WeekMarkup::HexColor(item.colors.front());
    }

    void Add(const std::u16string& entry, const PimItem& item, bool task) {
        WeekEntryLink link{item.oid, task, day_};
        text_ += u"<a href='";
        text_ += kActionPrefix;
        text_ += link.ToArgument();
        text_ += u"'>";
        text_ += entry;
        text_ += u"</a>, ";
    }

    DateTime day_;
    const WeekMarkupOptions& options_;
    std::u16string text_;
    WeekMarkup::DayCounts counts_;
};

} // namespace

WeekMarkupOptions WeekMarkupOptions::FromSettings() {
    WeekMarkupOptions options;
    options.showTime = Settings::GetShowTimeOnWeek();
    options.maxEvents = Settings::GetWeekMaxEvents(kDefaultMaxEvents);
    options.tasks = (Settings::GetShowTasksByDueDate() || Settings::GetShowTasksByStartDate()) &&
                    Settings::IsTaskViewEnabled(u"Week");
    options.strikePast = Settings::GetStrikeThroughPastEvents();
    options.colorize = Settings::GetColorizeText();
    options.text = SkinStyles::Current().weekView.colorText;
    options.now = DateTime::Now();
    return options;
}

std::u16string WeekEntryLink::ToArgument() const {
    char date[16];
    std::snprintf(date, sizeof date, "%04d%02d%02d", day.GetYear(), day.GetMonth(), day.GetDay());
    return std::u16string(kItemTag) + Number(oid) + (task ? u":t:" : u":a:") + Ascii(date);
}

std::optional<WeekEntryLink> WeekEntryLink::Parse(const std::u16string& argument) {
    const std::u16string tag(kItemTag);
    if (argument.compare(0, tag.size(), tag) != 0)
        return std::nullopt;
    std::size_t at = tag.size();
    const std::u16string oid = Field(argument, at);
    const std::u16string kind = Field(argument, at);
    const std::u16string date = Field(argument, at);
    long long oidValue = 0;
    long long dateValue = 0;
    if (!ParseNumber(oid, oidValue, 10) || oidValue > INT32_MAX || (kind != u"a" && kind != u"t") ||
        !ParseNumber(date, dateValue, 8) || date.size() != 8)
        return std::nullopt;
    WeekEntryLink link;
    link.oid = static_cast<std::int32_t>(oidValue);
    link.task = kind == u"t";
    link.day = DateTime(static_cast<int>(dateValue / 10000), static_cast<int>(dateValue / 100 % 100),
                        static_cast<int>(dateValue % 100));
    if (!link.day.IsValid())
        return std::nullopt;
    return link;
}

std::u16string WeekMarkup::DayBox(const DateTime& day, const std::vector<PimItem>& appointments,
                                  const std::vector<PimItem>& tasks, const WeekMarkupOptions& options,
                                  DayCounts* counts) {
    BoxWriter writer(day, options);
    for (const PimItem& item : appointments)
        writer.Appointment(item);
    if (options.tasks) {
        const double dayStart = std::floor(day.ToDate());
        const double today = std::floor(options.now.ToDate());
        auto placed = [&](const PimItem& task) {
            return (!task.noDueDate && std::floor(task.dueDateValue) == dayStart) ||
                   (!task.noStartDate && std::floor(task.startDateValue) == dayStart);
        };
        auto overdue = [&](const PimItem& task) {
            return dayStart == today && !placed(task) && !task.isComplete && !task.noDueDate &&
                   std::floor(task.dueDateValue) < today;
        };
        for (const PimItem& task : tasks)
            if (!task.isComplete && placed(task))
                writer.Task(task, false);
        for (const PimItem& task : tasks)
            if (overdue(task))
                writer.Task(task, true);
    }
    return writer.Finish(counts);
}

std::u16string WeekMarkup::HexColor(COLORREF color) {
    char text[8];
    std::snprintf(text, sizeof text, "%02x%02x%02x", GetRValue(color), GetGValue(color), GetBValue(color));
    return Ascii(text);
}

std::u16string WeekMarkup::Title(const DateTime& firstDay) {
    const int year = firstDay.GetYear();
    const int month = firstDay.GetMonth();
    // The week runs into the next month when its last day lies beyond this one's.
    const bool twoMonths = firstDay.GetDay() + kDaysPerWeek - 1 > DaysInMonth(year, month);
    std::u16string title;
    if (twoMonths) {
        const int next = month % 12 + 1;
        title = Locale::MonthName(month, true, true) + u"/" + Locale::MonthName(next, true, true) + u"  " +
                Number(year);
    } else {
        title = Locale::MonthName(month, false, true) + u"  " + Number(year);
    }
    // The week's number is that of its Monday: the first or the second day.
    char week[8];
    std::snprintf(week, sizeof week, "%02i", IsoWeek(firstDay + DateTimeSpan(1, 0, 0, 0)));
    return title + u"   " + Lang("WeekNumberShort") + u" " + Ascii(week);
}

DateTime WeekMarkup::WeekStart(const DateTime& date, int firstDayOfWeek) {
    const DateTime day = date.StartOfDay();
    const int back = (day.GetDayOfWeek() - firstDayOfWeek + kDaysPerWeek) % kDaysPerWeek;
    return day - DateTimeSpan(back, 0, 0, 0);
}

int WeekMarkup::IsoWeek(const DateTime& date) {
    const int dayOfWeek = (date.GetDayOfWeek() + 6) % 7; // 0 Monday .. 6 Sunday
    const DateTime thursday = date.StartOfDay() + DateTimeSpan(3 - dayOfWeek, 0, 0, 0);
    const int dayOfYear = static_cast<int>((thursday - DateTime(thursday.GetYear(), 1, 1)).GetDays());
    return dayOfYear / 7 + 1;
}

std::u16string WeekMarkup::Escape(const std::u16string& text) {
    std::u16string out;
    out.reserve(text.size());
    for (char16_t c : text) {
        if (c == u'<')
            out += u"&lt;";
        else if (c == u'&')
            out += u"&amp;";
        else
            out += c;
    }
    return out;
}

} // namespace mirodate
