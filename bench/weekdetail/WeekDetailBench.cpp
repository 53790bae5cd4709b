// The week and detail views on the generated store (10,000 events, 500
// series, 2,000 tasks, 1,000 contacts), headless at 480x640:
//   - week view fill and paint of a full week (seven day boxes built from
//     the store and the frame composed), moving a week back and forth;
//     target < 10 ms
//   - opening the detail view of an item whose notes hold 10 KB of text with
//     50 links, to its first painted frame; target < 20 ms
//
//   bench_weekdetail [--runs N]
#include "app/MainWnd.h"
#include "bench/store/BenchStoreSetup.h"
#include "data/Categories.h"
#include "data/PimStore.h"
#include "platform/Clock.h"
#include "platform/HeadlessDisplay.h"
#include "platform/Settings.h"
#include "platform/TextUtil.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"
#include "views/ItemDetailView.h"
#include "views/WeekView.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

using namespace mirodate;
using Steady = std::chrono::steady_clock;

namespace {
constexpr std::size_t kNoteBytes = 10 * 1024;
constexpr int kNoteLinks = 50;

double Ms(Steady::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}
double Percentile(std::vector<double> values, double share) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[std::min(values.size() - 1,
                           static_cast<size_t>(share * static_cast<double>(values.size())))];
}

// About 10 KB of prose with 50 links: web and mail addresses and telephone numbers in turn.
std::u16string LongNote() {
    const std::string filler = "The minutes of the last meeting list what each team promised to deliver. ";
    std::string note;
    for (int i = 0; note.size() < kNoteBytes; ++i) {
        note += filler;
        if (i < kNoteLinks) {
            switch (i % 3) {
            case 0:
                note += "See http://wiki.example.org/page" + std::to_string(i) + " for details. ";
                break;
            case 1:
                note += "Write to person" + std::to_string(i) + "@example.com about it. ";
                break;
            default:
                note += "Call 030 " + std::to_string(1000 + i) + " 5678 first. ";
                break;
            }
        }
        if (i % 4 == 3)
            note += "\n";
    }
    return Utf8ToUtf16(note);
}
} // namespace

int main(int argc, char** argv) {
    BenchStoreSetup setup;
    if (!setup.Prepare("bench_weekdetail", argc, argv, 40, 2))
        return 1;
    const std::string& dir = setup.dir;
    const StoreGeneratorOptions& generator = setup.generator;
    const int runs = setup.runs;
    const DateTime today(generator.year, generator.month, generator.day);

    HeadlessDisplay display(480, 640);
    {
        WindowManager windows(display);
        PimStore& store = setup.OpenStore(false);

        PimRecord noteItem;
        noteItem.itemKind = kItemAppointment;
        noteItem.subject = u"Quarterly review";
        noteItem.location = u"Room 4, http://rooms.example.org/4";
        noteItem.attendees = u"Ann Boss|ann@example.org~Jo|jo@example.org";
        noteItem.body = LongNote();
        noteItem.start = (today + DateTimeSpan(0, 10, 0, 0)).ToDate();
        noteItem.end = (today + DateTimeSpan(0, 11, 0, 0)).ToDate();
        store.Source()->Save(noteItem, kFolderCalendar);
        // The weeks measured lie in months already in the cache, as they do
        // once the month view has shown them.
        store.FillMonths(generator.year, std::max(1, generator.month - 1), 3, true, true);

        MainWnd main;
        main.Create(u"");
        windows.RunUntilIdle();
        windows.Compose();

        // Week fill and paint: the first opening makes the page; then a week
        // forward and back, each step filled and composed.
        auto t0 = Steady::now();
        main.Router().ShowWeekView(today);
        windows.RunUntilIdle();
        windows.Compose();
        const double firstWeek = Ms(Steady::now() - t0);
        WeekView* week = main.Router().Week();
        if (!week) {
            std::fprintf(stderr, "bench_weekdetail: the week view did not open\n");
            return 1;
        }
        int entries = 0;
        for (int i = 0; i < WeekMarkup::kDaysPerWeek; ++i)
            entries += week->Counts(i).appointments + week->Counts(i).tasks;
        // The mark-up alone, for the same week, without laying it out.
        std::vector<double> markups;
        const WeekMarkupOptions options = WeekMarkupOptions::FromSettings();
        std::vector<PimItem> appointments, tasks;
        for (int i = 0; i < runs; ++i) {
            t0 = Steady::now();
            for (int d = 0; d < WeekMarkup::kDaysPerWeek; ++d) {
                const DateTime day = week->CurrentDate() + DateTimeSpan(d, 0, 0, 0);
                appointments.clear();
                tasks.clear();
                store.GetDayAppointments(day.GetYear(), day.GetMonth(), day.GetDay(), appointments);
                store.GetDayTasks(day.GetYear(), day.GetMonth(), day.GetDay(), tasks);
                WeekMarkup::DayBox(day, appointments, tasks, options);
            }
            markups.push_back(Ms(Steady::now() - t0));
        }
        auto weekSteps = [&] {
            std::vector<double> times;
            for (int i = 0; i < runs; ++i) {
                t0 = Steady::now();
                if (i % 2)
                    week->PreviousWeek();
                else
                    week->NextWeek();
                windows.RunUntilIdle();
                windows.Compose();
                times.push_back(Ms(Steady::now() - t0));
            }
            return times;
        };
        const std::vector<double> weeks = weekSteps();
        // Every entry written out, however many a day holds.
        Settings::SetNumber("WeekMaxEvents", -1);
        const std::vector<double> unlimited = weekSteps();

        // Detail view: from the request (what a tap on a row or an entry
        // asks for) to the first composed frame, the page made anew each time.
        std::vector<double> details;
        std::size_t noteLength = 0;
        int links = 0;
        for (int i = 0; i < runs; ++i) {
            t0 = Steady::now();
            main.Router().OpenItemDetail(noteItem.oid, false, today);
            windows.RunUntilIdle();
            windows.Compose();
            details.push_back(Ms(Steady::now() - t0));
            ItemDetailView* detail = main.Router().Detail();
            if (!detail) {
                std::fprintf(stderr, "bench_weekdetail: the detail view did not open\n");
                return 1;
            }
            noteLength = detail->Markup().size();
            links = static_cast<int>(detail->Box().Document().links.size());
            detail->CloseView();
            windows.RunUntilIdle();
        }

        std::printf(
            "week view, %d entries in the first week: first opening %.1f ms; fill and paint of a week "
            "median %.2f ms, worst %.2f ms over %d weeks (target < 10 ms; WeekMaxEvents %d)\n",
            entries, firstWeek, Percentile(weeks, 0.5), Percentile(weeks, 1.0), runs,
            WeekMarkupOptions::kDefaultMaxEvents);
        std::printf("  with WeekMaxEvents -1 (every entry laid out): median %.2f ms, worst %.2f ms\n",
                    Percentile(unlimited, 0.5), Percentile(unlimited, 1.0));
        std::printf("  of which the store queries and mark-up of the seven boxes: median %.2f ms\n",
                    Percentile(markups, 0.5));
        std::printf(
            "detail view of a %zu-character document with %d links (10 KB note, 50 links): request to "
            "first painted frame median %.2f ms, first %.2f ms, worst %.2f ms (target < 20 ms)\n",
            noteLength, links, Percentile(details, 0.5), details.front(), Percentile(details, 1.0));
        main.Router().CloseAll();
    }
    PimStore::Instance().Close();
    std::filesystem::remove_all(dir);
    return 0;
}
