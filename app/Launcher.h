#pragma once
// The launcher the desktop starts for calendar files and for the calendar
// and tasks entries: "mirodate-launcher calendar [FILE]", "... tasks" or
// "... contacts [FILE]". Calendar and tasks go to Mirodate: handed to the
// running instance over the instance link, or Mirodate is started with the
// command. Contacts go to the desktop's own address book.
#include <string>
#include <vector>

namespace mirodate {

class Launcher {
public:
    struct Options {
        std::string socketPath;             // the instance link; default when empty
        std::vector<std::string> arguments; // mode word and files
    };
    // Reads "--socket PATH" and the words; false with a message for bad ones.
    static bool Parse(const std::vector<std::string>& args, Options& options, std::string& error);
    // Returns the process exit code.
    static int Run(const Options& options);

    // The command text for Mirodate: the mode, and for a calendar file the
    // month of its first item ("calendar -d20261123").
    static std::u16string CommandFor(const std::vector<std::string>& arguments);
    // The date (yyyymmdd) of the first DTSTART in an iCalendar file; empty
    // when the file cannot be read or holds none.
    static std::string FirstItemDate(const std::string& path);
    // The program to start when no instance runs.
    static std::string ProgramPath();
};

} // namespace mirodate
