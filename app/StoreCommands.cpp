#include "app/StoreCommands.h"

#include <cstdio>

namespace mirodate {

int StoreCommands::List(const ProgramOptions&) {
    std::fprintf(stderr, "mirodate: --list is not available yet\n");
    return 2;
}

int StoreCommands::Demo(const ProgramOptions&) {
    std::fprintf(stderr, "mirodate: --demo is not available yet\n");
    return 2;
}

} // namespace mirodate
