// A store written by this program is read by khal (Debian's khal), and the
// occurrences khal lists for a month are the ones --list prints.
#include "platform/TextUtil.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <sstream>
#include <sys/wait.h>

namespace mirodate {
namespace {

class KhalInteropTest : public StoreFixture {
protected:
    static std::string Run(const std::string& command) {
        std::string out;
        FILE* pipe = popen(command.c_str(), "r");
        if (!pipe)
            return out;
        char buffer[4096];
        while (std::size_t n = std::fread(buffer, 1, sizeof buffer, pipe))
            out.append(buffer, n);
        pclose(pipe);
        return out;
    }

    std::int32_t Save(PimRecord record) {
        EXPECT_EQ(source_->Save(record, kFolderCalendar), SaveResult::Saved);
        return record.oid;
    }

    static PimRecord Timed(const char16_t* subject, const DateTime& start, const DateTime& end) {
        PimRecord r;
        r.itemKind = kItemAppointment;
        r.subject = subject;
        r.start = start.ToDate();
        r.end = end.ToDate();
        return r;
    }

    std::unique_ptr<VdirSource> source_;
};

std::vector<std::string> SortedLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (!line.empty())
            lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

// khal prints "DAY <date>" and then "<start>|<end>|<title>" lines.
std::vector<std::string> KhalLines(const std::string& text) {
    std::string out, day;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line.rfind("DAY ", 0) == 0) {
            day = line.substr(4);
            continue;
        }
        const std::size_t a = line.find('|'), b = line.find('|', a + 1);
        if (a == std::string::npos || b == std::string::npos)
            continue;
        const std::string start = line.substr(0, a), end = line.substr(a + 1, b - a - 1),
                          title = line.substr(b + 1);
        out += day + (start.empty() ? " allday " : " " + start + "-" + end + " ") + title + "\n";
    }
    return SortedLines(out);
}

TEST_F(KhalInteropTest, KhalListsTheSameMonth) {
    if (Run("command -v khal").empty())
        GTEST_SKIP() << "khal is not installed";
    source_ = OpenSource();
    Save(Timed(u"Dentist", DateTime(2026, 3, 4, 14, 0, 0), DateTime(2026, 3, 4, 15, 30, 0)));
    Save(Timed(u"Night train", DateTime(2026, 3, 12, 22, 0, 0), DateTime(2026, 3, 13, 7, 15, 0)));
    PimRecord holiday = Timed(u"Holiday", DateTime(2026, 3, 20), DateTime(2026, 3, 23));
    holiday.allDay = true;
    Save(holiday);
    PimRecord birthday = Timed(u"Party", DateTime(2026, 3, 31), DateTime(2026, 4, 1));
    birthday.allDay = true;
    Save(birthday);
    PimRecord yoga = Timed(u"Yoga", DateTime(2026, 2, 23, 18, 0, 0), DateTime(2026, 2, 23, 19, 0, 0));
    yoga.isRecurring = true;
    yoga.recurrence.RecurrenceType = RecurrencePattern::kWeekly;
    yoga.recurrence.DayOfWeekMask = RecurrencePattern::kMonday;
    yoga.recurrence.Occurrences = 8;
    yoga.recurrence.NoEndDate = false;
    const std::int32_t series = Save(yoga);
    PimRecord moved = Timed(u"Yoga moved", DateTime(2026, 3, 10, 19, 0, 0), DateTime(2026, 3, 10, 20, 0, 0));
    ASSERT_EQ(source_->SaveOccurrence(series, DateTime(2026, 3, 9, 18, 0, 0).ToDate(), &moved),
              SaveResult::Saved);
    ASSERT_EQ(source_->SaveOccurrence(series, DateTime(2026, 3, 16, 18, 0, 0).ToDate(), nullptr),
              SaveResult::Saved);
    source_.reset();

    const auto config = dir_ / "khal.conf";
    std::ofstream(config) << "[calendars]\n[[mirodate]]\npath = " << Root() << "/calendar\ntype = calendar\n"
                          << "[locale]\nlocal_timezone = Europe/Berlin\ndefault_timezone = Europe/Berlin\n"
                          << "timeformat = %H:%M\ndateformat = %Y-%m-%d\nlongdateformat = %Y-%m-%d\n"
                          << "datetimeformat = %Y-%m-%d %H:%M\nlongdatetimeformat = %Y-%m-%d %H:%M\n"
                          << "[sqlite]\npath = " << (dir_ / "khal.db").string() << "\n";
    const std::string env = "TZ=Europe/Berlin LANG=C.UTF-8 HOME='" + dir_.string() + "' XDG_CONFIG_HOME='" +
                            (dir_ / "config").string() + "' XDG_CACHE_HOME='" + (dir_ / "cache").string() +
                            "' ";
    const auto khal =
        KhalLines(Run(env + "khal -c '" + config.string() +
                      "' list --format '{start-time}|{end-time}|{title}' --day-format 'DAY {date}' "
                      "2026-03-01 2026-03-31 2>&1"));

    // Our side: the program's --list when it is built, else the same
    // answers straight from PimStore.
    std::vector<std::string> ours;
    const std::string binary = std::string(MIRODATE_BINARY_DIR) + "/mirodate";
    if (std::filesystem::exists(binary)) {
        ours =
            SortedLines(Run(env + "'" + binary + "' --store '" + Root() + "' --list 2026-03-01 2026-03-31"));
    } else {
        PimStore store;
        ASSERT_TRUE(store.Open(OpenSource()));
        std::string text;
        for (int day = 1; day <= 31; ++day) {
            std::vector<PimItem> items;
            store.GetDayAppointments(2026, 3, day, items);
            for (const auto& item : items) {
                char line[64];
                if (item.isAllDay)
                    std::snprintf(line, sizeof line, "2026-03-%02d allday ", day);
                else
                    std::snprintf(line, sizeof line, "2026-03-%02d %02d:%02d-%02d:%02d ", day,
                                  item.start.wHour, item.start.wMinute, item.end.wHour, item.end.wMinute);
                text += line + Utf16ToUtf8(item.subject) + "\n";
            }
        }
        ours = SortedLines(text);
    }
    const std::vector<std::string> expected = SortedLines(
        "2026-03-02 18:00-19:00 Yoga\n2026-03-04 14:00-15:30 Dentist\n2026-03-10 19:00-20:00 Yoga moved\n"
        "2026-03-12 22:00-07:15 Night train\n2026-03-13 22:00-07:15 Night train\n2026-03-20 allday Holiday\n"
        "2026-03-21 allday Holiday\n2026-03-22 allday Holiday\n2026-03-23 18:00-19:00 Yoga\n"
        "2026-03-30 18:00-19:00 Yoga\n2026-03-31 allday Party\n");
    EXPECT_EQ(ours, expected);
    EXPECT_EQ(khal, expected);
}

TEST_F(KhalInteropTest, ListRefusesBadDatesAndUnreadableStores) {
    const std::string binary = std::string(MIRODATE_BINARY_DIR) + "/mirodate";
    if (!std::filesystem::exists(binary))
        GTEST_SKIP() << "the program is not built";
    const std::string env = "TZ=Europe/Berlin XDG_CONFIG_HOME='" + (dir_ / "config").string() +
                            "' XDG_CACHE_HOME='" + (dir_ / "cache").string() + "' ";
    auto status = [&](const std::string& arguments) {
        const int raw = std::system((env + "'" + binary + "' " + arguments + " >/dev/null 2>&1").c_str());
        return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    };
    EXPECT_EQ(status("--store '" + Root() + "' --list 2026-03-01 2026-03-31"), 0);
    EXPECT_EQ(status("--store '" + Root() + "' --list 2026-02-30 2026-03-31"), 2);
    EXPECT_EQ(status("--store '" + Root() + "' --list 2026-3-1 2026-03-31"), 2);
    EXPECT_EQ(status("--store '" + Root() + "' --list 2026-04-01 2026-03-31"), 2);
    EXPECT_EQ(status("--store '" + (dir_ / "missing").string() + "' --list 2026-03-01 2026-03-31"), 2);
}

} // namespace
} // namespace mirodate
