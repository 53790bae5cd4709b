#pragma once
// The appointment editor: a page with the subject and location fields at
// the top (each after its label, with a button that offers the subject templates or the known
// locations), a touch list of the other field rows, and OK and Cancel. A
// tap on a row opens its picker, its page or a small menu; OK saves through
// AppointmentSaver and closes, Cancel closes (and removes the fresh copy of
// a duplicate). Modeless: the view router owns it and deletes it once it
// has closed.
#include "forms/AppointmentDraft.h"
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"
#include "ui/TextFieldWnd.h"
#include "ui/TouchListCtrlWnd.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class AppointmentEditor : public DialogWnd {
public:
    // Deferred commands: a row tap (the row's index added), then the
    // entries of the menu a row opened (the entry's index added).
    static constexpr UINT kCmdRowBase = 0x7A00;
    static constexpr UINT kCmdMenuBase = 0x7B00;
    static constexpr UINT kCmdLimit = 0x100;
    // Field ids.
    static constexpr int kSubjectField = 101;
    static constexpr int kLocationField = 102;

    explicit AppointmentEditor(AppointmentDraft draft);
    ~AppointmentEditor() override;

    // Creates the page over `owner` and shows it.
    HWND Open(HWND owner);
    // Called once the page has closed (saved, cancelled or discarded).
    void SetCloseHandler(std::function<void(AppointmentEditor&)> handler) { closeHandler_ = std::move(handler); }
    // Called with each editor once it is shown (tests drive it through it).
    static void SetOpenObserver(std::function<void(AppointmentEditor& editor)> observer);

    const AppointmentDraft& Draft() const { return draft_; }
    bool IsClosed() const { return closed_; }
    bool WasSaved() const { return saved_; }
    TouchListCtrlWnd& List() { return list_; }
    TextFieldWnd& SubjectField() { return subject_; }
    TextFieldWnd& LocationField() { return location_; }
    ButtonWnd& OkButton() { return ok_; }
    ButtonWnd& CancelButton() { return cancel_; }
    // The list index of a row, -1 when the list does not show it.
    int RowIndex(AppointmentDraft::Row row) const;
    // What a tap on a row does.
    void ActivateRow(AppointmentDraft::Row row);
    // OK and Cancel, as the buttons do them.
    void Ok();
    void Cancel();

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnDeferredCommand(UINT id) override;
    void OnScreenReset() override;
    void OnClose() override;
    INT_PTR DialogProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    enum class Menu { None, Subjects, Locations, Reminder, BusyStatus, Sensitivity, Recurrence };

    void Layout();
    void Fill();
    void Close();
    void OpenMenu(Menu menu, std::vector<std::u16string> entries, const std::u16string& header, int current = -1);
    void OnMenuChoice(int index);
    void PickStart(bool end);
    void PickReminderMoment();
    void PickReminderSpan();
    void EditNotes();
    void EditCategories();
    void EditAttendees();
    void EditAttachments();
    void OpenRecurrence();
    void ReloadFromStore();
    void Styled(ButtonWnd& button);
    std::u16string Title() const;

    AppointmentDraft draft_;
    TextFieldWnd subject_;
    TextFieldWnd location_;
    ButtonWnd subjectList_;
    ButtonWnd locationList_;
    TouchListCtrlWnd list_;
    ButtonWnd ok_;
    ButtonWnd cancel_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> bold_;
    std::vector<AppointmentDraft::Row> shown_; // the rows of the list, in order
    Menu menu_ = Menu::None;
    std::vector<std::u16string> menuValues_;
    std::vector<const char*> menuKeys_;
    std::function<void(AppointmentEditor&)> closeHandler_;
    bool closed_ = false;
    bool saved_ = false;
    UINT closeAllMessage_ = 0;
    int labelWidth_ = 0; // the column of the subject and location labels
};

} // namespace mirodate
