// Pages of the "Menu" pop-up on the generated store (10,000 events, 500
// series, 2,000 tasks, 1,000 contacts), headless at 480x640:
//   - opening the configuration dialog to its first painted frame
//     (languages, skins and font families listed, rows laid out); target < 30 ms
//   - opening the year view of the store's year to its first painted frame,
//     with the markers of the whole year read; target < 50 ms (the first
//     opening reads the year from the files' records; later ones are reported too)
//
//   bench_config [--runs N]
#include "app/MainWnd.h"
#include "bench/store/BenchStoreSetup.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "forms/ConfigDialog.h"
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"
#include "views/YearView.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
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
double Max(const std::vector<double>& values) {
    return values.empty() ? 0 : *std::max_element(values.begin(), values.end());
}
} // namespace

int main(int argc, char** argv) {
    BenchStoreSetup setup;
    if (!setup.Prepare("bench_config", argc, argv, 20))
        return 1;
    const std::string& dir = setup.dir;
    const StoreGeneratorOptions& generator = setup.generator;
    const int runs = setup.runs;
    setenv("XDG_CONFIG_HOME", dir.c_str(), 1);
    setenv("XDG_DATA_HOME", dir.c_str(), 1);

    HeadlessDisplay display(480, 640);
    {
        WindowManager windows(display);
        setup.OpenStore(true);
        MainWnd main;
        main.Create(u"");
        windows.RunUntilIdle();
        windows.Compose();

        std::vector<double> configOpens;
        for (int i = 0; i < runs; ++i) {
            const auto t0 = Steady::now();
            {
                ConfigDialog dialog;
                dialog.CreateModeless(main.GetHwnd());
                windows.RunUntilIdle();
                windows.Compose();
                configOpens.push_back(Ms(Steady::now() - t0));
                DestroyWindow(dialog.GetHwnd());
            }
            windows.RunUntilIdle();
        }

        // Each run on a cold cache (the first opening of a year), and warm.
        std::vector<double> yearOpens, yearMarked, warmOpens;
        int marked = 0;
        for (int i = 0; i < runs; ++i) {
            PimStore::Instance().ClearCache();
            for (bool warm : {false, true}) {
                const auto t0 = Steady::now();
                YearView view(generator.year);
                view.Open(main.GetHwnd());
                windows.RunUntilIdle();
                windows.Compose();
                (warm ? warmOpens : yearOpens).push_back(Ms(Steady::now() - t0));
                while (view.MarkersPending()) {
                    std::this_thread::sleep_for(std::chrono::microseconds(200));
                    windows.RunUntilIdle();
                }
                windows.Compose();
                if (!warm)
                    yearMarked.push_back(Ms(Steady::now() - t0));
                marked = view.Markers().MarkedDays();
                DestroyWindow(view.GetHwnd());
                windows.RunUntilIdle();
            }
        }

        std::printf(
            "config dialog open to painted frame: first %.2f ms, median %.2f ms, max %.2f ms over %d runs "
            "(target < 30 ms)\n",
            configOpens.front(), Median(configOpens), Max(configOpens), runs);
        std::printf(
            "year view, cold cache: first painted frame median %.2f ms, max %.2f ms (target < 50 ms); "
            "markers of the year (%d days) painted median %.2f ms, max %.2f ms\n",
            Median(yearOpens), Max(yearOpens), marked, Median(yearMarked), Max(yearMarked));
        std::printf("year view, months cached: painted with markers median %.2f ms, max %.2f ms over %d runs "
                    "(target < 50 ms)\n",
                    Median(warmOpens), Max(warmOpens), runs);
        PimStore::Instance().Close();
    }
    std::error_code ignored;
    std::filesystem::remove_all(dir, ignored);
    return 0;
}
