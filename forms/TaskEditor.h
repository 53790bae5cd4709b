#pragma once
// The task editor: a page with the subject field at the top (with a button
// that offers the subject templates), a touch list of the other field rows
// (start and due date, complete, priority, recurrence, reminder,
// categories, sensitivity, notes), and OK and Cancel. A tap on a row opens
// its picker, its page or a small menu; OK saves through TaskSaver and
// closes, Cancel closes (and removes the fresh copy of a duplicate).
// Modeless: the view router owns it and deletes it once it has closed.
#include "forms/TaskDraft.h"
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

class TaskEditor : public DialogWnd {
public:
    // Deferred commands: a row tap (the row's index added), then the
    // entries of the menu a row opened (the entry's index added).
    static constexpr UINT kCmdRowBase = 0x7A00;
    static constexpr UINT kCmdMenuBase = 0x7B00;
    static constexpr UINT kCmdLimit = 0x100;
    static constexpr int kSubjectField = 101;

    explicit TaskEditor(TaskDraft draft);
    ~TaskEditor() override;

    // Creates the page over `owner` and shows it.
    HWND Open(HWND owner);
    // Called once the page has closed (saved, cancelled or discarded).
    void SetCloseHandler(std::function<void(TaskEditor&)> handler) { closeHandler_ = std::move(handler); }
    // Called with each editor once it is shown (tests drive it through it).
    static void SetOpenObserver(std::function<void(TaskEditor& editor)> observer);

    const TaskDraft& Draft() const { return draft_; }
    bool IsClosed() const { return closed_; }
    bool WasSaved() const { return saved_; }
    TouchListCtrlWnd& List() { return list_; }
    TextFieldWnd& SubjectField() { return subject_; }
    ButtonWnd& TemplatesButton() { return subjectList_; }
    ButtonWnd& OkButton() { return ok_; }
    ButtonWnd& CancelButton() { return cancel_; }
    // The list index of a row, -1 when the list does not show it.
    int RowIndex(TaskDraft::Row row) const;
    // What a tap on a row does.
    void ActivateRow(TaskDraft::Row row);
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
    enum class Menu { None, Subjects, StartDate, DueDate, Priority, Reminder, Sensitivity, Recurrence };

    void Layout();
    void Fill();
    void Close();
    void OpenMenu(Menu menu, std::vector<std::u16string> entries, const std::u16string& header, int current = -1);
    void OnMenuChoice(int index);
    void ChooseDate(TaskDraft::Row row);
    void PickDate(TaskDraft::Row row);
    void PickReminderMoment();
    void PickReminderSpan();
    void OpenRecurrence();
    void ReloadFromStore();
    std::u16string Title() const;

    TaskDraft draft_;
    TextFieldWnd subject_;
    ButtonWnd subjectList_;
    TouchListCtrlWnd list_;
    ButtonWnd ok_;
    ButtonWnd cancel_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> bold_;
    std::vector<TaskDraft::Row> shown_; // the rows of the list, in order
    Menu menu_ = Menu::None;
    std::vector<std::u16string> menuValues_;
    std::vector<const char*> menuKeys_;
    std::function<void(TaskEditor&)> closeHandler_;
    bool closed_ = false;
    bool saved_ = false;
    UINT closeAllMessage_ = 0;
};

} // namespace mirodate
