#include "app/Launcher.h"

#include <cstring>
#include <filesystem>

#include "app/Application.h"
#include "platform/DesktopHandlers.h"
#include "platform/InstanceServer.h"
#include "platform/Paths.h"
#include "platform/PlatformServices.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"

#include <cctype>
#include <cstdio>
#include <fstream>
#include <unistd.h>

namespace mirodate {

namespace {
// The first item's start lies near the top; a calendar larger than this is
// not read to the end for it.
constexpr std::size_t kMaxScanBytes = 4 * 1024 * 1024;

bool IsModeWord(const std::string& word) {
    return word == "calendar" || word == "tasks" || word == "contacts";
}
} // namespace

bool Launcher::Parse(const std::vector<std::string>& args, Options& options, std::string& error) {
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--socket") {
            if (i + 1 >= args.size()) {
                error = "--socket needs a path";
                return false;
            }
            options.socketPath = args[++i];
        } else if (args[i].rfind("--", 0) == 0) {
            error = "unknown option " + args[i];
            return false;
        } else {
            options.arguments.push_back(args[i]);
        }
    }
    return true;
}

std::string Launcher::FirstItemDate(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return {};
    std::size_t read = 0;
    for (std::string line; read < kMaxScanBytes && std::getline(file, line);) {
        read += line.size() + 1;
        if (line.rfind("DTSTART", 0) != 0)
            continue;
        // "DTSTART;TZID=...:20261123T090000" or "DTSTART;VALUE=DATE:20261123"
        const size_t colon = line.find(':');
        if (colon == std::string::npos || line.size() < colon + 9)
            return {};
        const std::string date = line.substr(colon + 1, 8);
        for (char c : date)
            if (!std::isdigit(static_cast<unsigned char>(c)))
                return {};
        const int month = std::stoi(date.substr(4, 2)), day = std::stoi(date.substr(6, 2));
        if (month < 1 || month > 12 || day < 1 || day > 31)
            return {};
        return date;
    }
    return {};
}

std::u16string Launcher::CommandFor(const std::vector<std::string>& arguments) {
    std::string mode = "calendar";
    std::string file;
    for (const std::string& argument : arguments) {
        if (IsModeWord(argument))
            mode = argument;
        else if (file.empty())
            file = argument;
    }
    std::string command = mode;
    // A calendar file that is there opens in the import page, which also
    // tells the user when it is no calendar.
    if (mode == "calendar" && !file.empty() && access(file.c_str(), F_OK) == 0) {
        std::error_code error;
        const std::filesystem::path absolute = std::filesystem::absolute(file, error);
        return u"--import " + Utf8ToUtf16(error ? file : absolute.string());
    }
    return Utf8ToUtf16(command);
}

std::string Launcher::ProgramPath() {
    const std::string installDir = Utf16ToUtf8(Settings::GetInstallDir());
    if (!installDir.empty() && access((installDir + "/mirodate").c_str(), X_OK) == 0)
        return installDir + "/mirodate";
    const std::string beside = Paths::ProgramDir() + "/mirodate";
    if (access(beside.c_str(), X_OK) == 0)
        return beside;
    return "mirodate";
}

int Launcher::Run(const Options& options) {
    bool contacts = false;
    std::string file;
    for (const std::string& argument : options.arguments) {
        if (argument == "contacts")
            contacts = true;
        else if (!IsModeWord(argument) && file.empty())
            file = argument;
    }
    if (contacts) {
        // No address book of ours: the desktop's card program takes it.
        for (const std::string& id : DesktopHandlers::HandlersFor("text/vcard")) {
            if (id.find("mirodate") != std::string::npos)
                continue;
            if (auto command = DesktopHandlers::CommandOf(id, file)) {
                return PlatformServices::Instance().RunProgram(*command) ? 0 : 1;
            }
        }
        std::fprintf(stderr, "mirodate-launcher: no address book is set up on this desktop\n");
        return 1;
    }
    const std::u16string command = CommandFor(options.arguments);
    const std::string socketPath =
        options.socketPath.empty() ? InstanceServer::DefaultSocketPath() : options.socketPath;
    switch (Application::HandOver(socketPath, command)) {
    case Application::HandOverResult::HandedOver:
    case Application::HandOverResult::OtherLoading:
        return 0;
    case Application::HandOverResult::NoInstance:
        break;
    }
    std::vector<std::string> argv{ProgramPath()};
    if (!options.socketPath.empty()) {
        argv.push_back("--socket");
        argv.push_back(options.socketPath);
    }
    const std::string text = Utf16ToUtf8(command);
    if (text.rfind("--import ", 0) == 0) {
        // The path is one argument, blanks and all.
        argv.push_back("--import");
        argv.push_back(text.substr(std::strlen("--import ")));
        return PlatformServices::Instance().RunProgram(argv) ? 0 : 1;
    }
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(' ', start), text.size());
        argv.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return PlatformServices::Instance().RunProgram(argv) ? 0 : 1;
}

} // namespace mirodate
