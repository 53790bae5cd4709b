// STATUS:CANCELLED from the file to the item the views draw and to the
// --list line, through a start from the derived index too, and kept by a save.
#include "data/PimFolder.h"
#include "store/IcsWriter.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace mirodate {
namespace {

class CancelledItemTest : public StoreFixture {
protected:
    void TearDown() override {
        store_.Close();
        StoreFixture::TearDown();
    }
    std::vector<std::pair<std::u16string, bool>> Day(int day) {
        std::vector<PimItem> items;
        store_.GetDayAppointments(2026, 3, day, items);
        store_.GetDayTasks(2026, 3, day, items);
        std::vector<std::pair<std::u16string, bool>> out;
        for (const PimItem& item : items)
            out.emplace_back(item.subject, item.isCancelled);
        return out;
    }
    PimStore store_;
};

using Marks = std::vector<std::pair<std::u16string, bool>>;

TEST_F(CancelledItemTest, CancelledItemsAreMarkedInTheStoreAndTheList) {
    WriteFile("calendar/a.ics",
              Event("a", "SUMMARY:Concert\r\nSTATUS:CANCELLED\r\nDTSTART:20260310T200000\r\n"
                         "DTEND:20260310T220000\r\n"));
    WriteFile("calendar/b.ics",
              Event("b", "SUMMARY:Dentist\r\nSTATUS:CONFIRMED\r\nDTSTART:20260310T090000\r\n"
                         "DTEND:20260310T100000\r\n"));
    WriteFile("calendar/c.ics", Event("c", "SUMMARY:Yoga\r\nDTSTART:20260302T180000\r\nDTEND:"
                                           "20260302T190000\r\nRRULE:FREQ=WEEKLY;COUNT=3\r\n") +
                                    "");
    // One occurrence of the series cancelled by an override.
    std::string series = ReadFile("calendar/c.ics");
    series.insert(series.find("END:VCALENDAR"), "BEGIN:VEVENT\r\nUID:c\r\nRECURRENCE-ID:20260309T180000\r\n"
                                                "DTSTART:20260309T180000\r\nDTEND:20260309T190000\r\n"
                                                "STATUS:CANCELLED\r\nEND:VEVENT\r\n");
    WriteFile("calendar/c.ics", series);
    WriteFile("tasks/t.ics", Todo("t", "SUMMARY:Visa\r\nSTATUS:CANCELLED\r\nDUE;VALUE=DATE:20260310\r\n"));

    // Once from the files, once from the index they left.
    for (int start = 0; start < 2; ++start) {
        ASSERT_TRUE(store_.Open(OpenSource()));
        EXPECT_EQ(Day(10), (Marks{{u"Dentist", false}, {u"Concert", true}, {u"Visa", true}}))
            << "start " << start;
        EXPECT_EQ(Day(9), (Marks{{u"Yoga", true}})) << "start " << start;
        EXPECT_EQ(Day(16), (Marks{{u"Yoga", false}})) << "start " << start;
        store_.Close();
    }

    const std::string binary = std::string(MIRODATE_BINARY_DIR) + "/mirodate";
    if (std::filesystem::exists(binary)) {
        const std::string command = "TZ=Europe/Berlin XDG_CONFIG_HOME='" + (dir_ / "config").string() +
                                    "' XDG_CACHE_HOME='" + (dir_ / "cache").string() + "' '" + binary +
                                    "' --store '" + Root() + "' --list 2026-03-09 2026-03-10 2>/dev/null";
        FILE* pipe = popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        std::string out;
        char buffer[4096];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            out.append(buffer, n);
        pclose(pipe);
        EXPECT_EQ(out, "2026-03-09 18:00-19:00 cancelled Yoga\n"
                       "2026-03-10 09:00-10:00 Dentist\n"
                       "2026-03-10 20:00-22:00 cancelled Concert\n"
                       "2026-03-10 task [ ] cancelled Visa\n");
    }
}

TEST_F(CancelledItemTest, SavingACancelledTaskKeepsItCancelled) {
    WriteFile("tasks/t.ics", Todo("t", "SUMMARY:Visa\r\nSTATUS:CANCELLED\r\nDUE;VALUE=DATE:20260310\r\n"));
    auto source = OpenSource();
    PimRecord record;
    ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("t"), record));
    EXPECT_TRUE(record.cancelled);
    record.subject = u"Visa renewal";
    ASSERT_EQ(source->Save(record, kFolderTasks), SaveResult::Saved);
    EXPECT_NE(ReadFile("tasks/t.ics").find("STATUS:CANCELLED"), std::string::npos);
    // Completing it is a new status.
    ASSERT_TRUE(source->GetItemFromOid(VdirSource::HashUid("t"), record));
    record.complete = true;
    ASSERT_EQ(source->Save(record, kFolderTasks), SaveResult::Saved);
    EXPECT_NE(ReadFile("tasks/t.ics").find("STATUS:COMPLETED"), std::string::npos);
}

} // namespace
} // namespace mirodate
