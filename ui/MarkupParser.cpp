#include "ui/MarkupParser.h"

#include <algorithm>
#include <array>

namespace mirodate {

namespace {
constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kObjectReplacement = 0xFFFC; // stands for a picture in the text
constexpr char32_t kEllipsis = 0x2026;
constexpr char32_t kZeroWidthSpace = 0x200B;
// The longest entity we know ("&nbsp;", "&#x10FFFF;") fits in this many characters.
constexpr std::size_t kMaxEntityLength = 10;
// Tag names longer than this are no tags we know.
constexpr std::size_t kMaxTagName = 8;

bool IsSpace(char16_t ch) {
    return ch == u' ' || ch == u'\t' || ch == u'\r' || ch == u'\n' || ch == u'\f';
}
bool IsAsciiAlnum(char16_t ch) {
    return (ch >= u'a' && ch <= u'z') || (ch >= u'A' && ch <= u'Z') || (ch >= u'0' && ch <= u'9');
}
char16_t LowerAscii(char16_t ch) {
    return ch >= u'A' && ch <= u'Z' ? ch + (u'a' - u'A') : ch;
}

bool EqualsLower(std::u16string_view text, std::u16string_view lower) {
    if (text.size() != lower.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (LowerAscii(text[i]) != lower[i])
            return false;
    return true;
}

int HexDigit(char16_t ch) {
    if (ch >= u'0' && ch <= u'9')
        return ch - u'0';
    if (ch >= u'a' && ch <= u'f')
        return ch - u'a' + 10;
    if (ch >= u'A' && ch <= u'F')
        return ch - u'A' + 10;
    return -1;
}

void AppendUtf8(std::string& out, char32_t ch) {
    if (ch < 0x80) {
        out += static_cast<char>(ch);
    } else if (ch < 0x800) {
        out += static_cast<char>(0xC0 | (ch >> 6));
        out += static_cast<char>(0x80 | (ch & 0x3F));
    } else if (ch < 0x10000) {
        out += static_cast<char>(0xE0 | (ch >> 12));
        out += static_cast<char>(0x80 | ((ch >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (ch & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (ch >> 18));
        out += static_cast<char>(0x80 | ((ch >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((ch >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (ch & 0x3F));
    }
}

// Calls `visit(name, quote, value)` for each attribute of a tag's text after
// its name. A quoted value ends at its quote when blank or the tag's end
// follows, so that onclick='alert('hi')' keeps its inner quotes; an unclosed
// quote runs to the end of the tag.
template <typename Visit> void ForEachAttribute(std::u16string_view text, Visit visit) {
    std::size_t i = 0;
    const std::size_t n = text.size();
    while (i < n) {
        while (i < n && (IsSpace(text[i]) || text[i] == u'/'))
            ++i;
        const std::size_t nameStart = i;
        while (i < n && !IsSpace(text[i]) && text[i] != u'=')
            ++i;
        const std::u16string_view name = text.substr(nameStart, i - nameStart);
        if (i >= n || text[i] != u'=') {
            if (name.empty())
                ++i;
            continue;
        }
        ++i; // '='
        char16_t quote = 0;
        std::size_t valueStart = i, valueEnd = i;
        if (i < n && (text[i] == u'\'' || text[i] == u'"')) {
            quote = text[i++];
            valueStart = i;
            valueEnd = n;
            for (std::size_t k = i; k < n; ++k) {
                if (text[k] != quote)
                    continue;
                const bool last = k + 1 == n || (k + 2 == n && text[k + 1] == u'/');
                if (last || IsSpace(text[k + 1])) {
                    valueEnd = k;
                    break;
                }
            }
            i = std::min(n, valueEnd + 1);
        } else {
            while (i < n && !IsSpace(text[i]))
                ++i;
            valueEnd = i;
        }
        visit(name, quote, text.substr(valueStart, valueEnd - valueStart));
    }
}

// A whole number of pixels, cut to the largest picture side; -1 when the
// value holds no digits.
int ParseSize(std::u16string_view value) {
    std::size_t i = 0;
    while (i < value.size() && IsSpace(value[i]))
        ++i;
    if (i >= value.size() || value[i] < u'0' || value[i] > u'9')
        return -1;
    int result = 0;
    for (; i < value.size() && value[i] >= u'0' && value[i] <= u'9'; ++i)
        result = std::min(MarkupParser::kMaxImageSide, result * 10 + (value[i] - u'0'));
    return result;
}

struct NamedColor {
    std::u16string_view name;
    COLORREF color;
};
constexpr std::array<NamedColor, 19> kNamedColors{{
    {u"black", RGB(0, 0, 0)},           {u"white", RGB(0xFF, 0xFF, 0xFF)}, {u"red", RGB(0xFF, 0, 0)},
    {u"green", RGB(0, 0x80, 0)},        {u"lime", RGB(0, 0xFF, 0)},        {u"blue", RGB(0, 0, 0xFF)},
    {u"yellow", RGB(0xFF, 0xFF, 0)},    {u"gray", RGB(0x80, 0x80, 0x80)},  {u"grey", RGB(0x80, 0x80, 0x80)},
    {u"silver", RGB(0xC0, 0xC0, 0xC0)}, {u"maroon", RGB(0x80, 0, 0)},      {u"navy", RGB(0, 0, 0x80)},
    {u"purple", RGB(0x80, 0, 0x80)},    {u"teal", RGB(0, 0x80, 0x80)},     {u"olive", RGB(0x80, 0x80, 0)},
    {u"aqua", RGB(0, 0xFF, 0xFF)},      {u"fuchsia", RGB(0xFF, 0, 0xFF)},  {u"orange", RGB(0xFF, 0xA5, 0)},
    {u"brown", RGB(0xA5, 0x2A, 0x2A)},
}};
} // namespace

std::optional<COLORREF> MarkupParser::ParseColor(std::u16string_view value) {
    std::u16string_view hex = value;
    if (!hex.empty() && hex[0] == u'#')
        hex.remove_prefix(1);
    // Two characters per component; a leading blank is a zero.
    auto component = [](char16_t high, char16_t low) -> int {
        const int h = high == u' ' ? 0 : HexDigit(high);
        const int l = HexDigit(low);
        return h < 0 || l < 0 ? -1 : h * 16 + l;
    };
    if (hex.size() >= 6) {
        const int r = component(hex[0], hex[1]), g = component(hex[2], hex[3]), b = component(hex[4], hex[5]);
        bool rest = true;
        for (std::size_t i = 6; i < hex.size(); ++i)
            rest = rest && IsSpace(hex[i]);
        if (r >= 0 && g >= 0 && b >= 0 && rest)
            return RGB(r, g, b);
    }
    if (hex.size() == 3 && value[0] == u'#') {
        const int r = HexDigit(hex[0]), g = HexDigit(hex[1]), b = HexDigit(hex[2]);
        if (r >= 0 && g >= 0 && b >= 0)
            return RGB(r * 17, g * 17, b * 17);
    }
    std::u16string_view name = value;
    while (!name.empty() && IsSpace(name.front()))
        name.remove_prefix(1);
    while (!name.empty() && IsSpace(name.back()))
        name.remove_suffix(1);
    for (const NamedColor& named : kNamedColors)
        if (EqualsLower(name, named.name))
            return named.color;
    return std::nullopt;
}

MarkupDocument MarkupParser::Parse(std::u16string_view markup) {
    MarkupParser parser(markup);
    parser.Run();
    parser.Finish();
    return std::move(parser.doc_);
}

void MarkupParser::Run() {
    const std::size_t n = input_.size();
    while (pos_ < n && !Full()) {
        const char16_t ch = input_[pos_];
        if (ch == u'<') {
            if (!ReadTag()) {
                ++pos_;
                Text(u'<');
            }
        } else if (ch == u'&') {
            ReadEntity();
        } else if (ch >= 0xD800 && ch <= 0xDBFF && pos_ + 1 < n && input_[pos_ + 1] >= 0xDC00 &&
                   input_[pos_ + 1] <= 0xDFFF) {
            Text(0x10000 + ((static_cast<char32_t>(ch) - 0xD800) << 10) + (input_[pos_ + 1] - 0xDC00));
            pos_ += 2;
        } else {
            ++pos_;
            // A surrogate without its partner is no character.
            Text(ch >= 0xD800 && ch <= 0xDFFF ? kReplacement : ch);
        }
    }
    if (pos_ < n) {
        doc_.truncated = true;
        Emit(kEllipsis, CurrentStyle());
    }
}

void MarkupParser::Finish() {
    CloseLink();
    // A link that holds nothing cannot be tapped; it was dropped when closed.
}

void MarkupParser::Text(char32_t ch) {
    if (ch == u'\n')
        return LineBreak();
    if (ch == u'\r')
        return;
    // Control characters would show as boxes; a tab stays, the layout knows it.
    if ((ch < 0x20 && ch != u'\t') || (ch >= 0x7F && ch <= 0x9F))
        return;
    if (ch == kObjectReplacement)
        ch = kReplacement; // reserved for pictures
    FlushParagraph();
    const MarkupStyle style = CurrentStyle();
    if (lineLength_ >= kMaxLineLength) {
        Emit(u'\n', style);
    } else if (ch == u' ' || ch == u'\t' || ch == kZeroWidthSpace) {
        wordLength_ = 0;
    } else if (++wordLength_ > kLongWord && (wordLength_ - kLongWord) % kLongWordStep == 1) {
        Emit(kZeroWidthSpace, style);
    }
    Emit(ch, style);
}

void MarkupParser::ReadEntity() {
    const std::size_t start = pos_ + 1;
    const std::size_t limit = std::min(input_.size(), start + kMaxEntityLength);
    std::size_t end = start;
    while (end < limit && input_[end] != u';')
        ++end;
    if (end >= limit) {
        ++pos_;
        return Text(u'&');
    }
    const std::u16string_view name = input_.substr(start, end - start);
    char32_t ch = 0;
    if (name == u"amp")
        ch = u'&';
    else if (name == u"lt")
        ch = u'<';
    else if (name == u"gt")
        ch = u'>';
    else if (name == u"quot")
        ch = u'"';
    else if (name == u"apos")
        ch = u'\'';
    else if (name == u"nbsp")
        ch = 0xA0;
    else if (name.size() >= 2 && name[0] == u'#') {
        const bool hex = name[1] == u'x' || name[1] == u'X';
        char32_t value = 0;
        bool digits = false;
        for (std::size_t i = hex ? 2 : 1; i < name.size(); ++i) {
            const int d =
                hex ? HexDigit(name[i]) : (name[i] >= u'0' && name[i] <= u'9' ? name[i] - u'0' : -1);
            if (d < 0) {
                digits = false;
                break;
            }
            value = value * (hex ? 16 : 10) + d;
            digits = true;
        }
        if (digits)
            ch = value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF) ? kReplacement : value;
    }
    if (ch == 0) {
        ++pos_;
        return Text(u'&');
    }
    pos_ = end + 1;
    Text(ch);
}

bool MarkupParser::ReadTag() {
    const std::size_t n = input_.size();
    std::size_t i = pos_ + 1;
    const bool closing = i < n && input_[i] == u'/';
    if (closing)
        ++i;
    const std::size_t nameStart = i;
    while (i < n && IsAsciiAlnum(input_[i]))
        ++i;
    if (i == nameStart)
        return false;
    const std::u16string_view name = input_.substr(nameStart, i - nameStart);
    // The tag ends at the next '>'; a '<' before it means this was no tag,
    // so that a broken tag never swallows the text after it.
    std::size_t end = i;
    while (end < n && input_[end] != u'>' && input_[end] != u'<')
        ++end;
    if (end >= n || input_[end] != u'>')
        return false;
    const std::u16string_view attributes = input_.substr(i, end - i);
    pos_ = end + 1;
    if (name.size() > kMaxTagName)
        return true; // unknown: dropped
    if (closing)
        EndTag(name);
    else
        StartTag(name, attributes);
    return true;
}

void MarkupParser::StartTag(std::u16string_view name, std::u16string_view attributes) {
    if (EqualsLower(name, u"b") || EqualsLower(name, u"strong"))
        ++bold_;
    else if (EqualsLower(name, u"i") || EqualsLower(name, u"em"))
        ++italic_;
    else if (EqualsLower(name, u"u"))
        ++underline_;
    else if (EqualsLower(name, u"s") || EqualsLower(name, u"strike"))
        ++strike_;
    else if (EqualsLower(name, u"sup"))
        ++superscript_;
    else if (EqualsLower(name, u"sub"))
        ++subscript_;
    else if (EqualsLower(name, u"br"))
        LineBreak();
    else if (EqualsLower(name, u"p"))
        paragraphPending_ = !doc_.text.empty();
    else if (EqualsLower(name, u"a"))
        OpenLink(attributes);
    else if (EqualsLower(name, u"img"))
        Image(attributes);
    else if (EqualsLower(name, u"font")) {
        std::optional<COLORREF> color;
        ForEachAttribute(attributes, [&](std::u16string_view attr, char16_t, std::u16string_view value) {
            if (attr == u"color")
                color = ParseColor(value);
        });
        // A font tag without a colour we can read keeps the colour it is in.
        if (!color && !colors_.empty())
            color = colors_.back();
        if (colors_.size() < kMaxFontDepth)
            colors_.push_back(color);
        else
            ++colorOverflow_;
    }
}

void MarkupParser::EndTag(std::u16string_view name) {
    auto down = [](int& counter) { counter = std::max(0, counter - 1); };
    if (EqualsLower(name, u"b") || EqualsLower(name, u"strong"))
        down(bold_);
    else if (EqualsLower(name, u"i") || EqualsLower(name, u"em"))
        down(italic_);
    else if (EqualsLower(name, u"u"))
        down(underline_);
    else if (EqualsLower(name, u"s") || EqualsLower(name, u"strike"))
        down(strike_);
    else if (EqualsLower(name, u"sup"))
        down(superscript_);
    else if (EqualsLower(name, u"sub"))
        down(subscript_);
    else if (EqualsLower(name, u"p"))
        paragraphPending_ = !doc_.text.empty();
    else if (EqualsLower(name, u"a"))
        CloseLink();
    else if (EqualsLower(name, u"font")) {
        if (colorOverflow_ > 0)
            --colorOverflow_;
        else if (!colors_.empty())
            colors_.pop_back();
    }
}

void MarkupParser::OpenLink(std::u16string_view attributes) {
    CloseLink(); // links do not nest: a new one ends the last
    MarkupLink link;
    std::u16string_view href, onclick, id;
    bool hasHref = false;
    ForEachAttribute(attributes, [&](std::u16string_view attr, char16_t quote, std::u16string_view value) {
        if (attr == u"href") {
            href = value;
            hasHref = true;
        } else if (attr == u"onclick" && quote == u'\'') {
            onclick = value;
        } else if (attr == u"id" && quote == u'\'') {
            id = value;
        }
    });
    // An in-page anchor ("#") leaves the tap to the onclick text.
    const bool useHref = hasHref && !href.empty() && !(href[0] == u'#' && !onclick.empty());
    link.target = std::u16string(useHref ? href : onclick);
    if (link.target.empty())
        return; // an anchor, not a link
    link.id = std::u16string(id);
    link.begin = link.end = doc_.text.size();
    doc_.links.push_back(std::move(link));
    link_ = static_cast<int>(doc_.links.size()) - 1;
    linkColorDepth_ = colors_.size() + colorOverflow_;
}

void MarkupParser::CloseLink() {
    if (link_ < 0)
        return;
    MarkupLink& link = doc_.links[static_cast<std::size_t>(link_)];
    link.end = doc_.text.size();
    link_ = -1;
    // Nothing to tap: forget it (it is the last one, nothing refers to it).
    if (link.end == link.begin)
        doc_.links.pop_back();
}

void MarkupParser::Image(std::u16string_view attributes) {
    if (doc_.images.size() >= kMaxImages)
        return;
    MarkupImage image;
    ForEachAttribute(attributes, [&](std::u16string_view attr, char16_t quote, std::u16string_view value) {
        if (quote != u'\'')
            return;
        if (attr == u"id")
            image.id = std::u16string(value);
        else if (attr == u"w")
            image.width = ParseSize(value);
        else if (attr == u"h")
            image.height = ParseSize(value);
        else if (attr == u"vspace")
            image.vspace = std::max(0, ParseSize(value));
        else if (attr == u"hspace")
            image.hspace = std::max(0, ParseSize(value));
    });
    FlushParagraph();
    image.offset = doc_.text.size();
    image.link = link_;
    doc_.images.push_back(std::move(image));
    Emit(kObjectReplacement, CurrentStyle());
}

void MarkupParser::LineBreak() {
    FlushParagraph();
    Emit(u'\n', CurrentStyle());
}

void MarkupParser::FlushParagraph() {
    if (!paragraphPending_)
        return;
    paragraphPending_ = false;
    if (doc_.text.empty())
        return;
    MarkupStyle style = CurrentStyle();
    if (doc_.text.back() != '\n')
        Emit(u'\n', style);
    style.flags |= MarkupStyle::kParagraphGap;
    Emit(u'\n', style);
}

MarkupStyle MarkupParser::CurrentStyle() const {
    MarkupStyle style;
    if (bold_)
        style.flags |= MarkupStyle::kBold;
    if (italic_)
        style.flags |= MarkupStyle::kItalic;
    if (underline_)
        style.flags |= MarkupStyle::kUnderline;
    if (strike_)
        style.flags |= MarkupStyle::kStrike;
    if (superscript_)
        style.flags |= MarkupStyle::kSuperscript;
    if (subscript_)
        style.flags |= MarkupStyle::kSubscript;
    if (!colors_.empty() && colors_.back()) {
        style.hasColor = true;
        style.color = *colors_.back();
    }
    style.link = link_;
    if (link_ >= 0)
        style.colorInsideLink = colors_.size() + colorOverflow_ > linkColorDepth_;
    return style;
}

void MarkupParser::Emit(char32_t ch, const MarkupStyle& style) {
    const std::size_t begin = doc_.text.size();
    AppendUtf8(doc_.text, ch);
    const std::size_t end = doc_.text.size();
    if (!doc_.runs.empty() && doc_.runs.back().end == begin && doc_.runs.back().style == style)
        doc_.runs.back().end = end;
    else
        doc_.runs.push_back(MarkupRun{begin, end, style});
    if (link_ >= 0)
        doc_.links[static_cast<std::size_t>(link_)].end = end;
    if (ch == u'\n') {
        lineLength_ = 0;
        wordLength_ = 0;
    } else {
        ++lineLength_;
    }
}

} // namespace mirodate
