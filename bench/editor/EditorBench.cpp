// The appointment editor on the generated store: "Edit" on an appointment
// to the editor's first painted frame, and OK on a changed subject to the
// month view painted again with its markers (the marker worker's result
// taken in and painted). Prints the medians in ms.
#include "app/MainWnd.h"
#include "app/MarkerWorker.h"
#include "bench/store/BenchStoreSetup.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "forms/AppointmentEditor.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
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
} // namespace

int main(int argc, char** argv) {
    BenchStoreSetup setup;
    if (!setup.Prepare("bench_editor", argc, argv, 20))
        return 1;
    const StoreGeneratorOptions& generator = setup.generator;
    HeadlessDisplay display(480, 640);
    WindowManager windows(display);
    PimStore& store = setup.OpenStore(true);
    MainWnd main;
    main.Create(u"");
    windows.RunUntilIdle();
    windows.Compose();

    // A plain appointment of the shown month.
    PimItem item;
    for (int day = 1; day <= 28 && item.oid <= 0; ++day) {
        std::vector<PimItem> items;
        store.GetDayAppointments(generator.year, generator.month, day, items);
        for (const PimItem& candidate : items)
            if (candidate.kind == PimItem::kAppointment && !candidate.isRecurring && candidate.oid > 0) {
                item = candidate;
                break;
            }
    }
    if (item.oid <= 0) {
        std::fprintf(stderr, "bench_editor: no appointment in the month\n");
        return 1;
    }
    std::vector<double> opens, saves;
    for (int i = 0; i < setup.runs; ++i) {
        auto t0 = Steady::now();
        main.Router().EditItem(item, false, false, main.GetHwnd());
        windows.RunUntilIdle();
        windows.Compose();
        opens.push_back(Ms(Steady::now() - t0));
        AppointmentEditor* editor = main.Router().Editor();
        if (!editor) {
            std::fprintf(stderr, "bench_editor: the editor did not open\n");
            return 1;
        }
        editor->SubjectField().SetText(u"Edited " + std::u16string(1, static_cast<char16_t>(u'a' + i % 26)));
        t0 = Steady::now();
        editor->Ok();
        // Until the marker worker's result is in the grid and painted.
        do {
            windows.RunUntilIdle();
            std::this_thread::yield();
        } while (MarkerWorker::RunningJobs() > 0);
        windows.RunUntilIdle();
        windows.Compose();
        saves.push_back(Ms(Steady::now() - t0));
        windows.RunFor(600);
    }
    std::printf("bench_editor: %d runs on %s\n", setup.runs, generator.root.c_str());
    std::printf("  Edit to first painted editor frame: median %.2f ms (target < 30 ms)\n", Median(opens));
    std::printf(
        "  OK on a changed appointment to painted month with markers: median %.2f ms (target < 50 ms)\n",
        Median(saves));
    return 0;
}
