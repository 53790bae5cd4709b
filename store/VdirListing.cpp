#include "store/VdirListing.h"

#include "platform/Log.h"
#include "platform/ParallelFor.h"
#include "platform/Paths.h"
#include "platform/TextUtil.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace mirodate {

namespace {

// Names a thread takes at a time: small enough that threads finish together,
// large enough that they rarely meet on the counter.
constexpr std::size_t kChunk = 128;

} // namespace

VdirListing::VdirListing(const VdirFileIo& io, bool create) : io_(io) {
    for (int directory = 0; directory < VdirFileIo::kDirectoryCount; ++directory) {
        const std::string path = io_.DirectoryPath(directory);
        if (create)
            Paths::MakeDirs(path);
        dirs_[directory] = opendir(path.c_str());
        if (!dirs_[directory])
            continue;
        while (dirent* entry = readdir(dirs_[directory]))
            if (VdirFileIo::IsItemFile(entry->d_name))
                files_.push_back({directory, entry->d_name, 0, 0});
    }
    problems_.assign(files_.size(), Problem::None);
    chunkChecked_.assign((files_.size() + kChunk - 1) / kChunk, 0);
}

VdirListing::~VdirListing() {
    for (DIR* dir : dirs_)
        if (dir)
            closedir(dir);
}

void VdirListing::StampAll() {
    for (;;) {
        const std::size_t begin = next_.fetch_add(kChunk, std::memory_order_relaxed);
        if (begin >= files_.size())
            return;
        const std::size_t end = std::min(files_.size(), begin + kChunk);
        for (std::size_t i = begin; i < end; ++i) {
            VdirFileIo::FoundFile& file = files_[i];
            struct stat fileStat {};
            if (fstatat(dirfd(dirs_[file.directory]), file.name.c_str(), &fileStat, 0) != 0) {
                problems_[i] = errno == ELOOP ? Problem::Loop : Problem::Gone;
            } else if (!S_ISREG(fileStat.st_mode)) {
                problems_[i] = Problem::NotRegular;
            } else {
                file.size = fileStat.st_size;
                file.mtimeNs = VdirFileIo::MtimeNs(fileStat);
            }
        }
        if (const Check* check = check_.load(std::memory_order_acquire))
            CheckChunk(*check, begin / kChunk);
    }
}

void VdirListing::SetCheck(const Check* check) {
    check_.store(check, std::memory_order_release);
}

void VdirListing::CheckChunk(const Check& check, std::size_t chunk) {
    std::string scratch;
    const std::size_t end = std::min(files_.size(), (chunk + 1) * kChunk);
    for (std::size_t i = chunk * kChunk; i < end && !checkFailed_.load(std::memory_order_relaxed); ++i)
        if (problems_[i] == Problem::None && !check(files_[i], scratch))
            checkFailed_ = true;
    chunkChecked_[chunk] = 1;
}

bool VdirListing::CheckRest() {
    const Check* check = check_.load(std::memory_order_acquire);
    if (!check)
        return false;
    // Checks on every core are not worth a thread below this many chunks.
    constexpr std::size_t kMinChunksPerSlice = 16;
    ParallelFor(chunkChecked_.size(), kMinChunksPerSlice, [&](std::size_t begin, std::size_t end) {
        for (std::size_t chunk = begin; chunk < end; ++chunk)
            if (!chunkChecked_[chunk])
                CheckChunk(*check, chunk);
    });
    return !checkFailed_;
}

std::vector<VdirFileIo::FoundFile> VdirListing::Finish(std::uint64_t& bytes) {
    StampAll(); // whatever no thread took
    bytes = 0;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < files_.size(); ++i) {
        if (problems_[i] == Problem::Loop || problems_[i] == Problem::NotRegular)
            Log::Warning("store: skipped %s: %s",
                         PrintableText(io_.FilePath(files_[i].directory, files_[i].name)).c_str(),
                         problems_[i] == Problem::Loop ? "a loop of symbolic links" : "not a regular file");
        if (problems_[i] != Problem::None)
            continue;
        bytes += static_cast<std::uint64_t>(files_[i].size);
        if (kept != i)
            files_[kept] = std::move(files_[i]);
        ++kept;
    }
    files_.resize(kept);
    return std::move(files_);
}

} // namespace mirodate
