// The text box's mark-up reader on its own: styles, links and pictures with
// their exact attribute spellings, paragraphs and breaks, entities, and what
// hostile mark-up from notes and other programs turns into.
#include "ui/MarkupParser.h"
#include "platform/TextUtil.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>

namespace mirodate::test {
namespace {

MarkupDocument Parse(const std::u16string& markup) {
    return MarkupParser::Parse(markup);
}

// The style of the byte at `offset`.
MarkupStyle StyleAt(const MarkupDocument& doc, std::size_t offset) {
    for (const MarkupRun& run : doc.runs)
        if (offset >= run.begin && offset < run.end)
            return run.style;
    ADD_FAILURE() << "no run at " << offset;
    return MarkupStyle();
}

std::size_t Find(const MarkupDocument& doc, const char* text) {
    return doc.text.find(text);
}

TEST(MarkupParserTest, StylesNestAndEndWithTheirTags) {
    const MarkupDocument doc =
        Parse(u"a<b>b<i>bi<u>biu</u></i></B><strong>s</strong><em>e</em><s>x</s><sup>2</sup><sub>3</sub>z");
    EXPECT_EQ(doc.text, "abbibiusex23z");
    EXPECT_EQ(StyleAt(doc, 0).flags, 0);
    EXPECT_EQ(StyleAt(doc, 1).flags, MarkupStyle::kBold);
    EXPECT_EQ(StyleAt(doc, 2).flags, MarkupStyle::kBold | MarkupStyle::kItalic);
    EXPECT_EQ(StyleAt(doc, 4).flags, MarkupStyle::kBold | MarkupStyle::kItalic | MarkupStyle::kUnderline);
    EXPECT_EQ(StyleAt(doc, Find(doc, "s")).flags, MarkupStyle::kBold);
    EXPECT_EQ(StyleAt(doc, Find(doc, "e")).flags, MarkupStyle::kItalic);
    EXPECT_EQ(StyleAt(doc, Find(doc, "x")).flags, MarkupStyle::kStrike);
    EXPECT_EQ(StyleAt(doc, Find(doc, "2")).flags, MarkupStyle::kSuperscript);
    EXPECT_EQ(StyleAt(doc, Find(doc, "3")).flags, MarkupStyle::kSubscript);
    EXPECT_EQ(StyleAt(doc, doc.text.size() - 1).flags, 0);
    // Equal neighbours share one run.
    EXPECT_EQ(Parse(u"<b>x</b><b>y</b>").runs.size(), 1u);
}

TEST(MarkupParserTest, LineFeedBreakAndParagraphs) {
    EXPECT_EQ(Parse(u"one<br>two<BR/>three\nfour").text, "one\ntwo\nthree\nfour");
    EXPECT_EQ(Parse(u"a\r\nb").text, "a\nb");
    // A paragraph is a line end and a half-height gap line; none at the start or the end.
    const MarkupDocument doc = Parse(u"<p>first</p><p>second</p>");
    EXPECT_EQ(doc.text, "first\n\nsecond");
    EXPECT_FALSE(StyleAt(doc, 5).Has(MarkupStyle::kParagraphGap));
    EXPECT_TRUE(StyleAt(doc, 6).Has(MarkupStyle::kParagraphGap));
    EXPECT_EQ(Parse(u"line<br><p>next").text, "line\n\nnext");
}

TEST(MarkupParserTest, FontColoursIncludingBlankPaddedHex) {
    const MarkupDocument doc = Parse(u"<font color='#ff0000'>r<font color='# 5a0ff'>m</font>r</font>k");
    EXPECT_EQ(StyleAt(doc, 0).color, RGB(0xFF, 0, 0));
    EXPECT_EQ(StyleAt(doc, 1).color, RGB(0x05, 0xA0, 0xFF));
    EXPECT_EQ(StyleAt(doc, 2).color, RGB(0xFF, 0, 0));
    EXPECT_FALSE(StyleAt(doc, 3).hasColor);

    EXPECT_EQ(MarkupParser::ParseColor(u"# 5a0ff"), RGB(5, 0xA0, 0xFF));
    EXPECT_EQ(MarkupParser::ParseColor(u"0a0b0c"), RGB(0x0A, 0x0B, 0x0C));
    EXPECT_EQ(MarkupParser::ParseColor(u"#fff"), RGB(0xFF, 0xFF, 0xFF));
    EXPECT_EQ(MarkupParser::ParseColor(u" Red "), RGB(0xFF, 0, 0));
    EXPECT_EQ(MarkupParser::ParseColor(u"#12345g"), std::nullopt);
    EXPECT_EQ(MarkupParser::ParseColor(u""), std::nullopt);
    // An unreadable colour keeps the surrounding one, and its end tag still pairs up.
    const MarkupDocument kept = Parse(u"<font color=blue><font color='nonsense'>a</font>b</font>c");
    EXPECT_EQ(StyleAt(kept, 0).color, RGB(0, 0, 0xFF));
    EXPECT_EQ(StyleAt(kept, 1).color, RGB(0, 0, 0xFF));
    EXPECT_FALSE(StyleAt(kept, 2).hasColor);
}

TEST(MarkupParserTest, LinkAttributesAreMatchedAsSpelled) {
    const MarkupDocument doc = Parse(u"<a href='http://x.org/a?b=1&c=2' id='n1'>site</a> and "
                                     u"<a href=mailto:me@x.org>mail</a> "
                                     u"<a onclick='alert('hi')'>alert</a> "
                                     u"<a onclick=\"alert('no')\">plain</a> <a href=\"tel:123\">call</a>");
    ASSERT_EQ(doc.links.size(), 4u);
    EXPECT_EQ(doc.links[0].target, u"http://x.org/a?b=1&c=2");
    EXPECT_EQ(doc.links[0].id, u"n1");
    EXPECT_EQ(doc.text.substr(doc.links[0].begin, doc.links[0].end - doc.links[0].begin), "site");
    EXPECT_EQ(doc.links[1].target, u"mailto:me@x.org");
    // onclick=' keeps the quotes inside its value; onclick=" is not the spelling.
    EXPECT_EQ(doc.links[2].target, u"alert('hi')");
    EXPECT_EQ(doc.links[3].target, u"tel:123");
    EXPECT_EQ(doc.text, "site and mail alert plain call");
    EXPECT_EQ(Parse(u"<a href='#' onclick='alert('x')'>a</a>").links[0].target, u"alert('x')");
    EXPECT_EQ(Parse(u"<a href='#top'>a</a>").links[0].target, u"#top");
    EXPECT_EQ(StyleAt(doc, Find(doc, "site")).link, 0);
    EXPECT_EQ(StyleAt(doc, Find(doc, " and")).link, -1);
    // A colour set inside a link is the link's own; one around it is not.
    const MarkupDocument coloured = Parse(
        u"<font color=red><a href='www.a.de'>out</a></font><a href='www.b.de'><font color=red>in</font></a>");
    EXPECT_FALSE(StyleAt(coloured, 0).colorInsideLink);
    EXPECT_TRUE(StyleAt(coloured, Find(coloured, "in")).colorInsideLink);
}

TEST(MarkupParserTest, LinksDoNotNestAndEmptyOnesVanish) {
    const MarkupDocument doc =
        Parse(u"<a href='www.a.de'>a<a href='www.b.de'>b</a>c</a><a href='x'></a><a>d</a>");
    ASSERT_EQ(doc.links.size(), 2u);
    EXPECT_EQ(doc.links[0].end - doc.links[0].begin, 1u);
    EXPECT_EQ(doc.links[1].target, u"www.b.de");
    EXPECT_EQ(StyleAt(doc, Find(doc, "c")).link, -1);
    // Unclosed at the end: the link runs to the end of the text.
    const MarkupDocument open = Parse(u"x <a href='www.c.de'>rest of it");
    ASSERT_EQ(open.links.size(), 1u);
    EXPECT_EQ(open.links[0].end, open.text.size());
}

TEST(MarkupParserTest, ImagesWithSizesMarginsAndLinks) {
    const MarkupDocument doc =
        Parse(u"<a href='www.x.de'><img id='week' w='20' h='10' vspace='2' hspace='3'></a>"
              u"<img id=\"no\" w=\"5\"><img w='999999999' h='-4' id='big'>");
    ASSERT_EQ(doc.images.size(), 3u);
    EXPECT_EQ(doc.images[0].id, u"week");
    EXPECT_EQ(doc.images[0].width, 20);
    EXPECT_EQ(doc.images[0].height, 10);
    EXPECT_EQ(doc.images[0].vspace, 2);
    EXPECT_EQ(doc.images[0].hspace, 3);
    EXPECT_EQ(doc.images[0].link, 0);
    // Double quotes are not the attributes' spelling.
    EXPECT_EQ(doc.images[1].id, u"");
    EXPECT_EQ(doc.images[1].width, -1);
    EXPECT_EQ(doc.images[2].width, MarkupParser::kMaxImageSide);
    EXPECT_EQ(doc.images[2].height, -1);
    // Each picture stands in the text as one object character.
    EXPECT_EQ(doc.text, "\xEF\xBF\xBC\xEF\xBF\xBC\xEF\xBF\xBC");
    EXPECT_EQ(doc.images[1].offset, 3u);
}

TEST(MarkupParserTest, BrokenAndUnknownTagsKeepTheTextAfterThem) {
    EXPECT_EQ(Parse(u"a <blink>b</blink> <x-y>c").text, "a b c");
    EXPECT_EQ(Parse(u"1 < 2 and 3<4, <3 <b").text, "1 < 2 and 3<4, <3 <b");
    // A tag broken by another '<' is text, and the tag after it still works.
    const MarkupDocument doc = Parse(u"x <b y <i>z</i>");
    EXPECT_EQ(doc.text, "x <b y z");
    EXPECT_EQ(StyleAt(doc, doc.text.size() - 1).flags, MarkupStyle::kItalic);
    // An unclosed quote ends with the tag.
    const MarkupDocument quote = Parse(u"<a href='http://x.org>text</a> after");
    ASSERT_EQ(quote.links.size(), 1u);
    EXPECT_EQ(quote.links[0].target, u"http://x.org");
    EXPECT_EQ(quote.text, "text after");
    // End tags without start tags change nothing.
    const MarkupDocument stray = Parse(u"</b></i></font></a></p>plain<b>bold");
    EXPECT_EQ(stray.text, "plainbold");
    EXPECT_EQ(StyleAt(stray, 0).flags, 0);
    EXPECT_EQ(StyleAt(stray, 5).flags, MarkupStyle::kBold);
}

TEST(MarkupParserTest, EntitiesControlCharactersAndBrokenUtf16) {
    EXPECT_EQ(Parse(u"&lt;b&gt; &amp; &quot;&#65;&#x42;&nbsp;AT&T &bogus; &#xD800;").text,
              "<b> & \"AB\xC2\xA0"
              "AT&T &bogus; \xEF\xBF\xBD");
    EXPECT_EQ(Parse(std::u16string(u"a\x01\x1b\x7f\u0085\tb\0c", 10)).text, "a\tbc");
    const std::u16string lone{
        u'x', char16_t(0xD83D), u'y', char16_t(0xDE00), u'z', char16_t(0xD83D), char16_t(0xDE00)};
    EXPECT_EQ(Parse(lone).text, "x\xEF\xBF\xBDy\xEF\xBF\xBDz\xF0\x9F\x98\x80");
    // The picture placeholder cannot be smuggled in as text.
    EXPECT_TRUE(Parse(u"\uFFFC").images.empty());
    EXPECT_EQ(Parse(u"\uFFFC").text, "\xEF\xBF\xBD");
}

TEST(MarkupParserTest, HostileInputStaysBoundedAndLinear) {
    const auto start = std::chrono::steady_clock::now();
    std::u16string deep;
    for (int i = 0; i < 10000; ++i)
        deep += u"<b><i><font color=red><a href='www.x.de'><sup>";
    deep += u"core";
    for (int i = 0; i < 10000; ++i)
        deep += u"</sup></a></font></i></b>";
    deep += u"tail";
    const MarkupDocument nested = Parse(deep);
    EXPECT_EQ(nested.text, "coretail");
    EXPECT_EQ(StyleAt(nested, 4).flags, 0);
    EXPECT_FALSE(StyleAt(nested, 4).hasColor);

    // A megabyte of text is cut with an ellipsis.
    const MarkupDocument huge = Parse(std::u16string(1 << 20, u'w'));
    EXPECT_TRUE(huge.truncated);
    EXPECT_LE(huge.text.size(), MarkupParser::kMaxTextBytes + 16);
    EXPECT_EQ(huge.text.substr(huge.text.size() - 3), "\xE2\x80\xA6");

    // Many pictures and many tags: the pictures are capped, the work stays linear.
    std::u16string pictures;
    for (int i = 0; i < 20000; ++i)
        pictures += u"<img id='x' w='9'>";
    EXPECT_EQ(Parse(pictures).images.size(), MarkupParser::kMaxImages);
    std::u16string unclosed(30000, u'<');
    unclosed += u"b";
    const MarkupDocument lt = Parse(unclosed);
    EXPECT_EQ(lt.text.substr(lt.text.size() - 2), "<b");
    EXPECT_TRUE(lt.runs.size() == 1 && lt.links.empty());
    std::u16string openTags;
    for (int i = 0; i < 100000; ++i)
        openTags += u"<a href='";
    EXPECT_EQ(Parse(openTags).links.size(), 0u);
    // Generous bound: the point is "not quadratic", which would take minutes.
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(MarkupParserTest, LongWordsAndLinesGetBreakOpportunities) {
    const std::string zwsp = "\xE2\x80\x8B";
    // Words up to the limit stay as they are, a longer one is given
    // invisible break points.
    EXPECT_EQ(Parse(std::u16string(MarkupParser::kLongWord, u'a')).text,
              std::string(MarkupParser::kLongWord, 'a'));
    const std::string longWord = Parse(std::u16string(MarkupParser::kLongWord + 20, u'a') + u" b").text;
    const std::string head(MarkupParser::kLongWord, 'a');
    const std::string step(MarkupParser::kLongWordStep, 'a');
    EXPECT_EQ(longWord, head + zwsp + step + zwsp + step + zwsp + "aaaa b");
    // A line longer than the layout can measure is broken.
    const std::string line = Parse(std::u16string(MarkupParser::kMaxLineLength + 5, u' ')).text;
    EXPECT_EQ(line.find('\n'), static_cast<std::size_t>(MarkupParser::kMaxLineLength));
}

} // namespace
} // namespace mirodate::test
