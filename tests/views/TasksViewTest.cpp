// The tasks view on the real window system and a real vdir: every order
// through the view on a fixed set of tasks, the sort menu's marks, choosing a
// key again flipping it, the rows' priority marks and strike-through, and
// completed tasks hidden by the filter.
#include "views/TasksView.h"
#include "data/TaskSorter.h"
#include "platform/Settings.h"
#include "tests/views/ViewFixture.h"
#include "tests/views/ViewRows.h"
#include "ui/ListCtrlWnd.h"
#include "views/ItemRow.h"

namespace mirodate::test {
namespace {

using Rows = std::vector<std::string>;

class TasksViewTest : public ViewFixture {
protected:
    void SetUp() override {
        ViewFixture::SetUp();
        // Today is Friday 15 March 2024. PRIORITY 1 is high, 5 normal, 9 low.
        AddTask("b", "Beta", "20240318", "PRIORITY:1\r\nDTSTART;VALUE=DATE:20240310\r\n");
        AddTask("a", "alpha", "20240319", "PRIORITY:5\r\n");
        AddTask("d", "delta", "20240316", "PRIORITY:9\r\nDTSTART;VALUE=DATE:20240310\r\n");
        WriteFile("tasks/g.ics",
                  "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VTODO\r\nUID:g\r\n"
                  "SUMMARY:Gamma\r\nPRIORITY:9\r\nDTSTART;VALUE=DATE:20240312\r\nSTATUS:COMPLETED\r\n"
                  "END:VTODO\r\nEND:VCALENDAR\r\n");
    }
    TasksView& OpenTasks(int order) {
        Settings::SetNumber("TaskSort", order);
        OpenStore();
        tasks_ = std::make_unique<TasksView>(DateTime::Today());
        EXPECT_TRUE(tasks_->Open(nullptr));
        windows_->RunUntilIdle();
        return *tasks_;
    }
    void TearDown() override {
        tasks_.reset();
        ViewFixture::TearDown();
    }
    ItemRow* RowOf(const std::string& subject) {
        for (int i = 0; i < tasks_->List().ItemCount(); ++i) {
            auto* row = dynamic_cast<ItemRow*>(tasks_->List().Item(i));
            if (row && Narrow(row->Item()->subject) == subject)
                return row;
        }
        return nullptr;
    }
    std::unique_ptr<TasksView> tasks_;
};

TEST_F(TasksViewTest, EveryOrderListsTheTasksAsItsKeysSay) {
    const std::vector<Rows> expected = {
        {"I:delta", "I:Beta", "I:alpha", "I:Gamma"}, // 0: due date, undated last
        {"I:Beta", "I:alpha", "I:delta", "I:Gamma"}, // 1: highest priority first, then due date
        {"I:Beta", "I:Gamma", "I:alpha", "I:delta"}, // 2: subjects by code unit, capitals first
        {"I:delta", "I:Beta", "I:alpha", "I:Gamma"}, // 3: open before completed, then due date
        {"I:Beta", "I:delta", "I:Gamma", "I:alpha"}, // 4: start date, equal starts by priority
        {"I:Gamma", "I:alpha", "I:Beta", "I:delta"}, // 5..9: the exact reverse
        {"I:Gamma", "I:delta", "I:alpha", "I:Beta"}, {"I:delta", "I:alpha", "I:Gamma", "I:Beta"},
        {"I:Gamma", "I:alpha", "I:Beta", "I:delta"}, {"I:alpha", "I:Gamma", "I:delta", "I:Beta"},
    };
    TasksView& view = OpenTasks(0);
    for (int order = 0; order <= TaskSorter::kLastOrder; ++order) {
        Settings::SetNumber("TaskSort", order);
        view.Reload();
        EXPECT_EQ(RowTexts(view.List()), expected[static_cast<size_t>(order)]) << "TaskSort " << order;
    }
    // A stored value out of range counts as the nearest end.
    Settings::SetNumber("TaskSort", 42);
    view.Reload();
    EXPECT_EQ(RowTexts(view.List()), expected[9]);
}

TEST_F(TasksViewTest, ChoosingTheKeyInUseFlipsItAndAnotherKeyStartsAscending) {
    TasksView& view = OpenTasks(0);
    view.RunCommand(TasksView::kCmdSortFirst + TaskSorter::kByStartDate);
    EXPECT_EQ(Settings::GetTaskSort(), 4);
    view.RunCommand(TasksView::kCmdSortFirst + TaskSorter::kByStartDate);
    EXPECT_EQ(Settings::GetTaskSort(), 9);
    EXPECT_EQ(RowTexts(view.List()), (Rows{"I:alpha", "I:Gamma", "I:delta", "I:Beta"}));
    view.RunCommand(TasksView::kCmdSortFirst + TaskSorter::kByStartDate);
    EXPECT_EQ(Settings::GetTaskSort(), 4);
    EXPECT_EQ(RowTexts(view.List()), (Rows{"I:Beta", "I:delta", "I:Gamma", "I:alpha"}));
    view.RunCommand(TasksView::kCmdSortFirst + TaskSorter::kByPriority);
    EXPECT_EQ(Settings::GetTaskSort(), 1);
    // The view is still open: the sort commands are not the shared handler's.
    EXPECT_TRUE(IsWindowVisible(view.GetHwnd()));
}

TEST_F(TasksViewTest, TheSortMenuMarksTheKeyInUseWithItsDirection) {
    auto entries = TasksView::SortMenu(1);
    ASSERT_EQ(entries.size(), 5u);
    const std::vector<UINT> commands = {1000, 1004, 1001, 1002, 1003};
    const std::vector<std::string> texts = {"DueDate", "StartDate", "Priority", "Subject", "Status"};
    for (size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].command, commands[i]);
        EXPECT_EQ(Narrow(entries[i].text), texts[i]);
        EXPECT_EQ(entries[i].mark, i == 2 ? ListRow::kMarkAscending : 0) << i;
    }
    entries = TasksView::SortMenu(9);
    EXPECT_EQ(entries[1].mark, ListRow::kMarkDescending);
    EXPECT_EQ(entries[0].mark, 0);
}

TEST_F(TasksViewTest, RowsCarryPriorityAndDueTextsAndDoneTasksAreStruckOrHidden) {
    TasksView& view = OpenTasks(0);
    ASSERT_TRUE(RowOf("Beta") && RowOf("alpha") && RowOf("Gamma"));
    EXPECT_EQ(Narrow(RowOf("Beta")->Mark()), "Priority_2");
    EXPECT_EQ(Narrow(RowOf("alpha")->Mark()), ""); // normal stays plain
    EXPECT_EQ(Narrow(RowOf("Gamma")->Mark()), "Priority_0");
    EXPECT_TRUE(RowOf("Gamma")->IsStruckThrough());
    EXPECT_FALSE(RowOf("Beta")->IsStruckThrough());
    EXPECT_FALSE(RowOf("delta")->DetailText().empty());
    EXPECT_TRUE(RowOf("Gamma")->DetailText().empty()); // no due date

    FilterConfig filters = PimStore::Instance().GetFilters();
    PimStore::Instance().SetFilters(filters.excludeFilter, filters.categoryFilter, true,
                                    filters.showBirthdays, filters.showAnniversaries);
    view.Reload();
    EXPECT_EQ(RowTexts(view.List()), (Rows{"I:delta", "I:Beta", "I:alpha"}));
}

TEST_F(TasksViewTest, ACheckMarkTapCompletesTheTaskInItsFileAndTheListFollows) {
    TasksView& view = OpenTasks(0);
    ASSERT_EQ(RowTexts(view.List())[0], "I:delta");
    const POINT point = RowPoint(view.List(), 0, 4);
    Tap(point.x, point.y);
    windows_->RunUntilIdle();
    EXPECT_NE(ReadFile("tasks/d.ics").find("COMPLETED"), std::string::npos);
    ASSERT_TRUE(RowOf("delta"));
    EXPECT_TRUE(RowOf("delta")->IsStruckThrough());
}

TEST_F(TasksViewTest, AnEmptyStoreSaysSo) {
    for (const char* file : {"tasks/a.ics", "tasks/b.ics", "tasks/d.ics", "tasks/g.ics"})
        std::filesystem::remove(Root() + "/" + file);
    TasksView& view = OpenTasks(0);
    EXPECT_EQ(RowTexts(view.List()), (Rows{"M:NoTasks"}));
}

} // namespace
} // namespace mirodate::test
