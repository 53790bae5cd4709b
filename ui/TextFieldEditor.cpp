#include "ui/TextFieldEditor.h"

#include "platform/TextUtil.h"
#include "platform/VirtualKeys.h"
#include "ui/Clipboard.h"
#include "ui/TextFieldLayout.h"

#include <algorithm>

namespace mirodate {

TextFieldEditor::TextFieldEditor(bool multiLine) : buffer_(multiLine) {}

void TextFieldEditor::Reset(bool multiLine) {
    TextEditBuffer fresh(multiLine);
    fresh.SetLimit(buffer_.Limit());
    buffer_ = fresh;
}

int TextFieldEditor::BufferPosition(int shown) const {
    // Outside a composition the shown text is the buffer's.
    if (composition_.empty() || shown <= buffer_.Caret())
        return shown;
    return std::max(buffer_.Caret(), shown - static_cast<int>(composition_.size()));
}

std::u16string TextFieldEditor::FitComposition(const std::u16string& composition) const {
    std::u16string clean = TextEditBuffer::Clean(composition, false);
    const std::size_t room =
        buffer_.Limit() - std::min(buffer_.Limit(), static_cast<std::size_t>(buffer_.Length()));
    if (clean.size() > room)
        clean.resize(room);
    return clean;
}

void TextFieldEditor::SetComposition(std::u16string composition, int cursor) {
    composition_ = std::move(composition);
    compositionCursor_ = std::min(cursor, static_cast<int>(composition_.size()));
}

bool TextFieldEditor::EndComposition() {
    if (composition_.empty())
        return false;
    composition_.clear();
    compositionCursor_ = 0;
    return true;
}

bool TextFieldEditor::LoseFocus() {
    pendingHighSurrogate_ = 0;
    return EndComposition();
}

void TextFieldEditor::SetText(const std::u16string& text) {
    composition_.clear();
    compositionCursor_ = 0;
    buffer_.SetText(text);
}

TextFieldEditor::Edit TextFieldEditor::Insert(const std::u16string& text) {
    Edit edit;
    edit.changed = buffer_.Insert(text, &edit.cut);
    return edit;
}

TextFieldEditor::Edit TextFieldEditor::OnKey(UINT key, bool shift, bool control,
                                             const TextFieldLayout& layout) {
    Edit edit;
    const int caret = buffer_.Caret();
    auto move = [&](int index) {
        buffer_.MoveCaret(index, shift);
        edit.moved = true;
    };
    switch (key) {
    case VK_LEFT:
        if (buffer_.HasSelection() && !shift)
            move(buffer_.SelectionStart());
        else
            move(control ? buffer_.PreviousWordStart(caret) : buffer_.PreviousPosition(caret));
        break;
    case VK_RIGHT:
        if (buffer_.HasSelection() && !shift)
            move(buffer_.SelectionEnd());
        else
            move(control ? buffer_.NextWordEnd(caret) : buffer_.NextPosition(caret));
        break;
    case VK_UP:
    case VK_DOWN: {
        if (!buffer_.IsMultiLine())
            break;
        const RECT at = layout.CaretRect(caret);
        const int y = key == VK_UP ? at.top - 1 : at.bottom + 1;
        if (y < 0)
            move(0);
        else if (y >= layout.Height())
            move(buffer_.Length());
        else
            move(layout.HitTest(at.left, y));
        break;
    }
    case VK_HOME:
        move(control ? 0 : layout.LineStart(caret));
        break;
    case VK_END:
        move(control ? buffer_.Length() : layout.LineEnd(caret));
        break;
    case VK_DELETE:
        if (shift && buffer_.HasSelection())
            return Cut();
        edit.changed = buffer_.DeleteForward(control);
        break;
    case 'A':
        if (control)
            return SelectAll();
        break;
    case 'C':
        if (control)
            Copy();
        break;
    case 'X':
        if (control)
            return Cut();
        break;
    case 'V':
        if (control)
            return Paste();
        break;
    default:
        break;
    }
    return edit;
}

TextFieldEditor::Edit TextFieldEditor::OnKeyChar(char16_t ch, bool control) {
    Edit edit;
    if (ch == u'\b') {
        edit.changed = buffer_.DeleteBackward(control);
    } else if (ch == u'\r') {
        if (buffer_.IsMultiLine())
            edit = Insert(u"\n");
        edit.enter = true;
    }
    return edit;
}

TextFieldEditor::Edit TextFieldEditor::OnTextChar(char16_t ch) {
    Edit edit;
    // Committed text ends the composition it came from.
    edit.relayout = EndComposition();
    if (IsHighSurrogate(ch)) {
        pendingHighSurrogate_ = ch; // the low half follows in the next call
        return edit;
    }
    // CR LF from an input method is one line break, as in pasted text.
    const bool afterCr = lastTypedCr_;
    lastTypedCr_ = ch == u'\r';
    if (afterCr && ch == u'\n')
        return edit;
    std::u16string text;
    if (IsLowSurrogate(ch) && pendingHighSurrogate_)
        text.push_back(pendingHighSurrogate_);
    pendingHighSurrogate_ = 0;
    text.push_back(ch);
    // Control characters an input method sends are cleaned away, except a
    // line break in a multi-line field.
    const Edit typed = Insert(text);
    edit.changed = typed.changed;
    edit.cut = typed.cut;
    return edit;
}

TextFieldEditor::Edit TextFieldEditor::Cut() {
    Edit edit;
    if (!buffer_.HasSelection())
        return edit;
    Clipboard::SetText(buffer_.SelectedText());
    edit.changed = buffer_.DeleteSelection();
    return edit;
}

void TextFieldEditor::Copy() const {
    if (buffer_.HasSelection())
        Clipboard::SetText(buffer_.SelectedText());
}

TextFieldEditor::Edit TextFieldEditor::Paste() {
    if (!Clipboard::HasText())
        return Edit();
    // Only what can fit is converted; a huge clipboard is not read whole.
    return Insert(Clipboard::GetText(buffer_.Limit() + 1));
}

TextFieldEditor::Edit TextFieldEditor::SelectAll() {
    buffer_.SelectAll();
    Edit edit;
    edit.moved = true;
    return edit;
}

TextFieldEditor::Edit TextFieldEditor::DeleteSelection() {
    Edit edit;
    edit.changed = buffer_.DeleteSelection();
    return edit;
}

void TextFieldEditor::SelectWordAt(int index) {
    buffer_.SelectWord(index);
    wordStart_ = buffer_.SelectionStart();
    wordEnd_ = buffer_.SelectionEnd();
}

void TextFieldEditor::ExtendWordSelection(int index) {
    if (index < wordStart_)
        buffer_.SetSelection(wordEnd_, index);
    else
        buffer_.SetSelection(wordStart_, std::max(index, wordEnd_));
}

} // namespace mirodate
