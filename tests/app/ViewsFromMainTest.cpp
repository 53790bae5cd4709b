// The views as the user reaches them from the main window: the agenda from
// its button and from "calendar -va" (one instance), the day view from
// "calendar -vd" and from a tap on an agenda day header, the category filter
// hiding a category in every view, the refill after midnight and after
// another program changed the store.
#include "app/MainWnd.h"
#include "data/PimStore.h"
#include "forms/TaskEditor.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"
#include "tests/ui/UiTestFixture.h"
#include "tests/views/ViewRows.h"
#include "ui/ScreenBars.h"
#include "views/AgendaView.h"
#include "views/DayView.h"
#include "views/ItemCommands.h"
#include "views/SearchView.h"
#include "views/TasksView.h"

#include <filesystem>
#include <fstream>

namespace mirodate::test {
namespace {

class ViewsFromMainTest : public UiTest {
protected:
    void SetUp() override {
        UiTest::SetUp();
        ScreenBars::Reset();
        setenv("XDG_CACHE_HOME", (dir_ + "/cache").c_str(), 1);
        for (const char* folder : {"calendar", "tasks", "contacts"})
            std::filesystem::create_directories(dir_ + "/vdir/" + folder);
        Event("work1", "Budget review", "20240315T090000", "20240315T100000", "Work");
        Event("home1", "Piano lesson", "20240315T170000", "20240315T180000", "Private");
        Event("work2", "Planning", "20240316T090000", "20240316T100000", "Work");
    }
    void TearDown() override {
        main_.reset();
        PimStore::Instance().Close();
        UiTest::TearDown();
    }
    void Event(const std::string& uid, const std::string& subject, const std::string& start,
               const std::string& end, const std::string& category) {
        std::ofstream(dir_ + "/vdir/calendar/" + uid + ".ics")
            << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VEVENT\r\nUID:" << uid
            << "\r\nSUMMARY:" << subject << "\r\nCATEGORIES:" << category << "\r\nDTSTART:" << start
            << "\r\nDTEND:" << end << "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    }
    void Start(const std::u16string& command) {
        VdirSource::Options options;
        options.useIndex = false;
        WindowManager* windows = windows_.get();
        ASSERT_TRUE(PimStore::Instance().Open(
            std::make_unique<VdirSource>(dir_ + "/vdir", options), [this, windows](const PimNotification& n) {
                if (main_ && main_->GetHwnd())
                    windows->PostMessage(main_->GetHwnd(), n.message, n.oid, n.folder);
            }));
        main_ = std::make_unique<MainWnd>();
        ASSERT_TRUE(main_->Create(command));
        windows_->RunUntilIdle();
    }
    void TapAt(POINT point) { Tap(point.x, point.y); }
    POINT Centre(HWND window) {
        RECT rect;
        GetWindowRect(window, &rect);
        return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
    }
    std::unique_ptr<MainWnd> main_;
};

TEST_F(ViewsFromMainTest, TheAgendaComesFromItsButtonAndTheCommandAndIsKeptOnce) {
    Start(u"calendar -va");
    AgendaView* agenda = main_->Router().Agenda();
    ASSERT_TRUE(agenda);
    EXPECT_TRUE(IsWindowVisible(agenda->GetHwnd()));
    EXPECT_EQ(RowTexts(agenda->List())[1], "I:Budget review");
    const HWND first = agenda->GetHwnd();
    // "MonthView" hides it; the main window's "AgendaView" button shows the same one.
    TapAt(Centre(agenda->Menu().Button(4)->GetHwnd()));
    EXPECT_FALSE(IsWindowVisible(first));
    TapAt(Centre(main_->Menu().Button(4)->GetHwnd()));
    ASSERT_EQ(main_->Router().Agenda(), agenda);
    EXPECT_EQ(agenda->GetHwnd(), first);
    EXPECT_TRUE(IsWindowVisible(first));
}

TEST_F(ViewsFromMainTest, AHeaderTapInTheAgendaOpensThatDayAndBackReturns) {
    Start(u"calendar -va");
    AgendaView* agenda = main_->Router().Agenda();
    ASSERT_TRUE(agenda);
    const auto rows = RowTexts(agenda->List());
    const int tomorrow = static_cast<int>(std::find(rows.begin(), rows.end(), "H:Tomorrow") - rows.begin());
    ASSERT_LT(tomorrow, static_cast<int>(rows.size()));
    TapAt(RowPoint(agenda->List(), tomorrow, 100));
    windows_->RunUntilIdle();
    DayView* day = main_->Router().Day();
    ASSERT_TRUE(day);
    EXPECT_EQ(day->CurrentDate(), DateTime(2024, 3, 16));
    EXPECT_EQ(RowTexts(day->List()), (std::vector<std::string>{"I:Planning"}));
    TapAt(Centre(day->Menu().Button(3)->GetHwnd())); // "Back"
    windows_->RunUntilIdle();
    EXPECT_EQ(main_->Router().Day(), nullptr);
}

TEST_F(ViewsFromMainTest, TheCommandOpensTheDayView) {
    Start(u"calendar -vd -d20240316");
    ASSERT_TRUE(main_->Router().Day());
    EXPECT_EQ(main_->Router().Day()->CurrentDate(), DateTime(2024, 3, 16));
}

TEST_F(ViewsFromMainTest, TheFilterHidesACategoryInEveryView) {
    Settings::SetBool("SplitMonthView", true);
    Start(u"calendar -vd -d20240315");
    main_->Router().ShowAgendaView(DateTime(2024, 3, 15));
    windows_->RunUntilIdle();
    // In the dialog: rows of 52 pixels under a 48-pixel title; "Private" is
    // row 4 and "Work" row 5. Two taps take "Work" to hidden; then OK.
    const int workY = 48 + 5 * 52 + 26;
    for (int i = 0; i < 2; ++i) {
        for (auto type : {DisplayEvent::Type::PointerDown, DisplayEvent::Type::PointerUp}) {
            DisplayEvent e;
            e.type = type;
            e.x = 200;
            e.y = workY;
            display_->Inject(e);
        }
    }
    for (auto type : {DisplayEvent::Type::PointerDown, DisplayEvent::Type::PointerUp}) {
        DisplayEvent e;
        e.type = type;
        e.x = 100;
        e.y = 640 - 8 - 26;
        display_->Inject(e);
    }
    EXPECT_TRUE(main_->Router().OpenFilter(main_->Router().Agenda()->GetHwnd()));
    windows_->RunUntilIdle();
    EXPECT_EQ(Settings::GetExcludeFilter(), u"Work");
    EXPECT_EQ(Settings::GetLastFilter(), u"");
    for (const auto& row : RowTexts(main_->Router().Agenda()->List()))
        EXPECT_NE(row, "I:Budget review");
    EXPECT_EQ(RowTexts(main_->Router().Day()->List()), (std::vector<std::string>{"I:Piano lesson"}));
    main_->ShowDate(DateTime(2024, 3, 15));
    ASSERT_EQ(main_->DayList().Items().size(), 1u);
    EXPECT_EQ(main_->DayList().Items()[0].subject, u"Piano lesson");
}

TEST_F(ViewsFromMainTest, ViewsFillAgainAfterMidnightAndAfterOtherProgramsChanges) {
    Start(u"calendar -va");
    AgendaView* agenda = main_->Router().Agenda();
    ASSERT_TRUE(agenda);
    EXPECT_EQ(agenda->CurrentDate(), DateTime(2024, 3, 15));
    // Another program adds an item: the store reports it and the agenda shows it.
    Event("new", "Added elsewhere", "20240315T120000", "20240315T130000", "Work");
    // The change watcher works on its own thread: give it time on a busy machine.
    for (int i = 0; i < 500 && RowTexts(agenda->List()).size() < 6; ++i) {
        windows_->WaitOnDisplay(20);
        windows_->RunUntilIdle();
    }
    const auto rows = RowTexts(agenda->List());
    EXPECT_NE(std::find(rows.begin(), rows.end(), "I:Added elsewhere"), rows.end())
        << ::testing::PrintToString(rows);

    // Past midnight, activation makes the new day the first.
    Clock::Current().Advance(15 * 60 * 60 * 1000);
    SetActiveWindow(main_->GetHwnd());
    SetActiveWindow(agenda->GetHwnd());
    windows_->RunUntilIdle();
    EXPECT_EQ(agenda->CurrentDate(), DateTime(2024, 3, 16));
    EXPECT_EQ(RowTexts(agenda->List())[0], "H:Today");
    EXPECT_EQ(RowTexts(agenda->List())[1], "I:Planning")
        << ::testing::PrintToString(RowTexts(agenda->List()));
}

TEST_F(ViewsFromMainTest, TheTasksViewOpensOnceAndTheSearchIsKept) {
    Start(u"tasks");
    TasksView* tasks = main_->Router().Tasks();
    ASSERT_TRUE(tasks);
    EXPECT_TRUE(IsWindowVisible(tasks->GetHwnd()));
    // A second request brings the same one to the front.
    EXPECT_EQ(main_->Router().OpenTasksView(DateTime(2024, 3, 16)), tasks->GetHwnd());
    EXPECT_EQ(main_->Router().TasksViewCount(), 1);
    // "Search" of the Menu pop-up makes the search view; "Back" closes the tasks view.
    tasks->RunCommand(ItemCommands::kSearch);
    SearchView* search = main_->Router().Search();
    ASSERT_TRUE(search);
    EXPECT_TRUE(IsWindowVisible(search->GetHwnd()));
    search->CloseView();
    EXPECT_FALSE(IsWindowVisible(search->GetHwnd()));
    // The month is in front again; the tasks button brings the same view back.
    EXPECT_EQ(main_->Router().OpenTasksView(DateTime(2024, 3, 15)), tasks->GetHwnd());
    TapAt(Centre(tasks->Menu().Button(3)->GetHwnd()));
    windows_->RunUntilIdle();
    EXPECT_EQ(main_->Router().TasksViewCount(), 0);
    main_->Router().OpenSearch(DateTime(2024, 3, 15));
    EXPECT_EQ(main_->Router().Search(), search);
    EXPECT_TRUE(IsWindowVisible(search->GetHwnd()));
}

TEST_F(ViewsFromMainTest, TheTaskEditorOpensForNewEditedAndDuplicatedTasks) {
    std::ofstream(dir_ + "/vdir/tasks/t1.ics")
        << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VTODO\r\nUID:t1\r\n"
           "SUMMARY:Call plumber\r\nDUE;VALUE=DATE:20240315\r\nEND:VTODO\r\nEND:VCALENDAR\r\n";
    const auto taskFiles = [this] {
        return std::distance(std::filesystem::directory_iterator(dir_ + "/vdir/tasks"),
                             std::filesystem::directory_iterator());
    };
    const auto tasksOn = [](int day) {
        std::vector<PimItem> items;
        PimStore::Instance().GetDayTasks(2024, 3, day, items);
        std::vector<std::u16string> subjects;
        for (const PimItem& item : items)
            subjects.push_back(item.subject);
        return subjects;
    };
    // "tasks -new": a new task due on the command's day; OK writes it.
    Start(u"tasks -new -d20240316");
    TaskEditor* editor = main_->Router().TaskEditorPage();
    ASSERT_TRUE(editor);
    EXPECT_TRUE(IsWindowVisible(editor->GetHwnd()));
    EXPECT_EQ(editor->Draft().GetMode(), TaskDraft::Mode::New);
    EXPECT_EQ(editor->Draft().Record().dueDate, DateTime(2024, 3, 16).ToDate());
    editor->SubjectField().SetText(u"Buy seeds");
    Clock::Current().Advance(1000); // the buttons' guard against repeated taps
    TapAt(Centre(editor->OkButton().GetHwnd()));
    windows_->RunUntilIdle();
    EXPECT_EQ(main_->Router().TaskEditorPage(), nullptr); // closed and deleted
    EXPECT_EQ(tasksOn(16), std::vector<std::u16string>{u"Buy seeds"});
    EXPECT_EQ(taskFiles(), 2);

    // The tasks view's button opens one too; Cancel writes nothing.
    TasksView* tasks = nullptr;
    main_->Router().OpenTasksView(DateTime(2024, 3, 15));
    tasks = main_->Router().Tasks();
    ASSERT_TRUE(tasks);
    Clock::Current().Advance(1000);
    TapAt(Centre(tasks->Menu().Button(2)->GetHwnd()));
    windows_->RunUntilIdle();
    editor = main_->Router().TaskEditorPage();
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->Draft().GetMode(), TaskDraft::Mode::New);
    editor->Cancel();
    windows_->RunUntilIdle();
    EXPECT_EQ(taskFiles(), 2);

    // "Edit" on a task opens it in the task editor.
    std::vector<PimItem> items;
    PimStore::Instance().GetDayTasks(2024, 3, 15, items);
    ASSERT_EQ(items.size(), 1u);
    ItemCommands::Edit(tasks->GetHwnd(), items[0]);
    editor = main_->Router().TaskEditorPage();
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->Draft().GetMode(), TaskDraft::Mode::Item);
    EXPECT_EQ(editor->SubjectField().GetText(), u"Call plumber");
    editor->Cancel();
    windows_->RunUntilIdle();

    // "Duplicate" writes the copy and opens it; Cancel takes it back.
    ItemCommands::Duplicate(tasks->GetHwnd(), items[0]);
    editor = main_->Router().TaskEditorPage();
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->Draft().GetMode(), TaskDraft::Mode::Duplicate);
    EXPECT_EQ(taskFiles(), 3);
    EXPECT_EQ(tasksOn(15), (std::vector<std::u16string>{u"Call plumber", u"Call plumber"}));
    editor->Cancel();
    windows_->RunUntilIdle();
    EXPECT_EQ(taskFiles(), 2);
    EXPECT_EQ(tasksOn(15), std::vector<std::u16string>{u"Call plumber"});
}

} // namespace
} // namespace mirodate::test
