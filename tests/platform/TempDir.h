#pragma once
// A temporary directory removed with everything in it at the end of a test.
#include <filesystem>
#include <string>

#include <cstdlib>
#include <unistd.h>

namespace mirodate::test {

class TempDir {
public:
    TempDir() {
        std::string pattern = (std::filesystem::temp_directory_path() / "mirodate-test-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        path_ = pattern;
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& Path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

} // namespace mirodate::test
