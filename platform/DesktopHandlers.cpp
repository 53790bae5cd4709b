#include "platform/DesktopHandlers.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace mirodate {

namespace {
// Desktop files and lists are small; anything larger is not one.
constexpr std::streamsize kMaxFileSize = 1 << 20;

std::string Env(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value && *value ? std::string(value) : fallback;
}
std::string Home() {
    return Env("HOME", "/");
}
std::string ConfigHome() {
    return Env("XDG_CONFIG_HOME", Home() + "/.config");
}
std::string DataHome() {
    return Env("XDG_DATA_HOME", Home() + "/.local/share");
}

std::vector<std::string> SplitPathList(const std::string& list) {
    std::vector<std::string> parts;
    std::stringstream stream(list);
    for (std::string part; std::getline(stream, part, ':');)
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

bool ReadSmallFile(const std::string& path, std::string& text) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    text.assign(static_cast<size_t>(kMaxFileSize), '\0');
    file.read(text.data(), kMaxFileSize);
    text.resize(static_cast<size_t>(file.gcount()));
    return true;
}

// The values of `key` in `section` of an INI-style text (";"-separated lists split).
std::vector<std::string> ListValues(const std::string& text, const std::string& section,
                                    const std::string& key) {
    std::vector<std::string> values;
    std::stringstream stream(text);
    std::string current;
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (!line.empty() && line.front() == '[') {
            current = line;
            continue;
        }
        if (current != "[" + section + "]")
            continue;
        const size_t equals = line.find('=');
        if (equals == std::string::npos || line.substr(0, equals) != key)
            continue;
        std::stringstream list(line.substr(equals + 1));
        for (std::string id; std::getline(list, id, ';');)
            if (!id.empty())
                values.push_back(id);
    }
    return values;
}

std::vector<std::string> MimeappsFiles() {
    std::vector<std::string> files{ConfigHome() + "/mimeapps.list"};
    for (const std::string& dir : SplitPathList(Env("XDG_CONFIG_DIRS", "/etc/xdg")))
        files.push_back(dir + "/mimeapps.list");
    files.push_back(DataHome() + "/applications/mimeapps.list");
    for (const std::string& dir : SplitPathList(Env("XDG_DATA_DIRS", "/usr/local/share:/usr/share")))
        files.push_back(dir + "/applications/mimeapps.list");
    return files;
}

std::string FindDesktopFile(const std::string& id) {
    if (id.empty() || id.find('/') != std::string::npos || id.find("..") != std::string::npos)
        return {};
    std::vector<std::string> dirs{DataHome()};
    for (const std::string& dir : SplitPathList(Env("XDG_DATA_DIRS", "/usr/local/share:/usr/share")))
        dirs.push_back(dir);
    for (const std::string& dir : dirs) {
        const std::string path = dir + "/applications/" + id;
        if (std::ifstream(path))
            return path;
    }
    return {};
}
} // namespace

std::vector<std::string> DesktopHandlers::HandlersFor(const std::string& mimeType) {
    std::vector<std::string> ids;
    auto addOnce = [&ids](const std::string& id) {
        for (const std::string& known : ids)
            if (known == id)
                return;
        ids.push_back(id);
    };
    std::vector<std::string> texts;
    for (const std::string& path : MimeappsFiles()) {
        std::string text;
        if (ReadSmallFile(path, text))
            texts.push_back(std::move(text));
    }
    for (const std::string& text : texts)
        for (const std::string& id : ListValues(text, "Default Applications", mimeType))
            addOnce(id);
    for (const std::string& text : texts)
        for (const std::string& id : ListValues(text, "Added Associations", mimeType))
            addOnce(id);
    return ids;
}

std::vector<std::string> DesktopHandlers::SplitExec(const std::string& exec, const std::string& file) {
    std::vector<std::string> args;
    std::string current;
    bool inArgument = false, quoted = false;
    for (size_t i = 0; i < exec.size(); ++i) {
        const char c = exec[i];
        if (quoted) {
            if (c == '\\' && i + 1 < exec.size())
                current += exec[++i];
            else if (c == '"')
                quoted = false;
            else
                current += c;
            continue;
        }
        if (c == '"') {
            quoted = inArgument = true;
        } else if (c == ' ' || c == '\t') {
            if (inArgument)
                args.push_back(std::move(current));
            current.clear();
            inArgument = false;
        } else if (c == '%' && i + 1 < exec.size()) {
            const char code = exec[++i];
            if (code == '%')
                current += '%';
            else if ((code == 'f' || code == 'F' || code == 'u' || code == 'U') && !file.empty())
                current += file;
            inArgument = true;
        } else {
            current += c;
            inArgument = true;
        }
    }
    if (inArgument)
        args.push_back(std::move(current));
    // Codes with nothing to stand for leave empty arguments behind.
    std::vector<std::string> kept;
    for (std::string& arg : args)
        if (!arg.empty())
            kept.push_back(std::move(arg));
    return kept;
}

std::optional<std::vector<std::string>> DesktopHandlers::CommandOf(const std::string& desktopId,
                                                                   const std::string& file) {
    std::string text;
    const std::string path = FindDesktopFile(desktopId);
    if (path.empty() || !ReadSmallFile(path, text))
        return std::nullopt;
    const std::vector<std::string> exec = ListValues(text, "Desktop Entry", "Exec");
    if (exec.empty())
        return std::nullopt;
    // ListValues split at ';', which Exec lines may hold: take the line whole.
    std::string line;
    for (size_t i = 0; i < exec.size(); ++i)
        line += (i ? ";" : "") + exec[i];
    std::vector<std::string> args = SplitExec(line, file);
    if (args.empty())
        return std::nullopt;
    return args;
}

std::optional<std::vector<std::string>> DesktopHandlers::OtherCalendarCommand(const std::string& file) {
    for (const std::string& id : HandlersFor("text/calendar")) {
        if (id.find("mirodate") != std::string::npos)
            continue;
        if (auto command = CommandOf(id, file))
            return command;
    }
    return std::nullopt;
}

std::string DesktopHandlers::DownloadDir() {
    std::string text;
    if (ReadSmallFile(ConfigHome() + "/user-dirs.dirs", text)) {
        for (const std::string& value : ListValues("[x]\n" + text, "x", "XDG_DOWNLOAD_DIR")) {
            std::string dir = value;
            if (dir.size() >= 2 && dir.front() == '"' && dir.back() == '"')
                dir = dir.substr(1, dir.size() - 2);
            if (dir.rfind("$HOME", 0) == 0)
                dir = Home() + dir.substr(5);
            if (!dir.empty() && dir.front() == '/')
                return dir;
        }
    }
    return Home() + "/Downloads";
}

} // namespace mirodate
