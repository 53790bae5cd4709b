#include "platform/Locale.h"

#include <unicode/calendar.h>
#include <unicode/datefmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <cstdlib>
#include <memory>

namespace mirodate {

std::string Locale::UserLocaleName() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(variable);
        if (!value || !*value) continue;
        std::string name = value;
        // "de_DE.UTF-8@euro" -> "de_DE"
        name = name.substr(0, name.find_first_of(".@"));
        if (name.empty() || name == "C" || name == "POSIX") return "en_US";
        return name;
    }
    return "en_US";
}

std::string Locale::EnglishLanguageName() {
    icu::Locale locale(UserLocaleName().c_str());
    if (locale.isBogus() || !*locale.getLanguage()) return {};
    icu::UnicodeString display;
    locale.getDisplayLanguage(icu::Locale::getEnglish(), display);
    std::string name;
    display.toUTF8String(name);
    // ICU answers with the code itself when it has no name for it.
    if (name == locale.getLanguage()) return {};
    return name;
}

int Locale::FirstDayOfWeek() {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(icu::Locale(UserLocaleName().c_str()), status));
    if (U_FAILURE(status) || !calendar) return 1;
    return calendar->getFirstDayOfWeek(status) == UCAL_MONDAY ? 1 : 0;
}

namespace {
std::u16string ToU16(const icu::UnicodeString& text) {
    return std::u16string(reinterpret_cast<const char16_t*>(text.getBuffer()), static_cast<size_t>(text.length()));
}

std::u16string FormatWith(icu::DateFormat::EStyle dateStyle, icu::DateFormat::EStyle timeStyle,
                          const SYSTEMTIME& when) {
    icu::Locale locale(Locale::UserLocaleName().c_str());
    std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateTimeInstance(dateStyle, timeStyle, locale));
    if (!format) return {};
    // The fields are local wall time already: format them in a zone without offsets.
    format->adoptTimeZone(icu::TimeZone::createTimeZone("Etc/UTC"));
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(icu::TimeZone::createTimeZone("Etc/UTC"), status);
    if (U_FAILURE(status)) return {};
    calendar.clear();
    calendar.set(when.wYear, when.wMonth - 1, when.wDay, when.wHour, when.wMinute, when.wSecond);
    UDate date = calendar.getTime(status);
    if (U_FAILURE(status)) return {};
    icu::UnicodeString text;
    format->format(date, text);
    return ToU16(text);
}
} // namespace

std::u16string Locale::DayName(int dayOfWeek, bool abbreviated) {
    if (dayOfWeek < 0 || dayOfWeek > 6) return {};
    UErrorCode status = U_ZERO_ERROR;
    icu::DateFormatSymbols symbols(icu::Locale(UserLocaleName().c_str()), status);
    if (U_FAILURE(status)) return {};
    int32_t count = 0;
    const icu::UnicodeString* names = symbols.getWeekdays(
        count, icu::DateFormatSymbols::FORMAT,
        abbreviated ? icu::DateFormatSymbols::ABBREVIATED : icu::DateFormatSymbols::WIDE);
    // ICU numbers the days from 1 (UCAL_SUNDAY); index 0 is unused.
    if (!names || count <= dayOfWeek + 1) return {};
    return ToU16(names[dayOfWeek + 1]);
}

std::u16string Locale::MonthName(int month, bool abbreviated, bool standAlone) {
    if (month < 1 || month > 12) return {};
    UErrorCode status = U_ZERO_ERROR;
    icu::DateFormatSymbols symbols(icu::Locale(UserLocaleName().c_str()), status);
    if (U_FAILURE(status)) return {};
    int32_t count = 0;
    const icu::UnicodeString* names = symbols.getMonths(
        count, standAlone ? icu::DateFormatSymbols::STANDALONE : icu::DateFormatSymbols::FORMAT,
        abbreviated ? icu::DateFormatSymbols::ABBREVIATED : icu::DateFormatSymbols::WIDE);
    if (!names || count < month) return {};
    return ToU16(names[month - 1]);
}

std::u16string Locale::FormatShortDate(const SYSTEMTIME& date) {
    return FormatWith(icu::DateFormat::kShort, icu::DateFormat::kNone, date);
}

std::u16string Locale::FormatShortTime(const SYSTEMTIME& time) {
    return FormatWith(icu::DateFormat::kNone, icu::DateFormat::kShort, time);
}

} // namespace mirodate
