// The rich text box at 480x640 headless, on the virtual clock:
// - layout of a note of 10 KB of text with 50 links (web, mail and
//   telephone links as the link finders write them): parsing the mark-up
//   and the measuring pass, best and median of many runs;
// - scroll frames while flinging through that note in a full-screen box:
//   the timer, the scroll step, the repaint and the composition of the
//   screen, with the C++ allocations made in the box's paint path;
// - hostile mark-up: 1 MB of text, nesting 10,000 deep.
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "ui/Font.h"
#include "ui/MarkupParser.h"
#include "ui/RichTextLayout.h"
#include "ui/Scale.h"
#include "ui/TextBoxWnd.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
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
constexpr std::size_t kNoteBytes = 10 * 1024;
constexpr int kLinks = 50;
constexpr int kLayoutRuns = 60;
constexpr int kFlings = 30;
constexpr double kLayoutTargetMs = 5.0;
constexpr double kFrameTargetMs = 4.0;

using Steady = std::chrono::steady_clock;
double Ms(Steady::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

// Counts the C++ allocations of the box's paint path.
class CountingBox : public TextBoxWnd {
public:
    void OnPaint(HDC dc) override {
        g_counting = true;
        TextBoxWnd::OnPaint(dc);
        g_counting = false;
    }
};

// CPU time of this thread: on a shared machine the wall clock also counts
// the time other processes had the core.
double ThreadCpuMs() {
    timespec now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

double Percentile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, static_cast<size_t>(share * (values.size() - 1) + 0.5));
    return values[index];
}

// A note of about 10 KB of visible text in paragraphs, with 50 links spread
// through it, and the mark-up around it that the detail view writes.
std::u16string MakeNote(std::size_t* visibleBytes) {
    static const char16_t* kWords[] = {
        u"Agenda",    u"for",     u"the",       u"meeting", u"with",   u"partners", u"please", u"bring",
        u"quarterly", u"figures", u"and",       u"notes",   u"room",   u"changed",  u"to",     u"second",
        u"floor",     u"coffee",  u"Überblick", u"über",    u"Straße", u"café",     u"naïve",  u"résumé"};
    std::u16string note = u"<font color='#000000'><b>Quarterly review</b><br><i>";
    std::size_t visible = 0;
    int link = 0;
    int word = 0;
    while (visible < kNoteBytes) {
        // A link every ~200 bytes of text, until there are 50.
        if (link < kLinks && visible >= static_cast<std::size_t>(link) * (kNoteBytes / kLinks)) {
            std::u16string target, text;
            switch (link % 3) {
            case 0:
                text = target =
                    u"http://www.example" + ToU16(link) + u".org/path/to/page?id=" + ToU16(link * 7);
                break;
            case 1:
                text = u"person" + ToU16(link) + u"@example.org";
                target = u"mailto:" + text;
                break;
            default:
                text = u"+49 30 " + ToU16(100000 + link * 37);
                target = u"Tel:" + text;
                break;
            }
            note += u"<a href='" + target + u"'>" + text + u"</a> ";
            visible += text.size() + 1;
            ++link;
            continue;
        }
        const std::u16string w = kWords[(word * 7 + word / 5) % 24];
        note += w;
        visible += Utf16ToUtf8(w).size();
        ++word;
        if (word % 60 == 0) {
            note += u"\n\n";
            visible += 2;
        } else if (word % 17 == 0) {
            note += u"\n";
            visible += 1;
        } else {
            note += u' ';
            visible += 1;
        }
    }
    note += u"</i></font>";
    *visibleBytes = visible;
    return note;
}
} // namespace

int main() {
    setenv("TZ", "UTC", 1);
    const std::string dir = std::filesystem::temp_directory_path() / "mirodate-textbox-bench";
    std::filesystem::create_directories(dir);
    Settings::UseFile(dir + "/settings.conf");
    SYSTEMTIME start;
    start.wYear = 2024;
    start.wMonth = 3;
    start.wDay = 15;
    mirodate::Clock::Install(std::make_unique<VirtualClock>(start, 1000));
    HeadlessDisplay display(kWidth, kHeight);
    int exitCode = 0;
    {
        WindowManager windows(display);
        SetHighResolution(true);

        std::size_t visible = 0;
        const std::u16string note = MakeNote(&visible);
        LOGFONT lf;
        DefaultFont(lf);
        const Font font(lf);
        const int layoutWidth = kWidth - 2 * Scale(4);

        // Layout of the note alone: parse and the measuring pass, for the
        // first screen (what SetText does before the first frame) and for
        // the whole text (what the background timer completes).
        std::vector<double> parseMs, firstScreenMs, wholeMs, wholeCpuMs;
        int lines = 0, height = 0, links = 0;
        for (int run = 0; run < kLayoutRuns; ++run) {
            const double cpu0 = ThreadCpuMs();
            const auto t0 = Steady::now();
            MarkupDocument doc = MarkupParser::Parse(note);
            const auto t1 = Steady::now();
            RichTextLayout layout;
            layout.SetDocument(std::move(doc));
            layout.Build(font, layoutWidth, RGB(0, 0x55, 0xCC), nullptr, kHeight);
            const auto t2 = Steady::now();
            layout.MeasureTo(INT_MAX);
            const auto t3 = Steady::now();
            wholeCpuMs.push_back(ThreadCpuMs() - cpu0);
            parseMs.push_back(Ms(t1 - t0));
            firstScreenMs.push_back(Ms(t2 - t0));
            wholeMs.push_back(Ms(t1 - t0) + Ms(t3 - t1));
            lines = layout.LineCount();
            height = layout.Height();
            links = static_cast<int>(layout.Document().links.size());
        }
        const double layoutMedian = Percentile(firstScreenMs, 0.5);
        std::printf(
            "note: %zu bytes of text, %zu characters of mark-up, %d links; %d lines, %d px high at %d px\n",
            visible, note.size(), links, lines, height, layoutWidth);
        std::printf("rich-text layout, parse + first screen: median %.3f ms (target < %.1f), best %.3f ms\n",
                    layoutMedian, kLayoutTargetMs, Percentile(firstScreenMs, 0.0));
        std::printf(
            "rich-text layout, parse + whole text:   median %.3f ms, best %.3f ms, CPU time median %.3f ms "
            "(parse alone %.3f ms)\n",
            Percentile(wholeMs, 0.5), Percentile(wholeMs, 0.0), Percentile(wholeCpuMs, 0.5),
            Percentile(parseMs, 0.5));

        // The box on screen: SetText to the first painted frame.
        BaseWnd page;
        page.Create(nullptr, "MIRODATE::BENCHPAGE", WS_POPUP | WS_VISIBLE, u"bench", 0, 0, kWidth, kHeight);
        CountingBox box;
        box.Create(page.GetHwnd(), 0, 0, kWidth, kHeight);
        windows.RunUntilIdle();
        // Twice: the first time also fills the glyph caches of the fonts.
        double shownMs[2];
        for (double& shown : shownMs) {
            box.SetText(u"-");
            windows.RunUntilIdle();
            const auto t0 = Steady::now();
            box.SetText(note);
            windows.RunUntilIdle();
            windows.ComposeIfNeeded();
            shown = Ms(Steady::now() - t0);
        }
        std::printf("SetText to first painted frame: %.3f ms (first time %.3f ms)\n", shownMs[1], shownMs[0]);
        windows.RunFor(1000); // the rest of the note is measured

        // Scroll frames: flings down through the note and back.
        auto pointer = [&](DisplayEvent::Type type, int y) {
            DisplayEvent event;
            event.type = type;
            event.x = 200;
            event.y = y;
            display.Inject(event);
            windows.RunUntilIdle();
        };
        std::vector<double> frames;
        long allocations = 0;
        for (int fling = 0; fling < kFlings; ++fling) {
            const bool down = (fling / 10) % 2 == 0; // ten flings one way, ten back
            const int from = down ? 560 : 160, to = down ? 160 : 560;
            pointer(DisplayEvent::Type::PointerDown, from);
            for (int step = 1; step <= 4; ++step) {
                windows.RunFor(10);
                pointer(DisplayEvent::Type::PointerMove, from + (to - from) * step / 4);
            }
            pointer(DisplayEvent::Type::PointerUp, to);
            while (box.Scroller().IsFlinging() || box.Scroller().IsAnimating()) {
                g_allocations = 0;
                const auto t0 = Steady::now();
                windows.RunFor(box.Scroller().IsFlinging() ? 25 : 10);
                frames.push_back(Ms(Steady::now() - t0));
                allocations += g_allocations;
            }
        }
        const double frameMedian = Percentile(frames, 0.5);
        std::printf("scroll frames: %zu, median %.3f ms (target < %.1f), p99 %.3f ms, worst %.3f ms; "
                    "C++ allocations in the box's paint path: %ld in total\n",
                    frames.size(), frameMedian, kFrameTargetMs, Percentile(frames, 0.99),
                    Percentile(frames, 1.0), allocations);

        // Hostile mark-up.
        std::u16string huge = u"<a href='http://x.org>unclosed <img w='999999999'> ";
        for (std::size_t i = 0; huge.size() < (1u << 20); ++i)
            huge += (i % 97 == 96) ? u' ' : u'w';
        std::u16string deep;
        for (int i = 0; i < 10000; ++i)
            deep += u"<b><i><font color='#ff0000'><sup><a href='www.x.de'>";
        deep += u"deep";
        for (const auto& [name, text] :
             {std::pair{"1 MB of mark-up", &huge}, std::pair{"nesting 10,000 deep", &deep}}) {
            const auto t0 = Steady::now();
            RichTextLayout layout;
            layout.SetDocument(MarkupParser::Parse(*text));
            layout.Build(font, layoutWidth, RGB(0, 0x55, 0xCC), nullptr, kHeight);
            const double first = Ms(Steady::now() - t0);
            layout.MeasureTo(INT_MAX);
            std::printf(
                "%s: parse + first screen %.1f ms, whole text %.1f ms (%zu bytes shown%s, %d lines)\n", name,
                first, Ms(Steady::now() - t0), layout.Document().text.size(),
                layout.Document().truncated ? ", cut" : "", layout.LineCount());
        }
        exitCode = layoutMedian < kLayoutTargetMs && frameMedian < kFrameTargetMs ? 0 : 1;
    }
    mirodate::Clock::Install(std::make_unique<RealClock>());
    std::filesystem::remove_all(dir);
    return exitCode;
}
