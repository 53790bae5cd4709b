// The window program: started by `mirodate` (which runs the store commands
// itself) with the same arguments.
#include "app/Application.h"
#include "app/ProgramOptions.h"

int main(int argc, char** argv) {
    mirodate::ProgramOptions options;
    if (!mirodate::ProgramOptions::ParseCommandLine(argc, argv, options))
        return 2;
    return mirodate::Application(std::move(options)).Run();
}
