// The tasks and search views on the generated store (10,000 events, 500
// series, 2,000 tasks, 1,000 contacts), headless at 480x640 on the virtual
// clock:
//   - sorting and filling the tasks view with every task; target < 10 ms
//     (the store's query for the tasks is reported beside it)
//   - from the search timer firing after the last keystroke to the painted
//     result list, for a common word; target < 50 ms
//
//   bench_tasksearch [--runs N]
#include "bench/store/BenchStoreSetup.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "data/TaskSorter.h"
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"
#include "views/ItemRow.h"
#include "views/SearchView.h"
#include "views/TasksView.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

using namespace mirodate;
using Steady = std::chrono::steady_clock;

namespace {
double Ms(Steady::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}
double Median(std::vector<double> values) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}
} // namespace

int main(int argc, char** argv) {
    BenchStoreSetup setup;
    if (!setup.Prepare("bench_tasksearch", argc, argv, 20))
        return 1;
    const std::string& dir = setup.dir;
    const int runs = setup.runs;
    Settings::SetNumber("SearchStartDelay", 750);

    HeadlessDisplay display(480, 640);
    {
        WindowManager windows(display);
        PimStore& store = setup.OpenStore(false);

        // The tasks view: the query, then sorting and filling, each order in turn.
        TasksView tasks(DateTime::Today());
        tasks.Open(nullptr);
        windows.RunUntilIdle();
        std::vector<double> queries, fills, reloads;
        std::vector<PimItem> all;
        for (int i = 0; i < runs; ++i) {
            all.clear();
            auto t0 = Steady::now();
            store.QueryAllTasks(all);
            queries.push_back(Ms(Steady::now() - t0));
            // Sorting and filling as the view does, on rows already read.
            const int order = i % (TaskSorter::kLastOrder + 1);
            t0 = Steady::now();
            TaskSorter::Sort(all, order);
            tasks.List().ClearItems();
            for (const PimItem& task : all)
                tasks.List().AddItem(std::make_unique<ItemRow>(tasks.Look(), task, 0.0));
            tasks.List().Relayout();
            fills.push_back(Ms(Steady::now() - t0));
            Settings::SetNumber("TaskSort", order);
            t0 = Steady::now();
            tasks.Reload();
            windows.Compose();
            reloads.push_back(Ms(Steady::now() - t0));
        }
        std::printf(
            "tasks view, %d tasks: sorting and filling median %.2f ms (target < 10 ms); the store's query "
            "median %.2f ms; whole reload with query and paint median %.2f ms\n",
            tasks.List().ItemCount(), Median(fills), Median(queries), Median(reloads));

        // The search: three keystrokes, then the timer fires 750 ms after the last.
        SearchView search;
        search.Open(nullptr);
        windows.RunUntilIdle();
        std::vector<double> searches;
        int found = 0;
        for (int i = 0; i < runs; ++i) {
            search.Field().SetText(u"meet");
            for (const char* key : {"i", "n", "g"}) {
                DisplayEvent event;
                event.type = DisplayEvent::Type::Text;
                event.text = key;
                display.Inject(event);
                windows.RunUntilIdle();
                windows.RunFor(100);
            }
            windows.RunFor(749 - 100);
            windows.Compose();
            const int before = search.SearchCount();
            const auto t0 = Steady::now();
            windows.RunFor(1);
            windows.RunUntilIdle();
            windows.Compose();
            searches.push_back(Ms(Steady::now() - t0));
            if (search.SearchCount() != before + 1) {
                std::fprintf(stderr, "bench_tasksearch: the timer did not search\n");
                return 1;
            }
            found = search.List().ItemCount();
        }
        std::printf(
            "search \"meeting\", %d rows: timer firing to painted result list median %.1f ms, worst %.1f ms "
            "(target < 50 ms)\n",
            found, Median(searches), *std::max_element(searches.begin(), searches.end()));
    }
    PimStore::Instance().Close();
    std::filesystem::remove_all(dir);
    return 0;
}
