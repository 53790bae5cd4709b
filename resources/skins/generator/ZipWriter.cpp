#include "ZipWriter.h"

#include <minizip/zip.h>

#include <stdexcept>

ZipWriter::ZipWriter(const std::string& path) {
    zip_ = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    if (!zip_)
        throw std::runtime_error("cannot create " + path);
}

ZipWriter::~ZipWriter() {
    if (zip_)
        zipClose(zip_, nullptr);
}

void ZipWriter::Add(const std::string& name, const std::string& data) {
    zip_fileinfo info{};
    info.tmz_date.tm_year = 2024;
    info.tmz_date.tm_mon = 0;
    info.tmz_date.tm_mday = 1;
    if (zipOpenNewFileInZip64(zip_, name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED,
                              Z_BEST_COMPRESSION, 0) != ZIP_OK ||
        zipWriteInFileInZip(zip_, data.data(), static_cast<unsigned>(data.size())) != ZIP_OK ||
        zipCloseFileInZip(zip_) != ZIP_OK)
        throw std::runtime_error("cannot add " + name);
}

void ZipWriter::Close() {
    const int result = zipClose(zip_, nullptr);
    zip_ = nullptr;
    if (result != ZIP_OK)
        throw std::runtime_error("cannot finish the archive");
}
