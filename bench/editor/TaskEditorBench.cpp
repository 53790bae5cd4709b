// The task editor on the generated store (2,000 tasks): "Edit" on a task of
// the open tasks view to the editor's first painted frame, and OK on a
// changed subject to the tasks view sorted, filled and painted again.
// Prints the medians and the worst run in ms.
#include "app/MainWnd.h"
#include "bench/store/BenchStoreSetup.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "forms/TaskEditor.h"
#include "platform/HeadlessDisplay.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"
#include "views/TasksView.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

using namespace mirodate;

namespace {
using Steady = std::chrono::steady_clock;
double Ms(Steady::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}
double Median(std::vector<double> v) {
    if (v.empty())
        return 0.0;
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}
double Worst(const std::vector<double>& v) {
    return v.empty() ? 0.0 : *std::max_element(v.begin(), v.end());
}
} // namespace

int main(int argc, char** argv) {
    BenchStoreSetup setup;
    if (!setup.Prepare("bench_taskeditor", argc, argv, 20))
        return 1;
    const StoreGeneratorOptions& generator = setup.generator;
    HeadlessDisplay display(480, 640);
    WindowManager windows(display);
    PimStore& store = setup.OpenStore(true);
    MainWnd main;
    main.Create(u"tasks");
    windows.RunUntilIdle();
    windows.Compose();
    if (!main.Router().Tasks()) {
        std::fprintf(stderr, "bench_taskeditor: the tasks view did not open\n");
        return 1;
    }

    // A task due in the shown month that does not repeat.
    PimItem item;
    for (int day = 1; day <= 28 && item.oid <= 0; ++day) {
        std::vector<PimItem> items;
        store.GetDayTasks(generator.year, generator.month, day, items);
        for (const PimItem& candidate : items)
            if (!candidate.isRecurring && candidate.oid > 0) {
                item = candidate;
                break;
            }
    }
    if (item.oid <= 0) {
        std::fprintf(stderr, "bench_taskeditor: no task in the month\n");
        return 1;
    }
    std::vector<double> opens, saves;
    for (int i = 0; i < setup.runs; ++i) {
        auto t0 = Steady::now();
        main.Router().EditItem(item, false, false, main.Router().Tasks()->GetHwnd());
        windows.RunUntilIdle();
        windows.Compose();
        opens.push_back(Ms(Steady::now() - t0));
        TaskEditor* editor = main.Router().TaskEditorPage();
        if (!editor) {
            std::fprintf(stderr, "bench_taskeditor: the editor did not open\n");
            return 1;
        }
        editor->SubjectField().SetText(u"Edited " + std::u16string(1, static_cast<char16_t>(u'a' + i % 26)));
        t0 = Steady::now();
        editor->Ok();
        windows.RunUntilIdle();
        windows.Compose();
        saves.push_back(Ms(Steady::now() - t0));
        windows.RunFor(600);
    }
    std::printf("bench_taskeditor: %d runs on %s\n", setup.runs, generator.root.c_str());
    std::printf(
        "  Edit on a task to first painted editor frame: median %.2f ms, worst %.2f ms (target < 30 ms)\n",
        Median(opens), Worst(opens));
    std::printf("  OK on a changed task to the tasks view painted again: median %.2f ms, worst %.2f ms "
                "(target < 50 ms)\n",
                Median(saves), Worst(saves));
    return 0;
}
