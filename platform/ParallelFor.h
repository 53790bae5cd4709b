#pragma once
// Splits work over the machine's cores: `work(begin, end)` is called for
// contiguous slices of [0, count), one of them on the calling thread, and
// returns when all are done. A slice gets at least `minPerSlice` items, so a
// short list runs on the calling thread alone (a thread costs more than a few
// items). `work` must touch only its own slice of any shared output.
#include <algorithm>
#include <cstddef>
#include <thread>
#include <vector>

namespace mirodate {

// At most this many slices at once: the store's work is reading and parsing
// small files, which stops scaling beyond a few cores.
constexpr std::size_t kMaxParallelSlices = 4;

// The cores the machine has (at least 1).
inline std::size_t CoreCount() {
    return std::max(1u, std::thread::hardware_concurrency());
}

template <typename Work>
void ParallelFor(std::size_t count, std::size_t minPerSlice, Work&& work,
                 std::size_t maxSlices = kMaxParallelSlices) {
    const std::size_t most = std::max<std::size_t>(1, std::min({CoreCount(), kMaxParallelSlices, maxSlices}));
    const std::size_t slices =
        std::clamp<std::size_t>(count / std::max<std::size_t>(1, minPerSlice), 1, most);
    if (slices <= 1) {
        if (count > 0)
            work(std::size_t{0}, count);
        return;
    }
    std::vector<std::thread> helpers;
    helpers.reserve(slices - 1);
    const std::size_t step = (count + slices - 1) / slices;
    for (std::size_t begin = step; begin < count; begin += step)
        helpers.emplace_back([&work, begin, end = std::min(count, begin + step)] { work(begin, end); });
    work(std::size_t{0}, std::min(count, step));
    for (std::thread& helper : helpers)
        helper.join();
}

} // namespace mirodate
