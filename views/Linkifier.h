#pragma once
// Turns the web addresses, e-mail addresses, telephone numbers and bracketed
// file paths of a plain text into link mark-up for the rich text box.
//
// Five finders run in a fixed order, each on the text the previous ones left:
// file paths, web addresses, e-mail addresses, then the two telephone
// patterns. A finder collects all its matches first, then replaces every
// occurrence of each matched text by a placeholder "$PLACEHOLDER_nnnnn$"
// (numbered across all finders of one run), so that later finders cannot
// split an earlier link: the digits inside a web address are never taken for
// a telephone number. At the end every placeholder is replaced by its link.
//
// Known behaviour, kept on purpose: a text found twice is replaced everywhere
// by its first placeholder (the second placeholder then finds nothing);
// "HTTP://" in capitals is not found (the web pattern is lower-case); and a
// placeholder text typed by the user is replaced by the link it names.
#include <functional>
#include <string>

namespace mirodate {

class Linkifier {
public:
    // Whether a file or folder exists at `path`; tests pass their own.
    using ExistsFunction = std::function<bool(const std::u16string& path)>;

    Linkifier();
    explicit Linkifier(ExistsFunction exists);

    // Rewrites `text` in place.
    void Run(std::u16string& text) const;

    // The real file system: stat() on the UTF-8 path.
    static bool PathExists(const std::u16string& path);

    // The finders' patterns, as given to the engine.
    static const char16_t* const kFilePathPattern;
    static const char16_t* const kWebAddressPattern;
    static const char16_t* const kMailAddressPattern;
    static const char16_t* const kPhonePattern;
    static const char16_t* const kPhonePatternAnchored;

private:
    ExistsFunction exists_;
};

} // namespace mirodate
