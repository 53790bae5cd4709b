#pragma once
// The program's message box: a modal panel in the skin's form colours with
// the message and a row of finger-sized buttons. The answer is the number of
// the chosen button, counted from 1; Enter chooses the first button, Escape
// the last, and the digit keys choose a button by its number. A page that is
// closed without a choice (the close-all broadcast) answers with the last
// button, the cancelling one.
//
//   if (MessagePage::YesNo(window, Lang("ConfirmDelItem"))) ...
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class MessagePage : public DialogWnd {
public:
    // Unscaled sizes for a 240-pixel-wide screen.
    static constexpr int kMargin = 6;
    static constexpr int kButtonHeight = 26;
    static constexpr int kTextHeight = 11;

    MessagePage(std::u16string text, std::vector<std::u16string> buttons);
    ~MessagePage() override;

    // Shows the page over `owner` and returns the chosen button's number.
    static int Ask(HWND owner, const std::u16string& text, std::vector<std::u16string> buttons);
    // "Yes"/"No": true for "Yes".
    static bool YesNo(HWND owner, const std::u16string& text);
    // "All"/"Single"/"Cancel": 1, 2 or 3.
    static int AllSingleCancel(HWND owner, const std::u16string& text);
    // A message with "OK".
    static void Tell(HWND owner, const std::u16string& text);

    // Called with each page once it is shown (the log and the tests read it).
    static void SetOpenObserver(std::function<void(MessagePage& page)> observer);

    const std::u16string& Text() const { return text_; }
    const std::vector<std::u16string>& Buttons() const { return labels_; }
    // A button's rectangle on the screen.
    RECT ButtonScreenRect(int index) const;
    // Ends the page as if button `number` (1-based) had been chosen.
    void Answer(int number);

    BOOL OnInitDialog() override;
    void OnDialogReady() override;
    void OnPaint(HDC dc) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnClose() override;

private:
    std::u16string text_;
    std::vector<std::u16string> labels_;
    std::vector<std::unique_ptr<ButtonWnd>> buttons_;
    std::unique_ptr<Font> font_;
    RECT textRect_{};
};

} // namespace mirodate
