// The program's own messages as typed operations of DialogWnd: the
// data-changed broadcast, the store's item notifications, command texts and
// the close-all broadcast, in both dispatches; pages that still decode them by
// hand; and NotifyParent.
#include "UiTestFixture.h"
#include "data/PimFolder.h"
#include "data/PimNotification.h"
#include "ui/DialogWnd.h"
#include "ui/RegisteredMessages.h"

#include <optional>
#include <string>
#include <vector>

namespace mirodate::test {
namespace {

class TypedPage : public DialogWnd {
public:
    std::vector<StoreChange> changes;
    std::vector<PimNotification> notifications;
    std::vector<std::u16string> commands;
    int closeAlls = 0;
    bool acceptCommands = true;

    void OnStoreChanged(const StoreChange& change) override { changes.push_back(change); }
    void OnItemNotification(const PimNotification& n) override { notifications.push_back(n); }
    bool OnCommandText(const std::u16string& text) override {
        commands.push_back(text);
        return acceptCommands;
    }
    void OnCloseAll() override { ++closeAlls; }
};

// A page written the old way: it decodes the broadcasts in its own procedure.
class HandDecodingPage : public TypedPage {
public:
    int handDecodedChanges = 0;
    INT_PTR DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == RegisterWindowMessage(kPoomDataChangedName)) {
            ++handDecodedChanges;
            return 0;
        }
        if (message == RegisterWindowMessage(kMinimizedBroadcastName))
            return 0; // stays open
        return TypedPage::DialogProc(hwnd, message, wParam, lParam);
    }
};

using PageMessagesTest = UiTest;

TEST_F(PageMessagesTest, StoreChangedBroadcastReachesPagesAndPlainWindowsDecoded) {
    TypedPage page;
    ASSERT_TRUE(page.CreateModeless(nullptr));
    TypedPage plain;
    ASSERT_TRUE(plain.Create(nullptr, "TEST::TYPED", WS_POPUP | WS_VISIBLE, u"", 0, 0, 10, 10));

    DialogWnd::BroadcastStoreChanged(DialogWnd::StoreChange{true, 2024, 11});
    DialogWnd::BroadcastStoreChanged(DialogWnd::StoreChange{});
    // Senders that build the numbers themselves: -1 and 0 both stand for any month.
    SendMessage(page.window, RegisterWindowMessage(kPoomDataChangedName), 1, -1);
    SendMessage(page.window, RegisterWindowMessage(kPoomDataChangedName), 0, 0);

    for (const TypedPage* target : {&page, &plain}) {
        ASSERT_GE(target->changes.size(), 2u);
        EXPECT_TRUE(target->changes[0].reloaded);
        EXPECT_EQ(target->changes[0].year, 2024);
        EXPECT_EQ(target->changes[0].month, 11);
        EXPECT_FALSE(target->changes[1].reloaded);
        EXPECT_EQ(target->changes[1].year, 0);
        EXPECT_EQ(target->changes[1].month, 0);
    }
    ASSERT_EQ(page.changes.size(), 4u);
    EXPECT_TRUE(page.changes[2].reloaded);
    EXPECT_EQ(page.changes[2].month, 0);
    EXPECT_EQ(page.changes[3].year, 0);
}

TEST_F(PageMessagesTest, ItemNotificationsArriveDecodedAndOnlyForTheirNumbers) {
    TypedPage plain;
    HWND hwnd = plain.Create(nullptr, "TEST::TYPED", WS_POPUP, u"", 0, 0, 10, 10);
    SendMessage(hwnd, kMsgItemChangedRemote, 42, kFolderTasks);
    SendMessage(hwnd, kMsgItemCreatedLocal, 7, kFolderCalendar);
    // Between the local and the remote numbers: not a store message.
    SendMessage(hwnd, kMsgItemChangedLocal + 1, 9, kFolderCalendar);
    SendMessage(hwnd, kMsgItemChangedRemote + 1, 9, kFolderCalendar);
    ASSERT_EQ(plain.notifications.size(), 2u);
    EXPECT_EQ(plain.notifications[0].oid, 42);
    EXPECT_EQ(plain.notifications[0].folder, kFolderTasks);
    EXPECT_TRUE(plain.notifications[0].IsRemote());
    EXPECT_FALSE(plain.notifications[0].IsDeletion());
    EXPECT_EQ(plain.notifications[1].message, kMsgItemCreatedLocal);
    EXPECT_FALSE(plain.notifications[1].IsRemote());
}

TEST_F(PageMessagesTest, CommandTextIsReadUpToItsFirstZeroAndBadPayloadsAreLeftAlone) {
    TypedPage plain;
    HWND hwnd = plain.Create(nullptr, "TEST::TYPED", WS_POPUP, u"", 0, 0, 10, 10);
    const char16_t payload[] = u"-date 20240315\0junk";
    COPYDATASTRUCT data;
    data.cbData = sizeof(payload);
    data.lpData = const_cast<char16_t*>(payload);
    EXPECT_EQ(SendMessage(hwnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)), 1);
    // An odd byte count keeps the half unit (zero-padded) instead of reading past the end.
    const char bytes[] = {'a', 0, 'b'};
    data.cbData = sizeof(bytes);
    data.lpData = const_cast<char*>(bytes);
    EXPECT_EQ(SendMessage(hwnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)), 1);
    ASSERT_EQ(plain.commands.size(), 2u);
    EXPECT_EQ(plain.commands[0], u"-date 20240315");
    EXPECT_EQ(plain.commands[1], std::u16string(u"a") + char16_t(u'b'));

    // Empty or missing payloads never reach the operation.
    data.cbData = 0;
    EXPECT_EQ(SendMessage(hwnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)), 0);
    EXPECT_EQ(SendMessage(hwnd, WM_COPYDATA, 0, 0), 0);
    EXPECT_EQ(plain.commands.size(), 2u);
    // A window that does not take commands answers 0.
    plain.acceptCommands = false;
    data.cbData = sizeof(payload);
    data.lpData = const_cast<char16_t*>(payload);
    EXPECT_EQ(SendMessage(hwnd, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data)), 0);
}

TEST_F(PageMessagesTest, CloseAllReachesPagesButNotPlainWindows) {
    TypedPage page;
    ASSERT_TRUE(page.CreateModeless(nullptr));
    TypedPage plain;
    ASSERT_TRUE(plain.Create(nullptr, "TEST::TYPED", WS_POPUP | WS_VISIBLE, u"", 0, 0, 10, 10));
    DialogWnd::BroadcastCloseAll(true);
    windows_->RunUntilIdle();
    EXPECT_EQ(page.closeAlls, 1);
    EXPECT_EQ(plain.closeAlls, 0);
    DialogWnd::BroadcastCloseAll(false);
    EXPECT_EQ(page.closeAlls, 2);
}

TEST_F(PageMessagesTest, PagesThatDecodeByHandStillGetTheirMessagesAndKeepTheRest) {
    HandDecodingPage page;
    HWND hwnd = page.CreateModeless(nullptr);
    ASSERT_TRUE(hwnd);
    DialogWnd::BroadcastStoreChanged(DialogWnd::StoreChange{true, 0, 0});
    DialogWnd::BroadcastCloseAll(false);
    EXPECT_EQ(page.handDecodedChanges, 1);
    EXPECT_TRUE(page.changes.empty()); // it answered itself; the typed operation is not called too
    EXPECT_EQ(page.closeAlls, 0);
    EXPECT_TRUE(IsWindow(hwnd));
    // What it does not decode still arrives typed.
    SendMessage(hwnd, kMsgItemDeletedLocal, 3, kFolderCalendar);
    ASSERT_EQ(page.notifications.size(), 1u);
    EXPECT_TRUE(page.notifications[0].IsDeletion());
}

// A parent that keeps the notifications it receives.
class NotifiedParent : public DialogWnd {
public:
    struct Received {
        WPARAM wParam;
        NMHDR header;
        UINT extra;
    };
    std::vector<Received> received;
    LRESULT OnNotify(UINT_PTR id, NMHDR* header) override {
        UINT extra = 0;
        if (header->code == kExtendedCode)
            extra = reinterpret_cast<Extended*>(header)->extra;
        received.push_back(Received{id, *header, extra});
        return 11;
    }
    static constexpr UINT kExtendedCode = 0x8777;
    struct Extended {
        NMHDR header;
        UINT extra = 0;
    };
};

class NotifyingChild : public BaseWnd {};

TEST_F(PageMessagesTest, NotifyParentFillsTheHeaderAndCarriesExtendedNotices) {
    NotifiedParent parent;
    HWND parentWindow = parent.Create(nullptr, "TEST::PARENT", WS_POPUP | WS_VISIBLE, u"", 0, 0, 100, 100);
    NotifyingChild child;
    HWND childWindow = child.Create(parentWindow, "TEST::CHILD", WS_CHILD | WS_VISIBLE, u"", 0, 0, 10, 10);
    SetWindowLongPtr(childWindow, GWL_ID, 1234);

    EXPECT_EQ(child.NotifyParent(0x8001), 11);
    NotifiedParent::Extended notice;
    notice.extra = 99;
    EXPECT_EQ(child.NotifyParent(NotifiedParent::kExtendedCode, notice), 11);
    ASSERT_EQ(parent.received.size(), 2u);
    EXPECT_EQ(parent.received[0].wParam, 1234u);
    EXPECT_EQ(parent.received[0].header.hwndFrom, childWindow);
    EXPECT_EQ(parent.received[0].header.idFrom, 1234u);
    EXPECT_EQ(parent.received[0].header.code, 0x8001u);
    EXPECT_EQ(parent.received[1].extra, 99u);
    EXPECT_EQ(parent.received[1].header.hwndFrom, childWindow);

    // A window without a parent tells nobody.
    EXPECT_EQ(parent.NotifyParent(0x8001), 0);
    EXPECT_EQ(parent.received.size(), 2u);
}

} // namespace
} // namespace mirodate::test
