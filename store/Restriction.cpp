#include "store/Restriction.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <vector>

namespace mirodate {

namespace {

enum class Field { Start, End, DueDate, StartDate, Complete };
enum class Op { LessEqual, GreaterEqual, Equal, NotEqual };

// Nesting depth beyond which a restriction is refused rather than recursed.
constexpr int kMaxDepth = 64;
constexpr long kMaxDayNumber = 2958465; // 31 December 9999
// Comparisons in one restriction; the longest the store is sent has five.
constexpr int kMaxComparisons = 256;

} // namespace

struct Restriction::Node {
    enum class Kind { And, Or, Compare } kind = Kind::Compare;
    std::unique_ptr<Node> left, right;
    Field field = Field::Start;
    Op op = Op::Equal;
    long day = 0;
    bool boolean = false;
};

namespace {

using Node = Restriction::Node;

class Parser {
public:
    Parser(std::u16string_view text, std::string& error) : text_(text), error_(error) {}

    std::unique_ptr<Node> ParseAll() {
        auto node = ParseOr(0);
        if (!node)
            return nullptr;
        SkipBlanks();
        if (pos_ != text_.size())
            return Fail("unexpected text");
        return node;
    }

private:
    std::unique_ptr<Node> Fail(const char* message) {
        if (error_.empty())
            error_ = std::string(message) + " at position " + std::to_string(pos_);
        return nullptr;
    }
    void SkipBlanks() {
        while (pos_ < text_.size() && (text_[pos_] == u' ' || text_[pos_] == u'\t'))
            ++pos_;
    }
    bool Keyword(const char* word) {
        SkipBlanks();
        std::size_t i = 0;
        for (; word[i]; ++i) {
            if (pos_ + i >= text_.size())
                return false;
            const char16_t c = text_[pos_ + i];
            if (c > 0x7F || std::toupper(static_cast<int>(c)) != word[i])
                return false;
        }
        // A keyword ends at a non-letter.
        if (pos_ + i < text_.size() && text_[pos_ + i] < 0x80 &&
            std::isalpha(static_cast<int>(text_[pos_ + i])))
            return false;
        pos_ += i;
        return true;
    }
    std::unique_ptr<Node> Join(Node::Kind kind, std::unique_ptr<Node> left, std::unique_ptr<Node> right) {
        auto node = std::make_unique<Node>();
        node->kind = kind;
        node->left = std::move(left);
        node->right = std::move(right);
        return node;
    }
    std::unique_ptr<Node> ParseOr(int depth) {
        auto left = ParseAnd(depth);
        while (left && Keyword("OR")) {
            auto right = ParseAnd(depth);
            if (!right)
                return nullptr;
            left = Join(Node::Kind::Or, std::move(left), std::move(right));
        }
        return left;
    }
    std::unique_ptr<Node> ParseAnd(int depth) {
        auto left = ParsePrimary(depth);
        while (left && Keyword("AND")) {
            auto right = ParsePrimary(depth);
            if (!right)
                return nullptr;
            left = Join(Node::Kind::And, std::move(left), std::move(right));
        }
        return left;
    }
    std::unique_ptr<Node> ParsePrimary(int depth) {
        if (depth > kMaxDepth)
            return Fail("nested too deeply");
        SkipBlanks();
        if (pos_ < text_.size() && text_[pos_] == u'(') {
            ++pos_;
            auto inner = ParseOr(depth + 1);
            if (!inner)
                return nullptr;
            SkipBlanks();
            if (pos_ >= text_.size() || text_[pos_] != u')')
                return Fail("missing )");
            ++pos_;
            return inner;
        }
        return ParseComparison();
    }
    std::unique_ptr<Node> ParseComparison() {
        if (++comparisons_ > kMaxComparisons)
            return Fail("too many comparisons");
        if (pos_ >= text_.size() || text_[pos_] != u'[')
            return Fail("expected [field]");
        const std::size_t close = text_.find(u']', pos_);
        if (close == std::u16string_view::npos)
            return Fail("missing ]");
        const std::u16string_view name = text_.substr(pos_ + 1, close - pos_ - 1);
        auto node = std::make_unique<Node>();
        if (name == u"Start")
            node->field = Field::Start;
        else if (name == u"End")
            node->field = Field::End;
        else if (name == u"DueDate")
            node->field = Field::DueDate;
        else if (name == u"StartDate")
            node->field = Field::StartDate;
        else if (name == u"Complete")
            node->field = Field::Complete;
        else
            return Fail("unknown field");
        pos_ = close + 1;
        SkipBlanks();
        const std::u16string_view rest = text_.substr(pos_);
        if (rest.starts_with(u"<="))
            node->op = Op::LessEqual, pos_ += 2;
        else if (rest.starts_with(u">="))
            node->op = Op::GreaterEqual, pos_ += 2;
        else if (rest.starts_with(u"<>"))
            node->op = Op::NotEqual, pos_ += 2;
        else if (rest.starts_with(u"="))
            node->op = Op::Equal, pos_ += 1;
        else
            return Fail("expected <=, >= or =");
        SkipBlanks();
        if (node->field == Field::Complete) {
            if (node->op == Op::LessEqual || node->op == Op::GreaterEqual)
                return Fail("[Complete] takes = or <>");
            if (Keyword("TRUE"))
                node->boolean = true;
            else if (Keyword("FALSE"))
                node->boolean = false;
            else
                return Fail("expected True or False");
            return node;
        }
        if (node->op == Op::NotEqual)
            return Fail("<> takes True or False");
        if (pos_ >= text_.size() || text_[pos_] != u'<')
            return Fail("expected <day");
        ++pos_;
        const std::size_t digits = pos_;
        bool negative = false;
        if (pos_ < text_.size() && text_[pos_] == u'-')
            negative = true, ++pos_;
        long value = 0;
        while (pos_ < text_.size() && text_[pos_] >= u'0' && text_[pos_] <= u'9') {
            value = value * 10 + (text_[pos_] - u'0');
            if (value > kMaxDayNumber)
                return Fail("day number out of range");
            ++pos_;
        }
        if (pos_ == digits + (negative ? 1 : 0))
            return Fail("expected a day number");
        node->day = negative ? -value : value;
        return node;
    }

    std::u16string_view text_;
    std::string& error_;
    std::size_t pos_ = 0;
    int comparisons_ = 0;
};

bool Evaluate(const Node& node, const PimRecord& item) {
    switch (node.kind) {
    case Node::Kind::And:
        return Evaluate(*node.left, item) && Evaluate(*node.right, item);
    case Node::Kind::Or:
        return Evaluate(*node.left, item) || Evaluate(*node.right, item);
    case Node::Kind::Compare:
        break;
    }
    if (node.field == Field::Complete)
        return node.op == Op::Equal ? item.complete == node.boolean : item.complete != node.boolean;
    double value = 0.0;
    switch (node.field) {
    case Field::Start:
        value = item.start;
        break;
    case Field::End:
        value = item.end;
        break;
    case Field::DueDate:
        value = item.dueDate;
        break;
    case Field::StartDate:
        value = item.startDate;
        break;
    case Field::Complete:
        break;
    }
    if (value == kNoDate)
        return false;
    const long day = static_cast<long>(std::trunc(value));
    switch (node.op) {
    case Op::LessEqual:
        return day <= node.day;
    case Op::GreaterEqual:
        return day >= node.day;
    case Op::Equal:
        return day == node.day;
    case Op::NotEqual:
        return day != node.day;
    }
    return false;
}

Restriction::Window WindowOf(const Node& node) {
    using Window = Restriction::Window;
    if (node.kind != Node::Kind::Compare) {
        const Window a = WindowOf(*node.left), b = WindowOf(*node.right);
        Window w;
        if (node.kind == Node::Kind::And) {
            w.startFrom = std::max(a.startFrom, b.startFrom);
            w.startBefore = std::min(a.startBefore, b.startBefore);
            w.endFrom = std::max(a.endFrom, b.endFrom);
        } else {
            w.startFrom = std::min(a.startFrom, b.startFrom);
            w.startBefore = std::max(a.startBefore, b.startBefore);
            w.endFrom = std::min(a.endFrom, b.endFrom);
        }
        return w;
    }
    Window w;
    const double day = static_cast<double>(node.day);
    if (node.field == Field::Start) {
        if (node.op == Op::LessEqual || node.op == Op::Equal)
            w.startBefore = day + 1;
        if (node.op == Op::GreaterEqual || node.op == Op::Equal)
            w.startFrom = day;
    } else if (node.field == Field::End) {
        if (node.op == Op::GreaterEqual || node.op == Op::Equal)
            w.endFrom = day;
        // An end on or before a day bounds the start as well.
        if (node.op == Op::LessEqual || node.op == Op::Equal)
            w.startBefore = day + 1;
    }
    return w;
}

} // namespace

Restriction::Restriction() = default;
Restriction::~Restriction() = default;
Restriction::Restriction(Restriction&&) noexcept = default;
Restriction& Restriction::operator=(Restriction&&) noexcept = default;

bool Restriction::Parse(std::u16string_view text, std::string& error) {
    root_.reset();
    error.clear();
    if (text.find_first_not_of(u" \t") == std::u16string_view::npos)
        return true;
    Parser parser(text, error);
    root_ = parser.ParseAll();
    return root_ != nullptr;
}

bool Restriction::Matches(const PimRecord& item) const {
    return !root_ || Evaluate(*root_, item);
}

Restriction::Window Restriction::GetWindow() const {
    return root_ ? WindowOf(*root_) : Window{};
}

} // namespace mirodate
