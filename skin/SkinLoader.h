#pragma once
// Choosing, opening and listing skins. A skin is the archive
// "skin.<name>.zip" in the program's folder (or the installed share folder);
// the Skin setting names the one in use.
#include <string>
#include <vector>

namespace mirodate {

struct SkinStyles;

class SkinLoader {
public:
    static constexpr const char16_t* kDefaultSkin = u"Mirodate Black";

    // Opens the skin of the Skin setting (switching the setting to the default
    // skin when its archive is missing) and applies it to `styles`. Without a
    // usable skin the built-in look stays. Returns true when a skin was applied.
    static bool Load(SkinStyles& styles, bool highResolution);

    // Applies the archive at `path`; then gives the menu bar the built-in icon
    // strip unless the skin brought one.
    static bool LoadArchive(const std::string& path, SkinStyles& styles, bool highResolution);

    // "skin.<name>.zip" where the program would find it.
    static std::string ArchivePath(const std::u16string& name);

    // Installed skin names, sorted, without duplicates.
    static std::vector<std::u16string> ListInstalled();
    static std::vector<std::u16string> ListIn(const std::vector<std::string>& folders);
};

} // namespace mirodate
