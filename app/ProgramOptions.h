#pragma once
// The process arguments split into our own "--" options and the command
// text that the program's command handler reads.
#include <string>
#include <vector>

namespace mirodate {

struct ProgramOptions {
    std::string storeDir; // --store DIR
    int width = 480;      // --size WxH
    int height = 640;
    bool headless = false;     // --headless
    bool virtualClock = false; // --virtual-clock
    bool nowGiven = false;     // --now YYYY-MM-DDTHH:MM (headless only): the clock starts there
    int nowYear = 0, nowMonth = 0, nowDay = 0, nowHour = 0, nowMinute = 0;
    std::string scriptPath;     // --script FILE
    std::string screenshotPath; // --screenshot PNG
    bool demo = false;          // --demo
    bool list = false;          // --list FROM TO
    std::string listFrom;
    std::string listTo;
    std::string importPath;   // --import FILE, or a bare FILE.ics
    bool exportGiven = false; // --export FROM TO FILE
    std::string exportFrom;
    std::string exportTo;
    std::string exportPath;
    bool verbose = false;               // --verbose
    std::string socketPath;             // --socket PATH (instance link; default under the runtime dir)
    std::u16string commandLine;         // everything else, joined by single spaces
    std::vector<std::string> arguments; // the same words one by one (file names keep their blanks)

    // Reads argv[1..]; on a bad option returns false with a one-line message.
    static bool Parse(const std::vector<std::string>& args, ProgramOptions& options, std::string& error);
    static std::string Usage();
    // Parse of a program's own arguments; on an error it prints the error
    // and the usage to stderr and returns false.
    static bool ParseCommandLine(int argc, char** argv, ProgramOptions& options);
};

} // namespace mirodate
