#include "regex/RegexParser.h"

#include "regex/RegexAlternationElement.h"
#include "regex/RegexAtomicElement.h"
#include "regex/RegexBackrefElement.h"
#include "regex/RegexBoundaryElement.h"
#include "regex/RegexCaseFold.h"
#include "regex/RegexCharElement.h"
#include "regex/RegexCharRepeatElement.h"
#include "regex/RegexClassElement.h"
#include "regex/RegexConditionalElement.h"
#include "regex/RegexEmptyElement.h"
#include "regex/RegexFlags.h"
#include "regex/RegexGroupElement.h"
#include "regex/RegexLookaroundElement.h"
#include "regex/RegexRecursionElement.h"
#include "regex/RegexRepeatElement.h"
#include "regex/RegexSequenceElement.h"
#include "regex/RegexStringElement.h"

namespace mirodate {

namespace {

constexpr int kMaxCount = 0x7fffffff; // "unbounded" for repetitions

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool IsNameChar(char16_t c) {
    return IsDigit(c) || (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
}

int HexValue(char16_t c) {
    if (IsDigit(c))
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

int OptionBit(char16_t letter) {
    switch (letter) {
    case u's':
        return kRegexSingleLine;
    case u'm':
        return kRegexMultiLine;
    case u'g':
        return kRegexGlobal;
    case u'i':
        return kRegexIgnoreCase;
    default:
        return 0; // other letters from g to s mean nothing here
    }
}

// The set of an escape that stands for a class ("\d" ...), if it is one.
bool ClassEscape(char16_t letter, RegexCharSet& set) {
    switch (letter) {
    case u'd':
    case u'D':
        set = RegexCharSet::Digits();
        break;
    case u'w':
    case u'W':
        set = RegexCharSet::WordChars();
        break;
    case u's':
    case u'S':
        set = RegexCharSet::Spaces();
        break;
    default:
        return false;
    }
    if (letter == u'D' || letter == u'W' || letter == u'S')
        set.Negate();
    return true;
}

// The code unit of a control-character escape, or -1.
int ControlEscape(char16_t letter) {
    switch (letter) {
    case u't':
        return u'\t';
    case u'n':
        return u'\n';
    case u'r':
        return u'\r';
    case u'f':
        return u'\f';
    case u'v':
        return u'\v';
    case u'e':
        return 0x1B;
    case u'a':
        return 0x07;
    default:
        return -1;
    }
}

RegexCharSet PosixSet(std::u16string_view name, bool& known) {
    RegexCharSet set;
    known = true;
    if (name == u"alnum") {
        set = RegexCharSet::Digits();
        set.AddRange(u'A', u'Z');
        set.AddRange(u'a', u'z');
    } else if (name == u"alpha") {
        set.AddRange(u'A', u'Z');
        set.AddRange(u'a', u'z');
    } else if (name == u"ascii") {
        set.AddRange(0, 0x7F);
    } else if (name == u"cntrl") {
        set.AddRange(0, 0x1F);
        set.Add(0x7F);
    } else if (name == u"digit") {
        set = RegexCharSet::Digits();
    } else if (name == u"graph") {
        set.AddRange(0x21, 0x7E);
    } else if (name == u"lower") {
        set.AddRange(u'a', u'z');
    } else if (name == u"print") {
        set.AddRange(0x20, 0x7E);
    } else if (name == u"punct") {
        set.AddRange(0x21, 0x2F);
        set.AddRange(0x3A, 0x40);
        set.AddRange(0x5B, 0x60);
        set.AddRange(0x7B, 0x7E);
    } else if (name == u"space") {
        set.AddRange(u'\t', u'\r');
        set.Add(u' ');
    } else if (name == u"upper") {
        set.AddRange(u'A', u'Z');
    } else if (name == u"xdigit") {
        set = RegexCharSet::Digits();
        set.AddRange(u'A', u'F');
        set.AddRange(u'a', u'f');
    } else if (name == u"blank") {
        set.Add(u' ');
        set.Add(u'\t');
    } else {
        known = false;
    }
    return set;
}

} // namespace

RegexParser::RegexParser(std::u16string_view pattern, int flags,
                         std::vector<std::unique_ptr<RegexElement>>& owner)
    : pattern_(pattern), flags_(flags), owner_(owner) {}

RegexElement* RegexParser::Fail(const char* message) {
    if (error_.empty())
        error_ = std::string(message) + " at offset " + std::to_string(pos_);
    return nullptr;
}

bool RegexParser::Accept(char16_t c) {
    if (AtEnd() || pattern_[pos_] != c)
        return false;
    ++pos_;
    return true;
}

bool RegexParser::Accept(std::u16string_view text) {
    if (pattern_.substr(pos_, text.size()) != text)
        return false;
    pos_ += text.size();
    return true;
}

RegexElement* RegexParser::Parse() {
    RegexElement* root = ParseAlternation(0);
    if (root == nullptr)
        return nullptr;
    if (!AtEnd())
        return Fail("unmatched ')'");
    if (!ResolveNames())
        return nullptr;
    return root;
}

bool RegexParser::ResolveNames() {
    for (auto& [element, name] : namedReferences_) {
        auto it = names_.find(name);
        if (it == names_.end())
            return Fail("reference to an unknown group name") != nullptr;
        element->SetGroup(it->second);
    }
    for (auto& [element, name] : namedConditions_) {
        auto it = names_.find(name);
        if (it == names_.end())
            return Fail("condition on an unknown group name") != nullptr;
        element->SetGroup(it->second);
    }
    return true;
}

RegexElement* RegexParser::ParseAlternation(int depth) {
    std::vector<RegexElement*> branches;
    do {
        RegexElement* branch = ParseSequence(depth);
        if (branch == nullptr)
            return nullptr;
        branches.push_back(branch);
    } while (Accept(u'|'));
    if (branches.size() == 1)
        return branches[0];
    return Make<RegexAlternationElement>(std::move(branches));
}

RegexElement* RegexParser::ParseSequence(int depth) {
    std::vector<RegexElement*> items;
    while (!AtEnd() && Peek() != u'|' && Peek() != u')') {
        RegexElement* atom = nullptr;
        if (!ParseAtom(depth, atom))
            return nullptr;
        if (atom == nullptr)
            continue;
        if (!ParseQuantifier(atom))
            return nullptr;
        items.push_back(atom);
    }
    return MakeSequence(std::move(items));
}

// Adjacent literal characters become one string element.
RegexElement* RegexParser::MakeSequence(std::vector<RegexElement*> items) {
    std::vector<RegexElement*> merged;
    std::u16string run;
    auto flush = [&] {
        if (run.size() == 1)
            merged.push_back(Make<RegexCharElement>(run[0]));
        else if (!run.empty())
            merged.push_back(Make<RegexStringElement>(run));
        run.clear();
    };
    for (RegexElement* item : items) {
        if (auto* literal = dynamic_cast<RegexCharElement*>(item)) {
            run.push_back(literal->Char());
            continue;
        }
        flush();
        merged.push_back(item);
    }
    flush();
    if (merged.empty())
        return Make<RegexEmptyElement>();
    if (merged.size() == 1)
        return merged[0];
    return Make<RegexSequenceElement>(std::move(merged));
}

bool RegexParser::ParseAtom(int depth, RegexElement*& atom) {
    char16_t c = pattern_[pos_++];
    switch (c) {
    case u'(':
        if (depth + 1 > kMaxNestingDepth)
            return Fail("parentheses nested too deeply") != nullptr;
        if (Peek() == u'?' && Peek(1) != u'(' && Peek(1) != u'P' && Peek(1) != u'R' &&
            (Peek(1) == u'-' || (Peek(1) >= u'a' && Peek(1) <= u'z'))) {
            // Option switch "(?i)" / "(?i-m)" or option group "(?i:...)".
            ++pos_;
            int on = 0;
            int off = 0;
            bool negate = false;
            while (!AtEnd() && (Peek() == u'-' || (Peek() >= u'a' && Peek() <= u'z'))) {
                char16_t letter = pattern_[pos_++];
                if (letter == u'-')
                    negate = true;
                else
                    (negate ? off : on) |= OptionBit(letter);
            }
            int changed = (flags_ | on) & ~off;
            if (Accept(u')')) {
                flags_ = changed;
                return true;
            }
            if (!Accept(u':'))
                return Fail("bad option group") != nullptr;
            int saved = flags_;
            flags_ = changed;
            atom = ParseAlternation(depth + 1);
            flags_ = saved;
            if (atom == nullptr)
                return false;
            if (!Accept(u')'))
                return Fail("missing ')'") != nullptr;
            return true;
        }
        atom = ParseGroup(depth + 1);
        return atom != nullptr;
    case u'[':
        atom = ParseClass();
        return atom != nullptr;
    case u'.': {
        RegexCharSet set;
        if (flags_ & kRegexSingleLine) {
            set = RegexCharSet::Full();
        } else {
            set.Add(u'\n');
            set.Negate();
        }
        atom = Make<RegexClassElement>(std::move(set));
        return true;
    }
    case u'^':
        atom = Make<RegexBoundaryElement>((flags_ & kRegexMultiLine) ? RegexBoundaryElement::kLineStart
                                                                     : RegexBoundaryElement::kTextStart,
                                          true);
        return true;
    case u'$':
        atom = Make<RegexBoundaryElement>((flags_ & kRegexMultiLine) ? RegexBoundaryElement::kLineEnd
                                                                     : RegexBoundaryElement::kTextEnd,
                                          true);
        return true;
    case u'\\':
        atom = ParseEscape();
        return atom != nullptr;
    case u'*':
    case u'+':
    case u'?':
        --pos_;
        return Fail("nothing to repeat") != nullptr;
    default:
        atom = MakeLiteral(c);
        return true;
    }
}

RegexElement* RegexParser::ParseGroup(int depth) {
    int savedFlags = flags_;
    RegexElement* result = nullptr;
    if (!Accept(u'?')) {
        int group = ++groupCount_;
        RegexElement* inner = ParseAlternation(depth);
        if (inner != nullptr)
            result = Make<RegexGroupElement>(group, inner);
    } else if (Accept(u':')) {
        result = ParseAlternation(depth);
    } else if (Accept(u'=')) {
        result = ParseLookaround(depth, false, true);
    } else if (Accept(u'!')) {
        result = ParseLookaround(depth, false, false);
    } else if (Accept(u"<=")) {
        result = ParseLookaround(depth, true, true);
    } else if (Accept(u"<!")) {
        result = ParseLookaround(depth, true, false);
    } else if (Accept(u'>')) {
        RegexElement* inner = ParseAlternation(depth);
        if (inner != nullptr)
            result = Make<RegexAtomicElement>(inner);
    } else if (Accept(u"R)")) {
        return Make<RegexRecursionElement>();
    } else if (Accept(u'(')) {
        result = ParseConditional(depth);
        flags_ = savedFlags;
        return result; // the conditional reads its own ')'
    } else if (Peek() == u'<' || Peek() == u'\'' || (Peek() == u'P' && Peek(1) == u'<')) {
        Accept(u'P');
        char16_t close = pattern_[pos_++] == u'<' ? u'>' : u'\'';
        std::u16string name;
        if (!ParseName(name, close))
            return Fail("bad group name");
        if (names_.count(name) != 0)
            return Fail("duplicate group name");
        int group = ++groupCount_;
        names_[name] = group;
        RegexElement* inner = ParseAlternation(depth);
        if (inner != nullptr)
            result = Make<RegexGroupElement>(group, inner);
    } else {
        return Fail("unknown group kind");
    }
    flags_ = savedFlags;
    if (result == nullptr)
        return nullptr;
    if (!Accept(u')'))
        return Fail("missing ')'");
    return result;
}

RegexElement* RegexParser::ParseLookaround(int depth, bool behind, bool positive) {
    RegexElement* inner = ParseAlternation(depth);
    if (inner == nullptr)
        return nullptr;
    return Make<RegexLookaroundElement>(inner, behind, positive);
}

// After "(?(": the condition, then "yes|no)".
RegexElement* RegexParser::ParseConditional(int depth) {
    int group = -1;
    std::u16string name;
    const RegexLookaroundElement* assertion = nullptr;
    if (IsDigit(Peek())) {
        group = ParseNumber();
        if (!Accept(u')'))
            return Fail("bad condition");
    } else if (Accept(u'?')) {
        bool behind = Accept(u'<');
        bool positive;
        if (Accept(u'='))
            positive = true;
        else if (Accept(u'!'))
            positive = false;
        else
            return Fail("bad condition");
        auto* lookaround = static_cast<RegexLookaroundElement*>(ParseLookaround(depth, behind, positive));
        if (lookaround == nullptr)
            return nullptr;
        if (!Accept(u')'))
            return Fail("missing ')'");
        assertion = lookaround;
    } else {
        char16_t close = u')';
        if (Accept(u'<'))
            close = u'>';
        else if (Accept(u'\''))
            close = u'\'';
        if (!ParseName(name, close) || (close != u')' && !Accept(u')')))
            return Fail("bad condition");
    }
    RegexElement* yes = ParseSequence(depth);
    if (yes == nullptr)
        return nullptr;
    RegexElement* no = nullptr;
    if (Accept(u'|')) {
        no = ParseSequence(depth);
        if (no == nullptr)
            return nullptr;
        if (Peek() == u'|')
            return Fail("conditional with more than two branches");
    } else {
        no = Make<RegexEmptyElement>();
    }
    if (!Accept(u')'))
        return Fail("missing ')'");
    auto* conditional = Make<RegexConditionalElement>(group, assertion, yes, no);
    if (!name.empty())
        namedConditions_.emplace_back(conditional, name);
    return conditional;
}

bool RegexParser::ParseName(std::u16string& name, char16_t close) {
    std::size_t start = pos_;
    while (!AtEnd() && IsNameChar(Peek()))
        ++pos_;
    name = std::u16string(pattern_.substr(start, pos_ - start));
    return !name.empty() && !IsDigit(name[0]) && Accept(close);
}

int RegexParser::ParseNumber() {
    long long value = 0;
    while (!AtEnd() && IsDigit(Peek())) {
        value = value * 10 + (pattern_[pos_++] - u'0');
        if (value > kMaxCount)
            value = kMaxCount;
    }
    return static_cast<int>(value);
}

char16_t RegexParser::ParseHex(int maxDigits) {
    bool braced = Accept(u'{');
    int value = 0;
    int digits = 0;
    while (!AtEnd() && HexValue(Peek()) >= 0 && (braced ? digits < 4 : digits < maxDigits)) {
        value = value * 16 + HexValue(pattern_[pos_++]);
        ++digits;
    }
    if (braced)
        Accept(u'}');
    return static_cast<char16_t>(value);
}

RegexElement* RegexParser::ParseEscape() {
    if (AtEnd())
        return Fail("pattern ends with '\\'");
    char16_t c = pattern_[pos_++];
    RegexCharSet set;
    if (ClassEscape(c, set))
        return Make<RegexClassElement>(std::move(set));
    int control = ControlEscape(c);
    if (control >= 0)
        return MakeLiteral(static_cast<char16_t>(control));
    switch (c) {
    case u'A':
        return Make<RegexBoundaryElement>(RegexBoundaryElement::kTextStart, true);
    case u'z':
        return Make<RegexBoundaryElement>(RegexBoundaryElement::kTextEnd, true);
    case u'Z':
        return Make<RegexBoundaryElement>(RegexBoundaryElement::kTextEndOrFinalLf, true);
    case u'b':
        return Make<RegexBoundaryElement>(RegexBoundaryElement::kWordBoundary, true);
    case u'B':
        return Make<RegexBoundaryElement>(RegexBoundaryElement::kWordBoundary, false);
    case u'G':
        if (flags_ & kRegexGlobal)
            return Make<RegexBoundaryElement>(RegexBoundaryElement::kSearchStart, true);
        return MakeLiteral(c);
    case u'x':
        return MakeLiteral(ParseHex(2));
    case u'u':
        return MakeLiteral(ParseHex(4));
    case u'k': {
        char16_t close;
        if (Accept(u'<'))
            close = u'>';
        else if (Accept(u'\''))
            close = u'\'';
        else if (Accept(u'{'))
            close = u'}';
        else
            return Fail("bad \\k reference");
        std::u16string name;
        if (!ParseName(name, close))
            return Fail("bad \\k reference");
        auto* reference = Make<RegexBackrefElement>(-1, (flags_ & kRegexIgnoreCase) != 0);
        namedReferences_.emplace_back(reference, name);
        return reference;
    }
    case u'g': {
        bool braced = Accept(u'{');
        if (!IsDigit(Peek()))
            return Fail("bad \\g reference");
        int group = ParseNumber();
        if (braced && !Accept(u'}'))
            return Fail("bad \\g reference");
        return Make<RegexBackrefElement>(group, (flags_ & kRegexIgnoreCase) != 0);
    }
    default:
        break;
    }
    if (c == u'0')
        return MakeLiteral(0);
    if (IsDigit(c)) {
        --pos_;
        return Make<RegexBackrefElement>(ParseNumber(), (flags_ & kRegexIgnoreCase) != 0);
    }
    return MakeLiteral(c);
}

RegexElement* RegexParser::ParseClass() {
    RegexCharSet set;
    bool negated = Accept(u'^');
    bool first = true;
    for (;;) {
        if (AtEnd())
            return Fail("missing ']'");
        if (Peek() == u']' && !first) {
            ++pos_;
            break;
        }
        first = false;
        int low = -1;
        if (!ParseClassItem(set, low))
            return nullptr;
        if (low < 0 || Peek() != u'-' || Peek(1) == u']' || pos_ + 1 >= pattern_.size())
            continue;
        ++pos_; // the '-' of a range
        int high = -1;
        RegexCharSet rangeEnd;
        if (!ParseClassItem(rangeEnd, high))
            return nullptr;
        if (high < 0) {
            // "a-\d": the '-' was meant literally.
            set.Add(u'-');
            set.AddSet(rangeEnd);
            continue;
        }
        if (high < low)
            return Fail("range out of order in class");
        set.AddRange(static_cast<char16_t>(low), static_cast<char16_t>(high));
    }
    if (flags_ & kRegexIgnoreCase)
        set.AddCaseVariants();
    if (negated)
        set.Negate();
    return Make<RegexClassElement>(std::move(set));
}

// One member of a class: a character (returned in `single`, not yet added,
// since it may start a range) or a set (added at once, `single` stays -1).
bool RegexParser::ParseClassItem(RegexCharSet& set, int& single) {
    single = -1;
    if (Peek() == u'[' && Peek(1) == u':' && ParsePosixClass(set))
        return true;
    char16_t c = pattern_[pos_++];
    if (c != u'\\') {
        single = c;
        set.Add(c);
        return true;
    }
    if (AtEnd())
        return Fail("missing ']'") != nullptr;
    char16_t letter = pattern_[pos_++];
    RegexCharSet escaped;
    if (ClassEscape(letter, escaped)) {
        set.AddSet(escaped);
        return true;
    }
    int control = ControlEscape(letter);
    if (control >= 0)
        single = control;
    else if (letter == u'b')
        single = 0x08; // backspace inside a class
    else if (letter == u'x')
        single = ParseHex(2);
    else if (letter == u'u')
        single = ParseHex(4);
    else
        single = letter;
    set.Add(static_cast<char16_t>(single));
    return true;
}

bool RegexParser::ParsePosixClass(RegexCharSet& set) {
    std::size_t close = pattern_.find(u":]", pos_ + 2);
    if (close == std::u16string_view::npos)
        return false;
    bool known = false;
    RegexCharSet posix = PosixSet(pattern_.substr(pos_ + 2, close - pos_ - 2), known);
    if (!known)
        return false;
    set.AddSet(posix);
    pos_ = close + 2;
    return true;
}

RegexElement* RegexParser::MakeLiteral(char16_t c) {
    if ((flags_ & kRegexIgnoreCase) && (RegexToLower(c) != c || RegexToUpper(c) != c)) {
        RegexCharSet set;
        set.Add(c);
        set.AddCaseVariants();
        return Make<RegexClassElement>(std::move(set));
    }
    return Make<RegexCharElement>(c);
}

bool RegexParser::ParseQuantifier(RegexElement*& atom) {
    int min;
    int max;
    if (Accept(u'*')) {
        min = 0;
        max = kMaxCount;
    } else if (Accept(u'+')) {
        min = 1;
        max = kMaxCount;
    } else if (Accept(u'?')) {
        min = 0;
        max = 1;
    } else if (Peek() == u'{' && pattern_.find(u'}', pos_) != std::u16string_view::npos) {
        ParseCountedRepetition(min, max);
    } else {
        return true;
    }
    RegexRepeatKind kind = RegexRepeatKind::kGreedy;
    if (min == max) {
        kind = RegexRepeatKind::kFixed;
        if (!Accept(u'?'))
            Accept(u'+'); // no effect on an exact count
    } else if (Accept(u'?')) {
        kind = RegexRepeatKind::kLazy;
    } else if (Accept(u'+')) {
        kind = RegexRepeatKind::kPossessive;
    }
    if (Peek() == u'*' || Peek() == u'+' || Peek() == u'?' ||
        (Peek() == u'{' && pattern_.find(u'}', pos_) != std::u16string_view::npos))
        return Fail("quantifier follows a quantifier") != nullptr;
    atom = MakeRepeat(atom, min, max, kind);
    return true;
}

// "{m}", "{m,}", "{m,n}". Text that does not begin with a number reads as
// {0}; n below m is raised to m.
void RegexParser::ParseCountedRepetition(int& min, int& max) {
    ++pos_; // '{'
    std::size_t close = pattern_.find(u'}', pos_);
    std::u16string_view body = pattern_.substr(pos_, close - pos_);
    pos_ = close + 1;
    min = 0;
    max = 0;
    if (body.empty() || !IsDigit(body[0]))
        return;
    auto readNumber = [&body](std::size_t& at) {
        long long value = 0;
        while (at < body.size() && IsDigit(body[at])) {
            value = std::min<long long>(value * 10 + (body[at] - u'0'), kMaxCount);
            ++at;
        }
        return static_cast<int>(value);
    };
    std::size_t at = 0;
    min = readNumber(at);
    max = min;
    if (at < body.size() && body[at] == u',') {
        ++at;
        max = (at < body.size() && IsDigit(body[at])) ? readNumber(at) : kMaxCount;
        if (max < min)
            max = min;
    }
}

RegexElement* RegexParser::MakeRepeat(RegexElement* atom, int min, int max, RegexRepeatKind kind) {
    if (max == 0)
        return Make<RegexEmptyElement>(); // "{0}" and "{,n}": the atom is dropped
    if (min == 1 && max == 1)
        return atom;
    if (const RegexCharSet* set = atom->SingleCharSet())
        return Make<RegexCharRepeatElement>(*set, min, max, kind);
    return Make<RegexRepeatElement>(atom, min, max, kind);
}

} // namespace mirodate
