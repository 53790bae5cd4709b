// mirodate-gen-store DIR [--events N] [--series N] [--tasks N] [--contacts N]
//                        [--seed N] [--around YYYY-MM-DD]
#include "bench/store/StoreGenerator.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

int main(int argc, char** argv) {
    mirodate::StoreGeneratorOptions options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        auto number = [&] { return std::atoi(argv[++i]); };
        if (arg == "--events" && hasValue)
            options.events = number();
        else if (arg == "--series" && hasValue)
            options.series = number();
        else if (arg == "--tasks" && hasValue)
            options.tasks = number();
        else if (arg == "--contacts" && hasValue)
            options.contacts = number();
        else if (arg == "--seed" && hasValue)
            options.seed = static_cast<std::uint32_t>(number());
        else if (arg == "--around" && hasValue &&
                 std::sscanf(argv[++i], "%d-%d-%d", &options.year, &options.month, &options.day) == 3) {
        } else if (arg[0] != '-' && options.root.empty())
            options.root = arg;
        else {
            std::fprintf(stderr, "usage: mirodate-gen-store DIR [--events N] [--series N] [--tasks N] "
                                 "[--contacts N] [--seed N] [--around YYYY-MM-DD]\n");
            return 2;
        }
    }
    if (options.root.empty() || options.series > options.events) {
        std::fprintf(stderr, "mirodate-gen-store: need a folder, and no more series than events\n");
        return 2;
    }
    if (!mirodate::StoreGenerator::Generate(options)) {
        std::fprintf(stderr, "mirodate-gen-store: cannot write %s\n", options.root.c_str());
        return 2;
    }
    std::printf("wrote %d events (%d series), %d tasks, %d contacts to %s\n", options.events, options.series,
                options.tasks, options.contacts, options.root.c_str());
    return 0;
}
