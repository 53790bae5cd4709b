#pragma once
// The frame of the editor's small list pages (attachments, attendees,
// categories): a SmallFormPage with a touch list of entries and a field with
// a "+" button for a new one, above or below the list. "+" or Enter in the
// field adds what is typed; OK adds it too, and stays open when it cannot be
// added. Derived pages fill the list and say what adding means.
#include "forms/SmallFormPage.h"
#include "ui/TextFieldWnd.h"
#include "ui/TouchListCtrlWnd.h"

#include <cstddef>
#include <functional>
#include <string>

namespace mirodate {

class ListEntryPage : public SmallFormPage {
public:
    ~ListEntryPage() override;

    // Adds typed text; false (with a message where one helps) when it cannot be added.
    virtual bool Add(const std::u16string& typed) = 0;
    TouchListCtrlWnd& List() { return list_; }
    TextFieldWnd& Field() { return field_; }

protected:
    enum class FieldPlace {
        AboveList, // and focused, ready for typing
        BelowList,
    };

    // The page is titled by the language key `titleKey`; the field has the
    // control id `fieldId` and takes at most `fieldLimit` characters.
    ListEntryPage(const char* titleKey, int fieldId, std::size_t fieldLimit, FieldPlace place);

    // Shows the entries anew.
    virtual void Fill() = 0;
    // Empties the list and hands its width to `addRows`; `keepScroll` keeps
    // the scroll position across the refill. Nothing before the page exists.
    void FillList(const std::function<void(int width)>& addRows, bool keepScroll);
    // "+" or Enter in the field.
    bool IsAddCommand(HWND control, UINT code) const;
    // Adds what the field holds and empties it; false when it was not added.
    bool AddTyped();

    void CreateControls() override;
    void LayoutControls(const RECT& area) override;
    void OnControl(HWND control, UINT code) override;
    bool OnAccept() override;

private:
    const char* titleKey_;
    int fieldId_;
    std::size_t fieldLimit_;
    FieldPlace place_;
    TouchListCtrlWnd list_;
    TextFieldWnd field_;
    ButtonWnd add_;
};

} // namespace mirodate
