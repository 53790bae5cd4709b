#include "platform/MimeAppsList.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

namespace {
std::string Trim(const std::string& text) {
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos)
        return {};
    const size_t end = text.find_last_not_of(" \t");
    return text.substr(begin, end - begin + 1);
}

bool IsHeader(const std::string& line) {
    const std::string text = Trim(line);
    return text.size() >= 2 && text.front() == '[' && text.back() == ']';
}

// The file a path stands for: a link's final target, so that the link stays.
std::string ResolveLink(const std::string& path) {
    struct stat st {};
    if (lstat(path.c_str(), &st) != 0 || !S_ISLNK(st.st_mode))
        return path;
    char resolved[PATH_MAX];
    if (realpath(path.c_str(), resolved))
        return resolved;
    // A dangling link: write where it points.
    char target[PATH_MAX];
    const ssize_t n = readlink(path.c_str(), target, sizeof target - 1);
    if (n <= 0)
        return path;
    std::string text(target, static_cast<size_t>(n));
    if (text.front() == '/')
        return text;
    const size_t slash = path.rfind('/');
    return (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + text;
}

bool WriteAll(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<size_t>(n);
    }
    return true;
}
} // namespace

bool MimeAppsList::Load(const std::string& path, std::string& error) {
    lines_.clear();
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        if (errno == ENOENT)
            return true;
        error = path + ": " + std::strerror(errno);
        return false;
    }
    struct stat st {};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || static_cast<size_t>(st.st_size) > kMaxBytes) {
        close(fd);
        error = path + ": not a mimeapps.list file";
        return false;
    }
    std::string text(static_cast<size_t>(st.st_size), '\0');
    size_t done = 0;
    bool failed = false;
    while (done < text.size()) {
        const ssize_t n = read(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            failed = true;
        if (n <= 0)
            break;
        done += static_cast<size_t>(n);
    }
    close(fd);
    text.resize(done);
    if (failed) {
        error = path + ": cannot be read";
        return false;
    }
    if (text.find('\0') != std::string::npos) {
        error = path + ": holds binary data";
        return false;
    }
    SetText(text);
    return true;
}

void MimeAppsList::SetText(const std::string& text) {
    lines_.clear();
    size_t start = 0;
    while (start < text.size()) {
        const size_t newline = text.find('\n', start);
        Line line;
        if (newline == std::string::npos) {
            line.text = text.substr(start);
            start = text.size();
        } else {
            line.text = text.substr(start, newline - start);
            line.ending = "\n";
            start = newline + 1;
        }
        if (!line.text.empty() && line.text.back() == '\r' && !line.ending.empty()) {
            line.text.pop_back();
            line.ending = "\r\n";
        }
        lines_.push_back(std::move(line));
    }
}

std::string MimeAppsList::Text() const {
    std::string text;
    for (const Line& line : lines_)
        text += line.text + line.ending;
    return text;
}

bool MimeAppsList::Save(const std::string& path, std::string& error) const {
    const std::string target = ResolveLink(path);
    mode_t mode = 0644;
    struct stat st {};
    if (stat(target.c_str(), &st) == 0) {
        if (!S_ISREG(st.st_mode)) {
            error = target + ": not a regular file";
            return false;
        }
        // A file the user made read-only stays as it is.
        if (access(target.c_str(), W_OK) != 0) {
            error = target + ": read-only";
            return false;
        }
        mode = st.st_mode & 07777;
    }
    const size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : target.substr(0, slash == 0 ? 1 : slash);
    std::string temp = folder + "/.mimeapps.list.XXXXXX";
    const int fd = mkstemp(temp.data());
    if (fd < 0) {
        error = folder + ": " + std::strerror(errno);
        return false;
    }
    const bool written = WriteAll(fd, Text()) && fchmod(fd, mode) == 0 && fsync(fd) == 0;
    close(fd);
    if (!written || rename(temp.c_str(), target.c_str()) != 0) {
        error = target + ": " + std::strerror(errno);
        unlink(temp.c_str());
        return false;
    }
    return true;
}

int MimeAppsList::FindSection(const std::string& section) const {
    for (size_t i = 0; i < lines_.size(); ++i)
        if (Trim(lines_[i].text) == "[" + section + "]")
            return static_cast<int>(i);
    return -1;
}

bool MimeAppsList::HasSection(const std::string& section) const {
    return FindSection(section) >= 0;
}

int MimeAppsList::SectionEnd(int header) const {
    size_t i = static_cast<size_t>(header) + 1;
    while (i < lines_.size() && !IsHeader(lines_[i].text))
        ++i;
    return static_cast<int>(i);
}

int MimeAppsList::FindKey(int header, const std::string& key) const {
    const int end = SectionEnd(header);
    for (int i = header + 1; i < end; ++i) {
        const std::string& text = lines_[static_cast<size_t>(i)].text;
        const size_t equals = text.find('=');
        if (equals != std::string::npos && Trim(text.substr(0, equals)) == key)
            return i;
    }
    return -1;
}

std::optional<std::string> MimeAppsList::Get(const std::string& section, const std::string& key) const {
    const int header = FindSection(section);
    if (header < 0)
        return std::nullopt;
    const int at = FindKey(header, key);
    if (at < 0)
        return std::nullopt;
    const std::string& text = lines_[static_cast<size_t>(at)].text;
    return Trim(text.substr(text.find('=') + 1));
}

std::string MimeAppsList::NewLineEnding() const {
    for (const Line& line : lines_)
        if (!line.ending.empty())
            return line.ending;
    return "\n";
}

void MimeAppsList::Set(const std::string& section, const std::string& key, const std::string& value) {
    const std::string ending = NewLineEnding();
    int header = FindSection(section);
    if (header >= 0) {
        if (const int at = FindKey(header, key); at >= 0) {
            lines_[static_cast<size_t>(at)].text = key + "=" + value;
            return;
        }
        // After the section's last non-blank line.
        int at = SectionEnd(header);
        while (at > header + 1 && Trim(lines_[static_cast<size_t>(at - 1)].text).empty())
            --at;
        if (lines_[static_cast<size_t>(at - 1)].ending.empty())
            lines_[static_cast<size_t>(at - 1)].ending = ending;
        lines_.insert(lines_.begin() + at, Line{key + "=" + value, ending});
        return;
    }
    if (!lines_.empty() && lines_.back().ending.empty())
        lines_.back().ending = ending;
    lines_.push_back(Line{"[" + section + "]", ending});
    lines_.push_back(Line{key + "=" + value, ending});
}

void MimeAppsList::Remove(const std::string& section, const std::string& key, bool dropEmptySection) {
    const int header = FindSection(section);
    if (header < 0)
        return;
    if (const int at = FindKey(header, key); at >= 0)
        lines_.erase(lines_.begin() + at);
    if (dropEmptySection && SectionEnd(header) == header + 1)
        lines_.erase(lines_.begin() + header);
}

} // namespace mirodate
