// The detail view's document: an appointment with location, attendees and
// notes holding a web address and a telephone number; a task with its due
// line; the blank-padded notes colour; user text that looks like mark-up.
#include "views/ItemDetailDocument.h"

#include "lang/LanguageTable.h"
#include "platform/TextUtil.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace mirodate {
namespace {

class ItemDetailDocumentTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("LC_ALL", "de_DE", 1);
        LanguageTable::Instance().SetText(u"\nAttendees=Teilnehmer\nOnce=Einmalig\nfilter.NoCategories=Keine "
                                          u"Kategorien\nDue=Fällig\nToday=Heute\nTasks=Aufgaben\n");
        colors.text = u"#E8E8EA";
        colors.memoText = RGB(5, 0xA0, 0xFF);
    }
    void TearDown() override { LanguageTable::Instance().SetText(u""); }

    ItemDetailColors colors;
    Linkifier linkifier{[](const std::u16string&) { return false; }};
};

TEST_F(ItemDetailDocumentTest, AppointmentWithAttendeesNotesWebAddressAndPhone) {
    PimRecord record;
    record.itemKind = 1;
    record.subject = u"Kick-off <draft>";
    record.location = u"Room 4, see http://rooms.example.org/4";
    record.categories = u"Work";
    record.attendees = u"Ann Boss|ann@example.org~Jo|jo@example.org";
    record.body = u"Agenda: http://wiki.example.org/kickoff\nDial-in 030 1234 5678";
    PimItem item;
    item.SetTimes(DateTime(2024, 3, 15, 9, 0, 0), DateTime(2024, 3, 15, 10, 30, 0));
    const std::string doc = Utf16ToUtf8(ItemDetailDocument::Build(record, item, colors, linkifier));
    EXPECT_EQ(
        doc,
        "<font color='#E8E8EA'><b>Kick-off &lt;draft></b><br>"
        "Room 4, see <a href='http://rooms.example.org/'>http://rooms.example.org/</a>4<br>"
        "<i>Freitag, 15 März 2024, 09:00 - 10:30<br>(Einmalig, Work)</i><br>"
        "<br>Teilnehmer:<br>Ann Boss (<a href='mailto:ann@example.org'>ann@example.org</a>)<br>"
        "Jo (<a href='mailto:jo@example.org'>jo@example.org</a>)<br><br>"
        "<font color='# 5a0ff'><br><i>Agenda: <a href='http://wiki.example.org/'>http://wiki.example.org/</a>"
        "kickoff<br>Dial-in <a href='Tel:030 1234 5678'>030 1234 5678</a></i><br><br></font></font>");
}

TEST_F(ItemDetailDocumentTest, WithoutNotesAttendeesOrLocation) {
    PimRecord record;
    record.itemKind = 1;
    record.subject = u"Holiday";
    PimItem item;
    item.isAllDay = true;
    item.SetTimes(DateTime(2024, 3, 15), DateTime(2024, 3, 18));
    const std::string doc = Utf16ToUtf8(ItemDetailDocument::Build(record, item, colors, linkifier));
    EXPECT_EQ(doc.substr(0, 47), "<font color='#E8E8EA'><b>Holiday</b><br><i>15.0");
    EXPECT_NE(doc.find("(Einmalig, Keine Kategorien)</i><br><br><font color='# 5a0ff'></font></font>"),
              std::string::npos);
    EXPECT_EQ(doc.find("Teilnehmer"), std::string::npos);
    // Attendees that were not loaded are counted, not listed.
    record.attendees = ItemDetailDocument::kAttendeesNotLoaded;
    EXPECT_NE(
        Utf16ToUtf8(ItemDetailDocument::Build(record, item, colors, linkifier)).find("<br>0 Teilnehmer<br>"),
        std::string::npos);
}

TEST_F(ItemDetailDocumentTest, TaskHasTitleAndDueHeading) {
    PimRecord record;
    record.itemKind = 3;
    record.subject = u"Taxes";
    record.body = u"Forms at www.example.org";
    PimItem task;
    task.type = PimItem::kTypeTask;
    task.SetTaskDates(kNoDate, DateTime::Today().ToDate());
    const std::string doc = Utf16ToUtf8(ItemDetailDocument::Build(record, task, colors, linkifier));
    EXPECT_EQ(doc,
              "<font color='#E8E8EA'><b><u>Taxes</u></b></font><br><font color='# 5a0ff'><b>Fällig: Heute</b>"
              "<br><i>Forms at www.example.org</i><br><br></font>");
    record.body.clear();
    EXPECT_NE(Utf16ToUtf8(ItemDetailDocument::Build(record, task, colors, linkifier))
                  .find("<font color='# 5a0ff'><b>Fällig: Heute</b><br><br></font>"),
              std::string::npos);
}

TEST_F(ItemDetailDocumentTest, MemoColourAndAttendeeText) {
    EXPECT_EQ(ItemDetailDocument::MemoColor(RGB(5, 0xA0, 0xFF)), u"# 5a0ff");
    EXPECT_EQ(ItemDetailDocument::MemoColor(RGB(0, 0, 0)), u"# 0 0 0");
    const auto people = ItemDetailDocument::SplitAttendees(u"A|a@x~~|b@x~C~D|d@x|extra");
    ASSERT_EQ(people.size(), 4u);
    EXPECT_EQ(people[1].name, u"");
    EXPECT_EQ(people[1].address, u"b@x");
    EXPECT_EQ(people[2].name, u"C");
    EXPECT_EQ(people[2].address, u"");
    EXPECT_EQ(people[3].address, u"d@x");
}

} // namespace
} // namespace mirodate
