// The shared time zones of files: items whose files define a zone alike
// share one definition and read their times exactly as with their own; a
// TZID defined differently by two files stays two zones, also when one
// file's tree is freed and the next one takes its memory; the bound holds
// while files whose definition was dropped from the cache still read; and
// threads read one shared zone at once.
#include "store/ZoneCache.h"
#include "store/IcsItem.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

namespace mirodate {
namespace {

// New York's rules since 2007, as calendar programs write them.
const std::string kNewYork =
    "BEGIN:VTIMEZONE\r\nTZID:America/New_York\r\n"
    "BEGIN:DAYLIGHT\r\nTZOFFSETFROM:-0500\r\nTZOFFSETTO:-0400\r\nDTSTART:20070311T020000\r\n"
    "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=2SU\r\nEND:DAYLIGHT\r\n"
    "BEGIN:STANDARD\r\nTZOFFSETFROM:-0400\r\nTZOFFSETTO:-0500\r\nDTSTART:20071104T020000\r\n"
    "RRULE:FREQ=YEARLY;BYMONTH=11;BYDAY=1SU\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";

// A zone of one fixed offset, e.g. "+0300".
std::string FixedZone(const std::string& tzid, const std::string& offset) {
    return "BEGIN:VTIMEZONE\r\nTZID:" + tzid + "\r\nBEGIN:STANDARD\r\nTZOFFSETFROM:" + offset +
           "\r\nTZOFFSETTO:" + offset + "\r\nDTSTART:19700101T000000\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
}

class ZoneCacheTest : public StoreFixture {
protected:
    void SetUp() override {
        StoreFixture::SetUp();
        // Local times are UTC here, so a record's start is the UTC instant.
        setenv("TZ", "UTC", 1);
        tzset();
        ZoneCache::Clear();
    }
    void TearDown() override {
        ZoneCache::Clear();
        StoreFixture::TearDown();
    }
    static std::unique_ptr<IcsItem> Item(const std::string& zone, const std::string& tzid,
                                         const std::string& start, const std::string& extra = "") {
        auto item = std::make_unique<IcsItem>();
        std::string problem;
        const std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + zone + "BEGIN:VEVENT\r\nUID:zone-" +
                                 start + "\r\nDTSTART;TZID=" + tzid + ":" + start + "\r\nDURATION:PT1H\r\n" +
                                 extra + "END:VEVENT\r\nEND:VCALENDAR\r\n";
        EXPECT_TRUE(item->Parse(text, problem)) << problem;
        return item;
    }
    static DateTime Start(const IcsItem& item) { return DateTime(item.GetRecord().start); }
};

TEST_F(ZoneCacheTest, ItemsOfOneDefinitionShareItAndReadTheirTimesAsWithTheirOwn) {
    const auto summer = Item(kNewYork, "America/New_York", "20260701T100000");
    const auto winter = Item(kNewYork, "America/New_York", "20260115T100000");
    // In the spring gap the time moves forward by the gap; in the autumn
    // overlap it is the first of the two.
    const auto gap = Item(kNewYork, "America/New_York", "20260308T023000");
    const auto twice = Item(kNewYork, "America/New_York", "20261101T013000");
    EXPECT_EQ(ZoneCache::Size(), 1u);
    EXPECT_EQ(Start(*summer), DateTime(2026, 7, 1, 14, 0, 0));
    EXPECT_EQ(Start(*winter), DateTime(2026, 1, 15, 15, 0, 0));
    EXPECT_EQ(Start(*gap), DateTime(2026, 3, 8, 7, 30, 0));
    EXPECT_EQ(Start(*twice), DateTime(2026, 11, 1, 5, 30, 0));
    // A series expanded later reads through the shared zone too, over a change.
    const auto series =
        Item(kNewYork, "America/New_York", "20260301T090000", "RRULE:FREQ=WEEKLY;COUNT=3\r\n");
    std::vector<PimRecord> occurrences;
    series->Expand(DateTime(2026, 3, 1).ToDate(), DateTime(2026, 4, 1).ToDate(), occurrences);
    ASSERT_EQ(occurrences.size(), 3u);
    EXPECT_EQ(DateTime(occurrences[0].start), DateTime(2026, 3, 1, 14, 0, 0));
    EXPECT_EQ(DateTime(occurrences[1].start), DateTime(2026, 3, 8, 13, 0, 0));
    EXPECT_EQ(DateTime(occurrences[2].start), DateTime(2026, 3, 15, 13, 0, 0));
    EXPECT_EQ(ZoneCache::Size(), 1u);
}

TEST_F(ZoneCacheTest, OneTzidDefinedTwoWaysStaysTwoZones) {
    auto east = Item(FixedZone("Custom/Office", "+0300"), "Custom/Office", "20260610T100000");
    const auto west = Item(FixedZone("Custom/Office", "-0700"), "Custom/Office", "20260610T100000");
    EXPECT_EQ(ZoneCache::Size(), 2u);
    EXPECT_EQ(Start(*east), DateTime(2026, 6, 10, 7, 0, 0));
    EXPECT_EQ(Start(*west), DateTime(2026, 6, 10, 17, 0, 0));
    // The next file may be given the freed file's memory, zone and all; it
    // reads its own definition, not the freed one's.
    for (const char* offset : {"+0500", "+0300", "-0200"}) {
        east.reset();
        east = Item(FixedZone("Custom/Office", offset), "Custom/Office", "20260610T100000");
        const int hours = (offset[0] == '+' ? -1 : 1) * std::stoi(std::string(offset + 1, 2));
        EXPECT_EQ(Start(*east), DateTime(2026, 6, 10, 10 + hours, 0, 0)) << offset;
    }
    EXPECT_EQ(ZoneCache::Size(), 4u);
}

TEST_F(ZoneCacheTest, TheBoundHoldsAndItemsWhoseDefinitionWasDroppedStillRead) {
    const auto first = Item(FixedZone("Bound/First", "+0200"), "Bound/First", "20260301T090000",
                            "RRULE:FREQ=DAILY;COUNT=2\r\n");
    std::vector<std::unique_ptr<IcsItem>> others;
    for (int i = 0; i < static_cast<int>(ZoneCache::kMaxZones) + 10; ++i) {
        char offset[8];
        std::snprintf(offset, sizeof offset, "-%02d00", i % 10);
        const std::string tzid = "Bound/Zone" + std::to_string(i);
        others.push_back(Item(FixedZone(tzid, offset), tzid, "20260601T000000"));
        EXPECT_EQ(Start(*others.back()), DateTime(2026, 6, 1, i % 10, 0, 0)) << tzid;
    }
    EXPECT_EQ(ZoneCache::Size(), ZoneCache::kMaxZones);
    // The first definition has left the cache; its file still reads through it.
    std::vector<PimRecord> occurrences;
    first->Expand(DateTime(2026, 3, 1).ToDate(), DateTime(2026, 3, 5).ToDate(), occurrences);
    ASSERT_EQ(occurrences.size(), 2u);
    EXPECT_EQ(DateTime(occurrences[1].start), DateTime(2026, 3, 2, 7, 0, 0));
}

TEST_F(ZoneCacheTest, ThreadsReadOneSharedZoneAtOnce) {
    constexpr int kThreads = 4;
    constexpr int kItemsEach = 40;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&wrong, t] {
            for (int i = 0; i < kItemsEach; ++i) {
                // Each thread asks for other years, so the zone's changes grow meanwhile.
                const int year = 2000 + (t * kItemsEach + i) % 150;
                const auto item = Item(kNewYork, "America/New_York", std::to_string(year) + "0701T100000");
                if (year >= 2007 && Start(*item) != DateTime(year, 7, 1, 14, 0, 0))
                    ++wrong;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(ZoneCache::Size(), 1u);
}

} // namespace
} // namespace mirodate
