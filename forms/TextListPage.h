#pragma once
// A page that edits a list as one text, an entry per line (the subject
// templates and the locations): a multi-line text field under a hint, with
// OK and Cancel. The page only edits; its opener reads and saves the list.
#include "forms/PickerChrome.h"
#include "ui/DialogWnd.h"
#include "ui/TextFieldWnd.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class TextListPage : public DialogWnd {
public:
    // No list needs more than this; a pasted file stops here.
    static constexpr std::size_t kMaxText = 64 * 1024;

    TextListPage(std::u16string title, const std::vector<std::u16string>& entries);
    ~TextListPage() override;

    // Called with each page once it is shown (tests answer through it).
    static void SetOpenObserver(std::function<void(TextListPage& page)> observer);

    TextFieldWnd& Field() { return field_; }
    PickerChrome& Chrome() { return chrome_; }
    // The entries as edited: one a line, spaces at either end and empty lines dropped.
    std::vector<std::u16string> Entries() const;
    // The list file's text for entries: each followed by "\r\n".
    static std::u16string FileText(const std::vector<std::u16string>& entries);

    BOOL OnInitDialog() override;
    void OnDialogReady() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnClose() override;
    void OnScreenReset() override;

private:
    void Layout();

    std::u16string title_;
    std::u16string text_;
    PickerChrome chrome_;
    TextFieldWnd field_;
    std::unique_ptr<Font> hintFont_;
    RECT hintRect_{};
};

} // namespace mirodate
