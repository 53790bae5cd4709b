#pragma once
// The editing model of a text field, without a window: the text with its
// caret, selection and limit, the input method's composition shown at the
// caret, and what keys, typed characters, the clipboard commands and a
// double-tapped word do to them. The field lays out, scrolls, paints and
// tells its parent after each edit, as the Edit it gets back says.
#include "ui/TextEditBuffer.h"
#include "ui/WinTypes.h"

#include <string>

namespace mirodate {

class TextFieldLayout;

class TextFieldEditor {
public:
    // What an edit did, for the field to show and report.
    struct Edit {
        bool relayout = false; // a composition ended: the shown text is the buffer's again
        bool changed = false;  // the text changed
        bool cut = false;      // input was cut at the limit
        bool moved = false;    // the caret or the selection moved
        bool enter = false;    // Enter was pressed
    };

    explicit TextFieldEditor(bool multiLine = false);

    // Starts the text afresh (empty) as a field of that kind, keeping the limit.
    void Reset(bool multiLine);

    TextEditBuffer& Buffer() { return buffer_; }
    const TextEditBuffer& Buffer() const { return buffer_; }

    // The composition in progress (empty: none) and its cursor in code units.
    const std::u16string& Composition() const { return composition_; }
    // The caret in the shown text, the composition included.
    int ShownCaret() const { return buffer_.Caret() + compositionCursor_; }
    // A position in the shown text as a position in the buffer.
    int BufferPosition(int shown) const;
    // The composition as the field can hold it: cleaned, and only as much as
    // the limit leaves room for.
    std::u16string FitComposition(const std::u16string& composition) const;
    void SetComposition(std::u16string composition, int cursor);
    // Drops the composition; true when there was one.
    bool EndComposition();
    // The field lost the focus: no composition, no half-typed surrogate pair.
    bool LoseFocus();

    // Replaces the whole text (no composition left).
    void SetText(const std::u16string& text);
    // Replaces the selection as if typed.
    Edit Insert(const std::u16string& text);
    // Caret keys, Delete, and Ctrl+A, C, X and V. `layout` is the shown text
    // laid out, for moving by lines.
    Edit OnKey(UINT key, bool shift, bool control, const TextFieldLayout& layout);
    // The characters keys stand for: Backspace and Enter.
    Edit OnKeyChar(char16_t ch, bool control);
    // A character of text typed or committed by an input method, which ends
    // the composition it came from. A surrogate pair comes in two calls.
    Edit OnTextChar(char16_t ch);

    Edit Cut();
    void Copy() const;
    Edit Paste();
    Edit SelectAll();
    Edit DeleteSelection();

    // A double tap selects the word at `index`; dragging on from there
    // selects up to the drag's position and keeps the whole word selected.
    void SelectWordAt(int index);
    void ExtendWordSelection(int index);

private:
    TextEditBuffer buffer_;
    std::u16string composition_;
    int compositionCursor_ = 0;
    char16_t pendingHighSurrogate_ = 0;
    bool lastTypedCr_ = false;
    int wordStart_ = 0;
    int wordEnd_ = 0;
};

} // namespace mirodate
