// Store benchmarks on a generated vdir of 10,000 events (500 series), 2,000
// tasks and 1,000 contacts: open + FillMonth, a one-day query from the cache,
// Search and `mirodate --list` for a month, beside `khal list` for the same
// month on the same vdir (khal's cache cold and warm). Prints every figure.
#include "bench/store/StoreGenerator.h"
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/Paths.h"
#include "platform/Settings.h"
#include "store/StoreIndex.h"
#include "store/VdirSource.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace mirodate;
using Clock_ = std::chrono::steady_clock;

namespace {

double Since(Clock_::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock_::now() - start).count();
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
    const double ms = Since(start);
    if (lines)
        *lines = count;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        std::printf("  (command failed: %s)\n", command.c_str());
    return ms;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    const std::string binary = argc > 1 ? argv[1] : MIRODATE_PROGRAM;
    const auto work = std::filesystem::temp_directory_path() / ("mirodate-bench-" + std::to_string(getpid()));
    const std::string root = (work / "vdir").string();
    setenv("XDG_CACHE_HOME", (work / "cache").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (work / "config").c_str(), 1);
    if (!std::getenv("TZ"))
        setenv("TZ", "Europe/Berlin", 1);
    tzset();
    Settings::UseFile((work / "config/mirodate/settings.conf").string());

    const SYSTEMTIME now = Clock::Current().GetLocalTime();
    const int year = now.wYear, month = now.wMonth, lastDay = DaysInMonth(year, month);
    char from[16], to[16];
    std::snprintf(from, sizeof from, "%04d-%02d-01", year, month);
    std::snprintf(to, sizeof to, "%04d-%02d-%02d", year, month, lastDay);

    StoreGeneratorOptions options;
    options.root = root;
    options.year = year;
    options.month = month;
    options.day = now.wDay;
    auto start = Clock_::now();
    if (!StoreGenerator::Generate(options)) {
        std::fprintf(stderr, "bench_store: cannot write %s\n", root.c_str());
        return 1;
    }
    std::printf("store: %d events (%d series), %d tasks, %d contacts in %s (generated in %.0f ms)\n",
                options.events, options.series, options.tasks, options.contacts, root.c_str(), Since(start));
    std::printf("month: %s to %s, TZ=%s\n\n", from, to, std::getenv("TZ"));

    // Open + FillMonth, with no index (first start) and with it.
    for (const char* label :
         {"open + FillMonth, no index (first start)", "open + FillMonth, index present"}) {
        PimStore store;
        start = Clock_::now();
        if (!store.Open(std::make_unique<VdirSource>(root)))
            return 1;
        const double open = Since(start);
        start = Clock_::now();
        store.FillMonth(year, month, true, true);
        std::printf("%-44s %8.2f ms (open %.2f ms, fill %.2f ms)\n", label, open + Since(start), open,
                    Since(start));
    }

    PimStore store;
    store.Open(std::make_unique<VdirSource>(root));
    store.SetFilters(u"", u"", false, true, true);
    store.FillMonth(year, month, true, true);
    // One day from the cache: every day of the month, many rounds.
    constexpr int kRounds = 2000;
    std::vector<PimItem> items;
    std::size_t total = 0;
    start = Clock_::now();
    for (int round = 0; round < kRounds; ++round)
        for (int day = 1; day <= lastDay; ++day) {
            items.clear();
            store.GetDayAppointments(year, month, day, items);
            store.GetDayTasks(year, month, day, items);
            total += items.size();
        }
    const double perDay = Since(start) * 1000.0 / (kRounds * lastDay);
    std::printf("%-44s %8.2f us per day (%.1f items a day; target < 50 us)\n", "one-day query from the cache",
                perDay, static_cast<double>(total) / (kRounds * lastDay));

    std::vector<double> searches;
    std::size_t found = 0;
    for (int i = 0; i < 5; ++i) {
        std::vector<PimItem> appointments, tasks;
        start = Clock_::now();
        store.Search(u"meeting", PimStore::SearchOptions{}, appointments, tasks);
        searches.push_back(Since(start));
        found = appointments.size() + tasks.size();
    }
    std::printf("%-44s %8.2f ms (median of 5, %zu matches)\n", "Search(\"meeting\"), a year ahead",
                Median(searches), found);

    // --list of the month, process start to last line.
    const std::string env = "XDG_CACHE_HOME='" + (work / "cache").string() + "' XDG_CONFIG_HOME='" +
                            (work / "config").string() + "' ";
    const std::string list = env + "'" + binary + "' --store '" + root + "' --list " + from + " " + to;
    std::size_t ourLines = 0;
    std::filesystem::remove(StoreIndex::PathFor(root));
    const double listNoIndex = TimeCommand(list, &ourLines);
    std::vector<double> lists;
    for (int i = 0; i < 7; ++i)
        lists.push_back(TimeCommand(list));
    const double listCold = Median(lists);
    std::printf("%-44s %8.2f ms (%zu lines)\n", "--list month, new process, no index", listNoIndex, ourLines);
    std::printf("%-44s %8.2f ms (median of 7)\n", "--list month, new process, index present", listCold);

    // khal on the same vdir and month.
    if (std::system("command -v khal >/dev/null 2>&1") != 0) {
        std::printf("khal not installed: no comparison\n");
    } else {
        const auto config = work / "khal.conf";
        const auto db = work / "khal.db";
        std::ofstream(config) << "[calendars]\n[[bench]]\npath = " << root << "/calendar\ntype = calendar\n"
                              << "[locale]\nlocal_timezone = " << std::getenv("TZ")
                              << "\ndefault_timezone = " << std::getenv("TZ")
                              << "\ntimeformat = %H:%M\ndateformat = %Y-%m-%d\n"
                              << "longdateformat = %Y-%m-%d\ndatetimeformat = %Y-%m-%d %H:%M\n"
                              << "longdatetimeformat = %Y-%m-%d %H:%M\n[sqlite]\npath = " << db.string()
                              << "\n";
        const std::string khal =
            env + "khal -c '" + config.string() + "' list " + from + " " + to + " 2>/dev/null";
        std::size_t khalLines = 0;
        std::filesystem::remove(db);
        const double khalCold = TimeCommand(khal, &khalLines);
        std::vector<double> warm;
        for (int i = 0; i < 3; ++i)
            warm.push_back(TimeCommand(khal));
        const double khalWarm = Median(warm);
        std::printf("%-44s %8.2f ms (%zu lines incl. day headings)\n", "khal list month, cache cold",
                    khalCold, khalLines);
        std::printf("%-44s %8.2f ms (median of 3)\n", "khal list month, cache warm", khalWarm);
        std::printf("\nratio khal warm / our --list (index present): %.1fx (target >= 20x)\n",
                    khalWarm / listCold);
        std::printf("ratio khal warm / our --list (no index):      %.1fx\n", khalWarm / listNoIndex);
        std::printf("ratio khal cold / our --list (no index):      %.1fx\n", khalCold / listNoIndex);
    }
    std::filesystem::remove_all(work);
    return 0;
}
