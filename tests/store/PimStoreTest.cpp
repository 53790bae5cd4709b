#include "data/Categories.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

class PimStoreTest : public StoreFixture {
protected:
    void SetUp() override {
        StoreFixture::SetUp();
        Categories::Reset();
    }
    void TearDown() override {
        store_.Close();
        StoreFixture::TearDown();
    }
    void Open() { ASSERT_TRUE(store_.Open(OpenSource())); }

    static std::vector<std::u16string> Subjects(const std::vector<PimItem>& items) {
        std::vector<std::u16string> subjects;
        for (const auto& item : items)
            subjects.push_back(item.subject);
        return subjects;
    }
    std::vector<std::u16string> Day(int year, int month, int day) {
        std::vector<PimItem> items;
        store_.GetDayAppointments(year, month, day, items);
        return Subjects(items);
    }
    std::vector<std::u16string> DayTasks(int year, int month, int day) {
        std::vector<PimItem> items;
        store_.GetDayTasks(year, month, day, items);
        return Subjects(items);
    }
    std::vector<std::u16string> Tasks(int year, int month) {
        std::vector<PimItem> items;
        EXPECT_TRUE(store_.QueryTasks(DayRange::Month(year, month), items));
        return Subjects(items);
    }

    PimStore store_;
};

using Names = std::vector<std::u16string>;

TEST_F(PimStoreTest, OverdueTasksJoinOnlyARangeHoldingToday) {
    // Today is 15 March 2026.
    WriteFile("tasks/a.ics", Todo("a", "SUMMARY:Overdue\r\nDUE;VALUE=DATE:20260314\r\n"));
    WriteFile("tasks/b.ics",
              Todo("b", "SUMMARY:Overdue done\r\nDUE;VALUE=DATE:20260314\r\nSTATUS:COMPLETED\r\n"));
    WriteFile("tasks/c.ics", Todo("c", "SUMMARY:No dates\r\n"));
    WriteFile("tasks/d.ics", Todo("d", "SUMMARY:Later\r\nDUE;VALUE=DATE:20260320\r\n"));
    WriteFile("tasks/e.ics",
              Todo("e", "SUMMARY:Starts\r\nDTSTART;VALUE=DATE:20260302\r\nDUE;VALUE=DATE:20260410\r\n"));
    WriteFile("tasks/f.ics", Todo("f", "SUMMARY:From February\r\nDUE;VALUE=DATE:20260210\r\n"));
    Open();
    EXPECT_EQ(Tasks(2026, 3), (Names{u"From February", u"Overdue", u"Overdue done", u"Later"}));
    EXPECT_EQ(Tasks(2026, 2), (Names{u"From February"}));
    EXPECT_EQ(Tasks(2026, 4), (Names{u"Starts"}));

    Settings::SetBool("ShowTasksByStartDate", true);
    Settings::SetBool("ShowTasksByDueDate", false);
    EXPECT_EQ(Tasks(2026, 3), (Names{u"From February", u"Overdue", u"Starts"}));
    Settings::SetBool("ShowTasksByStartDate", false);
    EXPECT_EQ(Tasks(2026, 3).size(), 6u); // no restriction at all: tasks without dates too

    // Per day: overdue tasks are also shown on today; done ones stay on their day.
    Settings::SetBool("ShowTasksByDueDate", true);
    EXPECT_EQ(DayTasks(2026, 3, 15), (Names{u"From February", u"Overdue"}));
    EXPECT_EQ(DayTasks(2026, 3, 14), (Names{u"Overdue", u"Overdue done"}));
    store_.SetFilters(u"", u"", true, false, false);
    EXPECT_EQ(DayTasks(2026, 3, 14), (Names{u"Overdue"}));
}

TEST_F(PimStoreTest, ItemsBelongToTheDaysTheyOverlap) {
    WriteFile("calendar/m.ics",
              Event("m", "SUMMARY:Trip\r\nDTSTART:20260130T100000\r\nDTEND:20260202T120000\r\n"));
    WriteFile("calendar/a.ics",
              Event("a", "SUMMARY:Holiday\r\nDTSTART;VALUE=DATE:20260228\r\nDTEND;VALUE=DATE:20260301\r\n"));
    WriteFile("calendar/n.ics",
              Event("n", "SUMMARY:Late\r\nDTSTART:20260301T230000\r\nDTEND:20260302T000000\r\n"));
    Open();
    std::vector<PimItem> february, march;
    ASSERT_TRUE(store_.QueryAppointments(DayRange::Month(2026, 2), february));
    EXPECT_EQ(Subjects(february), (Names{u"Trip", u"Holiday"}));
    // By the range rule the all-day item ending at 00:00 on 1 March is in
    // March's answer, but it belongs to 28 February only.
    ASSERT_TRUE(store_.QueryAppointments(DayRange::Month(2026, 3), march));
    EXPECT_EQ(Subjects(march), (Names{u"Holiday", u"Late"}));
    // The six-number form is the same query.
    std::vector<PimItem> again;
    ASSERT_TRUE(store_.QueryAppointments(2026, 3, 1, 2026, 3, 31, again));
    EXPECT_EQ(Subjects(again), Subjects(march));
    // An impossible day finds nothing rather than a corrected range.
    std::vector<PimItem> none;
    EXPECT_FALSE(store_.QueryAppointments(DayRange(2026, 2, 30, 2026, 3, 31), none));
    EXPECT_FALSE(store_.QueryAppointments(DayRange::Month(2026, 13), none));
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(Day(2026, 1, 31), (Names{u"Trip"}));
    EXPECT_EQ(Day(2026, 2, 2), (Names{u"Trip"}));
    EXPECT_EQ(Day(2026, 2, 3), Names{});
    EXPECT_EQ(Day(2026, 2, 28), (Names{u"Holiday"}));
    EXPECT_EQ(Day(2026, 3, 1), (Names{u"Late"}));
    EXPECT_EQ(Day(2026, 3, 2), Names{});
}

TEST_F(PimStoreTest, FiltersApplyInOrderAndArePersisted) {
    WriteFile("calendar/1.ics", Event("1", "SUMMARY:Work\r\nCATEGORIES:Work\r\nDTSTART:20260310T090000\r\n"));
    WriteFile("calendar/2.ics",
              Event("2", "SUMMARY:Private work\r\nCATEGORIES:Work,Private\r\nDTSTART:20260310T100000\r\n"));
    WriteFile("calendar/3.ics", Event("3", "SUMMARY:Plain\r\nDTSTART:20260310T110000\r\n"));
    WriteFile("calendar/4.ics",
              Event("4", "SUMMARY:Homework\r\nCATEGORIES:HomeWork\r\nDTSTART:20260310T120000\r\n"));
    Open();
    EXPECT_EQ(Day(2026, 3, 10).size(), 4u);
    store_.SetFilters(u"Private", u"Work", false, false, false);
    EXPECT_EQ(Day(2026, 3, 10), (Names{u"Work", u"Homework"}));
    EXPECT_EQ(Settings::GetLastFilter(), u"Work");
    EXPECT_EQ(Settings::GetExcludeFilter(), u"Private");
    store_.SetFilters(u"Private", u"", false, false, false);
    EXPECT_EQ(Day(2026, 3, 10), (Names{u"Work", u"Plain", u"Homework"}));
    // The category list and colours come from the items and the settings.
    Settings::SetText("CatColor[Work]", u"#ff0000");
    Categories::LoadCategoryColors();
    std::vector<std::u16string> names;
    Categories::LoadCategories(names);
    EXPECT_EQ(names, (Names{u"HomeWork", u"Private", u"Work"}));
    store_.ClearCache();
    std::vector<PimItem> items;
    store_.GetDayAppointments(2026, 3, 10, items);
    ASSERT_FALSE(items.empty());
    EXPECT_EQ(items[0].colors, (std::vector<COLORREF>{RGB(255, 0, 0)}));
}

TEST_F(PimStoreTest, BirthdaysAndAnniversariesFromContacts) {
    WriteFile("contacts/a.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Anna Berg\r\nBDAY:1990-03-20\r\nEND:VCARD\r\n");
    WriteFile("contacts/b.vcf", "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:b\r\nFN:Ben Ortiz\r\nBDAY:--0320\r\n"
                                "ANNIVERSARY:20160322\r\nEND:VCARD\r\n");
    WriteFile("contacts/c.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:c\r\nFN:Leap Day\r\nBDAY:20000229\r\nEND:VCARD\r\n");
    Open();
    EXPECT_EQ(Day(2026, 3, 20), Names{});
    store_.SetFilters(u"", u"Work", false, true, false); // an include filter does not hide them
    EXPECT_EQ(Day(2026, 3, 20), (Names{u"Anna Berg (36)", u"Ben Ortiz"}));
    EXPECT_EQ(Day(2026, 3, 22), Names{});
    EXPECT_EQ(Day(2026, 2, 28), (Names{u"Leap Day (26)"}));
    store_.SetFilters(u"", u"", false, false, true);
    std::vector<PimItem> items;
    store_.GetDayAppointments(2026, 3, 22, items);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].subject, u"Ben Ortiz (10)");
    EXPECT_EQ(items[0].kind, PimItem::kAnniversary);
    EXPECT_EQ(items[0].colors, (std::vector<COLORREF>{RGB(0, 204, 204)}));
    EXPECT_TRUE(items[0].isAllDay);
    EXPECT_EQ(Day(1989, 3, 20), Names{}); // not before the birth
}

TEST_F(PimStoreTest, CacheFillsOnceAndFollowsSingleItemChanges) {
    WriteFile("calendar/1.ics", Event("1", "SUMMARY:First\r\nDTSTART:20260310T090000\r\n"));
    Open();
    EXPECT_TRUE(store_.FillMonth(2026, 3, true, true));
    EXPECT_FALSE(store_.FillMonth(2026, 3, true, true));
    EXPECT_TRUE(store_.IsMonthLoaded(2026, 3, false));
    int progress = -1;
    store_.FillMonths(
        2026, 4, 2, true, false, [](int value, void* context) { *static_cast<int*>(context) = value; },
        &progress);
    EXPECT_EQ(progress, PimStore::kProgressSpan);

    PimSource& source = *store_.Source();
    PimRecord record;
    record.itemKind = kItemAppointment;
    record.subject = u"Added";
    record.start = DateTime(2026, 3, 10, 8, 0, 0).ToDate();
    record.end = DateTime(2026, 3, 10, 8, 30, 0).ToDate();
    ASSERT_EQ(source.Save(record, kFolderCalendar), SaveResult::Saved);
    EXPECT_EQ(Day(2026, 3, 10), (Names{u"First"})); // the cache has not heard of it yet
    store_.ApplyNotification({kMsgItemCreatedLocal, record.oid, kFolderCalendar});
    EXPECT_EQ(Day(2026, 3, 10), (Names{u"Added", u"First"}));
    record.start = DateTime(2026, 3, 10, 10, 0, 0).ToDate();
    record.end = DateTime(2026, 3, 10, 11, 0, 0).ToDate();
    ASSERT_EQ(source.Save(record, kFolderCalendar), SaveResult::Saved);
    store_.ApplyNotification({kMsgItemChangedRemote, record.oid, kFolderCalendar});
    EXPECT_EQ(Day(2026, 3, 10), (Names{u"First", u"Added"}));
    ASSERT_TRUE(source.Delete(record.oid));
    store_.ApplyNotification({kMsgItemDeletedLocal, record.oid, kFolderCalendar});
    EXPECT_EQ(Day(2026, 3, 10), (Names{u"First"}));
    EXPECT_EQ(store_.GetItemKind(VdirSource::HashUid("1")), kItemAppointment);
}

TEST_F(PimStoreTest, OneChangeLeavesEveryLoadedMonthAsAFreshFillWould) {
    WriteFile("calendar/1.ics", Event("1", "SUMMARY:First\r\nDTSTART:20260310T090000\r\n"));
    Open();
    // Every day of February to May, as the cache hands them out.
    auto days = [&] {
        std::vector<Names> all;
        for (int month = 2; month <= 5; ++month)
            for (int day = 1; day <= DaysInMonth(2026, month); ++day)
                all.push_back(Day(2026, month, day));
        return all;
    };
    days();
    PimSource& source = *store_.Source();
    PimRecord record;
    record.itemKind = kItemAppointment;
    record.subject = u"Moving";
    struct Step {
        DateTime start, end;
        bool allDay;
    };
    // Across a month's end; all-day ending at midnight on the 1st; into a
    // month not loaded; back.
    for (const Step& step : {Step{DateTime(2026, 3, 30, 22, 0, 0), DateTime(2026, 4, 2, 10, 0, 0), false},
                             Step{DateTime(2026, 2, 28), DateTime(2026, 3, 1), true},
                             Step{DateTime(2026, 5, 31, 23, 0, 0), DateTime(2026, 6, 1, 1, 0, 0), false},
                             Step{DateTime(2026, 4, 15, 9, 0, 0), DateTime(2026, 4, 15, 9, 0, 0), false}}) {
        record.start = step.start.ToDate();
        record.end = step.end.ToDate();
        record.allDay = step.allDay;
        ASSERT_EQ(source.Save(record, kFolderCalendar), SaveResult::Saved);
        store_.ApplyNotification({kMsgItemChangedLocal, record.oid, kFolderCalendar});
        const auto followed = days();
        store_.ClearCache();
        EXPECT_EQ(followed, days()) << step.start.GetMonth() << "/" << step.start.GetDay();
    }
    // A change reported for an item that is gone meanwhile removes it.
    ASSERT_TRUE(source.Delete(record.oid));
    store_.ApplyNotification({kMsgItemChangedRemote, record.oid, kFolderCalendar});
    EXPECT_EQ(Day(2026, 4, 15), Names{});
}

TEST_F(PimStoreTest, SearchLooksAYearAheadInEveryText) {
    WriteFile("calendar/y.ics", Event("y", "SUMMARY:Yoga\r\nLOCATION:Studio\r\nDTSTART:20260302T180000\r\n"
                                           "DTEND:20260302T190000\r\nRRULE:FREQ=MONTHLY\r\n"));
    WriteFile("calendar/p.ics", Event("p", "SUMMARY:Past studio visit\r\nDTSTART:20260101T180000\r\n"));
    WriteFile("tasks/t.ics", Todo("t", "SUMMARY:Call\r\nDESCRIPTION:About the STUDIO rent\r\n"));
    WriteFile("contacts/s.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:s\r\nFN:Stu Dio\r\nBDAY:19800401\r\nEND:VCARD\r\n");
    Open();
    std::vector<PimItem> appointments, tasks;
    store_.Search(u"Studio", PimStore::SearchOptions{}, appointments, tasks);
    EXPECT_EQ(appointments.size(), 12u); // April 2026 to March 2027; the past visit is out
    EXPECT_EQ(Subjects(tasks), (Names{u"Call"}));
    appointments.clear();
    tasks.clear();
    store_.Search(u"stu dio", PimStore::SearchOptions{}, appointments, tasks);
    EXPECT_EQ(Subjects(appointments), (Names{u"Stu Dio (46)"}));
}

} // namespace
} // namespace mirodate
