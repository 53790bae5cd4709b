#pragma once
// Writes a zip archive entry by entry (deflated), with a fixed time stamp so
// that the same sources give the same archive.
#include <string>

class ZipWriter {
public:
    explicit ZipWriter(const std::string& path);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    void Add(const std::string& name, const std::string& data);
    // Finishes the archive; throws when the archive could not be written.
    void Close();

private:
    void* zip_ = nullptr; // zipFile
};
