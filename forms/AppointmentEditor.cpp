#include "forms/AppointmentEditor.h"

#include "data/EditorTexts.h"
#include "data/PimStore.h"
#include "data/TemplateLists.h"
#include "forms/AppointmentSaver.h"
#include "forms/AttachmentsPage.h"
#include "forms/AttendeeDialog.h"
#include "forms/CategoryPickerPage.h"
#include "forms/DatePickerPage.h"
#include "forms/DateTimePickerPage.h"
#include "forms/RecurrenceEditorPage.h"
#include "forms/RecurrenceEndChoice.h"
#include "forms/ReminderChoice.h"
#include "forms/TextEntryPage.h"
#include "lang/LanguageTable.h"
#include "skin/SkinStyles.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Busy states and sensitivities the menus offer.
constexpr int kMenuStates = 4;

using Row = AppointmentDraft::Row;

std::function<void(AppointmentEditor&)>& OpenObserver() {
    static std::function<void(AppointmentEditor&)> observer;
    return observer;
}

// The rows of the list: every row but the subject and location, which are
// the fields above it.
std::vector<Row> ListRows() {
    std::vector<Row> rows;
    for (Row row : AppointmentDraft::kRows)
        if (row != Row::Subject && row != Row::Location)
            rows.push_back(row);
    return rows;
}
} // namespace

AppointmentEditor::AppointmentEditor(AppointmentDraft draft) : draft_(std::move(draft)) {}
AppointmentEditor::~AppointmentEditor() = default;

void AppointmentEditor::SetOpenObserver(std::function<void(AppointmentEditor&)> observer) {
    OpenObserver() = std::move(observer);
}

HWND AppointmentEditor::Open(HWND owner) {
    const HWND hwnd = EditorPage::Open(owner);
    if (hwnd && OpenObserver())
        OpenObserver()(*this);
    return hwnd;
}

std::u16string AppointmentEditor::Title() const {
    return Lang(draft_.GetMode() == AppointmentDraft::Mode::New ? "addmodify.NewAppointment"
                                                                : "addmodify.EditAppointment");
}

BOOL AppointmentEditor::OnInitDialog() {
    const BOOL result = EditorPage::OnInitDialog();
    SetFocus(subject_.GetHwnd());
    return result;
}

void AppointmentEditor::CreateFields(const LOGFONT& font) {
    subject_.Create(window, kSubjectField, 0, 0, 1, 1, false);
    subject_.SetFont(font);
    subject_.SetLimit(AppointmentDraft::kMaxLineText);
    subject_.SetText(draft_.Record().subject);
    location_.Create(window, kLocationField, 0, 0, 1, 1, false);
    location_.SetFont(font);
    location_.SetLimit(AppointmentDraft::kMaxLineText);
    location_.SetText(draft_.Record().location);
    subjectList_.Create(window, u"\u2026", 0, 0, 1, 1);
    locationList_.Create(window, u"\u2026", 0, 0, 1, 1);
    Style(subjectList_);
    Style(locationList_);
}

int AppointmentEditor::LayoutFields(int top, int width) {
    const int margin = Scale(kFieldMargin);
    const int field = Scale(kFieldHeight);
    const int button = Scale(kListButtonWidth);
    // The fields' labels stand left of them, as wide as the wider label
    // needs (at most a third of the screen).
    labelWidth_ = 0;
    for (const char* key : {"addmodify.Subject", "addmodify.Location"})
        labelWidth_ = std::max(labelWidth_, TextLayout(Lang(key), *BoldFont(), width, false).Width());
    labelWidth_ = std::min(labelWidth_ + margin, width / 3);
    const int fieldLeft = margin + labelWidth_;
    fieldsTop_ = top;
    for (auto [text, list] : {std::pair{&subject_, &subjectList_}, std::pair{&location_, &locationList_}}) {
        MoveWindow(text->GetHwnd(), fieldLeft, top, std::max(1, width - fieldLeft - 2 * margin - button),
                   field, true);
        MoveWindow(list->GetHwnd(), width - margin - button, top, button, field, true);
        top += field + margin;
    }
    return top;
}

std::vector<EditorPage::RowText> AppointmentEditor::RowTexts() const {
    std::vector<RowText> texts;
    for (Row row : ListRows())
        texts.push_back({draft_.Label(row), draft_.Value(row), AppointmentDraft::IsTwoLine(row)});
    return texts;
}

int AppointmentEditor::RowIndex(Row row) const {
    const std::vector<Row> rows = ListRows();
    const auto found = std::find(rows.begin(), rows.end(), row);
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
}

void AppointmentEditor::OnRowTap(std::size_t index) {
    const std::vector<Row> rows = ListRows();
    if (index < rows.size())
        ActivateRow(rows[index]);
}

void AppointmentEditor::OnPaint(HDC dc) {
    if (!dc)
        return;
    EditorPage::OnPaint(dc);
    const int margin = Scale(kFieldMargin);
    const int field = Scale(kFieldHeight);
    int top = fieldsTop_;
    // In bold, as the labels of the rows below.
    dc->SelectFont(BoldFont());
    dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(SkinStyles::Current().inputForms.colorItemText);
    for (const char* key : {"addmodify.Subject", "addmodify.Location"}) {
        RECT label{margin, top, margin + labelWidth_ - margin, top + field};
        dc->DrawText(Lang(key), label, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
        top += field + margin;
    }
    dc->SelectFont(nullptr);
}

void AppointmentEditor::OnFieldCommand(HWND control, UINT code) {
    if (control == subject_.GetHwnd()) {
        if (code == EN_CHANGE)
            draft_.SetSubject(subject_.GetText());
        if (code == EN_ENTER)
            SetFocus(location_.GetHwnd());
        return;
    }
    if (control == location_.GetHwnd()) {
        if (code == EN_CHANGE)
            draft_.SetLocation(location_.GetText());
        return;
    }
    if (control == subjectList_.GetHwnd()) {
        menuValues_.clear();
        TemplateLists::LoadSubjects(menuValues_);
        OpenMenu(kSubjects, menuValues_, Lang("addmodify.Subject"));
        return;
    }
    if (control == locationList_.GetHwnd()) {
        menuValues_.clear();
        TemplateLists::LoadLocations(menuValues_);
        OpenMenu(kLocations, menuValues_, Lang("addmodify.Location"));
    }
}

void AppointmentEditor::ActivateRow(Row row) {
    switch (row) {
    case Row::Subject:
        SetFocus(subject_.GetHwnd());
        return;
    case Row::Location:
        SetFocus(location_.GetHwnd());
        return;
    case Row::Start:
        PickStart(false);
        return;
    case Row::End:
        PickStart(true);
        return;
    case Row::AllDay:
        draft_.SetAllDay(!draft_.Record().allDay);
        break;
    case Row::Recurrence:
        OpenRecurrence();
        return;
    case Row::Reminder: {
        OpenMenu(kReminder, ReminderChoice::Entries(draft_.Record().reminderSet, reminderKeys_),
                 Lang("addmodify.Reminder"));
        return;
    }
    case Row::Categories:
        EditCategories();
        return;
    case Row::BusyStatus:
    case Row::Sensitivity: {
        std::vector<std::u16string> entries;
        const bool busy = row == Row::BusyStatus;
        for (int i = 0; i < kMenuStates; ++i)
            entries.push_back(busy ? EditorTexts::BusyStatusLabel(i) : EditorTexts::SensitivityLabel(i));
        OpenMenu(busy ? kBusyStatus : kSensitivity, entries, draft_.Label(row),
                 busy ? draft_.Record().busyStatus : draft_.Record().sensitivity);
        return;
    }
    case Row::Attendees:
        EditAttendees();
        return;
    case Row::Attachments:
        EditAttachments();
        return;
    case Row::Notes:
        EditNotes();
        return;
    }
    Fill();
}

void AppointmentEditor::OnMenuChoice(int menu, int index) {
    if (index < 0)
        return;
    switch (menu) {
    case kSubjects:
    case kLocations: {
        if (index >= static_cast<int>(menuValues_.size()))
            return;
        TextFieldWnd& field = menu == kSubjects ? subject_ : location_;
        field.SetText(menuValues_[static_cast<size_t>(index)]);
        if (menu == kSubjects)
            draft_.SetSubject(field.GetText());
        else
            draft_.SetLocation(field.GetText());
        return;
    }
    case kReminder: {
        if (index >= static_cast<int>(reminderKeys_.size()))
            return;
        ReminderChoice::Choose(window, reminderKeys_[static_cast<size_t>(index)], draft_, [this] {
            Fill();
            UpdateWindow(window);
        });
        break;
    }
    case kBusyStatus:
        draft_.SetBusyStatus(index);
        break;
    case kSensitivity:
        draft_.SetSensitivity(index);
        break;
    case kRecurrence:
        OnRecurrenceChoice(index);
        break;
    default:
        return;
    }
    Fill();
}

void AppointmentEditor::OnRecurrenceChoice(int index) {
    // Entry 0 is the pattern editor; the end-of-recurrence entries follow.
    if (index == 0) {
        const auto pattern =
            RecurrenceEditorPage::Edit(window, draft_.Record().recurrence, DateTime(draft_.Record().start));
        if (pattern)
            draft_.SetRecurrence(*pattern);
        return;
    }
    const auto keys = EditorTexts::RecurrenceEndKeys();
    if (static_cast<size_t>(index - 1) >= keys.size())
        return;
    const auto end = RecurrenceEndChoice::Ask(window, keys[static_cast<size_t>(index - 1)],
                                              draft_.Record().recurrence, draft_.Record().start);
    if (end)
        draft_.SetRecurrenceEnd(end->count, end->date);
}

void AppointmentEditor::PickStart(bool end) {
    const PimRecord& r = draft_.Record();
    DateTime initial(end ? r.end : r.start);
    if (end && r.allDay && r.end > r.start)
        initial = DateTime(r.end - 1.0);
    std::optional<DateTime> chosen =
        r.allDay ? DatePickerPage::Pick(window, initial) : DateTimePickerPage::Pick(window, initial);
    if (!chosen)
        return;
    if (!(end ? draft_.SetEnd(*chosen) : draft_.SetStart(*chosen))) {
        MessagePage::Tell(window, Lang("editor.DateOutOfRange"));
        return;
    }
    Fill();
}

void AppointmentEditor::OpenRecurrence() {
    if (draft_.GetMode() == AppointmentDraft::Mode::Occurrence)
        return; // one occurrence has no pattern of its own
    if (draft_.RuleNotEditable()) {
        MessagePage::Tell(window, Lang("editor.RuleKept"));
        return;
    }
    std::vector<std::u16string> entries{Lang("addmodify.EditPattern")};
    if (draft_.Record().isRecurring)
        for (const char* key : EditorTexts::RecurrenceEndKeys())
            entries.push_back(Lang(key));
    if (entries.size() == 1) {
        OnMenuChoice(kRecurrence, 0);
        return;
    }
    OpenMenu(kRecurrence, entries, Lang("addmodify.EditPattern"));
}

void AppointmentEditor::EditNotes() {
    const auto text = TextEntryPage::Edit(window, Lang("addmodify.Notes"), draft_.Record().body, true,
                                          AppointmentDraft::kMaxNotes);
    if (!text)
        return;
    draft_.SetNotes(*text);
    Fill();
}

void AppointmentEditor::EditCategories() {
    const auto categories = CategoryPickerPage::Pick(window, draft_.Record().categories);
    if (!categories)
        return;
    draft_.SetCategories(*categories);
    Fill();
}

void AppointmentEditor::EditAttendees() {
    const auto people = AttendeeDialog::Edit(window, draft_.Record().attendees);
    if (!people)
        return;
    draft_.SetAttendees(*people);
    Fill();
}

void AppointmentEditor::EditAttachments() {
    const auto attachments = AttachmentsPage::Edit(window, draft_.Record().attachments);
    if (!attachments)
        return;
    draft_.SetAttachments(*attachments);
    Fill();
}

void AppointmentEditor::Reload() {
    PimSource* source = PimStore::Instance().Source();
    PimRecord fresh;
    if (!source || !source->GetItemFromOid(draft_.Original().oid, fresh))
        return;
    const AppointmentDraft::Mode mode = draft_.GetMode();
    if (mode == AppointmentDraft::Mode::Occurrence) {
        const double length = draft_.Original().end - draft_.Original().start;
        draft_ = AppointmentDraft::ForRecord(fresh, mode, draft_.OccurrenceStart(),
                                             draft_.OccurrenceStart() + length);
    } else {
        draft_ = AppointmentDraft::ForRecord(fresh, mode);
    }
    subject_.SetText(draft_.Record().subject);
    location_.SetText(draft_.Record().location);
    Fill();
}

ItemSaver::Outcome AppointmentEditor::Save() {
    // What the fields hold now, also when no change was reported yet.
    draft_.SetSubject(subject_.GetText());
    draft_.SetLocation(location_.GetText());
    return AppointmentSaver::Save(window, draft_);
}

void AppointmentEditor::OnCancel() {
    // A duplicate exists only for this editor: Cancel takes it back.
    if (draft_.GetMode() == AppointmentDraft::Mode::Duplicate)
        AppointmentSaver::RemoveCopy(draft_.Original().oid);
}

void AppointmentEditor::OnClosed() {
    if (closeHandler_)
        closeHandler_(*this);
}

} // namespace mirodate
