#include "app/MarkerWorker.h"

#include "data/PimStore.h"
#include "platform/Settings.h"
#include "ui/WinApi.h"

#include <sys/resource.h>

#include <set>
#include <utility>

namespace mirodate {

namespace {
std::atomic<int> g_runningJobs{0};

// One step below the caller's priority, as background work should be.
void LowerPriority() {
    const int current = getpriority(PRIO_PROCESS, 0);
    setpriority(PRIO_PROCESS, 0, current + 1);
}
} // namespace

MarkerWorker::MarkerWorker() : shared_(std::make_shared<Shared>()) {}

MarkerWorker::~MarkerWorker() {
    {
        std::lock_guard lock(shared_->mutex);
        shared_->closed = true;
        shared_->finished.clear();
    }
    for (auto& thread : threads_)
        if (thread.joinable())
            thread.join();
}

int MarkerWorker::RunningJobs() {
    return g_runningJobs;
}

void MarkerWorker::Compute(MarkerJob& job) {
    // Each store call takes the store's locks itself, in the store's order.
    PimStore& store = PimStore::Instance();
    // Every month the cells touch, filled first so that the day look-ups hit the cache.
    std::set<std::pair<int, int>> months;
    for (const MonthCell& cell : job.cells)
        months.insert({cell.year, cell.month});
    for (const auto& [year, month] : months)
        store.FillMonth(year, month, true, job.withTasks);
    std::vector<PimItem> items;
    for (MonthCell& cell : job.cells) {
        cell.markers = {};
        items.clear();
        store.GetDayAppointments(cell.year, cell.month, cell.day, items);
        for (const PimItem& item : items) {
            if (item.kind == PimItem::kAppointment)
                cell.markers[0] = true;
            else
                cell.markers[2] = true;
        }
        if (job.withTasks) {
            items.clear();
            store.GetDayTasks(cell.year, cell.month, cell.day, items);
            cell.markers[1] = !items.empty();
        }
    }
}

void MarkerWorker::Start(std::unique_ptr<MarkerJob> job, bool immediate) {
    JoinFinishedThreads();
    const LPARAM id = nextId_++;
    auto done = std::make_shared<std::atomic<bool>>(false);
    done_.push_back(done);
    WindowManager* windows = &Wm();
    threads_.emplace_back([shared = shared_, job = std::move(job), immediate, id, done, windows]() mutable {
        if (!immediate)
            LowerPriority();
        ++g_runningJobs;
        Compute(*job);
        const HWND grid = job->grid;
        {
            std::lock_guard lock(shared->mutex);
            // A closed grid is gone: the job dies with this thread.
            if (!shared->closed) {
                shared->finished.emplace_back(id, std::move(job));
                windows->PostMessage(grid, WM_MARKERS_READY, 1, id);
            }
        }
        // Counted until the result is posted: no running job means every
        // result is in the grid's queue.
        --g_runningJobs;
        *done = true;
    });
}

std::unique_ptr<MarkerJob> MarkerWorker::TakeFinished(LPARAM id) {
    std::lock_guard lock(shared_->mutex);
    for (auto it = shared_->finished.begin(); it != shared_->finished.end(); ++it) {
        if (it->first != id)
            continue;
        std::unique_ptr<MarkerJob> job = std::move(it->second);
        shared_->finished.erase(it);
        return job;
    }
    return nullptr;
}

void MarkerWorker::JoinFinishedThreads() {
    for (size_t i = 0; i < threads_.size();) {
        if (*done_[i]) {
            threads_[i].join();
            threads_.erase(threads_.begin() + static_cast<long>(i));
            done_.erase(done_.begin() + static_cast<long>(i));
        } else {
            ++i;
        }
    }
}

} // namespace mirodate
