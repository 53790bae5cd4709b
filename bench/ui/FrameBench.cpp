// Frame cost at 480x640 headless: a full-screen page with 30 child windows,
// each repainting every frame the way every control paints (an off-screen
// picture with a gradient, a rounded box and a line of text, copied in one
// block). Prints the median, 90th percentile and mean milliseconds per
// composed frame.
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "ui/Bitmap.h"
#include "ui/Dc.h"
#include "ui/DialogWnd.h"
#include "ui/DrawPrimitives.h"
#include "ui/Font.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

using namespace mirodate;

namespace {
constexpr int kWidth = 480;
constexpr int kHeight = 640;
constexpr int kChildren = 30;
constexpr int kWarmupFrames = 30;
constexpr int kFrames = 600;
constexpr double kTargetMs = 4.0;

class RowWnd : public BaseWnd {
public:
    int frame = 0;
    int index = 0;
    void OnPaint(HDC dc) override {
        RECT client;
        GetClientRect(window, &client);
        Bitmap offscreen(client.right, client.bottom);
        {
            Dc off(offscreen);
            DrawGradient(off, client, RGB(20, 30, 60), RGB(60, 90, 160), 0);
            off.RoundRect(RECT{4, 2, client.right - 4, client.bottom - 2}, 12, 12, std::nullopt,
                          RGB(200, 200, 220));
            static Font font([] {
                LOGFONT lf;
                DefaultFont(lf);
                return lf;
            }());
            off.SelectFont(&font);
            off.SetBkMode(TRANSPARENT);
            off.SetTextColor(RGB(255, 255, 255));
            RECT text{12, 0, client.right - 12, client.bottom};
            const std::u16string label =
                u"Row " + std::u16string(1, static_cast<char16_t>(u'A' + index % 26)) + u" frame " +
                std::u16string(1, static_cast<char16_t>(u'0' + frame % 10));
            off.DrawText(label, text, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
        }
        dc->BitBlt(0, 0, client.right, client.bottom, offscreen, 0, 0);
    }
};

class Page : public DialogWnd {
public:
    void OnPaint(HDC dc) override {
        RECT client;
        GetClientRect(window, &client);
        dc->FillRect(client, RGB(0, 0, 0));
    }
};
} // namespace

int main() {
    char settingsDir[] = "/tmp/mirodate-bench-XXXXXX";
    if (!mkdtemp(settingsDir))
        return 1;
    Settings::UseFile(std::string(settingsDir) + "/settings.conf");
    SYSTEMTIME start;
    start.wYear = 2024;
    start.wMonth = 1;
    start.wDay = 1;
    Clock::Install(std::make_unique<VirtualClock>(start));
    HeadlessDisplay display(kWidth, kHeight);
    WindowManager windows(display);
    Page page;
    page.CreateModeless(nullptr);
    std::vector<std::unique_ptr<RowWnd>> rows;
    const int rowHeight = kHeight / kChildren;
    for (int i = 0; i < kChildren; ++i) {
        auto row = std::make_unique<RowWnd>();
        row->index = i;
        row->Create(page.window, "BENCH::ROW", WS_CHILD | WS_VISIBLE, u"", 0, i * rowHeight, kWidth,
                    rowHeight);
        rows.push_back(std::move(row));
    }
    windows.RunFor(200); // the page's ready call and first paint

    std::vector<double> times;
    for (int frame = 0; frame < kWarmupFrames + kFrames; ++frame) {
        const auto begin = std::chrono::steady_clock::now();
        for (auto& row : rows) {
            row->frame = frame;
            InvalidateRect(row->window, nullptr, false);
        }
        const int composedBefore = windows.FramesComposed();
        windows.RunUntilIdle();
        const auto end = std::chrono::steady_clock::now();
        if (windows.FramesComposed() != composedBefore + 1) {
            std::fprintf(stderr, "frame %d was not composed exactly once\n", frame);
            return 1;
        }
        if (frame >= kWarmupFrames)
            times.push_back(std::chrono::duration<double, std::milli>(end - begin).count());
    }
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2];
    const double p90 = times[times.size() * 9 / 10];
    const double mean = std::accumulate(times.begin(), times.end(), 0.0) / static_cast<double>(times.size());
    std::printf("ui_frame_bench: %dx%d, page with %d children repainting every frame, %d frames\n", kWidth,
                kHeight, kChildren, kFrames);
    std::printf("  median %.3f ms/frame, p90 %.3f ms, mean %.3f ms (target < %.1f ms median): %s\n", median,
                p90, mean, kTargetMs, median < kTargetMs ? "met" : "MISSED");
    std::filesystem::remove_all(settingsDir);
    return 0;
}
