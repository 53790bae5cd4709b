#pragma once
// What the view benchmarks share before they measure: the --runs argument,
// a fixed zone and locale, a temporary folder with the settings file, the
// generated store written into it, and the virtual clock at 08:00 on the
// store's middle day.
#include "bench/store/StoreGenerator.h"
#include "data/PimStore.h"

#include <string>

namespace mirodate {

struct BenchStoreSetup {
    std::string dir;
    StoreGeneratorOptions generator;
    int runs = 1;

    // False, after saying why on stderr, when the store cannot be written.
    bool Prepare(const char* name, int argc, char** argv, int defaultRuns, int minRuns = 1);
    // Opens the generated store as the program does (category colours, no
    // filter) and, with `fillMonth`, reads its middle month into the cache.
    PimStore& OpenStore(bool fillMonth = true) const;
};

} // namespace mirodate
