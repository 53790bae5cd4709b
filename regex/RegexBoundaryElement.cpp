#include "regex/RegexBoundaryElement.h"

namespace mirodate {

namespace {
bool IsWordChar(char16_t c) {
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
}
} // namespace

RegexBoundaryElement::RegexBoundaryElement(Kind kind, bool positive) : kind_(kind), positive_(positive) {}

RegexBoundaryElement::~RegexBoundaryElement() = default;

bool RegexBoundaryElement::IsAt(const RegexMatchContext& ctx) const {
    int pos = ctx.pos;
    int length = ctx.length;
    const char16_t* text = ctx.text;
    switch (kind_) {
    case kTextStart:
        return pos == 0;
    case kTextEnd:
        return pos == length;
    case kTextEndOrFinalLf:
        return pos == length || (pos == length - 1 && text[pos] == u'\n');
    case kLineStart:
        return pos == 0 || text[pos - 1] == u'\n';
    case kLineEnd:
        return pos == length || text[pos] == u'\n';
    case kSearchStart:
        return pos == ctx.searchStart;
    case kWordBoundary: {
        bool before = pos > 0 && IsWordChar(text[pos - 1]);
        bool after = pos < length && IsWordChar(text[pos]);
        return before != after;
    }
    }
    return false;
}

} // namespace mirodate
