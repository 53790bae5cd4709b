#pragma once
// The user-interface texts of one language, looked up by key.
//
// A language file is UTF-16 little-endian text of "key=value" lines. The whole
// file is kept in memory and searched on every look-up: a key must start a
// line (only "LANGUAGE" may also stand at the very start of the text), the
// first definition wins, "\n" in a value is a line break, and a missing key
// yields the key itself so that a gap in a translation stays visible.
#include <cstddef>
#include <string>
#include <string_view>

namespace mirodate {

class LanguageTable {
public:
    // Files above this size are not loaded (the shipped ones are ~100 KB).
    static constexpr size_t kMaxFileBytes = 16 * 1024 * 1024;
    // Narrow keys are cut to this many characters.
    static constexpr size_t kMaxNarrowKey = 64;

    // The table the whole program reads through Lang() and LangW().
    static LanguageTable& Instance();

    // Reads the file at `path`, replacing the current text. A file that cannot
    // be read, or is too big, leaves the table empty; returns false then.
    bool Load(const std::string& path);

    // Loads the file named by the Language setting from the resource folder.
    bool LoadFromSettings();

    // Replaces the text directly (already decoded UTF-16).
    void SetText(std::u16string text) { text_ = std::move(text); }
    // Decodes raw little-endian bytes as Load does; an odd last byte is dropped.
    void SetBytes(std::string_view bytes);

    std::u16string Get(std::u16string_view key) const;
    std::u16string Get(std::string_view keyAnsi) const;

    bool IsEmpty() const { return text_.empty(); }
    size_t SizeInBytes() const { return text_.size() * 2; }

private:
    std::u16string text_;
};

// Text of `key` in the current language (the key itself when it is missing).
std::u16string Lang(std::string_view key);
std::u16string LangW(std::u16string_view key);

} // namespace mirodate
