// Store files and index files as a broken sync or an attacker leaves them:
// each is skipped or thrown away with a warning that names it, costs work in
// proportion to its size, and is never rewritten.
#include "store/IcalText.h"
#include "store/ItemFileLimits.h"
#include "store/StoreIndex.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sys/stat.h>

namespace mirodate {
namespace {

using ::testing::internal::CaptureStderr;
using ::testing::internal::GetCapturedStderr;

std::string Serialised(icalcomponent* component) {
    if (!component)
        return "(none)";
    char* text = icalcomponent_as_ical_string_r(component);
    std::string out = text;
    std::free(text);
    return out;
}

TEST(IcalText, ReadsEveryTextAsLibicalsOwnReaderDoes) {
    // Lines around the lengths at which the parser takes its pieces (80 and
    // more), folded lines across them, both line ends, no final line end, a
    // NUL, damaged properties.
    std::vector<std::string> texts = {
        "", "BEGIN:VCALENDAR", "BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n",
        "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:a\nDTSTART:2026\nEND:VEVENT\nEND:VCALENDAR"};
    for (std::size_t length : {70, 77, 78, 79, 80, 81, 82, 157, 158, 159, 160, 161, 5000}) {
        const std::string value(length, 'v');
        for (const char* end : {"\r\n", "\n"}) {
            const std::string e = end;
            texts.push_back("BEGIN:VCALENDAR" + e + "BEGIN:VEVENT" + e + "UID:x" + e + "SUMMARY:" + value +
                            e + "DESCRIPTION:" + value.substr(0, length / 2) + e + " " + value + e + "\t" +
                            value + e + "X-BROKEN;;=" + e + "END:VEVENT" + e + "END:VCALENDAR" + e);
        }
    }
    texts.push_back(
        std::string("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:before\0after\r\nEND:VEVENT\r\n", 64));
    for (const std::string& text : texts) {
        IcalComponentPtr ours = IcalText::Parse(text);
        IcalComponentPtr theirs(icalparser_parse_string(text.c_str()));
        EXPECT_EQ(Serialised(ours.get()), Serialised(theirs.get())) << text.substr(0, 200);
    }
}

TEST(ItemFileLimits, CountsUnfoldedLinesAndParametersOutsideQuotes) {
    EXPECT_EQ(ItemFileLimits::CheckSize(ItemFileLimits::kMaxFileBytes), "");
    EXPECT_NE(ItemFileLimits::CheckSize(ItemFileLimits::kMaxFileBytes + 1).find("4 MB"), std::string::npos);

    std::string lines;
    for (std::size_t i = 1; i < ItemFileLimits::kMaxProperties; ++i)
        lines += "X:1\r\n";
    lines += "X:1";
    EXPECT_EQ(ItemFileLimits::CheckText(lines), "");
    EXPECT_NE(ItemFileLimits::CheckText(lines + "\r\nX:2").find("content lines"), std::string::npos);
    // A folded value (a photo, an attachment) is one line however long.
    std::string folded = "PHOTO:";
    for (int i = 0; i < 100000; ++i)
        folded += "AAAA\r\n ";
    EXPECT_EQ(ItemFileLimits::CheckText(folded), "");

    std::string parameters = "SUMMARY";
    for (std::size_t i = 0; i < ItemFileLimits::kMaxParameters; ++i)
        parameters += ";X=1";
    EXPECT_EQ(ItemFileLimits::CheckText(parameters + ":a;b;c\r\n"), ""); // the value's ";" are no parameters
    const std::string oneFewer = parameters.substr(0, parameters.size() - 4);
    EXPECT_EQ(ItemFileLimits::CheckText(oneFewer + ";X=\"a;b:c\":v;w\r\n"), "");
    EXPECT_EQ(ItemFileLimits::CheckText("A;X=\"q\";Y=\"r\r\n B\";Z=1:v\r\n"), "");
    EXPECT_NE(ItemFileLimits::CheckText(parameters + ";X=1:v\r\n").find("parameters"), std::string::npos);
}

class HostileStoreTest : public StoreFixture {
protected:
    std::vector<std::shared_ptr<const StoredItem>> Calendar(VdirSource& source) const {
        return source.GetSnapshot(kFolderCalendar);
    }
};

TEST_F(HostileStoreTest, FilesBeyondTheLimitsAreSkippedWithTheReasonOnEveryStart) {
    const std::string big =
        Event("big", "DTSTART:20260310T100000\r\nSUMMARY:" + std::string(ItemFileLimits::kMaxFileBytes, 'x') +
                         "\r\n");
    std::string manyLines = "DTSTART:20260311T100000\r\n";
    for (std::size_t i = 0; i < ItemFileLimits::kMaxProperties; ++i)
        manyLines += "X-A:b\r\n";
    WriteFile("calendar/big.ics", big);
    WriteFile("calendar/lines.ics", Event("lines", manyLines));
    // Just below the size limit, one line: read, and read whole.
    const std::string longSubject(ItemFileLimits::kMaxFileBytes - 300, 's');
    WriteFile("calendar/long.ics",
              Event("long", "DTSTART:20260312T100000\r\nSUMMARY:" + longSubject + "\r\n"));

    for (int start = 0; start < 2; ++start) { // the second start reads the index
        CaptureStderr();
        auto source = OpenSource();
        const std::string warnings = GetCapturedStderr();
        EXPECT_NE(warnings.find("big.ics: " + std::to_string(big.size()) + " bytes, more than the 4 MB"),
                  std::string::npos)
            << warnings;
        EXPECT_NE(warnings.find("lines.ics: 50008 content lines, more than the 50000"), std::string::npos)
            << warnings;
        EXPECT_EQ(source->GetSkippedCount(), 2);
        const auto items = Calendar(*source);
        ASSERT_EQ(items.size(), 1u);
        EXPECT_EQ(items[0]->record.subject.size(), longSubject.size());
    }
    EXPECT_EQ(ReadFile("calendar/big.ics"), big);
}

TEST_F(HostileStoreTest, LinksPipesAndOddNamesNeitherStopNorConfuseTheStore) {
    const std::filesystem::path calendar = dir_ / "vdir" / "calendar";
    std::filesystem::create_symlink("b.ics", calendar / "a.ics");
    std::filesystem::create_symlink("a.ics", calendar / "b.ics");
    ASSERT_EQ(mkfifo((calendar / "pipe.ics").c_str(), 0600), 0);
    std::filesystem::create_directory(calendar / "folder.ics");
    // A name that is not UTF-8 and holds a terminal escape: the item is read,
    // and a warning about it prints the name harmlessly.
    const std::string oddName = "odd\xff\x1b]0;owned\x07.ics";
    WriteFile("calendar/" + oddName, Event("odd", "DTSTART:20260310T100000\r\nSUMMARY:Odd name\r\n"));
    WriteFile("calendar/\xfe\x1b[2J.ics", "not a calendar");

    CaptureStderr();
    auto source = OpenSource();
    const std::string warnings = GetCapturedStderr();
    EXPECT_NE(warnings.find("a.ics: a loop of symbolic links"), std::string::npos) << warnings;
    EXPECT_NE(warnings.find("pipe.ics: not a regular file"), std::string::npos) << warnings;
    EXPECT_NE(warnings.find("folder.ics: not a regular file"), std::string::npos) << warnings;
    EXPECT_NE(warnings.find("\\xfe\\x1b[2J.ics: not iCalendar"), std::string::npos) << warnings;
    EXPECT_EQ(warnings.find('\x1b'), std::string::npos);
    const auto items = Calendar(*source);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0]->record.subject, u"Odd name");
    EXPECT_EQ(source->FilePath(items[0]->record.oid), Root() + "/calendar/" + oddName);
}

// An index written by hand: one entry for a real file, with its true size
// and time, and whatever values the test gives it.
class DamagedIndexTest : public StoreFixture {
protected:
    void SetUp() override {
        StoreFixture::SetUp();
        WriteFile("calendar/meeting.ics",
                  Event("meeting", "DTSTART:20260310T100000\r\nDTEND:20260310T110000\r\n"
                                   "SUMMARY:From the file\r\n"));
        struct stat st {};
        ASSERT_EQ(stat((dir_ / "vdir/calendar/meeting.ics").c_str(), &st), 0);
        entry_.directory = 0;
        entry_.fileName = "meeting.ics";
        entry_.size = st.st_size;
        entry_.mtimeNs = static_cast<std::int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
        entry_.readable = true;
        entry_.folder = kFolderCalendar;
        entry_.uid = "meeting";
        entry_.record.itemKind = kItemAppointment;
        entry_.record.uid = "meeting";
        entry_.record.oid = 1;
        entry_.record.subject = u"From the index";
        entry_.record.start = DateTime(2026, 3, 10, 10, 0, 0).ToDate();
        entry_.record.end = DateTime(2026, 3, 10, 11, 0, 0).ToDate();
        entry_.seriesEnd = entry_.record.end;
    }

    void SaveIndex(const StoredItem& item) const {
        ASSERT_TRUE(
            StoreIndex::Save(StoreIndex::PathFor(Root()), Root(), StoreIndex::ZoneSignature(), {&item}));
    }

    // The subject the store shows and the warnings of its start.
    std::pair<std::u16string, std::string> Start() const {
        CaptureStderr();
        auto source = OpenSource();
        const std::string warnings = GetCapturedStderr();
        const auto items = source->GetSnapshot(kFolderCalendar);
        return {items.size() == 1 ? items[0]->record.subject : u"(none)", warnings};
    }

    StoredItem entry_;
};

TEST_F(DamagedIndexTest, AnEntryWithValuesTheStoreCouldHaveWrittenIsUsed) {
    SaveIndex(entry_);
    const auto [subject, warnings] = Start();
    EXPECT_EQ(subject, u"From the index");
    EXPECT_EQ(warnings, "");
}

// Gives an entry a kept expansion of a day's window holding its own start
// moved by `shift` days.
void KeepOneOccurrence(StoredItem& item, double shift) {
    item.series = true;
    auto expansion = std::make_shared<StoredExpansion>();
    expansion->from = item.record.start;
    expansion->before = item.record.start + 1.0;
    PimRecord occurrence = item.record;
    occurrence.start += shift;
    occurrence.end += shift;
    expansion->occurrences.push_back(occurrence);
    item.expansion = expansion;
}

TEST_F(DamagedIndexTest, AnyImpossibleValueThrowsTheIndexAwayAndItIsBuiltAgain) {
    const double huge = 1e308, nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<std::pair<const char*, std::function<void(StoredItem&)>>> damages = {
        {"start 1e308", [&](StoredItem& i) { i.record.start = huge; }},
        {"end -1e308", [&](StoredItem& i) { i.record.end = -huge; }},
        {"end before start", [&](StoredItem& i) { i.record.end = i.record.start - 1; }},
        {"no OID", [&](StoredItem& i) { i.record.oid = 0; }},
        {"due date NaN", [&](StoredItem& i) { i.record.dueDate = nan; }},
        {"birthday infinite",
         [&](StoredItem& i) { i.record.birthday = std::numeric_limits<double>::infinity(); }},
        {"series end 1e12", [&](StoredItem& i) { i.seriesEnd = 1e12; }},
        {"longest negative", [&](StoredItem& i) { i.longest = -1; }},
        {"directory 7", [&](StoredItem& i) { i.directory = 7; }},
        {"file name with a slash", [&](StoredItem& i) { i.fileName = "../meeting.ics"; }},
        {"folder 99", [&](StoredItem& i) { i.folder = 99; }},
        {"a task in the calendar", [&](StoredItem& i) { i.record.itemKind = kItemTask; }},
        {"no UID", [&](StoredItem& i) { i.uid.clear(); }},
        {"importance 9", [&](StoredItem& i) { i.record.importance = 9; }},
        {"recurrence type 4", [&](StoredItem& i) { i.record.recurrence.RecurrenceType = 4; }},
        {"interval 0", [&](StoredItem& i) { i.record.recurrence.Interval = 0; }},
        {"instance 1000", [&](StoredItem& i) { i.record.recurrence.Instance = 1000; }},
        {"day of month 32", [&](StoredItem& i) { i.record.recurrence.DayOfMonth = 32; }},
        {"month 13", [&](StoredItem& i) { i.record.recurrence.MonthOfYear = 13; }},
        {"day mask 128", [&](StoredItem& i) { i.record.recurrence.DayOfWeekMask = 128; }},
        {"occurrences -1", [&](StoredItem& i) { i.record.recurrence.Occurrences = -1; }},
        {"pattern end NaN", [&](StoredItem& i) { i.record.recurrence.PatternEndDate = nan; }},
        {"rule fit 3", [&](StoredItem& i) { i.record.recurrence.RuleFit = 3; }},
        {"kept occurrence outside its window", [&](StoredItem& i) { KeepOneOccurrence(i, 5.0); }},
        {"kept expansion of a plain item",
         [&](StoredItem& i) {
             KeepOneOccurrence(i, 0.0);
             i.series = false;
         }},
    };
    for (const auto& [name, damage] : damages) {
        SCOPED_TRACE(name);
        StoredItem damaged = entry_;
        damage(damaged);
        SaveIndex(damaged);
        auto [subject, warnings] = Start();
        EXPECT_EQ(subject, u"From the file");
        EXPECT_NE(warnings.find("index"), std::string::npos);
        EXPECT_NE(warnings.find("damaged"), std::string::npos);
        // The start wrote a sound index: the next one trusts it quietly.
        std::tie(subject, warnings) = Start();
        EXPECT_EQ(subject, u"From the file");
        EXPECT_EQ(warnings, "");
    }
}

TEST_F(DamagedIndexTest, TwoEntriesForOneFileAndTrailingBytesAreDamage) {
    const std::string path = StoreIndex::PathFor(Root());
    ASSERT_TRUE(StoreIndex::Save(path, Root(), StoreIndex::ZoneSignature(), {&entry_, &entry_}));
    EXPECT_EQ(Start().first, u"From the file");

    SaveIndex(entry_);
    std::ofstream(path, std::ios::binary | std::ios::app) << "x";
    EXPECT_EQ(Start().first, u"From the file");
}

TEST_F(DamagedIndexTest, AnIndexBiggerThanTheStoreCanExplainIsNotRead) {
    const std::string path = StoreIndex::PathFor(Root());
    std::vector<StoredItem> others(3, entry_);
    std::vector<const StoredItem*> items{&entry_};
    for (std::size_t i = 0; i < others.size(); ++i) {
        others[i].fileName = "gone" + std::to_string(i) + ".ics";
        items.push_back(&others[i]);
    }
    ASSERT_TRUE(StoreIndex::Save(path, Root(), StoreIndex::ZoneSignature(), items));
    EXPECT_EQ(Start().first, u"From the file"); // more entries than files

    StoredItem padded = entry_;
    padded.record.body.assign(StoreIndex::MaxBytesFor(1, entry_.size) / 2, u'b');
    SaveIndex(padded);
    EXPECT_EQ(Start().first, u"From the file"); // more bytes than the file could give

    padded.record.body.resize(entry_.size); // as much text as the file has: believable
    SaveIndex(padded);
    EXPECT_EQ(Start().first, u"From the index");
}

TEST(DateConversion, ValuesFarOutsideTheCalendarAreInvalidNotUndefined) {
    for (double date : {1e308, -1e308, 1e19, -9.3e18, std::numeric_limits<double>::infinity(),
                        std::numeric_limits<double>::quiet_NaN()}) {
        SYSTEMTIME time{};
        EXPECT_FALSE(VariantTimeToSystemTime(date, &time)) << date;
        EXPECT_FALSE(DateTime(date).IsValid()) << date;
    }
}

} // namespace
} // namespace mirodate
