#include "data/RecurrenceDescriber.h"

#include "data/DateTime.h"
#include "lang/LanguageTable.h"
#include "platform/Locale.h"
#include "platform/TextUtil.h"

namespace mirodate {

namespace {
// Masks with a word of their own.
constexpr std::int32_t kWeekdayMask = 62; // Monday to Friday
constexpr std::int32_t kAllDaysMask = 127;
constexpr std::int32_t kWeekendMask = 65; // Saturday and Sunday

// Every occurrence of `name` in `text` becomes `value`, as plain text.
void Replace(std::u16string& text, std::u16string_view name, const std::u16string& value) {
    for (size_t pos = text.find(name); pos != std::u16string::npos; pos = text.find(name, pos + value.size()))
        text.replace(pos, name.size(), value);
}

std::u16string Number(std::int64_t value) {
    return ToU16(static_cast<long>(value));
}
} // namespace

std::u16string RecurrenceDescriber::DaysText(std::int32_t mask) {
    if (mask == kWeekdayMask)
        return Lang("weekday");
    if (mask == kAllDaysMask)
        return Lang("day");
    if (mask == kWeekendMask)
        return Lang("weekendday");
    std::u16string text;
    for (int day = 0; day < 7; ++day) {
        if (!(mask & (1 << day)))
            continue;
        if (!text.empty())
            text += u", ";
        text += Locale::DayName(day);
    }
    return text;
}

std::u16string RecurrenceDescriber::InstanceText(std::int32_t instance) {
    static const char* const kInstances[] = {"first", "second", "third", "fourth", "last"};
    if (instance < 1 || instance > 5)
        return u"---";
    return Lang(kInstances[instance - 1]);
}

std::u16string RecurrenceDescriber::SuffixText(std::int32_t dayNumber) {
    // The English ordinal endings for the day numbers that take them; every
    // other number, 11, 12 and 13 included, takes "th".
    switch (dayNumber) {
    case 1:
    case 21:
    case 31:
    case 41:
    case 51:
        return Lang("Suffix_st");
    case 2:
    case 22:
    case 32:
    case 42:
    case 52:
        return Lang("Suffix_nd");
    case 3:
    case 23:
    case 33:
    case 43:
    case 53:
        return Lang("Suffix_rd");
    default:
        return Lang("Suffix_th");
    }
}

std::u16string RecurrenceDescriber::MonthName(std::int32_t month) {
    return Locale::MonthName(month);
}

std::u16string RecurrenceDescriber::EndText(std::int32_t occurrences, double patternEndDate) {
    if (occurrences == 0 && patternEndDate == 0.0)
        return u"(" + Lang("infinitely") + u")";
    if (occurrences == 0) {
        std::u16string text = Lang("RepeatsUntilEndDate");
        SYSTEMTIME end{};
        std::u16string date;
        if (VariantTimeToSystemTime(patternEndDate, &end))
            date = Locale::FormatShortDate(end);
        Replace(text, u"$EndDate", date);
        return text;
    }
    std::u16string text = Lang("RepeatsNTimes");
    Replace(text, u"$Repetitions", Number(occurrences));
    return text;
}

std::u16string RecurrenceDescriber::PatternText(const RecurrencePattern& p) {
    std::u16string text;
    switch (p.RecurrenceType) {
    case RecurrencePattern::kDaily:
        if (p.Interval == 1)
            return Lang("Daily");
        text = Lang("EveryNDays");
        break;
    case RecurrencePattern::kWeekly: {
        const std::u16string days = DaysText(p.DayOfWeekMask);
        // Compared with the English words on purpose, whatever the language:
        // the interval is then not mentioned at all.
        if (days == u"weekday")
            return Lang("EveryWeekDay");
        if (days == u"weekend day")
            return Lang("EveryWeekEndDay");
        text = Lang(p.Interval == 1 ? "EveryWeekOnX" : "EveryNWeekOnX");
        Replace(text, u"$DaysOfWeek", days);
        break;
    }
    case RecurrencePattern::kMonthly:
        text = Lang(p.Interval == 1 ? "OnTheNthOfEachMonth" : "EveryNMonthsOnTheNthDay");
        Replace(text, u"$DayOfMonth", Number(p.DayOfMonth));
        Replace(text, u"$Suffix", SuffixText(p.DayOfMonth));
        break;
    case RecurrencePattern::kMonthNth:
        text = Lang(p.Interval == 1 ? "OnTheNthDaysOfWeekOfEachMonth" : "EveryNMonthsOnTheNthDaysOfWeek");
        Replace(text, u"$Instance", InstanceText(p.Instance));
        Replace(text, u"$DaysOfWeek", DaysText(p.DayOfWeekMask));
        break;
    case RecurrencePattern::kYearly:
        text = Lang("EachNYearOnTheNthDayOfMonth");
        Replace(text, u"$DayOfMonth", Number(p.DayOfMonth));
        Replace(text, u"$Suffix", SuffixText(p.DayOfMonth));
        Replace(text, u"$Month", MonthName(p.MonthOfYear));
        break;
    case RecurrencePattern::kYearNth:
        text = Lang("EachNYearOnTheNthDayOfWeekOfMonth");
        Replace(text, u"$Instance", InstanceText(p.Instance));
        Replace(text, u"$DayOfWeek", DaysText(p.DayOfWeekMask));
        Replace(text, u"$Month", MonthName(p.MonthOfYear));
        break;
    default:
        return {}; // no rule for this type: the sentence starts with the blank
    }
    Replace(text, u"$Interval", Number(p.Interval));
    return text;
}

std::u16string RecurrenceDescriber::GenericText(const RecurrencePattern&) {
    // Nothing in the record says what the rule says (hourly, several days of
    // the month, ...): a plain statement is better than a wrong one.
    return Lang("RepeatsCustom");
}

std::u16string RecurrenceDescriber::Describe(const RecurrencePattern& pattern) {
    if (pattern.RecurrenceType == RecurrencePattern::kNotRecurring)
        return Lang("Once");
    const std::u16string head =
        pattern.RuleFit == RecurrencePattern::kNoFit ? GenericText(pattern) : PatternText(pattern);
    return head + u" " + EndText(pattern.Occurrences, pattern.PatternEndDate);
}

} // namespace mirodate
