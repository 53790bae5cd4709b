#pragma once
// What the freedesktop.org files say about the desktop's programs: which
// desktop entries handle a MIME type (mimeapps.list, defaults first), the
// command line of an entry, and the user's download folder.
#include <optional>
#include <string>
#include <vector>

namespace mirodate {

class DesktopHandlers {
public:
    // Desktop ids for `mimeType`: the defaults of every mimeapps.list in the
    // lookup order of the freedesktop.org MIME rules, then the added associations; each once.
    static std::vector<std::string> HandlersFor(const std::string& mimeType);
    // The entry's command line with `file` for its %f/%u codes (left out
    // when empty); nothing when the entry cannot be found or has no Exec.
    static std::optional<std::vector<std::string>> CommandOf(const std::string& desktopId,
                                                             const std::string& file);
    // The first calendar program (text/calendar) that is not this one.
    static std::optional<std::vector<std::string>> OtherCalendarCommand(const std::string& file);
    // XDG_DOWNLOAD_DIR from user-dirs.dirs, else ~/Downloads.
    static std::string DownloadDir();
    // Splits an Exec value into arguments (quotes and escapes as the
    // freedesktop.org desktop entries write them) and fills in the field codes.
    static std::vector<std::string> SplitExec(const std::string& exec, const std::string& file);
};

} // namespace mirodate
