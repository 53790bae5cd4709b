#pragma once
// Zip archives, PNG pictures and temporary folders for the skin tests.
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace mirodate::test {

struct ZipEntry {
    std::string name;
    std::string data;
    bool stored = false; // else deflated
};

// A zip archive of `entries`, as bytes.
std::string MakeZip(const std::vector<ZipEntry>& entries);

// A `width` x `height` PNG filled with one opaque colour 0xRRGGBB.
std::string MakePng(int width, int height, unsigned rgb);

// A folder under the system's temporary folder, removed with its content.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::string Write(const std::string& name, const std::string& bytes) const;

private:
    std::filesystem::path path_;
};

} // namespace mirodate::test
