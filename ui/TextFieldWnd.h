#pragma once
// The text field of the toolkit, one-line or multi-line. It takes typed text
// and input-method compositions (underlined at the caret) while it has the
// focus, moves the caret by tap and keys, selects by drag, double tap (a
// word) and Ctrl+A, scrolls sideways (one line) or, wrapped, up and down by
// finger as the lists do, keeps to its length limit and tells its parent
// about every change and about Enter. A long press opens the editing pop-up.
//
// Notifications to the parent: WM_COMMAND with the field's id and EN_CHANGE
// after every change of the text, EN_MAXTEXT when input was cut at the limit
// and EN_ENTER for the Enter key; the pop-up's insert entries arrive as
// WM_NOTIFY NM_TEXTFIELD_INSERT with the command in an NMTEXTFIELDINSERT.
#include "ui/BaseWnd.h"
#include "ui/Font.h"
#include "ui/TextFieldEditor.h"
#include "ui/TextFieldLayout.h"
#include "ui/TouchScroller.h"
#include "ui/TouchScrollerHost.h"

#include <memory>
#include <string>
#include <vector>

namespace mirodate {

struct ContextMenuItem;

constexpr const char* kTextFieldClass = "KESTRELIA::TEXTFIELDWND";

// WM_COMMAND notification codes.
constexpr WORD EN_CHANGE = 0x0300;
constexpr WORD EN_MAXTEXT = 0x0501;
constexpr WORD EN_ENTER = 0x0800;
// WM_NOTIFY code: an insert entry of the pop-up was chosen.
constexpr UINT NM_TEXTFIELD_INSERT = 0x81A0;

struct NMTEXTFIELDINSERT {
    NMHDR header;
    UINT command = 0; // TextFieldWnd::kCommandInsert...
};

class TextFieldWnd : public BaseWnd, public TouchScrollerHost {
public:
    // The pop-up's commands.
    static constexpr UINT kCommandInsertContact = 1;
    static constexpr UINT kCommandInsertLocation = 2;
    static constexpr UINT kCommandSelectAll = 3;
    static constexpr UINT kCommandInsertDate = 4;
    static constexpr UINT kCommandCut = 768;
    static constexpr UINT kCommandCopy = 769;
    static constexpr UINT kCommandPaste = 770;
    static constexpr UINT_PTR kLongPressTimer = 0x7C10;

    TextFieldWnd();
    ~TextFieldWnd() override;

    HWND Create(HWND parent, int id, int x, int y, int width, int height, bool multiLine);

    const std::u16string& GetText() const { return editor_.Buffer().Text(); }
    // Replaces the text (no change notification: the caller knows).
    void SetText(const std::u16string& text);
    void SetLimit(std::size_t units);
    std::size_t Limit() const { return editor_.Buffer().Limit(); }
    void SetFont(const LOGFONT& logFont);
    // With the flag on the pop-up leaves out the three insert entries; with
    // it off they are listed, greyed unless insert commands are enabled.
    void SetNoInsert(bool noInsert) { noInsert_ = noInsert; }
    void SetInsertCommandsEnabled(bool enabled) { insertEnabled_ = enabled; }
    bool IsMultiLine() const { return editor_.Buffer().IsMultiLine(); }

    int SelectionStart() const { return editor_.Buffer().SelectionStart(); }
    int SelectionEnd() const { return editor_.Buffer().SelectionEnd(); }
    int Caret() const { return editor_.Buffer().Caret(); }
    void SetSelection(int anchor, int caret);
    const std::u16string& Composition() const { return editor_.Composition(); }

    // The editing commands, as the pop-up and the keys use them.
    void Cut();
    void Copy();
    void Paste();
    void SelectAll();
    // Replaces the selection as if typed (notifies the parent).
    void ReplaceSelection(const std::u16string& text);
    // Opens the pop-up now, as a long press at (x, y) would.
    void OpenMenu();
    // The pop-up's entries for the current selection and clipboard.
    std::vector<ContextMenuItem> MenuItems() const;

    int ScrollX() const { return scrollX_; }
    int ScrollY() const;

    void OnPaint(HDC dc) override;
    LRESULT OnPointerDown(int button, int x, int y, WPARAM keys) override;
    void OnPointerMove(int x, int y, WPARAM keys) override;
    LRESULT OnPointerUp(int button, int x, int y, WPARAM keys) override;
    LRESULT OnMouseWheel(UINT keys, short delta, int x, int y) override;
    void OnCaptureChanged(HWND newCapture) override;
    void OnKeyDown(UINT key, UINT flags) override;
    void OnChar(char16_t ch, UINT flags) override;
    void OnCommand(UINT id, UINT code, HWND control) override;
    void OnTimer(UINT_PTR id) override;
    void OnSize(UINT sizeParam, UINT type) override;
    void OnDestroy() override;
    LRESULT OnSetFocus(HWND previous) override;
    LRESULT OnKillFocus(HWND next) override;
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

    // TouchScrollerHost: only repaints matter to a field.
    void RefreshViewport() override;
    void OnClickEmpty(int, int) override {}
    void OnSwipeLeft() override {}
    void OnSwipeRight() override {}
    void OnLongTap(int) override {}
    void OnScrolled(int, int) override {}

private:
    enum class Press { None, Pending, Selecting, Scrolling, Word, LongPressed };

    RECT TextArea() const;
    // The shown text: the buffer with the composition at the caret.
    void Relayout();
    int PositionAt(int x, int y) const; // client point to buffer position
    void EnsureCaretVisible();
    void UpdateTextInputRect();
    // After an edit: lay out, scroll, repaint and tell the parent.
    void Changed(bool cut);
    void Moved();
    void Notify(WORD code);
    void OnComposition();
    // Shows and reports what an edit of the editor did.
    void Apply(const TextFieldEditor::Edit& edit);
    void EndPress();
    // A press the scroller took becomes the field's own (selecting).
    void TakeOverFromScroller();

    TextFieldEditor editor_; // text, caret, selection and composition
    TextFieldLayout layout_;
    std::unique_ptr<Font> font_;
    std::unique_ptr<TouchScroller> scroller_; // multi-line only
    bool noInsert_ = false;
    bool insertEnabled_ = false;
    int scrollX_ = 0;

    Press press_ = Press::None;
    int pressX_ = 0;
    int pressY_ = 0;
    int pressIndex_ = 0;
    bool pressStoppedFling_ = false;
    bool handingOver_ = false;
    DWORD lastTapTime_ = 0;
    POINT lastTapPoint_{-1000, -1000};
    bool hasTapped_ = false;
};

} // namespace mirodate
