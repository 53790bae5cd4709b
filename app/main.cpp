// The program's entry. The store commands (--list, --export, --demo) run in
// this process, which loads only the libraries the store needs, so that a
// listing starts in a few milliseconds. Everything with a window is the
// window program installed beside this one, which takes over this process.
#include "app/ProgramOptions.h"
#include "app/StoreCommands.h"
#include "platform/Log.h"
#include "platform/Paths.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr char kWindowProgram[] = "mirodate-ui";
// The heap grows in steps this large: the store's start allocates some ten
// megabytes in small pieces, and growing by the default 128 KB costs a
// system call and a run of page faults every few hundred of them.
constexpr int kHeapGrowthBytes = 64 << 20;

} // namespace

int main(int argc, char** argv) {
    mirodate::ProgramOptions options;
    if (!mirodate::ProgramOptions::ParseCommandLine(argc, argv, options))
        return 2;
    if (mirodate::StoreCommands::Wanted(options)) {
        mallopt(M_TOP_PAD, kHeapGrowthBytes);
        mirodate::Log::SetVerbose(options.verbose);
        const int status = mirodate::StoreCommands::Run(options);
        // The output and the store's index are written by now: the process
        // ends without freeing the store's tables one by one, which would
        // take a tenth of a listing's time.
        std::fflush(nullptr);
        std::_Exit(status);
    }
    const std::string window = mirodate::Paths::ProgramDir() + "/" + kWindowProgram;
    argv[0] = const_cast<char*>(window.c_str());
    execv(window.c_str(), argv);
    const int besideError = errno;
    // Not beside this program (no /proc, or installed apart): the search path.
    argv[0] = const_cast<char*>(kWindowProgram);
    execvp(kWindowProgram, argv);
    std::fprintf(stderr, "mirodate: cannot start %s: %s\n", window.c_str(), std::strerror(besideError));
    return 127;
}
