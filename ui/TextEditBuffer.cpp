#include "ui/TextEditBuffer.h"

#include "platform/TextUtil.h"

#include <algorithm>

namespace mirodate {

namespace {
constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kLineSeparator = 0x2028;
constexpr char16_t kParagraphSeparator = 0x2029;

bool IsControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit <= 0x9F);
}
} // namespace

TextEditBuffer::TextEditBuffer(bool multiLine) : multiLine_(multiLine) {}

std::u16string TextEditBuffer::Clean(std::u16string_view text, bool multiLine) {
    std::u16string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (unit == u'\r' || unit == u'\n' || unit == kLineSeparator || unit == kParagraphSeparator) {
            if (unit == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
                ++i; // CR LF is one break
            out.push_back(multiLine ? u'\n' : u' ');
        } else if (unit == u'\t') {
            out.push_back(u' ');
        } else if (IsControl(unit)) {
            continue;
        } else if (IsHighSurrogate(unit)) {
            if (i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
                out.push_back(unit);
                out.push_back(text[++i]);
            } else {
                out.push_back(kReplacement);
            }
        } else if (IsLowSurrogate(unit)) {
            out.push_back(kReplacement);
        } else {
            out.push_back(unit);
        }
    }
    return out;
}

int TextEditBuffer::Clamp(int index) const {
    index = std::clamp(index, 0, Length());
    // Never between the halves of a pair.
    if (index > 0 && index < Length() && IsLowSurrogate(text_[static_cast<size_t>(index)]) &&
        IsHighSurrogate(text_[static_cast<size_t>(index) - 1]))
        --index;
    return index;
}

bool TextEditBuffer::SetLimit(std::size_t limit) {
    limit_ = limit;
    if (text_.size() <= limit_)
        return false;
    size_t keep = limit_;
    if (keep > 0 && IsHighSurrogate(text_[keep - 1]))
        --keep;
    text_.resize(keep);
    caret_ = std::min(caret_, Length());
    anchor_ = std::min(anchor_, Length());
    return true;
}

std::u16string TextEditBuffer::SelectedText() const {
    return text_.substr(static_cast<size_t>(SelectionStart()),
                        static_cast<size_t>(SelectionEnd() - SelectionStart()));
}

bool TextEditBuffer::SetText(std::u16string_view text) {
    const std::u16string old = text_;
    text_.clear();
    caret_ = anchor_ = 0;
    Insert(text);
    return text_ != old;
}

bool TextEditBuffer::Insert(std::u16string_view text, bool* cut) {
    if (cut)
        *cut = false;
    const size_t start = static_cast<size_t>(SelectionStart()), end = static_cast<size_t>(SelectionEnd());
    const size_t kept = text_.size() - (end - start);
    const size_t room = limit_ > kept ? limit_ - kept : 0;
    // Only as much of a long text is cleaned as can fit: cleaning never
    // makes a text longer, so the first room + 1 units are enough to know.
    const std::u16string_view head = text.substr(0, std::min(text.size(), room + 1));
    std::u16string clean = Clean(head, multiLine_);
    if (cut)
        *cut = clean.size() > room || head.size() < text.size();
    if (clean.size() > room) {
        clean.resize(room);
        if (!clean.empty() && IsHighSurrogate(clean.back()))
            clean.pop_back();
    }
    if (clean.empty() && start == end)
        return false;
    text_.replace(start, end - start, clean);
    caret_ = anchor_ = static_cast<int>(start + clean.size());
    return true;
}

bool TextEditBuffer::DeleteSelection() {
    if (!HasSelection())
        return false;
    const int start = SelectionStart();
    text_.erase(static_cast<size_t>(start), static_cast<size_t>(SelectionEnd() - start));
    caret_ = anchor_ = start;
    return true;
}

bool TextEditBuffer::DeleteBackward(bool word) {
    if (HasSelection())
        return DeleteSelection();
    if (caret_ == 0)
        return false;
    anchor_ = caret_;
    caret_ = word ? PreviousWordStart(caret_) : PreviousPosition(caret_);
    return DeleteSelection();
}

bool TextEditBuffer::DeleteForward(bool word) {
    if (HasSelection())
        return DeleteSelection();
    if (caret_ >= Length())
        return false;
    anchor_ = caret_;
    caret_ = word ? NextWordEnd(caret_) : NextPosition(caret_);
    return DeleteSelection();
}

void TextEditBuffer::MoveCaret(int index, bool extend) {
    caret_ = Clamp(index);
    if (!extend)
        anchor_ = caret_;
}

void TextEditBuffer::SetSelection(int anchor, int caret) {
    anchor_ = Clamp(anchor);
    caret_ = Clamp(caret);
}

void TextEditBuffer::SelectAll() {
    anchor_ = 0;
    caret_ = Length();
}

void TextEditBuffer::SelectWord(int index) {
    index = Clamp(index);
    // A tap just after a word's last letter still means that word.
    if (index > 0 && (index == Length() || ClassAt(index) == 0) && ClassAt(PreviousPosition(index)) != 0)
        index = PreviousPosition(index);
    anchor_ = WordStart(index);
    caret_ = WordEnd(index);
}

int TextEditBuffer::PreviousPosition(int index) const {
    index = Clamp(index);
    if (index == 0)
        return 0;
    --index;
    if (index > 0 && IsLowSurrogate(text_[static_cast<size_t>(index)]) &&
        IsHighSurrogate(text_[static_cast<size_t>(index) - 1]))
        --index;
    return index;
}

int TextEditBuffer::NextPosition(int index) const {
    index = Clamp(index);
    if (index >= Length())
        return Length();
    if (IsHighSurrogate(text_[static_cast<size_t>(index)]) && index + 1 < Length() &&
        IsLowSurrogate(text_[static_cast<size_t>(index) + 1]))
        return index + 2;
    return index + 1;
}

char32_t TextEditBuffer::CodePointAt(int index) const {
    const char16_t unit = text_[static_cast<size_t>(index)];
    if (IsHighSurrogate(unit) && index + 1 < Length() &&
        IsLowSurrogate(text_[static_cast<size_t>(index) + 1]))
        return 0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) +
               (text_[static_cast<size_t>(index) + 1] - 0xDC00);
    return unit;
}

int TextEditBuffer::ClassAt(int index) const {
    if (index < 0 || index >= Length())
        return 0;
    const char32_t c = CodePointAt(index);
    if (c == u' ' || c == u'\n' || c == 0x3000 || c == 0xA0)
        return 0;
    return IsWordCharacter(c) ? 1 : 2;
}

int TextEditBuffer::WordStart(int index) const {
    index = Clamp(index);
    if (index >= Length())
        return index;
    const int kind = ClassAt(index);
    while (index > 0 && ClassAt(PreviousPosition(index)) == kind)
        index = PreviousPosition(index);
    return index;
}

int TextEditBuffer::WordEnd(int index) const {
    index = Clamp(index);
    if (index >= Length())
        return index;
    const int kind = ClassAt(index);
    while (index < Length() && ClassAt(index) == kind)
        index = NextPosition(index);
    return index;
}

int TextEditBuffer::PreviousWordStart(int index) const {
    index = Clamp(index);
    while (index > 0 && ClassAt(PreviousPosition(index)) == 0)
        index = PreviousPosition(index);
    if (index == 0)
        return 0;
    return WordStart(PreviousPosition(index));
}

int TextEditBuffer::NextWordEnd(int index) const {
    index = Clamp(index);
    while (index < Length() && ClassAt(index) == 0)
        index = NextPosition(index);
    return WordEnd(index);
}

int TextEditBuffer::ParagraphStart(int index) const {
    index = Clamp(index);
    while (index > 0 && text_[static_cast<size_t>(index) - 1] != u'\n')
        --index;
    return index;
}

int TextEditBuffer::ParagraphEnd(int index) const {
    index = Clamp(index);
    while (index < Length() && text_[static_cast<size_t>(index)] != u'\n')
        ++index;
    return index;
}

} // namespace mirodate
