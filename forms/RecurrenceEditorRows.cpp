#include "forms/RecurrenceEditorRows.h"

#include "data/EditorTexts.h"
#include "data/RecurrenceDescriber.h"
#include "data/RecurrenceLimits.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"

#include <algorithm>

namespace mirodate {

namespace {

using Row = RecurrenceEditorRows::Row;
constexpr int kDaysPerWeek = 7;
constexpr int kMonths = 12;
constexpr int kLastDayOfMonth = 31;

bool IsNth(int type) {
    return type == RecurrencePattern::kMonthNth || type == RecurrencePattern::kYearNth;
}
bool IsYearly(int type) {
    return type == RecurrencePattern::kYearly || type == RecurrencePattern::kYearNth;
}

std::u16string Number(int n) {
    const std::string text = std::to_string(n);
    return std::u16string(text.begin(), text.end());
}

} // namespace

std::vector<Row> RecurrenceEditorRows::RowsFor(const RecurrencePattern& p) {
    std::vector<Row> rows{Row::Type};
    const int type = p.RecurrenceType;
    if (type == RecurrencePattern::kNotRecurring)
        return rows;
    rows.push_back(Row::Interval);
    if (type == RecurrencePattern::kWeekly || IsNth(type))
        rows.push_back(Row::Days);
    if (IsNth(type))
        rows.push_back(Row::Instance);
    if (type == RecurrencePattern::kMonthly || type == RecurrencePattern::kYearly)
        rows.push_back(Row::DayOfMonth);
    if (IsYearly(type))
        rows.push_back(Row::Month);
    rows.push_back(Row::End);
    const int end = EndOf(p);
    if (end == kEndAfterCount)
        rows.push_back(Row::Occurrences);
    if (end == kEndOnDate)
        rows.push_back(Row::EndDate);
    return rows;
}

RecurrenceEditorRows::Control RecurrenceEditorRows::ControlOf(Row row) {
    switch (row) {
    case Row::Interval:
    case Row::DayOfMonth:
    case Row::Occurrences:
        return Control::Stepper;
    case Row::Days:
        return Control::DayToggles;
    default:
        return Control::Menu;
    }
}

std::u16string RecurrenceEditorRows::Label(Row row) {
    switch (row) {
    case Row::Type:
        return Lang("recurrence.Type");
    case Row::Interval:
        return Lang("recurrence.Interval");
    case Row::Days:
        return Lang("recurrence.Days");
    case Row::DayOfMonth:
        return Lang("recurrence.DayOfMonth");
    case Row::Instance:
        return Lang("recurrence.Instance");
    case Row::Month:
        return Lang("recurrence.Month");
    case Row::End:
        return Lang("recurrence.End");
    case Row::Occurrences:
        return Lang("recurrence.Occurrences");
    case Row::EndDate:
        return Lang("recurrence.EndDate");
    }
    return {};
}

std::u16string RecurrenceEditorRows::ValueText(Row row, const RecurrencePattern& p) {
    switch (row) {
    case Row::Type:
        return TypeName(p.RecurrenceType);
    case Row::Interval:
        return Number(p.Interval);
    case Row::Days:
        return RecurrenceDescriber::DaysText(p.DayOfWeekMask);
    case Row::DayOfMonth:
        return Number(p.DayOfMonth);
    case Row::Instance:
        return RecurrenceDescriber::InstanceText(p.Instance);
    case Row::Month:
        return RecurrenceDescriber::MonthName(p.MonthOfYear);
    case Row::End:
        return Lang(EditorTexts::RecurrenceEndKeys()[static_cast<size_t>(EndOf(p))]);
    case Row::Occurrences:
        return Number(p.Occurrences);
    case Row::EndDate: {
        SYSTEMTIME day{};
        if (p.PatternEndDate == 0.0 || !DateTime(p.PatternEndDate).ToSystemTime(day))
            return u"-";
        return Locale::FormatShortDate(day);
    }
    }
    return {};
}

const std::vector<int>& RecurrenceEditorRows::Types() {
    static const std::vector<int> types = {RecurrencePattern::kNotRecurring, RecurrencePattern::kDaily,
                                           RecurrencePattern::kWeekly,       RecurrencePattern::kMonthly,
                                           RecurrencePattern::kMonthNth,     RecurrencePattern::kYearly,
                                           RecurrencePattern::kYearNth};
    return types;
}

std::u16string RecurrenceEditorRows::TypeName(int type) {
    switch (type) {
    case RecurrencePattern::kNotRecurring:
        return Lang("Once");
    case RecurrencePattern::kDaily:
        return Lang("recurrence.Daily");
    case RecurrencePattern::kWeekly:
        return Lang("recurrence.Weekly");
    case RecurrencePattern::kMonthly:
        return Lang("recurrence.Monthly");
    case RecurrencePattern::kMonthNth:
        return Lang("recurrence.MonthlyNth");
    case RecurrencePattern::kYearly:
        return Lang("recurrence.Yearly");
    case RecurrencePattern::kYearNth:
        return Lang("recurrence.YearlyNth");
    default:
        return Lang("RepeatsCustom");
    }
}

int RecurrenceEditorRows::EndOf(const RecurrencePattern& p) {
    if (p.Occurrences > 0)
        return kEndAfterCount;
    if (!p.NoEndDate && p.PatternEndDate != 0.0)
        return kEndOnDate;
    return kNoEnd;
}

std::vector<int> RecurrenceEditorRows::DayOrder() {
    std::vector<int> days;
    const int first = Locale::FirstDayOfWeek();
    for (int i = 0; i < kDaysPerWeek; ++i)
        days.push_back((first + i) % kDaysPerWeek);
    return days;
}

bool RecurrenceEditorRows::Step(Row row, RecurrencePattern& p, int delta) {
    auto step = [delta](std::int32_t& value, int low, int high) {
        const int next = std::clamp(value + delta, low, high);
        if (next == value)
            return false;
        value = next;
        return true;
    };
    switch (row) {
    case Row::Interval:
        return step(p.Interval, 1, RecurrenceLimits::kMaxInterval);
    case Row::DayOfMonth:
        return step(p.DayOfMonth, 1, kLastDayOfMonth);
    case Row::Occurrences:
        return step(p.Occurrences, 1, RecurrenceLimits::kMaxOccurrences);
    case Row::Instance:
        return step(p.Instance, 1, RecurrenceLimits::kLastInstance);
    case Row::Month:
        return step(p.MonthOfYear, 1, kMonths);
    default:
        return false;
    }
}

bool RecurrenceEditorRows::ToggleDay(RecurrencePattern& p, int dayOfWeek) {
    if (dayOfWeek < 0 || dayOfWeek >= kDaysPerWeek)
        return false;
    const int mask = p.DayOfWeekMask ^ (1 << dayOfWeek);
    if ((mask & RecurrenceLimits::kAllDays) == 0)
        return false;
    p.DayOfWeekMask = mask;
    return true;
}

void RecurrenceEditorRows::SetEnd(RecurrencePattern& p, int end, const DateTime& start) {
    if (end == kEndAfterCount) {
        if (p.Occurrences <= 0)
            p.Occurrences = kDefaultOccurrences;
        p.NoEndDate = false;
        p.PatternEndDate = 0.0;
    } else if (end == kEndOnDate) {
        p.Occurrences = 0;
        p.NoEndDate = false;
        if (p.PatternEndDate == 0.0 || DateTime(p.PatternEndDate) < start.StartOfDay()) {
            DateTime day = start.StartOfDay();
            int year = day.GetYear(), month = day.GetMonth() + 1;
            if (month > kMonths)
                month = 1, ++year;
            p.PatternEndDate =
                DateTime(year, month, std::min(day.GetDay(), DaysInMonth(year, month))).ToDate();
        }
    } else {
        p.Occurrences = 0;
        p.NoEndDate = true;
        p.PatternEndDate = 0.0;
    }
}

} // namespace mirodate
