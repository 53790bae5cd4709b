#pragma once
// Reads the text box's mark-up: b/strong, i/em, u, s, sup, sub, p, br,
// font color=, a href=/onclick='/id=', img w='/h='/vspace='/hspace='/id=
// and a few character entities. Attribute names are matched as written;
// where they take a single-quoted value, only that spelling counts.
//
// Mark-up comes from users' notes and other programs, so the reader never
// fails: an unknown tag is dropped, a '<' that opens no tag is text, an end
// tag without its start tag is ignored, a start tag without its end tag lasts
// to the end, and the work is linear in the input with bounded output.
#include "ui/MarkupDocument.h"

#include <optional>
#include <string_view>
#include <vector>

namespace mirodate {

class MarkupParser {
public:
    // Visible text beyond this many UTF-8 bytes is not shown; far more than a
    // note holds, and it keeps the layout of hostile input quick.
    static constexpr std::size_t kMaxTextBytes = 64 * 1024;
    // Pictures beyond this many in one text are left out.
    static constexpr std::size_t kMaxImages = 256;
    // Sizes and margins of pictures are cut to this many pixels.
    static constexpr int kMaxImageSide = 4096;
    // Colours of nested font tags remembered; deeper ones keep the last colour.
    static constexpr std::size_t kMaxFontDepth = 64;
    // Layout aids. Wrapping inside a word costs the layout engine time that
    // grows with the square of the word's length, so a word longer than
    // kLongWord characters gets an invisible break opportunity (a zero-width
    // space) every kLongWordStep characters; and a line of more than
    // kMaxLineLength characters is broken, as the engine's coordinates would
    // overflow on it.
    static constexpr int kLongWord = 48;
    static constexpr int kLongWordStep = 8;
    static constexpr int kMaxLineLength = 8192;

    static MarkupDocument Parse(std::u16string_view markup);

    // "#RRGGBB" or "RRGGBB" (a blank counts as a leading zero, as "%2x"
    // writes it), "#RGB", or one of the basic colour names.
    static std::optional<COLORREF> ParseColor(std::u16string_view value);

private:
    explicit MarkupParser(std::u16string_view markup) : input_(markup) {}
    void Run();
    void Finish();

    void Text(char32_t ch);
    void ReadEntity();
    bool ReadTag(); // false: the '<' is text
    void StartTag(std::u16string_view name, std::u16string_view attributes);
    void EndTag(std::u16string_view name);
    void OpenLink(std::u16string_view attributes);
    void CloseLink();
    void Image(std::u16string_view attributes);
    void LineBreak();

    // Appends one character in the current style.
    void Emit(char32_t ch, const MarkupStyle& style);
    void FlushParagraph();
    MarkupStyle CurrentStyle() const;
    bool Full() const { return doc_.text.size() >= kMaxTextBytes; }

    std::u16string_view input_;
    std::size_t pos_ = 0;
    MarkupDocument doc_;

    int bold_ = 0, italic_ = 0, underline_ = 0, strike_ = 0, superscript_ = 0, subscript_ = 0;
    std::vector<std::optional<COLORREF>> colors_;
    std::size_t colorOverflow_ = 0;
    int link_ = -1;
    std::size_t linkColorDepth_ = 0;
    bool paragraphPending_ = false;
    int wordLength_ = 0; // characters since the last blank or line end
    int lineLength_ = 0; // characters since the last line end
};

} // namespace mirodate
