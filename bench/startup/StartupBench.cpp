// Start-up to the first painted month and the cost of a month change by a
// swipe, on a generated store of 10,000 events, 2,000 tasks and 1,000
// contacts. Targets: first month under 300 ms from process start; a month
// change under 16 ms once the month is cached.
//
//   bench_startup [--runs N]
#include "app/MainWnd.h"
#include "app/SplashScreen.h"
#include "bench/store/StoreGenerator.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

using namespace mirodate;
using Clock_ = std::chrono::steady_clock;

namespace {

const Clock_::time_point g_processStart = Clock_::now();

double Ms(Clock_::duration d) { return std::chrono::duration<double, std::milli>(d).count(); }

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

// The whole program: a new process to its start-up screenshot, headless.
double ProgramRun(const std::string& store, const std::string& dir) {
    const std::string command = std::string(MIRODATE_PROGRAM) + " --headless --virtual-clock --store '" + store +
                                "' --socket '" + dir + "/bench.sock' --screenshot '" + dir + "/shot.png' >/dev/null";
    const auto start = Clock_::now();
    const int status = std::system(command.c_str());
    const double ms = Ms(Clock_::now() - start);
    return status == 0 ? ms : -1;
}

} // namespace

int main(int argc, char** argv) {
    int runs = 5;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::string(argv[i]) == "--runs") runs = std::max(1, std::atoi(argv[++i]));
    setenv("TZ", "Europe/Berlin", 1);
    char pattern[] = "/tmp/mirodate-bench-startup-XXXXXX";
    const std::string dir = mkdtemp(pattern);
    setenv("XDG_CACHE_HOME", dir.c_str(), 1);
    setenv("XDG_CONFIG_HOME", dir.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
    Settings::UseFile(dir + "/settings.conf");

    // The store, around today so that the first month is a full one.
    StoreGeneratorOptions generator;
    generator.root = dir + "/store";
    const SYSTEMTIME now = RealClock().GetLocalTime();
    generator.year = now.wYear;
    generator.month = now.wMonth;
    generator.day = std::min<int>(now.wDay, 28);
    if (!StoreGenerator::Generate(generator)) {
        std::fprintf(stderr, "bench_startup: cannot write %s\n", generator.root.c_str());
        return 1;
    }
    std::printf("store: %d events (%d series), %d tasks, %d contacts\n", generator.events, generator.series,
                generator.tasks, generator.contacts);

    // In this process: from main() to the first frame that holds the month.
    const auto setupDone = Clock_::now();
    double firstMonthMs = 0, fromSetupMs = 0;
    std::vector<double> swipes;
    {
        HeadlessDisplay display(480, 640);
        WindowManager windows(display);
        std::unique_ptr<MainWnd> main;
        SplashScreen splash(u"", [&](SplashScreen& screen) {
            VdirSource::Options options;
            PimStore& store = PimStore::Instance();
            store.Open(std::make_unique<VdirSource>(generator.root, options));
            Categories::LoadCategoryColors();
            store.SetFilters(Settings::GetExcludeFilter(), Settings::GetLastFilter(),
                             Settings::GetHideCompleteTasks(), Settings::GetShowContactsBirthdays(),
                             Settings::GetShowContactsAnniversaries());
            const SYSTEMTIME today = mirodate::Clock::Current().GetLocalTime();
            store.FillMonth(today.wYear, today.wMonth, true, true);
            main = std::make_unique<MainWnd>();
            main->Create(u"");
            screen.Close();
        });
        splash.CreateCentered();
        while (!main) windows.RunFor(SplashScreen::kLoadTimerPeriod);
        windows.RunUntilIdle();
        windows.Compose();
        const auto painted = Clock_::now();
        firstMonthMs = Ms(painted - g_processStart);
        fromSetupMs = Ms(painted - setupDone);

        // Month changes by a swipe, between two months that are both cached.
        auto swipe = [&](int dy) {
            DisplayEvent event;
            event.x = 240;
            event.y = 300;
            event.type = DisplayEvent::Type::PointerDown;
            display.Inject(event);
            event.type = DisplayEvent::Type::PointerMove;
            event.y = 300 + dy;
            display.Inject(event);
            event.type = DisplayEvent::Type::PointerUp;
            display.Inject(event);
            const auto start = Clock_::now();
            windows.RunUntilIdle();
            windows.Compose();
            return Ms(Clock_::now() - start);
        };
        swipe(-120);
        swipe(120);
        for (int i = 0; i < 40; ++i) swipes.push_back(swipe(i % 2 ? 120 : -120));
        main.reset();
        PimStore::Instance().Close();
    }

    std::vector<double> programRuns;
    for (int i = 0; i < runs; ++i) programRuns.push_back(ProgramRun(generator.root, dir));

    std::printf("first painted month in this process, cold (the store's index is built): %.1f ms "
                "(%.1f ms since main(), store generation included)\n",
                fromSetupMs, firstMonthMs);
    std::printf("first painted month from process start (new process, headless, to its start-up screenshot): "
                "first %.1f ms, median of %d %.1f ms (target < 300 ms)\n",
                programRuns.front(), runs, Median(programRuns));
    std::printf("month change by a swipe, cached: median %.2f ms, max %.2f ms over %zu swipes (target < 16 ms)\n",
                Median(swipes), *std::max_element(swipes.begin(), swipes.end()), swipes.size());
    std::filesystem::remove_all(dir);
    return 0;
}
