#pragma once
// The frame of an item editor: the title, the fields a derived page puts at
// the top, a touch list of field rows in the "styles.addmodifyform" colours,
// and OK and Cancel at the bottom. A tap on a row, a choice in the small
// menu a row opened, OK, Cancel, Escape and the close-all broadcast are
// routed to the derived page. Modeless: whoever opened the page owns it and
// deletes it once it has closed.
#include "forms/ItemSaver.h"
#include "ui/ButtonWnd.h"
#include "ui/DialogWnd.h"
#include "ui/Font.h"
#include "ui/TouchListCtrlWnd.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace mirodate {

class EditorPage : public DialogWnd {
public:
    // Deferred commands: a row tap (the row's index added), then the
    // entries of the menu a row opened (the entry's index added).
    static constexpr UINT kCmdRowBase = 0x7A00;
    static constexpr UINT kCmdMenuBase = 0x7B00;
    static constexpr UINT kCmdLimit = 0x100;
    // Unscaled sizes of the editors' text fields above the rows, for a
    // 240-pixel-wide screen: the field, its list button, the gap around them.
    static constexpr int kFieldHeight = 26;
    static constexpr int kListButtonWidth = 30;
    static constexpr int kFieldMargin = 4;

    ~EditorPage() override;

    // Creates the page over `owner` and shows it.
    HWND Open(HWND owner);

    bool IsClosed() const { return closed_; }
    bool WasSaved() const { return saved_; }
    TouchListCtrlWnd& List() { return list_; }
    ButtonWnd& OkButton() { return ok_; }
    ButtonWnd& CancelButton() { return cancel_; }
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

protected:
    struct RowText {
        std::u16string label;
        std::u16string value;
        bool twoLine = false; // the label over a value of several lines
    };

    EditorPage();

    virtual std::u16string Title() const = 0;
    // The fields above the list, made with the editor's font.
    virtual void CreateFields(const LOGFONT& font) = 0;
    // Places them from `top` across `width`; returns where the list begins.
    virtual int LayoutFields(int top, int width) = 0;
    // A control of the page reported `code`.
    virtual void OnFieldCommand(HWND control, UINT code) = 0;
    // The rows of the list, top to bottom.
    virtual std::vector<RowText> RowTexts() const = 0;
    virtual void OnRowTap(std::size_t row) = 0;
    // Entry `index` of the menu that OpenMenu opened as `menu`.
    virtual void OnMenuChoice(int menu, int index) = 0;
    // OK: takes what the fields hold and saves.
    virtual ItemSaver::Outcome Save() = 0;
    // The item as the store holds it now, in place of the edited one.
    virtual void Reload() = 0;
    // Cancel, before the page closes (a duplicate removes its copy).
    virtual void OnCancel() {}
    // The page has closed.
    virtual void OnClosed() = 0;

    // A small menu over the page; the choice comes to OnMenuChoice with `menu`.
    void OpenMenu(int menu, const std::vector<std::u16string>& entries, const std::u16string& header,
                  int current = -1);
    // Shows the rows' texts anew, keeping the scroll position.
    void Fill();
    static void Style(ButtonWnd& button);
    // The bold font of the row labels (null before the page is created).
    const Font* BoldFont() const { return bold_.get(); }

private:
    void Layout();
    void Close();

    TouchListCtrlWnd list_;
    ButtonWnd ok_;
    ButtonWnd cancel_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<Font> bold_;
    int menu_ = 0; // the menu open now; 0: none
    bool closed_ = false;
    bool saved_ = false;
    UINT closeAllMessage_ = 0;
};

} // namespace mirodate
