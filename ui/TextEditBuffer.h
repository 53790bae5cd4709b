#pragma once
// The text of a text field with its caret, selection and length limit: the
// editing rules without any drawing. Positions are UTF-16 code units and
// never fall between the two halves of a surrogate pair. Text that comes in
// (typed, pasted, set) is cleaned for the kind of field first: a one-line
// field turns line breaks and tabs into blanks, every field drops other
// control characters and replaces broken surrogates.
#include <cstddef>
#include <string>
#include <string_view>

namespace mirodate {

class TextEditBuffer {
public:
    // The limit a field has unless told otherwise, in code units.
    static constexpr std::size_t kDefaultLimit = 30000;

    explicit TextEditBuffer(bool multiLine = false);

    const std::u16string& Text() const { return text_; }
    int Length() const { return static_cast<int>(text_.size()); }
    bool IsMultiLine() const { return multiLine_; }

    // Cuts the text if it is longer than the new limit; true when it did.
    bool SetLimit(std::size_t limit);
    std::size_t Limit() const { return limit_; }

    int Caret() const { return caret_; }
    int Anchor() const { return anchor_; }
    int SelectionStart() const { return caret_ < anchor_ ? caret_ : anchor_; }
    int SelectionEnd() const { return caret_ < anchor_ ? anchor_ : caret_; }
    bool HasSelection() const { return caret_ != anchor_; }
    std::u16string SelectedText() const;

    // Replaces the whole text (cleaned and cut to the limit), caret at the
    // end. True when the text changed.
    bool SetText(std::u16string_view text);
    // Replaces the selection with the cleaned text, cut to the room the limit
    // leaves; the caret goes after it. `cut` tells whether anything was left
    // out. True when the text changed.
    bool Insert(std::u16string_view text, bool* cut = nullptr);
    // Backspace and Delete: the selection, else the character (or with
    // `word` the word) before or after the caret.
    bool DeleteBackward(bool word = false);
    bool DeleteForward(bool word = false);
    bool DeleteSelection();

    // Moves the caret; with `extend` the anchor stays and the selection grows.
    void MoveCaret(int index, bool extend);
    void SetSelection(int anchor, int caret);
    void SelectAll();
    // Selects the word at `index` (or the run of blanks or signs there).
    void SelectWord(int index);

    // Neighbouring caret positions, stepping over surrogate pairs.
    int PreviousPosition(int index) const;
    int NextPosition(int index) const;
    // The start of the word before `index` and the end of the word after it.
    int PreviousWordStart(int index) const;
    int NextWordEnd(int index) const;
    int WordStart(int index) const;
    int WordEnd(int index) const;
    // Start and end of the line (between line breaks) holding `index`.
    int ParagraphStart(int index) const;
    int ParagraphEnd(int index) const;

    // The text as a field of this kind keeps it.
    static std::u16string Clean(std::u16string_view text, bool multiLine);

private:
    int Clamp(int index) const;
    char32_t CodePointAt(int index) const;
    // 0 blank or break, 1 word character, 2 anything else.
    int ClassAt(int index) const;

    std::u16string text_;
    bool multiLine_;
    std::size_t limit_ = kDefaultLimit;
    int caret_ = 0;
    int anchor_ = 0;
};

} // namespace mirodate
