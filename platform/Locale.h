#pragma once
// The user's locale, read from LC_ALL, LC_TIME or LANG and answered by ICU.
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
};

} // namespace mirodate
