#include "views/TasksView.h"

#include "data/PimStore.h"
#include "data/TaskSorter.h"
#include "lang/LanguageTable.h"
#include "platform/Settings.h"
#include "skin/SkinStyles.h"
#include "ui/ListCtrlWnd.h"
#include "views/ItemRow.h"
#include "views/MessageRow.h"

#include <memory>
#include <string>

namespace mirodate {

namespace {
// The sort menu lists its keys in this order.
constexpr int kSortMenuKeys[] = {TaskSorter::kByDueDate, TaskSorter::kByStartDate, TaskSorter::kByPriority,
                                 TaskSorter::kBySubject, TaskSorter::kByStatus};

const char* SortKeyName(int key) {
    switch (key) {
    case TaskSorter::kByDueDate:
        return "DueDate";
    case TaskSorter::kByPriority:
        return "Priority";
    case TaskSorter::kBySubject:
        return "Subject";
    case TaskSorter::kByStatus:
        return "Status";
    default:
        return "StartDate";
    }
}

int StoredOrder() {
    return TaskSorter::ClampOrder(Settings::GetTaskSort());
}

// High and low priority are marked; normal, the usual case, is left plain.
std::u16string PriorityMark(int importance) {
    if (importance != PimItem::kImportanceLow && importance != PimItem::kImportanceHigh)
        return {};
    return importance == PimItem::kImportanceHigh ? Lang("Priority_2") : Lang("Priority_0");
}
} // namespace

TasksView::TasksView(const DateTime& date)
    : ViewPage(SkinStyles::Current().agendaView),
      date_(date.IsValid() ? date.StartOfDay() : DateTime::Today()) {}

std::vector<MenuBarEntry> TasksView::MenuEntries() const {
    return {{"Menu", MenuBarIcon::Menu},
            {"Filter", MenuBarIcon::Filter},
            {"NewTask", MenuBarIcon::New},
            {"Back", MenuBarIcon::Back}};
}

std::u16string TasksView::Title() const {
    // The title names the order; a tap on it changes it.
    const int order = StoredOrder();
    const bool descending = order >= TaskSorter::kDescending;
    return Lang("Tasks") + u"  \u00b7  " + Lang(SortKeyName(order % TaskSorter::kDescending)) +
           (descending ? u" \u25bc" : u" \u25b2");
}

void TasksView::SetDate(const DateTime& date) {
    if (date.IsValid())
        date_ = date.StartOfDay();
}

void TasksView::Reload() {
    if (!window)
        return;
    BeginFill(list_);
    tasks_.clear();
    PimStore::Instance().QueryAllTasks(tasks_);
    TaskSorter::Sort(tasks_, StoredOrder());
    if (tasks_.empty())
        list_.AddItem(std::make_unique<MessageRow>(look_, Lang("NoTasks"), date_.ToDate()));
    for (const PimItem& task : tasks_) {
        auto row = std::make_unique<ItemRow>(look_, task, 0.0);
        row->SetMark(PriorityMark(task.importance));
        list_.AddItem(std::move(row));
    }
    EndFill(list_);
}

std::vector<ContextMenuItem> TasksView::SortMenu(int order) {
    order = TaskSorter::ClampOrder(order);
    const int currentKey = order % TaskSorter::kDescending;
    std::vector<ContextMenuItem> items;
    for (int key : kSortMenuKeys) {
        ContextMenuItem item{Lang(SortKeyName(key)), kCmdSortFirst + static_cast<UINT>(key)};
        if (key == currentKey)
            item.mark = order < TaskSorter::kDescending ? ListRow::kMarkAscending : ListRow::kMarkDescending;
        items.push_back(std::move(item));
    }
    return items;
}

void TasksView::OpenSortMenu() {
    OpenContextMenu(SortMenu(Settings::GetTaskSort()));
}

void TasksView::OnTitleTap() {
    OpenSortMenu();
}
void TasksView::OnTitleHold() {
    OpenSortMenu();
}

bool TasksView::OnViewCommand(UINT command) {
    if (command < kCmdSortFirst || command > kCmdSortLast)
        return false;
    const int order = TaskSorter::Choose(StoredOrder(), static_cast<int>(command - kCmdSortFirst));
    Settings::SetNumber("TaskSort", order);
    title_.SetLabel(Title());
    Reload();
    return true;
}

} // namespace mirodate
