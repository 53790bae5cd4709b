// The INI reader and the language table answer from an index built once per
// text. These tests hold them to the plain rules (walk the lines, search the
// text) on many small texts made of the characters those rules care about.
#include "lang/IniFile.h"
#include "lang/LanguageTable.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace mirodate {
namespace {

std::string Upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

// The INI look-up as written down: find the first section line equal to
// "[S]" in any case, walk its entries to the next section line, compare the
// name before "=" (comment cut off, 127 characters at most).
std::string WalkIni(const std::vector<std::string>& lines, const std::string& section, const std::string& key,
                    bool indirect = true) {
    auto code = [](const std::string& line) { return line.substr(0, line.find(';')); };
    auto isSection = [&](const std::string& line) {
        const std::string c = code(line);
        return c.find('[') != std::string::npos && c.find(']') != std::string::npos;
    };
    size_t i = 0;
    while (i < lines.size() && !(isSection(lines[i]) && Upper(lines[i]) == Upper("[" + section + "]")))
        ++i;
    if (i == lines.size())
        return "(default)";
    for (++i; i < lines.size() && !isSection(lines[i]); ++i) {
        const std::string c = code(lines[i]);
        const size_t equals = c.find('=');
        if (equals == std::string::npos ||
            Upper(c.substr(0, equals).substr(0, 127)) != Upper(key.substr(0, 127)))
            continue;
        const std::string value = c.substr(equals + 1).substr(0, 127);
        if (indirect && !value.empty() && value[0] == '$')
            return WalkIni(lines, "variables", value, false);
        return value;
    }
    return "(default)";
}

TEST(IndexedLookup, IniAnswersAsAWalkOverTheLinesWould) {
    const std::vector<std::string> pieces = {
        "[a]",  "[A]",  "[a] ;x", "[b]", "[variables]", "a=1",  "A=2", " a=3", "a;x=4",
        "b=$a", "$a=v", "b=",     "",    ";[a]",        "c=5;", "[]",  "=6",   "a=7"};
    const std::vector<std::string> sections = {"a", "A", "b", "variables", "", "c"};
    const std::vector<std::string> keys = {"a", "A", " a", "b", "$a", "", "c", "a;x"};
    std::mt19937 random(20);
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::string> lines;
        const int count = static_cast<int>(random() % 12);
        std::string text;
        for (int i = 0; i < count; ++i) {
            lines.push_back(pieces[random() % pieces.size()]);
            text += lines.back() + (random() % 2 ? "\r\n" : "\n");
        }
        const IniFile ini(text);
        for (const std::string& section : sections)
            for (const std::string& key : keys)
                ASSERT_EQ(ini.GetValue(section, key, "(default)"), WalkIni(lines, section, key))
                    << "[" << section << "] " << key << " in:\n"
                    << text;
    }
}

TEST(IndexedLookup, AMovedIniStillAnswers) {
    IniFile ini("[s]\nk=v\n");
    IniFile moved = std::move(ini);
    EXPECT_EQ(moved.GetValue("s", "k", ""), "v");
    ini = IniFile("[t]\nk=w\n");
    EXPECT_EQ(ini.GetValue("t", "k", ""), "w");
}

// The language look-up as written down: search the text for "\nK=" ("K="
// for LANGUAGE), the value runs to the next CR or LF, "\n" is a line break.
std::u16string SearchLanguage(const std::u16string& text, const std::u16string& key) {
    const std::u16string pattern = (key == u"LANGUAGE" ? u"" : u"\n") + key + u"=";
    const size_t found = text.find(pattern);
    if (found == std::u16string::npos)
        return key;
    const size_t begin = found + pattern.size();
    size_t end = text.find_first_of(u"\r\n", begin);
    if (end == std::u16string::npos)
        end = text.size();
    std::u16string value;
    for (size_t i = begin; i < end; ++i) {
        if (text[i] == u'\\' && i + 1 < end && text[i + 1] == u'n') {
            value += u'\n';
            ++i;
        } else {
            value += text[i];
        }
    }
    return value;
}

TEST(IndexedLookup, LanguageAnswersAsASearchOfTheTextWould) {
    const std::vector<std::u16string> pieces = {u"\n", u"\r\n",      u"a",    u"b", u"=",
                                                u"a=", u"LANGUAGE=", u"x\\n", u" ", u"\r"};
    const std::vector<std::u16string> keys = {u"a",        u"b",  u"ab",   u"",  u"a=b",
                                              u"LANGUAGE", u" a", u"a\nb", u"\r"};
    std::mt19937 random(7);
    LanguageTable table;
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        const int count = static_cast<int>(random() % 14);
        for (int i = 0; i < count; ++i)
            text += pieces[random() % pieces.size()];
        table.SetText(text);
        for (const std::u16string& key : keys)
            ASSERT_EQ(table.Get(key), SearchLanguage(text, key)) << "round " << round;
    }
}

TEST(IndexedLookup, ACopiedLanguageTableAnswersFromItsOwnText) {
    LanguageTable first;
    first.SetText(u"\nKey=one\n");
    LanguageTable second = first;
    first.SetText(u"\nKey=two\n");
    EXPECT_EQ(second.Get("Key"), u"one");
    EXPECT_EQ(first.Get("Key"), u"two");
}

} // namespace
} // namespace mirodate
