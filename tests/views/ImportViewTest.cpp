// The import page on the real window system with a real store: the rows of
// a file, "Add to calendar" tapped like a finger does, the "Update" mark on
// items the store has, the progress bar while writing, and files that are
// no calendar.
#include "views/ImportView.h"
#include "lang/LanguageTable.h"
#include "store/IcsImport.h"
#include "tests/views/ViewFixture.h"
#include "tests/views/ViewRows.h"
#include "ui/Scale.h"
#include "views/ItemRow.h"
#include "views/MessageRow.h"

#include <chrono>
#include <thread>

namespace mirodate::test {
namespace {

std::string Calendar(const std::string& events) {
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//other program//EN\r\n" + events + "END:VCALENDAR\r\n";
}

std::string Event(const std::string& uid, const std::string& summary, const std::string& day) {
    return "BEGIN:VEVENT\r\nUID:" + uid + "\r\nDTSTAMP:20240101T000000Z\r\nDTSTART:" + day +
           "T090000Z\r\nDTEND:" + day + "T100000Z\r\nSUMMARY:" + summary + "\r\nEND:VEVENT\r\n";
}

class ImportViewTest : public ViewFixture {
protected:
    void TearDown() override {
        view_.reset();
        ViewFixture::TearDown();
    }
    // Opens the page on a file and lets the worker read it.
    void OpenOn(const std::string& text) {
        const std::string path = dir_ + "/incoming.ics";
        std::ofstream(path, std::ios::binary) << text;
        view_ = std::make_unique<ImportView>(path);
        ASSERT_TRUE(view_->Open(nullptr));
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (view_->GetPhase() == ImportView::Phase::Reading &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            Wait(ImportView::kReadPeriod);
        }
        ASSERT_NE(view_->GetPhase(), ImportView::Phase::Reading);
    }
    void TapAdd() {
        RECT button;
        GetWindowRect(view_->Menu().Button(0)->GetHwnd(), &button);
        Tap((button.left + button.right) / 2, (button.top + button.bottom) / 2);
    }
    // The item rows, without the day headers between them.
    std::vector<ItemRow*> ItemRows() {
        std::vector<ItemRow*> rows;
        for (int i = 0; i < view_->List().ItemCount(); ++i)
            if (auto* row = dynamic_cast<ItemRow*>(view_->List().Item(i)))
                rows.push_back(row);
        return rows;
    }
    ItemRow* Row(int index) { return ItemRows().at(static_cast<std::size_t>(index)); }
    ItemRow* ItemRowAt(int index) { return Row(index); }
    std::u16string RowSubject(int index) {
        const PimItem* item = Row(index) ? Row(index)->Item() : nullptr;
        return item ? item->subject : u"";
    }
    // The worker writes in real time; the page looks at it on its timer.
    void WaitForWriting(std::function<bool()> until = {}) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (view_->GetPhase() == ImportView::Phase::Writing && !(until && until()) &&
               std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            Wait(ImportView::kProgressPeriod);
        }
    }
    int CalendarFiles() {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(Root() + "/calendar"))
            if (entry.path().extension() == ".ics")
                ++count;
        return count;
    }

    std::unique_ptr<ImportView> view_;
};

TEST_F(ImportViewTest, AddsNewItemsAndUpdatesKnownOnesWithoutDoubling) {
    AddTimed("known-1", "Dentist", "20240320T090000Z", "20240320T100000Z");
    OpenStore();
    OpenOn(Calendar(Event("known-1", "Dentist (new time)", "20240321") +
                    Event("new-1", "Concert", "20240322") +
                    "BEGIN:VTODO\r\nUID:task-1\r\nDTSTAMP:20240101T000000Z\r\nDUE;VALUE=DATE:20240325\r\n"
                    "SUMMARY:Pay rent\r\nEND:VTODO\r\n"));
    ASSERT_EQ(view_->GetPhase(), ImportView::Phase::Ready);
    // Under their days' headers, in date order.
    EXPECT_EQ(RowTexts(view_->List()).size(), 6u);
    ASSERT_EQ(ItemRows().size(), 3u);
    EXPECT_EQ(RowSubject(0), u"Dentist (new time)");
    EXPECT_EQ(RowSubject(1), u"Concert");
    EXPECT_TRUE(Row(2)->Item()->IsTask());
    // The item the store holds is marked as an update, the others are not.
    EXPECT_EQ(ItemRowAt(0)->Mark(), Lang("ImportUpdate"));
    EXPECT_TRUE(ItemRowAt(1)->Mark().empty());
    EXPECT_EQ(view_->Existing(), (std::vector<bool>{true, false, false}));

    TapAdd();
    WaitForWriting();
    ASSERT_EQ(view_->GetPhase(), ImportView::Phase::Done);
    EXPECT_EQ(view_->Written(), 3);
    ASSERT_EQ(questions.size(), 1u); // the closing message
    // The known item was replaced in its own file, the new ones got theirs.
    EXPECT_EQ(CalendarFiles(), 2);
    EXPECT_NE(ReadFile("calendar/known-1.ics").find("Dentist (new time)"), std::string::npos);
    EXPECT_TRUE(FileExists("calendar/new-1.ics"));
    EXPECT_TRUE(FileExists("tasks/task-1.ics"));
    // Now every row is an update.
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(ItemRowAt(i)->Mark(), Lang("ImportUpdate")) << i;
}

TEST_F(ImportViewTest, ShowsProgressWhileWritingManyItems) {
    OpenStore();
    std::string events;
    for (int i = 0; i < 750; ++i)
        events += Event("many-" + std::to_string(i), "Item " + std::to_string(i), "20240320");
    OpenOn(Calendar(events));
    ASSERT_EQ(view_->GetPhase(), ImportView::Phase::Ready);
    std::vector<int> progress;
    view_->SetProgressObserver([&](int done, int) { progress.push_back(done); });
    view_->AddToCalendar();
    // Part of the way: the bar's finished part is the selection colour, the
    // rest the separator's.
    WaitForWriting([&] { return !progress.empty() && progress.back() >= 250 && progress.back() < 750; });
    ASSERT_EQ(view_->GetPhase(), ImportView::Phase::Writing) << "the import ended before the bar was seen";
    windows_->RunUntilIdle();
    RECT list;
    GetWindowRect(view_->List().GetHwnd(), &list);
    const int barY = list.bottom + Scale(ImportView::kProgressHeight) / 2;
    EXPECT_EQ(FramePixel(480 * progress.back() / 750 / 2, barY), view_->Look().selection);
    EXPECT_EQ(FramePixel(478, barY), view_->Look().separator);
    WaitForWriting();
    ASSERT_EQ(view_->GetPhase(), ImportView::Phase::Done);
    EXPECT_EQ(view_->Written(), 750);
    EXPECT_GT(progress.size(), 1u); // more than one slice
    EXPECT_EQ(progress.back(), 750);
    EXPECT_EQ(CalendarFiles(), 750);
}

TEST_F(ImportViewTest, FilesThatAreNoCalendarSayWhy) {
    OpenStore();
    OpenOn("Dear all,\r\nthe meeting is at 10.\r\n");
    EXPECT_EQ(view_->GetPhase(), ImportView::Phase::Failed);
    ASSERT_EQ(view_->List().ItemCount(), 1);
    auto* row = dynamic_cast<MessageRow*>(view_->List().Item(0));
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->Text(), Lang("ImportNotCalendar"));
    // "Add to calendar" does nothing and writes nothing.
    TapAdd();
    EXPECT_EQ(view_->GetPhase(), ImportView::Phase::Failed);
    EXPECT_EQ(CalendarFiles(), 0);
}

} // namespace
} // namespace mirodate::test
