#pragma once
// A modal page with one text field: the notes of an appointment (several
// lines) or a number. Returns nothing on Cancel.
#include "forms/SmallFormPage.h"
#include "ui/TextFieldWnd.h"

#include <functional>
#include <optional>

namespace mirodate {

class TextEntryPage : public SmallFormPage {
public:
    TextEntryPage(std::u16string title, std::u16string text, bool multiLine, std::size_t limit);
    ~TextEntryPage() override;

    static std::optional<std::u16string> Edit(HWND owner, const std::u16string& title,
                                              const std::u16string& text, bool multiLine, std::size_t limit);
    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(TextEntryPage& page)> observer);

    TextFieldWnd& Field() { return field_; }
    std::u16string Text() const { return text_; }

    void OnDialogReady() override;

protected:
    void CreateControls() override;
    void LayoutControls(const RECT& area) override;
    void OnControl(HWND control, UINT code) override;

private:
    std::u16string text_;
    bool multiLine_;
    std::size_t limit_;
    TextFieldWnd field_;
};

} // namespace mirodate
