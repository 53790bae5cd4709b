#pragma once
// The command-line uses of the store that need no window: --list, --export
// and --demo.
#include "app/ProgramOptions.h"

namespace mirodate {

class StoreCommands {
public:
    // Whether the options ask for a store command, which runs without a window.
    static bool Wanted(const ProgramOptions& options);
    // Runs them: --demo first when given (alone it only fills the store), then
    // --list or --export. Returns the exit status.
    static int Run(const ProgramOptions& options);
    // --list FROM TO: prints the items of each day; 0, or 2 with a one-line
    // error on stderr.
    static int List(const ProgramOptions& options);
    // --demo: fills an empty store with a demo month around today.
    static int Demo(const ProgramOptions& options);
    // --export FROM TO FILE: one calendar file of the appointments and tasks
    // of those days (each item once, with its time zones); 0, or 2 with a
    // one-line error on stderr. FILE is written whole or not at all.
    static int Export(const ProgramOptions& options);
};

} // namespace mirodate
