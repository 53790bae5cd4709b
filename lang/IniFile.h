#pragma once
// Reader of sectioned key=value text (the skin's "skin.ini"). The text is kept
// line by line; sections and names are matched case-insensitively but without
// trimming, so " key=1" is not found as "key". A value that starts with "$" is
// looked up as a name in the section "variables".
//
// The lines are indexed once when the text is parsed, so that a look-up costs
// the same however long the text is: a skin reads some hundred keys.
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>

namespace mirodate {

class IniFile {
public:
    enum class LineKind { Section = 1, Entry = 2, Other = 3 };

    struct Line {
        LineKind kind = LineKind::Other;
        std::string text; // the whole line, carriage returns removed
    };

    // Keys and values longer than this are cut to it.
    static constexpr size_t kMaxNameLength = 127;

    struct LookupResult {
        const Line* section = nullptr;
        const Line* entry = nullptr;
        std::string key;
        std::string value;   // raw, before any "$" indirection
        std::string comment; // from the ";" on, empty when the line has none
    };

    IniFile() = default;
    explicit IniFile(std::string_view text) { Parse(text); }
    // The index points into the lines: moving keeps them, copying would not.
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;
    IniFile(IniFile&&) = default;
    IniFile& operator=(IniFile&&) = default;

    // Replaces the content with `text`. Returns false for text with no lines.
    bool Parse(std::string_view text);

    // The value of `key` in `section`, with "$" indirection, or `defaultValue`.
    std::string GetValue(std::string_view section, std::string_view key, std::string_view defaultValue) const;

    // The raw entry of `key` in `section`; false when there is none.
    bool Find(std::string_view section, std::string_view key, LookupResult& result) const;

    // True when the text has a line "[<section>]" (any case).
    bool HasSection(std::string_view section) const;

    // Prepares the "variables" section for the "$" look-ups (they are resolved
    // when a value is read); returns whether the text has that section.
    bool ApplyVariables() const { return HasSection(kVariablesSection); }

    const std::list<Line>& Lines() const { return lines_; }

    static constexpr std::string_view kVariablesSection = "variables";

private:
    // The first line of a section name and the first entry line of each key
    // after it, up to the next section line; keys upper-cased and cut to
    // kMaxNameLength, as they are compared.
    struct Section {
        const Line* line = nullptr;
        std::unordered_map<std::string, const Line*> entries;
    };

    const Section* FindSection(std::string_view section) const;
    void BuildIndex();

    std::list<Line> lines_;
    std::unordered_map<std::string, Section> sections_; // by "[NAME]" upper-cased
};

} // namespace mirodate
