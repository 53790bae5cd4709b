// Our regex engine beside PCRE2 (the 16-bit interpreter) on one table of
// patterns and subjects: every match of a left-to-right scan must have the
// same span and the same span for each group (unset groups alike). The table
// holds the link finders' patterns over the texts they meet and the corners
// where backtracking engines most often part ways.
//
// PCRE2 is set to our anchor rules with its own options: "$" without the
// multi-line flag is the end of the text only (PCRE2_DOLLAR_ENDONLY), and a
// multi-line "^" also matches after a line end that ends the text
// (PCRE2_ALT_CIRCUMFLEX).
//
// One difference is known and kept: a repeated group past its minimum never
// takes an empty iteration here, so an optional group that could only match
// empty stays unset, where PCRE2 records the empty capture. Rows marked
// kWholeMatch compare the whole match only; the link finders use nothing else.
#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include "platform/TextUtil.h"
#include "regex/RegexPattern.h"
#include "views/Linkifier.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace mirodate {
namespace {

// Each match: group 0..n as (start, end) pairs, -1 for a group that took no part.
using Spans = std::vector<int>;

enum Compare { kAllGroups, kWholeMatch };

struct Row {
    std::u16string pattern;
    int flags;
    std::vector<std::u16string> subjects;
    Compare compare = kAllGroups;
};

std::vector<Spans> ScanOurs(const RegexPattern& pattern, const std::u16string& text, int groups) {
    std::vector<Spans> found;
    for (int start = 0; start <= static_cast<int>(text.size());) {
        const RegexMatch match = pattern.Search(text, start);
        if (!match.IsMatched())
            break;
        Spans spans;
        for (int group = 0; group <= groups; ++group) {
            spans.push_back(match.GroupStart(group));
            spans.push_back(match.GroupEnd(group));
        }
        found.push_back(spans);
        const int end = match.GroupEnd(0);
        start = end > match.GroupStart(0) ? end : end + 1;
    }
    return found;
}

std::vector<Spans> ScanPcre(pcre2_code* code, const std::u16string& text, std::uint32_t captures) {
    std::vector<Spans> found;
    pcre2_match_data* data = pcre2_match_data_create_from_pattern(code, nullptr);
    const auto subject = reinterpret_cast<PCRE2_SPTR>(text.data());
    for (PCRE2_SIZE start = 0; start <= text.size();) {
        const int rc = pcre2_match(code, subject, text.size(), start, 0, data, nullptr);
        if (rc < 0)
            break;
        const PCRE2_SIZE* ovector = pcre2_get_ovector_pointer(data);
        Spans spans;
        for (std::uint32_t group = 0; group <= captures; ++group) {
            const bool set = static_cast<int>(group) < rc && ovector[2 * group] != PCRE2_UNSET;
            spans.push_back(set ? static_cast<int>(ovector[2 * group]) : -1);
            spans.push_back(set ? static_cast<int>(ovector[2 * group + 1]) : -1);
        }
        found.push_back(spans);
        start = ovector[1] > ovector[0] ? ovector[1] : ovector[1] + 1;
    }
    pcre2_match_data_free(data);
    return found;
}

std::uint32_t PcreOptions(int flags) {
    std::uint32_t options = PCRE2_DOLLAR_ENDONLY | PCRE2_ALT_CIRCUMFLEX;
    if (flags & RegexPattern::kIgnoreCase)
        options |= PCRE2_CASELESS;
    if (flags & RegexPattern::kMultiLine)
        options |= PCRE2_MULTILINE;
    if (flags & RegexPattern::kSingleLine)
        options |= PCRE2_DOTALL;
    return options;
}

std::string Describe(const std::vector<Spans>& scan) {
    std::string out;
    for (const Spans& spans : scan) {
        out += "[";
        for (size_t i = 0; i < spans.size(); i += 2)
            out += (i ? " " : "") + std::to_string(spans[i]) + "-" + std::to_string(spans[i + 1]);
        out += "]";
    }
    return out.empty() ? "no match" : out;
}

void ExpectSameAsPcre(const std::vector<Row>& table) {
    for (const Row& row : table) {
        RegexPattern ours;
        ASSERT_TRUE(ours.Compile(row.pattern, row.flags)) << Utf16ToUtf8(row.pattern) << ": " << ours.Error();
        int error = 0;
        PCRE2_SIZE offset = 0;
        pcre2_code* pcre = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(row.pattern.data()), row.pattern.size(),
                                         PcreOptions(row.flags), &error, &offset, nullptr);
        ASSERT_NE(pcre, nullptr) << Utf16ToUtf8(row.pattern);
        std::uint32_t captures = 0;
        pcre2_pattern_info(pcre, PCRE2_INFO_CAPTURECOUNT, &captures);
        EXPECT_EQ(static_cast<std::uint32_t>(ours.GroupCount()), captures) << Utf16ToUtf8(row.pattern);
        if (row.compare == kWholeMatch)
            captures = 0;
        for (const std::u16string& subject : row.subjects) {
            EXPECT_EQ(Describe(ScanOurs(ours, subject, static_cast<int>(captures))),
                      Describe(ScanPcre(pcre, subject, captures)))
                << "pattern " << Utf16ToUtf8(row.pattern) << " on \"" << Utf16ToUtf8(subject) << "\"";
        }
        pcre2_code_free(pcre);
    }
}

// Texts of notes and locations, with and without the links the finders look for.
const std::vector<std::u16string> kNoteTexts = {
    u"",
    u"Meeting about the budget, room B2, 12:30",
    u"see http://www.example.com and https://intra.example.org/wiki/Page_1?x=1&y=2#top.",
    u"router at http://192.168.10.1:8080/ or http://10.0.0.1",
    u"mail anna.berg@example.com, support+cal@mail.example.co.uk; not@this or @that.",
    u"Dial +49 30 12345678 or (0301) 234-5678 ext123, mobile 0171-2345678",
    u"files: [/home/anna/notes.txt] and [second] ] [",
    u"'0301 234 5678 or >+49.30.1234.5678 <12345 678 9012",
    u"Besprechung f\u00fcr \u00dcbergabe: www.example.de, Gr\u00f6\u00dfe 12",
    u"http://a.bc http:/broken https://x.y.zz:99999/path/ end",
    u"1234567890123456789012345678901234567890 x12345",
    u"line one\n+1 (5) 555 1234\nhttps://example.com/a/b/\n",
};

TEST(PcreComparisonTest, LinkFinderPatternsFindTheSameLinksAndGroups) {
    ExpectSameAsPcre({
        {Linkifier::kFilePathPattern, 0, kNoteTexts},
        // Its path part "((/?)|(...)+/?)?" is such an optional, possibly empty group.
        {Linkifier::kWebAddressPattern, 0, kNoteTexts, kWholeMatch},
        {u"(https?://"
         u")(([0-9]{1,3}\\.){3}[0-9]{1,3}|([0-9a-z_!~*'()-]+\\.)*[0-9a-z]\\.[a-z]{2,6})(:[0-9]{1,4})?",
         0, kNoteTexts},
        {Linkifier::kMailAddressPattern, 0, kNoteTexts},
        {Linkifier::kPhonePattern, 0, kNoteTexts},
        {Linkifier::kPhonePatternAnchored, 0, kNoteTexts},
    });
}

TEST(PcreComparisonTest, QuantifiersAlternationAndEmptyMatchesAgree) {
    const std::vector<std::u16string> subjects = {u"",    u"aaa",   u"abab",     u"baaac",
                                                  u"xyz", u"a-b-c", u"aaaa b aa"};
    ExpectSameAsPcre({
        {u"a*", 0, subjects},
        {u"a*?", 0, subjects},
        {u"a+?b", 0, subjects},
        {u"(a|ab)(c|bcd)?", 0, {u"abcd", u"abc", u"ab"}},
        {u"(a|b)*", 0, subjects},
        {u"(a)|(b)", 0, subjects},
        {u"(?:a(b)?)+", 0, {u"aba", u"abab", u"aab"}},
        {u"a{2,3}", 0, subjects},
        {u"a{2,}?", 0, subjects},
        {u"(a{0,2}){2}", 0, subjects},
        {u"x|", 0, subjects},
        {u"(?:)", 0, {u"ab"}},
        {u"((a)|b)+", 0, {u"ab", u"ba", u"aab"}},
        {u"(a|)*", 0, {u"aa", u"b"}, kWholeMatch},
    });
}

TEST(PcreComparisonTest, AnchorsBoundariesAndLineModesAgree) {
    const std::vector<std::u16string> subjects = {u"one two\nthree", u"\nx\n", u"a\n", u"word_1 w-2"};
    ExpectSameAsPcre({
        {u"^\\w+", 0, subjects},
        {u"^\\w+", RegexPattern::kMultiLine, subjects},
        {u"\\w+$", 0, subjects},
        {u"\\w+$", RegexPattern::kMultiLine, subjects},
        {u"^", RegexPattern::kMultiLine, subjects},
        {u"$", 0, subjects},
        {u"\\b\\w", 0, subjects},
        {u"\\B.", 0, subjects},
        {u".+", 0, subjects},
        {u".+", RegexPattern::kSingleLine, subjects},
        {u"\\A\\w|\\w\\z", 0, subjects},
    });
}

TEST(PcreComparisonTest, ClassesCaseFoldingAndEscapesAgree) {
    const std::vector<std::u16string> subjects = {u"Hello World 42", u"tab\there", u"a]b-c^d\\e",
                                                  u"MiXeD cAsE"};
    ExpectSameAsPcre({
        {u"[a-z]+", 0, subjects},
        {u"[a-z]+", RegexPattern::kIgnoreCase, subjects},
        {u"hello|world", RegexPattern::kIgnoreCase, subjects},
        {u"[^a-z ]+", 0, subjects},
        {u"[\\]\\-^\\\\]", 0, subjects},
        {u"\\d+|\\s", 0, subjects},
        {u"\\D\\S", 0, subjects},
        {u"[\\w.]+", 0, subjects},
        {u"\\x41|\\t", 0, {u"A\tB"}},
    });
}

TEST(PcreComparisonTest, GroupsBackreferencesLookaroundAndAtomicGroupsAgree) {
    ExpectSameAsPcre({
        {u"(\\w)\\1", 0, {u"hello", u"aabbcc", u"abc"}},
        {u"(?<q>['\"]).*?\\k<q>", 0, {u"say 'hi' and \"yo\" 'x"}},
        {u"\\w+(?=,)", 0, {u"a, bb, ccc"}},
        {u"\\w+(?!,)\\b", 0, {u"a, bb, ccc"}},
        {u"(?<=\\$)\\d+", 0, {u"$12 and 34 and $5"}},
        {u"(?<!\\$)\\b\\d+", 0, {u"$12 and 34 and $5"}},
        {u"(?>a+)b", 0, {u"aaab", u"aaa"}},
        {u"(?>a|ab)c", 0, {u"abc", u"ac"}},
        {u"(a)?(?(1)b|c)", 0, {u"ab", u"c", u"ac", u"b"}},
        {u"\\((?:[^()]|(?R))*\\)", 0, {u"(a(b)c) (d", u"((()))"}},
    });
}

} // namespace
} // namespace mirodate
