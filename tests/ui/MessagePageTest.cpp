// Message pages on the real window system: the answer is the number of the
// button chosen by finger, by Enter (the first), Escape (the last) or a digit.
#include "ui/MessagePage.h"
#include "platform/VirtualKeys.h"
#include "tests/ui/UiTestFixture.h"

namespace mirodate::test {
namespace {

class MessagePageTest : public UiTest {
protected:
    void TearDown() override {
        MessagePage::SetOpenObserver(nullptr);
        UiTest::TearDown();
    }
    void InjectKey(std::uint32_t key) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::KeyDown;
        event.key = key;
        display_->Inject(event);
    }
};

TEST_F(MessagePageTest, AnswersWithTheChosenButtonsNumber) {
    int tapButton = 2;
    std::vector<RECT> buttons;
    MessagePage::SetOpenObserver([&](MessagePage& page) {
        buttons.clear();
        for (size_t i = 0; i < page.Buttons().size(); ++i)
            buttons.push_back(page.ButtonScreenRect(static_cast<int>(i)));
        const RECT b = buttons[static_cast<size_t>(tapButton - 1)];
        DisplayEvent e;
        e.type = DisplayEvent::Type::PointerDown;
        e.x = (b.left + b.right) / 2;
        e.y = (b.top + b.bottom) / 2;
        display_->Inject(e);
        e.type = DisplayEvent::Type::PointerUp;
        display_->Inject(e);
    });
    EXPECT_EQ(MessagePage::AllSingleCancel(nullptr, u"Delete?"), 2);
    // Finger-sized buttons side by side, inside the screen.
    ASSERT_EQ(buttons.size(), 3u);
    for (const RECT& b : buttons) {
        EXPECT_GE(b.Height(), 40);
        EXPECT_GE(b.left, 0);
        EXPECT_LE(b.right, 480);
    }
    EXPECT_LT(buttons[0].right, buttons[1].left + 1);
    tapButton = 1;
    EXPECT_TRUE(MessagePage::YesNo(nullptr, u"Sure?"));
    tapButton = 2;
    EXPECT_FALSE(MessagePage::YesNo(nullptr, u"Sure?"));
}

TEST_F(MessagePageTest, KeysChooseFirstLastOrByNumber) {
    std::uint32_t key = VK_RETURN;
    MessagePage::SetOpenObserver([&](MessagePage&) { InjectKey(key); });
    EXPECT_EQ(MessagePage::AllSingleCancel(nullptr, u"?"), 1);
    key = VK_ESCAPE;
    EXPECT_EQ(MessagePage::AllSingleCancel(nullptr, u"?"), 3);
    key = '2';
    EXPECT_EQ(MessagePage::AllSingleCancel(nullptr, u"?"), 2);
}

TEST_F(MessagePageTest, ALongTextStaysOnTheScreen) {
    RECT page{};
    MessagePage::SetOpenObserver([&](MessagePage& shown) {
        GetWindowRect(shown.GetHwnd(), &page);
        InjectKey(VK_ESCAPE);
    });
    MessagePage::Tell(nullptr, std::u16string(20000, u'w'));
    EXPECT_GE(page.top, 0);
    EXPECT_LE(page.bottom, 640);
}

} // namespace
} // namespace mirodate::test
