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
#include "forms/EditorRow.h"
#include "forms/FormPainter.h"
#include "forms/RecurrenceEditorPage.h"
#include "forms/TextEntryPage.h"
#include "forms/TimeSpanPickerPage.h"
#include "lang/LanguageTable.h"
#include "platform/Log.h"
#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "skin/SkinStyles.h"
#include "ui/ContextMenu.h"
#include "ui/Dc.h"
#include "ui/MessagePage.h"
#include "ui/RegisteredMessages.h"
#include "ui/Scale.h"
#include "ui/TextLayout.h"
#include "ui/WinApi.h"

#include <algorithm>

namespace mirodate {

namespace {
// Unscaled sizes for a 240-pixel-wide screen.
constexpr int kTitleHeight = 24;
constexpr int kFieldHeight = 26;
constexpr int kListButtonWidth = 30;
constexpr int kButtonHeight = 26;
constexpr int kMargin = 4;
constexpr int kTextHeight = 11;
// Counts a recurrence can be ended after.
constexpr int kMaxOccurrences = 999;

using Row = AppointmentDraft::Row;

std::function<void(AppointmentEditor&)>& OpenObserver() {
    static std::function<void(AppointmentEditor&)> observer;
    return observer;
}
} // namespace

AppointmentEditor::AppointmentEditor(AppointmentDraft draft) : draft_(std::move(draft)) {}
AppointmentEditor::~AppointmentEditor() = default;

void AppointmentEditor::SetOpenObserver(std::function<void(AppointmentEditor&)> observer) {
    OpenObserver() = std::move(observer);
}

HWND AppointmentEditor::Open(HWND owner) {
    const HWND hwnd = CreateModeless(owner);
    if (!hwnd) return nullptr;
    ShowWindow(hwnd, SW_SHOW);
    SetForegroundWindow(hwnd);
    if (OpenObserver()) OpenObserver()(*this);
    return hwnd;
}

std::u16string AppointmentEditor::Title() const {
    return Lang(draft_.GetMode() == AppointmentDraft::Mode::New ? "addmodify.NewAppointment"
                                                                 : "addmodify.EditAppointment");
}

void AppointmentEditor::Styled(ButtonWnd& button) {
    const InputFormsStyle& form = SkinStyles::Current().inputForms;
    button.SetColors(form.buttons.colorButtonBg, form.buttons.colorButtonText, form.buttons.colorButtonBgPressed,
                     form.buttons.colorButtonTextPressed);
    button.SetGradient(form.buttons.colorButtonGradient, form.buttons.colorButtonGradientPressed);
}

BOOL AppointmentEditor::OnInitDialog() {
    closeAllMessage_ = RegisterWindowMessage(kMinimizedBroadcastName);
    SetWindowText(window, Title());
    LOGFONT logFont;
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);
    font_ = std::make_unique<Font>(logFont);
    logFont.lfWeight = FW_BOLD;
    bold_ = std::make_unique<Font>(logFont);
    DefaultFont(logFont);
    logFont.lfHeight = -std::clamp(Scale(kTextHeight) + FontSizeDelta(), 6, 200);

    subject_.Create(window, kSubjectField, 0, 0, 1, 1, false);
    subject_.SetFont(logFont);
    subject_.SetLimit(AppointmentDraft::kMaxLineText);
    subject_.SetText(draft_.Record().subject);
    location_.Create(window, kLocationField, 0, 0, 1, 1, false);
    location_.SetFont(logFont);
    location_.SetLimit(AppointmentDraft::kMaxLineText);
    location_.SetText(draft_.Record().location);
    subjectList_.Create(window, u"\u2026", 0, 0, 1, 1);
    locationList_.Create(window, u"\u2026", 0, 0, 1, 1);
    list_.Create(window, 0, 0, 1, 1, false, false);
    list_.SetHeaderHeight(0);
    TouchListColors colors = TouchListColors::FromSkin();
    colors.background = SkinStyles::Current().addModifyForm.colorBg;
    colors.strip = SkinStyles::Current().addModifyForm.colorLineSeparator;
    list_.SetColors(colors);
    ok_.Create(window, Lang("OK"), 0, 0, 1, 1, IDOK);
    cancel_.Create(window, Lang("Cancel"), 0, 0, 1, 1, IDCANCEL);
    for (ButtonWnd* b : {&subjectList_, &locationList_, &ok_, &cancel_}) Styled(*b);
    Layout();
    SetFocus(subject_.GetHwnd());
    return DialogWnd::OnInitDialog();
}

void AppointmentEditor::Layout() {
    const int width = GetScreenWidth(), height = GetScreenHeight();
    MoveWindow(window, 0, 0, width, height, false);
    const int margin = Scale(kMargin);
    const int field = Scale(kFieldHeight);
    const int button = Scale(kListButtonWidth);
    // The fields' labels stand left of them, as wide as the wider label
    // needs (at most a third of the screen).
    labelWidth_ = 0;
    for (const char* key : {"addmodify.Subject", "addmodify.Location"})
        labelWidth_ = std::max(labelWidth_, TextLayout(Lang(key), *bold_, width, false).Width());
    labelWidth_ = std::min(labelWidth_ + margin, width / 3);
    const int fieldLeft = margin + labelWidth_;
    int top = Scale(kTitleHeight) + margin;
    for (auto [text, list] : {std::pair{&subject_, &subjectList_}, std::pair{&location_, &locationList_}}) {
        MoveWindow(text->GetHwnd(), fieldLeft, top, std::max(1, width - fieldLeft - 2 * margin - button), field,
                   true);
        MoveWindow(list->GetHwnd(), width - margin - button, top, button, field, true);
        top += field + margin;
    }
    const int buttons = Scale(kButtonHeight) + 2 * margin;
    MoveWindow(list_.GetHwnd(), 0, top, width, std::max(1, height - top - buttons), true);
    const int half = (width - 3 * margin) / 2;
    const int buttonTop = height - margin - Scale(kButtonHeight);
    MoveWindow(ok_.GetHwnd(), margin, buttonTop, half, Scale(kButtonHeight), true);
    MoveWindow(cancel_.GetHwnd(), 2 * margin + half, buttonTop, half, Scale(kButtonHeight), true);
    Fill();
    InvalidateRect(window, nullptr, false);
}

void AppointmentEditor::OnScreenReset() { Layout(); }

void AppointmentEditor::Fill() {
    if (!list_.GetHwnd()) return;
    const int position = list_.Scroller().Position();
    list_.ClearItems();
    shown_.clear();
    RECT client;
    GetClientRect(list_.GetHwnd(), &client);
    for (Row row : AppointmentDraft::kRows) {
        if (row == Row::Subject || row == Row::Location) continue; // the fields above the list
        const UINT command = kCmdRowBase + static_cast<UINT>(shown_.size());
        list_.AddItem(std::make_unique<EditorRow>(command, draft_.Label(row), draft_.Value(row),
                                                  AppointmentDraft::IsTwoLine(row), shown_.size() % 2 == 1, *font_,
                                                  *bold_, client.Width()));
        shown_.push_back(row);
    }
    list_.Relayout();
    list_.Scroller().SetPosition(position);
    list_.RefreshViewport();
}

int AppointmentEditor::RowIndex(Row row) const {
    const auto found = std::find(shown_.begin(), shown_.end(), row);
    return found == shown_.end() ? -1 : static_cast<int>(found - shown_.begin());
}

void AppointmentEditor::OnPaint(HDC dc) {
    if (!dc) return;
    RECT client;
    GetClientRect(window, &client);
    FormPainter::PaintPage(*dc, client, Scale(kTitleHeight), bold_.get(), Title());
    const int margin = Scale(kMargin);
    const int field = Scale(kFieldHeight);
    int top = Scale(kTitleHeight) + margin;
    // In bold, as the labels of the rows below.
    dc->SelectFont(bold_.get());
    dc->SetBkMode(TRANSPARENT);
    dc->SetTextColor(SkinStyles::Current().inputForms.colorItemText);
    for (const char* key : {"addmodify.Subject", "addmodify.Location"}) {
        RECT label{margin, top, margin + labelWidth_ - margin, top + field};
        dc->DrawText(Lang(key), label, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
        top += field + margin;
    }
    dc->SelectFont(nullptr);
}

void AppointmentEditor::OnCommand(UINT id, UINT code, HWND control) {
    if (control && control == subject_.GetHwnd()) {
        if (code == EN_CHANGE) draft_.SetSubject(subject_.GetText());
        if (code == EN_ENTER) SetFocus(location_.GetHwnd());
        return;
    }
    if (control && control == location_.GetHwnd()) {
        if (code == EN_CHANGE) draft_.SetLocation(location_.GetText());
        return;
    }
    if (control == subjectList_.GetHwnd()) {
        std::vector<std::u16string> subjects;
        TemplateLists::LoadSubjects(subjects);
        OpenMenu(Menu::Subjects, subjects, Lang("addmodify.Subject"));
        return;
    }
    if (control == locationList_.GetHwnd()) {
        std::vector<std::u16string> locations;
        TemplateLists::LoadLocations(locations);
        OpenMenu(Menu::Locations, locations, Lang("addmodify.Location"));
        return;
    }
    if (control == ok_.GetHwnd() || (!control && id == IDOK)) Ok();
    else if (control == cancel_.GetHwnd() || (!control && id == IDCANCEL)) Cancel();
}

void AppointmentEditor::OnKeyDown(UINT key, UINT) {
    if (key == VK_ESCAPE) Cancel();
}

INT_PTR AppointmentEditor::DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == closeAllMessage_ && closeAllMessage_ != 0) {
        // The owner deletes the page; the base would delete it here. Nothing is saved.
        Cancel();
        return 0;
    }
    return DialogWnd::DialogProc(hwnd, message, wParam, lParam);
}

void AppointmentEditor::OnClose() {
    // The close-all broadcast: nothing is saved.
    Cancel();
}

void AppointmentEditor::OpenMenu(Menu menu, std::vector<std::u16string> entries, const std::u16string& header,
                                 int current) {
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

void AppointmentEditor::OnDeferredCommand(UINT id) {
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

void AppointmentEditor::ActivateRow(Row row) {
    switch (row) {
    case Row::Subject: SetFocus(subject_.GetHwnd()); return;
    case Row::Location: SetFocus(location_.GetHwnd()); return;
    case Row::Start: PickStart(false); return;
    case Row::End: PickStart(true); return;
    case Row::AllDay: draft_.SetAllDay(!draft_.Record().allDay); break;
    case Row::Recurrence: OpenRecurrence(); return;
    case Row::Reminder: {
        menuKeys_ = EditorTexts::ReminderMenuKeys(draft_.Record().reminderSet);
        std::vector<std::u16string> entries;
        for (const char* key : menuKeys_) entries.push_back(Lang(key));
        OpenMenu(Menu::Reminder, entries, Lang("addmodify.Reminder"));
        return;
    }
    case Row::Categories: EditCategories(); return;
    case Row::BusyStatus:
    case Row::Sensitivity: {
        std::vector<std::u16string> entries;
        const bool busy = row == Row::BusyStatus;
        for (int i = 0; i < 4; ++i)
            entries.push_back(busy ? EditorTexts::BusyStatusLabel(i) : EditorTexts::SensitivityLabel(i));
        OpenMenu(busy ? Menu::BusyStatus : Menu::Sensitivity, entries, draft_.Label(row),
                 busy ? draft_.Record().busyStatus : draft_.Record().sensitivity);
        return;
    }
    case Row::Attendees: EditAttendees(); return;
    case Row::Attachments: EditAttachments(); return;
    case Row::Notes: EditNotes(); return;
    }
    Fill();
}

void AppointmentEditor::OnMenuChoice(int index) {
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
    case Menu::Locations:
        if (index < static_cast<int>(menuValues_.size())) {
            location_.SetText(menuValues_[static_cast<size_t>(index)]);
            draft_.SetLocation(location_.GetText());
        }
        return;
    case Menu::Reminder: {
        if (index >= static_cast<int>(menuKeys_.size())) return;
        const std::string key = menuKeys_[static_cast<size_t>(index)];
        if (key == "set_datetime" || key == "change_datetime") PickReminderMoment();
        else if (key == "set_span" || key == "change_span") PickReminderSpan();
        else if (key == "unset") draft_.SetReminder(false, 0);
        break;
    }
    case Menu::BusyStatus: draft_.SetBusyStatus(index); break;
    case Menu::Sensitivity: draft_.SetSensitivity(index); break;
    case Menu::Recurrence: {
        // Entry 0 is the pattern editor; the end-of-recurrence entries follow.
        if (index == 0) {
            const auto pattern = RecurrenceEditorPage::Edit(window, draft_.Record().recurrence,
                                                            DateTime(draft_.Record().start));
            if (pattern) draft_.SetRecurrence(*pattern);
            break;
        }
        const std::string key = EditorTexts::RecurrenceEndKeys().at(static_cast<size_t>(index - 1));
        if (key == "SetOccurrences") {
            const int current = std::max(1, draft_.Record().recurrence.Occurrences);
            const auto text = TextEntryPage::Edit(window, Lang("SetOccurrences"), ToU16(current), false, 3);
            if (!text) return;
            const int count = std::atoi(Utf16ToUtf8(*text).c_str());
            if (count < 1 || count > kMaxOccurrences) {
                MessagePage::Tell(window, Lang("editor.BadCount"));
                return;
            }
            draft_.SetRecurrenceEnd(count, 0.0);
        } else if (key == "SetPatternEndDate") {
            const double end = draft_.Record().recurrence.PatternEndDate;
            const auto date = DatePickerPage::Pick(window, DateTime(end > 0.0 ? end : draft_.Record().start));
            if (!date) return;
            if (!date->IsValid() || date->GetYear() < AppointmentDraft::kFirstYear ||
                date->GetYear() > AppointmentDraft::kLastYear) {
                MessagePage::Tell(window, Lang("editor.DateOutOfRange"));
                return;
            }
            draft_.SetRecurrenceEnd(0, date->StartOfDay().ToDate());
        } else {
            draft_.SetRecurrenceEnd(0, 0.0);
        }
        break;
    }
    }
    Fill();
}

void AppointmentEditor::PickStart(bool end) {
    const PimRecord& r = draft_.Record();
    DateTime initial(end ? r.end : r.start);
    if (end && r.allDay && r.end > r.start) initial = DateTime(r.end - 1.0);
    std::optional<DateTime> chosen =
        r.allDay ? DatePickerPage::Pick(window, initial) : DateTimePickerPage::Pick(window, initial);
    if (!chosen) return;
    if (!(end ? draft_.SetEnd(*chosen) : draft_.SetStart(*chosen))) {
        MessagePage::Tell(window, Lang("editor.DateOutOfRange"));
        return;
    }
    Fill();
}

void AppointmentEditor::PickReminderMoment() {
    const auto moment = DateTimePickerPage::Pick(window, draft_.ReminderMoment());
    if (!moment) return;
    if (!draft_.SetReminderMoment(*moment)) {
        // Repainted first, so that the message stands over the list as it is.
        Fill();
        UpdateWindow(window);
        MessagePage::Tell(window, Lang("ReminderInvalid"));
    }
}

void AppointmentEditor::PickReminderSpan() {
    const auto minutes = TimeSpanPickerPage::Pick(window, draft_.Record().reminderSet ? draft_.Record().reminderMinutes : 0);
    if (minutes && *minutes >= 0) draft_.SetReminder(true, *minutes);
}

void AppointmentEditor::OpenRecurrence() {
    if (draft_.GetMode() == AppointmentDraft::Mode::Occurrence) return; // one occurrence has no pattern of its own
    if (draft_.RuleNotEditable()) {
        MessagePage::Tell(window, Lang("editor.RuleKept"));
        return;
    }
    std::vector<std::u16string> entries{Lang("addmodify.EditPattern")};
    if (draft_.Record().isRecurring)
        for (const char* key : EditorTexts::RecurrenceEndKeys()) entries.push_back(Lang(key));
    if (entries.size() == 1) {
        OnMenuChoice((menu_ = Menu::Recurrence, 0));
        return;
    }
    OpenMenu(Menu::Recurrence, entries, Lang("addmodify.EditPattern"));
}

void AppointmentEditor::EditNotes() {
    const auto text = TextEntryPage::Edit(window, Lang("addmodify.Notes"), draft_.Record().body, true,
                                          AppointmentDraft::kMaxNotes);
    if (!text) return;
    draft_.SetNotes(*text);
    Fill();
}

void AppointmentEditor::EditCategories() {
    const auto categories = CategoryPickerPage::Pick(window, draft_.Record().categories);
    if (!categories) return;
    draft_.SetCategories(*categories);
    Fill();
}

void AppointmentEditor::EditAttendees() {
    const auto people = AttendeeDialog::Edit(window, draft_.Record().attendees);
    if (!people) return;
    draft_.SetAttendees(*people);
    Fill();
}

void AppointmentEditor::EditAttachments() {
    const auto attachments = AttachmentsPage::Edit(window, draft_.Record().attachments);
    if (!attachments) return;
    draft_.SetAttachments(*attachments);
    Fill();
}

void AppointmentEditor::ReloadFromStore() {
    PimSource* source = PimStore::Instance().Source();
    PimRecord fresh;
    if (!source || !source->GetItemFromOid(draft_.Original().oid, fresh)) return;
    const AppointmentDraft::Mode mode = draft_.GetMode();
    if (mode == AppointmentDraft::Mode::Occurrence) {
        const double length = draft_.Original().end - draft_.Original().start;
        draft_ = AppointmentDraft::ForRecord(fresh, mode, draft_.OccurrenceStart(), draft_.OccurrenceStart() + length);
    } else {
        draft_ = AppointmentDraft::ForRecord(fresh, mode);
    }
    subject_.SetText(draft_.Record().subject);
    location_.SetText(draft_.Record().location);
    Fill();
}

void AppointmentEditor::Ok() {
    if (closed_) return;
    // What the fields hold now, also when no change was reported yet.
    draft_.SetSubject(subject_.GetText());
    draft_.SetLocation(location_.GetText());
    switch (AppointmentSaver::Save(window, draft_)) {
    case AppointmentSaver::Outcome::Saved:
        saved_ = true;
        Close();
        return;
    case AppointmentSaver::Outcome::Reload: ReloadFromStore(); return;
    case AppointmentSaver::Outcome::Discard: Close(); return;
    case AppointmentSaver::Outcome::Stay: Fill(); return;
    }
}

void AppointmentEditor::Cancel() {
    if (closed_) return;
    // A duplicate exists only for this editor: Cancel takes it back.
    if (draft_.GetMode() == AppointmentDraft::Mode::Duplicate) AppointmentSaver::RemoveCopy(draft_.Original().oid);
    Close();
}

void AppointmentEditor::Close() {
    closed_ = true;
    ShowWindow(window, SW_HIDE);
    if (closeHandler_) closeHandler_(*this);
}

} // namespace mirodate
