// Frame cost of a fling at 480x640 headless: a full-screen touch list of
// 5,000 rows of varying height (one to four wrapped lines of text each),
// flicked up and down again and again on the virtual clock. Each frame is
// one fling tick: the timer, the scroll step, the repaint of the list's
// viewport and the composition of the screen. Prints the median, 99th
// percentile and worst frame in milliseconds, the rows painted per frame, and
// the C++ allocations made inside the list's paint path.
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "ui/Dc.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/TouchListCtrlWnd.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {
std::atomic<bool> g_counting{false};
std::atomic<long> g_allocations{0};
} // namespace

void* operator new(std::size_t size) {
    if (g_counting.load(std::memory_order_relaxed))
        g_allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

using namespace mirodate;

namespace {
constexpr int kWidth = 480;
constexpr int kHeight = 640;
constexpr int kRows = 5000;
constexpr int kFlings = 40;
constexpr double kTargetMedianMs = 4.0;
constexpr double kTargetP99Ms = 8.0;

int g_rowsPainted = 0;

// A row as the views make them: texts laid out once, painted many times.
class BenchRow : public TouchListItem {
public:
    BenchRow(int index, const Font& timeFont, const Font& textFont, int width) : index_(index) {
        static const char16_t* kWords[] = {u"Meeting", u"with",   u"the",       u"project",
                                           u"team",    u"about",  u"quarterly", u"planning",
                                           u"and",     u"budget", u"review",    u"lunch"};
        std::u16string subject;
        const int words = 3 + (index * 7919) % 30; // one to four lines
        for (int w = 0; w < words; ++w) {
            if (w)
                subject += u' ';
            subject += kWords[(index + w * 5) % 12];
        }
        const std::u16string time =
            u"09:" + std::u16string(1, static_cast<char16_t>(u'0' + index % 6)) + u"0 - 10:30";
        time_ = TextLayout(time, timeFont, width - 24, false);
        subject_ = TextLayout(subject, textFont, width - 24, true);
        height_ = 12 + time_.Height() + 4 + subject_.Height() + 12;
    }
    void Draw(Dc& dc, const RECT& rect) override {
        ++g_rowsPainted;
        dc.FillRect(rect, highlighted_ ? RGB(0, 0, 255)
                                       : (index_ % 2 ? RGB(0xC0, 0xC0, 0xC0) : RGB(255, 255, 255)));
        dc.FillSolidRect(rect.left, rect.top, 8, rect.Height(), RGB(0, 0x80, 0xFF)); // category bar
        time_.Draw(dc, rect.left + 16, rect.top + 12, RGB(0, 0x60, 0));
        subject_.Draw(dc, rect.left + 16, rect.top + 16 + time_.Height(), RGB(0, 0, 0));
        dc.FillSolidRect(rect.left, rect.bottom - 2, rect.Width(), 2, RGB(0x80, 0x80, 0x80));
    }
    int Height() const override { return height_; }

private:
    int index_;
    int height_ = 0;
    TextLayout time_;
    TextLayout subject_;
};

class CountingList : public TouchListCtrlWnd {
public:
    void OnPaint(HDC dc) override {
        g_counting = true;
        TouchListCtrlWnd::OnPaint(dc);
        g_counting = false;
    }
};

double Percentile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, static_cast<size_t>(share * (values.size() - 1) + 0.5));
    return values[index];
}
} // namespace

int main() {
    setenv("TZ", "UTC", 1);
    const std::string dir = std::filesystem::temp_directory_path() / "mirodate-list-bench";
    std::filesystem::create_directories(dir);
    Settings::UseFile(dir + "/settings.conf");
    SYSTEMTIME start;
    start.wYear = 2024;
    start.wMonth = 3;
    start.wDay = 15;
    Clock::Install(std::make_unique<VirtualClock>(start, 1000));
    HeadlessDisplay display(kWidth, kHeight);
    int exitCode = 0;
    {
        WindowManager windows(display);
        SetHighResolution(true);

        BaseWnd page;
        page.Create(nullptr, "MIRODATE::BENCHPAGE", WS_POPUP | WS_VISIBLE, u"bench", 0, 0, kWidth, kHeight);
        CountingList list;
        list.Create(page.GetHwnd(), 0, 0, kWidth, kHeight, false, false);
        list.SetHeaderText(u"Friday, 15 March 2024");

        LOGFONT lf;
        DefaultFont(lf);
        const Font textFont(lf);
        lf.lfWeight = FW_BOLD;
        const Font timeFont(lf);
        const auto fillStart = std::chrono::steady_clock::now();
        for (int i = 0; i < kRows; ++i)
            list.AddItem(std::make_unique<BenchRow>(i, timeFont, textFont, kWidth));
        const double fillMs =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - fillStart).count();
        windows.RunUntilIdle();

        auto pointer = [&](DisplayEvent::Type type, int y) {
            DisplayEvent event;
            event.type = type;
            event.x = 200;
            event.y = y;
            display.Inject(event);
            windows.RunUntilIdle();
        };
        std::vector<double> frames;
        long allocationsInPaint = 0;
        int painted = 0;
        for (int fling = 0; fling < kFlings; ++fling) {
            // Mostly up, every eighth fling back down.
            const bool up = fling % 8 != 7;
            const int from = up ? 560 : 160, to = up ? 160 : 560;
            pointer(DisplayEvent::Type::PointerDown, from);
            for (int step = 1; step <= 4; ++step) {
                windows.RunFor(10);
                pointer(DisplayEvent::Type::PointerMove, from + (to - from) * step / 4);
            }
            pointer(DisplayEvent::Type::PointerUp, to);
            while (list.Scroller().IsFlinging() || list.Scroller().IsAnimating()) {
                g_allocations = 0;
                g_rowsPainted = 0;
                const auto t0 = std::chrono::steady_clock::now();
                windows.RunFor(list.Scroller().IsFlinging() ? 25 : 10);
                const auto t1 = std::chrono::steady_clock::now();
                frames.push_back(std::chrono::duration<double, std::milli>(t1 - t0).count());
                allocationsInPaint += g_allocations;
                painted += g_rowsPainted;
            }
        }
        const double median = Percentile(frames, 0.5);
        const double p99 = Percentile(frames, 0.99);
        std::printf("list fling at %dx%d, %d variable-height rows (filled in %.0f ms), %zu frames\n", kWidth,
                    kHeight, kRows, fillMs, frames.size());
        std::printf(
            "frame cost: median %.3f ms (target < %.1f), p99 %.3f ms (target < %.1f), worst %.3f ms\n",
            median, kTargetMedianMs, p99, kTargetP99Ms, Percentile(frames, 1.0));
        std::printf("rows painted per frame: %.1f; C++ allocations in the list's paint path: %ld in total\n",
                    frames.empty() ? 0.0 : static_cast<double>(painted) / frames.size(), allocationsInPaint);
        std::printf("final scroll position %d of %d\n", list.Scroller().Position(),
                    list.Scroller().MaxPosition());
        exitCode = median < kTargetMedianMs && p99 < kTargetP99Ms ? 0 : 1;
    }
    Clock::Install(std::make_unique<RealClock>());
    std::filesystem::remove_all(dir);
    return exitCode;
}
