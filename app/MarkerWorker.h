#pragma once
// Computes the month grid's day markers away from the user-interface thread:
// one short-lived worker per refresh reads the appointments (and tasks) of
// every month the 42 cells touch and sets the cells' flags. The finished job
// is handed back to the grid window as message 0x8196; a job for a window
// that no longer exists is dropped by the worker itself.
#include "app/MonthGridModel.h"
#include "ui/WinTypes.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace mirodate {

// The grid receives finished jobs with this message (wParam 1).
constexpr UINT WM_MARKERS_READY = 0x8196;

struct MarkerJob {
    std::array<MonthCell, MonthGridModel::kCells> cells{};
    HWND grid = nullptr;
    std::uint32_t tick = 0;
    int year = 0;
    int month = 0;
    bool withTasks = false;
};

class MarkerWorker {
public:
    MarkerWorker();
    // Waits for the workers still running; their results are dropped.
    ~MarkerWorker();
    MarkerWorker(const MarkerWorker&) = delete;
    MarkerWorker& operator=(const MarkerWorker&) = delete;

    // Starts a worker for the job. `immediate` keeps the normal priority.
    void Start(std::unique_ptr<MarkerJob> job, bool immediate);
    // Takes the finished job a WM_MARKERS_READY message announced, or null.
    std::unique_ptr<MarkerJob> TakeFinished(LPARAM id);

    // Workers running in the whole process; a finished worker's result is
    // posted to its grid before it stops counting.
    static int RunningJobs();
    // Sets the flags of the job's cells from the store (any thread).
    static void Compute(MarkerJob& job);

private:
    struct Shared {
        std::mutex mutex;
        bool closed = false;
        std::vector<std::pair<LPARAM, std::unique_ptr<MarkerJob>>> finished;
    };
    void JoinFinishedThreads();

    std::shared_ptr<Shared> shared_;
    std::vector<std::thread> threads_;
    std::vector<std::shared_ptr<std::atomic<bool>>> done_;
    LPARAM nextId_ = 1;
};

} // namespace mirodate
