#pragma once
// Reads a pattern and builds its element tree. Recursive descent; the
// nesting of parentheses is limited to kMaxNestingDepth so that a hostile
// pattern cannot exhaust the C++ stack here or later while matching.
#include "regex/RegexElement.h"
#include "regex/RegexRepeatKind.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mirodate {

class RegexBackrefElement;
class RegexConditionalElement;

class RegexParser {
public:
    // Deep enough for any pattern a person writes (the link patterns nest
    // four levels), shallow enough that parsing and matching stay within a
    // few hundred stack frames.
    static constexpr int kMaxNestingDepth = 100;

    RegexParser(std::u16string_view pattern, int flags, std::vector<std::unique_ptr<RegexElement>>& owner);

    // The root element, or null with Error() set.
    RegexElement* Parse();
    const std::string& Error() const { return error_; }
    int GroupCount() const { return groupCount_; }
    const std::map<std::u16string, int>& GroupNames() const { return names_; }

private:
    template <class T, class... Args> T* Make(Args&&... args) {
        auto element = std::make_unique<T>(std::forward<Args>(args)...);
        T* raw = element.get();
        owner_.push_back(std::move(element));
        return raw;
    }

    RegexElement* ParseAlternation(int depth);
    RegexElement* ParseSequence(int depth);
    // False on a syntax error; `atom` stays null for an option switch "(?i)".
    bool ParseAtom(int depth, RegexElement*& atom);
    RegexElement* ParseGroup(int depth);
    RegexElement* ParseConditional(int depth);
    RegexElement* ParseLookaround(int depth, bool behind, bool positive);
    RegexElement* ParseClass();
    RegexElement* ParseEscape();
    bool ParseClassItem(RegexCharSet& set, int& single);
    bool ParsePosixClass(RegexCharSet& set);
    bool ParseQuantifier(RegexElement*& atom);
    void ParseCountedRepetition(int& min, int& max);
    char16_t ParseHex(int maxDigits);
    int ParseNumber();
    bool ParseName(std::u16string& name, char16_t close);
    bool ResolveNames();

    RegexElement* MakeLiteral(char16_t c);
    RegexElement* MakeSet(RegexCharSet set);
    RegexElement* MakeRepeat(RegexElement* atom, int min, int max, RegexRepeatKind kind);
    RegexElement* MakeSequence(std::vector<RegexElement*> items);

    bool AtEnd() const { return pos_ >= pattern_.size(); }
    char16_t Peek(std::size_t ahead = 0) const {
        return pos_ + ahead < pattern_.size() ? pattern_[pos_ + ahead] : u'\0';
    }
    bool Accept(char16_t c);
    bool Accept(std::u16string_view text);
    RegexElement* Fail(const char* message);

    std::u16string_view pattern_;
    std::size_t pos_ = 0;
    int flags_;
    std::vector<std::unique_ptr<RegexElement>>& owner_;
    std::string error_;
    int groupCount_ = 0;
    std::map<std::u16string, int> names_;
    std::vector<std::pair<RegexBackrefElement*, std::u16string>> namedReferences_;
    std::vector<std::pair<RegexConditionalElement*, std::u16string>> namedConditions_;
};

} // namespace mirodate
