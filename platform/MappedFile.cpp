#include "platform/MappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mirodate {

MappedFile::~MappedFile() {
    if (data_)
        munmap(data_, size_);
}

bool MappedFile::Open(const std::string& path, std::uint64_t maxBytes, std::uint64_t& size) {
    size = 0;
    // Non-blocking, so that a FIFO put in place of the file cannot stop us.
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat st {};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || st.st_size <= 0) {
        close(fd);
        return false;
    }
    size = static_cast<std::uint64_t>(st.st_size);
    if (size > maxBytes) {
        close(fd);
        return false;
    }
    void* data = mmap(nullptr, static_cast<std::size_t>(size), PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
    close(fd);
    if (data == MAP_FAILED)
        return false;
    data_ = data;
    size_ = static_cast<std::size_t>(size);
    return true;
}

} // namespace mirodate
