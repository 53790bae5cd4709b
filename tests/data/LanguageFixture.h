#pragma once
// Loads one of the shipped language files (from its UTF-8 source) into the
// process-wide table and pins the locale, so texts do not depend on the machine.
#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace mirodate::test {

inline void UseLanguage(const std::string& code, const char* locale) {
    std::ifstream in(std::string(MIRODATE_SOURCE_DIR) + "/resources/lang/lang." + code + ".txt",
                     std::ios::binary);
    ASSERT_TRUE(in) << "language source " << code << " missing";
    std::string text(std::istreambuf_iterator<char>(in), {});
    LanguageTable::Instance().SetText(u"\n" + Utf8ToUtf16(text));
    setenv("LC_ALL", locale, 1);
}

} // namespace mirodate::test
