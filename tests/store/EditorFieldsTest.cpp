// The properties the editors own (reminder, busy status,
// sensitivity, categories, attendees, attachments), written through the vdir
// store and read back by libical as another program would, and Outlook's
// files with alarms and properties we do not know, changed and kept.
#include "platform/TextUtil.h"
#include "store/IcalHandle.h"
#include "store/IcalText.h"
#include "tests/store/StoreFixture.h"

#include <gtest/gtest.h>

#include <cstring>

namespace mirodate {
namespace {

class EditorFieldsTest : public StoreFixture {
protected:
    // The file of an item, parsed by libical.
    IcalComponentPtr Parsed(const std::string& uid) const {
        return IcalText::Parse(ReadFile("calendar/" + uid + ".ics"));
    }

    static icalcomponent* VEvent(icalcomponent* calendar) {
        return icalcomponent_get_first_component(calendar, ICAL_VEVENT_COMPONENT);
    }
    static std::string X(icalcomponent* event, const char* name) {
        for (icalproperty* p = icalcomponent_get_first_property(event, ICAL_X_PROPERTY); p;
             p = icalcomponent_get_next_property(event, ICAL_X_PROPERTY))
            if (std::strcmp(icalproperty_get_x_name(p), name) == 0)
                return icalproperty_get_x(p);
        return "";
    }
    // "ACTION TRIGGER" of every alarm, in file order.
    static std::vector<std::string> Alarms(icalcomponent* event) {
        std::vector<std::string> alarms;
        for (icalcomponent* a = icalcomponent_get_first_component(event, ICAL_VALARM_COMPONENT); a;
             a = icalcomponent_get_next_component(event, ICAL_VALARM_COMPONENT)) {
            icalproperty* action = icalcomponent_get_first_property(a, ICAL_ACTION_PROPERTY);
            icalproperty* trigger = icalcomponent_get_first_property(a, ICAL_TRIGGER_PROPERTY);
            alarms.push_back(std::string(action ? icalproperty_get_value_as_string(action) : "?") + " " +
                             (trigger ? icalproperty_get_value_as_string(trigger) : "?"));
        }
        return alarms;
    }
    static PimRecord Meeting() {
        PimRecord r;
        r.itemKind = kItemAppointment;
        r.subject = u"Budget review";
        r.start = DateTime(2026, 3, 18, 9, 0, 0).ToDate();
        r.end = DateTime(2026, 3, 18, 10, 30, 0).ToDate();
        return r;
    }
};

TEST_F(EditorFieldsTest, EveryFieldIsWrittenAsOtherProgramsReadItAndComesBack) {
    auto source = OpenSource(false);
    PimRecord record = Meeting();
    record.reminderSet = true;
    record.reminderMinutes = 90;
    record.busyStatus = 3;
    record.sensitivity = 1;
    record.categories = u"Work,Travel";
    record.attendees = u"Ann Lee|ann@example.org~Bo|bo@example.org";
    record.attachments = {u"file:///home/me/agenda.pdf", u"https://example.org/slides"};
    ASSERT_EQ(source->Save(record, kFolderCalendar), SaveResult::Saved);

    IcalComponentPtr calendar = Parsed(record.uid);
    ASSERT_TRUE(calendar);
    icalcomponent* event = VEvent(calendar.get());
    ASSERT_TRUE(event);
    EXPECT_EQ(Alarms(event), std::vector<std::string>{"DISPLAY -PT1H30M"});
    EXPECT_EQ(icalproperty_get_transp(icalcomponent_get_first_property(event, ICAL_TRANSP_PROPERTY)),
              ICAL_TRANSP_OPAQUE);
    EXPECT_EQ(X(event, "X-MICROSOFT-CDO-BUSYSTATUS"), "OOF");
    EXPECT_EQ(icalproperty_get_class(icalcomponent_get_first_property(event, ICAL_CLASS_PROPERTY)),
              ICAL_CLASS_PRIVATE);
    std::vector<std::string> categories, attendees, attachments;
    for (icalproperty* p = icalcomponent_get_first_property(event, ICAL_CATEGORIES_PROPERTY); p;
         p = icalcomponent_get_next_property(event, ICAL_CATEGORIES_PROPERTY))
        categories.push_back(icalproperty_get_categories(p));
    for (icalproperty* p = icalcomponent_get_first_property(event, ICAL_ATTENDEE_PROPERTY); p;
         p = icalcomponent_get_next_property(event, ICAL_ATTENDEE_PROPERTY)) {
        icalparameter* cn = icalproperty_get_first_parameter(p, ICAL_CN_PARAMETER);
        attendees.push_back(std::string(cn ? icalparameter_get_cn(cn) : "") + " " +
                            icalproperty_get_attendee(p));
    }
    for (icalproperty* p = icalcomponent_get_first_property(event, ICAL_ATTACH_PROPERTY); p;
         p = icalcomponent_get_next_property(event, ICAL_ATTACH_PROPERTY))
        attachments.push_back(icalattach_get_url(icalproperty_get_attach(p)));
    // One CATEGORIES value list, or one property per name: both say the same.
    std::string joined;
    for (const auto& c : categories)
        joined += (joined.empty() ? "" : ",") + c;
    EXPECT_EQ(joined, "Work,Travel");
    EXPECT_EQ(attendees.size(), 2u);
    EXPECT_NE(std::find(attendees.begin(), attendees.end(), "Bo mailto:bo@example.org"), attendees.end());
    EXPECT_EQ(attachments,
              (std::vector<std::string>{"file:///home/me/agenda.pdf", "https://example.org/slides"}));

    // Read back by a fresh store, from the files and then from its index.
    for (bool index : {false, true, true}) {
        auto again = OpenSource(index);
        PimRecord read;
        ASSERT_TRUE(again->GetItemFromOid(record.oid, read));
        EXPECT_TRUE(read.reminderSet);
        EXPECT_EQ(read.reminderMinutes, 90);
        EXPECT_EQ(read.busyStatus, 3);
        EXPECT_EQ(read.sensitivity, 1);
        EXPECT_EQ(read.categories, u"Work, Travel"); // the store joins names as the platform did
        EXPECT_EQ(read.attachments, record.attachments);
    }
}

TEST_F(EditorFieldsTest, SensitivityAndBusyStatusOfOtherProgramsAreReadAndEveryValueRoundTrips) {
    WriteFile("calendar/a.ics",
              StoreFixture::Event("a", "DTSTART:20260318T090000Z\r\nDTEND:20260318T100000Z\r\nSUMMARY:A\r\n"
                                       "CLASS:PRIVATE\r\nTRANSP:TRANSPARENT\r\n"));
    WriteFile("calendar/b.ics",
              StoreFixture::Event("b", "DTSTART:20260318T090000Z\r\nDTEND:20260318T100000Z\r\nSUMMARY:B\r\n"
                                       "CLASS:CONFIDENTIAL\r\nX-MICROSOFT-CDO-BUSYSTATUS:TENTATIVE\r\n"
                                       "BEGIN:VALARM\r\nACTION:AUDIO\r\nTRIGGER:PT0S\r\nEND:VALARM\r\n"));
    PimRecord a, b;
    PimStore store;
    ASSERT_TRUE(store.Open(OpenSource(false)));
    std::vector<PimItem> items;
    store.GetDayAppointments(2026, 3, 18, items);
    ASSERT_EQ(items.size(), 2u);
    for (const PimItem& item : items) {
        PimRecord r;
        ASSERT_TRUE(store.Source()->GetItemFromOid(item.oid, r));
        (item.subject == u"A" ? a : b) = r;
    }
    EXPECT_EQ(a.sensitivity, 2); // private, not personal
    EXPECT_EQ(a.busyStatus, 0);
    EXPECT_FALSE(a.reminderSet);
    EXPECT_EQ(b.sensitivity, 3);
    EXPECT_EQ(b.busyStatus, 1);
    EXPECT_TRUE(b.reminderSet); // an audio alarm at the start
    EXPECT_EQ(b.reminderMinutes, 0);

    // Each value written and read again.
    for (int value = 0; value < 4; ++value) {
        a.sensitivity = value;
        a.busyStatus = 3 - value;
        ASSERT_EQ(store.Source()->Save(a, kFolderCalendar), SaveResult::Saved);
        PimRecord read;
        ASSERT_TRUE(OpenSource(false)->GetItemFromOid(a.oid, read));
        EXPECT_EQ(read.sensitivity, value);
        EXPECT_EQ(read.busyStatus, 3 - value);
    }
    store.Close();
}

// As Outlook exports a meeting: its own properties, an e-mail alarm first,
// then the display alarm a person set, then an audio alarm a day before.
const char* const kOutlookEvent =
    "BEGIN:VCALENDAR\r\nPRODID:-//Microsoft Corporation//Outlook 16.0 MIMEDIR//EN\r\nVERSION:2.0\r\n"
    "METHOD:PUBLISH\r\nX-MS-OLK-FORCEINSPECTOROPEN:TRUE\r\nBEGIN:VEVENT\r\nCLASS:PUBLIC\r\n"
    "CREATED:20260301T080000Z\r\nDTEND:20260318T100000Z\r\nDTSTAMP:20260301T080000Z\r\n"
    "DTSTART:20260318T090000Z\r\nLAST-MODIFIED:20260301T080000Z\r\nPRIORITY:5\r\nSEQUENCE:0\r\n"
    "SUMMARY;LANGUAGE=en-us:Steering board\r\nTRANSP:OPAQUE\r\nUID:outlook-1\r\n"
    "X-ALT-DESC;FMTTYPE=text/html:<html><body>Agenda</body></html>\r\n"
    "X-MICROSOFT-CDO-BUSYSTATUS:BUSY\r\nX-MICROSOFT-CDO-IMPORTANCE:1\r\nX-MICROSOFT-DISALLOW-COUNTER:"
    "FALSE\r\n"
    "X-MS-OLK-AUTOFILLLOCATION:FALSE\r\nX-MS-OLK-CONFTYPE:0\r\n"
    "BEGIN:VALARM\r\nACTION:EMAIL\r\nDESCRIPTION:Mail "
    "me\r\nSUMMARY:Board\r\nATTENDEE:mailto:me@example.org\r\n"
    "TRIGGER:-PT2H\r\nEND:VALARM\r\n"
    "BEGIN:VALARM\r\nTRIGGER:-PT15M\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nEND:VALARM\r\n"
    "BEGIN:VALARM\r\nTRIGGER:-P1D\r\nACTION:AUDIO\r\nEND:VALARM\r\n"
    "END:VEVENT\r\nEND:VCALENDAR\r\n";

TEST_F(EditorFieldsTest, OutlookEventKeepsItsPropertiesAndOtherAlarmsWhenTheReminderChanges) {
    WriteFile("calendar/outlook-1.ics", kOutlookEvent);
    PimStore store;
    ASSERT_TRUE(store.Open(OpenSource(false)));
    std::vector<PimItem> items;
    store.GetDayAppointments(2026, 3, 18, items);
    ASSERT_EQ(items.size(), 1u);
    PimRecord record;
    ASSERT_TRUE(store.Source()->GetItemFromOid(items[0].oid, record));
    EXPECT_TRUE(record.reminderSet);
    EXPECT_EQ(record.reminderMinutes, 15); // the display alarm, not the e-mail one
    EXPECT_EQ(record.busyStatus, 2);
    EXPECT_EQ(record.sensitivity, 0);

    record.subject = u"Steering board (moved)";
    record.reminderMinutes = 60;
    ASSERT_EQ(store.Source()->Save(record, kFolderCalendar), SaveResult::Saved);
    IcalComponentPtr calendar = Parsed("outlook-1");
    ASSERT_TRUE(calendar);
    icalcomponent* event = VEvent(calendar.get());
    EXPECT_EQ(Alarms(event), (std::vector<std::string>{"EMAIL -PT2H", "DISPLAY -PT1H", "AUDIO -P1D"}));
    for (const char* name : {"X-ALT-DESC", "X-MICROSOFT-CDO-IMPORTANCE", "X-MICROSOFT-DISALLOW-COUNTER",
                             "X-MS-OLK-AUTOFILLLOCATION", "X-MS-OLK-CONFTYPE"})
        EXPECT_FALSE(X(event, name).empty()) << name;
    EXPECT_EQ(X(event, "X-MICROSOFT-CDO-BUSYSTATUS"), "BUSY");
    const std::string text = ReadFile("calendar/outlook-1.ics");
    EXPECT_NE(text.find("X-MS-OLK-FORCEINSPECTOROPEN:TRUE"), std::string::npos);
    EXPECT_NE(text.find("CLASS:PUBLIC"), std::string::npos);
    EXPECT_NE(text.find("SUMMARY:Board"), std::string::npos); // inside the e-mail alarm

    // No reminder: only the editor's alarm goes.
    record.reminderSet = false;
    ASSERT_EQ(store.Source()->Save(record, kFolderCalendar), SaveResult::Saved);
    calendar = Parsed("outlook-1");
    EXPECT_EQ(Alarms(VEvent(calendar.get())), (std::vector<std::string>{"EMAIL -PT2H", "AUDIO -P1D"}));
    // The audio alarm a day before is now the first one the editor would show.
    PimRecord again;
    ASSERT_TRUE(OpenSource(false)->GetItemFromOid(record.oid, again));
    EXPECT_TRUE(again.reminderSet);
    EXPECT_EQ(again.reminderMinutes, 24 * 60);
    store.Close();
}

TEST_F(EditorFieldsTest, AnUnchangedRecordLeavesAlarmsClassAndAttachmentsAsWritten) {
    WriteFile(
        "calendar/c.ics",
        StoreFixture::Event(
            "c",
            "DTSTART:20260318T090000Z\r\nDTEND:20260318T100000Z\r\nSUMMARY:C\r\nCLASS:X-SECRET\r\n"
            "ATTACH;FMTTYPE=text/plain;ENCODING=BASE64;VALUE=BINARY:aGVsbG8=\r\n"
            "ATTACH:https://example.org/a\r\n"
            "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:x\r\nTRIGGER;RELATED=END:PT5M\r\nEND:VALARM\r\n"));
    PimStore store;
    ASSERT_TRUE(store.Open(OpenSource(false)));
    std::vector<PimItem> items;
    store.GetDayAppointments(2026, 3, 18, items);
    ASSERT_EQ(items.size(), 1u);
    PimRecord record;
    ASSERT_TRUE(store.Source()->GetItemFromOid(items[0].oid, record));
    EXPECT_FALSE(record.reminderSet); // an alarm after the end is not the editor's
    EXPECT_EQ(record.attachments, std::vector<std::u16string>{u"https://example.org/a"});
    record.subject = u"C2";
    ASSERT_EQ(store.Source()->Save(record, kFolderCalendar), SaveResult::Saved);
    const std::string text = ReadFile("calendar/c.ics");
    EXPECT_NE(text.find("CLASS:X-SECRET"), std::string::npos);
    EXPECT_NE(text.find("aGVsbG8="), std::string::npos);
    EXPECT_NE(text.find("RELATED=END"), std::string::npos);
    // Removing the listed attachment keeps the inline one.
    record.attachments.clear();
    ASSERT_EQ(store.Source()->Save(record, kFolderCalendar), SaveResult::Saved);
    const std::string after = ReadFile("calendar/c.ics");
    EXPECT_NE(after.find("aGVsbG8="), std::string::npos);
    EXPECT_EQ(after.find("example.org/a"), std::string::npos);
    store.Close();
}

TEST_F(EditorFieldsTest, ATaskReminderCountsBackFromTheDueDateAndSurvivesTheIndex) {
    // Another program's task with an alarm at its start: not the editor's reminder.
    WriteFile("tasks/theirs.ics",
              "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//test//EN\r\nBEGIN:VTODO\r\nUID:theirs\r\n"
              "SUMMARY:Theirs\r\nDTSTART;VALUE=DATE:20260316\r\nDUE;VALUE=DATE:20260318\r\n"
              "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:x\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n"
              "END:VTODO\r\nEND:VCALENDAR\r\n");
    PimRecord task;
    task.itemKind = kItemTask;
    task.subject = u"Tax return";
    task.dueDate = DateTime(2026, 3, 31).ToDate();
    task.reminderSet = true;
    task.reminderMinutes = 24 * 60;
    task.sensitivity = 3;
    {
        auto source = OpenSource(false);
        ASSERT_EQ(source->Save(task, kFolderTasks), SaveResult::Saved);
    }
    const std::string text = ReadFile("tasks/" + task.uid + ".ics");
    EXPECT_NE(text.find("TRIGGER;RELATED=END:-P1D"), std::string::npos) << text;
    EXPECT_NE(text.find("CLASS:CONFIDENTIAL"), std::string::npos) << text;
    // A task has no busy status.
    EXPECT_EQ(text.find("TRANSP"), std::string::npos) << text;
    EXPECT_EQ(text.find("BUSYSTATUS"), std::string::npos) << text;

    // Read from the files, then from the index that start left behind.
    for (int start = 0; start < 2; ++start) {
        PimStore store;
        ASSERT_TRUE(store.Open(OpenSource(true)));
        std::vector<PimItem> items;
        store.GetDayTasks(2026, 3, 31, items);
        ASSERT_EQ(items.size(), 1u) << "start " << start;
        PimRecord back;
        ASSERT_TRUE(store.Source()->GetItemFromOid(items[0].oid, back));
        EXPECT_TRUE(back.reminderSet) << "start " << start;
        EXPECT_EQ(back.reminderMinutes, 24 * 60) << "start " << start;
        EXPECT_EQ(back.sensitivity, 3) << "start " << start;
        items.clear();
        store.GetDayTasks(2026, 3, 18, items);
        ASSERT_EQ(items.size(), 1u);
        ASSERT_TRUE(store.Source()->GetItemFromOid(items[0].oid, back));
        EXPECT_FALSE(back.reminderSet) << "start " << start;
        if (start == 1) {
            // Saved with its subject changed, their alarm stays and none is added.
            back.subject = u"Theirs, edited";
            ASSERT_EQ(store.Source()->Save(back, kFolderTasks), SaveResult::Saved);
            const std::string theirs = ReadFile("tasks/theirs.ics");
            EXPECT_NE(theirs.find("TRIGGER:-PT15M"), std::string::npos) << theirs;
            EXPECT_EQ(theirs.find("RELATED=END"), std::string::npos) << theirs;
        }
        store.Close();
    }
}

} // namespace
} // namespace mirodate
