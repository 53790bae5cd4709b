#pragma once
// The user-interface texts of one language, looked up by key.
//
// A language file is UTF-16 little-endian text of "key=value" lines. The whole
// file is kept in memory and searched on every look-up: a key must start a
// line (only "LANGUAGE" may also stand at the very start of the text), the
// first definition wins, "\n" in a value is a line break, and a missing key
// yields the key itself so that a gap in a translation stays visible. The
// line starts are indexed once per text, so that a look-up does not walk the
// file: the program makes hundreds of them while it starts.
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

namespace mirodate {

class LanguageTable {
public:
    // Files above this size are not loaded: the shipped ones are below 100 KB.
    static constexpr size_t kMaxFileBytes = 1024 * 1024;
    // Narrow keys are cut to this many characters.
    static constexpr size_t kMaxNarrowKey = 64;

    // The table the whole program reads through Lang() and LangW().
    static LanguageTable& Instance();

    // Reads the file at `path`, replacing the current text. A file that cannot
    // be read, or is too big, leaves the table empty; returns false then.
    bool Load(const std::string& path);

    // Loads the file named by the Language setting from the resource folder,
    // or the default language's file when that one cannot be used.
    bool LoadFromSettings();
    static constexpr const char* kDefaultFile = "lang.en.txt";

    // Replaces the text directly (already decoded UTF-16).
    void SetText(std::u16string text);
    // Decodes raw little-endian bytes as Load does; an odd last byte is dropped.
    void SetBytes(std::string_view bytes);

    std::u16string Get(std::u16string_view key) const;
    std::u16string Get(std::string_view keyAnsi) const;

    bool IsEmpty() const { return text_.empty(); }
    size_t SizeInBytes() const { return text_.size() * 2; }

private:
    void BuildIndex();
    // Where the pattern of `key` first matches, as the plain search would find
    // it; npos when it does not.
    size_t FindValue(std::u16string_view key) const;

    std::u16string text_;
    // Key of each line that follows a line feed (up to its first "=") to the
    // start of its value; the first line of a key wins.
    std::unordered_map<std::u16string, size_t> valueOfKey_;
};

// Text of `key` in the current language (the key itself when it is missing).
std::u16string Lang(std::string_view key);
std::u16string LangW(std::u16string_view key);

} // namespace mirodate
