#include "store/Restriction.h"

#include <gtest/gtest.h>

#include <cmath>

namespace mirodate {
namespace {

bool Match(const std::u16string& text, const PimRecord& item) {
    Restriction r;
    std::string error;
    EXPECT_TRUE(r.Parse(text, error)) << error;
    return r.Matches(item);
}

PimRecord Appointment(double start, double end) {
    PimRecord r;
    r.start = start;
    r.end = end;
    return r;
}

PimRecord Task(double start, double due, bool complete) {
    PimRecord r;
    r.startDate = start;
    r.dueDate = due;
    r.complete = complete;
    return r;
}

// Day numbers: 46082 is 1 March 2026, 46112 is 31 March 2026.
TEST(Restriction, AppointmentRangeComparesDays) {
    const std::u16string range = u"[Start]<= <46112 AND [End]>= <46082";
    EXPECT_TRUE(Match(range, Appointment(46112.9, 46113.1))); // starts on the last evening
    EXPECT_TRUE(Match(range, Appointment(46070.5, 46082.0))); // ends at 00:00 of the first day
    EXPECT_FALSE(Match(range, Appointment(46070.5, 46081.99)));
    EXPECT_FALSE(Match(range, Appointment(46113.0, 46113.5)));
    EXPECT_TRUE(Match(u"[Start]>= <46082 AND [Start]<= <46448", Appointment(46082.0, 46082.1)));
    EXPECT_FALSE(Match(u"[Start]>= <46082 AND [Start]<= <46448", Appointment(46081.9, 46082.1)));
}

TEST(Restriction, EveryTaskStringTheStoreSends) {
    const PimRecord dueInRange = Task(kNoDate, 46100.0, false); // after "today" (46096)
    const PimRecord startInRange = Task(46090.0, 46200.0, false);
    const PimRecord overdue = Task(kNoDate, 46000.0, false);
    const PimRecord overdueDone = Task(kNoDate, 46000.0, true);
    const PimRecord noDates = Task(kNoDate, kNoDate, false);
    struct Case {
        const char16_t* text;
        bool due, start, overdue, overdueDone, noDates;
    } cases[] = {
        {u"[DueDate]>= <46082 AND [DueDate]<= <46112", true, false, false, false, false},
        {u"[StartDate]>= <46082 AND [StartDate]<= <46112", false, true, false, false, false},
        {u"([DueDate]>= <46082 AND [DueDate]<= <46112) OR ([StartDate]>= <46082 AND [StartDate]<= <46112)",
         true, true, false, false, false},
        {u"([DueDate]>= <46082 AND [DueDate]<= <46112) OR ([DueDate]<= <46096 AND [Complete]=False)", true,
         false, true, false, false},
        {u"([StartDate]>= <46082 AND [StartDate]<= <46112) OR ([DueDate]<= <46096 AND [Complete]=False)",
         false, true, true, false, false},
        {u"([DueDate]>= <46082 AND [DueDate]<= <46112) OR ([StartDate]>= <46082 AND [StartDate]<= <46112) OR "
         u"([DueDate]<= <46096 AND [Complete]=False)",
         true, true, true, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.text, c.text + std::char_traits<char16_t>::length(c.text)));
        EXPECT_EQ(Match(c.text, dueInRange), c.due);
        EXPECT_EQ(Match(c.text, startInRange), c.start);
        EXPECT_EQ(Match(c.text, overdue), c.overdue);
        EXPECT_EQ(Match(c.text, overdueDone), c.overdueDone);
        EXPECT_EQ(Match(c.text, noDates), c.noDates);
    }
    EXPECT_TRUE(Match(u"", noDates));
    EXPECT_TRUE(Match(u"[Complete]=True", overdueDone));
}

TEST(Restriction, MalformedTextIsAnErrorNotEverything) {
    for (const char16_t* text :
         {u"[Start]<= 46000", u"[Start]<= <", u"[Foo]<= <1", u"[Start]<= <1 AND", u"([Start]<= <1",
          u"[Start]<= <1)", u"[Complete]>= True", u"[Complete]=Maybe", u"[Start] < <1",
          u"[Start]<= <1 XOR [End]>= <1", u"[Start]<= <99999999999999"}) {
        Restriction r;
        std::string error;
        EXPECT_FALSE(r.Parse(text, error))
            << std::string(text, text + std::char_traits<char16_t>::length(text));
        EXPECT_FALSE(error.empty());
    }
    std::u16string deep(1000, u'(');
    Restriction r;
    std::string error;
    EXPECT_FALSE(r.Parse(deep, error));
}

TEST(Restriction, WindowBoundsOccurrenceStarts) {
    Restriction r;
    std::string error;
    ASSERT_TRUE(r.Parse(u"[Start]<= <46112 AND [End]>= <46082", error));
    const auto w = r.GetWindow();
    EXPECT_EQ(w.startBefore, 46113.0);
    EXPECT_EQ(w.endFrom, 46082.0);
    ASSERT_TRUE(r.Parse(u"([DueDate]>= <1 AND [DueDate]<= <2) OR ([Start]>= <5 AND [Start]<= <6)", error));
    EXPECT_FALSE(std::isfinite(r.GetWindow().startBefore)); // an OR with an unbounded side
}

} // namespace
} // namespace mirodate
