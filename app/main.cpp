#include "app/Application.h"
#include "app/ProgramOptions.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    mirodate::ProgramOptions options;
    std::string error;
    if (!mirodate::ProgramOptions::Parse(args, options, error)) {
        std::fprintf(stderr, "mirodate: %s\n%s", error.c_str(), mirodate::ProgramOptions::Usage().c_str());
        return 2;
    }
    const bool listing = options.list;
    const int status = mirodate::Application(std::move(options)).Run();
    if (listing) {
        // A listing is complete once its text is out and the store's index
        // is saved: the process ends without freeing the store's tables one
        // by one, which would take a tenth of its time.
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}
