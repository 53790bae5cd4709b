// The task editor driven like a user drives it: taps on its rows and
// buttons, typed text, menu choices, the pages it opens answered through
// their observers; the files the store wrote read back by libical and
// listed by the program's own --list.
#include "forms/TaskEditor.h"
#include "data/TemplateLists.h"
#include "forms/CategoryPickerPage.h"
#include "forms/DatePickerPage.h"
#include "forms/TextEntryPage.h"
#include "forms/TimeSpanPickerPage.h"
#include "platform/TextUtil.h"
#include "skin/SkinStyles.h"
#include "store/IcalHandle.h"
#include "store/IcalText.h"
#include "tests/forms/EditorFixture.h"

#include <cstdio>
#include <filesystem>

namespace mirodate::test {
namespace {

using Row = TaskDraft::Row;
using Mode = TaskDraft::Mode;

class TaskEditorTest : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        TemplateLists::SetDirectory(dir_);
        setenv("XDG_CONFIG_HOME", (dir_ + "/config").c_str(), 1);
    }
    void TearDown() override {
        DatePickerPage::SetOpenObserver(nullptr);
        TimeSpanPickerPage::SetOpenObserver(nullptr);
        TextEntryPage::SetOpenObserver(nullptr);
        CategoryPickerPage::SetOpenObserver(nullptr);
        TemplateLists::SetDirectory("");
        task_.reset();
        EditorFixture::TearDown();
    }
    TaskEditor& OpenTask(TaskDraft draft) {
        task_ = std::make_unique<TaskEditor>(std::move(draft));
        EXPECT_TRUE(task_->Open(nullptr));
        windows_->RunUntilIdle();
        return *task_;
    }
    void TapTaskRow(Row row) { TapListRow(task_->List(), task_->RowIndex(row)); }
    void Ok() { TapWindow(task_->OkButton().GetHwnd()); }

    std::vector<std::string> TaskFiles() const {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(Root() + "/tasks"))
            if (entry.path().extension() == ".ics")
                files.push_back(entry.path().filename().string());
        std::sort(files.begin(), files.end());
        return files;
    }
    // The only task file, parsed; its VTODO in `todo`.
    IcalComponentPtr OnlyTask(icalcomponent*& todo) {
        const auto files = TaskFiles();
        EXPECT_EQ(files.size(), 1u);
        IcalComponentPtr calendar = IcalText::Parse(files.empty() ? "" : ReadFile("tasks/" + files[0]));
        todo = calendar ? icalcomponent_get_first_component(calendar.get(), ICAL_VTODO_COMPONENT) : nullptr;
        return calendar;
    }
    PimItem TaskOn(const DateTime& day) {
        std::vector<PimItem> items;
        PimStore::Instance().GetDayTasks(day.GetYear(), day.GetMonth(), day.GetDay(), items);
        if (items.size() != 1u)
            ADD_FAILURE() << items.size() << " tasks on the day";
        return items.empty() ? PimItem{} : items[0];
    }
    // What `mirodate --list FROM TO` prints for the store, or nothing when
    // the program is not built.
    std::optional<std::string> List(const std::string& from, const std::string& to) const {
        const std::string binary = std::string(MIRODATE_BINARY_DIR) + "/mirodate";
        if (!std::filesystem::exists(binary))
            return std::nullopt;
        const std::string command = "XDG_CONFIG_HOME='" + dir_ + "/config' XDG_CACHE_HOME='" + dir_ +
                                    "/cache' '" + binary + "' --store '" + Root() + "' --list " + from + " " +
                                    to + " 2>&1";
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
    static std::string Property(icalcomponent* c, icalproperty_kind kind) {
        icalproperty* p = icalcomponent_get_first_property(c, kind);
        return p ? icalproperty_get_value_as_string(p) : "";
    }
    static int Count(const std::string& text, const std::string& needle) {
        int n = 0;
        for (size_t at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1))
            ++n;
        return n;
    }

    std::unique_ptr<TaskEditor> task_;
};

TEST_F(TaskEditorTest, CreatedByTapsAndTypingIsReadBackByLibicalAndListed) {
    bool spanShown = false, dateShown = false;
    TimeSpanPickerPage::SetOpenObserver([&](TimeSpanPickerPage& page) {
        spanShown = true;
        page.SetValue(24 * 60);
        page.Accept();
    });
    DatePickerPage::SetOpenObserver([&](DatePickerPage& page) {
        dateShown = true;
        EXPECT_EQ(page.Value(), DateTime(2024, 3, 20)); // the due date, as there is no start yet
        page.SetValue(DateTime(2024, 3, 18));
        page.Accept();
    });
    CategoryPickerPage::SetOpenObserver([](CategoryPickerPage& page) {
        page.Toggle(u"Home");
        page.Accept();
    });
    OpenStore();
    TaskEditor& editor = OpenTask(TaskDraft::NewOn(DateTime(2024, 3, 20)));
    Type("Pay rent");
    TapTaskRow(Row::Priority);
    ChooseMenu(u"Priority_2");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"Priority_0", u"Priority_1", u"Priority_2"}));
    TapTaskRow(Row::Sensitivity);
    ChooseMenu(u"Sensitivity.2");
    TapTaskRow(Row::StartDate); // no start date yet: the picker opens at once
    TapTaskRow(Row::Categories);
    TapTaskRow(Row::Reminder);
    ChooseMenu(u"set_span");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"set_datetime", u"set_span"}));
    EXPECT_EQ(editor.Draft().Value(Row::Priority), u"Priority_2");
    Ok();
    ASSERT_TRUE(editor.IsClosed());
    EXPECT_TRUE(editor.WasSaved());
    EXPECT_TRUE(questions.empty());

    icalcomponent* todo = nullptr;
    IcalComponentPtr calendar = OnlyTask(todo);
    ASSERT_TRUE(todo);
    EXPECT_EQ(Property(todo, ICAL_SUMMARY_PROPERTY), "Pay rent");
    const icaltimetype due = icalcomponent_get_due(todo);
    EXPECT_TRUE(due.is_date);
    EXPECT_EQ(due.year * 10000 + due.month * 100 + due.day, 20240320);
    EXPECT_EQ(icalproperty_get_priority(icalcomponent_get_first_property(todo, ICAL_PRIORITY_PROPERTY)), 1);
    EXPECT_EQ(Property(todo, ICAL_CLASS_PROPERTY), "PRIVATE");
    EXPECT_EQ(Property(todo, ICAL_CATEGORIES_PROPERTY), "Home");
    EXPECT_EQ(Property(todo, ICAL_STATUS_PROPERTY), "NEEDS-ACTION");
    EXPECT_FALSE(icalcomponent_get_first_property(todo, ICAL_COMPLETED_PROPERTY));
    if (dateShown) {
        const icaltimetype start = icalcomponent_get_dtstart(todo);
        EXPECT_TRUE(start.is_date);
        EXPECT_EQ(start.day, 18);
    }
    if (spanShown) {
        icalcomponent* alarm = icalcomponent_get_first_component(todo, ICAL_VALARM_COMPONENT);
        ASSERT_TRUE(alarm);
        icalproperty* trigger = icalcomponent_get_first_property(alarm, ICAL_TRIGGER_PROPERTY);
        ASSERT_TRUE(trigger);
        // Relative to DUE, as RELATED=END means for a VTODO.
        icalparameter* related = icalproperty_get_first_parameter(trigger, ICAL_RELATED_PARAMETER);
        ASSERT_TRUE(related);
        EXPECT_EQ(icalparameter_get_related(related), ICAL_RELATED_END);
        EXPECT_EQ(icaldurationtype_as_int(icalproperty_get_trigger(trigger).duration), -24 * 3600);
    }
    // The store reads back what was written.
    const PimRecord back = RecordOf(TaskOn(DateTime(2024, 3, 20)).oid);
    EXPECT_EQ(back.subject, u"Pay rent");
    EXPECT_EQ(back.importance, 2);
    EXPECT_EQ(back.sensitivity, 2);
    EXPECT_EQ(back.dueDate, DateTime(2024, 3, 20).ToDate());

    const auto listed = List("2024-03-20", "2024-03-20");
    if (!listed)
        GTEST_SKIP() << "the program is not built";
    EXPECT_EQ(*listed, "2024-03-20 task [ ] Pay rent\n");
}

TEST_F(TaskEditorTest, CompletedInTheEditorIsListedAsDoneAndCanBeOpenedAgain) {
    AddTask("passport", "Renew passport", "20240320");
    OpenStore();
    TaskEditor& editor =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    EXPECT_EQ(editor.Draft().Value(Row::Complete), u"\u2610");
    TapTaskRow(Row::Complete);
    EXPECT_EQ(editor.Draft().Value(Row::Complete), u"\u2611");
    Ok();
    ASSERT_TRUE(editor.WasSaved());
    const std::string text = ReadFile("tasks/passport.ics");
    EXPECT_NE(text.find("STATUS:COMPLETED"), std::string::npos) << text;
    EXPECT_NE(text.find("COMPLETED:"), std::string::npos) << text;
    EXPECT_TRUE(TaskOn(DateTime(2024, 3, 20)).isComplete);
    if (const auto listed = List("2024-03-20", "2024-03-20")) {
        EXPECT_EQ(*listed, "2024-03-20 task [x] Renew passport\n");
    }

    // Opened again, it shows as done; a second tap takes the mark back.
    TaskEditor& again =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    EXPECT_EQ(again.Draft().Value(Row::Complete), u"\u2611");
    TapTaskRow(Row::Complete);
    Ok();
    ASSERT_TRUE(again.WasSaved());
    EXPECT_FALSE(TaskOn(DateTime(2024, 3, 20)).isComplete);
    if (const auto listed = List("2024-03-20", "2024-03-20")) {
        EXPECT_EQ(*listed, "2024-03-20 task [ ] Renew passport\n");
    }
}

TEST_F(TaskEditorTest, AnEditKeepsWhatOtherProgramsWrote) {
    WriteFile(
        "tasks/tb.ics",
        "BEGIN:VCALENDAR\r\nPRODID:-//Mozilla.org/NONSGML Mozilla Calendar V1.1//EN\r\nVERSION:2.0\r\n"
        "BEGIN:VTODO\r\nUID:tb\r\nSUMMARY:Tax return\r\nDTSTART;VALUE=DATE:20240301\r\n"
        "DUE;VALUE=DATE:20240331\r\nPRIORITY:5\r\nPERCENT-COMPLETE:40\r\nX-MOZ-GENERATION:7\r\n"
        "URL:https://example.org/tax\r\nATTACH:https://example.org/form.pdf\r\n"
        "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Due\r\nTRIGGER;RELATED=END:-PT30M\r\nEND:VALARM\r\n"
        "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Start\r\nTRIGGER;RELATED=START:PT0S\r\nEND:VALARM\r\n"
        "END:VTODO\r\nEND:VCALENDAR\r\n");
    OpenStore();
    TaskEditor& editor =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 31)).oid), Mode::Item));
    // The alarm related to the due date is the editor's; the one at the start is not.
    EXPECT_EQ(editor.Draft().Value(Row::Reminder), u"30 Minutes before");
    EXPECT_EQ(editor.Draft().Value(Row::Priority), u"Priority_1");
    editor.SubjectField().SetText(u"Tax return 2023");
    TapTaskRow(Row::Priority);
    ChooseMenu(u"Priority_0");
    Ok();
    ASSERT_TRUE(editor.WasSaved());
    const std::string text = ReadFile("tasks/tb.ics");
    for (const char* kept :
         {"SUMMARY:Tax return 2023", "PRIORITY:9", "PERCENT-COMPLETE:40", "X-MOZ-GENERATION:7",
          "URL:https://example.org/tax", "ATTACH:https://example.org/form.pdf", "TRIGGER;RELATED=END:-PT30M",
          "TRIGGER;RELATED=START:PT0S", "DTSTART;VALUE=DATE:20240301", "DUE;VALUE=DATE:20240331"})
        EXPECT_NE(text.find(kept), std::string::npos) << kept << "\n" << text;
    EXPECT_EQ(Count(text, "BEGIN:VALARM"), 2);

    // A changed lead time rewrites that alarm's trigger alone; "unset" removes only it.
    TaskEditor& second =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 31)).oid), Mode::Item));
    TapTaskRow(Row::Reminder);
    ChooseMenu(u"unset");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"change_datetime", u"change_span", u"unset"}));
    EXPECT_EQ(second.Draft().Value(Row::Reminder), u"-");
    Ok();
    ASSERT_TRUE(second.WasSaved());
    const std::string after = ReadFile("tasks/tb.ics");
    EXPECT_EQ(Count(after, "BEGIN:VALARM"), 1);
    EXPECT_NE(after.find("TRIGGER;RELATED=START:PT0S"), std::string::npos);
}

TEST_F(TaskEditorTest, CancelOnADuplicateRemovesTheCopy) {
    AddTask("orig", "Water plants", "20240320");
    OpenStore();
    PimRecord copy = RecordOf(TaskOn(DateTime(2024, 3, 20)).oid);
    copy.oid = -1;
    copy.uid.clear();
    ASSERT_EQ(PimStore::Instance().Source()->Save(copy, kFolderTasks), SaveResult::Saved);
    ASSERT_EQ(TaskFiles().size(), 2u);
    TaskEditor& editor = OpenTask(TaskDraft::ForRecord(copy, Mode::Duplicate));
    EXPECT_EQ(editor.SubjectField().GetText(), u"Water plants");
    Type(" (balcony)");
    TapWindow(editor.CancelButton().GetHwnd());
    EXPECT_TRUE(editor.IsClosed());
    EXPECT_FALSE(editor.WasSaved());
    EXPECT_EQ(TaskFiles(), std::vector<std::string>{"orig.ics"});
    EXPECT_EQ(TaskOn(DateTime(2024, 3, 20)).subject, u"Water plants");

    // OK keeps the copy with what was typed.
    PimRecord kept = RecordOf(TaskOn(DateTime(2024, 3, 20)).oid);
    kept.oid = -1;
    kept.uid.clear();
    ASSERT_EQ(PimStore::Instance().Source()->Save(kept, kFolderTasks), SaveResult::Saved);
    TaskEditor& second = OpenTask(TaskDraft::ForRecord(kept, Mode::Duplicate));
    Type(" (balcony)");
    Ok();
    EXPECT_TRUE(second.WasSaved());
    EXPECT_EQ(TaskFiles().size(), 2u);
    EXPECT_EQ(RecordOf(kept.oid).subject, u"Water plants (balcony)");
}

TEST_F(TaskEditorTest, TasksWithoutDueOrStartDateRoundTrip) {
    OpenStore();
    // A new task loses its due date through the row's menu.
    TaskEditor& editor = OpenTask(TaskDraft::NewOn(DateTime(2024, 3, 20)));
    Type("Someday");
    EXPECT_EQ(editor.Draft().Value(Row::StartDate), u"editor.NoDate");
    TapTaskRow(Row::DueDate);
    ChooseMenu(u"editor.RemoveDate");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"editor.ChangeDate", u"editor.RemoveDate"}));
    EXPECT_EQ(editor.Draft().Value(Row::DueDate), u"editor.NoDate");
    Ok();
    ASSERT_TRUE(editor.WasSaved());
    icalcomponent* todo = nullptr;
    IcalComponentPtr calendar = OnlyTask(todo);
    ASSERT_TRUE(todo);
    EXPECT_FALSE(icalcomponent_get_first_property(todo, ICAL_DUE_PROPERTY));
    EXPECT_FALSE(icalcomponent_get_first_property(todo, ICAL_DTSTART_PROPERTY));
    const std::string name = TaskFiles()[0];
    auto items = PimStore::Instance().Source()->GetDefaultFolder(kFolderTasks)->GetItems();
    ASSERT_TRUE(items);
    ASSERT_EQ(items->GetCount(), 1);
    PimRecord listed;
    ASSERT_TRUE(items->Item(0, listed));
    const std::int32_t oid = listed.oid;
    PimRecord back = RecordOf(oid);
    EXPECT_EQ(back.subject, u"Someday");
    EXPECT_EQ(back.dueDate, kNoDate);
    EXPECT_EQ(back.startDate, kNoDate);

    // Opened again it shows neither date; a start date alone is kept alone.
    TaskDraft startOnly = TaskDraft::ForRecord(back, Mode::Item);
    EXPECT_EQ(startOnly.Value(Row::DueDate), u"editor.NoDate");
    ASSERT_TRUE(startOnly.SetStartDate(DateTime(2024, 4, 2)));
    TaskEditor& second = OpenTask(startOnly);
    Ok();
    ASSERT_TRUE(second.WasSaved());
    back = RecordOf(oid);
    EXPECT_EQ(back.startDate, DateTime(2024, 4, 2).ToDate());
    EXPECT_EQ(back.dueDate, kNoDate);
    const std::string text = ReadFile("tasks/" + name);
    EXPECT_NE(text.find("DTSTART;VALUE=DATE:20240402"), std::string::npos) << text;
    EXPECT_EQ(text.find("DUE"), std::string::npos) << text;

    // The start date goes again through its menu.
    TaskEditor& third = OpenTask(TaskDraft::ForRecord(back, Mode::Item));
    TapTaskRow(Row::StartDate);
    ChooseMenu(u"editor.RemoveDate");
    Ok();
    ASSERT_TRUE(third.WasSaved());
    EXPECT_EQ(RecordOf(oid).startDate, kNoDate);
    EXPECT_EQ(ReadFile("tasks/" + name).find("DTSTART"), std::string::npos);
}

TEST_F(TaskEditorTest, BadInputIsCutOrRefusedWithAMessage) {
    OpenStore();
    TaskEditor& editor = OpenTask(TaskDraft::NewOn(DateTime(2024, 3, 20)));
    // A pasted page of text becomes a subject line of the field's limit, and is saved so.
    Type(std::string(100000, 'x'));
    EXPECT_EQ(editor.SubjectField().GetText().size(), AppointmentDraft::kMaxLineText);
    Ok();
    ASSERT_TRUE(editor.WasSaved());
    EXPECT_EQ(RecordOf(TaskOn(DateTime(2024, 3, 20)).oid).subject,
              std::u16string(AppointmentDraft::kMaxLineText, u'x'));

    // Due before the start: refused on OK, nothing written.
    std::filesystem::remove(Root() + "/tasks/" + TaskFiles()[0]);
    TaskDraft early = TaskDraft::NewOn(DateTime(2024, 3, 20));
    ASSERT_TRUE(early.SetStartDate(DateTime(2024, 3, 22)));
    TaskEditor& refused = OpenTask(early);
    Type("Backwards");
    Ok();
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.DueBeforeStart"});
    EXPECT_FALSE(refused.IsClosed());
    EXPECT_TRUE(TaskFiles().empty());
    // Taking the start date away makes it acceptable.
    TapTaskRow(Row::StartDate);
    ChooseMenu(u"editor.RemoveDate");
    Ok();
    EXPECT_TRUE(refused.WasSaved());
    EXPECT_EQ(TaskFiles().size(), 1u);

    // Without a due date there is nothing to count a reminder back from.
    questions.clear();
    TaskDraft undated = TaskDraft::NewOn(DateTime(2024, 3, 20));
    undated.SetDueDate(std::nullopt);
    OpenTask(undated);
    TapTaskRow(Row::Reminder);
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.ReminderNeedsDue"});
    // Nor is a reminder kept when the due date goes after it was set.
    TaskDraft reminded = TaskDraft::NewOn(DateTime(2024, 3, 20));
    reminded.SetReminder(true, 60);
    reminded.SetDueDate(std::nullopt);
    TaskEditor& lost = OpenTask(reminded);
    Ok();
    EXPECT_EQ(questions.back(), u"editor.ReminderNeedsDue");
    EXPECT_FALSE(lost.IsClosed());

    // Days outside the years the editors accept are not taken.
    TaskDraft draft = TaskDraft::NewOn(DateTime(2024, 3, 20));
    EXPECT_FALSE(draft.SetDueDate(DateTime(2101, 1, 1)));
    EXPECT_FALSE(draft.SetStartDate(DateTime(1899, 12, 31)));
    EXPECT_EQ(draft.Record().dueDate, DateTime(2024, 3, 20).ToDate());
    EXPECT_EQ(draft.Record().startDate, kNoDate);
    // A reminder moment after the due date is refused; one at it is "Immediately".
    const DateTime due(draft.Record().dueDate);
    EXPECT_FALSE(draft.SetReminderMoment(due + DateTimeSpan(0, 0, 1, 0)));
    EXPECT_FALSE(draft.Record().reminderSet);
    ASSERT_TRUE(draft.SetReminderMoment(due - DateTimeSpan(1, 0, 0, 30)));
    EXPECT_EQ(draft.Record().reminderMinutes, 24 * 60);
    ASSERT_TRUE(draft.SetReminderMoment(due));
    EXPECT_EQ(draft.Value(Row::Reminder), u"Immediately");
}

TEST_F(TaskEditorTest, AFileChangedOrDeletedMeanwhileIsNotOverwritten) {
    AddTask("car", "Car service", "20240320");
    OpenStore();
    TaskEditor& editor =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    Type("Book ");
    AddTask("car", "Car service (theirs)", "20240321", "X-THEIRS:1\r\n");
    const std::string theirs = ReadFile("tasks/car.ics");
    answers = {2}; // no reload
    Ok();
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.TaskChangedOnDisk"});
    EXPECT_FALSE(editor.IsClosed());
    EXPECT_EQ(ReadFile("tasks/car.ics"), theirs);
    answers = {1}; // reload
    Ok();
    EXPECT_EQ(ReadFile("tasks/car.ics"), theirs);
    EXPECT_EQ(editor.SubjectField().GetText(), u"Car service (theirs)");
    EXPECT_EQ(editor.Draft().Record().dueDate, DateTime(2024, 3, 21).ToDate());
    editor.SubjectField().SetText(u"Car service (booked)");
    Ok();
    ASSERT_TRUE(editor.WasSaved());
    const std::string merged = ReadFile("tasks/car.ics");
    EXPECT_NE(merged.find("SUMMARY:Car service (booked)"), std::string::npos);
    EXPECT_NE(merged.find("X-THEIRS:1"), std::string::npos);

    // Deleted meanwhile: written again only when the user chooses so.
    TaskEditor& second =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 21)).oid), Mode::Item));
    Type("!");
    std::filesystem::remove(Root() + "/tasks/car.ics");
    questions.clear();
    answers = {3}; // back to the editor
    Ok();
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.TaskDeleted"});
    EXPECT_TRUE(TaskFiles().empty());
    EXPECT_FALSE(second.IsClosed());
    answers = {1}; // save as new
    Ok();
    EXPECT_TRUE(second.WasSaved());
    ASSERT_EQ(TaskFiles().size(), 1u);
    EXPECT_EQ(TaskOn(DateTime(2024, 3, 21)).subject, u"Car service (booked)!");
}

TEST_F(TaskEditorTest, TheEndOfARepeatingTaskIsChosenFromTheRecurrenceRow) {
    AddTask("water", "Water plants", "20240304",
            "DTSTART;VALUE=DATE:20240304\r\nRRULE:FREQ=WEEKLY;COUNT=5\r\n");
    // The count page is answered by typing over its text and Enter, as a user does.
    std::deque<std::string> counts = {"0", "12"};
    std::vector<std::u16string> offered;
    TextEntryPage::SetOpenObserver([&](TextEntryPage& page) {
        offered.push_back(page.Field().GetText());
        page.Field().SetSelection(0, static_cast<int>(page.Field().GetText().size()));
        DisplayEvent text;
        text.type = DisplayEvent::Type::Text;
        text.text = counts.front();
        counts.pop_front();
        display_->Inject(text);
        DisplayEvent enter;
        enter.type = DisplayEvent::Type::KeyDown;
        enter.key = VK_RETURN;
        display_->Inject(enter);
        enter.type = DisplayEvent::Type::KeyUp;
        display_->Inject(enter);
    });
    OpenStore();
    TaskEditor& editor =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 4)).oid), Mode::Item));
    ASSERT_TRUE(editor.Draft().Record().isRecurring);
    EXPECT_EQ(editor.Draft().Record().recurrence.Occurrences, 5);
    // A count of 0 is refused with a message and changes nothing.
    TapTaskRow(Row::Recurrence);
    ChooseMenu(u"SetOccurrences");
    EXPECT_EQ(menuTexts, (std::vector<std::u16string>{u"addmodify.EditPattern", u"SetOccurrences",
                                                      u"SetPatternEndDate", u"SetNoEndDate"}));
    EXPECT_EQ(questions, std::vector<std::u16string>{u"editor.BadCount"});
    EXPECT_EQ(editor.Draft().Record().recurrence.Occurrences, 5);
    TapTaskRow(Row::Recurrence);
    ChooseMenu(u"SetOccurrences");
    EXPECT_EQ(offered, (std::vector<std::u16string>{u"5", u"5"}));
    EXPECT_EQ(editor.Draft().Record().recurrence.Occurrences, 12);
    Ok();
    ASSERT_TRUE(editor.WasSaved());
    std::string text = ReadFile("tasks/water.ics");
    EXPECT_NE(text.find("COUNT=12"), std::string::npos) << text;
    EXPECT_NE(text.find("FREQ=WEEKLY"), std::string::npos) << text;

    // "SetNoEndDate" lets it repeat for ever.
    TaskEditor& again =
        OpenTask(TaskDraft::ForRecord(RecordOf(TaskOn(DateTime(2024, 3, 4)).oid), Mode::Item));
    TapTaskRow(Row::Recurrence);
    ChooseMenu(u"SetNoEndDate");
    Ok();
    ASSERT_TRUE(again.WasSaved());
    text = ReadFile("tasks/water.ics");
    EXPECT_NE(text.find("RRULE:FREQ=WEEKLY"), std::string::npos) << text;
    EXPECT_EQ(text.find("COUNT="), std::string::npos) << text;
    EXPECT_EQ(text.find("UNTIL="), std::string::npos) << text;
}

TEST_F(TaskEditorTest, RowsArePaintedInTheFormColoursAndFitBothScreens) {
    OpenStore();
    for (auto [width, height] : {std::pair{480, 640}, std::pair{240, 320}}) {
        task_.reset();
        UiTest::Open(width, height);
        TaskEditor& editor = OpenTask(TaskDraft::NewOn(DateTime(2024, 3, 20)));
        const AddModifyFormStyle& style = SkinStyles::Current().addModifyForm;
        RECT list;
        GetWindowRect(editor.List().GetHwnd(), &list);
        const int first = editor.RowIndex(Row::StartDate), second = editor.RowIndex(Row::DueDate);
        EXPECT_EQ(FramePixel(1, list.top + editor.List().Scroller().ItemTop(first) + 3), style.colorBg);
        EXPECT_EQ(FramePixel(1, list.top + editor.List().Scroller().ItemTop(second) + 3), style.colorBg2);
        for (int i = 0; i < editor.List().ItemCount(); ++i)
            EXPECT_GE(editor.List().Item(i)->Height(), width / 240 * 28);
        RECT ok, templates;
        GetWindowRect(editor.OkButton().GetHwnd(), &ok);
        GetWindowRect(editor.TemplatesButton().GetHwnd(), &templates);
        EXPECT_LE(ok.bottom, height);
        EXPECT_GE(ok.bottom - ok.top, width / 240 * 26);
        EXPECT_LE(templates.right, width);
        // Every row but the subject is in the list.
        EXPECT_EQ(editor.List().ItemCount(), static_cast<int>(std::size(TaskDraft::kRows)) - 1);
    }
}

} // namespace
} // namespace mirodate::test
