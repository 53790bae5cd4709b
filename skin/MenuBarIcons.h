#pragma once
// The menu-bar icon strip: square icons side by side, as high as the strip,
// in the order of MenuBarIcon. Pixels of the key colour RGB(0,128,128) are
// transparent. The program carries a built-in strip for each resolution.
#include "platform/Types.h"
#include "skin/SkinPicture.h"

namespace mirodate {

enum class MenuBarIcon { Menu, Filter, Tasks, Week, Agenda, Month, New, Back, Search, Count };

class MenuBarIcons {
public:
    static constexpr int kLowResolutionSize = 20;
    static constexpr int kHighResolutionSize = 40;

    // The built-in strip (decoded once); null only if the program is damaged.
    static SkinPictureRef Builtin(bool highResolution);

    // The source rectangle of `icon` in `strip`; empty when the strip is too short.
    static RECT IconRect(const SkinPicture& strip, MenuBarIcon icon);
};

} // namespace mirodate
