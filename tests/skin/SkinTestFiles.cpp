#include "SkinTestFiles.h"

#include <cairo.h>
#include <minizip/zip.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace mirodate::test {

std::string MakeZip(const std::vector<ZipEntry>& entries) {
    TempFolder folder;
    const std::string path = (folder.Path() / "archive.zip").string();
    zipFile zip = zipOpen64(path.c_str(), APPEND_STATUS_CREATE);
    if (!zip)
        throw std::runtime_error("zipOpen64");
    for (const ZipEntry& entry : entries) {
        zip_fileinfo info{};
        zipOpenNewFileInZip64(zip, entry.name.c_str(), &info, nullptr, 0, nullptr, 0, nullptr,
                              entry.stored ? 0 : Z_DEFLATED, Z_DEFAULT_COMPRESSION, 0);
        zipWriteInFileInZip(zip, entry.data.data(), static_cast<unsigned>(entry.data.size()));
        zipCloseFileInZip(zip);
    }
    zipClose(zip, nullptr);
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string MakePng(int width, int height, unsigned rgb) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cr = cairo_create(surface);
    cairo_set_source_rgb(cr, ((rgb >> 16) & 0xFF) / 255.0, ((rgb >> 8) & 0xFF) / 255.0, (rgb & 0xFF) / 255.0);
    cairo_paint(cr);
    cairo_destroy(cr);
    std::string bytes;
    cairo_surface_write_to_png_stream(
        surface,
        [](void* closure, const unsigned char* data, unsigned int length) {
            static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
            return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
    cairo_surface_destroy(surface);
    return bytes;
}

TempFolder::TempFolder() {
    static int counter = 0;
    path_ = std::filesystem::temp_directory_path() /
            ("mirodate-skin-test-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
    std::filesystem::create_directories(path_);
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TempFolder::Write(const std::string& name, const std::string& bytes) const {
    const std::string path = (path_ / name).string();
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
}

} // namespace mirodate::test
