// A store full of files written to hurt: rules asking for billions of
// occurrences or never matching, a hundred thousand EXDATEs and RDATEs, ten
// thousand overrides and nested components, time zones with absurd rules.
// The store must read them, answer a month and a year with bounded work,
// list them, and leave every file as it was. (A regression here shows as a
// test that does not finish.)
#include "store/IcsItem.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <sys/stat.h>
#include <sys/wait.h>

namespace mirodate {
namespace {

class HostileRecurrenceTest : public StoreFixture {
protected:
    void TearDown() override {
        store_.Close();
        StoreFixture::TearDown();
    }

    static std::string Day(int i) {
        char text[16];
        std::snprintf(text, sizeof text, "%04d%02d%02d", 1900 + i / 336, i / 28 % 12 + 1, i % 28 + 1);
        return text;
    }
    static std::string Calendar(const std::string& inner) {
        return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\n" + inner + "END:VCALENDAR\r\n";
    }
    static std::string Zone(const std::string& tzid, const std::string& observances) {
        return "BEGIN:VTIMEZONE\r\nTZID:" + tzid + "\r\n" + observances + "END:VTIMEZONE\r\n";
    }
    static std::string Observance(const std::string& extra) {
        return "BEGIN:STANDARD\r\nDTSTART:16010101T020000\r\nTZOFFSETFROM:-0400\r\nTZOFFSETTO:-0500\r\n" +
               extra + "END:STANDARD\r\n";
    }

    void WriteHostileFiles() {
        WriteFile("calendar/normal.ics",
                  Event("normal", "SUMMARY:Dentist\r\nDTSTART:20260310T090000\r\nDTEND:20260310T100000\r\n"));
        WriteFile(
            "calendar/secondly.ics",
            Event(
                "secondly",
                "SUMMARY:Secondly\r\nDTSTART:20260301T000000Z\r\nRRULE:FREQ=SECONDLY;COUNT=2000000000\r\n"));
        WriteFile("calendar/secondly-old.ics",
                  Event("secondly-old",
                        "SUMMARY:Secondly "
                        "old\r\nDTSTART:19700101T000000Z\r\nRRULE:FREQ=SECONDLY;COUNT=2000000000\r\n"));
        WriteFile("calendar/secondly-filtered.ics",
                  Event("secondly-filtered",
                        "SUMMARY:Secondly in "
                        "February\r\nDTSTART:20260301T000000Z\r\nRRULE:FREQ=SECONDLY;BYMONTH=2\r\n"));
        WriteFile("calendar/february-30.ics",
                  Event("february-30", "SUMMARY:Never\r\nDTSTART:19700101T090000\r\nRRULE:FREQ=DAILY;COUNT=5;"
                                       "BYMONTH=2;BYMONTHDAY=30\r\n"));
        WriteFile(
            "calendar/interval-0.ics",
            Event("interval-0",
                  "SUMMARY:Interval zero\r\nDTSTART:20260302T080000\r\nRRULE:FREQ=DAILY;INTERVAL=0\r\n"));
        std::string exdates, rdates;
        // A hundred dates a line, as calendar programs write long lists (a
        // line per date would be refused by the store's line limit first).
        for (int i = 0; i < 100000; ++i) {
            const bool first = i % 100 == 0, last = i % 100 == 99;
            exdates += (first ? "EXDATE:" : "") + Day(i) + "T090000Z" + (last ? "\r\n" : ",");
            rdates += (first ? "RDATE:" : "") + Day(i) + "T120000Z" + (last ? "\r\n" : ",");
        }
        WriteFile(
            "calendar/exdates.ics",
            Event("exdates",
                  "SUMMARY:Many exdates\r\nDTSTART:19000101T090000Z\r\nRRULE:FREQ=DAILY\r\n" + exdates));
        WriteFile("calendar/rdates.ics",
                  Event("rdates", "SUMMARY:Many rdates\r\nDTSTART:19000101T120000Z\r\n" + rdates));
        std::string nested;
        for (int i = 0; i < 10000; ++i)
            nested += "BEGIN:VALARM\r\n";
        nested += "ACTION:DISPLAY\r\n";
        for (int i = 0; i < 10000; ++i)
            nested += "END:VALARM\r\n";
        WriteFile("calendar/nested.ics",
                  Event("nested", "SUMMARY:Nested\r\nDTSTART:20260311T090000\r\n" + nested));
        std::string overrides =
            "BEGIN:VEVENT\r\nUID:overrides\r\nSUMMARY:Daily\r\nDTSTART:20000101T090000Z\r\n"
            "RRULE:FREQ=DAILY\r\nEND:VEVENT\r\n";
        // As many overrides as the store's line limit lets one file hold.
        for (int i = 0; i < 9000; ++i)
            overrides += "BEGIN:VEVENT\r\nUID:overrides\r\nRECURRENCE-ID:" + Day(i + 100 * 336) +
                         "T090000Z\r\nDTSTART:" + Day(i + 100 * 336) + "T100000Z\r\nEND:VEVENT\r\n";
        WriteFile("calendar/overrides.ics", Calendar(overrides));
        WriteFile("calendar/zone-secondly.ics",
                  Calendar(Zone("Bad", Observance("RRULE:FREQ=SECONDLY\r\n")) +
                           "BEGIN:VEVENT\r\nUID:zone-secondly\r\nSUMMARY:Bad "
                           "zone\r\nDTSTART;TZID=Bad:20260312T090000\r\nEND:VEVENT\r\n"));
        std::string many;
        for (int i = 0; i < 7000; ++i)
            many += Observance("RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\r\n");
        WriteFile("calendar/zone-many.ics",
                  Calendar(Zone("Many", many) +
                           "BEGIN:VEVENT\r\nUID:zone-many\r\nSUMMARY:Many "
                           "observances\r\nDTSTART;TZID=Many:20260313T090000\r\nEND:VEVENT\r\n"));
    }

    struct Stamp {
        std::int64_t size = 0;
        std::int64_t mtimeNs = 0;
        std::string text;
        bool operator==(const Stamp&) const = default;
    };
    std::map<std::string, Stamp> Stamps() const {
        std::map<std::string, Stamp> stamps;
        for (const auto& entry : std::filesystem::directory_iterator(dir_ / "vdir" / "calendar")) {
            struct stat st {};
            stat(entry.path().c_str(), &st);
            const std::string name = "calendar/" + entry.path().filename().string();
            stamps[name] = {st.st_size, st.st_mtim.tv_sec * 1000000000LL + st.st_mtim.tv_nsec,
                            ReadFile(name)};
        }
        return stamps;
    }

    PimStore store_;
};

TEST_F(HostileRecurrenceTest, QueriesAreBoundedListedAndNothingIsRewritten) {
    WriteHostileFiles();
    const auto before = Stamps();
    ASSERT_TRUE(store_.Open(OpenSource()));

    std::vector<PimItem> items;
    store_.GetDayAppointments(2026, 3, 10, items);
    std::vector<std::u16string> subjects;
    for (const PimItem& item : items)
        subjects.push_back(item.subject);
    EXPECT_NE(std::find(subjects.begin(), subjects.end(), u"Dentist"), subjects.end());
    // Every hostile item is still there, bounded.
    std::map<std::u16string, int> perSubject;
    items.clear();
    ASSERT_TRUE(store_.QueryAppointments(2026, 3, 1, 2026, 3, 31, items));
    for (const PimItem& item : items)
        ++perSubject[item.subject];
    EXPECT_EQ(perSubject[u"Dentist"], 1);
    EXPECT_EQ(perSubject[u"Secondly"], IcsItem::kMaxOccurrences);
    EXPECT_EQ(perSubject[u"Secondly old"], IcsItem::kMaxOccurrences);
    EXPECT_EQ(perSubject[u"Secondly in February"], 1); // its first occurrence only
    EXPECT_EQ(perSubject[u"Interval zero"], 1);        // no valid rule: a single event
    EXPECT_EQ(perSubject[u"Nested"], 1);
    EXPECT_EQ(perSubject[u"Bad zone"], 1);
    EXPECT_EQ(perSubject[u"Many observances"], 1);
    EXPECT_EQ(perSubject[u"Daily"], 31);
    EXPECT_EQ(perSubject[u"Never"], 0);
    // The EXDATEs take out every 1st to 28th up to 2197; the 29th to 31st remain.
    EXPECT_EQ(perSubject[u"Many exdates"], 3);
    EXPECT_EQ(perSubject[u"Many rdates"], 28);
    // A year ahead, as the search asks.
    items.clear();
    ASSERT_TRUE(store_.QueryAppointments(2026, 3, 1, 2027, 2, 28, items));
    store_.Close();

    const std::string binary = std::string(MIRODATE_BINARY_DIR) + "/mirodate";
    if (std::filesystem::exists(binary)) {
        const std::string command = "TZ=Europe/Berlin XDG_CONFIG_HOME='" + (dir_ / "config").string() +
                                    "' XDG_CACHE_HOME='" + (dir_ / "cache2").string() + "' '" + binary +
                                    "' --store '" + Root() + "' --list 2026-03-01 2026-03-31 2>/dev/null";
        FILE* pipe = popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        std::string out;
        char buffer[65536];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            out.append(buffer, n);
        const int status = pclose(pipe);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        EXPECT_NE(out.find("2026-03-10 09:00-10:00 Dentist\n"), std::string::npos);
    }
    EXPECT_TRUE(Stamps() == before) << "a hostile file was rewritten";
}

} // namespace
} // namespace mirodate
