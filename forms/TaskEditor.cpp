#include "forms/TaskEditor.h"

#include "data/EditorTexts.h"
#include "data/PimStore.h"
#include "data/TemplateLists.h"
#include "forms/AppointmentDraft.h"
#include "forms/CategoryPickerPage.h"
#include "forms/DatePickerPage.h"
#include "forms/DateTimePickerPage.h"
#include "forms/EditorRow.h"
#include "forms/FormPainter.h"
#include "forms/RecurrenceEditorPage.h"
#include "forms/RecurrenceEndChoice.h"
#include "forms/TaskSaver.h"
#include "forms/TextEntryPage.h"
#include "forms/TimeSpanPickerPage.h"
#include "lang/LanguageTable.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/Scale.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen, as the appointment editor's.
constexpr int kTitleHeight = 24;
constexpr int kFieldHeight = 26;
constexpr int kListButtonWidth = 30;
constexpr int kButtonHeight = 26;
constexpr int kMargin = 4;
constexpr int kTextHeight = 11;
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

void Styled(ButtonWnd& button) {
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    button.SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText, form.buttons.colorButtonBgPressed,
                     form.buttons.colorButtonTextPressed);
    button.SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
}
} // namespace

TaskEditor::TaskEditor(TaskDraft draft) : draft_(std::move(draft)) {}
TaskEditor::~TaskEditor() = default;

void TaskEditor::SetOpenObserver(std::function<void(TaskEditor&)> observer) { OpenObserver() = std::move(observer); }

HWND TaskEditor::Open(HWND owner) {
    const HWND hwnd = CreateModeless(owner);
    if (!hwnd) return nullptr;
    ShowWindow(hwnd, SW_SHOW);
    SetForegroundWindow(hwnd);
    if (OpenObserver()) OpenObserver()(*this);
    return hwnd;
}

std::u16string TaskEditor::Title() const {
    return Lang(draft_.GetMode() == TaskDraft::Mode::New ? "addmodify.NewTask" : "addmodify.EditTask");
}

BOOL TaskEditor::OnInitDialog() {
    closeAllMessage_ = RegisterWindowMessage(kMinimizedBroadcastName);
    SetWindowText(window, Title());
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    LOGFONT boldFont = logFont;
    boldFont.lfWeight = FW_BOLD;
    bold_ = std::make_unique<Font>(boldFont);

    subject_.Create(window, kSubjectField, 0, 0, 1, 1, false);
    subject_.SetFont(logFont);
    subject_.SetLimit(AppointmentDraft::kMaxLineText);
    subject_.SetText(draft_.Record().subject);
    subjectList_.Create(window, u"\u2026", 0, 0, 1, 1);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().addModifyForm.colorBg;
    colors.strip = SkinStyles::Current().addModifyForm.colorLineSeparator;
    list_.SetColors(colors);
    ok_.Create(window, Lang("OK"), 0, 0, 1, 1, IDOK);
    cancel_.Create(window, Lang("Cancel"), 0, 0, 1, 1, IDCANCEL);
    for (ButtonWnd* b : {&subjectList_, &ok_, &cancel_}) Styled(*b);
    Layout();
    SetFocus(subject_.GetHwnd());
    return DialogWnd::OnInitDialog();
}

void TaskEditor::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int margin = Scale(kMargin);
    const int field = Scale(kFieldHeight);
    const int button = Scale(kListButtonWidth);
    int top = Scale(kTitleHeight) + margin;
    MoveWindow(subject_.GetHwnd(), margin, top, std::max(1, width - 3 * margin - button), field, true);
    MoveWindow(subjectList_.GetHwnd(), width - margin - button, top, button, field, true);
    top += field + margin;
    const int buttons = Scale(kButtonHeight) + 2 * margin;
    MoveWindow(list_.GetHwnd(), 0, top, width, std::max(1, height - top - buttons), true);
    const int half = (width - 3 * margin) / 2;
    const int buttonTop = height - margin - Scale(kButtonHeight);
    MoveWindow(ok_.GetHwnd(), margin, buttonTop, half, Scale(kButtonHeight), true);
    MoveWindow(cancel_.GetHwnd(), 2 * margin + half, buttonTop, half, Scale(kButtonHeight), true);
    Fill();
    InvalidateRect(window, nullptr, false);
}

void TaskEditor::OnScreenReset() { Layout(); }

void TaskEditor::Fill() {
    if (!list_.GetHwnd()) return;
    const int position = list_.Scroller().Position();
    list_.ClearItems();
    shown_.clear();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    for (Row row : TaskDraft::kRows) {
        if (row == Row::Subject) continue; // the field above the list
        const UINT command = kCmdRowBase + static_cast<UINT>(shown_.size());
        list_.AddItem(std::make_unique<EditorRow>(command, TaskDraft::Label(row), draft_.Value(row),
                                                  TaskDraft::IsTwoLine(row), shown_.size() % 2 == 1, *font_, *bold_,
                                                  client.Width()));
        shown_.push_back(row);
    }
    list_.Relayout();
    list_.Scroller().SetPosition(position);
    list_.RefreshViewport();
}

int TaskEditor::RowIndex(Row row) const {
    const auto found = std::find(shown_.begin(), shown_.end(), row);
    return found == shown_.end() ? -1 : static_cast<int>(found - shown_.begin());
}

void TaskEditor::OnPaint(HDC dc) {
    if (!dc) return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), bold_.get(), Title());
}

void TaskEditor::OnCommand(UINT id, UINT code, HWND control) {
    if (control && control == subject_.GetHwnd()) {
        if (code == EN_CHANGE) draft_.SetSubject(subject_.GetText());
        return;
    }
    if (control && control == subjectList_.GetHwnd()) {
        std::vector<std::u16string> subjects;
        TemplateLists::LoadSubjects(subjects);
        if (subjects.empty()) MessagePage::Tell(window, Lang("editor.NoTemplates"));
        else OpenMenu(Menu::Subjects, subjects, Lang("addmodify.Subject"));
        return;
    }
    if (control == ok_.GetHwnd() || (!control && id == IDOK)) Ok();
    else if (control == cancel_.GetHwnd() || (!control && id == IDCANCEL)) Cancel();
}

void TaskEditor::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE) Cancel();
}

INT_PTR TaskEditor::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == closeAllMessage_ && closeAllMessage_ != 0) {
        // The owner deletes the page; the base would delete it here. Nothing is saved.
        Cancel();
        return 0;
    }
    return DialogWnd::DialogProc(hwnd, message, wParam, lParam);
}

void TaskEditor::OnClose() { Cancel(); }

void TaskEditor::OpenMenu(Menu menu, std::vector<std::u16string> entries, const std::u16string& header, int current) {
    if (entries.empty()) return;
    menu_ = menu;
    menuValues_ = entries;
    std::vector<ContextMenuItem> items;
    for (size_t i = 0; i < entries.size() && i < kCmdLimit; ++i)
        items.push_back({entries[i], kCmdMenuBase + static_cast<UINT>(i), static_cast<int>(i) == current});
    auto* contextMenu = new ContextMenu(this, std::move(items), 0); // owned by our deferred command, or by itself
    if (current >= 0) contextMenu->SetPreselected(current);
    contextMenu->SetHeaderText(header);
    contextMenu->Open();
}

void TaskEditor::OnDeferredCommand(UINT id) {
    if (closed_) return;
    if (id >= kCmdMenuBase && id < kCmdMenuBase + kCmdLimit) {
        OnMenuChoice(static_cast<int>(id - kCmdMenuBase));
        return;
    }
    if (id >= kCmdRowBase && id < kCmdRowBase + kCmdLimit) {
        const size_t index = id - kCmdRowBase;
        if (index < shown_.size()) ActivateRow(shown_[index]);
    }
}

void TaskEditor::ActivateRow(Row row) {
    switch (row) {
    case Row::Subject: SetFocus(subject_.GetHwnd()); return;
    case Row::StartDate:
    case Row::DueDate: ChooseDate(row); return;
    case Row::Complete: draft_.SetComplete(!draft_.Record().complete); break;
    case Row::Priority: {
        std::vector<std::u16string> entries;
        for (int i = 0; i < kPriorities; ++i) entries.push_back(Lang(("Priority_" + std::to_string(i)).c_str()));
        OpenMenu(Menu::Priority, entries, TaskDraft::Label(row), std::clamp(draft_.Record().importance, 0, 2));
        return;
    }
    case Row::Recurrence: OpenRecurrence(); return;
    case Row::Reminder: {
        // Counted back from the due date: without one there is nothing to count from.
        if (!draft_.HasDueDate()) {
            MessagePage::Tell(window, Lang("editor.ReminderNeedsDue"));
            return;
        }
        menuKeys_ = EditorTexts::ReminderMenuKeys(draft_.Record().reminderSet);
        std::vector<std::u16string> entries;
        for (const char* key : menuKeys_) entries.push_back(Lang(key));
        OpenMenu(Menu::Reminder, entries, Lang("addmodify.Reminder"));
        return;
    }
    case Row::Categories: {
        const auto categories = CategoryPickerPage::Pick(window, draft_.Record().categories);
        if (!categories) return;
        draft_.SetCategories(*categories);
        break;
    }
    case Row::Sensitivity: {
        std::vector<std::u16string> entries;
        for (int i = 0; i < kSensitivities; ++i) entries.push_back(EditorTexts::SensitivityLabel(i));
        OpenMenu(Menu::Sensitivity, entries, TaskDraft::Label(row), draft_.Record().sensitivity);
        return;
    }
    case Row::Notes: {
        const auto text = TextEntryPage::Edit(window, Lang("addmodify.Notes"), draft_.Record().body, true,
                                              AppointmentDraft::kMaxNotes);
        if (!text) return;
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
    OpenMenu(row == Row::StartDate ? Menu::StartDate : Menu::DueDate,
             {Lang("editor.ChangeDate"), Lang("editor.RemoveDate")}, TaskDraft::Label(row));
}

void TaskEditor::PickDate(Row row) {
    const PimRecord& r = draft_.Record();
    const double mine = row == Row::StartDate ? r.startDate : r.dueDate;
    const double other = row == Row::StartDate ? r.dueDate : r.startDate;
    const DateTime initial(mine != kNoDate ? mine : other != kNoDate ? other : DateTime::Today().ToDate());
    const auto chosen = DatePickerPage::Pick(window, initial);
    if (!chosen) return;
    if (!(row == Row::StartDate ? draft_.SetStartDate(*chosen) : draft_.SetDueDate(*chosen))) {
        MessagePage::Tell(window, Lang("editor.DateOutOfRange"));
        return;
    }
    Fill();
}

void TaskEditor::OnMenuChoice(int index) {
    const Menu menu = menu_;
    menu_ = Menu::None;
    if (index < 0) return;
    switch (menu) {
    case Menu::None: return;
    case Menu::Subjects:
        if (index < static_cast<int>(menuValues_.size())) {
            subject_.SetText(menuValues_[static_cast<size_t>(index)]);
            draft_.SetSubject(subject_.GetText());
        }
        return;
    case Menu::StartDate:
    case Menu::DueDate: {
        const Row row = menu == Menu::StartDate ? Row::StartDate : Row::DueDate;
        if (index == kEntryChangeDate) {
            PickDate(row);
            return;
        }
        if (index != kEntryNoDate) return;
        if (row == Row::StartDate) draft_.SetStartDate(std::nullopt);
        else draft_.SetDueDate(std::nullopt);
        break;
    }
    case Menu::Priority: draft_.SetImportance(index); break;
    case Menu::Sensitivity: draft_.SetSensitivity(index); break;
    case Menu::Reminder: {
        if (index >= static_cast<int>(menuKeys_.size())) return;
        const std::string key = menuKeys_[static_cast<size_t>(index)];
        if (key == "set_datetime" || key == "change_datetime") PickReminderMoment();
        else if (key == "set_span" || key == "change_span") PickReminderSpan();
        else if (key == "unset") draft_.SetReminder(false, 0);
        break;
    }
    case Menu::Recurrence: {
        // Entry 0 is the pattern editor; the end-of-recurrence entries follow.
        const double seriesStart = draft_.SeriesStart(DateTime::Today()).ToDate();
        if (index == 0) {
            const auto pattern =
                RecurrenceEditorPage::Edit(window, draft_.Record().recurrence, DateTime(seriesStart));
            if (pattern) draft_.SetRecurrence(*pattern);
            break;
        }
        const auto keys = EditorTexts::RecurrenceEndKeys();
        if (static_cast<size_t>(index - 1) >= keys.size()) return;
        const auto end = RecurrenceEndChoice::Ask(window, keys[static_cast<size_t>(index - 1)],
                                                  draft_.Record().recurrence, seriesStart);
        if (!end) return;
        draft_.SetRecurrenceEnd(end->count, end->date);
        break;
    }
    }
    Fill();
}

void TaskEditor::PickReminderMoment() {
    const auto moment = DateTimePickerPage::Pick(window, draft_.ReminderMoment());
    if (!moment) return;
    if (!draft_.SetReminderMoment(*moment)) {
        // Repainted first, so that the message stands over the list as it is.
        Fill();
        UpdateWindow(window);
        MessagePage::Tell(window, Lang("ReminderInvalid"));
    }
}

void TaskEditor::PickReminderSpan() {
    const auto minutes =
        TimeSpanPickerPage::Pick(window, draft_.Record().reminderSet ? draft_.Record().reminderMinutes : 0);
    if (minutes && *minutes >= 0) draft_.SetReminder(true, *minutes);
}

void TaskEditor::OpenRecurrence() {
    if (draft_.RuleNotEditable()) {
        MessagePage::Tell(window, Lang("editor.RuleKept"));
        return;
    }
    std::vector<std::u16string> entries{Lang("addmodify.EditPattern")};
    if (draft_.Record().isRecurring)
        for (const char* key : EditorTexts::RecurrenceEndKeys()) entries.push_back(Lang(key));
    if (entries.size() == 1) {
        menu_ = Menu::Recurrence;
        OnMenuChoice(0);
        return;
    }
    OpenMenu(Menu::Recurrence, entries, Lang("addmodify.EditPattern"));
}

void TaskEditor::ReloadFromStore() {
    PimSource* source = PimStore::Instance().Source();
    PimRecord fresh;
    if (!source || !source->GetItemFromOid(draft_.Original().oid, fresh)) return;
    draft_ = TaskDraft::ForRecord(fresh, draft_.GetMode());
    subject_.SetText(draft_.Record().subject);
    Fill();
}

void TaskEditor::Ok() {
    if (closed_) return;
    // What the field holds now, also when no change was reported yet.
    draft_.SetSubject(subject_.GetText());
    switch (TaskSaver::Save(window, draft_)) {
    case TaskSaver::Outcome::Saved:
        saved_ = true;
        Close();
        return;
    case TaskSaver::Outcome::Reload: ReloadFromStore(); return;
    case TaskSaver::Outcome::Discard: Close(); return;
    case TaskSaver::Outcome::Stay: Fill(); return;
    }
}

void TaskEditor::Cancel() {
    if (closed_) return;
    // A duplicate exists only for this editor: Cancel takes it back.
    if (draft_.GetMode() == TaskDraft::Mode::Duplicate) TaskSaver::RemoveCopy(draft_.Original().oid);
    Close();
}

void TaskEditor::Close() {
    closed_ = true;
    ShowWindow(window, SW_HIDE);
    if (closeHandler_) closeHandler_(*this);
}

} // namespace mirodate
