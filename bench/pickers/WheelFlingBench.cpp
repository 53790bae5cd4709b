// Frame cost of the time picker's wheels at 480x640 headless: the minute
// wheel is flicked up and down again and again on the virtual clock (a
// synthetic drag of four moves 16 ms apart, lifted while moving), and every
// frame of the fling and its snap to a whole minute is timed: the motion
// timer, the wheel's repaint and the composition of the screen. Prints the
// median, 99th percentile and worst frame in milliseconds, wall and CPU.
#include "forms/TimePickerPage.h"
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <time.h>
#include <vector>

using namespace mirodate;

namespace {
constexpr int kWidth = 480;
constexpr int kHeight = 640;
constexpr int kFlings = 60;
constexpr double kTargetMedianMs = 4.0;

double ThreadCpuMs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

double Percentile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, static_cast<size_t>(share * (values.size() - 1) + 0.5));
    return values[index];
}
} // namespace

int main() {
    setenv("TZ", "UTC", 1);
    const std::string dir = std::filesystem::temp_directory_path() / "mirodate-pickers-bench";
    std::filesystem::create_directories(dir);
    Settings::UseFile(dir + "/settings.conf");
    Settings::SetBool("TimePickerWheel", true);
    SYSTEMTIME start;
    start.wYear = 2024;
    start.wMonth = 3;
    start.wDay = 15;
    Clock::Install(std::make_unique<VirtualClock>(start, 1000));
    HeadlessDisplay display(kWidth, kHeight);
    int exitCode = 0;
    {
        WindowManager windows(display);
        TimePickerPage page(DateTime(2024, 3, 15, 10, 30));
        page.CreateModeless(nullptr);
        windows.RunFor(200);
        TimeWheelWnd& wheel = page.Panel().MinuteWheel();
        RECT rect;
        GetWindowRect(wheel.GetHwnd(), &rect);
        const int x = (rect.left + rect.right) / 2, middle = (rect.top + rect.bottom) / 2;
        const int reach = std::min(rect.bottom - rect.top - 20, 3 * wheel.RowHeight());

        auto pointer = [&](DisplayEvent::Type type, int y) {
            DisplayEvent event;
            event.type = type;
            event.x = x;
            event.y = y;
            display.Inject(event);
            windows.RunUntilIdle();
        };
        std::vector<double> frames, cpu;
        int settledOnWhole = 0;
        for (int fling = 0; fling < kFlings; ++fling) {
            const bool up = fling % 2 == 0;
            const int from = middle + (up ? reach / 2 : -reach / 2),
                      to = middle + (up ? -reach / 2 : reach / 2);
            pointer(DisplayEvent::Type::PointerDown, from);
            for (int step = 1; step <= 4; ++step) {
                windows.RunFor(16);
                pointer(DisplayEvent::Type::PointerMove, from + (to - from) * step / 4);
            }
            pointer(DisplayEvent::Type::PointerUp, to);
            while (wheel.IsMoving()) {
                const int composed = windows.FramesComposed();
                const auto t0 = std::chrono::steady_clock::now();
                const double c0 = ThreadCpuMs();
                windows.RunFor(TimeWheelWnd::kTick);
                const double c1 = ThreadCpuMs();
                const auto t1 = std::chrono::steady_clock::now();
                if (windows.FramesComposed() != composed) {
                    frames.push_back(std::chrono::duration<double, std::milli>(t1 - t0).count());
                    cpu.push_back(c1 - c0);
                }
            }
            if (static_cast<int>(wheel.Offset()) % wheel.RowHeight() == 0)
                ++settledOnWhole;
        }
        const double median = Percentile(frames, 0.5);
        std::printf("time wheel fling at %dx%d: %d flings, %zu painted frames (%.1f per fling)\n", kWidth,
                    kHeight, kFlings, frames.size(), static_cast<double>(frames.size()) / kFlings);
        std::printf("frame cost: median %.3f ms (target < %.1f), p99 %.3f ms, worst %.3f ms\n", median,
                    kTargetMedianMs, Percentile(frames, 0.99), Percentile(frames, 1.0));
        // On a loaded machine the wall figures include the scheduler's slices
        // (multiples of about 4 ms); the thread's CPU time does not.
        std::printf("frame CPU time: median %.3f ms, p99 %.3f ms, worst %.3f ms\n", Percentile(cpu, 0.5),
                    Percentile(cpu, 0.99), Percentile(cpu, 1.0));
        std::printf("flings that came to rest on a whole minute: %d of %d\n", settledOnWhole, kFlings);
        exitCode = median < kTargetMedianMs && settledOnWhole == kFlings ? 0 : 1;
    }
    Clock::Install(std::make_unique<RealClock>());
    std::filesystem::remove_all(dir);
    return exitCode;
}
