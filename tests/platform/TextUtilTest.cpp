#include "platform/TextUtil.h"

#include <gtest/gtest.h>

#include <climits>

using namespace mirodate;

TEST(TextUtil, Utf8AndUtf16RoundTrip) {
    const std::string samples[] = {"",
                                   "plain",
                                   "\xc3\xa9t\xc3\xa9",
                                   "\xd0\x9f\xd1\x80\xd0\xb8",
                                   "\xf0\x9f\x98\x80 emoji",
                                   "\xe2\x82\xac 5"};
    for (const auto& sample : samples)
        EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(sample)), sample);
    EXPECT_EQ(Utf8ToUtf16("\xf0\x9f\x98\x80").size(), 2u); // surrogate pair
}

TEST(TextUtil, BrokenEncodingsBecomeReplacementCharacters) {
    EXPECT_EQ(Utf8ToUtf16("a\xff"
                          "b"),
              u"a\uFFFDb");
    EXPECT_EQ(Utf8ToUtf16("\xe2\x82"), u"\uFFFD\uFFFD"); // truncated sequence
    EXPECT_EQ(Utf8ToUtf16("\xc0\xaf"), u"\uFFFD");       // overlong slash
    const char16_t lone[] = {u'a', 0xD800, u'b', 0};
    EXPECT_EQ(Utf16ToUtf8(lone), "a\xef\xbf\xbd"
                                 "b");
}

TEST(TextUtil, DecimalParsingStopsAtTheFirstNonDigit) {
    EXPECT_EQ(ParseLong(u"42"), 42);
    EXPECT_EQ(ParseLong(u"  -3days"), -3);
    EXPECT_EQ(ParseLong(u"abc"), 0);
    EXPECT_EQ(ParseLong(u""), 0);
    EXPECT_EQ(ParseLong(u"+7"), 7);
    EXPECT_EQ(ParseLong(u"99999999999999999999999"), LONG_MAX);
    EXPECT_EQ(ParseLong(u"-99999999999999999999999"), LONG_MIN);
    EXPECT_EQ(ParseUnsignedLong(u"18446744073709551616"), ULONG_MAX);
}

TEST(TextUtil, LowerCasingKeepsPositions) {
    EXPECT_EQ(ToLower(u"/ACTION=Restart \u00c4"), u"/action=restart \u00e4");
    const std::u16string mixed = u"A\U0001F600B";
    EXPECT_EQ(ToLower(mixed).size(), mixed.size());
    EXPECT_EQ(Trim(u" \t x y \r\n"), u"x y");
}
