// The window program: started by `mirodate` (which runs the store commands
// itself) with the same arguments.
#include "app/Application.h"
#include "app/ProgramOptions.h"

#include <cstdio>

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    mirodate::ProgramOptions options;
    std::string error;
    if (!mirodate::ProgramOptions::Parse(args, options, error)) {
        std::fprintf(stderr, "mirodate: %s\n%s", error.c_str(), mirodate::ProgramOptions::Usage().c_str());
        return 2;
    }
    return mirodate::Application(std::move(options)).Run();
}
