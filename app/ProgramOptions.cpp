#include "app/ProgramOptions.h"

#include "data/DateTime.h"
#include "platform/TextUtil.h"

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <string_view>

namespace mirodate {

namespace {
// Screens outside these bounds are refused rather than allocated.
constexpr int kMinScreenSide = 120;
constexpr int kMaxScreenSide = 8192;

// A bare argument naming a calendar file (FILE.ics) is a file to import.
bool IsCalendarFileName(const std::string& arg) {
    constexpr std::string_view kExtension = ".ics";
    if (arg.size() <= kExtension.size())
        return false;
    for (std::size_t i = 0; i < kExtension.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(arg[arg.size() - kExtension.size() + i])) !=
            kExtension[i])
            return false;
    return true;
}
} // namespace

bool ProgramOptions::Parse(const std::vector<std::string>& args, ProgramOptions& options,
                           std::string& error) {
    std::string commandLine;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        auto needValue = [&](int count) {
            if (i + count < args.size())
                return true;
            error =
                "option " + arg + " needs " + (count == 1 ? "a value" : std::to_string(count) + " values");
            return false;
        };
        if (arg.rfind("--", 0) != 0) {
            if (!commandLine.empty())
                commandLine += ' ';
            commandLine += arg;
            options.arguments.push_back(arg);
        } else if (arg == "--store") {
            if (!needValue(1))
                return false;
            options.storeDir = args[++i];
        } else if (arg == "--size") {
            if (!needValue(1))
                return false;
            int w = 0, h = 0;
            char tail = 0;
            if (std::sscanf(args[++i].c_str(), "%dx%d%c", &w, &h, &tail) != 2 || w < kMinScreenSide ||
                h < kMinScreenSide || w > kMaxScreenSide || h > kMaxScreenSide) {
                error = "bad --size '" + args[i] + "': expected WxH, each between " +
                        std::to_string(kMinScreenSide) + " and " + std::to_string(kMaxScreenSide);
                return false;
            }
            options.width = w;
            options.height = h;
        } else if (arg == "--headless") {
            options.headless = true;
        } else if (arg == "--virtual-clock") {
            options.virtualClock = true;
        } else if (arg == "--now") {
            if (!needValue(1))
                return false;
            int y = 0, mo = 0, d = 0, h = 0, mi = 0;
            char tail = 0;
            const std::string& value = args[++i];
            const bool read =
                std::sscanf(value.c_str(), "%4d-%2d-%2dT%2d:%2d%c", &y, &mo, &d, &h, &mi, &tail) == 5;
            if (!read || y < 1900 || y > 9999 || mo < 1 || mo > 12 || d < 1 || d > DaysInMonth(y, mo) ||
                h < 0 || h > 23 || mi < 0 || mi > 59) {
                error = "bad --now '" + value + "': expected YYYY-MM-DDTHH:MM";
                return false;
            }
            options.nowGiven = true;
            options.nowYear = y, options.nowMonth = mo, options.nowDay = d, options.nowHour = h,
            options.nowMinute = mi;
        } else if (arg == "--script") {
            if (!needValue(1))
                return false;
            options.scriptPath = args[++i];
        } else if (arg == "--screenshot") {
            if (!needValue(1))
                return false;
            options.screenshotPath = args[++i];
        } else if (arg == "--demo") {
            options.demo = true;
        } else if (arg == "--list") {
            if (!needValue(2))
                return false;
            options.list = true;
            options.listFrom = args[++i];
            options.listTo = args[++i];
        } else if (arg == "--import") {
            if (!needValue(1))
                return false;
            options.importPath = args[++i];
        } else if (arg == "--export") {
            if (!needValue(3))
                return false;
            options.exportGiven = true;
            options.exportFrom = args[++i];
            options.exportTo = args[++i];
            options.exportPath = args[++i];
        } else if (arg == "--verbose") {
            options.verbose = true;
        } else if (arg == "--socket") {
            if (!needValue(1))
                return false;
            options.socketPath = args[++i];
        } else {
            error = "unknown option " + arg;
            return false;
        }
    }
    if (options.nowGiven && !options.headless) {
        error = "--now needs --headless (a real window keeps the real time)";
        return false;
    }
    // A calendar file alone ("mirodate invite.ics") is one to import; with a
    // command word ("-f invite.ics") it belongs to the command.
    if (options.importPath.empty() && options.arguments.size() == 1 &&
        IsCalendarFileName(options.arguments[0]))
        options.importPath = options.arguments[0];
    // A file to import is the command the window (or the running instance) acts on.
    if (!options.importPath.empty()) {
        std::error_code failed;
        const std::filesystem::path absolute = std::filesystem::absolute(options.importPath, failed);
        commandLine = "--import " + (failed ? options.importPath : absolute.string());
    }
    options.commandLine = Utf8ToUtf16(commandLine);
    return true;
}

std::string ProgramOptions::Usage() {
    return "usage: mirodate [--store DIR] [--size WxH] [--headless] [--virtual-clock]\n"
           "                [--now YYYY-MM-DDTHH:MM] [--script FILE] [--screenshot PNG] [--demo]\n"
           "                [--list FROM TO] [--import FILE.ics] [--export FROM TO FILE.ics]\n"
           "                [--verbose] [--socket PATH]\n"
           "                [command text, e.g. calendar -vd -d20091231]\n";
}

bool ProgramOptions::ParseCommandLine(int argc, char** argv, ProgramOptions& options) {
    std::string error;
    if (Parse(std::vector<std::string>(argv + 1, argv + argc), options, error))
        return true;
    std::fprintf(stderr, "mirodate: %s\n%s", error.c_str(), Usage().c_str());
    return false;
}

} // namespace mirodate
