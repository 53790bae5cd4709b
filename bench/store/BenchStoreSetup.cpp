#include "bench/store/BenchStoreSetup.h"

#include "data/Categories.h"
#include "platform/Clock.h"
#include "platform/Settings.h"
#include "store/VdirSource.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace mirodate {

bool BenchStoreSetup::Prepare(const char* name, int argc, char** argv, int defaultRuns, int minRuns) {
    runs = defaultRuns;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::string(argv[i]) == "--runs")
            runs = std::max(minRuns, std::atoi(argv[++i]));
    setenv("TZ", "Europe/Berlin", 1);
    setenv("LANG", "en_US.UTF-8", 1);
    std::string pattern = std::string("/tmp/mirodate-") + name + "-XXXXXX";
    if (!mkdtemp(pattern.data())) {
        std::fprintf(stderr, "%s: cannot make a temporary folder\n", name);
        return false;
    }
    dir = pattern;
    setenv("XDG_CACHE_HOME", dir.c_str(), 1);
    Settings::UseFile(dir + "/settings.conf");

    generator.root = dir + "/store";
    if (!StoreGenerator::Generate(generator)) {
        std::fprintf(stderr, "%s: cannot write %s\n", name, generator.root.c_str());
        return false;
    }
    std::printf("store: %d events (%d series), %d tasks, %d contacts\n", generator.events, generator.series,
                generator.tasks, generator.contacts);
    SYSTEMTIME start{};
    start.wYear = static_cast<std::uint16_t>(generator.year);
    start.wMonth = static_cast<std::uint16_t>(generator.month);
    start.wDay = static_cast<std::uint16_t>(generator.day);
    start.wHour = 8;
    Clock::Install(std::make_unique<VirtualClock>(start, 1000));
    return true;
}

PimStore& BenchStoreSetup::OpenStore(bool fillMonth) const {
    PimStore& store = PimStore::Instance();
    store.Open(std::make_unique<VdirSource>(generator.root, VdirSource::Options{}));
    Categories::LoadCategoryColors();
    store.SetFilters(u"", u"", false, true, true);
    if (fillMonth)
        store.FillMonth(generator.year, generator.month, true, true);
    return store;
}

} // namespace mirodate
