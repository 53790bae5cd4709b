// Reminder scheduling on the generated store (10,000 events, 500 series,
// 2,000 tasks, 1,000 contacts), every event and task with a reminder 15
// minutes before (a series' on every occurrence), the virtual clock at
// 08:00 on the store's middle day:
//   - the first schedule after the start (every file's alarms read once)
//   - the schedule after a change of one appointment, as the service makes
//     it on the change broadcast: the store asked for the window's
//     reminders, the due ones fired, the timer set; target < 5 ms
//
//   bench_reminders [--runs N]
#include "app/ReminderService.h"
#include "bench/store/BenchStoreSetup.h"
#include "data/PimStore.h"
#include "platform/DesktopNotifier.h"
#include "platform/HeadlessDisplay.h"
#include "store/VdirSource.h"
#include "ui/WinApi.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using namespace mirodate;
using Steady = std::chrono::steady_clock;

namespace {
double Ms(Steady::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}
double Median(std::vector<double> values) {
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

class SilentNotifier : public DesktopNotifier {
public:
    bool Show(const std::string&, const std::string&) override { return true; }
};

// A reminder in the first event or task of every file.
int AddAlarms(const std::string& root) {
    static const std::string kAlarm =
        "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n";
    int count = 0;
    for (const char* folder : {"calendar", "tasks"}) {
        for (const auto& entry : std::filesystem::directory_iterator(root + "/" + folder)) {
            std::ifstream in(entry.path(), std::ios::binary);
            std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            in.close();
            size_t end = text.find("END:VEVENT");
            if (end == std::string::npos)
                end = text.find("END:VTODO");
            if (end == std::string::npos)
                continue;
            text.insert(end, kAlarm);
            std::ofstream(entry.path(), std::ios::binary) << text;
            ++count;
        }
    }
    return count;
}
} // namespace

int main(int argc, char** argv) {
    BenchStoreSetup setup;
    if (!setup.Prepare("bench_reminders", argc, argv, 50))
        return 1;
    const int alarms = AddAlarms(setup.generator.root);
    std::printf("alarms: %d items with a reminder 15 minutes before\n", alarms);
    SilentNotifier notifier;
    DesktopNotifier::SetInstance(&notifier);

    HeadlessDisplay display(480, 640);
    {
        WindowManager windows(display);
        PimStore& store = PimStore::Instance();
        store.Open(std::make_unique<VdirSource>(setup.generator.root, VdirSource::Options{}));
        PimSource* source = store.Source();

        ReminderService service;
        ReminderService::Hooks hooks;
        hooks.inFront = [] { return false; };
        const auto coldStart = Steady::now();
        service.Start(nullptr, hooks);
        const double cold = Ms(Steady::now() - coldStart);
        const double now = ReminderService::Now();
        const auto window =
            source->GetReminders(std::floor(now), std::floor(now) + ReminderService::kLookAheadDays);
        std::printf("first schedule: %.1f ms (%zu reminders in the %g-day window)\n", cold, window.size(),
                    ReminderService::kLookAheadDays);

        // The change: one appointment of the window moved by a minute, through the store.
        std::vector<double> times;
        PimRecord record;
        const std::int32_t oid = window.empty() ? -1 : window.front().oid;
        for (int run = 0; run < setup.runs; ++run) {
            if (oid >= 0 && source->GetItemFromOid(oid, record)) {
                const double minute = (run % 2 ? -1.0 : 1.0) / 1440.0;
                record.start += minute;
                record.end += minute;
                source->Save(record, kFolderCalendar);
            }
            const auto begin = Steady::now();
            service.Reschedule();
            times.push_back(Ms(Steady::now() - begin));
        }
        std::printf("schedule after a change: median %.2f ms over %d runs (target < 5 ms)\n", Median(times),
                    setup.runs);
        store.Close();
    }
    DesktopNotifier::SetInstance(nullptr);
    std::filesystem::remove_all(setup.dir);
    return 0;
}
