#include "ui/Clipboard.h"

#include "platform/TextUtil.h"
#include "ui/WinApi.h"

namespace mirodate {

namespace {
// A UTF-8 sequence is at most four bytes, and four bytes make at most two
// code units, so this many bytes hold at least the units asked for.
constexpr std::size_t kBytesPerUnit = 4;
} // namespace

bool Clipboard::HasText() {
    return Wm().GetDisplay().HasClipboardText();
}

std::u16string Clipboard::GetText(std::size_t maxUnits) {
    std::string utf8 = Wm().GetDisplay().GetClipboardText();
    const std::size_t nul = utf8.find('\0');
    if (nul != std::string::npos)
        utf8.resize(nul);
    const std::size_t maxBytes =
        maxUnits < utf8.size() / kBytesPerUnit ? (maxUnits + 1) * kBytesPerUnit : utf8.size();
    if (utf8.size() > maxBytes)
        utf8.resize(maxBytes);
    return Utf8ToUtf16(utf8);
}

bool Clipboard::SetText(const std::u16string& text) {
    return Wm().GetDisplay().SetClipboardText(Utf16ToUtf8(text));
}

} // namespace mirodate
