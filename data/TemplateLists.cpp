#include "data/TemplateLists.h"

#include "platform/Log.h"
#include "platform/Paths.h"
#include "platform/TextUtil.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <mutex>
#include <unistd.h>

namespace mirodate {

namespace {
constexpr const char* kLocationsFile = "MDLocations.txt";
constexpr const char* kSubjectsFile = "MDSubjects.txt";
constexpr size_t kMarkSize = 2; // FF FE
// A list file beyond this size is not one we wrote: read it as empty and do
// not append to it, rather than load it whole.
constexpr std::streamoff kMaxListFileSize = 4 * 1024 * 1024;

std::mutex g_directoryMutex;
std::string g_directory;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// The text after the mark, up to the first zero character.
std::u16string DecodeAfterMark(const std::string& bytes) {
    std::u16string text = DecodeUtf16Le(std::string_view(bytes).substr(kMarkSize));
    return text.substr(0, text.find(u'\0'));
}

std::string EncodeWithMark(const std::u16string& text) {
    return std::string("\xFF\xFE", kMarkSize) + EncodeUtf16Le(text);
}

bool ReadListFile(const std::string& path, std::string& bytes) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in)
        return false;
    std::streamoff size = in.tellg();
    if (size < 0 || size > kMaxListFileSize) {
        Log::Warning("%s is too large to be a list; ignored", path.c_str());
        return false;
    }
    bytes.resize(static_cast<size_t>(size));
    in.seekg(0);
    return static_cast<bool>(in.read(bytes.data(), size));
}

void LoadList(const std::string& path, std::vector<std::u16string>& list) {
    list.clear();
    std::string bytes;
    if (!ReadListFile(path, bytes) || bytes.size() <= kMarkSize)
        return;
    const std::u16string text = DecodeAfterMark(bytes);
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find(u"\r\n", start);
        if (end == std::u16string::npos)
            end = text.size();
        // Empty entries (a doubled "\r\n", the trailing one) are no entries.
        if (end > start)
            list.push_back(text.substr(start, end - start));
        start = end + 2;
    }
}

bool Replaceable(const std::string& path) {
    if (!Paths::FileExists(path))
        return true;
    std::string bytes;
    if (!ReadListFile(path, bytes))
        return false;
    return bytes.empty() || bytes.compare(0, kMarkSize, "\xFF\xFE") == 0;
}

bool WriteWhole(const std::string& path, const std::string& bytes) {
    // Through a temporary file and a rename: a failed write leaves the old list.
    const std::string temp = path + ".tmp";
    {
        FilePtr file(std::fopen(temp.c_str(), "wb"));
        if (!file)
            return false;
        if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
            std::fflush(file.get()) != 0) {
            file.reset();
            std::remove(temp.c_str());
            return false;
        }
    }
    if (std::rename(temp.c_str(), path.c_str()) != 0) {
        std::remove(temp.c_str());
        return false;
    }
    return true;
}
} // namespace

std::string TemplateLists::Directory() {
    {
        std::lock_guard lock(g_directoryMutex);
        if (!g_directory.empty())
            return g_directory;
    }
    const std::string programDir = Paths::ProgramDir();
    if (access(programDir.c_str(), W_OK) == 0)
        return programDir;
    const std::string dataDir = Paths::DataDir();
    Paths::MakeDirs(dataDir);
    return dataDir;
}

void TemplateLists::SetDirectory(const std::string& directory) {
    std::lock_guard lock(g_directoryMutex);
    g_directory = directory;
}

std::string TemplateLists::PathOf(const char* fileName) {
    return Directory() + "/" + fileName;
}

void TemplateLists::LoadLocations(std::vector<std::u16string>& list) {
    LoadList(PathOf(kLocationsFile), list);
    std::sort(list.begin(), list.end());
}

void TemplateLists::LoadSubjects(std::vector<std::u16string>& list) {
    LoadList(PathOf(kSubjectsFile), list);
}

bool TemplateLists::SaveLocations(const std::u16string& text) {
    return WriteWhole(PathOf(kLocationsFile), EncodeWithMark(text));
}

bool TemplateLists::SaveSubjects(const std::u16string& text) {
    return WriteWhole(PathOf(kSubjectsFile), EncodeWithMark(text));
}

bool TemplateLists::SubjectsReplaceable() {
    return Replaceable(PathOf(kSubjectsFile));
}
bool TemplateLists::LocationsReplaceable() {
    return Replaceable(PathOf(kLocationsFile));
}
std::string TemplateLists::SubjectsPath() {
    return PathOf(kSubjectsFile);
}
std::string TemplateLists::LocationsPath() {
    return PathOf(kLocationsFile);
}

void TemplateLists::AddLocation(const std::u16string& text) {
    size_t begin = text.find_first_not_of(u' ');
    if (begin == std::u16string::npos)
        return;
    size_t end = text.find_last_not_of(u' ');
    const std::u16string needle = text.substr(begin, end - begin + 1) + u"\r\n";

    const std::string path = PathOf(kLocationsFile);
    std::string bytes;
    const bool exists = Paths::FileExists(path);
    if (exists && !ReadListFile(path, bytes))
        return; // unreadable: leave it alone
    if (bytes.size() > kMarkSize && DecodeAfterMark(bytes).find(needle) != std::u16string::npos)
        return;

    FilePtr file(std::fopen(path.c_str(), "ab"));
    if (!file)
        return;
    std::string append = EncodeWithMark(needle);
    if (!bytes.empty())
        append.erase(0, kMarkSize); // the mark only starts an empty file
    std::fwrite(append.data(), 1, append.size(), file.get());
}

} // namespace mirodate
