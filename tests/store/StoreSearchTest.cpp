// The store's text search on real folders: case folding both ways, the text
// taken literally, every text field, series whose own texts do not match but
// a moved occurrence's do, the window of a year, and the category filter.
#include "data/Categories.h"
#include "data/TextMatcher.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

namespace mirodate {
namespace {

using Names = std::vector<std::u16string>;

class StoreSearchTest : public StoreFixture {
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
    // Subjects of the matching appointments, then of the matching tasks.
    Names Find(const std::u16string& text) {
        std::vector<PimItem> appointments, tasks;
        store_.Search(text, PimStore::SearchOptions{}, appointments, tasks);
        Names names;
        for (const auto& item : appointments)
            names.push_back(item.subject);
        for (const auto& item : tasks)
            names.push_back(u"task " + item.subject);
        return names;
    }
    static std::string Timed(const std::string& day, const std::string& more) {
        return "DTSTART:" + day + "T090000\r\nDTEND:" + day + "T100000\r\n" + more;
    }

    PimStore store_;
};

TEST_F(StoreSearchTest, CaseFoldingFindsSharpSAndCapitalsEitherWay) {
    // Today is 15 March 2026.
    WriteFile("calendar/a.ics", Event("a", Timed("20260320", "SUMMARY:Hauptstraße 5\r\n")));
    WriteFile("calendar/b.ics", Event("b", Timed("20260321", "SUMMARY:HAUPTSTRASSE 7\r\n")));
    WriteFile("calendar/c.ics", Event("c", Timed("20260322", "SUMMARY:Ελληνικά ΣΟΦΙΑ\r\n")));
    Open();
    const Names both{u"Hauptstraße 5", u"HAUPTSTRASSE 7"};
    EXPECT_EQ(Find(u"straße"), both);
    EXPECT_EQ(Find(u"STRASSE"), both);
    EXPECT_EQ(Find(u"Straße"), both);
    EXPECT_EQ(Find(u"strasse 7"), (Names{u"HAUPTSTRASSE 7"}));
    EXPECT_EQ(Find(u"σοφια"), (Names{u"Ελληνικά ΣΟΦΙΑ"})); // final sigma folds like the others
}

TEST_F(StoreSearchTest, EveryTextFieldOfAppointmentsAndTasksIsSearched) {
    WriteFile("calendar/s.ics", Event("s", Timed("20260401", "SUMMARY:Quarterly plan\r\n")));
    WriteFile("calendar/l.ics", Event("l", Timed("20260402", "SUMMARY:Lunch\r\nLOCATION:Plan B café\r\n")));
    WriteFile("calendar/n.ics",
              Event("n", Timed("20260403", "SUMMARY:Notes\r\nDESCRIPTION:bring the PLAN\r\n")));
    WriteFile("calendar/k.ics", Event("k", Timed("20260404", "SUMMARY:Tagged\r\nCATEGORIES:Planning\r\n")));
    WriteFile("calendar/x.ics", Event("x", Timed("20260405", "SUMMARY:Unrelated\r\n")));
    WriteFile("tasks/t.ics", Todo("t", "SUMMARY:Write\r\nDESCRIPTION:the plan\r\n"));
    WriteFile("tasks/u.ics", Todo("u", "SUMMARY:Undated plan\r\n"));
    Open();
    EXPECT_EQ(Find(u"plan"),
              (Names{u"Quarterly plan", u"Lunch", u"Notes", u"Tagged", u"task Write", u"task Undated plan"}));
}

TEST_F(StoreSearchTest, SearchTextIsLiteralAndANoMatchSearchFindsNothing) {
    WriteFile("calendar/r.ics", Event("r", Timed("20260401", "SUMMARY:Costs (a+b)*2 <b>bold</b> .*\r\n")));
    WriteFile("calendar/d.ics", Event("d", Timed("20260402", "SUMMARY:Costs ab2\r\n")));
    Open();
    EXPECT_EQ(Find(u"(a+b)*2"), (Names{u"Costs (a+b)*2 <b>bold</b> .*"}));
    EXPECT_EQ(Find(u"<b>"), (Names{u"Costs (a+b)*2 <b>bold</b> .*"}));
    EXPECT_EQ(Find(u".*"), (Names{u"Costs (a+b)*2 <b>bold</b> .*"}));
    EXPECT_EQ(Find(u"a.b"), Names{});
    EXPECT_EQ(Find(u"nowhere at all"), Names{});
    EXPECT_EQ(Find(u""), Names{});
}

TEST_F(StoreSearchTest, AMovedOccurrenceIsFoundByItsOwnTextsOnly) {
    // A weekly series; its second occurrence was moved and retitled.
    WriteFile("calendar/w.ics",
              "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\n"
              "BEGIN:VEVENT\r\nUID:w\r\nSUMMARY:Weekly sync\r\nDTSTART:20260316T090000\r\n"
              "DTEND:20260316T100000\r\nRRULE:FREQ=WEEKLY;COUNT=4\r\nEND:VEVENT\r\n"
              "BEGIN:VEVENT\r\nUID:w\r\nRECURRENCE-ID:20260323T090000\r\nSUMMARY:Offsite review\r\n"
              "DTSTART:20260324T140000\r\nDTEND:20260324T150000\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    Open();
    EXPECT_EQ(Find(u"offsite"), (Names{u"Offsite review"}));
    EXPECT_EQ(Find(u"weekly"), (Names{u"Weekly sync", u"Weekly sync", u"Weekly sync"}));
}

TEST_F(StoreSearchTest, AppointmentsOfTheComingYearAndContactDatesByTitle) {
    WriteFile("calendar/p.ics", Event("p", Timed("20260301", "SUMMARY:Past dentist\r\n")));
    WriteFile("calendar/n.ics", Event("n", Timed("20260316", "SUMMARY:Next dentist\r\n")));
    WriteFile("calendar/f.ics", Event("f", Timed("20270401", "SUMMARY:Far dentist\r\n")));
    WriteFile("contacts/m.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:m\r\nFN:Dent Ist\r\nBDAY:19900620\r\nEND:VCARD\r\n");
    Open();
    EXPECT_EQ(Find(u"DENT"), (Names{u"Next dentist", u"Dent Ist (36)"}));
    EXPECT_EQ(Find(u"(36)"), (Names{u"Dent Ist (36)"}));
}

TEST_F(StoreSearchTest, ExcludedCategoriesStayOutOfTheResults) {
    WriteFile("calendar/a.ics", Event("a", Timed("20260401", "SUMMARY:Gym\r\nCATEGORIES:Private\r\n")));
    WriteFile("calendar/b.ics", Event("b", Timed("20260402", "SUMMARY:Gym class\r\nCATEGORIES:Work\r\n")));
    Open();
    store_.SetFilters(u"Private", u"", false, true, true);
    EXPECT_EQ(Find(u"gym"), (Names{u"Gym class"}));
}

TEST(TextMatcher, FoldsBothSidesAndTakesAsciiAndOtherTextsAlike) {
    TextMatcher matcher(u"MASSE");
    EXPECT_TRUE(matcher.Contains(u"Maße"));
    EXPECT_TRUE(matcher.Contains(u"in masse"));
    EXPECT_FALSE(matcher.Contains(u"mase"));
    EXPECT_FALSE(matcher.Contains(u""));
    TextMatcher accented(u"É");
    EXPECT_TRUE(accented.Contains(u"café"));
    EXPECT_FALSE(accented.Contains(u"cafe"));          // an ASCII text cannot hold it
    EXPECT_TRUE(TextMatcher(u"ǅ").Contains(u"ǆemal")); // title-case letters fold too
    EXPECT_TRUE(TextMatcher(u"").IsEmpty());
    EXPECT_FALSE(TextMatcher(u"").Contains(u"anything"));
}

} // namespace
} // namespace mirodate
