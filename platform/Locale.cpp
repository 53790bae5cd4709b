#include "platform/Locale.h"

#include <unicode/calendar.h>
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

} // namespace mirodate
