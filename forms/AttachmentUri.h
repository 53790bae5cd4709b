#pragma once
// The texts of an appointment's attachments. An attachment is kept by
// reference: a web address as typed, or a local file as a file:// URI (the
// form other calendar programs read), its path percent-encoded. These
// functions turn what a user typed into such a value, and a value back into
// the path to open and the name to list.
#include <string>

namespace mirodate {

class AttachmentUri {
public:
    // No path or address is longer (PATH_MAX); longer input is refused.
    static constexpr std::size_t kMaxTyped = 4096;

    // What the user typed (an absolute path, "~/..." under the home folder,
    // a file:// URI, or a web address such as https://...) as the value to
    // store; empty when it is no web address and names no existing file.
    static std::u16string FromTyped(const std::u16string& typed);
    // "scheme://..." with a scheme other than file.
    static bool IsWebAddress(const std::u16string& text);
    // The local path of a file:// URI, escapes decoded; empty for anything else.
    static std::string LocalPath(const std::u16string& uri);
    // A path as a file:// URI.
    static std::u16string FromPath(const std::string& path);
    // The name to list: a file's name, or the web address as it is.
    static std::u16string DisplayName(const std::u16string& uri);
};

} // namespace mirodate
