// The views on the generated store (10,000 events, 500 series, 2,000 tasks,
// 1,000 contacts), headless at 480x640 on the virtual clock:
//   - from the tap on the main window's "AgendaView" button to the first
//     painted agenda of 29 days (AgendaSize 4); target < 30 ms
//   - fling frames over that agenda; targets median < 4 ms, p99 < 8 ms
//   - one day change in the day view: the work of each of the 16 slide
//     steps (without the pauses); target < 4 ms
//
//   bench_views [--runs N]
#include "app/MainWnd.h"
#include "bench/store/BenchStoreSetup.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"
#include "views/AgendaView.h"
#include "views/DayView.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using namespace mirodate;
using Steady = std::chrono::steady_clock;

namespace {
double Ms(Steady::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}
double Percentile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1,
                           static_cast<size_t>(share * static_cast<double>(values.size())))];
}
} // namespace

int main(int argc, char** argv) {
    BenchStoreSetup setup;
    if (!setup.Prepare("bench_views", argc, argv, 20))
        return 1;
    const std::string& dir = setup.dir;
    const StoreGeneratorOptions& generator = setup.generator;
    const int runs = setup.runs;
    Settings::SetNumber("AgendaSize", 4);

    HeadlessDisplay display(480, 640);
    {
        WindowManager windows(display);
        setup.OpenStore(true);
        MainWnd main;
        main.Create(u"");
        windows.RunUntilIdle();
        windows.Compose();

        auto tap = [&](HWND button) {
            RECT rect;
            GetWindowRect(button, &rect);
            DisplayEvent event;
            event.x = (rect.left + rect.right) / 2;
            event.y = (rect.top + rect.bottom) / 2;
            event.type = DisplayEvent::Type::PointerDown;
            display.Inject(event);
            event.type = DisplayEvent::Type::PointerUp;
            display.Inject(event);
        };
        // Tap to painted agenda: the first opening makes the page, later ones refill it.
        std::vector<double> opens;
        for (int i = 0; i < runs; ++i) {
            const auto t0 = Steady::now();
            tap(main.Menu().Button(4)->GetHwnd());
            windows.RunUntilIdle();
            windows.Compose();
            opens.push_back(Ms(Steady::now() - t0));
            AgendaView* agenda = main.Router().Agenda();
            if (!agenda)
                break;
            if (i + 1 < runs) {
                ShowWindow(agenda->GetHwnd(), SW_HIDE);
                windows.RunFor(600); // past the button's debounce
            }
        }
        AgendaView* agenda = main.Router().Agenda();
        if (!agenda) {
            std::fprintf(stderr, "bench_views: the agenda did not open\n");
            return 1;
        }
        const int rows = agenda->List().ItemCount();

        // Fling frames: quick drags up and down, each followed by its fling.
        std::vector<double> frames;
        auto pointer = [&](DisplayEvent::Type type, int y) {
            DisplayEvent event;
            event.type = type;
            event.x = 200;
            event.y = y;
            display.Inject(event);
            windows.RunUntilIdle();
        };
        TouchScroller& scroller = agenda->List().Scroller();
        for (int fling = 0; fling < 40; ++fling) {
            const bool up = fling % 8 != 7;
            const int from = up ? 520 : 160, to = up ? 160 : 520;
            pointer(DisplayEvent::Type::PointerDown, from);
            for (int step = 1; step <= 4; ++step) {
                windows.RunFor(10);
                pointer(DisplayEvent::Type::PointerMove, from + (to - from) * step / 4);
            }
            pointer(DisplayEvent::Type::PointerUp, to);
            while (scroller.IsFlinging() || scroller.IsAnimating()) {
                const auto t0 = Steady::now();
                windows.RunFor(scroller.IsFlinging() ? 25 : 10);
                windows.Compose();
                frames.push_back(Ms(Steady::now() - t0));
            }
        }

        // The day view's slide: the time between steps is the steps' work (the
        // pauses pass on the virtual clock).
        main.Router().OpenDayView(DateTime(generator.year, generator.month, generator.day));
        windows.RunUntilIdle();
        DayView* day = main.Router().Day();
        std::vector<double> steps;
        std::vector<double> changes;
        Steady::time_point last;
        day->SetSlideObserver([&](int step) {
            const auto now = Steady::now();
            if (step > 1)
                steps.push_back(Ms(now - last));
            last = now;
        });
        for (int i = 0; i < runs; ++i) {
            const auto t0 = Steady::now();
            last = t0;
            if (i % 2)
                day->PreviousDay();
            else
                day->NextDay();
            windows.RunUntilIdle();
            windows.Compose();
            changes.push_back(Ms(Steady::now() - t0));
        }

        std::printf("agenda of %d days, %d rows: tap on \"AgendaView\" to painted agenda: first %.1f ms, "
                    "median of %d %.1f ms (target < 30 ms)\n",
                    AgendaView::DayCount(), rows, opens.front(), runs, Percentile(opens, 0.5));
        std::printf("fling frames over the agenda: median %.3f ms (target < 4), p99 %.3f ms (target < 8), "
                    "worst %.3f ms, %zu frames\n",
                    Percentile(frames, 0.5), Percentile(frames, 0.99), Percentile(frames, 1.0),
                    frames.size());
        std::printf(
            "day view slide: work per step median %.3f ms, worst %.3f ms (target < 4 ms); whole day change "
            "median %.1f ms (fills and 16 steps, pauses on the virtual clock)\n",
            Percentile(steps, 0.5), Percentile(steps, 1.0), Percentile(changes, 0.5));
        main.Router().CloseAll();
    }
    PimStore::Instance().Close();
    std::filesystem::remove_all(dir);
    return 0;
}
