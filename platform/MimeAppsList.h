#pragma once
// One mimeapps.list file, edited in place: every line the program does not
// change is kept exactly as it was (comments, other sections, line endings),
// and the file is written whole to a temporary file that is renamed over the
// original, so that a crash never leaves it half written. A symbolic link
// stays a link: its target is what gets replaced.
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

class MimeAppsList {
public:
    // A mimeapps.list is a few kilobytes; anything this large is not one.
    static constexpr std::size_t kMaxBytes = 1 << 20;
    static constexpr const char* kDefaultsSection = "Default Applications";

    // Reads the file; a missing file is an empty list. False (with a reason)
    // when it cannot be read, is too large or holds binary data: such a file
    // is never written back.
    bool Load(const std::string& path, std::string& error);
    // Writes the text through a temporary file and a rename. False (with a
    // reason) when the file is read-only or the folder cannot be written.
    bool Save(const std::string& path, std::string& error) const;

    bool HasSection(const std::string& section) const;
    // The value of `key` in `section`, as written.
    std::optional<std::string> Get(const std::string& section, const std::string& key) const;
    // Replaces the value in place, or adds the key at the end of its section
    // (the section at the end of the file when there is none).
    void Set(const std::string& section, const std::string& key, const std::string& value);
    // Removes the key; with `dropEmptySection`, a section left without any
    // line goes as well.
    void Remove(const std::string& section, const std::string& key, bool dropEmptySection);

    std::string Text() const;
    void SetText(const std::string& text);

private:
    struct Line {
        std::string text;   // without its line ending
        std::string ending; // "\n", "\r\n" or "" for a last line without one
    };
    // Index of the section header, or -1.
    int FindSection(const std::string& section) const;
    // Index of the key's line within the section starting at `header`, or -1.
    int FindKey(int header, const std::string& key) const;
    // One past the section's last line.
    int SectionEnd(int header) const;
    std::string NewLineEnding() const;

    std::vector<Line> lines_;
};

} // namespace mirodate
