#pragma once
// The laid-out text of a text field: one line that runs on to the right, or
// lines wrapped at word boundaries to a width. It answers what the field
// needs to edit by finger and key: where the caret of a code-unit position
// is, which position a point falls on, where a visual line starts and ends;
// and it draws the text with the selection marked and the input method's
// composition underlined. Positions are UTF-16 code units; pango's byte
// offsets stay inside.
#include "platform/Types.h"
#include "ui/WinTypes.h"

#include <string>
#include <vector>

typedef struct _PangoLayout PangoLayout;

namespace mirodate {

class Dc;
class Font;

class TextFieldLayout {
public:
    TextFieldLayout();
    ~TextFieldLayout();
    TextFieldLayout(const TextFieldLayout&) = delete;
    TextFieldLayout& operator=(const TextFieldLayout&) = delete;

    // Lays the text out again; `wrapWidth` 0 keeps it on one line.
    void SetText(const std::u16string& text, const Font& font, int wrapWidth);
    int Width() const { return width_; }
    int Height() const { return height_; }
    int LineHeight() const { return lineHeight_; }

    // The caret's place at `index`: x, top and height in layout pixels.
    RECT CaretRect(int index) const;
    // The caret position nearest to a point (layout pixels).
    int HitTest(int x, int y) const;
    // The first and the end position of the visual line holding `index`.
    int LineStart(int index) const;
    int LineEnd(int index) const;

    // Marks drawn by the next Draw: the selection [start, end) in its colours
    // and the composition [start, end) underlined; empty ranges mark nothing.
    void SetMarks(int selectionStart, int selectionEnd, COLORREF selectionText, COLORREF selectionBack,
                  int compositionStart, int compositionEnd);
    void Draw(Dc& dc, int x, int y, COLORREF color) const;

private:
    int ByteOf(int index) const;
    int IndexOfByte(int byte) const;

    PangoLayout* layout_ = nullptr;
    std::vector<int> byteOf_{0}; // byte offset of every code-unit position, and of the end
    int width_ = 0;
    int height_ = 0;
    int lineHeight_ = 1;
    int offsetX_ = 0;
    int length_ = 0;
    // The marks set last: setting the same again would lay the text out anew.
    struct Marks {
        int selectionStart = 0, selectionEnd = 0, compositionStart = 0, compositionEnd = 0;
        COLORREF selectionText = 0, selectionBack = 0;
        bool operator==(const Marks&) const = default;
    } marks_;
};

} // namespace mirodate
