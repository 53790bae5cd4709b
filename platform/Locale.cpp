#include "platform/Locale.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/gregocal.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <memory>

namespace mirodate {

std::string Locale::UserLocaleName() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(variable);
        if (!value || !*value)
            continue;
        std::string name = value;
        // "de_DE.UTF-8@euro" -> "de_DE"
        name = name.substr(0, name.find_first_of(".@"));
        if (name.empty() || name == "C" || name == "POSIX")
            return "en_US";
        return name;
    }
    return "en_US";
}

std::string Locale::EnglishLanguageName() {
    icu::Locale locale(UserLocaleName().c_str());
    if (locale.isBogus() || !*locale.getLanguage())
        return {};
    icu::UnicodeString display;
    locale.getDisplayLanguage(icu::Locale::getEnglish(), display);
    std::string name;
    display.toUTF8String(name);
    // ICU answers with the code itself when it has no name for it.
    if (name == locale.getLanguage())
        return {};
    return name;
}

int Locale::FirstDayOfWeek() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::Locale(UserLocaleName().c_str()), status));
    if (U_FAILURE(status) || !calendar)
        return 1;
    return calendar->getFirstDayOfWeek(status) == UCAL_MONDAY ? 1 : 0;
}

namespace {
std::u16string ToU16(const icu::UnicodeString& text) {
    return std::u16string(reinterpret_cast<const char16_t*>(text.getBuffer()),
                          static_cast<size_t>(text.length()));
}

// Formatters and symbols are costly to make: they are kept per locale name
// and remade only when the user's locale changes. Views format hundreds of
// times per fill, always on the one UI thread.
struct LocaleCache {
    std::string name;
    std::unique_ptr<icu::DateFormat> shortDate;
    std::unique_ptr<icu::DateFormat> shortTime;
    std::unique_ptr<icu::DateFormatSymbols> symbols;
    std::unique_ptr<icu::GregorianCalendar> calendar;
};

LocaleCache& CacheFor(const std::string& name) {
    thread_local LocaleCache cache;
    if (cache.name != name || !cache.calendar) {
        cache = LocaleCache{};
        cache.name = name;
        icu::Locale locale(name.c_str());
        for (auto* slot : {&cache.shortDate, &cache.shortTime}) {
            const bool date = slot == &cache.shortDate;
            slot->reset(icu::DateFormat::createDateTimeInstance(
                date ? icu::DateFormat::kShort : icu::DateFormat::kNone,
                date ? icu::DateFormat::kNone : icu::DateFormat::kShort, locale));
            // The fields are local wall time already: format them in a zone without offsets.
            if (*slot)
                (*slot)->adoptTimeZone(icu::TimeZone::createTimeZone("Etc/UTC"));
        }
        UErrorCode status = U_ZERO_ERROR;
        cache.symbols = std::make_unique<icu::DateFormatSymbols>(locale, status);
        if (U_FAILURE(status))
            cache.symbols.reset();
        status = U_ZERO_ERROR;
        cache.calendar =
            std::make_unique<icu::GregorianCalendar>(icu::TimeZone::createTimeZone("Etc/UTC"), status);
        if (U_FAILURE(status))
            cache.calendar.reset();
    }
    return cache;
}

std::u16string FormatWith(bool date, const SYSTEMTIME& when) {
    LocaleCache& cache = CacheFor(Locale::UserLocaleName());
    icu::DateFormat* format = date ? cache.shortDate.get() : cache.shortTime.get();
    if (!format || !cache.calendar)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    cache.calendar->clear();
    cache.calendar->set(when.wYear, when.wMonth - 1, when.wDay, when.wHour, when.wMinute, when.wSecond);
    UDate value = cache.calendar->getTime(status);
    if (U_FAILURE(status))
        return {};
    icu::UnicodeString text;
    format->format(value, text);
    return ToU16(text);
}
} // namespace

std::u16string Locale::DayName(int dayOfWeek, bool abbreviated) {
    if (dayOfWeek < 0 || dayOfWeek > 6)
        return {};
    const icu::DateFormatSymbols* symbols = CacheFor(UserLocaleName()).symbols.get();
    if (!symbols)
        return {};
    int32_t count = 0;
    const icu::UnicodeString* names = symbols->getWeekdays(count, icu::DateFormatSymbols::FORMAT,
                                                           abbreviated ? icu::DateFormatSymbols::ABBREVIATED
                                                                       : icu::DateFormatSymbols::WIDE);
    // ICU numbers the days from 1 (UCAL_SUNDAY); index 0 is unused.
    if (!names || count <= dayOfWeek + 1)
        return {};
    return ToU16(names[dayOfWeek + 1]);
}

std::u16string Locale::MonthName(int month, bool abbreviated, bool standAlone) {
    if (month < 1 || month > 12)
        return {};
    const icu::DateFormatSymbols* symbols = CacheFor(UserLocaleName()).symbols.get();
    if (!symbols)
        return {};
    int32_t count = 0;
    const icu::UnicodeString* names = symbols->getMonths(
        count, standAlone ? icu::DateFormatSymbols::STANDALONE : icu::DateFormatSymbols::FORMAT,
        abbreviated ? icu::DateFormatSymbols::ABBREVIATED : icu::DateFormatSymbols::WIDE);
    if (!names || count < month)
        return {};
    return ToU16(names[month - 1]);
}

std::u16string Locale::FormatShortDate(const SYSTEMTIME& date) {
    return FormatWith(true, date);
}

std::u16string Locale::FormatShortTime(const SYSTEMTIME& time) {
    return FormatWith(false, time);
}

} // namespace mirodate

namespace mirodate {

namespace {
void AppendNumber(std::u16string& out, int value, int digits) {
    std::string text = std::to_string(value);
    while (static_cast<int>(text.size()) < digits)
        text.insert(text.begin(), '0');
    out.append(text.begin(), text.end());
}
} // namespace

std::u16string Locale::FormatDatePicture(const SYSTEMTIME& date, const std::u16string& picture) {
    std::u16string out;
    out.reserve(picture.size() + 16);
    size_t i = 0;
    while (i < picture.size()) {
        const char16_t c = picture[i];
        if (c == u'\'') {
            // Quoted text; two quotes in a row stand for one quote.
            ++i;
            while (i < picture.size()) {
                if (picture[i] == u'\'') {
                    if (i + 1 < picture.size() && picture[i + 1] == u'\'') {
                        out += u'\'';
                        i += 2;
                        continue;
                    }
                    ++i;
                    break;
                }
                out += picture[i++];
            }
            continue;
        }
        size_t run = 1;
        while (i + run < picture.size() && picture[i + run] == c)
            ++run;
        if (c == u'd') {
            if (run == 1)
                AppendNumber(out, date.wDay, 1);
            else if (run == 2)
                AppendNumber(out, date.wDay, 2);
            else
                out += DayName(date.wDayOfWeek % 7, run == 3);
        } else if (c == u'M') {
            if (run == 1)
                AppendNumber(out, date.wMonth, 1);
            else if (run == 2)
                AppendNumber(out, date.wMonth, 2);
            else
                out += MonthName(date.wMonth, run == 3, false);
        } else if (c == u'y') {
            if (run <= 2)
                AppendNumber(out, date.wYear % 100, run == 1 ? 1 : 2);
            else
                AppendNumber(out, date.wYear, 4);
        } else {
            out.append(run, c);
        }
        i += run;
    }
    return out;
}

} // namespace mirodate
