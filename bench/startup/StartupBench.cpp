// Start-up to the first painted month and the cost of a month change by a
// swipe, on a generated store of 10,000 events, 2,000 tasks and 1,000
// contacts, with the build's real skin and language files; and `--list` of
// the month beside `khal list` on the same vdir, in the same run.
// Targets: first painted month from process start under 300 ms on a first
// start (the store's index is built) and under 150 ms with the index; a month
// change under 16 ms once the month is cached; `--list` of a month with the
// index under about 45 ms and at least 20 times faster than khal warm.
//
// The benchmark is built next to the program, where the skin archives and
// language files are, so that it finds them as the program does.
//
//   bench_startup [--runs N]
#include "app/MainWnd.h"
#include "app/SplashScreen.h"
#include "bench/store/StoreGenerator.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Paths.h"
#include "platform/Settings.h"
#include "store/StoreIndex.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <vector>

using namespace mirodate;
using Clock_ = std::chrono::steady_clock;

namespace {

const Clock_::time_point g_processStart = Clock_::now();

double Ms(Clock_::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

// The whole program: a new process to its start-up screenshot, headless.
double ProgramRun(const std::string& store, const std::string& dir) {
    const std::string command = std::string(MIRODATE_PROGRAM) + " --headless --virtual-clock --store '" +
                                store + "' --socket '" + dir + "/bench.sock' --screenshot '" + dir +
                                "/shot.png' >/dev/null";
    const auto start = Clock_::now();
    const int status = std::system(command.c_str());
    const double ms = Ms(Clock_::now() - start);
    return status == 0 ? ms : -1;
}

// Runs a shell command, reading its output to the end; wall time in ms.
double TimeCommand(const std::string& command, std::size_t* lines = nullptr) {
    const auto start = Clock_::now();
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return -1;
    char buffer[65536];
    std::size_t count = 0;
    while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe))
        count += std::count(buffer, buffer + n, '\n');
    const int status = pclose(pipe);
    const double ms = Ms(Clock_::now() - start);
    if (lines)
        *lines = count;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        std::printf("  (command failed: %s)\n", command.c_str());
    return ms;
}

// A khal configuration of its own for the generated calendar, its cache in `dir`.
std::string WriteKhalConfig(const std::string& dir, const std::string& calendar) {
    const std::string config = dir + "/khal.conf";
    const char* tz = std::getenv("TZ");
    std::ofstream(config) << "[calendars]\n[[bench]]\npath = " << calendar << "\ntype = calendar\n"
                          << "[locale]\nlocal_timezone = " << tz << "\ndefault_timezone = " << tz
                          << "\ntimeformat = %H:%M\ndateformat = %Y-%m-%d\n"
                          << "longdateformat = %Y-%m-%d\ndatetimeformat = %Y-%m-%d %H:%M\n"
                          << "longdatetimeformat = %Y-%m-%d %H:%M\n[sqlite]\npath = " << dir << "/khal.db\n";
    return config;
}

// Where the skin and language files were found; warns when they were not.
bool ReportResources() {
    const std::string lang = Paths::FindResourceDir("lang.en.txt");
    const std::string skin = Paths::FindResourceDir("skin.Mirodate Black.zip");
    const bool found =
        Paths::FileExists(lang + "/lang.en.txt") && Paths::FileExists(skin + "/skin.Mirodate Black.zip");
    std::printf("skin and language files: %s\n", found ? lang.c_str() : "NOT FOUND (measured without them)");
    return found;
}

} // namespace

int main(int argc, char** argv) {
    int runs = 5;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::string(argv[i]) == "--runs")
            runs = std::max(1, std::atoi(argv[++i]));
    setenv("TZ", "Europe/Berlin", 1);
    char pattern[] = "/tmp/mirodate-bench-startup-XXXXXX";
    const std::string dir = mkdtemp(pattern);
    setenv("XDG_CACHE_HOME", dir.c_str(), 1);
    setenv("XDG_CONFIG_HOME", dir.c_str(), 1);
    setenv("XDG_RUNTIME_DIR", dir.c_str(), 1);
    Settings::UseFile(dir + "/settings.conf");
    ReportResources();

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
        while (!main)
            windows.RunFor(SplashScreen::kLoadTimerPeriod);
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
        for (int i = 0; i < 40; ++i)
            swipes.push_back(swipe(i % 2 ? 120 : -120));
        main.reset();
        PimStore::Instance().Close();
    }

    // New processes: a first start (no index) each time, then with the index.
    const std::string index = StoreIndex::PathFor(generator.root);
    std::vector<double> firstStarts, indexedStarts;
    for (int i = 0; i < runs; ++i) {
        std::filesystem::remove(index);
        firstStarts.push_back(ProgramRun(generator.root, dir));
    }
    for (int i = 0; i < runs; ++i)
        indexedStarts.push_back(ProgramRun(generator.root, dir));

    // --list of the month, with the index, beside khal warm on the same vdir.
    const SYSTEMTIME today = RealClock().GetLocalTime();
    char from[16], to[16];
    std::snprintf(from, sizeof from, "%04d-%02d-01", today.wYear, today.wMonth);
    std::snprintf(to, sizeof to, "%04d-%02d-%02d", today.wYear, today.wMonth,
                  DaysInMonth(today.wYear, today.wMonth));
    const std::string list =
        std::string(MIRODATE_PROGRAM) + " --store '" + generator.root + "' --list " + from + " " + to;
    std::size_t listLines = 0;
    TimeCommand(list, &listLines); // the index is current; this warms the page cache
    std::vector<double> lists;
    for (int i = 0; i < std::max(runs, 7); ++i)
        lists.push_back(TimeCommand(list));
    const double listMs = Median(lists);
    double khalWarm = -1;
    std::size_t khalLines = 0;
    if (std::system("command -v khal >/dev/null 2>&1") == 0) {
        const std::string config = WriteKhalConfig(dir, generator.root + "/calendar");
        const std::string khal = "khal -c '" + config + "' list " + from + " " + to + " 2>/dev/null";
        TimeCommand(khal, &khalLines); // builds khal's cache
        std::vector<double> warm;
        for (int i = 0; i < 3; ++i)
            warm.push_back(TimeCommand(khal));
        khalWarm = Median(warm);
    }

    std::printf("first painted month in this process, cold (the store's index is built): %.1f ms "
                "(%.1f ms since main(), store generation included)\n",
                fromSetupMs, firstMonthMs);
    std::printf("first painted month from process start, first start (no index): median of %d %.1f ms "
                "(target < 300 ms)\n",
                runs, Median(firstStarts));
    std::printf(
        "first painted month from process start, index present: median of %d %.1f ms (target < 150 ms)\n",
        runs, Median(indexedStarts));
    std::printf("--list %s..%s, new process, index present: median %.1f ms, %zu lines (target < 45 ms)\n",
                from, to, listMs, listLines);
    if (khalWarm < 0)
        std::printf("khal not installed: no comparison\n");
    else
        std::printf("khal list, same vdir and month, cache warm: median of 3 %.1f ms, %zu lines; "
                    "khal / ours %.1fx (target >= 20x)\n",
                    khalWarm, khalLines, khalWarm / listMs);
    std::printf(
        "month change by a swipe, cached: median %.2f ms, max %.2f ms over %zu swipes (target < 16 ms)\n",
        Median(swipes), *std::max_element(swipes.begin(), swipes.end()), swipes.size());
    std::filesystem::remove_all(dir);
    return 0;
}
