#pragma once
// The task editor: the subject field at the top (with a button that offers
// the subject templates) and rows for the start and due dates (each may be
// none), complete, priority, recurrence, reminder (counted back from the due
// date), categories, sensitivity and notes. A tap on a row opens its picker,
// its page or a small menu; OK saves through TaskSaver and closes, Cancel
// closes (and removes the fresh copy of a duplicate). The view router owns
// it and deletes it once it has closed.
#include "forms/EditorPage.h"
#include "forms/TaskDraft.h"
#include "ui/TextFieldWnd.h"

#include <functional>
#include <string>
#include <vector>

namespace mirodate {

class TaskEditor : public EditorPage {
public:
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
    TextFieldWnd& SubjectField() { return subject_; }
    ButtonWnd& TemplatesButton() { return templates_; }
    // The list index of a row, -1 when the list does not show it.
    int RowIndex(TaskDraft::Row row) const;
    // What a tap on a row does.
    void ActivateRow(TaskDraft::Row row);

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
    enum Menu { kSubjects = 1, kStartDate, kDueDate, kPriority, kReminder, kSensitivity, kRecurrence };

    void ChooseDate(TaskDraft::Row row);
    void PickDate(TaskDraft::Row row);
    void OpenRecurrence();
    void OnRecurrenceChoice(int index);

    TaskDraft draft_;
    TextFieldWnd subject_;
    ButtonWnd templates_;
    std::vector<std::u16string> subjects_;  // the templates offered
    std::vector<const char*> reminderKeys_; // the reminder menu's entries
    std::function<void(TaskEditor&)> closeHandler_;
};

} // namespace mirodate
