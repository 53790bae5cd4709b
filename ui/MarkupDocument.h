#pragma once
// Mark-up text after parsing: the visible text in UTF-8 (the form the layout
// engine reads), cut into runs of one style each, with the links and
// pictures it holds. Offsets are byte offsets into `text`.
#include "platform/Types.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace mirodate {

struct MarkupStyle {
    enum Flag : std::uint8_t {
        kBold = 1,
        kItalic = 2,
        kUnderline = 4,
        kStrike = 8,
        kSuperscript = 16,
        kSubscript = 32,
        // The blank line between paragraphs, drawn lower than a text line.
        kParagraphGap = 64,
    };
    std::uint8_t flags = 0;
    bool hasColor = false;
    // The colour was set inside the link the run belongs to, so it beats the link colour.
    bool colorInsideLink = false;
    COLORREF color = 0;
    int link = -1; // index into MarkupDocument::links

    bool Has(Flag flag) const { return (flags & flag) != 0; }
    bool operator==(const MarkupStyle& other) const {
        return flags == other.flags && hasColor == other.hasColor &&
               colorInsideLink == other.colorInsideLink && color == other.color && link == other.link;
    }
    bool operator!=(const MarkupStyle& other) const { return !(*this == other); }
};

struct MarkupRun {
    std::size_t begin = 0;
    std::size_t end = 0;
    MarkupStyle style;
};

struct MarkupLink {
    // The target as written: the href, or else the onclick text.
    std::u16string target;
    std::u16string id;
    std::size_t begin = 0;
    std::size_t end = 0;
};

struct MarkupImage {
    std::size_t offset = 0; // of the object replacement character that stands for it
    std::u16string id;
    int width = -1; // -1: not given
    int height = -1;
    int vspace = 0;
    int hspace = 0;
    int link = -1;
};

struct MarkupDocument {
    std::string text;
    std::vector<MarkupRun> runs;
    std::vector<MarkupLink> links;
    std::vector<MarkupImage> images;
    // The source was longer than the text box shows; the text ends with an ellipsis.
    bool truncated = false;
};

} // namespace mirodate
