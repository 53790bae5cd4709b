// The appointment editor driven like a user drives it: taps on its rows and
// buttons, typed text, menu choices, the pages it opens answered through
// their observers; the files the store wrote read back by libical and khal.
#include "data/TemplateLists.h"
#include "forms/AttendeeDialog.h"
#include "forms/CategoryPickerPage.h"
#include "forms/DatePickerPage.h"
#include "forms/DateTimePickerPage.h"
#include "forms/TextEntryPage.h"
#include "forms/TimeSpanPickerPage.h"
#include "platform/TextUtil.h"
#include "skin/SkinStyles.h"
#include "store/IcalHandle.h"
#include "store/IcalText.h"
#include "tests/forms/EditorFixture.h"

#include <cstdio>
#include <deque>
#include <filesystem>

namespace mirodate::test {
namespace {

using Row = AppointmentDraft::Row;
using Mode = AppointmentDraft::Mode;

class AppointmentEditorTest : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        TemplateLists::SetDirectory(dir_);
    }
    void TearDown() override {
        for (auto clear : {+[] { TimeSpanPickerPage::SetOpenObserver(nullptr); },
                           +[] { DateTimePickerPage::SetOpenObserver(nullptr); },
                           +[] { CategoryPickerPage::SetOpenObserver(nullptr); },
                           +[] { AttendeeDialog::SetOpenObserver(nullptr); },
                           +[] { DatePickerPage::SetOpenObserver(nullptr); },
                           +[] { TextEntryPage::SetOpenObserver(nullptr); }})
            clear();
        TemplateLists::SetDirectory("");
        EditorFixture::TearDown();
    }
    std::vector<std::string> CalendarFiles() const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(Root() + "/calendar"))
            if (entry.path().extension() == ".ics")
                files.push_back(entry.path().filename().string());
        return files;
    }
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
    static std::string Property(icalcomponent* event, icalproperty_kind kind) {
        icalproperty* p = icalcomponent_get_first_property(event, kind);
        return p ? icalproperty_get_value_as_string(p) : "";
    }
    static std::string X(icalcomponent* event, const char* name) {
        for (icalproperty* p = icalcomponent_get_first_property(event, ICAL_X_PROPERTY); p;
             p = icalcomponent_get_next_property(event, ICAL_X_PROPERTY))
            if (std::string(icalproperty_get_x_name(p)) == name)
                return icalproperty_get_x(p);
        return "";
    }
    std::string LocationsFile() const {
        std::ifstream file(dir_ + "/MDLocations.txt", std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        std::u16string text;
        for (size_t i = 2; i + 1 < bytes.size(); i += 2)
            text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                          (static_cast<unsigned char>(bytes[i + 1]) << 8));
        return Utf16ToUtf8(text);
    }
    static int Count(const std::string& text, const std::string& needle) {
        int n = 0;
        for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1))
            ++n;
        return n;
    }
};

TEST_F(AppointmentEditorTest, CreatedByTapsAndTypingIsReadBackByLibicalAndKhal) {
    bool spanPageShown = false;
    TimeSpanPickerPage::SetOpenObserver([&](TimeSpanPickerPage& page) {
        spanPageShown = true;
        page.SetValue(30);
        page.Accept();
    });
    CategoryPickerPage::SetOpenObserver([](CategoryPickerPage& page) {
        page.Toggle(u"Health");
        page.Accept();
    });
    AttendeeDialog::SetOpenObserver([](AttendeeDialog& page) {
        EXPECT_FALSE(page.Add(u"weiss.example.org")); // refused with a message
        EXPECT_TRUE(page.Add(u"Dr. Weiss <weiss@example.org>"));
        page.Accept();
    });
    OpenStore();
    AppointmentEditor& editor = Open(AppointmentDraft::NewOn(DateTime(2024, 3, 20), DateTime::Now()));
    Type("Dentist");
    TapWindow(editor.LocationField().GetHwnd());
    Type("Praxis Weiss");
    TapRow(Row::BusyStatus);
    ChooseMenu(u"BusyStatus.3");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"BusyStatus.0", u"BusyStatus.1", u"BusyStatus.2",
                                                      u"BusyStatus.3"}));
    TapRow(Row::Sensitivity);
    ChooseMenu(u"Sensitivity.2");
    TapRow(Row::Reminder);
    ChooseMenu(u"set_span");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"set_datetime", u"set_span"}));
    TapRow(Row::Categories);
    TapRow(Row::Attendees);
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.BadAddress"});
    answers = {1}; // yes, tell the attendees
    TapWindow(editor.OkButton().GetHwnd());
    ASSERT_TRUE(editor.IsClosed());
    EXPECT_TRUE(editor.WasSaved());
    EXPECT_EQ(questions.back(), u"QuestionNotifyAttendees");
    ASSERT_EQ(services_->Programs().size(), 1u);
    const auto& mail = services_->Programs()[0];
    EXPECT_EQ(mail[0], "xdg-email");
    EXPECT_EQ(mail[2], "Dentist");
    EXPECT_NE(mail[4].find("Praxis Weiss"), std::string::npos);
    EXPECT_EQ(mail.back(), "weiss@example.org");

    const auto files = CalendarFiles();
    ASSERT_EQ(files.size(), 1u);
    IcalComponentPtr calendar = IcalText::Parse(ReadFile("calendar/" + files[0]));
    ASSERT_TRUE(calendar);
    icalcomponent* event = icalcomponent_get_first_component(calendar.get(), ICAL_VEVENT_COMPONENT);
    ASSERT_TRUE(event);
    EXPECT_EQ(Property(event, ICAL_SUMMARY_PROPERTY), "Dentist");
    EXPECT_EQ(Property(event, ICAL_LOCATION_PROPERTY), "Praxis Weiss");
    EXPECT_EQ(Property(event, ICAL_CLASS_PROPERTY), "PRIVATE");
    EXPECT_EQ(Property(event, ICAL_CATEGORIES_PROPERTY), "Health");
    EXPECT_EQ(X(event, "X-MICROSOFT-CDO-BUSYSTATUS"), "OOF");
    EXPECT_EQ(Property(event, ICAL_ATTENDEE_PROPERTY), "mailto:weiss@example.org");
    const icaltimetype start = icalcomponent_get_dtstart(event);
    EXPECT_EQ(start.hour, 10);
    EXPECT_EQ(start.day, 20);
    if (spanPageShown) {
        icalcomponent* alarm = icalcomponent_get_first_component(event, ICAL_VALARM_COMPONENT);
        ASSERT_TRUE(alarm);
        EXPECT_EQ(Property(alarm, ICAL_TRIGGER_PROPERTY), "-PT30M");
    }
    // Every location typed into a saved appointment is known once.
    EXPECT_EQ(Count(LocationsFile(), "Praxis Weiss\r\n"), 1);
    Open(AppointmentDraft::NewOn(DateTime(2024, 3, 21), DateTime::Now()));
    Type("Check-up");
    editor_->LocationField().SetText(u"Praxis Weiss");
    TapWindow(editor_->OkButton().GetHwnd());
    EXPECT_EQ(Count(LocationsFile(), "Praxis Weiss\r\n"), 1);

    // khal lists what was entered.
    if (Run("command -v khal").empty())
        GTEST_SKIP() << "khal is not installed";
    std::ofstream(dir_ + "/khal.conf")
        << "[calendars]\n[[mirodate]]\npath = " << Root()
        << "/calendar\ntype = calendar\n[locale]\nlocal_timezone = UTC\n"
        << "default_timezone = UTC\ntimeformat = %H:%M\ndateformat = %Y-%m-%d\n"
        << "longdateformat = %Y-%m-%d\ndatetimeformat = %Y-%m-%d %H:%M\n"
        << "longdatetimeformat = %Y-%m-%d %H:%M\n[sqlite]\npath = " << dir_ << "/khal.db\n";
    const std::string out =
        Run("TZ=UTC LANG=C.UTF-8 HOME='" + dir_ + "' XDG_CONFIG_HOME='" + dir_ + "/config' khal -c '" + dir_ +
            "/khal.conf' list --format '{start-time}-{end-time} {title} @ {location}' "
            "--day-format 'DAY {date}' 2024-03-20 2024-03-21 2>&1");
    EXPECT_NE(out.find("DAY 2024-03-20\n10:00-10:15 Dentist @ Praxis Weiss"), std::string::npos) << out;
    EXPECT_NE(out.find("Check-up"), std::string::npos) << out;
}

TEST_F(AppointmentEditorTest, SingleEditOfAWeeklySeriesChangesThatWeekOnly) {
    AddTimed("yoga", "Yoga", "20240304T180000Z", "20240304T190000Z", "RRULE:FREQ=WEEKLY;COUNT=6\r\n");
    OpenStore();
    const PimItem third = ItemOn(DateTime(2024, 3, 18));
    ASSERT_TRUE(third.isRecurring);
    const std::string before = ReadFile("calendar/yoga.ics");
    AppointmentEditor& editor = Open(
        AppointmentDraft::ForRecord(RecordOf(third.oid), Mode::Occurrence, third.startValue, third.endValue));
    EXPECT_EQ(editor.Draft().Value(Row::Recurrence), u"editor.SingleOccurrence");
    editor.SubjectField().SetSelection(0, 4);
    Type("Yoga in room 2");
    TapWindow(editor.OkButton().GetHwnd());
    ASSERT_TRUE(editor.WasSaved());
    for (int day : {4, 11, 25})
        EXPECT_EQ(ItemOn(DateTime(2024, 3, day)).subject, u"Yoga") << day;
    const PimItem moved = ItemOn(DateTime(2024, 3, 18));
    EXPECT_EQ(moved.subject, u"Yoga in room 2");
    EXPECT_EQ(moved.start.wHour, 18);
    const std::string after = ReadFile("calendar/yoga.ics");
    EXPECT_NE(after.find("RECURRENCE-ID"), std::string::npos);
    EXPECT_NE(after.find("RRULE:FREQ=WEEKLY;COUNT=6"), std::string::npos);
    EXPECT_EQ(Count(after, "SUMMARY:Yoga\r\n"), 1); // the series' own subject is unchanged
}

TEST_F(AppointmentEditorTest, ReminderByMomentTruncatesToWholeMinutesAndRefusesMomentsAfterTheStart) {
    OpenStore();
    AppointmentDraft draft = AppointmentDraft::NewOn(DateTime(2024, 3, 20), DateTime::Now());
    const DateTime start(draft.Record().start);
    ASSERT_TRUE(draft.SetReminderMoment(start - DateTimeSpan(0, 0, 1, 30)));
    EXPECT_EQ(draft.Record().reminderMinutes, 1);
    ASSERT_TRUE(draft.SetReminderMoment(start));
    EXPECT_EQ(draft.Value(Row::Reminder), u"Immediately");
    EXPECT_FALSE(draft.SetReminderMoment(start + DateTimeSpan(0, 0, 1, 0)));
    EXPECT_TRUE(draft.Record().reminderSet);
    EXPECT_EQ(draft.Record().reminderMinutes, 0);

    // Through the editor's row, menu and picker page.
    int shown = 0;
    DateTime offered;
    DateTimePickerPage::SetOpenObserver([&](DateTimePickerPage& page) {
        offered = page.Value();
        page.SetValue(++shown == 1 ? start - DateTimeSpan(0, 0, 1, 30) : start + DateTimeSpan(0, 0, 1, 0));
        page.Accept();
    });
    AppointmentEditor& editor = Open(AppointmentDraft::NewOn(DateTime(2024, 3, 20), DateTime::Now()));
    TapRow(Row::Reminder);
    ChooseMenu(u"set_datetime");
    if (shown == 0)
        GTEST_SKIP() << "the date-and-time picker page is not built yet";
    EXPECT_EQ(offered, start);
    EXPECT_EQ(editor.Draft().Record().reminderMinutes, 1);
    TapRow(Row::Reminder);
    ChooseMenu(u"change_datetime");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"change_datetime", u"change_span", u"unset"}));
    EXPECT_EQ(questions, std::vector<std::u16string>{u"ReminderInvalid"});
    EXPECT_EQ(editor.Draft().Record().reminderMinutes, 1);
}

TEST_F(AppointmentEditorTest, CancelOnADuplicateRemovesTheCopy) {
    AddTimed("orig", "Team lunch", "20240320T120000Z", "20240320T130000Z");
    OpenStore();
    PimRecord copy = RecordOf(ItemOn(DateTime(2024, 3, 20)).oid);
    copy.oid = -1;
    copy.uid.clear();
    ASSERT_EQ(PimStore::Instance().Source()->Save(copy, kFolderCalendar), SaveResult::Saved);
    ASSERT_EQ(CalendarFiles().size(), 2u);
    AppointmentEditor& editor = Open(AppointmentDraft::ForRecord(copy, Mode::Duplicate));
    Type(" (copy)");
    TapWindow(editor.CancelButton().GetHwnd());
    EXPECT_TRUE(editor.IsClosed());
    EXPECT_EQ(CalendarFiles(), std::vector<std::string>{"orig.ics"});
    std::vector<PimItem> items;
    PimStore::Instance().GetDayAppointments(2024, 3, 20, items);
    EXPECT_EQ(items.size(), 1u);
}

TEST_F(AppointmentEditorTest, AFileChangedOnDiskIsNotOverwrittenAndCanBeReloaded) {
    AddTimed("board", "Board meeting", "20240320T090000Z", "20240320T100000Z");
    OpenStore();
    AppointmentEditor& editor =
        Open(AppointmentDraft::ForRecord(RecordOf(ItemOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    Type("Mine: ");
    // Another program rewrites the file meanwhile.
    AddTimed("board", "Board meeting (theirs)", "20240320T090000Z", "20240320T103000Z", "X-THEIRS:1\r\n");
    const std::string theirs = ReadFile("calendar/board.ics");
    answers = {2}; // no reload
    TapWindow(editor.OkButton().GetHwnd());
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.ChangedOnDisk"});
    EXPECT_FALSE(editor.IsClosed());
    EXPECT_EQ(ReadFile("calendar/board.ics"), theirs);
    answers = {1}; // reload
    TapWindow(editor.OkButton().GetHwnd());
    EXPECT_EQ(ReadFile("calendar/board.ics"), theirs);
    EXPECT_EQ(questions, (std::vector<std::u16string>{u"editor.ChangedOnDisk", u"editor.ChangedOnDisk"}));
    EXPECT_EQ(editor.SubjectField().GetText(), u"Board meeting (theirs)");
    // Saved on top of what is there now, their property kept.
    editor.SubjectField().SetText(u"Board meeting (agreed)");
    TapWindow(editor.OkButton().GetHwnd());
    EXPECT_TRUE(editor.WasSaved());
    const std::string merged = ReadFile("calendar/board.ics");
    EXPECT_NE(merged.find("SUMMARY:Board meeting (agreed)"), std::string::npos);
    EXPECT_NE(merged.find("X-THEIRS:1"), std::string::npos);
}

TEST_F(AppointmentEditorTest, AFileDeletedMeanwhileIsWrittenAgainOnlyWhenTheUserChooses) {
    AddTimed("gone", "Vanishing", "20240320T090000Z", "20240320T100000Z");
    OpenStore();
    AppointmentEditor& editor =
        Open(AppointmentDraft::ForRecord(RecordOf(ItemOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    Type(" (moved)");
    std::filesystem::remove(Root() + "/calendar/gone.ics");
    answers = {3}; // cancel: back to the editor
    TapWindow(editor.OkButton().GetHwnd());
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.ItemDeleted"});
    EXPECT_TRUE(CalendarFiles().empty());
    EXPECT_FALSE(editor.IsClosed());
    answers = {1}; // save as new
    TapWindow(editor.OkButton().GetHwnd());
    EXPECT_TRUE(editor.WasSaved());
    ASSERT_EQ(CalendarFiles().size(), 1u);
    EXPECT_EQ(ItemOn(DateTime(2024, 3, 20)).subject, u"Vanishing (moved)");

    // Discard closes without writing.
    const std::string file = CalendarFiles()[0];
    AppointmentEditor& second =
        Open(AppointmentDraft::ForRecord(RecordOf(ItemOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    Type("!");
    std::filesystem::remove(Root() + "/calendar/" + file);
    answers = {2};
    TapWindow(second.OkButton().GetHwnd());
    EXPECT_TRUE(second.IsClosed());
    EXPECT_FALSE(second.WasSaved());
    EXPECT_TRUE(CalendarFiles().empty());
}

TEST_F(AppointmentEditorTest, BadInputIsCutOrRefusedWithAMessage) {
    OpenStore();
    AppointmentEditor& editor = Open(AppointmentDraft::NewOn(DateTime(2024, 3, 20), DateTime::Now()));
    // A pasted page of text becomes a subject line of the field's limit.
    Type(std::string(100000, 'x'));
    EXPECT_EQ(editor.SubjectField().GetText().size(), AppointmentDraft::kMaxLineText);
    // Dates outside 1900..2100 are not taken.
    AppointmentDraft draft = editor.Draft();
    EXPECT_FALSE(draft.SetStart(DateTime(1899, 12, 31, 10, 0, 0)));
    EXPECT_FALSE(draft.SetEnd(DateTime(2101, 1, 1, 10, 0, 0)));
    EXPECT_EQ(draft.Record().start, editor.Draft().Record().start);
    // An end before the start is refused on OK, and nothing is written.
    std::vector<PimItem> none;
    AppointmentEditor& early = Open([] {
        AppointmentDraft d = AppointmentDraft::NewOn(DateTime(2024, 3, 20), DateTime::Now());
        d.SetEnd(DateTime(2024, 3, 20, 8, 0, 0));
        return d;
    }());
    TapWindow(early.OkButton().GetHwnd());
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.EndBeforeStart"});
    EXPECT_FALSE(early.IsClosed());
    EXPECT_TRUE(CalendarFiles().empty());
}

TEST_F(AppointmentEditorTest, ASeriesWhoseRuleThePatternCannotSayKeepsItsRule) {
    AddTimed("odd", "Shift", "20240304T060000Z", "20240304T140000Z",
             "RRULE:FREQ=HOURLY;INTERVAL=12;COUNT=6\r\n");
    OpenStore();
    PimRecord record;
    std::vector<PimItem> items;
    PimStore::Instance().QueryAppointments(2024, 3, 1, 2024, 4, 30, items);
    ASSERT_FALSE(items.empty());
    record = RecordOf(items[0].oid);
    AppointmentEditor& editor = Open(AppointmentDraft::ForRecord(record, Mode::Item));
    const std::u16string row = editor.Draft().Value(Row::Recurrence);
    EXPECT_NE(row.find(u"editor.RuleKept"), std::u16string::npos) << Utf16ToUtf8(row);
    TapRow(Row::Recurrence);
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.RuleKept"});
    editor.SubjectField().SetText(u"Late shift");
    TapWindow(editor.OkButton().GetHwnd());
    ASSERT_TRUE(editor.WasSaved());
    const std::string text = ReadFile("calendar/odd.ics");
    EXPECT_NE(text.find("SUMMARY:Late shift"), std::string::npos);
    // The rule says the same as before (libical may order its parts anew).
    for (const char* part : {"RRULE:FREQ=HOURLY", "INTERVAL=12", "COUNT=6"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
}

TEST_F(AppointmentEditorTest, TheEndOfASeriesIsChosenFromTheRecurrenceRow) {
    AddTimed("run", "Run", "20240304T060000Z", "20240304T070000Z", "RRULE:FREQ=WEEKLY;COUNT=5\r\n");
    OpenStore();
    const auto key = [this](std::uint32_t code) {
        DisplayEvent event;
        event.type = DisplayEvent::Type::KeyDown;
        event.key = code;
        display_->Inject(event);
        event.type = DisplayEvent::Type::KeyUp;
        display_->Inject(event);
    };
    // The count page is answered by typing over its text and Enter.
    std::deque<std::string> counts = {"0", "8"};
    TextEntryPage::SetOpenObserver([&](TextEntryPage& page) {
        page.Field().SetSelection(0, static_cast<int>(page.Field().GetText().size()));
        DisplayEvent text;
        text.type = DisplayEvent::Type::Text;
        text.text = counts.front();
        counts.pop_front();
        display_->Inject(text);
        key(VK_RETURN);
    });
    AppointmentEditor& editor =
        Open(AppointmentDraft::ForRecord(RecordOf(ItemOn(DateTime(2024, 3, 4)).oid), Mode::Item));
    // A count of 0 is refused with a message and changes nothing.
    TapRow(Row::Recurrence);
    ChooseMenu(u"SetOccurrences");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"addmodify.EditPattern", u"SetOccurrences",
                                                      u"SetPatternEndDate", u"SetNoEndDate"}));
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.BadCount"});
    EXPECT_EQ(editor.Draft().Record().recurrence.Occurrences, 5);
    TapRow(Row::Recurrence);
    ChooseMenu(u"SetOccurrences");
    EXPECT_EQ(editor.Draft().Record().recurrence.Occurrences, 8);

    // The date picker starts on the first day; the day before it is refused,
    // the day after it ends the series.
    DatePickerPage::SetOpenObserver([&](DatePickerPage&) {
        key(VK_LEFT);
        key(VK_RETURN);
    });
    TapRow(Row::Recurrence);
    ChooseMenu(u"SetPatternEndDate");
    EXPECT_EQ(questions.back(), u"editor.EndBeforeStart");
    EXPECT_EQ(editor.Draft().Record().recurrence.Occurrences, 8);
    DatePickerPage::SetOpenObserver([&](DatePickerPage&) {
        for (int i = 0; i < 14; ++i)
            key(VK_RIGHT);
        key(VK_RETURN);
    });
    TapRow(Row::Recurrence);
    ChooseMenu(u"SetPatternEndDate");
    EXPECT_EQ(editor.Draft().Record().recurrence.Occurrences, 0);
    EXPECT_EQ(editor.Draft().Record().recurrence.PatternEndDate, DateTime(2024, 3, 18).ToDate());
    TapWindow(editor.OkButton().GetHwnd());
    ASSERT_TRUE(editor.WasSaved());
    for (int day : {4, 11, 18})
        EXPECT_EQ(ItemOn(DateTime(2024, 3, day)).subject, u"Run") << day;
    std::vector<PimItem> after;
    PimStore::Instance().GetDayAppointments(2024, 3, 25, after);
    EXPECT_TRUE(after.empty());
    EXPECT_NE(ReadFile("calendar/run.ics").find("UNTIL="), std::string::npos);
}

TEST_F(AppointmentEditorTest, OutlookEventEditedThroughTheEditorKeepsWhatWeDoNotOwn) {
    WriteFile(
        "calendar/ol.ics",
        "BEGIN:VCALENDAR\r\nPRODID:-//Microsoft Corporation//Outlook 16.0 MIMEDIR//EN\r\nVERSION:2.0\r\n"
        "BEGIN:VEVENT\r\nUID:ol\r\nDTSTART:20240320T090000Z\r\nDTEND:20240320T100000Z\r\n"
        "SUMMARY:Steering\r\nX-MICROSOFT-CDO-BUSYSTATUS:BUSY\r\nX-MS-OLK-CONFTYPE:0\r\n"
        "X-ALT-DESC;FMTTYPE=text/html:<p>x</p>\r\n"
        "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:R\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\n"
        "BEGIN:VALARM\r\nACTION:AUDIO\r\nTRIGGER:-P1D\r\nEND:VALARM\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
    OpenStore();
    AppointmentEditor& editor =
        Open(AppointmentDraft::ForRecord(RecordOf(ItemOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    EXPECT_EQ(editor.Draft().Value(Row::Reminder), u"15 Minutes before");
    TapRow(Row::BusyStatus);
    ChooseMenu(u"BusyStatus.1");
    TapWindow(editor.OkButton().GetHwnd());
    ASSERT_TRUE(editor.WasSaved());
    const std::string text = ReadFile("calendar/ol.ics");
    for (const char* kept : {"X-MS-OLK-CONFTYPE:0", "X-ALT-DESC", "TRIGGER:-PT15M", "TRIGGER:-P1D",
                             "X-MICROSOFT-CDO-BUSYSTATUS:TENTATIVE"})
        EXPECT_NE(text.find(kept), std::string::npos) << kept;
    EXPECT_EQ(Count(text, "BEGIN:VALARM"), 2);
}

TEST_F(AppointmentEditorTest, RowsArePaintedInTheFormColoursAndFitBothScreens) {
    OpenStore();
    for (auto [width, height] : {std::pair{480, 640}, std::pair{240, 320}}) {
        editor_.reset();
        UiTest::Open(width, height);
        AppointmentEditor& editor = Open(AppointmentDraft::NewOn(DateTime(2024, 3, 20), DateTime::Now()));
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        RECT list;
        GetWindowRect(editor.List().GetHwnd(), &list);
        const int first = editor.RowIndex(Row::Start), second = editor.RowIndex(Row::End);
        // Left of the labels: the row's own background, alternating.
        EXPECT_EQ(FramePixel(1, list.top + editor.List().Scroller().ItemTop(first) + 3), style.colorBg);
        EXPECT_EQ(FramePixel(1, list.top + editor.List().Scroller().ItemTop(second) + 3), style.colorBg2);
        // Finger-sized rows; the two-line rows are taller.
        for (int i = 0; i < editor.List().ItemCount(); ++i)
            EXPECT_GE(editor.List().Item(i)->Height(), width / 240 * 28);
        EXPECT_GT(editor.List().Item(editor.RowIndex(Row::Reminder))->Height(),
                  editor.List().Item(first)->Height());
        RECT ok;
        GetWindowRect(editor.OkButton().GetHwnd(), &ok);
        EXPECT_LE(ok.bottom, height);
        EXPECT_GE(ok.bottom - ok.top, width / 240 * 26);
    }
}

} // namespace
} // namespace mirodate::test
