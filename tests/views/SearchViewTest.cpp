// The search view on the real window system and a real vdir: typing through
// the display's text events restarting timer 3, Enter searching at once, a
// delay of 0 leaving it to Enter, the 255-character cut, the "nothing found"
// row, results under day headers and a fresh search when the store changes.
#include "views/SearchView.h"
#include "platform/Settings.h"
#include "platform/VirtualKeys.h"
#include "tests/views/ViewFixture.h"
#include "tests/views/ViewRows.h"
#include "ui/RegisteredMessages.h"

namespace mirodate::test {
namespace {

using Rows = std::vector<std::string>;
// The row as Narrow() reads it: UTF-16 units cut to bytes, so ß is 0xDF.
const std::string kDentistRow = "I:Dentist Bergstra\xDF"
                                "e";

class SearchViewTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        // Today is Friday 15 March 2024.
        AddTimed("a", "Dentist Bergstraße", "20240318T090000", "20240318T100000");
        AddTimed("b", "Lunch", "20240315T120000", "20240315T130000", "LOCATION:Strasse 5\r\n");
        AddTimed("c", "Old dentist", "20240301T090000", "20240301T100000"); // before today: not searched
        AddTask("t", "Call the dentist", "20240320");
    }
    SearchView& OpenSearch() {
        OpenStore();
        search_ = std::make_unique<SearchView>();
        EXPECT_TRUE(search_->Open(nullptr));
        windows_->RunUntilIdle();
        return *search_;
    }
    void TearDown() override {
        search_.reset();
        ViewFixture::TearDown();
    }
    void Type(const std::string& utf8) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::Text;
        event.text = utf8;
        display_->Inject(event);
        windows_->RunUntilIdle();
    }
    std::unique_ptr<SearchView> search_;
};

TEST_F(SearchViewTest, QuickKeystrokesGiveOneSearchTheDelayAfterTheLast) {
    Settings::SetNumber("SearchStartDelay", 750);
    SearchView& view = OpenSearch();
    Type("d");
    Wait(200);
    Type("e");
    Wait(200);
    Type("n");
    Wait(749);
    EXPECT_EQ(view.SearchCount(), 0);
    EXPECT_TRUE(view.List().ItemCount() == 0);
    Wait(1);
    EXPECT_EQ(view.SearchCount(), 1);
    EXPECT_EQ(Narrow(view.SearchedText()), "den");
    // Appointments under their days, then the tasks; the past is left out.
    EXPECT_EQ(RowTexts(view.List()), (Rows{"H:", kDentistRow, "I:Call the dentist"}));
    Wait(5000);
    EXPECT_EQ(view.SearchCount(), 1);
    EXPECT_GE(display_->BusyCursorShownCount(), 1);
}

TEST_F(SearchViewTest, EnterSearchesAtOnceAndCaseFoldingFindsTheOtherSpelling) {
    SearchView& view = OpenSearch();
    Type("STRASSE");
    Key(VK_RETURN);
    EXPECT_EQ(view.SearchCount(), 1);
    EXPECT_EQ(RowTexts(view.List()), (Rows{"H:Today", "I:Lunch", "H:", kDentistRow}));
    // The timer the typing set was killed: no second search later.
    Wait(2000);
    EXPECT_EQ(view.SearchCount(), 1);
}

TEST_F(SearchViewTest, WithNoDelayOnlyEnterSearches) {
    Settings::SetNumber("SearchStartDelay", 0);
    SearchView& view = OpenSearch();
    Type("lunch");
    Wait(10000);
    EXPECT_EQ(view.SearchCount(), 0);
    Key(VK_RETURN);
    EXPECT_EQ(view.SearchCount(), 1);
    EXPECT_EQ(RowTexts(view.List()), (Rows{"H:Today", "I:Lunch"}));
}

TEST_F(SearchViewTest, ALongTextIsSearchedByItsFirst255Characters) {
    SearchView& view = OpenSearch();
    const std::string text(300, 'x');
    Type(text);
    EXPECT_EQ(view.Field().GetText().size(), 300u);
    Key(VK_RETURN);
    EXPECT_EQ(view.SearchedText(), std::u16string(255, u'x'));
    EXPECT_EQ(RowTexts(view.List()), (Rows{"M:NoSearchResult"}));
}

TEST_F(SearchViewTest, NothingFoundIsOneRowAndMarkUpIsSearchedLiterally) {
    SearchView& view = OpenSearch();
    Type("<b>.*[(");
    Key(VK_RETURN);
    EXPECT_EQ(RowTexts(view.List()), (Rows{"M:NoSearchResult"}));
    // An emptied field empties the list.
    view.Field().SetText(u"");
    Key(VK_RETURN);
    EXPECT_EQ(view.List().ItemCount(), 0);
}

TEST_F(SearchViewTest, AChangeOfTheStoreSearchesAgainAndCancelHidesTheView) {
    SearchView& view = OpenSearch();
    Type("lunch");
    Key(VK_RETURN);
    EXPECT_EQ(RowTexts(view.List()), (Rows{"H:Today", "I:Lunch"}));
    AddTimed("e", "Team lunch", "20240319T120000", "20240319T130000");
    PimStore::Instance().Close();
    OpenStore();
    SendNotifyMessage(HWND_BROADCAST, RegisterWindowMessage(kPoomDataChangedName), 1, -1);
    windows_->RunUntilIdle();
    EXPECT_EQ(RowTexts(view.List()), (Rows{"H:Today", "I:Lunch", "H:", "I:Team lunch"}));
    EXPECT_EQ(view.SearchCount(), 2);
    // "Cancel", the second soft key, hides it with its text kept.
    RECT button;
    GetWindowRect(view.Menu().Button(1)->GetHwnd(), &button);
    Tap((button.left + button.right) / 2, (button.top + button.bottom) / 2);
    EXPECT_FALSE(IsWindowVisible(view.GetHwnd()));
    EXPECT_EQ(Narrow(view.Field().GetText()), "lunch");
}

} // namespace
} // namespace mirodate::test
