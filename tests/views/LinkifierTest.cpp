#include "views/Linkifier.h"

#include "platform/TextUtil.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace mirodate {
namespace {

std::string Linkify(const std::u16string& text, const Linkifier& linkifier = Linkifier()) {
    std::u16string out = text;
    linkifier.Run(out);
    return Utf16ToUtf8(out);
}

TEST(LinkifierTest, WebAddressDigitsAreNotTakenForAPhoneNumber) {
    EXPECT_EQ(Linkify(u"See http://node123456789012.example.com or call 0301 234 5678."),
              "See <a href='http://node123456789012.example.com'>http://node123456789012.example.com</a>"
              " or call <a href='Tel:0301 234 5678'>0301 234 5678</a>.");
}

TEST(LinkifierTest, WebAddresses) {
    // Alternatives are taken leftmost-first: the empty-path branch "/?" wins,
    // so a link ends after the host and its first slash.
    EXPECT_EQ(Linkify(u"https://www.example.org/a/b.html?x=1 then"),
              "<a href='https://www.example.org/'>https://www.example.org/</a>a/b.html?x=1 then");
    EXPECT_EQ(Linkify(u"router at http://192.168.1.10:8080/"),
              "router at <a href='http://192.168.1.10:8080/'>http://192.168.1.10:8080/</a>");
    // The pattern is lower-case only: capitals are left alone.
    EXPECT_EQ(Linkify(u"HTTP://EXAMPLE.COM and Http://example.com"),
              "HTTP://EXAMPLE.COM and Http://example.com");
}

TEST(LinkifierTest, RepeatedAddressUsesTheFirstPlaceholderEverywhere) {
    EXPECT_EQ(Linkify(u"http://a.org and again http://a.org"),
              "<a href='http://a.org'>http://a.org</a> and again <a href='http://a.org'>http://a.org</a>");
    // A placeholder typed by the user is not escaped: it becomes the first link.
    EXPECT_EQ(Linkify(u"x $PLACEHOLDER_00000$ y mail@example.com"),
              "x <a href='mailto:mail@example.com'>mail@example.com</a> y "
              "<a href='mailto:mail@example.com'>mail@example.com</a>");
    EXPECT_EQ(Linkify(u"$PLACEHOLDER_00001$ has no link"), "$PLACEHOLDER_00001$ has no link");
}

TEST(LinkifierTest, MailAddresses) {
    EXPECT_EQ(
        Linkify(u"Write to bob.smith+cal@mail.example.co.uk."),
        "Write to <a href='mailto:bob.smith+cal@mail.example.co.uk'>bob.smith+cal@mail.example.co.uk</a>.");
    EXPECT_EQ(Linkify(u"not@ an address, nor @this"), "not@ an address, nor @this");
}

TEST(LinkifierTest, PhoneNumbers) {
    EXPECT_EQ(Linkify(u"Call +49 30 12345678 x12 now"),
              "Call <a href='Tel:+49 30 12345678 x12'>+49 30 12345678 x12</a> now");
    EXPECT_EQ(Linkify(u"(0301) 234-5678"), "<a href='Tel:(0301) 234-5678'>(0301) 234-5678</a>");
    EXPECT_EQ(Linkify(u"Room 1234, 12 people"), "Room 1234, 12 people");
    // The second pattern only finds a number at the very start of the text,
    // after one of < > '.
    EXPECT_EQ(Linkify(u"'123.456 desk"), "<a href='Tel:'123.456 '>'123.456 </a>desk");
    EXPECT_EQ(Linkify(u"desk '123.456"), "desk '123.456");
}

TEST(LinkifierTest, EverythingInOneNoteAndNothingElseTouched) {
    Linkifier linkifier([](const std::u16string& path) { return path == u"\\Storage Card\\a.txt"; });
    EXPECT_EQ(Linkify(u"Agenda [\\Storage Card\\a.txt]\nhttp://intra.net\nann@intra.net\n030 1234 5678\n",
                      linkifier),
              "Agenda <a href='file:///\\Storage Card\\a.txt'>\\Storage Card\\a.txt</a>\n"
              "<a href='http://intra.net'>http://intra.net</a>\n"
              "<a href='mailto:ann@intra.net'>ann@intra.net</a>\n"
              "<a href='Tel:030 1234 5678'>030 1234 5678</a>\n");
    EXPECT_EQ(Linkify(u"", linkifier), "");
    EXPECT_EQ(Linkify(u"Lunch with Anna, <b> is not mark-up here", linkifier),
              "Lunch with Anna, <b> is not mark-up here");
}

class LinkifierFileTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "linkifier-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir_ = pattern;
        std::ofstream(dir_ / "notes.txt") << "x";
        std::filesystem::create_directory(dir_ / "folder one");
    }
    void TearDown() override { std::filesystem::remove_all(dir_); }

    std::filesystem::path dir_;
};

TEST_F(LinkifierFileTest, BracketedPathBecomesALinkOnlyWhenItExists) {
    std::string file = (dir_ / "notes.txt").string();
    EXPECT_EQ(Linkify(Utf8ToUtf16("Read [" + file + "] first")),
              "Read <a href='file:///" + file + "'>" + file + "</a> first");

    std::string folder = (dir_ / "folder one").string();
    EXPECT_EQ(Linkify(Utf8ToUtf16("[" + folder + "]")),
              "<a href='file:///" + folder + "'>" + folder + "</a>");

    std::string missing = "Read [" + (dir_ / "missing.txt").string() + "] first";
    EXPECT_EQ(Linkify(Utf8ToUtf16(missing)), missing);

    // ".+" is greedy: two bracketed paths on one line read as one path, which does not exist.
    std::string two = "[" + file + "] and [" + file + "]";
    EXPECT_EQ(Linkify(Utf8ToUtf16(two)), two);
}

} // namespace
} // namespace mirodate
