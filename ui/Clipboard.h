#pragma once
// The clipboard's text for the controls, through the display (the desktop's
// clipboard, or an in-process one when headless). Text goes out as UTF-8 and
// comes back as UTF-16; bytes that are not UTF-8 become U+FFFD and a NUL ends
// the text, so whatever another program put there is safe to paste.
#include <cstddef>
#include <string>

namespace mirodate {

class Clipboard {
public:
    static bool HasText();
    // At most `maxUnits` code units of the clipboard's text (a little more
    // may come back; the caller cuts), without converting the rest of a huge
    // clipboard.
    static std::u16string GetText(std::size_t maxUnits = static_cast<std::size_t>(-1) / 8);
    static bool SetText(const std::u16string& text);
};

} // namespace mirodate
