#include "lang/IniFile.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

TEST(IniFile, ClassifiesLinesByTheTextBeforeTheComment) {
    IniFile ini("[a]\r\nkey=1\n; [not] a section\nplain\nx ; y=1\n[\n");
    std::vector<IniFile::LineKind> kinds;
    for (const auto& line : ini.Lines())
        kinds.push_back(line.kind);
    using K = IniFile::LineKind;
    EXPECT_EQ(kinds, (std::vector<K>{K::Section, K::Entry, K::Other, K::Other, K::Other, K::Other}));
    EXPECT_EQ(ini.Lines().front().text, "[a]"); // carriage return dropped
}

TEST(IniFile, SectionsMatchAnyCaseButNotOtherSpacing) {
    IniFile ini("[Styles.Calendar]\ncolorGrid=ff0000\n[ spaced ]\nk=v\n");
    EXPECT_EQ(ini.GetValue("styles.calendar", "colorgrid", "d"), "ff0000");
    EXPECT_EQ(ini.GetValue("spaced", "k", "d"), "d");
    EXPECT_EQ(ini.GetValue(" spaced ", "k", "d"), "v");
    EXPECT_EQ(ini.GetValue("missing", "k", "d"), "d");
}

TEST(IniFile, NamesAreComparedExactlyAndValuesKeptAsWritten) {
    IniFile ini("[s]\n key=indented\nkey =spaced\nKEY= a b ;comment\nkey=second\nother=x=y\n");
    EXPECT_EQ(ini.GetValue("s", "key", "d"), " a b ");
    EXPECT_EQ(ini.GetValue("s", " key", "d"), "indented");
    EXPECT_EQ(ini.GetValue("s", "key ", "d"), "spaced");
    EXPECT_EQ(ini.GetValue("s", "other", "d"), "x=y");

    IniFile::LookupResult found;
    ASSERT_TRUE(ini.Find("s", "key", found));
    EXPECT_EQ(found.key, "KEY");
    EXPECT_EQ(found.comment, ";comment");
    EXPECT_EQ(found.entry->text, "KEY= a b ;comment");
}

TEST(IniFile, LookupStopsAtTheNextSection) {
    IniFile ini("[a]\nx=1\n[b]\ny=2\n[a]\ny=3\n");
    EXPECT_EQ(ini.GetValue("a", "y", "none"), "none"); // only the first [a] is searched
    EXPECT_EQ(ini.GetValue("b", "x", "none"), "none");
    EXPECT_EQ(ini.GetValue("b", "y", "none"), "2");
}

TEST(IniFile, DollarValuesComeFromTheVariablesSection) {
    IniFile ini("[Variables]\n$accent=3366cc\n$chain=$accent\n[s]\na=$accent\nb=$missing\nc=$chain\n");
    EXPECT_TRUE(ini.ApplyVariables());
    EXPECT_EQ(ini.GetValue("s", "a", "d"), "3366cc");
    EXPECT_EQ(ini.GetValue("s", "b", "d"), "d");
    EXPECT_EQ(ini.GetValue("s", "c", "d"), "$accent"); // one level only, no loops
    EXPECT_FALSE(IniFile("[s]\na=$accent\n").ApplyVariables());
    EXPECT_EQ(IniFile("[s]\na=$accent\n").GetValue("s", "a", "d"), "d");
}

TEST(IniFile, OddInputEndsInDefaults) {
    EXPECT_FALSE(IniFile().Parse(""));
    IniFile noSections("a=1\nb=2\n");
    EXPECT_EQ(noSections.GetValue("", "a", "d"), "d");
    IniFile bracket("[\n]\n[]\n=\nno equals\n");
    EXPECT_EQ(bracket.GetValue("", "x", "d"), "d");
    EXPECT_EQ(bracket.GetValue("", "", "d"), ""); // "[]" names the empty section, "=" an empty key
    EXPECT_EQ(bracket.Lines().size(), 5u);

    const std::string longValue(300, 'v');
    const std::string longKey(200, 'k');
    IniFile longLines("[s]\nk=" + longValue + "\n" + longKey + "=1\n");
    EXPECT_EQ(longLines.GetValue("s", "k", "d"), std::string(IniFile::kMaxNameLength, 'v'));
    EXPECT_EQ(longLines.GetValue("s", longKey, "d"), "1");
}

} // namespace
} // namespace mirodate
