#include "regex/RegexPattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace mirodate {
namespace {

struct Case {
    const char16_t* pattern;
    const char16_t* text;
    int start; // expected span of the whole match, -1 for no match
    int end;
};

std::string Describe(const Case& c) {
    std::string out = "pattern ";
    for (const char16_t* p = c.pattern; *p; ++p)
        out += static_cast<char>(*p < 128 ? *p : '?');
    out += " on ";
    for (const char16_t* p = c.text; *p; ++p)
        out += static_cast<char>(*p < 128 ? *p : '?');
    return out;
}

void ExpectSpans(const std::vector<Case>& cases, int flags = 0) {
    for (const Case& c : cases) {
        RegexPattern pattern;
        ASSERT_TRUE(pattern.Compile(c.pattern, flags)) << Describe(c) << ": " << pattern.Error();
        RegexMatch match = pattern.Search(c.text);
        if (c.start < 0) {
            EXPECT_FALSE(match.IsMatched()) << Describe(c) << " matched at " << match.GroupStart(0);
            continue;
        }
        ASSERT_TRUE(match.IsMatched()) << Describe(c);
        EXPECT_EQ(match.GroupStart(0), c.start) << Describe(c);
        EXPECT_EQ(match.GroupEnd(0), c.end) << Describe(c);
    }
}

TEST(RegexPatternTest, LiteralsAndAlternation) {
    ExpectSpans({
        {u"abc", u"xxabcxx", 2, 5},
        {u"abc", u"ababab", -1, -1},
        {u"a|ab|abc", u"abc", 0, 1},
        {u"x(a|ab)c", u"xabc", 0, 4},
        {u"cat|dog", u"hotdog", 3, 6},
        {u"", u"abc", 0, 0},
        {u"a||b", u"b", 0, 0},
        {u"\\.\\(\\[\\\\", u"x.([\\", 1, 5},
        {u"\\x41\\u00e9\\t", u"A\u00e9\t", 0, 3},
        {u"\\x{263A}", u"\u263A", 0, 1},
        {u"{", u"a{b", 1, 2},
    });
}

TEST(RegexPatternTest, CountedRepetitionRules) {
    ExpectSpans({
        {u"a{2,1}", u"aaaa", 0, 2}, // n below m is raised to m
        {u"ba{2,1}", u"baaa", 0, 3},
        {u"a{0}", u"aaa", 0, 0}, // the atom is dropped
        {u"xa{0}y", u"xy", 0, 2},
        {u"xa{0}y", u"xay", -1, -1},
        {u"xa{,5}y", u"xy", 0, 2}, // no number before the comma reads as {0}
        {u"xa{,5}y", u"xaay", -1, -1},
        {u"xa{q}y", u"xy", 0, 2},
        {u"a{2}", u"aaaa", 0, 2},
        {u"a{2,}", u"aaaaa", 0, 5},
        {u"a{2,3}", u"aaaaa", 0, 3},
        {u"a{2,3}?", u"aaaaa", 0, 2},
        {u"a{3}?b", u"aaab", 0, 4}, // "?" after an exact count has no effect
        {u"a{3}+b", u"aaab", 0, 4},
        {u"(?:ab){2}", u"abababab", 0, 4},
        {u"a{3}", u"aa", -1, -1},
    });
}

TEST(RegexPatternTest, GreedyLazyAndPossessive) {
    ExpectSpans({
        {u"(?:ab)+c", u"ababc", 0, 5},
        {u"(?:ab)++abc", u"ababc", -1, -1}, // possessive gives nothing back
        {u"(?:ab)+abc", u"ababc", 0, 5},
        {u"a+ab", u"aaab", 0, 4},
        {u"a++ab", u"aaab", -1, -1},
        {u"a.*b", u"axbxb", 0, 5},
        {u"a.*?b", u"axbxb", 0, 3},
        {u"a(?:x|y)*?b", u"axyxbxb", 0, 5},
        {u"<.+>", u"<a><b>", 0, 6},
        {u"<.+?>", u"<a><b>", 0, 3},
        {u"(?:a|ab)*c", u"abababc", 0, 7}, // backtracking into earlier iterations
        {u"(?:a|ab){3}c", u"abababc", 0, 7},
        {u"(?:a|ab)*?c", u"ababc", 0, 5},
        {u"(?:a*)*b", u"aaab", 0, 4}, // empty iterations end the loop
        {u"(?:a*)+$", u"aaa", 0, 3},
        {u"(?:x?)*y", u"xxy", 0, 3},
        {u"(a|b|)+c", u"abc", 0, 3},
        {u"[a-z]+@x", u"abc@x", 0, 5},
        {u"[a-z]+[a-z]@", u"abc@", 0, 4}, // must give back across an overlapping set
    });
}

// The compiler makes runs possessive, skips branches by their first
// character and skips starts inside a failed leading run; none of that may
// change what is found.
TEST(RegexPatternTest, OptimisationsKeepResults) {
    ExpectSpans({
        {u"[a-z]+(?<!b)", u"ab", 0, 1}, // an assertion after a run blocks making it possessive
        {u"\\d+(?=5)", u"1235", 0, 3},
        {u"[a-z]+\\b", u"ab1", -1, -1},
        {u"[a-z]+\\d", u"ab cd1", 3, 6}, // leading run: starts inside "ab" are skipped
        {u"[a-z]+@", u"abc de@", 4, 7},
        {u"([a-z]+)x\\1", u"abxb", 1, 4}, // a back-reference sees where the run started
        {u"[a-z]+?c", u"abc", 0, 3},
        {u"x(?:ab|ac|b)", u"xac xb", 0, 3},
        {u"(?:a|)b", u"b", 0, 1}, // an empty branch is never skipped
        {u"(?:\\+\\d|\\d\\d)x", u"+1x 12x", 0, 3},
        {u"\\d{2,3}\\d", u"12345", 0, 4},
    });
}

TEST(RegexPatternTest, CaptureGroupsAndNames) {
    RegexPattern pattern;
    ASSERT_TRUE(pattern.Compile(u"(\\d+)-(?<year>\\d{4})(x)?"));
    EXPECT_EQ(pattern.GroupCount(), 3);
    EXPECT_EQ(pattern.GroupNumber(u"year"), 2);
    EXPECT_EQ(pattern.GroupNumber(u"nope"), -1);
    RegexMatch match = pattern.Search(u"on 12-2024!");
    ASSERT_TRUE(match.IsMatched());
    EXPECT_EQ(match.MaxGroup(), 3);
    EXPECT_EQ(match.GroupStart(1), 3);
    EXPECT_EQ(match.GroupEnd(1), 5);
    EXPECT_EQ(match.GroupStart(2), 6);
    EXPECT_EQ(match.GroupEnd(2), 10);
    EXPECT_EQ(match.GroupStart(3), -1); // did not take part
    EXPECT_EQ(match.GroupEnd(7), -1);   // beyond the groups

    // A group inside a repetition keeps its last iteration; undone iterations leave no trace.
    ASSERT_TRUE(pattern.Compile(u"(?:(a)|b)+"));
    match = pattern.Search(u"ab");
    EXPECT_EQ(match.GroupStart(1), 0);
    ASSERT_TRUE(pattern.Compile(u"(?:(a)x)?ab"));
    match = pattern.Search(u"ab");
    ASSERT_TRUE(match.IsMatched());
    EXPECT_EQ(match.GroupStart(1), -1);

    ASSERT_TRUE(pattern.Compile(u"(?'q'a)(?P<r>b)"));
    EXPECT_EQ(pattern.GroupNumber(u"q"), 1);
    EXPECT_EQ(pattern.GroupNumber(u"r"), 2);
}

TEST(RegexPatternTest, BackReferences) {
    ExpectSpans({
        {u"(a+)b\\1", u"aaabaa", 1, 6},
        {u"(\\w)\\1", u"abccd", 2, 4},
        {u"(?<q>['\"]).*?\\k<q>", u"say 'hi' \"x\"", 4, 8},
        {u"(?<q>x)\\k'q'", u"axx", 1, 3},
        {u"(a)\\g1\\g{1}", u"aaa", 0, 3},
        {u"(a)?b\\1", u"b", -1, -1}, // an unset group makes the reference fail
        {u"(a|b)\\1", u"abba", 1, 3},
        {u"(a)\\2", u"aa", -1, -1},           // a group that does not exist
        {u"(a)\\99999999999", u"aa", -1, -1}, // nor a number beyond any int
        {u"(a)?(?(99999999999)b|c)", u"c", 0, 1},
    });
    ExpectSpans({{u"(ab)\\1", u"abAB", 0, 4}}, RegexPattern::kIgnoreCase);
}

TEST(RegexPatternTest, LookAroundAndAtomic) {
    ExpectSpans({
        {u"foo(?=bar)", u"foobaz foobar", 7, 10},
        {u"foo(?!bar)", u"foobar foobaz", 7, 10},
        {u"(?<=\\$)\\d+", u"a 12 $34", 6, 8},
        {u"(?<!\\$)\\b\\d+", u"$12 34", 4, 6},
        {u"(?<=ab|c)x", u"abx", 2, 3}, // branches of different widths
        {u"(?<=a\\d{1,3})x", u"a123x", 4, 5},
        {u"(?<=^a+)b", u"aaab", 3, 4}, // unbounded contents
        {u"(?<=x)", u"x", 1, 1},
        {u"(?>a+)b", u"aaab", 0, 4},
        {u"(?>a|ab)c", u"abc", -1, -1}, // the atomic group keeps its first choice
        {u"(?>.*)x", u"aax", -1, -1},
        {u"(?=(\\d+))\\w+\\1", u"123x123", 0, 7},
    });
}

TEST(RegexPatternTest, ConditionalsAndRecursion) {
    ExpectSpans({
        {u"(\\()?\\d+(?(1)\\))", u"(12)", 0, 4},
        {u"(\\()?\\d+(?(1)\\))", u"12)", 0, 2},
        {u"(\\()?\\d+(?(1)\\)|!)", u"12!", 0, 3},
        {u"(?<open><)?a(?(<open>)>|;)", u"a;", 0, 2},
        {u"(?<open><)?a(?(open)>|;)", u"<a>", 0, 3},
        {u"(?(?=\\d)\\d{2}|[a-z]{3})", u"7 ab 12", 5, 7},
        {u"(?(?!\\d)[a-z]{2})x", u"abx", 0, 3},
        {u"\\((?:[^()]|(?R))*\\)", u"x(a(b)(c(d)))y", 1, 13},
        {u"a(?R)?b", u"aaabbb", 0, 6},
        {u"a(?R)?b", u"aaabb", 1, 5},
    });
}

TEST(RegexPatternTest, Classes) {
    ExpectSpans({
        {u"[abc]+", u"xxcabx", 2, 5},
        {u"[^abc]+", u"abxyc", 2, 4},
        {u"[a-c0-2]+", u"zz1b2d", 2, 5},
        {u"[]a]+", u"x]a]", 1, 4},
        {u"[a-]+", u"x-a-", 1, 4},
        {u"[\\]\\[]+", u"a[]b", 1, 3},
        {u"[\\d.]+", u"v1.25x", 1, 5},
        {u"[^\\D]", u"ab7", 2, 3},
        {u"[\\w-]+", u"  ab-c_d ", 2, 8},
        {u"[[:alpha:]]+", u"12Ab3", 2, 4},
        {u"[[:digit:][:upper:]]+", u"abC4d", 2, 4},
        {u"[[:xdigit:]]+", u"xyzBEEFg", 3, 7},
        {u"[[:punct:]]", u"ab,c", 2, 3},
        {u"[[:space:][:blank:]]+", u"a \t\nb", 1, 4},
        {u"[[:foo:]]", u"o]", 0, 2}, // an unknown name is plain characters
        {u"\\d+", u"ab42c", 2, 4},
        {u"\\D+", u"42ab4", 2, 4},
        {u"\\s+", u"a \t b", 1, 4},
        {u"\\S+", u"  ab ", 2, 4},
        {u"\\W", u"ab!", 2, 3},
        {u"[\\x41-\\x43]+", u"ABCD", 0, 3},
        {u"[\u00e0-\u00ff]+", u"a\u00e9\u00fcb", 1, 3},
        {u".+", u"ab\ncd", 0, 2},
    });
    ExpectSpans({{u".+", u"ab\ncd", 0, 5}}, RegexPattern::kSingleLine);
    ExpectSpans(
        {
            {u"[a-c]+", u"xABCx", 1, 4},
            {u"hello", u"say HeLLo", 4, 9},
            {u"\u00e9t\u00e9", u"\u00c9T\u00c9", 0, 3},
            {u"[^a]", u"Ab", 1, 2},
        },
        RegexPattern::kIgnoreCase);
}

TEST(RegexPatternTest, Boundaries) {
    ExpectSpans({
        {u"^ab", u"ab", 0, 2},
        {u"^ab", u"x\nab", -1, -1},
        {u"ab$", u"ab\n", -1, -1},
        {u"ab\\Z", u"ab\n", 0, 2},
        {u"ab\\z", u"ab\n", -1, -1},
        {u"\\Aab", u"ab ab", 0, 2},
        {u"\\bis\\b", u"this is", 5, 7},
        {u"\\Bis\\b", u"this is", 2, 4},
        {u"x\\G", u"xx", -1, -1}, // "\G" is a literal G without the global flag
        {u"\\G", u"G", 0, 1},
    });
    ExpectSpans(
        {
            {u"^ab", u"x\nab", 2, 4},
            {u"ab$", u"ab\nx", 0, 2},
            {u"^$", u"a\n\nb", 2, 2},
        },
        RegexPattern::kMultiLine);
}

TEST(RegexPatternTest, InlineOptions) {
    ExpectSpans({
        {u"(?i)abc", u"xABC", 1, 4},
        {u"a(?i)b", u"aB", 0, 2},
        {u"a(?i)b", u"AB", -1, -1},
        {u"(?i:a)b", u"Ab", 0, 2},
        {u"(?i:a)b", u"AB", -1, -1},
        {u"(?:(?i)a)b", u"AB", -1, -1}, // switch ends with its group
        {u"(?i)a(?-i)b", u"Ab", 0, 2},
        {u"(?i)a(?-i)b", u"AB", -1, -1},
        {u"(?s).", u"\n", 0, 1},
        {u"(?m)^b", u"a\nb", 2, 3},
        {u"(?x)a", u"a", 0, 1},   // letters outside g..s are ignored
        {u"(?hjk)a", u"a", 0, 1}, // letters without meaning are ignored
        {u"(?g)a\\G", u"a", -1, -1},
    });
}

TEST(RegexPatternTest, SearchFromStartAndEmptyMatchScan) {
    RegexPattern pattern;
    ASSERT_TRUE(pattern.Compile(u"\\d+"));
    std::u16string text = u"a1b22c333";
    std::vector<std::pair<int, int>> spans;
    for (int start = -1;;) {
        RegexMatch match = pattern.Search(text, start);
        if (!match.IsMatched())
            break;
        spans.emplace_back(match.GroupStart(0), match.GroupEnd(0));
        start = match.GroupEnd(0);
    }
    EXPECT_EQ(spans, (std::vector<std::pair<int, int>>{{1, 2}, {3, 5}, {6, 9}}));

    // A pattern that matches the empty string matches again at the same
    // place; the caller must step past it, and the end of the text is a match.
    ASSERT_TRUE(pattern.Compile(u"x*"));
    EXPECT_EQ(pattern.Search(u"ab", 1).GroupStart(0), 1);
    EXPECT_EQ(pattern.Search(u"ab", 1).GroupEnd(0), 1);
    EXPECT_EQ(pattern.Search(u"ab", 2).GroupStart(0), 2);
    EXPECT_FALSE(pattern.Search(u"ab", 3).IsMatched());

    // "^" does not match at a later search start.
    ASSERT_TRUE(pattern.Compile(u"^a"));
    EXPECT_FALSE(pattern.Search(u"aa", 1).IsMatched());
    ASSERT_TRUE(pattern.Compile(u"\\Ga", RegexPattern::kGlobal));
    EXPECT_EQ(pattern.Search(u"baa", 1).GroupStart(0), 1);
    EXPECT_FALSE(pattern.Search(u"bba", 1).IsMatched());
}

TEST(RegexPatternTest, SyntaxErrorsAreRefused) {
    const char16_t* bad[] = {
        u"(ab",       u"ab)",         u"[ab",   u"*a",   u"a**",  u"a{2}{3}", u"(?<n>a)(?<n>b)",
        u"\\k<none>", u"(?(1)a|b|c)", u"[z-a]", u"ab\\", u"(?Q)", u"(?<=a"};
    for (const char16_t* text : bad) {
        RegexPattern pattern;
        EXPECT_FALSE(pattern.Compile(text)) << std::u16string(text).size();
        EXPECT_FALSE(pattern.IsValid());
        EXPECT_FALSE(pattern.Error().empty());
        EXPECT_FALSE(pattern.Search(u"ab").IsMatched());
    }
    RegexPattern pattern;
    EXPECT_FALSE(pattern.Compile(u"a", RegexPattern::kRightToLeft));
}

TEST(RegexPatternTest, NestingBeyondTheLimitIsRefused) {
    std::u16string deep(RegexPattern::kMaxCallDepth, u'(');
    deep += u"a";
    deep += std::u16string(RegexPattern::kMaxCallDepth, u')');
    RegexPattern pattern;
    EXPECT_FALSE(pattern.Compile(deep));

    std::u16string allowed(50, u'(');
    allowed += u"a";
    allowed += std::u16string(50, u')');
    ASSERT_TRUE(pattern.Compile(allowed));
    RegexMatch match = pattern.Search(u"xa");
    EXPECT_EQ(match.GroupStart(50), 1);
}

TEST(RegexPatternTest, StepBudgetEndsCatastrophicBacktracking) {
    RegexPattern pattern;
    ASSERT_TRUE(pattern.Compile(u"(a+)+b"));
    std::u16string text(5000, u'a');
    RegexMatch match = pattern.Search(text);
    EXPECT_FALSE(match.IsMatched());
    EXPECT_TRUE(match.BudgetExceeded());
    EXPECT_LE(match.Steps(), RegexPattern::StepBudget(5000) + 1);
    EXPECT_EQ(pattern.BudgetExceededCount(), 1);

    // Left recursion cannot recurse forever.
    ASSERT_TRUE(pattern.Compile(u"(?R)?a"));
    match = pattern.Search(u"aaaa");
    EXPECT_FALSE(match.IsMatched());

    // An ordinary scan of a long text is not cut.
    ASSERT_TRUE(pattern.Compile(u"[a-z]+@[a-z]+\\.com"));
    std::u16string longText;
    for (int i = 0; i < 20000; ++i)
        longText += u"lorem ipsum dolor ";
    longText += u"me@example.com";
    match = pattern.Search(longText);
    ASSERT_TRUE(match.IsMatched());
    EXPECT_EQ(match.GroupEnd(0), static_cast<int>(longText.size()));
    EXPECT_FALSE(match.BudgetExceeded());
}

TEST(RegexMatchTest, GrowthAndMissingEntries) {
    RegexMatch match;
    EXPECT_EQ(match.Size(), 0);
    EXPECT_EQ(match.Get(0), -1);
    match.Set(0, 1);
    EXPECT_EQ(match.Size(), 8);
    match.Set(9, 5); // doubling
    EXPECT_EQ(match.Size(), 16);
    EXPECT_EQ(match.Get(8), -1);
    match.Set(40, 1); // doubling to 32 is not enough: (41 + 11) / 8 * 8
    EXPECT_EQ(match.Size(), 48);
    EXPECT_EQ(match.Get(-3), -1);
}

} // namespace
} // namespace mirodate
