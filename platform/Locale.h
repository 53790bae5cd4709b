#pragma once
// The user's locale, read from LC_ALL, LC_TIME or LANG and answered by ICU.
#include "platform/Types.h"

#include <string>

namespace mirodate {

class Locale {
public:
    // ICU locale id of the user ("de_DE", "en_US"); "en_US" for C/POSIX or
    // nothing set.
    static std::string UserLocaleName();
    // The language of the user's locale, named in English ("German").
    // Empty when ICU does not know it.
    static std::string EnglishLanguageName();
    // 0 when weeks start on Sunday, 1 on Monday (only these two are used).
    static int FirstDayOfWeek();

    // Day name of `dayOfWeek` (0 Sunday .. 6 Saturday), full or abbreviated,
    // as the locale writes it inside a sentence.
    static std::u16string DayName(int dayOfWeek, bool abbreviated = false);
    // Month name of `month` (1..12). Stand-alone forms are for headers
    // (they differ from the in-sentence forms in Russian and Polish).
    static std::u16string MonthName(int month, bool abbreviated = false, bool standAlone = false);
    // The date in the locale's short date format ("12/31/09", "31.12.09").
    static std::u16string FormatShortDate(const SYSTEMTIME& date);
    // The time in the locale's short time format, without seconds.
    static std::u16string FormatShortTime(const SYSTEMTIME& time);
    // The date written by a picture: d, dd (day), ddd, dddd (weekday name),
    // M, MM (month number), MMM, MMMM (month name), yy, yyyy (year), text in
    // single quotes as written ('' is a quote); other characters as they are.
    static std::u16string FormatDatePicture(const SYSTEMTIME& date, const std::u16string& picture);
};

} // namespace mirodate
