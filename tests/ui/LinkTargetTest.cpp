// Link targets told apart by prefix, and the link action that asks first and
// then hands off to the desktop (recorded, not started).
#include "ui/LinkTarget.h"
#include "lang/LanguageTable.h"
#include "platform/RecordingPlatformServices.h"
#include "ui/LinkDispatcher.h"

#include <gtest/gtest.h>

namespace mirodate::test {
namespace {

TEST(LinkTargetTest, PrefixesAreTestedLowerCasedAndOnlyAtTheStart) {
    struct Case {
        std::u16string target;
        LinkKind kind;
        std::u16string argument;
    };
    const Case cases[] = {
        {u"http://Example.org/A", LinkKind::Web, u"http://Example.org/A"},
        {u"HTTPS://x.org", LinkKind::Web, u"HTTPS://x.org"},
        {u"WWW.Example.ORG", LinkKind::Web, u"WWW.Example.ORG"},
        {u"MailTo:Anna@X.org", LinkKind::Mail, u"Anna@X.org"},
        {u"Tel:+49 (30) 1234", LinkKind::Call, u"+49 (30) 1234"},
        {u"file:///home/Me/A.txt", LinkKind::File, u"home/Me/A.txt"},
        {u"FILE:\\\\\\Storage Card\\a.txt", LinkKind::File, u"Storage Card\\a.txt"},
        {u"action:\\\\\\oid 42", LinkKind::Action, u"oid 42"},
        {u"alert('hi')", LinkKind::Alert, u"('hi')"},
        {u"see http://x.org", LinkKind::Unknown, u"Unknown protocol!"},
        {u"ftp://x.org", LinkKind::Unknown, u"Unknown protocol!"},
        {u"www", LinkKind::Unknown, u"Unknown protocol!"},
        {u"", LinkKind::Unknown, u"Unknown protocol!"},
    };
    for (const Case& c : cases) {
        const LinkTarget link = LinkTarget::Classify(c.target);
        EXPECT_EQ(link.kind, c.kind) << std::string(c.target.begin(), c.target.end());
        EXPECT_EQ(link.argument, c.argument);
    }
    EXPECT_EQ(LinkTarget::AlertMessage(u"('hi')"), u"hi");
    EXPECT_EQ(LinkTarget::AlertMessage(u"('')"), u"");
    EXPECT_EQ(LinkTarget::AlertMessage(u"(x"), u"");
}

class LinkDispatcherTest : public ::testing::Test {
protected:
    void SetUp() override {
        LanguageTable::Instance().SetText(
            u"LANGUAGE=English\nQuestionVisitUrl=Open in the browser\nQuestionSendMail=Write to\n"
            u"QuestionCallNumber=Call\nQuestionOpenFile=Open file\n"
            u"UnknownProtocol=Unknown protocol!\nLinkAlertCaption=Message\n");
        dispatcher_.confirm = [this](const std::u16string& text) {
            questions_.push_back(text);
            return answer_;
        };
        dispatcher_.inform = [this](const std::u16string& text, const std::u16string& caption) {
            messages_.push_back(caption + u": " + text);
        };
        dispatcher_.action = [this](const std::u16string& argument) { actions_.push_back(argument); };
    }
    void TearDown() override { LanguageTable::Instance().SetText(u""); }

    RecordingPlatformServices recorder_;
    LinkDispatcher dispatcher_;
    bool answer_ = false;
    std::vector<std::u16string> questions_, messages_, actions_;
};

TEST_F(LinkDispatcherTest, HandOffsHappenOnlyAfterYes) {
    const std::u16string targets[] = {u"www.Example.org", u"https://x.org/p?q=1", u"mailto:Anna@x.org",
                                      u"TEL:+49 30 1234", u"file:////tmp/a b.txt"};
    for (const std::u16string& target : targets)
        EXPECT_FALSE(dispatcher_.Activate(target));
    EXPECT_TRUE(recorder_.Calls().empty());
    ASSERT_EQ(questions_.size(), 5u);
    EXPECT_EQ(questions_[0], u"Open in the browser:\nwww.Example.org");
    EXPECT_EQ(questions_[2], u"Write to:\nAnna@x.org");
    EXPECT_EQ(questions_[3], u"Call:\n+49 30 1234");
    EXPECT_EQ(questions_[4], u"Open file:\n/tmp/a b.txt");

    answer_ = true;
    for (const std::u16string& target : targets)
        EXPECT_TRUE(dispatcher_.Activate(target));
    const std::vector<std::vector<std::string>> expected{{"xdg-open", "http://www.Example.org"},
                                                         {"xdg-open", "https://x.org/p?q=1"},
                                                         {"xdg-email", "Anna@x.org"},
                                                         {"xdg-open", "tel:+49301234"},
                                                         {"xdg-open", "/tmp/a b.txt"}};
    EXPECT_EQ(recorder_.Programs(), expected);
    EXPECT_TRUE(messages_.empty());
}

TEST_F(LinkDispatcherTest, AlertActionAndUnknownAskNothingAndStartNothing) {
    answer_ = true;
    dispatcher_.Activate(u"alert('hi')");
    dispatcher_.Activate(u"action:\\\\\\open 17");
    dispatcher_.Activate(u"gopher://x");
    dispatcher_.Activate(u"note http://x.org");
    EXPECT_TRUE(questions_.empty());
    EXPECT_TRUE(recorder_.Calls().empty());
    EXPECT_EQ(actions_, std::vector<std::u16string>{u"open 17"});
    EXPECT_EQ(messages_, (std::vector<std::u16string>{u"Message: hi", u"Message: Unknown protocol!",
                                                      u"Message: Unknown protocol!"}));
}

TEST_F(LinkDispatcherTest, WithoutAnOwnerQuestionNothingStarts) {
    LinkDispatcher bare;
    EXPECT_FALSE(bare.Activate(u"http://x.org"));
    EXPECT_FALSE(bare.Activate(u"alert('x')"));
    EXPECT_TRUE(recorder_.Calls().empty());
}

TEST_F(LinkDispatcherTest, ArgumentsAHelperWouldTakeAsOptionsAreRefused) {
    answer_ = true;
    EXPECT_FALSE(dispatcher_.Activate(u"mailto:--attach=/etc/passwd"));
    EXPECT_FALSE(dispatcher_.Activate(u"file:///-h"));
    EXPECT_FALSE(dispatcher_.Activate(u"tel:"));
    EXPECT_TRUE(recorder_.Calls().empty());
    // A failed start is reported to the caller.
    recorder_.SetResult(false);
    EXPECT_FALSE(dispatcher_.Activate(u"http://x.org"));
    EXPECT_EQ(recorder_.Calls().size(), 1u);
}

} // namespace
} // namespace mirodate::test
