#include "forms/TaskEditor.h"

#include "data/EditorTexts.h"
#include "data/PimStore.h"
#include "data/TemplateLists.h"
#include "forms/AppointmentDraft.h"
#include "forms/CategoryPickerPage.h"
#include "forms/DatePickerPage.h"
#include "forms/DateTimePickerPage.h"
#include "forms/RecurrenceEditorPage.h"
#include "forms/RecurrenceEndChoice.h"
#include "forms/ReminderChoice.h"
#include "forms/TaskSaver.h"
#include "forms/TextEntryPage.h"
#include "lang/LanguageTable.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr int kPriorities = 3;
constexpr int kSensitivities = 4;
// Entries of the menu of a date row that holds a date.
constexpr int kEntryChangeDate = 0;
constexpr int kEntryNoDate = 1;

using Row = TaskDraft::Row;

std::function<void(TaskEditor&)>& OpenObserver() {
    static std::function<void(TaskEditor&)> observer;
    return observer;
}

// The rows of the list: every row but the subject, which is the field above it.
std::vector<Row> ListRows() {
    std::vector<Row> rows;
    for (Row row : TaskDraft::kRows)
        if (row != Row::Subject)
            rows.push_back(row);
    return rows;
}
} // namespace

TaskEditor::TaskEditor(TaskDraft draft) : draft_(std::move(draft)) {}
TaskEditor::~TaskEditor() = default;

void TaskEditor::SetOpenObserver(std::function<void(TaskEditor&)> observer) {
    OpenObserver() = std::move(observer);
}

HWND TaskEditor::Open(HWND owner) {
    const HWND hwnd = EditorPage::Open(owner);
    if (hwnd) {
        SetFocus(subject_.GetHwnd());
        if (OpenObserver())
            OpenObserver()(*this);
    }
    return hwnd;
}

std::u16string TaskEditor::Title() const {
    return Lang(draft_.GetMode() == TaskDraft::Mode::New ? "addmodify.NewTask" : "addmodify.EditTask");
}

void TaskEditor::CreateFields(const LOGFONT& font) {
    subject_.Create(window, kSubjectField, 0, 0, 1, 1, false);
    subject_.SetFont(font);
    subject_.SetLimit(AppointmentDraft::kMaxLineText);
    subject_.SetText(draft_.Record().subject);
    templates_.Create(window, u"\u2026", 0, 0, 1, 1);
    Style(templates_);
}

int TaskEditor::LayoutFields(int top, int width) {
    const int margin = Scale(kFieldMargin);
    const int field = Scale(kFieldHeight);
    const int button = Scale(kListButtonWidth);
    MoveWindow(subject_.GetHwnd(), margin, top, std::max(1, width - 3 * margin - button), field, true);
    MoveWindow(templates_.GetHwnd(), width - margin - button, top, button, field, true);
    return top + field + margin;
}

std::vector<EditorPage::RowText> TaskEditor::RowTexts() const {
    std::vector<RowText> texts;
    for (Row row : ListRows())
        texts.push_back({TaskDraft::Label(row), draft_.Value(row), TaskDraft::IsTwoLine(row)});
    return texts;
}

int TaskEditor::RowIndex(Row row) const {
    const std::vector<Row> rows = ListRows();
    const auto found = std::find(rows.begin(), rows.end(), row);
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

void TaskEditor::OnRowTap(std::size_t index) {
    const std::vector<Row> rows = ListRows();
    if (index < rows.size())
        ActivateRow(rows[index]);
}

void TaskEditor::OnFieldCommand(HWND control, UINT code) {
    if (control == subject_.GetHwnd()) {
        if (code == EN_CHANGE)
            draft_.SetSubject(subject_.GetText());
        return;
    }
    if (control == templates_.GetHwnd()) {
        subjects_.clear();
        TemplateLists::LoadSubjects(subjects_);
        if (subjects_.empty())
            MessagePage::Tell(window, Lang("editor.NoTemplates"));
        else
            OpenMenu(kSubjects, subjects_, Lang("addmodify.Subject"));
    }
}

void TaskEditor::ActivateRow(Row row) {
    switch (row) {
    case Row::Subject:
        SetFocus(subject_.GetHwnd());
        return;
    case Row::StartDate:
    case Row::DueDate:
        ChooseDate(row);
        return;
    case Row::Complete:
        draft_.SetComplete(!draft_.Record().complete);
        break;
    case Row::Priority: {
        std::vector<std::u16string> entries;
        for (int i = 0; i < kPriorities; ++i)
            entries.push_back(EditorTexts::PriorityLabel(i));
        OpenMenu(kPriority, entries, TaskDraft::Label(row),
                 std::clamp(draft_.Record().importance, 0, kPriorities - 1));
        return;
    }
    case Row::Recurrence:
        OpenRecurrence();
        return;
    case Row::Reminder: {
        // Counted back from the due date: without one there is nothing to count from.
        if (!draft_.HasDueDate()) {
            MessagePage::Tell(window, Lang("editor.ReminderNeedsDue"));
            return;
        }
        OpenMenu(kReminder, ReminderChoice::Entries(draft_.Record().reminderSet, reminderKeys_),
                 Lang("addmodify.Reminder"));
        return;
    }
    case Row::Categories: {
        const auto categories = CategoryPickerPage::Pick(window, draft_.Record().categories);
        if (!categories)
            return;
        draft_.SetCategories(*categories);
        break;
    }
    case Row::Sensitivity: {
        std::vector<std::u16string> entries;
        for (int i = 0; i < kSensitivities; ++i)
            entries.push_back(EditorTexts::SensitivityLabel(i));
        OpenMenu(kSensitivity, entries, TaskDraft::Label(row), draft_.Record().sensitivity);
        return;
    }
    case Row::Notes: {
        const auto text = TextEntryPage::Edit(window, Lang("addmodify.Notes"), draft_.Record().body, true,
                                              AppointmentDraft::kMaxNotes);
        if (!text)
            return;
        draft_.SetNotes(*text);
        break;
    }
    }
    Fill();
}

void TaskEditor::ChooseDate(Row row) {
    const bool set = row == Row::StartDate ? draft_.HasStartDate() : draft_.HasDueDate();
    // Without a date there is only one thing to do: choose one.
    if (!set) {
        PickDate(row);
        return;
    }
    OpenMenu(row == Row::StartDate ? kStartDate : kDueDate,
             {Lang("editor.ChangeDate"), Lang("editor.RemoveDate")}, TaskDraft::Label(row));
}

void TaskEditor::PickDate(Row row) {
    const PimRecord& r = draft_.Record();
    const double mine = row == Row::StartDate ? r.startDate : r.dueDate;
    const double other = row == Row::StartDate ? r.dueDate : r.startDate;
    const DateTime initial(mine != kNoDate ? mine : other != kNoDate ? other : DateTime::Today().ToDate());
    const auto chosen = DatePickerPage::Pick(window, initial);
    if (!chosen)
        return;
    if (!(row == Row::StartDate ? draft_.SetStartDate(*chosen) : draft_.SetDueDate(*chosen))) {
        MessagePage::Tell(window, Lang("editor.DateOutOfRange"));
        return;
    }
    Fill();
}

void TaskEditor::OnMenuChoice(int menu, int index) {
    if (index < 0)
        return;
    switch (menu) {
    case kSubjects:
        if (index < static_cast<int>(subjects_.size())) {
            subject_.SetText(subjects_[static_cast<size_t>(index)]);
            draft_.SetSubject(subject_.GetText());
        }
        return;
    case kStartDate:
    case kDueDate: {
        const Row row = menu == kStartDate ? Row::StartDate : Row::DueDate;
        if (index == kEntryChangeDate) {
            PickDate(row);
            return;
        }
        if (index != kEntryNoDate)
            return;
        if (row == Row::StartDate)
            draft_.SetStartDate(std::nullopt);
        else
            draft_.SetDueDate(std::nullopt);
        break;
    }
    case kPriority:
        draft_.SetImportance(index);
        break;
    case kSensitivity:
        draft_.SetSensitivity(index);
        break;
    case kReminder: {
        if (index >= static_cast<int>(reminderKeys_.size()))
            return;
        ReminderChoice::Choose(window, reminderKeys_[static_cast<size_t>(index)], draft_, [this] {
            Fill();
            UpdateWindow(window);
        });
        break;
    }
    case kRecurrence:
        OnRecurrenceChoice(index);
        break;
    default:
        return;
    }
    Fill();
}

void TaskEditor::OnRecurrenceChoice(int index) {
    // Entry 0 is the pattern editor; the end-of-recurrence entries follow.
    const double seriesStart = draft_.SeriesStart(DateTime::Today()).ToDate();
    if (index == 0) {
        const auto pattern =
            RecurrenceEditorPage::Edit(window, draft_.Record().recurrence, DateTime(seriesStart));
        if (pattern)
            draft_.SetRecurrence(*pattern);
        return;
    }
    const auto keys = EditorTexts::RecurrenceEndKeys();
    if (static_cast<size_t>(index - 1) >= keys.size())
        return;
    const auto end = RecurrenceEndChoice::Ask(window, keys[static_cast<size_t>(index - 1)],
                                              draft_.Record().recurrence, seriesStart);
    if (end)
        draft_.SetRecurrenceEnd(end->count, end->date);
}

void TaskEditor::OpenRecurrence() {
    if (draft_.RuleNotEditable()) {
        MessagePage::Tell(window, Lang("editor.RuleKept"));
        return;
    }
    // A task that does not repeat yet goes straight to the pattern editor.
    if (!draft_.Record().isRecurring) {
        OnRecurrenceChoice(0);
        Fill();
        return;
    }
    std::vector<std::u16string> entries{Lang("addmodify.EditPattern")};
    for (const char* key : EditorTexts::RecurrenceEndKeys())
        entries.push_back(Lang(key));
    OpenMenu(kRecurrence, entries, Lang("addmodify.EditPattern"));
}

void TaskEditor::Reload() {
    PimSource* source = PimStore::Instance().Source();
    PimRecord fresh;
    if (!source || !source->GetItemFromOid(draft_.Original().oid, fresh))
        return;
    draft_ = TaskDraft::ForRecord(fresh, draft_.GetMode());
    subject_.SetText(draft_.Record().subject);
    Fill();
}

ItemSaver::Outcome TaskEditor::Save() {
    // What the field holds now, also when no change was reported yet.
    draft_.SetSubject(subject_.GetText());
    return TaskSaver::Save(window, draft_);
}

void TaskEditor::OnCancel() {
    // A duplicate exists only for this editor: Cancel takes it back.
    if (draft_.GetMode() == TaskDraft::Mode::Duplicate)
        TaskSaver::RemoveCopy(draft_.Original().oid);
}

void TaskEditor::OnClosed() {
    if (closeHandler_)
        closeHandler_(*this);
}

} // namespace mirodate
