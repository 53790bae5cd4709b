#pragma once
// Every task of the store in the order the user chose ("TaskSort"): a row per
// task with its check-mark zone, due text and priority, completed tasks
// struck through (or left out when the filter hides them). The title opens
// the sort menu, which flips the key in use or picks another one.
#include "views/ViewPage.h"

namespace mirodate {

class TasksView : public ViewPage {
public:
    // Commands of the sort menu: kCmdSortFirst + a TaskSorter key.
    static constexpr UINT kCmdSortFirst = 1000;
    static constexpr UINT kCmdSortLast = 1004;

    explicit TasksView(const DateTime& date);

    // The day the view was opened on: new tasks start there.
    void SetDate(const DateTime& date);
    DateTime CurrentDate() const override { return date_; }
    void Reload() override;

    // The sort menu's entries for the stored order.
    static std::vector<ContextMenuItem> SortMenu(int order);
    void OpenSortMenu();
    // The tasks as the last fill sorted them.
    const std::vector<PimItem>& Tasks() const { return tasks_; }

protected:
    std::vector<MenuBarEntry> MenuEntries() const override;
    std::u16string Title() const override;
    bool OnViewCommand(UINT command) override;
    void OnTitleTap() override;
    void OnTitleHold() override;

private:
    DateTime date_;
    std::vector<PimItem> tasks_; // reused by every fill
};

} // namespace mirodate
