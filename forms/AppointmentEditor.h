#pragma once
// The appointment editor: the subject and location fields at the top (each
// after its label, with a button that offers the subject templates or the
// known locations) over the EditorPage frame's field rows, OK and Cancel. A
// tap on a row opens its picker, its page or a small menu; OK saves through
// AppointmentSaver and closes, Cancel closes (and removes the fresh copy of
// a duplicate). Modeless: the view router owns it and deletes it once it
// has closed.
#include "forms/AppointmentDraft.h"
#include "forms/EditorPage.h"
#include "ui/TextFieldWnd.h"

#include <functional>
#include <string>
#include <vector>

namespace mirodate {

class AppointmentEditor : public EditorPage {
public:
    // Field ids.
    static constexpr int kSubjectField = 101;
    static constexpr int kLocationField = 102;

    explicit AppointmentEditor(AppointmentDraft draft);
    ~AppointmentEditor() override;

    // Creates the page over `owner` and shows it.
    HWND Open(HWND owner);
    // Called once the page has closed (saved, cancelled or discarded).
    void SetCloseHandler(std::function<void(AppointmentEditor&)> handler) {
        closeHandler_ = std::move(handler);
    }
    // Called with each editor once it is shown (tests drive it through it).
    static void SetOpenObserver(std::function<void(AppointmentEditor& editor)> observer);

    const AppointmentDraft& Draft() const { return draft_; }
    TextFieldWnd& SubjectField() { return subject_; }
    TextFieldWnd& LocationField() { return location_; }
    // The list index of a row, -1 when the list does not show it.
    int RowIndex(AppointmentDraft::Row row) const;
    // What a tap on a row does.
    void ActivateRow(AppointmentDraft::Row row);

    BOOL OnInitDialog() override;
    void OnPaint(HDC dc) override;

protected:
    std::u16string Title() const override;
    void CreateFields(const LOGFONT& font) override;
    int LayoutFields(int top, int width) override;
    void OnFieldCommand(HWND control, UINT code) override;
    std::vector<RowText> RowTexts() const override;
    void OnRowTap(std::size_t row) override;
    void OnMenuChoice(int menu, int index) override;
    ItemSaver::Outcome Save() override;
    void Reload() override;
    void OnCancel() override;
    void OnClosed() override;

private:
    enum Menu { kSubjects = 1, kLocations, kReminder, kBusyStatus, kSensitivity, kRecurrence };

    void OnRecurrenceChoice(int index);
    void PickStart(bool end);
    void EditNotes();
    void EditCategories();
    void EditAttendees();
    void EditAttachments();
    void OpenRecurrence();

    AppointmentDraft draft_;
    TextFieldWnd subject_;
    TextFieldWnd location_;
    ButtonWnd subjectList_;
    ButtonWnd locationList_;
    std::vector<std::u16string> menuValues_; // the subjects or locations offered
    std::vector<const char*> reminderKeys_;  // the reminder menu's entries
    std::function<void(AppointmentEditor&)> closeHandler_;
    int fieldsTop_ = 0;  // where the subject field begins
    int labelWidth_ = 0; // the column of the subject and location labels
};

} // namespace mirodate
