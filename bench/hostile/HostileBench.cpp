// What one hostile file costs: each case of HostileFiles is run with
// `--list` of a month and with a headless start to the first screenshot, and
// compared with the same run on the clean setup. Target: no case adds more
// than 1 s or 200 MB.
//
//   bench_hostile [--runs N] [--case NAME]
#include "bench/hostile/HostileFiles.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

using namespace mirodate;

namespace {

constexpr double kTargetMs = 1000;
constexpr double kTargetMb = 200;

struct Figures {
    double ms = 0;
    double mb = 0;
    bool finished = true;
};

// The median time and the largest memory of `runs` runs.
Figures Measure(const HostileFiles& files, HostileFiles::Mode mode, int runs) {
    std::vector<double> times;
    Figures figures;
    for (int i = 0; i < runs; ++i) {
        const ProgramRun run = files.Run(mode);
        figures.finished = figures.finished && run.exitCode == 0;
        times.push_back(run.ms);
        figures.mb = std::max(figures.mb, run.maxRssKb / 1024.0);
    }
    std::sort(times.begin(), times.end());
    figures.ms = times[times.size() / 2];
    return figures;
}

} // namespace

int main(int argc, char** argv) {
    int runs = 3;
    std::string only;
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::string(argv[i]) == "--runs")
            runs = std::max(1, std::atoi(argv[++i]));
        else if (std::string(argv[i]) == "--case")
            only = argv[++i];
    }
    HostileFiles files("/tmp/mirodate-bench-hostile-" + std::to_string(getpid()), MIRODATE_PROGRAM);
    if (!files.Ready()) {
        std::fprintf(stderr, "bench_hostile: cannot set up the program folder\n");
        return 1;
    }
    const Figures baseList = Measure(files, HostileFiles::Mode::List, runs);
    const Figures baseStart = Measure(files, HostileFiles::Mode::Start, runs);
    std::printf("clean setup: --list %.0f ms %.0f MB, start %.0f ms %.0f MB\n", baseList.ms, baseList.mb,
                baseStart.ms, baseStart.mb);
    std::printf("%-30s %-8s %10s %10s  (target: +%.0f ms, +%.0f MB)\n", "case", "run", "+ms", "+MB",
                kTargetMs, kTargetMb);
    bool allWithin = true;
    for (const HostileFiles::Case& hostile : HostileFiles::Cases()) {
        if (!only.empty() && only != hostile.name)
            continue;
        if (!files.Apply(hostile.name)) {
            std::printf("%-30s cannot be built\n", hostile.name);
            allWithin = false;
            continue;
        }
        for (const auto mode : {HostileFiles::Mode::List, HostileFiles::Mode::Start}) {
            if ((mode == HostileFiles::Mode::List && !hostile.list) ||
                (mode == HostileFiles::Mode::Start && !hostile.start))
                continue;
            const Figures base = mode == HostileFiles::Mode::List ? baseList : baseStart;
            const Figures figures = Measure(files, mode, runs);
            const double extraMs = figures.ms - base.ms, extraMb = figures.mb - base.mb;
            const bool within = figures.finished && extraMs <= kTargetMs && extraMb <= kTargetMb;
            allWithin = allWithin && within;
            std::printf("%-30s %-8s %10.0f %10.1f  %s\n", hostile.name,
                        mode == HostileFiles::Mode::List ? "--list" : "start", extraMs, extraMb,
                        !figures.finished ? "DID NOT FINISH"
                        : within          ? "ok"
                                          : "OVER TARGET");
        }
    }
    std::printf("%s\n", allWithin ? "every case within the target" : "some case over the target");
    return allWithin ? 0 : 1;
}
